#include "host/suite/CaseRun.h"

#include "host/procedure/InputFile.h"
#include "host/suite/Mismatch.h"
#include "host/suite/TestFileReader.h"
#include "platform/Clock.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/host/BuiltModule.h"

#include <gtest/gtest.h>
#include <optional>

namespace vant::host {

namespace {

const char* const procedure =
    "name = 'n'\nstart = 'add'\n[data]\ncrank = '2'\n"
    "[engine]\nconnection = '1'\n[engine.parameters.100]\nvalue = 1\n[engine.parameters.101]\nvalue = 0\n"
    "[engine.parameters.102]\nvalue = 5\nbehaviour = { noise = 100 }\n"
    "[measurements.sum]\ndata = 'sum'\natMost = 10\n"
    "[commands.add]\nclass = 'Calculator'\n"
    "properties = { operation = 'add', sourceA = '1', dsSourceB = 'crank', dsResult = 'sum' }\n"
    "[commands.read]\nclass = 'ParameterLoader'\nproperties = { parameterID = '100', dsLocation = 'read' }\n"
    "[commands.noise]\nclass = 'ParameterLoader'\nproperties = { parameterID = '102', dsLocation = 'noise' "
    "}\n"
    "[commands.write]\nclass = 'ParameterWriter'\nproperties = { parameterID = '101', value = '35' }\n"
    "[steps.add]\nrun = ['add', 'read', 'noise', 'write']\ndelay = '90s'\nnext = 'end'\n"
    "[steps.end]\nend = 'passed'\n";

/// Runs cases as a worker does, in virtual time.
class CaseRunTest : public ::testing::Test {
protected:
    CaseRunTest() {
        UseVirtualTime();
        m_module.emplace(test::BuiltModuleFile());
        m_runner.emplace(*m_module);
        m_folder.Write("p.toml", procedure);
    }
    ~CaseRunTest() override {
        m_runner.reset();
        m_module.reset();
        UseRealTime();
    }
    CaseRunTest(const CaseRunTest&) = delete;
    CaseRunTest& operator=(const CaseRunTest&) = delete;

    TestCase ReadCase(const std::string& keys) {
        Diagnostics found;
        const auto cases = ReadTestFile("[[case]]\nname = 'one'\nprocedure = 'p.toml'\n" + keys,
                                        FileName(m_folder.Path() / "t.test.toml"), found);
        EXPECT_EQ(found.Print("t"), "");
        return cases.at(0);
    }

    Json Run(const TestCase& toRun) {
        // As it comes to another process.
        const Json request = Json::parse(RequestOf(toRun).dump());
        return Json::parse(m_runner->Run(request).dump());
    }

    Json ResultOf(const std::string& keys) { return Run(ReadCase(keys)).at("result"); }

    /// What was not as expected.
    std::vector<std::string> Judged(const std::string& keys) {
        const TestCase judged = ReadCase(keys);
        std::vector<std::string> texts;
        for (const Mismatch& each : FindMismatches(judged.expected, Run(judged).at("result")))
            texts.push_back(each.what + ": " + each.expected + ", " + each.came);
        return texts;
    }

