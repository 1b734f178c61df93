#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace vant::host {

/// A value in a procedure or in the journal. Texts are UTF-8.
using Value = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string>;

/// The number in a value; nothing if the value is not a number.
inline std::optional<double> NumberIn(const Value& value) {
    if (const auto* const whole = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*whole);
    if (const auto* const real = std::get_if<double>(&value))
        return *real;
    return std::nullopt;
}

} // namespace vant::host
