// Waits, time limits, tries, clean-up, measurements and called procedures, in virtual time, with the built
// module.

#include "host/procedure/ProcedureReader.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/runner/Runner.h"
#include "platform/Clock.h"
#include "tests/support/VirtualTime.h"
#include "tests/unit/host/BuiltModule.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace vant::host {

namespace {

constexpr const char* head = R"(
name = 'n'
start = 's'
[data]
message = 'm'
limit = 5
gear = 'neutral'
[conditions.warm]
all = [{ parameter = 'temperature', atLeast = 80 }]
[conditions.lost]
all = [{ parameter = 'lost', atLeast = 80 }]
[engine.parameters.temperature]
name = 'Coolant'
value = 20
units = 'deg'
behaviour = { ramp = { to = 90, over = 70 } }
[engine.parameters.lost]
value = 90
fails = { from = 5 }
[engine.parameters.valve]
value = 0
max = 100
[commands.open]
class = 'ParameterWriter'
properties = { parameterID = 'valve', value = '35' }
[commands.close]
class = 'ParameterWriter'
properties = { parameterID = 'valve', value = '0' }
[commands.burst]
class = 'ParameterWriter'
properties = { parameterID = 'valve', value = '500' }
[commands.ask]
class = 'ParameterLoader'
properties = { parameterID = 'nothing', dsLocation = 'asked' }
[commands.load]
class = 'ParameterLoader'
properties = { parameterID = 'temperature', dsLocation = 'loaded' }
[commands.loadLost]
class = 'ParameterLoader'
properties = { parameterID = 'lost', dsLocation = 'loaded' }
[commands.wrong]
class = 'Calculator'
properties = { operation = 'add', sourceA = 'x', sourceB = '1', dsResult = 'sum' }
[commands.count]
class = 'Timer'
properties = { length = '9', dsBase = 'left' }
[commands.guard]
class = 'StopConditionMonitor'
properties = { dsSetID = 'lost', dsMessageID = 'reason', failTransitionID = 'tripped' }
[commands.check]
class = 'StartConditionChecker'
properties = { dsSetID = 'warm', validTransitionID = 'yes', invalidTransitionID = 'no' }
[steps.good]
end = 'passed'
[steps.bad]
end = 'failed'
)";

struct Outcome {
    Verdict verdict{};
    std::string reason;
    std::vector<Record> records;

    std::vector<Record> Of(const std::string& operation) const {
        std::vector<Record> found;
        for (const Record& record : records) {
            if (record.operation == operation)
                found.push_back(record);
        }
        return found;
    }
    std::int64_t TimeOf(const std::string& operation) const {
        const auto found = Of(operation);
        return found.empty() ? -1 : found.front().time;
    }
    /// The steps that were entered, such as "s:0 good:5000".
    std::string Path() const {
        std::vector<std::string> steps;
        for (const Record& record : Of(event::StepEntered))
            steps.push_back(fmt::format("{}:{}", record.Text(argument::step), record.time));
        return fmt::format("{}", fmt::join(steps, " "));
    }
    std::string Executed() const {
        std::vector<std::string> ids;
        for (const Record& record : Of(event::CommandEnded))
            ids.push_back(record.command);
        return fmt::format("{}", fmt::join(ids, " "));
    }
};

Outcome RunProcedure(Procedure procedure, const RunSettings& settings, const std::string& abortAt) {
    Outcome outcome;
    const test::VirtualTime time;
    const LoadedModule module(test::BuiltModuleFile());
    {
        Journal journal;
        Runner runner(procedure, module, journal, settings);
        journal.Observe([&](const Record& record) {
            outcome.records.push_back(record);
            if (!abortAt.empty() && record.operation == abortAt)
                runner.Abort();
        });
        outcome.verdict = runner.Run();
        EXPECT_TRUE(runner.StillHeld().empty());
    }
    EXPECT_TRUE(module.CanUnload());
    outcome.reason = outcome.records.back().Text(argument::reason);
    return outcome;
}

Procedure Read(const std::string& toml) {
    Diagnostics found;
    Procedure procedure = ReadProcedure(toml, found);
    EXPECT_FALSE(found.HasErrors()) << found.Print("f");
    return procedure;
}

/// `top` are keys of the procedure, `steps` its tables.
Outcome RunSteps(const std::string& steps, const std::string& top = "", const RunSettings& settings = {},
                 const std::string& abortAt = "") {
    return RunProcedure(Read(top + head + steps), settings, abortAt);
}

