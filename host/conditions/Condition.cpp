#include "host/conditions/Condition.h"

#include "host/record/Json.h"
#include "host/record/Value.h"

#include <cmath>
#include <fmt/format.h>

namespace vant::host {

namespace {

/// NaN, which no comparison accepts, if the value is not a number.
double NumberOrNan(const Value& value) {
    return NumberIn(value).value_or(std::nan(""));
}

bool IsSame(const Value& a, const Value& b) {
    return a == b || NumberOrNan(a) == NumberOrNan(b);
}

} // namespace

const char* NameOf(Comparison comparison) {
    switch (comparison) {
    case Comparison::Is:
        return "is";
    case Comparison::IsNot:
        return "isNot";
    case Comparison::Below:
        return "below";
    case Comparison::Above:
        return "above";
    case Comparison::AtLeast:
        return "atLeast";
    default:
        return "atMost";
    }
}

std::string Describe(const Condition& condition) {
    return fmt::format("{} {} {} {}", condition.kind == Condition::Kind::Parameter ? "parameter" : "data",
                       condition.subject, NameOf(condition.comparison), ToJson(condition.value).dump());
}

bool Holds(const Condition& condition, const Value& actual) {
    const double number = NumberOrNan(actual);
    const double limit = NumberOrNan(condition.value);
    switch (condition.comparison) {
    case Comparison::Is:
        return IsSame(actual, condition.value);
    case Comparison::IsNot:
        return !IsSame(actual, condition.value);
    case Comparison::Below:
        return number < limit;
    case Comparison::Above:
        return number > limit;
    case Comparison::AtLeast:
        return number >= limit;
    default:
        return number <= limit;
    }
}

} // namespace vant::host
