#include "commands/StopConditionMonitor.h"

#include "tests/support/ConditionSet.h"
#include "tests/unit/commands/PersistentRun.h"

namespace vant::test {

namespace {

/// Its body can be run without Execute.
class COpenMonitor : public CStopConditionMonitor {
public:
    using CStopConditionMonitor::ExecutePersistent;
};

class StopConditionMonitor : public PersistentRun<CStopConditionMonitor> {
protected:
    StopConditionMonitor() { Store(L"failure", L"too hot"); }

    void Execute() {
        PersistentRun::Execute(
            {{L"dsSetID", L"set"}, {L"failTransitionID", L"failed"}, {L"dsMessageID", L"message"}});
    }
    /// One round alone, with the stop signalled beforehand.
    void RunOneRound() {
        Execute();
        StopSilently();
        RunBody();
    }

    ConditionSet conditions{host, L"set"};
};

const Calls readAndEvaluate = {"GetValue(set)", "QueryInterface(IConditionSet)", "Evaluate()"};

Calls operator+(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(StopConditionMonitor, ConditionsHold_NothingIsWritten) {
    RunOneRound();
    EXPECT_EQ(readAndEvaluate, host.calls);
}

TEST_F(StopConditionMonitor, ConditionFailsInTheFirstRound_TripsBeforeAnyWait) {
    conditions.answers = {VARIANT_FALSE};
    Execute();
    RunBody(); // It would not end without its own stop.
    EXPECT_EQ(readAndEvaluate +
                  (Calls{"GetFailureKey()", "GetValue(failure)", "SetValue(message, \"too hot\")",
                         "SetTransition(failed)", "PersistentCommandStopped()"}),
              host.calls);
}

TEST_F(StopConditionMonitor, AnyOtherFlag_CountsAsFailedCondition) {
    conditions.answers = {1};
    Execute();
    RunBody();
    EXPECT_EQ((std::vector<std::wstring>{L"failed"}), host.transitions);
}

TEST_F(StopConditionMonitor, Trip_TellsTheControllerOfTheCommand) {
    conditions.answers = {VARIANT_FALSE};
    Execute();
    RunBody();
    CComPtr<IVantPersistentCommand> persistent;
    ASSERT_EQ(S_OK, command.QueryInterface(&persistent));
    EXPECT_EQ(std::vector<IVantPersistentCommand*>{persistent.Get()}, host.stoppedCommands);
}

TEST_F(StopConditionMonitor, Message_KeepsItsType) {
    conditions.answers = {VARIANT_FALSE};
    host.dataStore[L"failure"] = CComVariant(2.5);
    Execute();
    RunBody();
    EXPECT_EQ("2.5", Stored(L"message"));
}

TEST_F(StopConditionMonitor, EvaluateThatFails_ChoosesNothing) {
    conditions.answers = {VARIANT_FALSE};
    host.fail["Evaluate"] = E_ACCESSDENIED;
    RunOneRound();
    EXPECT_EQ(readAndEvaluate, host.calls);
}

TEST_F(StopConditionMonitor, TransitionThatFails_ReportsNoStop) {
    conditions.answers = {VARIANT_FALSE};
    host.fail["SetTransition"] = E_ACCESSDENIED;
    RunOneRound();
    EXPECT_EQ("SetTransition(failed)", host.calls.back());
    EXPECT_EQ("\"too hot\"", Stored(L"message"));
}

TEST_F(StopConditionMonitor, EveryCallThatFails_EndsItsRoundThere) {
    conditions.answers = {VARIANT_FALSE};
    for (std::size_t number = 1; number <= 7; ++number) {
        host.Threads().ForgetRegistrations();
        Execute();
        StopSilently();
        host.FailCall(number, E_ACCESSDENIED);
        RunBody();
        host.FailCall(0, S_OK);
        EXPECT_EQ(number, host.CallCount());
    }
}

TEST_F(StopConditionMonitor, EmptyFailTransition_IsPassedOn) {
    conditions.answers = {VARIANT_FALSE};
    PersistentRun::Execute({{L"dsSetID", L"set"}, {L"failTransitionID", L""}, {L"dsMessageID", L"message"}});
    RunBody();
    EXPECT_EQ((std::vector<std::wstring>{L""}), host.transitions);
}

TEST_F(StopConditionMonitor, FailTransitionThatWasNotGiven_IsPassedOnAsNull) {
    conditions.answers = {VARIANT_FALSE};
    const auto monitor =
        CreateCommand<COpenMonitor>(host, {{L"dsSetID", L"set"}, {L"dsMessageID", L"message"}});
    static_cast<COpenMonitor*>(monitor.Get())->ExecutePersistent();
    EXPECT_EQ(readAndEvaluate +
                  (Calls{"GetFailureKey()", "GetValue(failure)", "SetValue(message, \"too hot\")",
                         "SetTransition(null)", "PersistentCommandStopped()"}),
              host.calls);
}

TEST_F(StopConditionMonitor, EntryThatHoldsNoSet_EndsTheRound) {
    Store(L"set", L"no object");
    RunOneRound();
    EXPECT_EQ(Calls{"GetValue(set)"}, host.calls);
}

TEST_F(StopConditionMonitor, ReleasesTheSetEveryRound) {
    RunOneRound();
    const LONG held = host.OutstandingReferences();
    host.Threads().ForgetRegistrations();
    EXPECT_EQ(S_OK, command->Execute());
    StopSilently();
    RunBody();
    EXPECT_EQ(held, host.OutstandingReferences());
}

TEST_F(StopConditionMonitor, AllThreeProperties_AreRequired) {
    for (const Properties& properties : {Properties{{L"failTransitionID", L""}, {L"dsMessageID", L""}},
                                         Properties{{L"dsSetID", L""}, {L"dsMessageID", L""}},
                                         Properties{{L"dsSetID", L""}, {L"failTransitionID", L""}}})
        EXPECT_EQ(E_UNEXPECTED, CreateCommand<CStopConditionMonitor>(host, properties)->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

} // namespace

} // namespace vant::test
