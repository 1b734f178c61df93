// Runs with faults: which there are, and how they are judged.

#include "host/procedure/InputFile.h"
#include "host/suite/CaseRun.h"
#include "host/suite/FaultResults.h"
#include "platform/Clock.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/host/BuiltModule.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>

namespace vant::host {

namespace {

const char* const procedure =
    "name = 'n'\nstart = 'on'\nfinally = ['off']\n"
    "[engine.parameters.100]\nvalue = 0\n[engine.parameters.101]\nvalue = 7\n[engine.parameters.102]\nvalue "
    "= 1\n"
    "[commands.on]\nclass = 'ParameterWriter'\nproperties = { parameterID = '100', value = '1' }\n"
    "[commands.off]\nclass = 'ParameterWriter'\nproperties = { parameterID = '100', value = '0' }\n"
    "[commands.read]\nclass = 'ParameterLoader'\nproperties = { parameterID = '101', dsLocation = 'x' }\n"
    "[steps.on]\nrun = ['on']\ndelay = '1s'\nnext = 'read'\n"
    "[steps.read]\nrun = ['read']\nmayFail = ['read']\nnext = 'good'\nfailed = 'good'\n"
    "[steps.good]\nend = 'passed'\n";

/// Runs a case without and with its faults.
class FaultTest : public ::testing::Test {
protected:
    FaultTest() {
        UseVirtualTime();
        m_module.emplace(test::BuiltModuleFile());
        m_runner.emplace(*m_module);
        m_case.procedure.text = FileName(m_folder.Write("p.toml", procedure));
    }
    ~FaultTest() override {
        m_runner.reset();
        m_module.reset();
        UseRealTime();
    }
    FaultTest(const FaultTest&) = delete;
    FaultTest& operator=(const FaultTest&) = delete;

    CaseOutcome RunWithout(std::size_t repeats = 0) {
        return OutcomeOf(m_case, ReplyTo(RequestOf(m_case, {.faults = repeats})));
    }

    FaultOutcome RunWith(const Fault& fault) {
        return OutcomeOf(fault, m_case, RunWithout().result, ReplyTo(RequestOf(m_case, fault)));
    }

    /// The first fault of a kind by this command, or of this parameter.
    Fault Find(Fault::Kind kind, const std::string& subject, const std::string& command = "") {
        const CaseOutcome outcome = RunWithout();
        for (const Json& each : outcome.faults) {
            const Fault fault = FaultOf(each);
            if (fault.kind == kind && fault.subject == subject && fault.command == command)
                return fault;
        }
        ADD_FAILURE() << subject << " does not fail";
        return {};
    }

    WorkerReply ReplyTo(const Json& request) {
        return {.line = m_runner->Run(Json::parse(request.dump())).dump()};
    }

