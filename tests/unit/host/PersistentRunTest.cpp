// Procedures whose commands run on, in virtual time, with the commands of the built module.

#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "tests/unit/host/RunOutcome.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace vant::host {

namespace {

constexpr const char* head = R"(
name = 'n'
start = 's'
[data]
left = ''
message = 'm'
reason = ''
[conditions.notOne]
all = [{ data = 'left', isNot = '1', message = 'message' }]
[engine.parameters."100"]
value = 800
units = 'rpm'
[engine.parameters."13190"]
value = 0
[engine.parameters."13191"]
value = 0
[engine.parameters."13192"]
value = 2000000000
[engine.units]
rpm = '1/min'
[commands.long]
class = 'Timer'
properties = { length = '9', dsBase = 'left' }
[commands.short]
class = 'Timer'
properties = { length = '2', dsBase = 'other' }
[commands.guard]
class = 'StopConditionMonitor'
properties = { dsSetID = 'notOne', dsMessageID = 'reason', failTransitionID = 'tripped' }
[commands.show]
class = 'MonitorUpdater'
properties = { parameterIDs = '100', dsBaseName = 'm', monitorID = 'c' }
[commands.sample]
class = 'ParameterSampler'
properties = { parameterID = '100', period = '300', numSamples = '3', dsTarget = 'mean' }
[commands.choosing]
class = 'ParameterSampler'
[commands.choosing.properties]
parameterID = '100'
period = '300'
numSamples = '3'
dsTarget = 'mean'
completionTransition = 'good'
[commands.note]
class = 'DataStoreWriter'
properties = { dsLocation = 'noted', value = '1' }
[commands.fail]
class = 'CommandTerminator'
properties = { commandID = 'nobody' }
[commands.endLong]
class = 'CommandTerminator'
properties = { commandID = 'long' }
[steps.good]
end = 'passed'
[steps.bad]
end = 'failed'
)";

RunOutcome RunSteps(const std::string& steps, const RecordFilter& abortAt = {}) {
    return RunProcedure(ProcedureOf(head + steps), {.allowFailedCalls = true}, abortAt);
}

/// The commands whose threads have ended, sorted.
std::vector<std::string> Ended(const RunOutcome& outcome) {
    std::vector<std::string> ids;
    for (const Record& record : outcome.Of(event::ThreadEnded))
        ids.push_back(record.command);
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::string JournalOf(const RunOutcome& outcome) {
    std::ostringstream text;
    for (const Record& record : outcome.records)
        JsonLinesWriter{text}(record);
    return text.str();
}

TEST(PersistentRun, StepWithoutWait_ContinuesAtOnceAndTheEndStopsRunningCommands) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['long', 'show']\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "long"), 0);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "show"), 0);
    EXPECT_EQ(outcome.records.back().operation, event::ProcedureEnded);
}

TEST(PersistentRun, WaitForATransition_EndsWithTheChoiceWhileOthersRunOn) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nrun = ['long', 'choosing']\nwait = 'transition'\nnext = 'bad'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 900);
}

TEST(PersistentRun, WaitForATransition_EndsWithTheLastPersistentCommand) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nrun = ['short', 'sample']\nwait = 'transition'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 3000);
}

TEST(PersistentRun, WaitForATransition_IsOverAtOnceIfNothingRuns) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['note']\nwait = 'transition'\nnext = 'good'\n");
    EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 0);
}

TEST(PersistentRun, WaitForTheEnd_WaitsForTheCommandsOfThisStepAlone) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nrun = ['long']\nnext = 't'\n"
                 "[steps.t]\nrun = ['short', 'sample']\nwait = 'end'\nnext = 'good'\n");
    EXPECT_EQ(outcome.Path(), "s:0 t:0 good:3000");
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "long"), 3000);
}

TEST(PersistentRun, WaitForTheEnd_FollowsAChoiceAfterwards) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nrun = ['short', 'choosing']\nwait = 'end'\nnext = 'bad'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(operation::SetTransition), 900);
    EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 3000);
}

TEST(PersistentRun, FailedCommand_EndsTheStepWithoutWaiting) {
    for (const char* const wait : {"transition", "end"}) {
        const RunOutcome outcome = RunSteps(std::string("[steps.s]\nrun = ['long', 'fail']\nwait = '") +
                                            wait + "'\nnext = 'bad'\nfailed = 'good'\n");
        EXPECT_EQ(outcome.verdict, Verdict::Passed);
        EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 0);
    }
}

TEST(PersistentRun, MonitorOfConditions_ChoosesAndStopsItself) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nrun = ['long', 'guard']\nwait = 'transition'\nnext = 'bad'\n"
                 "on = { tripped = 'good' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(operation::PersistentCommandStopped), 8000);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "guard"), 8000);
}

TEST(PersistentRun, TerminatedCommand_EndsAtOnce) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nrun = ['long', 'endLong']\nwait = 'end'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(operation::TerminateCommand), 0);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "long"), 0);
}

TEST(PersistentRun, AbortWhileTheStepWaits_StopsEveryCommandAndCompletesTheJournal) {
    const RunOutcome outcome = RunSteps(
        "[steps.s]\nrun = ['long', 'show', 'guard']\nwait = 'end'\nnext = 'bad'\n", [](const Record& record) {
            return record.operation == operation::SetComponentProperty && record.time == 1000;
        });
    EXPECT_EQ(outcome.verdict, Verdict::Aborted);
    EXPECT_EQ(Ended(outcome), (std::vector<std::string>{"guard", "long", "show"}));
}

TEST(PersistentRun, TimerThatRunsItself_EndsAtTheLimits) {
    const RunOutcome outcome =
        RunSteps("[commands.self]\nclass = 'Timer'\n"
                 "properties = { length = '1', dsBase = 'left', tickCommandID = 'self' }\n"
                 "[steps.s]\nrun = ['self']\nwait = 'end'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    const auto refusals = [&](const char* operation, HRESULT code) {
        return std::count_if(outcome.records.begin(), outcome.records.end(), [&](const Record& record) {
            return record.operation == operation && record.result == code;
        });
    };
    EXPECT_GT(refusals(operation::RunCommandFromThread, HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW)), 0);
    EXPECT_GT(refusals(operation::RegisterCallback, HRESULT_FROM_WIN32(ERROR_MAX_THRDS_REACHED)), 0);
    // Of sixteen generations the last begins fifteen seconds after the first at most, and takes two seconds.
    EXPECT_EQ(outcome.TimeOf(event::ProcedureEnded), 17000);
}

TEST(PersistentRun, RunThatBreaksOff_HasStoppedEveryCommand) {
    const RunOutcome outcome = RunWithBrokenClass(
        ProcedureOf(std::string(head) + "[steps.s]\nrun = ['long', 'show', 'note']\nnext = 'good'\n"),
        "DataStoreWriter");
    EXPECT_EQ(Ended(outcome), (std::vector<std::string>{"long", "show"}));
}

TEST(PersistentRun, OneHundredRuns_HaveTheSameJournal) {
    const char* const steps =
        "[steps.s]\nrun = ['show', 'long', 'short', 'guard', 'sample']\nwait = 'transition'\n"
        "next = 'good'\non = { tripped = 'good' }\n";
    const std::string first = JournalOf(RunSteps(steps));
    EXPECT_GT(first.size(), 10000U);
    for (int i = 1; i < 100; ++i)
        ASSERT_EQ(JournalOf(RunSteps(steps)), first) << "run " << i;
}

} // namespace

} // namespace vant::host
