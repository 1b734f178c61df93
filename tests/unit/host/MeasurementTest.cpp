// Measurements of a run, in virtual time, with the built module.

#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>
#include <string>

namespace vant::host {

namespace {

RunOutcome RunMeasured(const std::string& limits) {
    return RunSteps("[measurements.heat]\ndata = 'loaded'\nunits = 'deg'\n" + limits +
                    "[steps.s]\ndelay = '10s'\nnext = 't'\n[steps.t]\nrun = ['load']\nnext = 'good'\n");
}

TEST(Measured, ValueWithinItsLimits_Passes) {
    const RunOutcome outcome = RunMeasured("atLeast = 20\natMost = 40\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    const auto measured = outcome.Of(event::Measured);
    ASSERT_EQ(measured.size(), 1U);
    EXPECT_EQ(ToJson(measured.front())["arguments"].dump(),
              R"({"name":"heat","data":"loaded","value":"30","units":"deg","limits":"atLeast 20, atMost 40",)"
              R"("verdict":"passed","at":10000,"step":"t","description":""})");
}

TEST(Measured, ValueOutsideItsLimits_FailsThePass) {
    const RunOutcome outcome = RunMeasured("above = 30\n");
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
    const RunOutcome missing = RunSteps(steps);
    EXPECT_EQ(missing.verdict, Verdict::Error) << "the entry is only given";
    EXPECT_EQ(missing.reason, "measurement 'heat' was not made");
    const RunOutcome skipped = RunSteps(steps + "optional = true\n");
    EXPECT_EQ(skipped.verdict, Verdict::Passed);
    EXPECT_EQ(skipped.Of(event::Measured).front().Text(argument::verdict), "skipped");
}

TEST(Measured, ValueOfATryThatWasRepeated_IsNoMeasurement) {
    const RunOutcome outcome =
        RunSteps("[measurements.heat]\ndata = 'loaded'\n"
                 "[steps.s]\nrun = ['load', 'check']\non = { no = 't', yes = 'good' }\n"
                 "retry = { times = 1, on = ['no'] }\n"
                 "[steps.t]\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << "the last try counts: " << outcome.reason;
    const RunOutcome stale =
        RunSteps("[measurements.heat]\ndata = 'loaded'\n"
                 "[steps.s]\nrun = ['load']\nnext = 't'\n"
                 "[steps.t]\nrun = ['loadLost']\nmayFail = ['loadLost']\ndelay = '6s'\nnext = 'u'\n"
                 "[steps.u]\nrun = ['loadLost']\nmayFail = ['loadLost']\nnext = 'good'\n");
    EXPECT_EQ(stale.verdict, Verdict::Error);
    EXPECT_EQ(stale.reason, "measurement 'heat' was not made");
}

} // namespace

} // namespace vant::host
