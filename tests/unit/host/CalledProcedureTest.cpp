// Steps that call a procedure, in virtual time, with the built module.

#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

/// A procedure that loads the coolant's temperature into "loaded" and adds it to what it is given as "base".
Procedure Called(const std::string& end) {
    return ProcedureOf(R"(
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
end = ')" + end + "'\n");
}

/// Runs the bench's procedure with `steps` and `top`; each step that calls a procedure calls `called`.
RunOutcome RunCalling(const std::string& steps, Procedure called, const RunSettings& settings = {},
                      const std::string& top = "") {
    Procedure procedure = ProcedureOf(top + warmUpBench + steps);
    const auto shared = std::make_shared<const Procedure>(std::move(called));
    for (auto& [name, step] : procedure.steps) {
        if (step.procedure)
            step.procedure->procedure = shared;
    }
    return RunProcedure(procedure, settings);
}

/// Passes the entry "limit" to the called procedure and takes its sum; `keys` are those of the step that
/// calls.
RunOutcome RunSumming(const std::string& end, const std::string& keys, const RunSettings& settings = {}) {
    return RunCalling("[steps.s]\nprocedure = 'f'\narguments = { base = { data = 'limit' } }\n"
                      "results = { total = 'sum' }\nnext = 'good'\n" +
                          keys,
                      Called(end), settings);
}

TEST(CalledProcedure, TakesArgumentsAndReturnsResults) {
    const RunOutcome outcome = RunSumming("passed", "");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 a:0 e:10000 good:10000");
    EXPECT_EQ(outcome.LeftIn("total"), std::vector<std::string>{"25"});
    EXPECT_EQ(outcome.Of(event::ProcedureEnded).size(), 2U);
    EXPECT_EQ(outcome.Executed(), "load sum note");
}

TEST(CalledProcedure, ThatFails_LeadsToFailedOrEndsTheCaller) {
    EXPECT_EQ(RunSumming("failed", "failed = 'good'\n").verdict, Verdict::Failed);
    EXPECT_EQ(RunSumming("failed", "failed = 'good'\nmayFail = ['f']\n").verdict, Verdict::Passed);
    const RunOutcome outcome = RunSumming("failed", "");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.reason, "procedure 'called' ended failed: step 'e' in step 's'");
}

TEST(CalledProcedure, ResultThatItDidNotWrite_IsNoMeasurement) {
    const RunOutcome outcome =
        RunCalling("[measurements.mine]\ndata = 'mine'\n"
                   "[steps.s]\nprocedure = 'f'\nresults = { mine = 'base' }\nnext = 'good'\n",
                   Called("passed"));
    EXPECT_EQ(outcome.reason, "measurement 'mine' was not made");
}

TEST(CalledProcedure, ThatPassesInALaterTry_LetsTheCallerPass) {
    const Procedure called = ProcedureOf(R"(
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
)");
    const RunOutcome outcome = RunCalling(
        "[steps.s]\nprocedure = 'f'\nretry = { times = 9, after = '10s' }\nnext = 'good'\n", called);
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.Of(event::StepRetried).size(), 2U);
}

TEST(CalledProcedure, ThatCouldNotCleanUpWhenItWasEnded_KeepsTheCallerFromPassing) {
    Procedure called = Called("passed");
    called.commands.at("note").className.text = "CommandTerminator";
    called.commands.at("note").properties = {{{"commandID", {}}, {"load", {}}}};
    const RunOutcome outcome = RunCalling(
        "[steps.s]\nprocedure = 'f'\ntimeout = '2s'\ntimedOut = 'good'\nnext = 'bad'\n", std::move(called));
    EXPECT_EQ(outcome.verdict, Verdict::Error) << outcome.reason;
}

TEST(CalledProcedure, ThatEndsInAnError_KeepsTheCallerFromPassing) {
    EXPECT_EQ(RunSumming("error", "failed = 'good'\n").verdict, Verdict::Error);
}

TEST(CalledProcedure, EndsWithTheTimeOfItsStepOrOfTheCaller) {
    const RunOutcome timedOut = RunSumming("passed", "timeout = '4s'\ntimedOut = 'good'\n");
    EXPECT_EQ(timedOut.Path(), "s:0 a:0 good:4000");
    EXPECT_EQ(timedOut.Executed(), "load sum note");
    const RunOutcome limited = RunSumming("passed", "", {.maxTime = 6000});
    EXPECT_EQ(limited.verdict, Verdict::Error);
    EXPECT_EQ(limited.records.back().time, 6000);
}

TEST(CalledProcedure, DuringWhichAMonitorOfTheCallerStops_EndsWithItsCleanUp) {
    Procedure called = Called("passed");
    called.steps.at("a").delay = 60'000;
    const RunOutcome outcome =
        RunCalling("[steps.s]\nrun = ['stop']\nnext = 't'\n"
                   "[steps.t]\nprocedure = 'f'\narguments = { base = 1 }\nnext = 'good'\n",
                   std::move(called), {}, "on = { stop = 'bad' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 t:0 a:0 bad:9500");
    EXPECT_EQ(outcome.Executed(), "stop load sum note");
}

} // namespace

} // namespace vant::host
