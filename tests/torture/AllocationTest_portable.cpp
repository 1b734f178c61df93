// Every allocation in a command's life fails in turn, the host's own in its calls included.

#include "tests/torture/AllocationFailure.h"
#include "tests/torture/Life.h"

#include <gtest/gtest.h>

namespace vant::test {

namespace {

class FailedAllocation final : public Fault {
public:
    std::size_t Opportunities(const TestHost&) const override { return AllocationCount(); }
    // The host notes a call with its last allocation, so a call that failed so is not among them.
    std::size_t CallsBefore(const TestHost& host) const override { return host.CallCount(); }
    // The host does not expect it and throws.
    std::optional<HRESULT> Code() const override { return std::nullopt; }
    void Enable() override { m_counted.emplace(); }
    void Disable() override { m_counted.reset(); }

private:
    void DoPlan(TestHost&, std::size_t number) override { PlanAllocationFailure(number); }

    std::optional<AllocationsCounted> m_counted;
};

class AllocationFault : public ::testing::TestWithParam<Scenario> {};

INSTANTIATE_TEST_SUITE_P(Torture, AllocationFault, ::testing::ValuesIn(Scenarios()),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(AllocationFault, EachAllocationFailing_IsAnsweredAsDocumentedAndLeavesNothing) {
    FailedAllocation fault;
    LiveThroughEach(GetParam(), fault);
}

} // namespace

} // namespace vant::test
