#pragma once

#include "host/conditions/Condition.h"
#include "host/record/Value.h"

#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// A comparison with a value.
struct Limit {
    Comparison comparison = Comparison::Is;
    Value value;
};

/// What a value must satisfy that was measured or entered: all of it.
struct Limits {
    std::vector<Limit> comparisons{};
    std::vector<Value> oneOf{};        ///< If not empty, the value is one of these.
    std::optional<std::string> like{}; ///< A pattern with * and ?.
};

/// Whether there is a limit at all.
bool HasAny(const Limits& limits);

/// The limits as reports show them, such as "atLeast 40, atMost 140"; empty if there are none.
std::string Describe(const Limits& limits);

/// Whether a value satisfies the limits. Numbers and truth values are read from texts under locale 1033.
bool Satisfies(const Limits& limits, const Value& value);

} // namespace vant::host