    const TemporaryFolder m_folder;
    TestCase m_case;
    std::optional<LoadedModule> m_module;
    std::optional<CaseRunner> m_runner;
};

TEST_F(FaultTest, Faults_AreTheCallsAndTheParametersThatAreReadAndWritten) {
    std::vector<std::string> parameters;
    std::size_t calls = 0;
    for (const Json& each : RunWithout().faults) {
        const Fault fault = FaultOf(each);
        if (fault.kind == Fault::Kind::Call)
            ++calls;
        else
            parameters.push_back(Describe(fault) + ' ' + DescribeMoment(fault) + ' ' +
                                 std::to_string(fault.from));
    }
    EXPECT_GT(calls, 30U) << "three commands fetch nine services each";
    EXPECT_EQ(parameters,
              (std::vector<std::string>{"parameter 101 is lost from step 'on' on 0",
                                        "parameter 101 is lost from step 'read' on 1000",
                                        "writes of parameter 100 are refused from the beginning on 0"}));
    EXPECT_TRUE(Find(Fault::Kind::Call, "ParameterService SetParameter", "on").place.ends_with("p.toml:10"));
}

TEST_F(FaultTest, CallThatFails_IsMetOnceAndChangesTheVerdict) {
    const FaultOutcome outcome = RunWith(Find(Fault::Kind::Call, "ParameterService SetParameter", "on"));
    EXPECT_TRUE(outcome.hasHappened);
    EXPECT_EQ(outcome.verdict, "error");
    EXPECT_EQ(outcome.problem, "");
}

TEST_F(FaultTest, FailureThatTheStepIgnores_SurvivesUnlessItIsExcused) {
    const Fault fault = Find(Fault::Kind::Call, "Parameter get_Value", "read");
    EXPECT_EQ(RunWith(fault).problem, "the run passed");
    m_case.mayPass.push_back({.command = {"read", {}}, .why = "w"});
    EXPECT_EQ(RunWith(fault).problem, "");
    EXPECT_EQ(RunWith(fault).excuse, &m_case.mayPass.front());
}

TEST_F(FaultTest, LostParameter_CannotBeReadFromThenOn) {
    EXPECT_EQ(RunWith(Find(Fault::Kind::Lost, "101")).problem, "the run passed");
}

TEST_F(FaultTest, RefusedParameter_MayStayAsItIs) {
    const FaultOutcome outcome = RunWith(Find(Fault::Kind::Refused, "100"));
    EXPECT_EQ(outcome.verdict, "error");
    EXPECT_EQ(outcome.problem, "");
}

TEST_F(FaultTest, FaultOfTheCleanUp_MayLeaveWhatItWrites) {
    const Fault fault = Find(Fault::Kind::Call, "Context get_ParameterService", "off");
    EXPECT_EQ(fault.step, "finally");
    EXPECT_EQ(RunWith(fault).verdict, "error");
    EXPECT_EQ(RunWith(fault).problem, "");
}

TEST_F(FaultTest, ParameterThatIsNotPutBack_IsAProblem) {
    m_case.procedure.text = FileName(m_folder.Write(
        "q.toml", std::string(procedure).replace(std::string(procedure).find("finally"), 17, "")));
    const Fault read = Find(Fault::Kind::Call, "Parameter get_Value", "read");
    const Json clean = {{"left", Json::array()}};
    EXPECT_EQ(OutcomeOf(read, m_case, clean, ReplyTo(RequestOf(m_case, read))).problem,
              "the run passed, parameter 100 stays at 1");
    EXPECT_EQ(RunWith(read).problem, "the run passed") << "so does the run without the fault";
}

TEST_F(FaultTest, FaultThatIsNotMet_IsNeitherGoodNorBad) {
    const FaultOutcome outcome =
        RunWith({.subject = "Parameter get_Value", .thread = "main", .command = "none"});
    EXPECT_FALSE(outcome.hasHappened);
    EXPECT_EQ(outcome.problem, "");
}

TEST_F(FaultTest, WorkerThatEnds_IsAProblem) {
    EXPECT_EQ(OutcomeOf({}, m_case, {}, {.line = std::nullopt, .failure = "killed"}).problem,
              "the run broke: killed");
    EXPECT_EQ(OutcomeOf({}, m_case, {}, {.line = R"({"failure":"a leak"})"}).problem,
              "the run broke: a leak");
}

TEST(FaultRuns, OfASweep_OnlyTheFirstCaseIsRunWithFaults) {
    const TestCase swept{.name = "s", .file = "t", .position = {.line = 3}, .isSwept = true};
    const TestCase other{.name = "o", .file = "t", .position = {.line = 9}};
    const Json faults = {ToJson(Fault{.subject = "a"}), ToJson(Fault{.subject = "b"})};
    const CaseOutcome passed{.status = CaseStatus::Passed, .faults = faults};
    const CaseOutcome failed{.status = CaseStatus::Failed, .faults = faults};
    const auto runs = FaultRunsOf({swept, swept, other, other}, {passed, passed, failed, passed});
    ASSERT_EQ(runs.size(), 4U);
    EXPECT_EQ(runs[1].caseNumber, 0U);
    EXPECT_EQ(runs[2].caseNumber, 3U);
    EXPECT_EQ(runs[3].fault.subject, "b");
}

TEST(FaultResults, SurvivorsOfOnePlace_AreOneEntry) {
    const TestCase tested{.name = "n", .file = "t", .mayPass = {{.position = {.line = 5}, .why = "w"}}};
    const std::vector<FaultRun> runs = {{0, {.subject = "a", .place = "p:1"}},
                                        {0, {.subject = "b", .place = "p:1"}},
                                        {0, {.subject = "b", .place = "p:2"}},
                                        {0, {.subject = "c", .place = "p:2"}}};
    const FaultOutcome bad{.isKnown = true, .hasHappened = true, .verdict = "passed", .problem = "x"};
    const FaultOutcome good{.isKnown = true, .hasHappened = true, .verdict = "error"};
    const FaultResults results = ResultsOf({tested}, runs, {bad, bad, good, FaultOutcome{}});
    EXPECT_EQ(results.runs, 3U);
    EXPECT_EQ(results.notRun, 1U);
    ASSERT_EQ(results.survivors.size(), 1U);
    EXPECT_EQ(results.survivors[0].runs, 2U);
    EXPECT_EQ(results.survivors[0].what, (std::vector<std::string>{"a fails", "b fails"}));
    ASSERT_EQ(results.rows.size(), 2U);
    EXPECT_EQ(results.rows[1].error, 1U);
    EXPECT_EQ(results.rows[1].passed, 1U);
    EXPECT_EQ(ResultsOf({tested}, {runs[2]}, {good}).useless, std::vector<std::string>{"t:5"});
}

} // namespace

} // namespace vant::host
