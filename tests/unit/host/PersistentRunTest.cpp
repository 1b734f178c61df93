// Procedures whose commands run on, in virtual time, with the commands of the built module.

#include "host/procedure/ProcedureReader.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/runner/Runner.h"
#include "tests/support/VirtualTime.h"
#include "tests/unit/host/BuiltModule.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string_view>

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

/// The result of one run.
struct Outcome {
    Verdict verdict{};
    std::vector<Record> records;
    std::string journal;

    std::int64_t TimeOf(const std::string& operation, const std::string& command = {}) const {
        const auto found = std::find_if(records.begin(), records.end(), [&](const Record& record) {
            return record.operation == operation && (command.empty() || record.command == command);
        });
        EXPECT_NE(found, records.end()) << operation << ' ' << command;
        return found == records.end() ? -1 : found->time;
    }
    std::int64_t TimeOfStep(const std::string& step) const {
        const auto found = std::find_if(records.begin(), records.end(), [&](const Record& record) {
            return record.operation == event::StepEntered && record.Text(argument::step) == step;
        });
        EXPECT_NE(found, records.end()) << step;
        return found == records.end() ? -1 : found->time;
    }
};

Outcome RunSteps(const std::string& steps) {
    Outcome outcome;
    std::ostringstream text;
    Diagnostics found;
    const Procedure procedure = ReadProcedure(head + steps, found);
    EXPECT_FALSE(found.HasErrors()) << found.Sorted().front().Text("f");
    const test::VirtualTime time;
    const LoadedModule module(test::BuiltModuleFile());
    {
        Journal journal;
        journal.Observe([&](const Record& record) { outcome.records.push_back(record); });
        journal.Observe(JsonLinesWriter(text));
        Runner runner(procedure, module, journal, {.allowFailedCalls = true});
        outcome.verdict = runner.Run();
        EXPECT_TRUE(runner.StillHeld().empty());
    }
    EXPECT_TRUE(module.CanUnload());
    outcome.journal = text.str();
    return outcome;
}

TEST(PersistentRun, StepWithoutWait_ContinuesAtOnceAndTheEndStopsRunningCommands) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['long', 'show']\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "long"), 0);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "show"), 0);
    EXPECT_EQ(outcome.records.back().operation, event::ProcedureEnded);
}

TEST(PersistentRun, WaitForATransition_EndsWithTheChoiceWhileOthersRunOn) {
    const Outcome outcome =
        RunSteps("[steps.s]\nrun = ['long', 'choosing']\nwait = 'transition'\nnext = 'bad'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 900);
}

TEST(PersistentRun, WaitForATransition_EndsWithTheLastPersistentCommand) {
    const Outcome outcome =
        RunSteps("[steps.s]\nrun = ['short', 'sample']\nwait = 'transition'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 3000);
}

TEST(PersistentRun, WaitForATransition_IsOverAtOnceIfNothingRuns) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['note']\nwait = 'transition'\nnext = 'good'\n");
    EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 0);
}

TEST(PersistentRun, WaitForTheEnd_WaitsForTheCommandsOfThisStepAlone) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['long']\nnext = 't'\n"
                                     "[steps.t]\nrun = ['short', 'sample']\nwait = 'end'\nnext = 'good'\n");
    EXPECT_EQ(outcome.TimeOfStep("good"), 3000);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "long"), 3000);
}

TEST(PersistentRun, WaitForTheEnd_FollowsAChoiceAfterwards) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['short', 'choosing']\nwait = 'end'\nnext = 'bad'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(operation::SetTransition), 900);
    EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 3000);
}

TEST(PersistentRun, FailedCommand_EndsTheStepWithoutWaiting) {
    for (const char* const wait : {"transition", "end"}) {
        const Outcome outcome = RunSteps(std::string("[steps.s]\nrun = ['long', 'fail']\nwait = '") + wait +
                                         "'\nnext = 'bad'\nfailed = 'good'\n");
        EXPECT_EQ(outcome.verdict, Verdict::Passed);
        EXPECT_EQ(outcome.TimeOf(event::TransitionFollowed), 0);
    }
}

TEST(PersistentRun, MonitorOfConditions_ChoosesAndStopsItself) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['long', 'guard']\nwait = 'transition'\nnext = 'bad'\n"
                                     "on = { tripped = 'good' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(operation::PersistentCommandStopped), 8000);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "guard"), 8000);
}

