#include "commands/StopConditionMonitor.h"
#include "tests/support/ConditionSet.h"
#include "tests/unit/commands/TimedRun.h"

namespace vant::test {

namespace {

class StopConditionMonitorInTime : public TimedRun<CStopConditionMonitor> {
protected:
    StopConditionMonitorInTime() { Store(L"failure", L"too hot"); }

    void Start() {
        TimedRun::Start(
            {{L"dsSetID", L"set"}, {L"failTransitionID", L"failed"}, {L"dsMessageID", L"message"}});
    }
    void StopAfter(DWORD milliseconds) {
        Sleep(milliseconds);
        EXPECT_EQ(S_OK, Stop());
        Join();
    }

    ConditionSet conditions{host, L"set"};
};

TEST_F(StopConditionMonitorInTime, ConditionsHoldThroughout_EndsOnlyWhenStopped) {
    Start();
    StopAfter(10'100);
    EXPECT_EQ(41u, LoggedCalls("Evaluate").size());
    EXPECT_EQ(41u, LoggedCalls("GetValue(set)").size()); // The set is fetched anew every round.
    EXPECT_EQ(Calls{}, LoggedCalls("SetValue"));
    EXPECT_EQ(Calls{}, LoggedCalls("SetTransition"));
    EXPECT_EQ(10'100, ClockMilliseconds());
}

TEST_F(StopConditionMonitorInTime, ConditionFailsInTheFirstRound_TripsAtOnce) {
    conditions.answers = {VARIANT_FALSE};
    Start();
    Join();
    EXPECT_EQ((Calls{"0 GetValue(set)", "0 QueryInterface(IConditionSet)", "0 Evaluate()",
                     "0 GetFailureKey()", "0 GetValue(failure)", "0 SetValue(message, \"too hot\")",
                     "0 SetTransition(failed)", "0 PersistentCommandStopped()"}),
              log);
    EXPECT_EQ(0, ClockMilliseconds());
}

TEST_F(StopConditionMonitorInTime, ConditionFailsInALaterRound_TripsThere) {
    conditions.answers = {VARIANT_TRUE, VARIANT_TRUE, VARIANT_FALSE};
    Start();
    Join();
    EXPECT_EQ((Calls{"0 Evaluate()", "250 Evaluate()", "500 Evaluate()"}), LoggedCalls("Evaluate"));
    EXPECT_EQ(Calls{"500 SetTransition(failed)"}, LoggedCalls("SetTransition"));
    EXPECT_EQ("500 PersistentCommandStopped()", log.back());
    EXPECT_EQ(500, ClockMilliseconds());
}

TEST_F(StopConditionMonitorInTime, RoundThatFails_IsFollowedByTheNext) {
    conditions.answers = {VARIANT_TRUE, VARIANT_FALSE};
    Start();
    host.FailCall(3, E_ACCESSDENIED); // the first Evaluate
    Join();
    EXPECT_EQ((Calls{"0 Evaluate()", "250 Evaluate()"}), LoggedCalls("Evaluate"));
    EXPECT_EQ((std::vector<std::wstring>{L"failed"}), host.transitions);
}

TEST_F(StopConditionMonitorInTime, TransitionThatFails_LeavesItRunning) {
    conditions.answers = {VARIANT_FALSE};
    host.fail["SetTransition"] = E_ACCESSDENIED;
    Start();
    StopAfter(600);
    EXPECT_EQ((Calls{"0 SetTransition(failed)", "250 SetTransition(failed)", "500 SetTransition(failed)"}),
              LoggedCalls("SetTransition"));
    EXPECT_EQ(Calls{"600 PersistentCommandStopped()"}, LoggedCalls("PersistentCommandStopped"));
}

TEST_F(StopConditionMonitorInTime, LastingFault_IsMetEveryRound) {
    host.fail["GetValue"] = E_ACCESSDENIED;
    Start();
    StopAfter(1100);
    EXPECT_EQ((Calls{"0 GetValue(set)", "250 GetValue(set)", "500 GetValue(set)", "750 GetValue(set)",
                     "1000 GetValue(set)", "1100 PersistentCommandStopped()"}),
              log);
}

TEST_F(StopConditionMonitorInTime, ControllerThatFailsAtTheTrip_EndsItAllTheSame) {
    conditions.answers = {VARIANT_FALSE};
    host.fail["PersistentCommandStopped"] = E_ACCESSDENIED;
    Start();
    Join();
    EXPECT_EQ(0, ClockMilliseconds());
    EXPECT_EQ(Calls{"0 PersistentCommandStopped()"}, LoggedCalls("PersistentCommandStopped"));
}

TEST_F(StopConditionMonitorInTime, StoppedFromOutside_ChoosesNoTransition) {
    Start();
    StopAfter(10);
    EXPECT_TRUE(host.transitions.empty());
    EXPECT_EQ(10, ClockMilliseconds());
}

} // namespace

} // namespace vant::test
