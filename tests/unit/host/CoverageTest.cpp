#include "host/suite/Coverage.h"

#include "host/procedure/InputFile.h"
#include "host/suite/CaseRun.h"
#include "platform/Clock.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/host/BuiltModule.h"

#include <gtest/gtest.h>
#include <optional>
#include <set>

namespace vant::host {

namespace {

const char* const procedure = //
    "name = 'n'\nstart = 'first'\nfinally = ['put']\n[on]\nbroken = 'bad'\n"
    "[data]\na = '1'\nb = '1'\n"
    "[engine.parameters.100]\nvalue = 5\n"
    "[conditions.ready]\nall = [{ parameter = '100', atLeast = 1 }, { data = 'a', below = 10 }]\n"
    "[conditions.either]\nany = [{ data = 'a', is = 2 }, { data = 'b', is = 2 }]\n"
    "[measurements.sum]\ndata = 'sum'\natLeast = 2\natMost = 4\n"
    "[commands.add]\nclass = 'Calculator'\n"
    "properties = { operation = 'add', dsSourceA = 'a', dsSourceB = 'b', dsResult = 'sum' }\n"
    "[commands.put]\nclass = 'ParameterWriter'\nproperties = { parameterID = '100', value = '5' }\n"
    "[steps.first]\nrun = ['add']\nuntil = 'ready'\ntimeout = '1s'\nnext = 'second'\n"
    "timedOut = 'bad'\nfailed = 'bad'\n"
    "[steps.second]\nuntil = 'either'\ntimeout = '1s'\nretry = { times = 1 }\nnext = 'asked'\n"
    "timedOut = 'called'\n"
    "[steps.asked]\nask = { text = 'Well?', buttons = ['good', 'broken'], default = 'good' }\non = { good = "
    "'good' }\n"
    "[steps.called]\nprocedure = 'called.toml'\nalways = 'bad'\n"
    "[steps.good]\nend = 'passed'\n[steps.bad]\nend = 'failed'\n";

const char* const called = "name = 'c'\nstart = 's'\n[steps.s]\nnext = 'e'\n[steps.e]\nend = 'passed'\n";

/// Runs cases and collects what they reach.
class CoverageTest : public ::testing::Test {
protected:
    CoverageTest() {
        UseVirtualTime();
        m_module.emplace(test::BuiltModuleFile());
        m_runner.emplace(*m_module);
        m_case.procedure.text = FileName(m_folder.Write("p.toml", procedure));
        m_folder.Write("called.toml", called);
        m_coverage.emplace(std::vector{m_case});
    }
    ~CoverageTest() override {
        m_runner.reset();
        m_module.reset();
        UseRealTime();
    }
    CoverageTest(const CoverageTest&) = delete;
    CoverageTest& operator=(const CoverageTest&) = delete;

    void Run(const std::string& a, const std::string& b, const std::string& answer = "") {
        TestCase toRun = m_case;
        toRun.data = {{"a", {a, {}}}, {"b", {b, {}}}};
        if (!answer.empty())
            toRun.answers.emplace_back().answer = answer;
        const Json reply = m_runner->Run(Json::parse(RequestOf(toRun, {.coverage = true}).dump()));
        m_coverage->Add(reply.at("coverage"));
    }

    const CoveredProcedure& Outer() { return Covered("p.toml"); }

    const CoveredProcedure& Covered(const std::string& name) {
        m_procedures = m_coverage->Procedures();
        return *std::find_if(m_procedures.begin(), m_procedures.end(),
                             [&](const CoveredProcedure& each) { return each.file.ends_with('/' + name); });
    }

    std::set<std::string> NotReached() {
        std::set<std::string> points;
        for (const CoveragePoint& each : Outer().notReached)
            points.insert(each.what);
        return points;
    }

