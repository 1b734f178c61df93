#include "commands/ThrottleAdjuster.h"
#include "tests/unit/commands/SpeedScript.h"
#include "tests/unit/commands/TimedRun.h"

#include <algorithm>

namespace vant::test {

namespace {

class ThrottleAdjusterInTime : public TimedRun<CThrottleAdjuster> {
protected:
    ThrottleAdjusterInTime() {
        SetLimits(0, 100);
        const auto note = host.onCall;
        host.onCall = [this, note](const std::string& call) {
            note(call);
            speed.OnCall(call);
        };
    }

    void SetLimits(LONG lower, LONG upper) {
        host.parameters[L"13191"].value = CComVariant(lower);
        host.parameters[L"13192"].value = CComVariant(upper);
    }
    void Start() { TimedRun::Start({{L"successTransition", L"good"}, {L"failTransition", L"bad"}}); }
    /// The stop event is then signalled while the body does not wait.
    void StopDuringTheReading() {
        const auto note = host.onCall;
        host.onCall = [this, note](const std::string& call) {
            note(call);
            if (call == "GetParameter(101000, 1)")
                Stop();
        };
    }
    void RunToEnd() {
        Start();
        Join();
    }
    /// The last calls of the run.
    Calls Last(std::ptrdiff_t count) const { return {host.calls.end() - count, host.calls.end()}; }

