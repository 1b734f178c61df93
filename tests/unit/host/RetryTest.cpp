// Tries of a step, in virtual time, with the built module.

#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

TEST(Retry, TriesAFailedStepAgainAndForgetsItsFailures) {
    Procedure procedure =
        ProcedureOf(warmUpBench + "[steps.s]\nrun = ['loadLost']\nretry = { times = 3, after = '2s' }\n"
                                  "next = 'good'\n");
    procedure.engine->parameters.at("lost").outage = Outage{0, 5000};
    const RunOutcome outcome = RunProcedure(procedure);
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 good:6000");
    EXPECT_EQ(outcome.Of(event::StepRetried).size(), 3U);
}

TEST(Retry, EndsAfterSoManyTimes) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['ask']\nretry = 2\nnext = 'bad'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.Executed(), "ask ask ask");
}

TEST(Retry, OnATransitionFollowsItOnlyInTheEnd) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nrun = ['check']\nretry = { times = 100, after = '1s', on = ['no'] }\n"
                 "on = { no = 'bad', yes = 'good' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed);
    EXPECT_EQ(outcome.Path(), "s:0 good:60000");
}

TEST(Retry, StopsTheCommandsOfTheTryBefore) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['count']\nwait = 'end'\ntimeout = '2s'\nretry = "
                                        "1\ntimedOut = 'good'\nnext = 'bad'\n");
    EXPECT_EQ(outcome.Path(), "s:0 good:4000");
    EXPECT_EQ(outcome.Of(event::ThreadEnded).front().time, 2000);
}

} // namespace

} // namespace vant::host
