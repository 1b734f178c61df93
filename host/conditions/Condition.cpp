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

std::string DescribeLimit(const Condition& condition) {
    return fmt::format("{} {}", NameOf(condition.comparison),
                       condition.otherEntry.empty() ? ToJson(condition.value).dump()
                                                    : "data " + condition.otherEntry);
}

std::string Describe(const Condition& condition) {
    return fmt::format("{} {} {}", condition.kind == Condition::Kind::Parameter ? "parameter" : "data",
                       condition.subject, DescribeLimit(condition));
}

std::string Describe(const Conditions& conditions) {
    std::vector<std::string> texts;
    texts.reserve(conditions.list.size());
    for (const Condition& condition : conditions.list)
        texts.push_back(Describe(condition));
    return fmt::format("{}{}", conditions.any ? "any of: " : "", fmt::join(texts, "; "));
}

bool Holds(Comparison comparison, const Value& actual, const Value& limit) {
    const double number = NumberOrNan(actual);
    const double bound = NumberOrNan(limit);
    switch (comparison) {
    case Comparison::Is:
        return IsSame(actual, limit);
    case Comparison::IsNot:
        return !IsSame(actual, limit);
    case Comparison::Below:
        return number < bound;
    case Comparison::Above:
        return number > bound;
    case Comparison::AtLeast:
        return number >= bound;
    default:
        return number <= bound;
    }
}

} // namespace vant::host
