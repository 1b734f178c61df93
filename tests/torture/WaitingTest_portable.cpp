// The commands that wait, in virtual time: every call that they make on their host, and every allocation,
// fails in turn.

#include "framework/interfaces/ClassIds.h"
#include "tests/support/VirtualTime.h"
#include "tests/torture/FailedAllocation.h"
#include "tests/torture/Life.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace vant::test {

namespace {

class WaitingFault : public ::testing::TestWithParam<Scenario> {
    const VirtualTime m_time;
};

INSTANTIATE_TEST_SUITE_P(Torture, WaitingFault, ::testing::ValuesIn(WaitingScenarios()),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(WaitingFault, EachCallFailing_HasTheDocumentedOutcomeAndLeavesNothing) {
    for (const HRESULT code : {E_FAIL, E_UNEXPECTED, static_cast<HRESULT>(0x80041234)}) {
        SCOPED_TRACE(code);
        FailedCall fault(code);
        LiveThroughEach(GetParam(), fault);
    }
}

TEST_P(WaitingFault, EachCallThrowing_HasTheDocumentedOutcomeAndLeavesNothing) {
    ThrowingCall fault;
    LiveThroughEach(GetParam(), fault);
}

TEST_P(WaitingFault, EachAllocationFailing_HasTheDocumentedOutcomeAndLeavesNothing) {
    FailedAllocation fault;
    LiveThroughEach(GetParam(), fault);
}

TEST(TortureScenarios, CoverEveryClass) {
    for (const ClassRow& row : classTable) {
        const auto covers = [&row](const Scenario& scenario) { return *scenario.classId == *row.classId; };
        EXPECT_TRUE(std::any_of(Scenarios().begin(), Scenarios().end(), covers) ||
                    std::any_of(WaitingScenarios().begin(), WaitingScenarios().end(), covers))
            << row.resource;
    }
}

} // namespace

} // namespace vant::test
