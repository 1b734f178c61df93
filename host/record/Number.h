#pragma once

#include "host/record/Value.h"

#include <cstdint>
#include <optional>
#include <variant>

namespace vant {

/// The number that a value is; nothing where it is none.
inline std::optional<double> NumberIn(const Value& value) {
    if (const auto* const whole = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*whole);
    if (const auto* const real = std::get_if<double>(&value))
        return *real;
    return std::nullopt;
}

} // namespace vant
