#include "commands/SampledThrottleAdjuster.h"

#include "tests/support/Commands.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

/// All that happens before the first wait.
class SampledThrottleAdjuster : public ::testing::Test {
protected:
    HRESULT Adjust() {
        return CreateCommand<CSampledThrottleAdjuster>(
                   host, {{L"successTransition", L"good"}, {L"failTransition", L"bad"}})
            ->Execute();
    }

    TestHost host;
};

TEST_F(SampledThrottleAdjuster, BothTransitions_AreRequired) {
    for (const wchar_t* name : {L"successTransition", L"failTransition"})
        EXPECT_EQ(E_UNEXPECTED, CreateCommand<CSampledThrottleAdjuster>(host, {{name, L"x"}})->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(SampledThrottleAdjuster, FailedFirstWrite_TakesTheFailTransitionAtOnce) {
    EXPECT_EQ(S_OK, Adjust()); // there is no such parameter
    EXPECT_EQ((Calls{"SetParameter(110142, 1, 20)", "SetTransition(bad)"}), host.calls);
}

TEST_F(SampledThrottleAdjuster, FailedFailTransition_IsIgnored) {
    host.fail["SetTransition"] = E_FAIL;
    EXPECT_EQ(S_OK, Adjust());
    EXPECT_EQ((Calls{"SetParameter(110142, 1, 20)", "SetTransition(bad)"}), host.calls);
}

TEST_F(SampledThrottleAdjuster, Uninitialised_ExecutesAndDoesNothing) {
    EXPECT_EQ(S_OK, CreateCommand<CSampledThrottleAdjuster>(
                        {{L"successTransition", L"good"}, {L"failTransition", L"bad"}})
                        ->Execute());
}

} // namespace

} // namespace vant::test