TEST(RunLimits, Delay_WaitsAfterTheCommands) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['load']\ndelay = '2500ms'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.Path(), "s:0 good:2500");
    EXPECT_EQ(outcome.Of(event::WaitStarted).front().Text(argument::waitsFor), "a delay of 2.5 s");
}

TEST(RunLimits, Delay_IsOverWhenATransitionIsChosen) {
    const Outcome outcome =
        RunSteps("[steps.s]\nrun = ['guard']\nmayFail = ['Evaluate']\ndelay = '1min'\nnext = 'bad'\n"
                 "on = { tripped = 'good' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << "a guard that cannot read does not choose";
    const Outcome chosen = RunSteps("[steps.s]\nrun = ['check']\ndelay = '1min'\nnext = 'bad'\n"
                                    "on = { no = 'good', yes = 'bad' }\n");
    EXPECT_EQ(chosen.Path(), "s:0 good:0");
}

TEST(RunLimits, Until_WaitsForTheConditions) {
    const Outcome outcome =
        RunSteps("[steps.s]\nuntil = 'warm'\ntimeout = '2min'\ntimedOut = 'bad'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.Path(), "s:0 good:59500");
}

TEST(RunLimits, TimeoutWhileWaiting_LeadsToItsStepAndSaysWhatItWaitedFor) {
    const Outcome outcome =
        RunSteps("[steps.s]\nuntil = 'warm'\ntimeout = '7s'\ntimedOut = 'bad'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.Path(), "s:0 bad:7000");
    EXPECT_EQ(outcome.Of(event::TransitionFollowed).front().Text(argument::key), "timedOut");
    EXPECT_EQ(outcome.Of(event::StepTimedOut).front().Text(argument::reason),
              "it has waited for conditions 'warm' since 0:00");
}

TEST(RunLimits, TimeoutWithoutAStep_EndsFailed) {
    const Outcome outcome = RunSteps("[steps.s]\nuntil = 'warm'\ntimeout = '7s'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.reason, "the time of step 's' ran out: it has waited for conditions 'warm' since 0:00");
}

TEST(RunLimits, TimeoutOfAWaitThatCannotRead_IsAnError) {
    const Outcome outcome = RunSteps("[steps.s]\nuntil = 'warm'\nnext = 't'\n"
                                     "[steps.t]\nuntil = 'lost'\ntimeout = '10s'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(
        outcome.reason,
        "not everything was done: step 't' could not evaluate 'lost': cannot be read, 0x8007001E; otherwise "
        "failed: the time of step 't' ran out: it has waited for conditions 'lost' since "
        "0:59.500; the step has not been "
        "able to Evaluate 'lost' since 0:59.500: cannot be read, 0x8007001E");
}

TEST(RunLimits, WaitThatNeverEnds_IsAnErrorThatNamesWhatStillRuns) {
    const Outcome outcome =
        RunSteps("[steps.s]\nrun = ['guard']\nwait = 'transition'\nnext = 'bad'\non = { tripped = 'good' }\n",
                 "maxTime = '1min'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(
        outcome.reason,
        "the time limit of the procedure was reached in step 's': it has waited for a transition since 0:00; "
        "still running: 'guard'; 'guard' has not been able to Evaluate 'lost' since 0:05: cannot be read, "
        "0x8007001E");
    EXPECT_EQ(outcome.records.back().time, 60000);
}

TEST(RunLimits, Settings_ReplaceTheLimitsOfTheProcedure) {
    const char* const steps = "[steps.s]\ndelay = '1min'\nnext = 's'\n";
    EXPECT_EQ(RunSteps(steps, "maxTime = '1h'\n", {.maxTime = 90'000}).records.back().time, 90'000);
    const Outcome outcome = RunSteps(steps, "maxSteps = 5\n", {.maxSteps = 3});
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.Path(), "s:0 s:60000 s:120000");
    EXPECT_EQ(outcome.reason, "the limit of 3 steps was reached, before step 's'");
}

TEST(RunLimits, CircleWithoutTime_EndsAtTheLimitOfSteps) {
    const Outcome outcome = RunSteps("[steps.s]\nnext = 's'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.Of(event::StepEntered).size(), 10'000U);
}

TEST(RunLimits, TimeoutWhileACommandAdjusts_RefusesItsWrites) {
    const Procedure procedure = Read(R"(
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
properties = { successTransition = 'chosen', failTransition = 'chosen' }
[commands.write]
class = 'ParameterWriter'
properties = { parameterID = '110142', value = '0' }
[steps.s]
run = ['adjust']
timeout = '12s'
timedOut = 'late'
next = 'chosen'
[steps.late]
run = ['write']
next = 'good'
[steps.chosen]
end = 'failed'
[steps.good]
end = 'passed'
)");
    const Outcome outcome = RunProcedure(procedure, {}, "");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_GE(outcome.TimeOf(event::StepTimedOut), 12'000);
    EXPECT_EQ(outcome.Of(operation::SetParameter).back().result, S_OK);
}

TEST(RunLimits, Retry_TriesAFailedStepAgainAndForgetsItsFailures) {
    const std::string steps =
        "[steps.s]\nrun = ['loadLost']\nretry = { times = 3, after = '2s' }\nnext = 'good'\n";
    Procedure procedure = Read(head + steps);
    procedure.engine->parameters.at("lost").outage = Outage{0, 5000};
    const Outcome outcome = RunProcedure(procedure, {}, "");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 good:6000");
    EXPECT_EQ(outcome.Of(event::StepRetried).size(), 3U);
}

TEST(RunLimits, Retry_EndsAfterSoManyTimes) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['ask']\nretry = 2\nnext = 'bad'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.Executed(), "ask ask ask");
}

TEST(RunLimits, Retry_OnATransitionFollowsItOnlyInTheEnd) {
    const Outcome outcome =
        RunSteps("[steps.s]\nrun = ['check']\nretry = { times = 100, after = '1s', on = ['no'] }\n"
                 "on = { no = 'bad', yes = 'good' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.Path(), "s:0 good:60000");
}

TEST(RunLimits, Retry_StopsTheCommandsOfTheTryBefore) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['count']\nwait = 'end'\ntimeout = '2s'\nretry = "
                                     "1\ntimedOut = 'good'\nnext = 'bad'\n");
    EXPECT_EQ(outcome.Path(), "s:0 good:4000");
    EXPECT_EQ(outcome.Of(event::ThreadEnded).front().time, 2000);
}

TEST(RunLimits, Always_LeadsOnWhateverHappens) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['check']\nalways = 't'\n"
                                     "[steps.t]\nrun = ['ask']\nmayFail = ['ask']\nalways = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 t:0 good:0");
}

TEST(RunVerdict, FailedCall_MakesAPassAnError) {
    const char* const steps = "[steps.s]\nrun = ['ask']\nnext = 'good'\n";
    const Outcome outcome = RunSteps(steps);
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason, "not everything was done: 'ask' ParameterService.GetParameter nothing: not "
                              "found, 0x80070490; 'ask' has not "
                              "written 'asked'; otherwise passed: step 'good'");
    EXPECT_EQ(RunSteps(steps, "", {.allowFailedCalls = true}).verdict, Verdict::Passed);
}

TEST(RunVerdict, ExpectedFailure_LeavesThePass) {
    for (const char* const expected : {"ask", "GetParameter"}) {
        const Outcome outcome = RunSteps(std::string("[steps.s]\nrun = ['ask']\nmayFail = ['") + expected +
                                         "']\nnext = 'good'\n");
        // The command also leaves its result out.
        EXPECT_EQ(outcome.verdict, std::string(expected) == "ask" ? Verdict::Passed : Verdict::Error)
            << outcome.reason;
    }
}

TEST(RunVerdict, CommandThatDoesNotWriteItsResult_MakesAPassAnError) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['wrong']\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason,
              "not everything was done: 'wrong' has not written 'sum'; otherwise passed: step 'good'");
    const auto missing = outcome.Of(event::ResultMissing);
    ASSERT_EQ(missing.size(), 1U);
    EXPECT_EQ(missing.front().command, "wrong");
    EXPECT_EQ(missing.front().Text(argument::name), "dsResult");
}

