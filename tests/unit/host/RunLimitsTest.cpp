// Waits and limits of time and steps, in virtual time, with the built module.

#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

TEST(RunLimits, Delay_WaitsAfterTheCommands) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['load']\ndelay = '2500ms'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.Path(), "s:0 good:2500");
    EXPECT_EQ(outcome.Of(event::WaitStarted).front().Text(argument::waitsFor), "a delay of 2.5 s");
}

TEST(RunLimits, Delay_IsOverWhenATransitionIsChosen) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nrun = ['guard']\nmayFail = ['Evaluate']\ndelay = '1min'\nnext = 'bad'\n"
                 "on = { tripped = 'good' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << "a guard that cannot read does not choose";
    const RunOutcome chosen = RunSteps("[steps.s]\nrun = ['check']\ndelay = '1min'\nnext = 'bad'\n"
                                       "on = { no = 'good', yes = 'bad' }\n");
    EXPECT_EQ(chosen.Path(), "s:0 good:0");
}

TEST(RunLimits, Until_WaitsForTheConditions) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nuntil = 'warm'\ntimeout = '2min'\ntimedOut = 'bad'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.Path(), "s:0 good:59500");
}

TEST(RunLimits, TimeoutWhileWaiting_LeadsToItsStepAndSaysWhatItWaitedFor) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nuntil = 'warm'\ntimeout = '7s'\ntimedOut = 'bad'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.Path(), "s:0 bad:7000");
    EXPECT_EQ(outcome.Of(event::TransitionFollowed).front().Text(argument::key), "timedOut");
    EXPECT_EQ(outcome.Of(event::StepTimedOut).front().Text(argument::reason),
              "it has waited for conditions 'warm' since 0:00");
}

TEST(RunLimits, TimeoutWithoutAStep_EndsFailed) {
    const RunOutcome outcome = RunSteps("[steps.s]\nuntil = 'warm'\ntimeout = '7s'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.reason, "the time of step 's' ran out: it has waited for conditions 'warm' since 0:00");
}

TEST(RunLimits, TimeoutOfAWaitThatCannotRead_IsAnError) {
    const RunOutcome outcome = RunSteps("[steps.s]\nuntil = 'warm'\nnext = 't'\n"
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
    const RunOutcome outcome =
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
    const RunOutcome outcome = RunSteps(steps, "maxSteps = 5\n", {.maxSteps = 3});
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.Path(), "s:0 s:60000 s:120000");
    EXPECT_EQ(outcome.reason, "the limit of 3 steps was reached, before step 's'");
}

TEST(RunLimits, CircleWithoutTime_EndsAtTheLimitOfSteps) {
    const RunOutcome outcome = RunSteps("[steps.s]\nnext = 's'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.Of(event::StepEntered).size(), 10'000U);
}

} // namespace

} // namespace vant::host