TEST(PersistentRun, TerminatedCommand_EndsAtOnce) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['long', 'endLong']\nwait = 'end'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.TimeOf(operation::TerminateCommand), 0);
    EXPECT_EQ(outcome.TimeOf(event::ThreadEnded, "long"), 0);
}

TEST(PersistentRun, AbortWhileTheStepWaits_StopsEveryCommandAndCompletesTheJournal) {
    Diagnostics found;
    const Procedure procedure = ReadProcedure(
        std::string(head) + "[steps.s]\nrun = ['long', 'show', 'guard']\nwait = 'end'\nnext = 'bad'\n",
        found);
    const test::VirtualTime time;
    const LoadedModule module(test::BuiltModuleFile());
    Journal journal;
    Runner runner(procedure, module, journal);
    std::vector<std::string> ended;
    journal.Observe([&](const Record& record) {
        if (record.operation == event::ThreadEnded)
            ended.push_back(record.command);
        if (record.operation == operation::SetComponentProperty && record.time == 1000)
            runner.Abort();
    });
    EXPECT_EQ(runner.Run(), Verdict::Aborted);
    std::sort(ended.begin(), ended.end());
    EXPECT_EQ(ended, (std::vector<std::string>{"guard", "long", "show"}));
    EXPECT_TRUE(runner.StillHeld().empty());
}

TEST(PersistentRun, AbortWhileTheRunnersThreadAdjusts_EndsWithTheNextWrite) {
    Diagnostics found;
    const Procedure procedure = ReadProcedure(R"(
name = 'n'
start = 's'
[engine.parameters."110142"]
value = 0
max = 100
[engine.parameters."101000"]
value = 800
[engine.parameters."199236"]
value = 8
[commands.adjust]
class = 'SampledThrottleAdjuster'
properties = { successTransition = 'bad', failTransition = 'bad' }
[steps.s]
run = ['adjust']
next = 'bad'
[steps.bad]
end = 'failed'
)",
                                              found);
    ASSERT_FALSE(found.HasErrors());
    const test::VirtualTime time;
    const LoadedModule module(test::BuiltModuleFile());
    Journal journal;
    Runner runner(procedure, module, journal);
    std::vector<HRESULT> writes;
    journal.Observe([&](const Record& record) {
        if (record.operation != operation::SetParameter)
            return;
        writes.push_back(*record.result);
        if (writes.size() == 3)
            runner.Abort();
    });
    EXPECT_EQ(runner.Run(), Verdict::Aborted);
    EXPECT_EQ(writes, (std::vector<HRESULT>{S_OK, S_OK, S_OK, E_ABORT}));
}

TEST(PersistentRun, TimerThatRunsItself_EndsAtTheLimits) {
    const Outcome outcome =
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

/// The built module, except that creating one class throws.
class BreakingFactory final : public CommandFactory {
public:
    HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const override {
        if (className == "DataStoreWriter")
            throw std::runtime_error("broken");
        return m_module.Create(className, command);
    }
    bool CanUnload() const override { return m_module.CanUnload(); }

private:
    const LoadedModule m_module{test::BuiltModuleFile()};
};

TEST(PersistentRun, RunThatBreaksOff_HasStoppedEveryCommand) {
    Diagnostics found;
    const Procedure procedure = ReadProcedure(
        std::string(head) + "[steps.s]\nrun = ['long', 'show', 'note']\nnext = 'good'\n", found);
    const test::VirtualTime time;
    const BreakingFactory factory;
    Journal journal;
    std::vector<std::string> ended;
    journal.Observe([&](const Record& record) {
        if (record.operation == event::ThreadEnded)
            ended.push_back(record.command);
    });
    Runner runner(procedure, factory, journal);
    EXPECT_THROW(runner.Run(), std::runtime_error);
    std::sort(ended.begin(), ended.end());
    EXPECT_EQ(ended, (std::vector<std::string>{"long", "show"}));
    EXPECT_TRUE(factory.CanUnload());
}

TEST(PersistentRun, OneHundredRuns_GiveTheSameJournal) {
    const char* const steps =
        "[steps.s]\nrun = ['show', 'long', 'short', 'guard', 'sample']\nwait = 'transition'\n"
        "next = 'good'\non = { tripped = 'good' }\n";
    const std::string first = RunSteps(steps).journal;
    EXPECT_GT(first.size(), 10000U);
    for (int i = 1; i < 100; ++i)
        ASSERT_EQ(RunSteps(steps).journal, first) << "run " << i;
}

} // namespace

} // namespace vant::host