TEST(RunVerdict, CommandThatRunsOnAndEndsWithoutItsResult_MakesAPassAnError) {
    const Outcome outcome = RunSteps("[commands.soak]\nclass = 'Timer'\n"
                                     "properties = { dsLength = 'gear', dsBase = 'left' }\n"
                                     "[steps.s]\nrun = ['soak']\nwait = 'end'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason,
              "not everything was done: 'soak' has not written 'left'; otherwise passed: step 'good'");
}

TEST(RunVerdict, EndError_IsThatVerdict) {
    EXPECT_EQ(RunSteps("[steps.s]\nend = 'error'\n").verdict, Verdict::Error);
}

TEST(Finally, RunsAfterEveryEnd) {
    const std::string top = "finally = ['close']\nmaxSteps = 2\n";
    const auto ends = [&](const std::string& steps, Verdict verdict, const std::string& abortAt = "") {
        const Outcome outcome = RunSteps("[steps.s]\nrun = ['open']\n" + steps, top, {}, abortAt);
        EXPECT_EQ(outcome.verdict, verdict) << outcome.reason;
        EXPECT_EQ(outcome.Executed().substr(outcome.Executed().rfind(' ') + 1), "close");
        EXPECT_TRUE(outcome.Of(event::ParameterLeft).empty());
        EXPECT_EQ(outcome.Of(event::FinallyStarted).size(), 1U);
    };
    ends("next = 'good'\n", Verdict::Passed);
    ends("next = 'bad'\n", Verdict::Failed);
    ends("next = 's'\n", Verdict::Error);
    ends("next = 't'\n[steps.t]\nrun = ['ask']\nnext = 'good'\n", Verdict::Error);
    ends("delay = '1min'\nnext = 'good'\n", Verdict::Aborted, event::WaitStarted);
    ends("delay = '3h'\nnext = 'good'\n", Verdict::Error);
}

