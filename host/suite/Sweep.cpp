#include "host/suite/Sweep.h"

#include "host/record/ReportText.h"
#include "host/suite/Combinations.h"

#include <algorithm>
#include <fmt/format.h>

namespace vant::host {

namespace {

std::vector<std::size_t> OptionsOf(const Sweep& sweep) {
    std::vector<std::size_t> options;
    for (const SweptValue& each : sweep.swept)
        options.push_back(each.values.size());
    return options;
}

/// Gives a case one of the values, and returns what its name says about it.
std::string Give(TestCase& target, const SweptValue& swept, const Value& value) {
    switch (swept.kind) {
    case SweptValue::Kind::Seed:
        target.seed = std::get<std::int64_t>(value);
        return fmt::format("seed={}", Readable(value));
    case SweptValue::Kind::Parameter:
        target.parameters.insert_or_assign(swept.name, GivenValue{value, swept.position});
        break;
    default:
        target.data.insert_or_assign(swept.name, GivenValue{value, swept.position});
        break;
    }
    return fmt::format("{}={}", swept.name, Readable(value));
}

} // namespace

bool IsTooLarge(const Sweep& sweep) {
    std::vector<std::size_t> options = OptionsOf(sweep);
    // The two largest need a case for each pair.
    std::sort(options.rbegin(), options.rend());
    if (sweep.pairs && options.size() > 2)
        options.resize(2);
    return CountCombinations(options, mostSweptCases + 1) > mostSweptCases;
}

std::vector<TestCase> Expand(const TestCase& pattern, const Sweep& sweep) {
    const auto options = OptionsOf(sweep);
    std::vector<TestCase> cases;
    for (const Combination& combination :
         sweep.pairs ? PairCombinations(options) : AllCombinations(options)) {
        TestCase& next = cases.emplace_back(pattern);
        next.isSwept = true;
        std::vector<std::string> values;
        for (std::size_t i = 0; i < combination.size(); ++i) {
            const SweptValue& swept = sweep.swept[i];
            values.push_back(Give(next, swept, swept.values[combination[i]]));
        }
        next.name = fmt::format("{} [{}]", next.name, fmt::join(values, " "));
    }
    return cases;
}

} // namespace vant::host
