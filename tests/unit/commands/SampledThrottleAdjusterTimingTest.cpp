#include "commands/SampledThrottleAdjuster.h"
#include "tests/support/Commands.h"
#include "tests/support/VirtualTime.h"
#include "tests/unit/commands/SpeedScript.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class SampledThrottleAdjusterInTime : public ::testing::Test {
protected:
    SampledThrottleAdjusterInTime() {
        SetStatus(CComVariant(LONG{8}));
        host.onCall = [this](const std::string& call) {
            speed.OnCall(call);
            if (call == m_lastWrite)
                host.fail["SetParameter"] = E_FAIL;
        };
    }

    void SetStatus(CComVariant status) { host.parameters[L"199236"].value = std::move(status); }
    /// Ends the adjustment by refusing this write.
    void FailAt(const std::string& write) { m_lastWrite = write; }
    /// Answers how long it took.
    std::int64_t Adjust() {
        const std::int64_t start = ClockMilliseconds();
        EXPECT_EQ(S_OK, CreateCommand<CSampledThrottleAdjuster>(
                            host, {{L"successTransition", L"good"}, {L"failTransition", L"bad"}})
                            ->Execute());
        return ClockMilliseconds() - start;
    }
    /// The last calls.
    Calls Last(std::ptrdiff_t count) const { return {host.calls.end() - count, host.calls.end()}; }
    std::ptrdiff_t StatusReads() const {
        return std::count(host.calls.begin(), host.calls.end(), "GetParameter(199236, 1)");
    }

    TestHost host;
    SpeedScript speed{host, L"110142"};

private:
    const VirtualTime m_time;
    std::string m_lastWrite;
};

TEST_F(SampledThrottleAdjusterInTime, SpeedInTheBandAndStatus8_SucceedsAfterOneWait) {
    EXPECT_EQ(5000, Adjust());
    EXPECT_EQ((Calls{"20"}), speed.Written());
    EXPECT_EQ((Calls{"GetParameter(199236, 1)", "QueryInterface(IParameterOld)", "get_Value()",
                     "SetTransition(good)"}),
              Last(4));
}

TEST_F(SampledThrottleAdjusterInTime, BothEndsOfTheBand_LieInIt) {
    for (const LONG end : {1400, 1600}) {
        host.transitions.clear();
        speed.Set({end});
        EXPECT_EQ(5000, Adjust()) << end;
        EXPECT_EQ(std::vector<std::wstring>{L"good"}, host.transitions) << end;
    }
}

TEST_F(SampledThrottleAdjusterInTime, Status7_FailsAtTheFirstReadingInTheBand) {
    SetStatus(CComVariant(LONG{7}));
    EXPECT_EQ(5000, Adjust());
    EXPECT_EQ((Calls{"20"}), speed.Written());
    EXPECT_EQ("SetTransition(bad)", host.calls.back());
    EXPECT_EQ(1, StatusReads());
}

TEST_F(SampledThrottleAdjusterInTime, StatusThatIsNotANumber_IsNot8) {
    SetStatus(CComVariant(CComBSTR(L"eight")));
    Adjust();
    EXPECT_EQ((std::vector<std::wstring>{L"bad"}), host.transitions);
}

TEST_F(SampledThrottleAdjusterInTime, StatusAsText_IsConverted) {
    SetStatus(CComVariant(CComBSTR(L"8")));
    Adjust();
    EXPECT_EQ((std::vector<std::wstring>{L"good"}), host.transitions);
}