TEST(Finally, FailureIsReportedAndOnlyAPassBecomesAnError) {
    const Outcome passed = RunSteps("[steps.s]\nnext = 'good'\n", "finally = ['burst', 'close']\n");
    EXPECT_EQ(passed.verdict, Verdict::Error);
    EXPECT_EQ(passed.reason,
              "step 'good'; the clean-up failed: 'burst' ParameterService.SetParameter valve: beyond "
              "the limits of the parameter, 0x8000000B; 'burst' failed: unspecified failure, 0x80004005");
    EXPECT_EQ(passed.Executed(), "burst close");
    EXPECT_EQ(RunSteps("[steps.s]\nnext = 'bad'\n", "finally = ['burst']\n").verdict, Verdict::Failed);
}

TEST(Finally, HasATimeLimitOfItsOwn) {
    const Outcome outcome =
        RunSteps("[steps.s]\nnext = 'good'\n", "finally = ['count', 'close']\nfinallyTime = '3s'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.records.back().time, 3000);
    EXPECT_EQ(outcome.reason, "step 'good'; the clean-up failed: its time of 3 s ran out");
}

TEST(Finally, WaitsForItsCommands) {
    const Outcome outcome = RunSteps("[steps.s]\nnext = 'good'\n", "finally = ['count']\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.records.back().time, 10000);
}

/// Cannot create one class.
class BrokenFactory : public CommandFactory {
public:
    BrokenFactory(const CommandFactory& factory, std::string broken)
        : m_factory(factory), m_broken(std::move(broken)) {}
    HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const override {
        if (className == m_broken)
            throw std::runtime_error("broken");
        return m_factory.Create(className, command);
    }
    bool CanUnload() const override { return m_factory.CanUnload(); }

private:
    const CommandFactory& m_factory;
    const std::string m_broken;
};

TEST(Finally, RunsWhenTheFactoryThrows_AndGoesOnAfterACommandThatCannotBeCreated) {
    const Procedure procedure = Read(std::string("finally = ['wrong', 'close']\n") + head +
                                     "[steps.s]\nrun = ['open', 'wrong']\nnext = 'good'\n");
    const test::VirtualTime time;
    const LoadedModule module(test::BuiltModuleFile());
    const BrokenFactory factory(module, "Calculator");
    std::vector<Record> records;
    Journal journal;
    journal.Observe([&records](const Record& record) { records.push_back(record); });
    Runner runner(procedure, factory, journal);
    EXPECT_THROW(runner.Run(), std::runtime_error);
    EXPECT_EQ(records.back().operation, event::ProcedureEnded);
    EXPECT_EQ(records.back().Text(argument::reason),
              "the module or the host failed; the clean-up failed: 'wrong' could not be run: broken");
    EXPECT_TRUE(std::none_of(records.begin(), records.end(),
                             [](const Record& each) { return each.operation == event::ParameterLeft; }));
}

TEST(Left, WrittenParametersThatWereNotPutBack_AreListed) {
    const Outcome outcome = RunSteps("[steps.s]\nrun = ['open']\nnext = 'good'\n");
    const auto left = outcome.Of(event::ParameterLeft);
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(ToJson(left.front())["arguments"].dump(), R"({"id":"valve","name":"","value":35,"was":0})");
    EXPECT_TRUE(
        RunSteps("[steps.s]\nrun = ['open', 'close']\nnext = 'good'\n").Of(event::ParameterLeft).empty());
}

Outcome RunMeasured(const std::string& limits) {
    return RunSteps("[measurements.heat]\ndata = 'loaded'\nunits = 'deg'\n" + limits +
                    "[steps.s]\ndelay = '10s'\nnext = 't'\n[steps.t]\nrun = ['load']\nnext = 'good'\n");
}

TEST(Measured, ValueWithinItsLimits_Passes) {
    const Outcome outcome = RunMeasured("atLeast = 20\natMost = 40\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    const auto measured = outcome.Of(event::Measured);
    ASSERT_EQ(measured.size(), 1U);
    EXPECT_EQ(ToJson(measured.front())["arguments"].dump(),
              R"({"name":"heat","data":"loaded","value":"30","units":"deg","limits":"atLeast 20, atMost 40",)"
              R"("verdict":"passed","at":10000,"step":"t","description":""})");
}

TEST(Measured, ValueOutsideItsLimits_FailsThePass) {
    const Outcome outcome = RunMeasured("above = 30\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.reason, "measurement 'heat' is \"30\" deg, required above 30");
}

TEST(Measured, EveryKindOfLimit_IsCompared) {
    for (const char* const holds : {"is = 30", "is = '30'", "isNot = 31", "below = 31", "oneOf = [1, 30]",
                                    "like = '3*'", "like = '?0'", "like = '*'", "optional = true"})
        EXPECT_EQ(RunMeasured(std::string(holds) + '\n').verdict, Verdict::Passed) << holds;
    for (const char* const fails : {"is = 31", "is = '3'", "isNot = 30", "below = 30", "oneOf = [1, '3']",
                                    "like = '3'", "like = '*1'", "is = true"})
        EXPECT_EQ(RunMeasured(std::string(fails) + '\n').verdict,
                  std::string(fails) == "is = true" ? Verdict::Passed : Verdict::Failed)
            << fails;
}

TEST(Measured, MeasurementThatWasNotMade_IsAnErrorUnlessItIsOptional) {
    const std::string steps = "[steps.s]\nnext = 'good'\n[measurements.heat]\ndata = 'gear'\n";
    const Outcome missing = RunSteps(steps);
    EXPECT_EQ(missing.verdict, Verdict::Error) << "the entry is only given";
    EXPECT_EQ(missing.reason, "measurement 'heat' was not made");
    const Outcome skipped = RunSteps(steps + "optional = true\n");
    EXPECT_EQ(skipped.verdict, Verdict::Passed);
    EXPECT_EQ(skipped.Of(event::Measured).front().Text(argument::verdict), "skipped");
}

TEST(Conditions, Any_HoldsIfOneDoes) {
    const std::string sets = "[conditions.either]\nany = [{ parameter = 'lost', above = 100 },"
                             " { data = 'gear', is = 'neutral' }]\n"
                             "[conditions.neither]\nany = [{ parameter = 'lost', above = 100 },"
                             " { data = 'gear', is = 'first' }]\n";
    EXPECT_EQ(RunSteps(sets + "[steps.s]\nuntil = 'either'\ntimeout = '1s'\nnext = 'good'\n").verdict,
              Verdict::Passed);
    const Outcome outcome = RunSteps(sets + "[steps.s]\nuntil = 'neither'\ntimeout = '1s'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.Of(operation::Evaluate).front().Text(argument::failed),
              "any of: parameter lost above 100; data gear is \"first\"");
}

TEST(Conditions, OtherEntry_IsCompared) {
    const auto holds = [](const std::string& condition) {
        return RunSteps("[conditions.c]\nall = [{ " + condition +
                        " }]\n[steps.s]\nuntil = 'c'\ntimeout = '1s'\nnext = 'good'\n")
                   .verdict == Verdict::Passed;
    };
    EXPECT_TRUE(holds("parameter = 'temperature', atLeast = { data = 'limit' }"));
    EXPECT_FALSE(holds("parameter = 'temperature', below = { data = 'limit' }"));
    EXPECT_TRUE(holds("data = 'gear', isNot = { data = 'message' }"));
    EXPECT_FALSE(holds("data = 'gear', is = { data = 'message' }"));
    EXPECT_FALSE(holds("data = 'gear', is = { data = 'missing' }"));
}

TEST(Conditions, WithoutAMessage_TellTheirDescription) {
    const Outcome outcome =
        RunSteps("[commands.say]\nclass = 'StartConditionChecker'\n"
                 "properties = { dsSetID = 'warm', dsFailMessage = 'said', invalidTransitionID = 'bad' }\n"
                 "[steps.s]\nrun = ['say']\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    std::string said;
    for (const Record& record : outcome.Of(event::DataLeft)) {
        if (record.Text(argument::name) == "said")
            said = record.Text(argument::value);
    }
    EXPECT_EQ(said, "parameter temperature atLeast 80");
}

/// A procedure that loads the coolant's temperature into "loaded" and adds it to what it is given as "base".
std::shared_ptr<const Procedure> Called(const std::string& end) {
    return std::make_shared<const Procedure>(Read(R"(
name = 'called'
start = 'a'
finally = ['note']
[data]
base = 0
[commands.load]
class = 'ParameterLoader'
properties = { parameterID = 'temperature', dsLocation = 'loaded' }
[commands.sum]
class = 'Calculator'
properties = { operation = 'add', dsSourceA = 'loaded', dsSourceB = 'base', dsResult = 'sum' }
[commands.note]
class = 'DataStoreWriter'
properties = { dsLocation = 'noted', value = 'yes' }
[steps.a]
run = ['load', 'sum']
delay = '10s'
next = 'e'
[steps.e]
end = ')" + end + "'\n"));
}

Outcome RunCalling(const std::string& end, const std::string& keys, const RunSettings& settings = {}) {
    Procedure procedure = Read(std::string(head) +
                               "[steps.s]\nprocedure = 'f'\narguments = { base = { data = 'limit' } }\n"
                               "results = { total = 'sum' }\nnext = 'good'\n" +
                               keys);
    procedure.steps.at("s").procedure->procedure = Called(end);
    return RunProcedure(std::move(procedure), settings, "");
}

TEST(CalledProcedure, TakesArgumentsAndReturnsResults) {
    const Outcome outcome = RunCalling("passed", "");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 a:0 e:10000 good:10000");
    const auto left = outcome.Of(event::DataLeft);
    EXPECT_EQ(std::count_if(left.begin(), left.end(),
                            [](const Record& record) {
                                return record.Text(argument::name) == "total" &&
                                       record.Text(argument::value) == "25";
                            }),
              1);
    EXPECT_EQ(outcome.Of(event::ProcedureEnded).size(), 2U);
    EXPECT_EQ(outcome.Executed(), "load sum note");
}

TEST(CalledProcedure, ThatFails_LeadsToFailedOrEndsTheCaller) {
    EXPECT_EQ(RunCalling("failed", "failed = 'good'\n").verdict, Verdict::Failed);
    EXPECT_EQ(RunCalling("failed", "failed = 'good'\nmayFail = ['f']\n").verdict, Verdict::Passed);
    const Outcome outcome = RunCalling("failed", "");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.reason, "procedure 'called' ended failed: step 'e' in step 's'");
}

TEST(CalledProcedure, ResultThatItDidNotWrite_IsNoMeasurement) {
    Procedure procedure = Read(std::string(head) + "[measurements.mine]\ndata = 'mine'\n"
                                                   "[steps.s]\nprocedure = 'f'\nresults = { mine = 'base' }\n"
                                                   "next = 'good'\n");
    procedure.steps.at("s").procedure->procedure = Called("passed");
    const Outcome outcome = RunProcedure(std::move(procedure), {}, "");
    EXPECT_EQ(outcome.reason, "measurement 'mine' was not made");
}

TEST(CalledProcedure, ThatPassesInALaterTry_LetsTheCallerPass) {
    Procedure procedure =
        Read(std::string(head) + "[steps.s]\nprocedure = 'f'\nretry = { times = 9, after = '10s' }\n"
                                 "next = 'good'\n");
    procedure.steps.at("s").procedure->procedure = std::make_shared<const Procedure>(Read(R"(
name = 'hot?'
start = 'a'
[measurements.heat]
data = 'heat'
atLeast = 40
[commands.load]
class = 'ParameterLoader'
properties = { parameterID = 'temperature', dsLocation = 'heat' }
[steps.a]
run = ['load']
next = 'e'
[steps.e]
end = 'passed'
)"));
    const Outcome outcome = RunProcedure(std::move(procedure), {}, "");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.Of(event::StepRetried).size(), 2U);
}

TEST(CalledProcedure, ThatCouldNotCleanUpWhenItWasEnded_KeepsTheCallerFromPassing) {
    Procedure procedure =
        Read(std::string(head) + "[steps.s]\nprocedure = 'f'\ntimeout = '2s'\ntimedOut = 'good'\n"
                                 "next = 'bad'\n");
    Procedure called = *Called("passed");
    called.commands.at("note").className.text = "CommandTerminator";
    called.commands.at("note").properties = {{{"commandID", {}}, {"load", {}}}};
    procedure.steps.at("s").procedure->procedure = std::make_shared<const Procedure>(std::move(called));
    const Outcome outcome = RunProcedure(std::move(procedure), {}, "");
    EXPECT_EQ(outcome.verdict, Verdict::Error) << outcome.reason;
}

TEST(CalledProcedure, ThatEndsInAnError_KeepsTheCallerFromPassing) {
    EXPECT_EQ(RunCalling("error", "failed = 'good'\n").verdict, Verdict::Error);
}

TEST(CalledProcedure, EndsWithTheTimeOfItsStepOrOfTheCaller) {
    const Outcome timedOut = RunCalling("passed", "timeout = '4s'\ntimedOut = 'good'\n");
    EXPECT_EQ(timedOut.Path(), "s:0 a:0 good:4000");
    EXPECT_EQ(timedOut.Executed(), "load sum note");
    const Outcome limited = RunCalling("passed", "", {.maxTime = 6000});
    EXPECT_EQ(limited.verdict, Verdict::Error);
    EXPECT_EQ(limited.records.back().time, 6000);
}

constexpr const char* cooling =
    "[conditions.cold]\nall = [{ parameter = 'temperature', below = 30 }]\n"
    "[commands.stop]\nclass = 'StopConditionMonitor'\n"
    "properties = { dsSetID = 'cold', dsMessageID = 'reason', failTransitionID = 'stop' }\n"
    "[commands.mean]\nclass = 'ParameterSampler'\n"
    "properties = { parameterID = 'valve', period = '1000', numSamples = '12',"
    " dsTarget = 'mean', completionTransition = 'done' }\n";

TEST(Stop, ChoiceOfAMonitor_IsFinalAndEndsEveryWait) {
    for (const char* const wait : {"wait = 'end'\n", "wait = 'transition'\n", "delay = '1min'\n"}) {
        const Outcome outcome =
            RunSteps(std::string(cooling) + "[steps.s]\nrun = ['stop', 'mean']\nnext = 'good'\n" + wait +
                     "on = { stop = 'bad', done = 'good' }\n");
        EXPECT_EQ(outcome.verdict, Verdict::Failed) << wait;
        EXPECT_EQ(outcome.Path(), "s:0 bad:9500") << wait;
    }
}

TEST(Stop, DuringACalledProcedure_EndsItWithItsCleanUp) {
    Procedure procedure = Read(std::string("on = { stop = 'bad' }\n") + head + cooling +
                               "[steps.s]\nrun = ['stop']\nnext = 't'\n"
                               "[steps.t]\nprocedure = 'f'\narguments = { base = 1 }\nnext = 'good'\n");
    Procedure called = *Called("passed");
    called.steps.at("a").delay = 60'000;
    procedure.steps.at("t").procedure->procedure = std::make_shared<const Procedure>(std::move(called));
    const Outcome outcome = RunProcedure(std::move(procedure), {}, "");
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 t:0 a:0 bad:9500");
    EXPECT_EQ(outcome.Executed(), "stop load sum note");
}

TEST(Stop, ChoiceOfAMonitor_IsNeitherRetriedNorOvertakenByATimeout) {
    const Outcome retried =
        RunSteps(std::string(cooling) +
                 "[steps.s]\nrun = ['stop', 'wrong']\nretry = 3\ndelay = '1min'\nnext = 'good'\n"
                 "on = { stop = 'bad' }\n");
    EXPECT_EQ(retried.Path(), "s:0 bad:9500");
    EXPECT_TRUE(retried.Of(event::StepRetried).empty());
}

TEST(Stop, DuringAnAlwaysStep_TakesEffectInTheNext) {
    const Outcome outcome =
        RunSteps(std::string(cooling) + "[steps.s]\nrun = ['stop']\ndelay = '10s'\nalways = 't'\n"
                                        "[steps.t]\ndelay = '1min'\nnext = 'good'\non = { stop = 'bad' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << outcome.reason;
    EXPECT_EQ(outcome.Path().substr(0, 13), "s:0 t:10000 b");
}

TEST(Stop, WithoutAWayOutOfTheStep_KeepsTheRunFromPassing) {
    const Outcome outcome =
        RunSteps(std::string(cooling) + "[steps.s]\nrun = ['stop']\ndelay = '15s'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_TRUE(outcome.reason.starts_with(
        "not everything was done: the monitor 'stop' chose 'stop', which leads nowhere from step 's'"))
        << outcome.reason;
}

TEST(Stop, FailSafeSet_StopsIfItCannotBeRead) {
    const std::string steps =
        "[commands.stop]\nclass = 'StopConditionMonitor'\n"
        "properties = { dsSetID = 'safe', dsMessageID = 'reason', failTransitionID = 'stop' }\n"
        "[steps.s]\nrun = ['stop']\ndelay = '1min'\nnext = 'good'\non = { stop = 'bad' }\n"
        "[conditions.safe]\nall = [{ parameter = 'lost', atLeast = 80 }]\n";
    const Outcome outcome = RunSteps(steps + "failSafe = true\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 bad:5000");
    EXPECT_EQ(RunSteps(steps).verdict, Verdict::Error);
}

TEST(Conditions, AnyThatCannotBeRead_ReturnsTheCode) {
    const Outcome outcome =
        RunSteps("[conditions.either]\nany = [{ data = 'gear', is = 'first' },"
                 " { parameter = 'lost', above = 100 }]\n"
                 "[steps.s]\ndelay = '6s'\nnext = 't'\n"
                 "[steps.t]\nuntil = 'either'\ntimeout = '1s'\ntimedOut = 'good'\nnext = 'bad'\n");
    EXPECT_EQ(outcome.Of(operation::Evaluate).front().result, HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason,
              "not everything was done: step 't' could not evaluate 'either': cannot be read, "
              "0x8007001E; otherwise passed: step 'good'");
}

TEST(Measured, ValueOfATryThatWasRepeated_IsNoMeasurement) {
    const Outcome outcome = RunSteps("[measurements.heat]\ndata = 'loaded'\n"
                                     "[steps.s]\nrun = ['load', 'check']\non = { no = 't', yes = 'good' }\n"
                                     "retry = { times = 1, on = ['no'] }\n"
                                     "[steps.t]\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << "the last try counts: " << outcome.reason;
    const Outcome stale =
        RunSteps("[measurements.heat]\ndata = 'loaded'\n"
                 "[steps.s]\nrun = ['load']\nnext = 't'\n"
                 "[steps.t]\nrun = ['loadLost']\nmayFail = ['loadLost']\ndelay = '6s'\nnext = 'u'\n"
                 "[steps.u]\nrun = ['loadLost']\nmayFail = ['loadLost']\nnext = 'good'\n");
    EXPECT_EQ(stale.verdict, Verdict::Error);
    EXPECT_EQ(stale.reason, "measurement 'heat' was not made");
}

TEST(Finally, AbortMeanwhile_IsTheVerdict) {
    const Outcome outcome =
        RunSteps("[steps.s]\nnext = 'good'\n", "finally = ['close']\n", {}, event::FinallyStarted);
    EXPECT_EQ(outcome.verdict, Verdict::Aborted);
    EXPECT_EQ(outcome.Executed(), "close");
    EXPECT_EQ(outcome.reason, "interrupted at the end; before that: step 'good'");
}

TEST(Tags, StandInTheJournal) {
    const Outcome outcome = RunSteps("[steps.s]\nnext = 'good'\n", "revision = 'B'\nauthor = 'N'\n",
                                     {.tags = {{"serial", "4711"}}});
    EXPECT_EQ(outcome.records.at(0).Text(argument::revision), "B");
    EXPECT_EQ(outcome.records.at(0).Text(argument::author), "N");
    EXPECT_EQ(outcome.records.at(1).operation, event::TagGiven);
    EXPECT_EQ(outcome.records.at(1).Text(argument::value), "4711");
}

} // namespace

} // namespace vant::host
