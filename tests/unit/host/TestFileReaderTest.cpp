#include "host/suite/TestFileReader.h"

#include "host/record/ReportText.h"
#include "host/suite/Sweep.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

const std::string beginning = "procedure = 'p.toml'\n[[case]]\nname = 'one'\n";

std::vector<TestCase> ReadRight(const std::string& toml) {
    Diagnostics found;
    auto cases = ReadTestFile(toml, "folder/t.test.toml", found);
    EXPECT_EQ(found.Print("t"), "");
    return cases;
}

std::string Mistakes(const std::string& toml) {
    Diagnostics found;
    ReadTestFile(toml, "t.test.toml", found);
    return found.Print("t");
}

std::vector<std::string> NamesOf(const std::vector<TestCase>& cases) {
    std::vector<std::string> names;
    for (const TestCase& each : cases)
        names.push_back(each.name);
    return names;
}

TEST(TestFileReader, Case_HasWhatTheFileGives) {
    const auto cases = ReadRight("[[case]]\nname = 'one'\nprocedure = 'p.toml'\nengine = 'e/weak.toml'\n"
                                 "data = { crank = '9.5', rest = 12 }\nparameters = { '100' = 800 }\n"
                                 "tags = { serial = '4711' }\nseed = 7\nmaxTime = '5min'\n"
                                 "[case.expected]\nverdict = 'failed'\nending = 'bad'\npath = ['a', 'bad']\n"
                                 "longest = '2s'\nmayFail = ['c']\n"
                                 "data = { drop = '3', share = { atLeast = 1 } }\n"
                                 "measurements = { drop = 3, rest = { verdict = 'missing' } }\nleft = {}\n");
    ASSERT_EQ(cases.size(), 1U);
    const TestCase& one = cases.front();
    EXPECT_EQ(one.name, "one");
    EXPECT_EQ(one.file, "folder/t.test.toml");
    EXPECT_EQ(one.position.line, 1U);
    EXPECT_EQ(one.procedure.text, "folder/p.toml");
    EXPECT_EQ(one.engine->text, "folder/e/weak.toml");
    EXPECT_EQ(one.data.at("crank").value, Value("9.5"));
    EXPECT_EQ(one.data.at("rest").value, Value(std::int64_t{12}));
    EXPECT_EQ(one.parameters.at("100").value, Value(std::int64_t{800}));
    EXPECT_EQ(one.tags.at("serial"), "4711");
    EXPECT_EQ(one.seed, 7);
    EXPECT_EQ(one.maxTime, 300'000);
    EXPECT_EQ(one.expected.verdict, Verdict::Failed);
    EXPECT_EQ(one.expected.ending->text, "bad");
    EXPECT_EQ(one.expected.path->size(), 2U);
    EXPECT_EQ(one.expected.longest, 2000);
    EXPECT_EQ(one.expected.mayFail.front().text, "c");
    EXPECT_EQ(one.expected.data.at("drop").limits.comparisons.front().value, Value("3"));
    EXPECT_EQ(one.expected.data.at("share").limits.comparisons.front().comparison, Comparison::AtLeast);
    EXPECT_EQ(one.expected.measurements.at("drop").value.limits.comparisons.front().value,
              Value(std::int64_t{3}));
    EXPECT_EQ(one.expected.measurements.at("rest").verdict, "missing");
    EXPECT_TRUE(one.expected.left->empty());
}

TEST(TestFileReader, CaseWithoutExpectation_MustPass) {
    const auto cases = ReadRight(beginning);
    EXPECT_EQ(cases.at(0).expected.verdict, Verdict::Passed);
    EXPECT_FALSE(cases.at(0).expected.left);
    EXPECT_FALSE(cases.at(0).expected.path);
}

TEST(TestFileReader, Defaults_HoldForEveryCaseThatGivesNothingElse) {
    const auto cases = ReadRight("procedure = 'p.toml'\nseed = 1\ndata = { a = 1, b = 2 }\n"
                                 "[expected]\nverdict = 'failed'\nleft = { x = 1 }\ndata = { a = 1 }\n"
                                 "[[case]]\nname = 'one'\n"
                                 "[[case]]\nname = 'two'\nprocedure = 'q.toml'\nseed = 2\ndata = { b = 3 }\n"
                                 "expected = { verdict = 'passed', left = {}, data = { b = 1 } }\n");
    ASSERT_EQ(cases.size(), 2U);
    EXPECT_EQ(cases[0].seed, 1);
    EXPECT_EQ(cases[0].expected.verdict, Verdict::Failed);
    EXPECT_EQ(cases[0].expected.left->size(), 1U);
    EXPECT_EQ(cases[1].procedure.text, "folder/q.toml");
    EXPECT_EQ(cases[1].seed, 2);
    EXPECT_EQ(cases[1].data.at("a").value, Value(std::int64_t{1}));
    EXPECT_EQ(cases[1].data.at("b").value, Value(std::int64_t{3}));
    EXPECT_EQ(cases[1].expected.verdict, Verdict::Passed);
    EXPECT_TRUE(cases[1].expected.left->empty());
    EXPECT_EQ(cases[1].expected.data.size(), 2U);
}

TEST(TestFileReader, Answers_AreReadAsInAFileOfAnswersAndReplacedAsAWhole) {
    const auto cases = ReadRight("procedure = 'p.toml'\nanswers = [{ step = 'lamp', answer = 'on' }]\n"
                                 "[[case]]\nname = 'one'\n"
                                 "[[case]]\nname = 'two'\n"
                                 "[[case.answers]]\nprompt = 'Key'\nanswer = 4711\nafter = '2s'\n"
                                 "[[case.answers]]\nanswer = true\nrepeat = true\n");
    ASSERT_EQ(cases.size(), 2U);
    ASSERT_EQ(cases[0].answers.size(), 1U);
    EXPECT_EQ(cases[0].answers[0].step, "lamp");
    EXPECT_EQ(cases[0].answers[0].answer, "on");
    ASSERT_EQ(cases[1].answers.size(), 2U);
    EXPECT_EQ(cases[1].answers[0].prompt, "Key");
    EXPECT_EQ(cases[1].answers[0].answer, "4711");
    EXPECT_EQ(cases[1].answers[0].after, 2000);
    EXPECT_TRUE(cases[1].answers[1].repeats);
}

TEST(TestFileReader, WrongAnswers_AreMistakes) {
    EXPECT_EQ(Mistakes(beginning + "answers = 'on'\n"),
              "t:4:11: error: 'answers' must be a list of tables, not a string\n");
    EXPECT_EQ(Mistakes(beginning + "answers = [{ step = 'a' }, 'on', { anwser = 'on' }, { answer = [] }]\n"),
              "t:4:12: error: 'answer' is missing\n"
              "t:4:28: error: an answer must be a table, not a string\n"
              "t:4:36: error: an answer has no key 'anwser' (did you mean 'answer'?)\n"
              "t:4:64: error: 'answer' must be a string, a number, true or false, not a list\n");
}

TEST(TestFileReader, FaultsWithWhichARunMayPass_HaveAReason) {
    const auto cases = ReadRight(beginning + "[[case.faults.mayPass]]\ncall = 'Parameter get_Value'\n"
                                             "command = 'c'\nstep = 's'\nwhy = 'shown only'\n"
                                             "[[case.faults.mayPass]]\nlost = '100'\nwhy = 'w'\n");
    const std::vector<FaultExcuse>& excuses = cases.at(0).mayPass;
    ASSERT_EQ(excuses.size(), 2U);
    EXPECT_EQ(excuses[0].why, "shown only");
    const Fault call{.subject = "Parameter get_Value", .command = "c", .step = "s"};
    const Fault lost{.kind = Fault::Kind::Lost, .subject = "100", .step = "s"};
    const Fault refused{.kind = Fault::Kind::Refused, .subject = "100"};
    EXPECT_TRUE(Fits(excuses[0], call));
    EXPECT_FALSE(Fits(excuses[0], {.subject = "Parameter get_Text", .command = "c", .step = "s"}));
    EXPECT_FALSE(Fits(excuses[0], {.subject = "Parameter get_Value", .command = "d", .step = "s"}));
    EXPECT_FALSE(Fits(excuses[0], {.subject = "Parameter get_Value", .command = "c", .step = "t"}));
    EXPECT_FALSE(Fits(excuses[0], lost));
    EXPECT_TRUE(Fits(excuses[1], lost));
    EXPECT_FALSE(Fits(excuses[1], refused));
    EXPECT_FALSE(Fits(excuses[1], call));
}

TEST(TestFileReader, WrongFaults_AreMistakes) {
    EXPECT_EQ(Mistakes(beginning + "faults = { maypass = [] }\n"),
              "t:4:12: error: the table of faults has no key 'maypass' (did you mean 'mayPass'?)\n");
    EXPECT_EQ(Mistakes(beginning +
                       "faults.mayPass = [{ why = 'w' }, { lost = '1', refused = '1', why = 'w' }, "
                       "{ call = 'Parameter get_Valeu' }]\n"),
              "t:4:19: error: an entry of 'mayPass' needs either 'call' or 'command' or both, or 'lost', or "
              "'refused'\n"
              "t:4:34: error: an entry of 'mayPass' needs either 'call' or 'command' or both, or 'lost', or "
              "'refused'\n"
              "t:4:76: error: 'why' is missing\n"
              "t:4:85: error: there is no call 'Parameter get_Valeu', such as 'Parameter get_Value' (did you "
              "mean 'Parameter get_Value'?)\n");
}

TEST(TestFileReader, Sweep_StandsForEveryCombination) {
    const auto cases =
        ReadRight(beginning + "[case.sweep]\nseed = [3, 5]\ndata = { x = { from = 1, to = 2 } }\n");
    EXPECT_EQ(NamesOf(cases), (std::vector<std::string>{"one [seed=3 x=1]", "one [seed=3 x=2]",
                                                        "one [seed=5 x=1]", "one [seed=5 x=2]"}));
    EXPECT_EQ(cases.at(3).seed, 5);
    EXPECT_EQ(cases.at(3).data.at("x").value, Value(std::int64_t{2}));
    EXPECT_TRUE(cases.at(0).isSwept);
}

TEST(TestFileReader, Range_EndsAtItsLastValueAndIsWrittenAsAPersonWould) {
    const auto cases =
        ReadRight(beginning + "sweep = { parameters.'100' = { from = 0.1, to = 0.5, step = 0.2 } }\n");
    EXPECT_EQ(NamesOf(cases), (std::vector<std::string>{"one [100=0.1]", "one [100=0.3]", "one [100=0.5]"}));
}

TEST(TestFileReader, PairsOfASweep_AreFewerThanAll) {
    const std::string sweep = "sweep = { seed = { from = 0, to = 9 }, data = { a = { from = 0, to = 9 }, "
                              "b = { from = 0, to = 9 } }, combine = 'pairs' }\n";
    const std::size_t count = ReadRight(beginning + sweep).size();
    EXPECT_GE(count, 100U);
    EXPECT_LT(count, 200U);
}

TEST(TestFileReader, MistakesOfAllCases_AreFoundTogether) {
    EXPECT_EQ(Mistakes("seeds = 1\n[[case]]\nname = 'one'\nexpected = { verdict = 'pased', left = 1 }\n"
                       "[[case]]\nname = 'one'\nprocedure = ''\ndata = { x = [] }\nmaxTime = '0s'\n"
                       "[[case]]\nprocedure = 'p'\nexpected = { data = { x = { atleast = 1 }, y = {} } }\n"),
              "t:1:1: error: a test file has no key 'seeds' (did you mean 'seed'?)\n"
              "t:2:1: error: 'procedure' is missing, here and at the top of the file\n"
              "t:4:24: error: 'verdict' is \"passed\", \"failed\" or \"error\", not \"pased\" (did you mean "
              "'passed'?)\n"
              "t:4:40: error: 'left' must be a table, not a number\n"
              "t:6:8: error: there is already a case 'one'\n"
              "t:7:13: error: 'procedure' is empty\n"
              "t:8:14: error: 'x' must be a string, a number, true or false, not a list\n"
              "t:9:11: error: 'maxTime' must be above 0\n"
              "t:10:1: error: 'name' is missing\n"
              "t:12:29: error: an expected value has no key 'atleast' (did you mean 'atLeast'?)\n"
              "t:12:48: error: this table is empty: add a value, as in { atLeast = 1 }\n");
}

TEST(TestFileReader, WrongSweeps_AreMistakes) {
    EXPECT_EQ(Mistakes(beginning + "sweep = {}\n"),
              "t:4:9: error: the sweep is empty: add 'seed', 'parameters' or 'data'\n");
    EXPECT_EQ(Mistakes(beginning + "sweep = { seed = [-1], combine = 'pair' }\n"),
              "t:4:18: error: seeds must be whole numbers from 0\n"
              "t:4:34: error: 'combine' is \"all\" or \"pairs\", not \"pair\" (did you mean 'pairs'?)\n");
    EXPECT_EQ(Mistakes(beginning + "sweep.data = { a = [], b = { from = 1 }, c = { from = 2, to = 1 }, "
                                   "d = { from = 0, to = 1, step = 0 }, e = 1 }\n"),
              "t:4:20: error: 'a' is empty: add a value\n"
              "t:4:28: error: 'to' is missing\n"
              "t:4:63: error: 'to' is less than 'from'\n"
              "t:4:99: error: 'step' must be above 0\n"
              "t:4:108: error: 'e' must be a list of values or a range, not a number\n");
    EXPECT_EQ(Mistakes(beginning + "sweep.data = { a = { from = 0, to = 1e9 } }\n"),
              "t:4:20: error: the range has more than 10000 values\n");
    EXPECT_EQ(
        Mistakes(beginning + "sweep.data = { a = { from = 1, to = 200 }, b = { from = 1, to = 200 } }\n"),
        "t:4:1: error: the sweep stands for more than 10000 cases\n");
}

TEST(TestFileReader, FileWithoutCases_IsAMistake) {
    EXPECT_EQ(Mistakes("procedure = 'p'\n"), "t:1:1: error: there is no [[case]]\n");
    EXPECT_EQ(Mistakes("case = 1\n"),
              "t:1:8: error: 'case' must be a list of tables, as in [[case]], not a number\n");
}

} // namespace

} // namespace vant::host
