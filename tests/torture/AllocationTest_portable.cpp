// Every allocation in a command's life fails in turn, the host's own in its calls included.

#include "tests/torture/FailedAllocation.h"
#include "tests/torture/Life.h"

#include <gtest/gtest.h>

namespace vant::test {

namespace {

class AllocationFault : public ::testing::TestWithParam<Scenario> {};

INSTANTIATE_TEST_SUITE_P(Torture, AllocationFault, ::testing::ValuesIn(Scenarios()),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(AllocationFault, EachAllocationFailing_HasTheDocumentedOutcomeAndLeavesNothing) {
    FailedAllocation fault;
    LiveThroughEach(GetParam(), fault);
}

} // namespace

} // namespace vant::test
