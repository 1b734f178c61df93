// Every call that a command makes on its host fails in turn.

#include "framework/interfaces/ClassIds.h"
#include "tests/torture/Life.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace vant::test {

namespace {

class HostFault : public ::testing::TestWithParam<Scenario> {};

INSTANTIATE_TEST_SUITE_P(Torture, HostFault, ::testing::ValuesIn(Scenarios()),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(HostFault, EachCallFailing_IsAnsweredAsDocumentedAndLeavesNothing) {
    for (const HRESULT code : {E_FAIL, E_UNEXPECTED, static_cast<HRESULT>(0x80041234)}) {
        SCOPED_TRACE(code);
        FailedCall fault(code);
        LiveThroughEach(GetParam(), fault);
    }
}

TEST_P(HostFault, EachCallThrowing_IsAnsweredAsDocumentedAndLeavesNothing) {
    ThrowingCall fault;
    LiveThroughEach(GetParam(), fault);
}

TEST(TortureScenarios, CoverEveryBuiltClass) {
    for (const ClassRow& row : classTable) {
        const auto covers = [&row](const Scenario& scenario) { return *scenario.classId == *row.classId; };
        EXPECT_EQ(std::any_of(Scenarios().begin(), Scenarios().end(), covers), row.built) << row.resource;
    }
}

} // namespace

} // namespace vant::test
