#include "host/suite/ExpectationUpdate.h"

#include "host/suite/TestFileReader.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

const std::string beginning =
    "# My battery.\nprocedure = 'p.toml' # The one.\n\n[[case]]\nname = 'one' # First.\n";
const std::string rest = "\n[[case]]\nname = 'two'\n";

TestCase CaseOf(const std::string& toml) {
    Diagnostics found;
    const auto cases = ReadTestFile(toml, "t.test.toml", found);
    EXPECT_EQ(found.Print("t"), "");
    return cases.at(0);
}

const NewExpectation wanted = {
    .verdict = "failed", .ending = "bad", .path = std::vector<std::string>{"a", "b\"c", "bad"}};

std::string Updated(const std::string& toml, const NewExpectation& expectation = wanted) {
    return UpdateExpectation(toml, CaseOf(toml), expectation);
}

std::string Refusal(const std::string& toml) {
    try {
        return "updated: " + Updated(toml);
    } catch (const UpdateError& failure) {
        return failure.what();
    }
}

TEST(ExpectationUpdate, CaseWithoutExpectation_GetsOneBelowItsName) {
    EXPECT_EQ(
        Updated(beginning + "seed = 1\n" + rest),
        beginning +
            "expected = { verdict = \"failed\", ending = \"bad\", path = [\"a\", \"b\\\"c\", \"bad\"] }\n"
            "seed = 1\n" +
            rest);
}

TEST(ExpectationUpdate, LastLineWithoutEnd_GetsALineBelow) {
    EXPECT_EQ(Updated("procedure='p'\n[[case]]\nname='one'", {.verdict = "failed"}),
              "procedure='p'\n[[case]]\nname='one'\nexpected = { verdict = \"failed\" }");
}

TEST(ExpectationUpdate, ValuesInATable_AreReplacedWhereTheyStand) {
    EXPECT_EQ(Updated(beginning +
                      "[case.expected] # Why.\nlongest = '2s'\nending = '''good''' # Was good.\n"
                      "path = [\n  'ä', # First.\n  'good',\n]\nverdict = \"passed\"\n" +
                      rest),
              beginning +
                  "[case.expected] # Why.\nlongest = '2s'\nending = \"bad\" # Was good.\n"
                  "path = [\"a\", \"b\\\"c\", \"bad\"]\nverdict = \"failed\"\n" +
                  rest);
}

TEST(ExpectationUpdate, MissingKeys_AreAddedBelowTheHeader) {
    EXPECT_EQ(Updated(beginning + "[case.expected] # Why.\nending = 'good'\n" + rest),
              beginning +
                  "[case.expected] # Why.\nverdict = \"failed\"\npath = [\"a\", \"b\\\"c\", \"bad\"]\n"
                  "ending = \"bad\"\n" +
                  rest);
}

TEST(ExpectationUpdate, InlineTable_StaysOne) {
    EXPECT_EQ(Updated(beginning + "expected = { ending = 'ä', longest = '2s' } # Why.\n" + rest,
                      {.verdict = "failed", .ending = "bad"}),
              beginning + "expected = { verdict = \"failed\", ending = \"bad\", longest = '2s' } # Why.\n" +
                  rest);
    EXPECT_EQ(Updated(beginning + "expected = {}\n", {.verdict = "failed"}),
              beginning + "expected = { verdict = \"failed\" }\n");
}

TEST(ExpectationUpdate, DottedKeys_StayDotted) {
    EXPECT_EQ(
        Updated(beginning + "expected.ending = 'good'\n" + rest, {.verdict = "failed", .ending = "bad"}),
        beginning + "expected.verdict = \"failed\"\nexpected.ending = \"bad\"\n" + rest);
}

TEST(ExpectationUpdate, LinesThatEndAsOnWindows_GoOnDoingSo) {
    EXPECT_EQ(Updated("procedure = 'p'\r\n[[case]]\r\nname = 'one'\r\n[case.expected]\r\nending = 'good'\r\n",
                      {.verdict = "failed"}),
              "procedure = 'p'\r\n[[case]]\r\nname = 'one'\r\n[case.expected]\r\nverdict = \"failed\"\r\n"
              "ending = 'good'\r\n");
}

TEST(ExpectationUpdate, FormsThatCannotBeChanged_AreRefused) {
    EXPECT_EQ(Refusal("procedure = 'p'\ncase = [{ name = 'one' }]\n"),
              "it stands in a list; write it under [[case]]");
    EXPECT_EQ(Refusal(beginning + "sweep.seed = [1, 2]\n"),
              "a sweep stands for many cases, which may differ");
    EXPECT_EQ(Refusal(beginning + "[case.expected.data]\nx = 1\n"),
              "its expectation is written in a form that cannot be changed");
}

TEST(ExpectationUpdate, CaseThatIsGone_IsRefused) {
    TestCase gone = CaseOf(beginning);
    gone.name = "gone";
    EXPECT_THROW(UpdateExpectation(beginning, gone, wanted), UpdateError);
}

NewExpectation Needed(const std::string& keys) {
    return NeededFor(CaseOf(beginning + keys), {{"verdict", "failed"}, {"path", {"a", "bad"}}});
}

TEST(ExpectationUpdate, CaseWithoutExpectation_NeedsAll) {
    const NewExpectation needed = Needed("");
    EXPECT_EQ(needed.verdict, "failed");
    EXPECT_EQ(needed.ending, "bad");
    EXPECT_EQ(needed.path, (std::vector<std::string>{"a", "bad"}));
}

TEST(ExpectationUpdate, CaseWithExpectation_NeedsWhatDiffers) {
    EXPECT_TRUE(Needed("expected = { verdict = 'failed', path = ['a', 'bad'] }\n").IsEmpty());
    const NewExpectation needed = Needed("expected = { ending = 'good' }\n");
    EXPECT_EQ(needed.verdict, "failed");
    EXPECT_EQ(needed.ending, "bad");
    EXPECT_FALSE(needed.path);
}

} // namespace

} // namespace vant::host