TEST_F(SampledThrottleAdjusterInTime, SpeedTooLowTwice_StepsUpAndReadsTheStatusOnce) {
    speed.Set({1300, 1300, 1450});
    EXPECT_EQ(15'000, Adjust());
    EXPECT_EQ((Calls{"20", "25", "30"}), speed.Written());
    EXPECT_EQ(1, StatusReads());
    EXPECT_EQ((std::vector<std::wstring>{L"good"}), host.transitions);
}

TEST_F(SampledThrottleAdjusterInTime, SpeedAlwaysTooHigh_StepsBelow0WithoutLimit) {
    speed.Set({1700});
    FailAt("SetParameter(110142, 1, -980)");
    EXPECT_EQ(200 * 5000, Adjust());
    const Calls written = speed.Written();
    ASSERT_EQ(201u, written.size());
    EXPECT_EQ((Calls{"20", "15", "10", "5", "0", "-5"}), Calls(written.begin(), written.begin() + 6));
    EXPECT_EQ((Calls{"SetParameter(110142, 1, -980)", "SetTransition(bad)"}), Last(2));
    EXPECT_EQ(0, StatusReads());
    EXPECT_EQ(-975, host.parameters[L"110142"].value.Get().lVal) << "the last accepted command stays";
}

TEST_F(SampledThrottleAdjusterInTime, SpeedAlwaysTooLow_StepsUpWithoutLimit) {
    speed.Set({0});
    FailAt("SetParameter(110142, 1, 1020)");
    EXPECT_EQ(200 * 5000, Adjust());
    EXPECT_EQ((std::vector<std::wstring>{L"bad"}), host.transitions);
}

TEST_F(SampledThrottleAdjusterInTime, FailedFirstReading_IsNotTakenForOneInTheBand) {
    speed.Set({std::nullopt, 1500});
    EXPECT_EQ(10'000, Adjust());
    EXPECT_EQ((Calls{"20", "25"}), speed.Written());
    EXPECT_EQ(1, StatusReads());
}

TEST_F(SampledThrottleAdjusterInTime, LaterFailedReading_KeepsTheLastReading) {
    speed.Set({1700, std::nullopt, std::nullopt, 1500});
    EXPECT_EQ(20'000, Adjust());
    EXPECT_EQ((Calls{"20", "15", "10", "5"}), speed.Written());
}

TEST_F(SampledThrottleAdjusterInTime, DirectSession_IsClosedBeforeTheSuccessTransition) {
    speed.engine.protocolKind = 4;
    Adjust();
    EXPECT_EQ((Calls{"get_Value()", "CloseECM(7)", "SetTransition(good)"}), Last(3));
}

TEST_F(SampledThrottleAdjusterInTime, DirectSession_IsClosedAfterTheFailTransition) {
    speed.engine.protocolKind = 4;
    SetStatus(CComVariant(LONG{7}));
    Adjust();
    EXPECT_EQ((Calls{"get_Value()", "SetTransition(bad)", "CloseECM(7)"}), Last(3));
}

TEST_F(SampledThrottleAdjusterInTime, UnreadableStatus_ClosesTheSessionAndTakesTheFailTransition) {
    speed.engine.protocolKind = 4;
    host.parameters.erase(L"199236");
    Adjust();
    EXPECT_EQ((Calls{"GetParameter(199236, 1)", "CloseECM(7)", "SetTransition(bad)"}), Last(3));
}

TEST_F(SampledThrottleAdjusterInTime, StatusWithoutValue_IsAFailedRead) {
    speed.engine.protocolKind = 4; // the speed is no get_Value
    host.fail["get_Value"] = E_ACCESSDENIED;
    EXPECT_EQ(5000, Adjust());
    EXPECT_EQ((Calls{"get_Value()", "CloseECM(7)", "SetTransition(bad)"}), Last(3));
}

TEST_F(SampledThrottleAdjusterInTime, StatusWithoutParameterInterface_IsAFailedRead) {
    host.parameters[L"199236"].offersInterface = false;
    Adjust();
    EXPECT_EQ((Calls{"GetParameter(199236, 1)", "QueryInterface(IParameterOld)", "SetTransition(bad)"}),
              Last(3));
}

TEST_F(SampledThrottleAdjusterInTime, FailedSuccessTransition_TakesTheFailTransition) {
    host.fail["SetTransition"] = E_FAIL;
    Adjust();
    EXPECT_EQ((Calls{"SetTransition(good)", "SetTransition(bad)"}), Last(2));
}

TEST_F(SampledThrottleAdjusterInTime, FailedFailTransitionForTheStatus_IsIgnored) {
    SetStatus(CComVariant(LONG{7}));
    host.fail["SetTransition"] = E_FAIL;
    Adjust();
    EXPECT_EQ((Calls{"get_Value()", "SetTransition(bad)"}), Last(2));
}

TEST_F(SampledThrottleAdjusterInTime, ServicesThatAreNoEngineServices_TakeTheFailTransition) {
    host.engineServices = nullptr;
    EXPECT_EQ(5000, Adjust());
    EXPECT_EQ((Calls{"SetParameter(110142, 1, 20)", "QueryInterface(IECMServicesOld)", "SetTransition(bad)"}),
              host.calls);
}

} // namespace

} // namespace vant::test
