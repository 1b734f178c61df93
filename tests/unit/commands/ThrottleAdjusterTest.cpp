#include "commands/ThrottleAdjuster.h"

#include "tests/unit/commands/PersistentRun.h"
#include "tests/unit/commands/SpeedScript.h"

namespace vant::test {

namespace {

const Calls limitReads = {"GetParameter(13191, 1)", "QueryInterface(IParameterOld)", "get_Value()",
                          "GetParameter(13192, 1)", "QueryInterface(IParameterOld)", "get_Value()"};

Calls operator+(Calls calls, const Calls& more) {
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

/// All that happens before the first wait.
class ThrottleAdjuster : public PersistentRun<CThrottleAdjuster> {
protected:
    ThrottleAdjuster() { SetLimits(CComVariant(LONG{0}), CComVariant(LONG{100})); }

    void SetLimits(CComVariant lower, CComVariant upper) {
        host.parameters[L"13191"].value = std::move(lower);
        host.parameters[L"13192"].value = std::move(upper);
    }
    void Execute() { PersistentRun::Execute({{L"successTransition", L"good"}, {L"failTransition", L"bad"}}); }
    /// Runs a body that must end before it waits.
    void Run() {
        Execute();
        RunBody();
    }
    /// Runs the body as far as its first wait, which ends at once.
    void RunToFirstWait() {
        Execute();
        StopSilently();
        RunBody();
    }

    SpeedScript speed{host, L"13190"};
};

TEST_F(ThrottleAdjuster, BothTransitions_AreRequired) {
    for (const wchar_t* name : {L"successTransition", L"failTransition"}) {
        const auto incomplete = CreateCommand<CThrottleAdjuster>(host, {{name, L"x"}});
        EXPECT_EQ(E_UNEXPECTED, incomplete->Execute());
    }
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(ThrottleAdjuster, LowerLimit21_FailsAndWritesNothing) {
    SetLimits(CComVariant(LONG{21}), CComVariant(LONG{100}));
    Run();
    EXPECT_EQ(limitReads + Calls{"SetTransition(bad)"}, host.calls);
}

TEST_F(ThrottleAdjuster, UpperLimit19_FailsAndWritesNothing) {
    SetLimits(CComVariant(LONG{0}), CComVariant(LONG{19}));
    Run();
    EXPECT_EQ(limitReads + Calls{"SetTransition(bad)"}, host.calls);
}

TEST_F(ThrottleAdjuster, LimitsThatAreJustTheStart_AreNoFailure) {
    SetLimits(CComVariant(LONG{20}), CComVariant(LONG{20}));
    RunToFirstWait();
    EXPECT_EQ(limitReads + Calls{"SetParameter(13190, 1, 20)"}, host.calls);
}

TEST_F(ThrottleAdjuster, LimitsAsTexts_AreConverted) {
    SetLimits(CComVariant(CComBSTR(L"20")), CComVariant(CComBSTR(L"20.4")));
    RunToFirstWait();
    EXPECT_EQ((Calls{"20"}), speed.Written());
}

TEST_F(ThrottleAdjuster, LimitThatIsNotANumber_CountsAs0) {
    SetLimits(CComVariant(CComBSTR(L"none")), CComVariant(LONG{20}));
    RunToFirstWait();
    EXPECT_EQ((Calls{"20"}), speed.Written());
    host.ForgetCalls();
    host.Threads().ReleaseCallbacks();
    SetLimits(CComVariant(LONG{20}), CComVariant(CComBSTR(L"none")));
    Execute();
    EXPECT_EQ(E_FAIL, host.Threads().Run(HostThreads::firstCookie + 1));
    EXPECT_EQ(limitReads + Calls{"SetTransition(bad)"}, host.calls);
}

TEST_F(ThrottleAdjuster, ExtremeLimits_AreComparedSigned) {
    SetLimits(CComVariant(LONG{INT32_MIN}), CComVariant(LONG{INT32_MAX}));
    RunToFirstWait();
    EXPECT_EQ((Calls{"20"}), speed.Written());
}

TEST_F(ThrottleAdjuster, UnknownLowerLimit_FailsBeforeTheUpperIsRead) {
    host.parameters.erase(L"13191");
    Run();
    EXPECT_EQ((Calls{"GetParameter(13191, 1)", "SetTransition(bad)"}), host.calls);
}

TEST_F(ThrottleAdjuster, LimitWithoutValue_IsAFailedRead) {
    host.fail["get_Value"] = E_ACCESSDENIED;
    Run();
    EXPECT_EQ(Calls(limitReads.begin(), limitReads.begin() + 3) + Calls{"SetTransition(bad)"}, host.calls);
}

TEST_F(ThrottleAdjuster, LimitWithoutParameterInterface_IsAFailedRead) {
    host.parameters[L"13192"].offersInterface = false;
    Run();
    EXPECT_EQ(Calls(limitReads.begin(), limitReads.end() - 1) + Calls{"SetTransition(bad)"}, host.calls);
}

TEST_F(ThrottleAdjuster, FailedFailTransition_IsTriedOnceMore) {
    SetLimits(CComVariant(LONG{21}), CComVariant(LONG{100}));
    host.fail["SetTransition"] = E_FAIL;
    Run();
    EXPECT_EQ(limitReads + (Calls{"SetTransition(bad)", "SetTransition(bad)"}), host.calls);
}

TEST_F(ThrottleAdjuster, FailedWrite_TakesTheFailTransition) {
    host.fail["SetParameter"] = E_ACCESSDENIED;
    Run();
    EXPECT_EQ(limitReads + (Calls{"SetParameter(13190, 1, 20)", "SetTransition(bad)"}), host.calls);
}

TEST_F(ThrottleAdjuster, StoppedInTheFirstWait_ChoosesNoTransitionAndReadsNoSpeed) {
    RunToFirstWait();
    EXPECT_EQ(limitReads + Calls{"SetParameter(13190, 1, 20)"}, host.calls);
    EXPECT_EQ(20, host.parameters[L"13190"].value.Get().lVal);
}

} // namespace

} // namespace vant::test
