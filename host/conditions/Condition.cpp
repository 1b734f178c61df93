#include "host/conditions/Condition.h"

#include "host/record/Json.h"
#include "host/record/Number.h"

#include <cmath>

namespace vant {

namespace {

/// Not a number, which compares with nothing, where the value is none.
double NumberOrNone(const Value& value) {
    return NumberIn(value).value_or(std::nan(""));
}

bool IsSame(const Value& a, const Value& b) {
    return a == b || NumberOrNone(a) == NumberOrNone(b);
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
    const double number = NumberOrNone(actual);
    const double limit = NumberOrNone(condition.value);
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