    const TemporaryFolder m_folder;
    TestCase m_case;
    std::optional<LoadedModule> m_module;
    std::optional<CaseRunner> m_runner;
    std::optional<Coverage> m_coverage;
    std::vector<CoveredProcedure> m_procedures;
};

using Points = std::set<std::string>;

TEST_F(CoverageTest, WithoutARun_NothingIsReached) {
    EXPECT_EQ(Outer().all.reached, 0U);
    EXPECT_EQ(Outer().all.of, Outer().notReached.size());
    EXPECT_EQ(Outer().columns[0].of, 6U) << "steps";
    EXPECT_EQ(Outer().columns[5].of, 5U) << "two time-outs, a failure, another try, the clean-up";
    EXPECT_EQ(Covered("called.toml").all.of, 3U);
}

TEST_F(CoverageTest, RunThatPasses_ReachesItsPathAndNoFailurePath) {
    Run("1", "2");
    EXPECT_EQ(
        NotReached(),
        (Points{"step 'bad'", "step 'called'", "'failed' of step 'first'", "'timedOut' of step 'first'",
                "'timedOut' of step 'second'", "another try of step 'second'", "'always' of step 'called'",
                "button 'broken' of step 'asked'", "transition 'broken' of the procedure",
                "parameter 100 atLeast 1 in conditions 'ready': false",
                "data a below 10 in conditions 'ready': false", "data a is 2 in conditions 'either': true",
                "data b is 2 in conditions 'either': false", "atLeast 2 of measurement 'sum': violated",
                "atMost 4 of measurement 'sum': violated", "the clean-up of a run that does not pass"}));
}

TEST_F(CoverageTest, ConditionAfterTheDecisiveOne_IsNotReached) {
    Run("2", "2");
    EXPECT_FALSE(NotReached().contains("data a is 2 in conditions 'either': true"));
    EXPECT_TRUE(NotReached().contains("data b is 2 in conditions 'either': true"));
    Run("10", "0");
    EXPECT_FALSE(NotReached().contains("data a below 10 in conditions 'ready': false"));
    EXPECT_FALSE(NotReached().contains("'timedOut' of step 'first'"));
    EXPECT_FALSE(NotReached().contains("atMost 4 of measurement 'sum': violated"));
    EXPECT_FALSE(NotReached().contains("the clean-up of a run that does not pass"));
}

TEST_F(CoverageTest, SeveralRuns_AddUp) {
    Run("1", "2");
    Run("2", "1", "broken");
    EXPECT_FALSE(NotReached().contains("button 'broken' of step 'asked'"));
    EXPECT_FALSE(NotReached().contains("transition 'broken' of the procedure"));
    Run("0", "0");
    EXPECT_EQ(NotReached(), (Points{"'failed' of step 'first'", "'timedOut' of step 'first'",
                                    "parameter 100 atLeast 1 in conditions 'ready': false",
                                    "data a below 10 in conditions 'ready': false",
                                    "atMost 4 of measurement 'sum': violated"}));
    EXPECT_EQ(Covered("called.toml").all.reached, 3U);
}

TEST_F(CoverageTest, Places_AreThoseOfTheFile) {
    Run("1", "2");
    const CoveragePoint& first = Outer().notReached.front();
    EXPECT_EQ(first.what, "step 'bad'");
    EXPECT_EQ(PlaceOf("p.toml", first.position), "p.toml:46");
    const auto file = std::make_shared<const std::string>("shared.toml");
    EXPECT_EQ(PlaceOf("p.toml", {.line = 3, .file = file}), "shared.toml:3");
}

TEST_F(CoverageTest, Json_HasTheCountsAndWhatIsMissing) {
    Run("1", "2");
    const Json json = CoverageToJson({Covered("called.toml")});
    EXPECT_EQ(json["all"].dump(), R"({"reached":0,"of":3})");
    EXPECT_EQ(json["procedures"][0]["steps"].dump(), R"({"reached":0,"of":2})");
    EXPECT_EQ(json["procedures"][0]["failurePaths"].dump(), R"({"reached":0,"of":0})");
    const Json& missing = json["procedures"][0]["notReached"][2];
    EXPECT_EQ(missing["what"], "'next' of step 's'");
    EXPECT_EQ(missing["line"], 4);
}

TEST(CoverageCount, Percent_IsRoundedDown) {
    EXPECT_EQ((CoverageCount{199, 200}).Percent(), 99U);
    EXPECT_EQ((CoverageCount{200, 200}).Percent(), 100U);
    EXPECT_EQ(CoverageCount{}.Percent(), 100U);
}

} // namespace

} // namespace vant::host
