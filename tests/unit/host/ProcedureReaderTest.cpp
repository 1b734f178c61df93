#include "host/procedure/ProcedureReader.h"

#include <gtest/gtest.h>
#include <string>

namespace vant::host {

namespace {

/// All that is said about a text, line by line.
std::string Said(std::string_view toml) {
    Diagnostics found;
    ReadProcedure(toml, found);
    std::string result;
    for (const Diagnostic& each : found.Sorted())
        result += each.Text("f") + '\n';
    return result;
}

/// A procedure without mistakes, with `more` at its end.
std::string With(const std::string& more) {
    return "name = 'n'\n"
           "start = 'done'\n"
           "[steps.done]\n"
           "end = 'passed'\n" +
           more;
}

TEST(ProcedureReader, WholeProcedure_IsReadAsItStands) {
    Diagnostics found;
    const Procedure read = ReadProcedure(R"(name  = "Battery check"
start = "measure"
[data]
text = "9.5"
whole = -2147483648
real = 9.5
truth = true
[commands.drop]
class      = "Calculator"
properties = { operation = "subtract", dsResult = "drop" }
[steps.measure]
run    = ["drop", "drop"]
next   = "done"
failed = "bad"
on     = { weak = "bad" }
[steps.done]
end = "passed"
[steps.bad]
end = "failed"
)",
                                         found);
    EXPECT_TRUE(found.Sorted().empty());
    EXPECT_EQ(read.name, "Battery check");
    EXPECT_EQ(read.start.text, "measure");
    EXPECT_EQ(read.data.at("text"), Value("9.5"));
    EXPECT_EQ(read.data.at("whole"), Value(std::int64_t{-2147483648LL}));
    EXPECT_EQ(read.data.at("real"), Value(9.5));
    EXPECT_EQ(read.data.at("truth"), Value(true));
    const Command& drop = read.commands.at("drop");
    EXPECT_EQ(drop.className.text, "Calculator");
    ASSERT_EQ(drop.properties.size(), 2U);
    EXPECT_EQ(drop.properties[0].name.text, "operation"); // the file's order
    EXPECT_EQ(drop.properties[1].value.text, "drop");
    const Step& measure = read.steps.at("measure");
    ASSERT_EQ(measure.run.size(), 2U);
    EXPECT_EQ(measure.run[1].text, "drop");
    EXPECT_EQ(measure.next->text, "done");
    EXPECT_EQ(measure.failed->text, "bad");
    EXPECT_EQ(measure.on.at("weak").text, "bad");
    EXPECT_EQ(read.steps.at("done").end, Verdict::Passed);
    EXPECT_EQ(read.steps.at("bad").end, Verdict::Failed);
}

TEST(ProcedureReader, MistakeOfSyntax_IsReportedAtItsPlace) {
    const std::string said = Said("name = 'n'\nstart = \n");
    EXPECT_EQ(said.find("f:2:"), 0U) << said;
    EXPECT_NE(said.find(": error: "), std::string::npos) << said;
}

TEST(ProcedureReader, BytesThatAreNoUtf8_AreReported) {
    EXPECT_EQ(Said("name = '\xFF'\n").find("f:1:"), 0U);
}

TEST(ProcedureReader, KeyGivenTwice_IsReportedAtTheSecond) {
    EXPECT_EQ(Said(With("[steps.done]\nend = 'failed'\n")).find("f:5:"), 0U);
}

TEST(ProcedureReader, EmptyFile_IsOneMistake) {
    EXPECT_EQ(Said(""),
              "f:1:1: error: the file is empty: a procedure has at least 'name', 'start' and 'steps'\n");
}

TEST(ProcedureReader, FileWithoutAllThatIsRequired_IsOneMistake) {
    EXPECT_EQ(Said("[data]\nd = 1\n"),
              "f:1:1: error: 'name', 'start' and 'steps' are missing: this is not a procedure; a file that "
              "procedures include is checked with them\n");
}

TEST(ProcedureReader, ManyMistakes_AreAllReportedInTheOrderOfTheFile) {
    EXPECT_EQ(
        Said("name = 'n'\n"
             "start = 'mesure'\n"
             "strat = 'x'\n"
             "[data]\n"
             "big = 2147483648\n"
             "list = [1]\n"
             "[commands.drop]\n"
             "properties = { a = 1 }\n"
             "[steps.measure]\n"
             "run = ['drp', 3]\n"
             "next = 'don'\n"
             "[steps.done]\n"
             "end = 'pased'\n"),
        "f:2:9: error: there is no step 'mesure' (did you mean 'measure'?)\n"
        "f:3:1: error: a procedure has no key 'strat' (did you mean 'start'?)\n"
        "f:5:7: error: a whole number must lie between -2147483648 and 2147483647; write it in quotes to "
        "keep it as text\n"
        "f:6:8: error: data entry 'list' must be a string, a number, true or false, not a list\n"
        "f:7:11: error: 'class' is missing\n"
        "f:8:20: error: property 'a' must be a string, not a number: write it in quotes\n"
        "f:10:8: error: there is no command 'drp' (did you mean 'drop'?)\n"
        "f:10:15: error: a command id must be a string, not a number: write it in quotes\n"
        "f:11:8: error: there is no step 'don' (did you mean 'done'?)\n"
        "f:13:7: error: 'end' is \"passed\", \"failed\" or \"error\" (did you mean 'passed'?)\n");
}

TEST(ProcedureReader, UnknownKey_IsReportedInEveryTable) {
    EXPECT_EQ(Said(With("nxt = 'x'\n[commands.c]\nclass = 'C'\nclas = 'C'\n")),
              "f:5:1: error: a step has no key 'nxt' (did you mean 'next'?)\n"
              "f:8:1: error: a command has no key 'clas' (did you mean 'class'?)\n");
}

TEST(ProcedureReader, ValueOfAnotherType_IsNamedAsWhatItIs) {
    const auto saidOf = [](const std::string& value) {
        return Said("name = " + value + "\nstart = 'done'\n[steps.done]\nend = 'passed'\n");
    };
    EXPECT_EQ(saidOf("7"), "f:1:8: error: 'name' must be a string, not a number: write it in quotes\n");
    EXPECT_EQ(saidOf("true"),
              "f:1:8: error: 'name' must be a string, not true or false: write it in quotes\n");
    EXPECT_EQ(saidOf("1979-05-27"),
              "f:1:8: error: 'name' must be a string, not a date or time: write it in quotes\n");
    EXPECT_EQ(saidOf("['a']"), "f:1:8: error: 'name' must be a string, not a list\n");
    EXPECT_EQ(saidOf("{}"), "f:1:8: error: 'name' must be a string, not a table\n");
}

TEST(ProcedureReader, TableOfAnotherType_IsReported) {
    EXPECT_EQ(Said("name = 'n'\nstart = 's'\nsteps = 1\ncommands = ['c']\ndata = 'd'\n"),
              "f:3:9: error: 'steps' must be a table, not a number\n"
              "f:4:12: error: 'commands' must be a table, not a list\n"
              "f:5:8: error: 'data' must be a table, not a string\n");
    EXPECT_EQ(Said(With("[commands]\nc = 'Calculator'\n")),
              "f:6:5: error: command 'c' must be a table, not a string\n");
}

TEST(ProcedureReader, RunThatIsNoList_IsReported) {
    EXPECT_EQ(Said(With("[steps.a]\nrun = 'c'\nnext = 'done'\n")),
              "f:6:7: error: 'run' must be a list of command ids, not a string\n");
}

TEST(ProcedureReader, StepThatLeadsNowhere_IsReported) {
    const std::string nowhere =
        "f:5:8: error: step 'a' leads nowhere: add 'next', or 'end', or 'run' with 'on'\n";
    EXPECT_EQ(Said(With("[steps.a]\n")), nowhere);
    EXPECT_EQ(Said(With("[steps.a]\nfailed = 'done'\n")), nowhere);
    EXPECT_EQ(Said(With("[steps.a]\non = { x = 'done' }\n")), nowhere); // nothing runs that could choose
    EXPECT_EQ(Said(With("[steps.a]\nrun = ['c']\n[commands.c]\nclass = 'C'\n")), nowhere);
    EXPECT_EQ(Said(With("[steps.a]\nrun = []\nnext = 'done'\n")),
              "f:6:7: error: 'run' is empty: add a command id, or leave the key out\n");
}

TEST(ProcedureReader, StepThatEndsAndGoesOn_IsReportedAtEveryKeyTooMany) {
    EXPECT_EQ(Said("name = 'n'\nstart = 'a'\n[steps.a]\nend = 'passed'\nnext = 'a'\nfailed = 'a'\n"),
              "f:5:1: error: step 'a' ends the procedure, so it can have no 'next'\n"
              "f:6:1: error: step 'a' ends the procedure, so it can have no 'failed'\n");
}

TEST(ProcedureReader, EveryReferenceToAStep_IsLookedUp) {
    EXPECT_EQ(Said(With("[steps.a]\nrun = ['c']\nnext = 'x1'\nfailed = 'x2'\non = { t = 'x3' }\n"
                        "[commands.c]\nclass = 'C'\n")),
              "f:7:8: error: there is no step 'x1'\n"
              "f:8:10: error: there is no step 'x2'\n"
              "f:9:12: error: there is no step 'x3'\n");
}

TEST(ProcedureReader, FirstLineWithByteOrderMark_IsRead) {
    EXPECT_EQ(Said("\xEF\xBB\xBF" + With("")), "");
}

TEST(ProcedureReader, LinesThatEndWithCarriageReturns_AreCountedOnce) {
    EXPECT_EQ(Said("name = 'n'\r\nstart = 'x'\r\n[steps.done]\r\nend = 'passed'\r\n"),
              "f:2:9: error: there is no step 'x'\n");
}

TEST(ProcedureReader, EmptyNames_AreToldFromMissingOnes) {
    EXPECT_EQ(Said("name = ''\nstart = ''\n[steps.s]\nend = 'passed'\n"),
              "f:1:8: error: 'name' is empty\nf:2:9: error: 'start' is empty\n");
    EXPECT_EQ(Said("[steps.s]\nend = 'passed'\n"),
              "f:1:1: error: 'name' is missing\nf:1:1: error: 'start' is missing\n");
    EXPECT_EQ(Said(With("[conditions.set]\nall = [{ parameter = '', atLeast = 1, message = '' },\n"
                        "{ data = '', is = 1, message = 'm' }]\n[data]\nm = ''\n")),
              "f:6:22: error: 'parameter' is empty\nf:6:49: error: 'message' is empty\n"
              "f:7:10: error: 'data' is empty\n");
}

TEST(ProcedureReader, BoundsThatAreNotFinite_AreRefused) {
    for (const std::string bound : {"nan", "inf", "-inf"}) {
        for (const std::string comparison : {"is", "isNot", "below", "above", "atLeast", "atMost"}) {
            const std::string said = Said(With("[conditions]\ns.all = [{ data = 'd', message = 'm', " +
                                               comparison + " = " + bound + " }]\n[data]\nm = ''\nd = 1\n"));
            EXPECT_NE(said.find("must be a finite number; leave the condition out if there is no limit"),
                      std::string::npos)
                << comparison;
        }
    }
}

} // namespace

} // namespace vant::host
