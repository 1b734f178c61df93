// Every call that a command makes on its host fails in turn.

#include "tests/torture/Life.h"

#include <gtest/gtest.h>

namespace vant::test {

namespace {

class HostFault : public ::testing::TestWithParam<Scenario> {};

INSTANTIATE_TEST_SUITE_P(Torture, HostFault, ::testing::ValuesIn(Scenarios()),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(HostFault, EachCallFailing_HasTheDocumentedOutcomeAndLeavesNothing) {
    for (const HRESULT code : {E_FAIL, E_UNEXPECTED, static_cast<HRESULT>(0x80041234)}) {
        SCOPED_TRACE(code);
        FailedCall fault(code);
        LiveThroughEach(GetParam(), fault);
    }
}

TEST_P(HostFault, EachCallThrowing_HasTheDocumentedOutcomeAndLeavesNothing) {
    ThrowingCall fault;
    LiveThroughEach(GetParam(), fault);
}

} // namespace

} // namespace vant::test