    const TemporaryFolder m_folder;
    std::optional<LoadedModule> m_module;
    std::optional<CaseRunner> m_runner;
};

using Texts = std::vector<std::string>;

TEST_F(CaseRunTest, Result_HasThePathInPlaceOfTheSteps) {
    const Json result = ResultOf("tags = { serial = '4711' }\n");
    EXPECT_EQ(result["verdict"], "passed");
    EXPECT_EQ(result["path"], (Json{"add", "end"}));
    EXPECT_EQ(result["duration"], 90'000);
    EXPECT_EQ(result["tags"]["serial"], "4711");
    EXPECT_EQ(result["left"][0]["id"], "101");
    EXPECT_FALSE(result.contains("steps"));
}

TEST_F(CaseRunTest, SecondRun_BeginsAnewAtTimeZero) {
    EXPECT_EQ(ResultOf("").dump(), ResultOf("").dump());
}

TEST_F(CaseRunTest, ValuesOfTheCase_TakeThePlaceOfTheProcedures) {
    const Json result = ResultOf("data = { crank = '7' }\nparameters = { 100 = 42 }\n");
    EXPECT_EQ(result["data"]["sum"], "8");
    EXPECT_EQ(result["data"]["read"], "42");
}

TEST_F(CaseRunTest, Seed_ChangesTheNoise) {
    const Json first = ResultOf("seed = 1\n")["data"]["noise"];
    EXPECT_EQ(ResultOf("seed = 1\n")["data"]["noise"], first);
    EXPECT_NE(ResultOf("seed = 2\n")["data"]["noise"], first);
}

TEST_F(CaseRunTest, MaxTime_EndsTheRun) {
    EXPECT_EQ(ResultOf("maxTime = '1s'\n")["verdict"], "error");
}

TEST_F(CaseRunTest, ProcedureThatCannotBeRead_IsAFailureOfTheCase) {
    TestCase missing = ReadCase("");
    missing.procedure.text += ".missing";
    EXPECT_NE(Run(missing).at("failure").get<std::string>().find("p.toml.missing: "), std::string::npos);
}

TEST_F(CaseRunTest, CallThatMayFail_LeavesTheVerdict) {
    const std::string refused = "data = { crank = 'x' }\nexpected.verdict = 'error'\n";
    EXPECT_EQ(Judged(refused), Texts{});
    EXPECT_EQ(Judged("data = { crank = 'x' }\nexpected = { verdict = 'error', mayFail = ['add'] }\n"),
              Texts{})
        << "the measurement is missing";
    EXPECT_EQ(ResultOf("data = { crank = 'x' }\nexpected = { mayFail = ['add'] }\n")["reason"],
              "measurement 'sum' was not made");
}

TEST_F(CaseRunTest, Answers_AreThoseOfTheOperator) {
    m_folder.Write("asking.toml", "name = 'n'\nstart = 'lamp'\n"
                                  "[steps.lamp]\nask = { text = 'On?', buttons = ['on', 'off'] }\n"
                                  "on = { on = 'good', off = 'bad' }\n"
                                  "[steps.good]\nend = 'passed'\n[steps.bad]\nend = 'failed'\n");
    const auto judged = [this](const std::string& answers) {
        TestCase asked = ReadCase("answers = " + answers);
        asked.procedure.text = FileName(m_folder.Path() / "asking.toml");
        std::string text;
        for (const Mismatch& each : FindMismatches(asked.expected, Run(asked).at("result")))
            text += each.what + ": " + each.expected + ", " + each.came + '\n';
        return text;
    };
    EXPECT_EQ(judged("[{ answer = 'on' }]"), "");
    EXPECT_EQ(judged("[{ answer = 'off', after = '2s' }]"), "verdict: passed, failed\n");
    EXPECT_EQ(judged("[{ step = 'lamp', answer = 'on' }, { step = 'lamp', answer = 'off' }]"),
              "answer 2: to be used, not used\n");
    EXPECT_EQ(judged("[]"), "verdict: passed, error\n") << "the question has no default";
}

TEST_F(CaseRunTest, WhatCameAsExpected_IsNoMismatch) {
    EXPECT_EQ(Judged("[case.expected]\nverdict = 'passed'\nending = 'end'\npath = ['add', 'end']\n"
                     "data = { sum = 3, crank = '2', read = { atLeast = 1, atMost = 1 } }\n"
                     "measurements = { sum = { verdict = 'passed', atMost = 3 } }\n"
                     "left = { 101 = 35 }\nlongest = '90s'\n"),
              Texts{});
}

TEST_F(CaseRunTest, EveryMismatch_IsFound) {
    EXPECT_EQ(Judged("[case.expected]\nverdict = 'failed'\nending = 'add'\npath = ['end']\n"
                     "data = { sum = '4', none = 1, read = { atLeast = 2, atMost = 3 } }\n"
                     "measurements = { sum = { verdict = 'failed', atMost = 2 } }\n"
                     "left = { 100 = 1 }\nlongest = '89s'\n"),
              (Texts{"verdict: failed, passed", "ending: add, end", "path: end, add -> end",
                     "data none: 1, missing", "data read: atLeast 2, atMost 3, \"1\"",
                     "data sum: \"4\", \"3\"", "measurement sum: failed, passed, \"3\"",
                     "measurement sum: atMost 2, \"3\"", "left 100: 1, missing",
                     "left 101: the value of the beginning, 35", "longest: at most 89 s, 90 s"}));
}

TEST_F(CaseRunTest, ParameterThatStaysWritten_IsAMismatchOfAnEmptyTable) {
    EXPECT_EQ(Judged("expected.left = {}\n"), Texts{"left 101: the value of the beginning, 35"});
}

} // namespace

} // namespace vant::host
