// Every allocation in a use of ECMParameter2 fails in turn, the host's own in its calls included.

#include "tests/torture/EcmParameterUse.h"
#include "tests/torture/FailedAllocation.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace vant::test {

namespace {

class EcmParameterAllocation : public ::testing::TestWithParam<LONG> {
protected:
    /// Uses a fresh engine once for each allocation, which fails, and shows each use to `expect`.
    template <class Use, class Expect>
    static void ForEachAllocation(Use use, Expect expect) {
        std::size_t allocations = 0;
        for (std::size_t number = 0; number <= allocations; ++number) {
            SCOPED_TRACE(::testing::Message() << "struck at " << number << " of " << allocations);
            EngineForOneUse engine(GetParam());
            FailedAllocation fault;
            const auto outcome = use(engine, fault, number);
            if (number == 0)
                allocations = fault.Opportunities(engine.host);
            expect(engine, number, outcome);
        }
        EXPECT_GT(allocations, 0U);
    }
};

INSTANTIATE_TEST_SUITE_P(Torture, EcmParameterAllocation, ::testing::Values(4, 0), [](const auto& instance) {
    return instance.param == 4 ? "Direct" : "ThroughDataService";
});

TEST_P(EcmParameterAllocation, Read_EachFailing_GivesTheValueOrAFailureAndLeavesNothing) {
    ForEachAllocation(&ReadOnce, [](const EngineForOneUse& engine, std::size_t number, Reading reading) {
        if (number == 0 || reading.code == S_OK)
            EXPECT_EQ(reading, (Reading{S_OK, GetParam() == 4 ? 750 : 800}));
        else
            EXPECT_EQ(reading.value, untouched);
        const auto count = [&engine](const char* call) {
            return std::count(engine.host.calls.begin(), engine.host.calls.end(), call);
        };
        EXPECT_LE(count("CloseECM(7)"), count("Register()"));
    });
}

TEST_P(EcmParameterAllocation, GuardedWrite_EachFailing_WritesOrFailsAndLeavesNothing) {
    ForEachAllocation(&WriteOnce, [](EngineForOneUse& engine, std::size_t number, HRESULT code) {
        const VARIANT& written = engine.host.parameters[L"190"].value.Get();
        ASSERT_EQ(written.vt, VT_I4);
        EXPECT_TRUE(number != 0 || code == S_OK);
        EXPECT_TRUE(code != S_OK || written.lVal == 5);
    });
}

} // namespace

} // namespace vant::test
