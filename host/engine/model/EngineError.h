#pragma once

#include <variant>

namespace vant::host {

/// Why a simulated engine refuses a read or a write.
enum class EngineError {
    NotFound,    ///< There is no such parameter.
    ReadFailed,  ///< Reads of the parameter fail, as its description says.
    ReadOnly,    ///< The parameter is read-only or has another source than writes.
    WrongKind,   ///< The value is not of the parameter's kind.
    OutOfLimits, ///< The value lies outside the parameter's limits.
};

/// A result or an error.
template <class Result>
using Expected = std::variant<Result, EngineError>;

} // namespace vant::host
