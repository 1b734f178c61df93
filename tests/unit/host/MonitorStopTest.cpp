// Monitors of conditions that stop a step, in virtual time, with the built module.

#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>
#include <string>

namespace vant::host {

namespace {

TEST(Stop, ChoiceOfAMonitor_IsFinalAndEndsEveryWait) {
    const std::string mean = "[commands.mean]\nclass = 'ParameterSampler'\n"
                             "properties = { parameterID = 'valve', period = '1000', numSamples = '12',"
                             " dsTarget = 'mean', completionTransition = 'done' }\n";
    for (const char* const wait : {"wait = 'end'\n", "wait = 'transition'\n", "delay = '1min'\n"}) {
        const RunOutcome outcome = RunSteps(mean + "[steps.s]\nrun = ['stop', 'mean']\nnext = 'good'\n" +
                                            wait + "on = { stop = 'bad', done = 'good' }\n");
        EXPECT_EQ(outcome.verdict, Verdict::Failed) << wait;
        EXPECT_EQ(outcome.Path(), "s:0 bad:9500") << wait;
    }
}

TEST(Stop, ChoiceOfAMonitor_IsNeitherRetriedNorOvertakenByATimeout) {
    const RunOutcome retried =
        RunSteps("[steps.s]\nrun = ['stop', 'wrong']\nretry = 3\ndelay = '1min'\nnext = 'good'\n"
                 "on = { stop = 'bad' }\n");
    EXPECT_EQ(retried.Path(), "s:0 bad:9500");
    EXPECT_TRUE(retried.Of(event::StepRetried).empty());
}

TEST(Stop, DuringAnAlwaysStep_TakesEffectInTheNext) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['stop']\ndelay = '10s'\nalways = 't'\n"
                                        "[steps.t]\ndelay = '1min'\nnext = 'good'\non = { stop = 'bad' }\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << outcome.reason;
    EXPECT_EQ(outcome.Path().substr(0, 13), "s:0 t:10000 b");
}

TEST(Stop, WithoutAWayOutOfTheStep_KeepsTheRunFromPassing) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['stop']\ndelay = '15s'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_TRUE(outcome.reason.starts_with(
        "not everything was done: the monitor 'stop' chose 'stop', which leads nowhere from step 's'"))
        << outcome.reason;
}

TEST(Stop, FailSafeSet_StopsIfItCannotBeRead) {
    const std::string steps =
        "[commands.watch]\nclass = 'StopConditionMonitor'\n"
        "properties = { dsSetID = 'safe', dsMessageID = 'reason', failTransitionID = 'stop' }\n"
        "[steps.s]\nrun = ['watch']\ndelay = '1min'\nnext = 'good'\non = { stop = 'bad' }\n"
        "[conditions.safe]\nall = [{ parameter = 'lost', atLeast = 80 }]\n";
    const RunOutcome outcome = RunSteps(steps + "failSafe = true\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 bad:5000");
    EXPECT_EQ(RunSteps(steps).verdict, Verdict::Error);
}

} // namespace

} // namespace vant::host
