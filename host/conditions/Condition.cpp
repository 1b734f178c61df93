#include "host/conditions/Condition.h"

#include "host/record/Json.h"

#include <cmath>

namespace vant {

namespace {

/// Not a number, which compares with nothing, where the value is none.
double NumberIn(const Value& value) {
    if (const auto* const whole = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*whole);
    const auto* const real = std::get_if<double>(&value);
    return real ? *real : std::nan("");
}

bool IsSame(const Value& a, const Value& b) {
    return a == b || NumberIn(a) == NumberIn(b);
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

std::string TextOf(const Condition& condition) {
    return (condition.kind == Condition::Kind::Parameter ? "parameter " : "data ") + condition.subject + ' ' +
           NameOf(condition.comparison) + ' ' + ToJson(condition.value).dump();
}

VARTYPE ComparedType(const Condition& condition) {
    if (std::holds_alternative<std::string>(condition.value))
        return VT_BSTR;
    return std::holds_alternative<bool>(condition.value) ? VT_BOOL : VT_R8;
}

bool Holds(const Condition& condition, const Value& actual) {
    const double number = NumberIn(actual);
    const double limit = NumberIn(condition.value);
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

} // namespace vant