    SpeedScript speed{host, L"13190"};
};

TEST_F(ThrottleAdjusterInTime, SpeedInTheBand_SucceedsAfterOneWait) {
    RunToEnd();
    EXPECT_EQ((Calls{"20"}), speed.Written());
    EXPECT_EQ((Calls{"0 SetParameter(13190, 1, 20)"}), LoggedCalls("SetParameter"));
    EXPECT_EQ("5000 SetTransition(good)", log.back());
    EXPECT_TRUE(host.stoppedCommands.empty());
}

TEST_F(ThrottleAdjusterInTime, BothEndsOfTheBand_LieInIt) {
    for (const LONG end : {1400, 1600}) {
        host.transitions.clear();
        host.ForgetCalls();
        speed.Set({end});
        RunToEnd();
        EXPECT_EQ((Calls{"20"}), speed.Written()) << end;
        EXPECT_EQ(std::vector<std::wstring>{L"good"}, host.transitions) << end;
    }
}

TEST_F(ThrottleAdjusterInTime, JustOutsideTheBand_StepsTowardsIt) {
    speed.Set({1399, 1601, 1500});
    RunToEnd();
    EXPECT_EQ((Calls{"20", "25", "20"}), speed.Written());
    EXPECT_EQ((Calls{"0 SetParameter(13190, 1, 20)", "5000 SetParameter(13190, 1, 25)",
                     "10000 SetParameter(13190, 1, 20)"}),
              LoggedCalls("SetParameter"));
    EXPECT_EQ("15000 SetTransition(good)", log.back());
}

TEST_F(ThrottleAdjusterInTime, SpeedAlwaysTooLow_FailsBeforeTheUpperLimitIsExceeded) {
    SetLimits(0, 40);
    speed.Set({1300});
    RunToEnd();
    EXPECT_EQ((Calls{"20", "25", "30", "35", "40"}), speed.Written());
    EXPECT_EQ("25000 SetTransition(bad)", log.back());
    EXPECT_EQ(40, host.parameters[L"13190"].value.Get().lVal);
}

TEST_F(ThrottleAdjusterInTime, SpeedAlwaysTooHigh_FailsBeforeTheLowerLimitIsExceeded) {
    SetLimits(11, 40);
    speed.Set({1700});
    RunToEnd();
    EXPECT_EQ((Calls{"20", "15"}), speed.Written());
    EXPECT_EQ("10000 SetTransition(bad)", log.back());
}

TEST_F(ThrottleAdjusterInTime, ReachingALimitExactly_IsNoFailure) {
    SetLimits(15, 25);
    speed.Set({1300, 1700, 1700, 1500});
    RunToEnd();
    EXPECT_EQ((Calls{"20", "25", "20", "15"}), speed.Written());
    EXPECT_EQ("SetTransition(good)", host.calls.back());
}

TEST_F(ThrottleAdjusterInTime, StoppedInTheThirdWait_ChoosesNoTransitionAndLeavesTheLastCommandInForce) {
    speed.Set({1300});
    Start();
    Sleep(12'000);
    EXPECT_EQ(S_OK, Stop());
    Join();
    EXPECT_EQ(12'000, ClockMilliseconds());
    EXPECT_EQ((Calls{"20", "25", "30"}), speed.Written());
    EXPECT_TRUE(host.transitions.empty());
    EXPECT_EQ(30, host.parameters[L"13190"].value.Get().lVal);
    EXPECT_EQ("12000 PersistentCommandStopped()", log.back());
}

TEST_F(ThrottleAdjusterInTime, StoppedDuringAReading_WritesTheNextCommandAndEndsAtItsWait) {
    speed.Set({1300});
    StopDuringTheReading();
    RunToEnd();
    EXPECT_EQ((Calls{"20", "25"}), speed.Written());
    EXPECT_EQ(5000, ClockMilliseconds());
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(ThrottleAdjusterInTime, StoppedDuringAReadingInTheBand_Succeeds) {
    StopDuringTheReading();
    RunToEnd();
    EXPECT_EQ(Calls{"5000 PersistentCommandStopped()"}, LoggedCalls("PersistentCommandStopped"));
    EXPECT_EQ("5000 SetTransition(good)", log.back());
}

TEST_F(ThrottleAdjusterInTime, FailedFirstReading_IsNotTakenForOneInTheBand) {
    speed.Set({std::nullopt, 1500});
    RunToEnd();
    EXPECT_EQ((Calls{"20", "25"}), speed.Written());
    EXPECT_EQ("10000 SetTransition(good)", log.back());
}

TEST_F(ThrottleAdjusterInTime, LaterFailedReading_KeepsTheLastReading) {
    speed.Set({1700, std::nullopt, 1500});
    RunToEnd();
    EXPECT_EQ((Calls{"20", "15", "10"}), speed.Written());
    EXPECT_EQ("SetTransition(good)", host.calls.back());
}

TEST_F(ThrottleAdjusterInTime, ServicesThatAreNoEngineServices_FailTheFirstReading) {
    host.engineServices = nullptr;
    RunToEnd();
    EXPECT_EQ((Calls{"QueryInterface(IECMServicesOld)", "SetTransition(bad)"}), Last(2));
}

TEST_F(ThrottleAdjusterInTime, DirectSession_IsClosedBeforeTheSuccessTransition) {
    speed.engine.protocolKind = 4;
    RunToEnd();
    EXPECT_EQ((Calls{"ReadParameter(101000, 1)", "get_ItemValue()", "CloseECM(7)", "SetTransition(good)"}),
              Last(4));
}

TEST_F(ThrottleAdjusterInTime, DirectSession_IsClosedAfterTheFailTransition) {
    speed.engine.protocolKind = 5;
    SetLimits(0, 20);
    speed.Set({1300});
    RunToEnd();
    EXPECT_EQ((Calls{"get_ItemValue()", "SetTransition(bad)", "CloseECM(7)"}), Last(3));
}

TEST_F(ThrottleAdjusterInTime, DirectSession_IsClosedBeforeTheNextWrite) {
    speed.engine.protocolKind = 4;
    speed.Set({1300, 1500});
    RunToEnd();
    EXPECT_EQ((Calls{"5000 CloseECM(7)", "10000 CloseECM(7)"}), LoggedCalls("CloseECM"));
    const auto close = std::find(log.begin(), log.end(), "5000 CloseECM(7)");
    EXPECT_EQ("5000 SetParameter(13190, 1, 25)", *(close + 1));
}

TEST_F(ThrottleAdjusterInTime, FailedSuccessTransition_TakesTheFailTransition) {
    host.fail["SetTransition"] = E_FAIL;
    RunToEnd();
    EXPECT_EQ((Calls{"SetTransition(good)", "SetTransition(bad)"}), Last(2));
}

TEST_F(ThrottleAdjusterInTime, FailedFailTransitionAtTheLimit_IsTriedOnceMoreWithTheSessionClosed) {
    speed.engine.protocolKind = 4;
    SetLimits(0, 20);
    speed.Set({1300});
    host.fail["SetTransition"] = E_FAIL;
    RunToEnd();
    EXPECT_EQ((Calls{"SetTransition(bad)", "CloseECM(7)", "SetTransition(bad)"}), Last(3));
}

TEST_F(ThrottleAdjusterInTime, FailedLaterWrite_TakesTheFailTransition) {
    speed.Set({1300});
    const auto note = host.onCall;
    host.onCall = [this, note](const std::string& call) {
        note(call);
        if (call == "SetParameter(13190, 1, 30)")
            host.fail["SetParameter"] = E_FAIL;
    };
    RunToEnd();
    EXPECT_EQ((Calls{"10000 SetParameter(13190, 1, 30)", "10000 SetTransition(bad)"}),
              Calls(log.end() - 2, log.end()));
    EXPECT_EQ(25, host.parameters[L"13190"].value.Get().lVal);
}

TEST_F(ThrottleAdjusterInTime, Limits_AreReadOnce) {
    speed.Set({1300, 1300, 1500});
    RunToEnd();
    EXPECT_EQ((Calls{"0 GetParameter(13191, 1)"}), LoggedCalls("GetParameter(13191"));
    EXPECT_EQ((Calls{"0 GetParameter(13192, 1)"}), LoggedCalls("GetParameter(13192"));
}

} // namespace

} // namespace vant::test
