// What decides on the verdict of a run, in virtual time, with the built module.

#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>
#include <string>

namespace vant::host {

namespace {

TEST(RunVerdict, Always_LeadsOnWhateverHappens) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['check']\nalways = 't'\n"
                                        "[steps.t]\nrun = ['ask']\nmayFail = ['ask']\nalways = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.Path(), "s:0 t:0 good:0");
}

TEST(RunVerdict, FailedCall_MakesAPassAnError) {
    const char* const steps = "[steps.s]\nrun = ['ask']\nnext = 'good'\n";
    const RunOutcome outcome = RunSteps(steps);
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason, "not everything was done: 'ask' ParameterService.GetParameter nothing: not "
                              "found, 0x80070490; 'ask' has not "
                              "written 'asked'; otherwise passed: step 'good'");
    EXPECT_EQ(RunSteps(steps, "", {.allowFailedCalls = true}).verdict, Verdict::Passed);
}

TEST(RunVerdict, ExpectedFailure_LeavesThePass) {
    for (const char* const expected : {"ask", "GetParameter"}) {
        const RunOutcome outcome = RunSteps(std::string("[steps.s]\nrun = ['ask']\nmayFail = ['") + expected +
                                            "']\nnext = 'good'\n");
        // The command also leaves its result out.
        EXPECT_EQ(outcome.verdict, std::string(expected) == "ask" ? Verdict::Passed : Verdict::Error)
            << outcome.reason;
    }
}

TEST(RunVerdict, CommandThatDoesNotWriteItsResult_MakesAPassAnError) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['wrong']\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason,
              "not everything was done: 'wrong' has not written 'sum'; otherwise passed: step 'good'");
    const auto missing = outcome.Of(event::ResultMissing);
    ASSERT_EQ(missing.size(), 1U);
    EXPECT_EQ(missing.front().command, "wrong");
    EXPECT_EQ(missing.front().Text(argument::name), "dsResult");
}

TEST(RunVerdict, CommandThatRunsOnAndEndsWithoutItsResult_MakesAPassAnError) {
    const RunOutcome outcome = RunSteps("[commands.soak]\nclass = 'Timer'\n"
                                        "properties = { dsLength = 'gear', dsBase = 'left' }\n"
                                        "[steps.s]\nrun = ['soak']\nwait = 'end'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason,
              "not everything was done: 'soak' has not written 'left'; otherwise passed: step 'good'");
}

TEST(RunVerdict, EndError_IsThatVerdict) {
    EXPECT_EQ(RunSteps("[steps.s]\nend = 'error'\n").verdict, Verdict::Error);
}

} // namespace

} // namespace vant::host
