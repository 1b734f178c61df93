// Conditions that a step waits for or a command evaluates, in virtual time, with the built module.

#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant::host {

namespace {

TEST(Conditions, Any_HoldsIfOneDoes) {
    const std::string sets = "[conditions.either]\nany = [{ parameter = 'lost', above = 100 },"
                             " { data = 'gear', is = 'neutral' }]\n"
                             "[conditions.neither]\nany = [{ parameter = 'lost', above = 100 },"
                             " { data = 'gear', is = 'first' }]\n";
    EXPECT_EQ(RunSteps(sets + "[steps.s]\nuntil = 'either'\ntimeout = '1s'\nnext = 'good'\n").verdict,
              Verdict::Passed);
    const RunOutcome outcome =
        RunSteps(sets + "[steps.s]\nuntil = 'neither'\ntimeout = '1s'\nnext = 'good'\n");
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
    const RunOutcome outcome =
        RunSteps("[commands.say]\nclass = 'StartConditionChecker'\n"
                 "properties = { dsSetID = 'warm', dsFailMessage = 'said', invalidTransitionID = 'bad' }\n"
                 "[steps.s]\nrun = ['say']\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.LeftIn("said"), std::vector<std::string>{"parameter temperature atLeast 80"});
}

TEST(Conditions, AnyThatCannotBeRead_ReturnsTheCode) {
    const RunOutcome outcome =
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

} // namespace

} // namespace vant::host
