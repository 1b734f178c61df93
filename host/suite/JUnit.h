#pragma once

#include "host/suite/CaseOutcome.h"
#include "host/suite/TestCase.h"

#include <string>
#include <vector>

namespace vant::host {

/// What came of test cases as JUnit XML, which servers of continuous integration read: a test suite for each
/// file. Times are those of the runs. `outcomes` are those of `cases`, in the same order.
std::string ToJUnit(const std::vector<TestCase>& cases, const std::vector<CaseOutcome>& outcomes);

} // namespace vant::host
