#pragma once

#include "host/record/Json.h"
#include "host/suite/CaseOutcome.h"
#include "host/suite/TestCase.h"

#include <vector>

namespace vant::host {

/// What came of test cases, for programs; docs/testing.md describes it. `outcomes` are those of `cases`, in
/// the same order. `coverage`, `faults`: null if not asked for.
Json SuiteToJson(const std::vector<TestCase>& cases, const std::vector<CaseOutcome>& outcomes,
                 Json coverage = nullptr, Json faults = nullptr);

} // namespace vant::host
