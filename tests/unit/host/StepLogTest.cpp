#include "vant/StepLog.h"

#include <gtest/gtest.h>
#include <string>

namespace vant::program {

namespace {

class StepLogTest : public ::testing::Test {
protected:
    void Step(const std::string& name) {
        log.BeginStep(name, "step " + name);
        Line(name);
    }
    void Line(const std::string& text) { log.Write({text, text, {}}); }
    void Value(const std::string& name, int value) {
        log.Write({name + '=' + std::to_string(value), name, {}});
    }
    /// A round of two steps.
    void Round(int value) {
        Step("a");
        Step("b");
        Value("v", value);
    }
    void Finish() {
        log.EndStep();
        Line("end");
    }

    std::string out;
    StepLog log{[this](const std::string& line) { out += line + '|'; }};
};

TEST_F(StepLogTest, StepThatRepeats_IsCounted) {
    for (int i = 0; i < 1000; ++i)
        Step("a");
    Finish();
    EXPECT_EQ(out, "a|\n... step a 999 more times|end|");
}

TEST_F(StepLogTest, RoundThatRepeats_IsCounted) {
    for (int i = 0; i < 3; ++i)
        Round(1);
    Finish();
    EXPECT_EQ(out, "a|b|v=1|\n... step a 2 more times, step b 2 more times|end|");
}

TEST_F(StepLogTest, StepInWhichOnlyValuesDiffer_IsPrintedAFewTimes) {
    for (int i = 0; i < 1000; ++i) {
        Step("b");
        Value("v", i);
    }
    Finish();
    EXPECT_EQ(out, "b|v=0|b|v=1|b|v=2|\n... step b 997 more times|end|");
}

TEST_F(StepLogTest, StepThatTurnsOutDifferent_IsPrintedAsSoonAsItDiffers) {
    Step("a");
    Line("first");
    Step("a");
    EXPECT_EQ(out, "a|first|");
    Line("second");
    EXPECT_EQ(out, "a|first|a|second|");
}

TEST_F(StepLogTest, StepThatEndsEarlier_IsPrinted) {
    Step("a");
    Line("first");
    Step("a");
    Finish();
    EXPECT_EQ(out, "a|first|a|end|");
}

TEST_F(StepLogTest, StepsThatAlternate_AreCounted) {
    for (int i = 0; i < 10; ++i) {
        Step("a");
        Line(i % 2 == 0 ? "even" : "odd");
    }
    Finish();
    EXPECT_EQ(out, "a|even|a|odd|\n... step a 8 more times|end|");
}

TEST_F(StepLogTest, Durations_MakeNoDifference) {
    Step("a");
    log.Write({"-> b", "-> b", " (1 s)"});
    Step("a");
    log.Write({"-> b", "-> b", " (2 s)"});
    Finish();
    EXPECT_EQ(out, "a|-> b (1 s)|\n... step a 1 more time|end|");
}

TEST_F(StepLogTest, ReleasedStep_IsPrinted) {
    Step("a");
    Step("a");
    log.Release();
    EXPECT_EQ(out, "a|a|");
}

} // namespace

} // namespace vant::program
