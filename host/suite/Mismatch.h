#pragma once

#include "host/record/Json.h"
#include "host/suite/TestCase.h"

#include <string>
#include <vector>

namespace vant::host {

/// Something that a run has not led to as expected, in words that fit in a line.
struct Mismatch {
    std::string what; ///< Such as "verdict" or "data drop".
    std::string expected;
    std::string came;
};

/// Compares the result of a run, as CaseRunner returns it, with what was expected.
std::vector<Mismatch> FindMismatches(const Expectation& expected, const Json& result);

} // namespace vant::host
