// The clean-up at the end of a run and what it leaves, in virtual time, with the built module.

#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>
#include <string>

namespace vant::host {

namespace {

TEST(Finally, RunsAfterEveryEnd) {
    const std::string top = "finally = ['close']\nmaxSteps = 2\n";
    const auto ends = [&](const std::string& steps, Verdict verdict, const RecordFilter& abortAt = {}) {
        const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['open']\n" + steps, top, {}, abortAt);
        EXPECT_EQ(outcome.verdict, verdict) << outcome.reason;
        EXPECT_EQ(outcome.Executed().substr(outcome.Executed().rfind(' ') + 1), "close");
        EXPECT_TRUE(outcome.Of(event::ParameterLeft).empty());
        EXPECT_EQ(outcome.Of(event::FinallyStarted).size(), 1U);
    };
    ends("next = 'good'\n", Verdict::Passed);
    ends("next = 'bad'\n", Verdict::Failed);
    ends("next = 's'\n", Verdict::Error);
    ends("next = 't'\n[steps.t]\nrun = ['ask']\nnext = 'good'\n", Verdict::Error);
    ends("delay = '1min'\nnext = 'good'\n", Verdict::Aborted, IsOperation(event::WaitStarted));
    ends("delay = '3h'\nnext = 'good'\n", Verdict::Error);
}

TEST(Finally, FailureIsReportedAndOnlyAPassBecomesAnError) {
    const RunOutcome passed = RunSteps("[steps.s]\nnext = 'good'\n", "finally = ['burst', 'close']\n");
    EXPECT_EQ(passed.verdict, Verdict::Error);
    EXPECT_EQ(passed.reason,
              "step 'good'; the clean-up failed: 'burst' ParameterService.SetParameter valve: beyond "
              "the limits of the parameter, 0x8000000B; 'burst' failed: unspecified failure, 0x80004005");
    EXPECT_EQ(passed.Executed(), "burst close");
    EXPECT_EQ(RunSteps("[steps.s]\nnext = 'bad'\n", "finally = ['burst']\n").verdict, Verdict::Failed);
}

TEST(Finally, HasATimeLimitOfItsOwn) {
    const RunOutcome outcome =
        RunSteps("[steps.s]\nnext = 'good'\n", "finally = ['count', 'close']\nfinallyTime = '3s'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.records.back().time, 3000);
    EXPECT_EQ(outcome.reason, "step 'good'; the clean-up failed: its time of 3 s ran out");
}

TEST(Finally, WaitsForItsCommands) {
    const RunOutcome outcome = RunSteps("[steps.s]\nnext = 'good'\n", "finally = ['count']\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.records.back().time, 10000);
}

TEST(Finally, RunsWhenTheFactoryThrows_AndGoesOnAfterACommandThatCannotBeCreated) {
    const RunOutcome outcome =
        RunWithBrokenClass(ProcedureOf("finally = ['wrong', 'close']\n" + warmUpBench +
                                       "[steps.s]\nrun = ['open', 'wrong']\nnext = 'good'\n"),
                           "Calculator");
    EXPECT_EQ(outcome.records.back().operation, event::ProcedureEnded);
    EXPECT_EQ(outcome.reason,
              "the module or the host failed; the clean-up failed: 'wrong' could not be run: broken");
    EXPECT_TRUE(outcome.Of(event::ParameterLeft).empty());
}

TEST(Finally, AbortMeanwhile_IsTheVerdict) {
    const RunOutcome outcome = RunSteps("[steps.s]\nnext = 'good'\n", "finally = ['close']\n", {},
                                        IsOperation(event::FinallyStarted));
    EXPECT_EQ(outcome.verdict, Verdict::Aborted);
    EXPECT_EQ(outcome.Executed(), "close");
    EXPECT_EQ(outcome.reason, "interrupted at the end; before that: step 'good'");
}

TEST(Left, WrittenParametersThatWereNotPutBack_AreListed) {
    const RunOutcome outcome = RunSteps("[steps.s]\nrun = ['open']\nnext = 'good'\n");
    const auto left = outcome.Of(event::ParameterLeft);
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(ToJson(left.front())["arguments"].dump(), R"({"id":"valve","name":"","value":35,"was":0})");
    EXPECT_TRUE(
        RunSteps("[steps.s]\nrun = ['open', 'close']\nnext = 'good'\n").Of(event::ParameterLeft).empty());
}

} // namespace

} // namespace vant::host
