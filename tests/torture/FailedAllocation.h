#pragma once

#include "tests/torture/AllocationFailure.h"
#include "tests/torture/Fault.h"

#include <optional>

namespace vant::test {

/// An allocation fails, in the command or in a call of the host. Portable platform only.
class FailedAllocation final : public Fault {
public:
    std::size_t Opportunities(const TestHost&) const override { return AllocationCount(); }
    std::optional<std::size_t> StruckCall() const override { return std::nullopt; }
    // The host does not expect it and throws.
    std::optional<HRESULT> Code() const override { return std::nullopt; }
    void Enable() override { m_counted.emplace(); }
    void Disable() override { m_counted.reset(); }

private:
    void DoPlan(TestHost&, std::size_t number) override { PlanAllocationFailure(number); }

    std::optional<AllocationsCounted> m_counted;
};

} // namespace vant::test
