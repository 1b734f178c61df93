#include "host/suite/Suite.h"

#include "host/procedure/InputFile.h"
#include "platform/Utf8.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/host/BuiltModule.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace vant::host {

namespace {

const char* const procedure = "name = 'n'\nstart = 's'\n[data]\ncrank = '1'\n"
                              "[engine.parameters.100]\nvalue = 1\nmax = 10\n"
                              "[measurements.drop]\ndata = 'drop'\n"
                              "[commands.c]\nclass = 'Calculator'\n"
                              "properties = { operation = 'add', sourceA = '1', dsSourceB = 'crank', "
                              "dsResult = 'drop' }\n"
                              "[commands.r]\nclass = 'ParameterLoader'\n"
                              "properties = { parameterID = '100', dsLocation = 'drop' }\n"
                              "[steps.s]\nrun = ['c']\nnext = 'e'\n[steps.e]\nend = 'passed'\n";
const char* const passing = "name = 'n'\nstart = 'e'\n[steps.e]\nend = 'passed'\n";

class SuiteTest : public ::testing::Test {
protected:
    std::string Write(const std::string& name, const std::string& content) {
        const auto file = m_folder.Path() / PathFromUtf8(name);
        std::filesystem::create_directories(file.parent_path());
        return FileName(m_folder.Write(PathFromUtf8(name), content));
    }

    LoadedSuite Load(const std::vector<std::string>& names) {
        std::vector<std::string> paths;
        for (const std::string& each : names)
            paths.push_back(FileName(m_folder.Path() / PathFromUtf8(each)));
        return LoadSuite(paths, m_module);
    }

    /// The cases by name, with their files as from the folder.
    std::vector<std::string> CasesIn(const std::vector<std::string>& names) {
        const LoadedSuite suite = Load(names);
        EXPECT_FALSE(suite.HasErrors());
        std::vector<std::string> cases;
        for (const TestCase& each : suite.cases)
            cases.push_back(
                FileName(PathFromUtf8(each.file).lexically_relative(m_folder.Path().lexically_normal())) +
                ": " + each.name);
        return cases;
    }

    std::string Mistakes(const std::string& test) {
        const std::string file = Write("t.test.toml", test);
        std::string text;
        for (const LoadedFiles& each : Load({"t.test.toml"}).messages)
            text += each.Print();
        for (std::size_t at = 0; (at = text.find(file)) != std::string::npos;)
            text = text.substr(0, at) + 't' + text.substr(at + file.size());
        return text;
    }

    const TemporaryFolder m_folder;
    const LoadedModule m_module{test::BuiltModuleFile()};
};

using Names = std::vector<std::string>;

TEST_F(SuiteTest, Folder_StandsForItsTestFilesAndThoseBelow) {
    const std::string test = "procedure = 'p.toml'\n[[case]]\nname = 'one'\n[[case]]\nname = 'two'\n";
    for (const std::string folder : {"", "b/", "b/c/", ".hidden/"}) {
        Write(folder + "p.toml", passing);
        Write(folder + "p.test.toml", test);
    }
    EXPECT_EQ(CasesIn({"."}), (Names{"b/c/p.test.toml: one", "b/c/p.test.toml: two", "b/p.test.toml: one",
                                     "b/p.test.toml: two", "p.test.toml: one", "p.test.toml: two"}));
}

TEST_F(SuiteTest, FolderWithoutTestFiles_StandsForProceduresThatRunByThemselves) {
    Write("a.toml", passing);
    Write("caller.toml", "name = 'n'\nstart = 's'\n[engine.parameters.100]\nvalue = 1\n"
                         "[steps.s]\nprocedure = 'called.toml'\nnext = 'e'\n[steps.e]\nend = 'passed'\n");
    Write("called.toml", passing);
    Write("engine.toml", "[parameters.100]\nvalue = 1\n");
    Write("shared.toml", "[data]\nx = 1\n");
    EXPECT_EQ(CasesIn({"."}), (Names{"a.toml: n", "caller.toml: n"}));
}

TEST_F(SuiteTest, FilesThatAreNamedTwice_AreTestedOnce) {
    Write("a.toml", passing);
    EXPECT_EQ(CasesIn({"a.toml", ".", "a.toml"}), Names{"a.toml: n"});
}

TEST_F(SuiteTest, PathWithNothingToTest_IsRefused) {
    Write("engine.toml", "[parameters.100]\nvalue = 1\n");
    EXPECT_THROW(Load({"."}), InputError);
    EXPECT_THROW(Load({"missing"}), InputError);
    EXPECT_THROW(Load({"missing.test.toml"}), InputError);
}

TEST_F(SuiteTest, NamesThatTheProcedureLacks_AreMistakesWithSuggestions) {
    Write("p.toml", procedure);
    EXPECT_EQ(Mistakes("procedure = 'p.toml'\n[[case]]\nname = 'one'\n"
                       "data = { crnak = '2' }\nparameters = { 101 = 1 }\n"
                       "[case.expected]\nending = 'd'\npath = ['s', 'f']\nmeasurements = { drpo = 1 }\n"
                       "left = { 1000 = 1 }\nmayFail = ['SetVale', 'c', 'GetValue']\n"),
              "t:4:10: error: there is no entry in 'data' of the procedure, 'crnak' (did you mean 'crank'?)\n"
              "t:5:16: error: there is no parameter '101' (did you mean '100'?)\n"
              "t:7:10: error: there is no step 'd'\n"
              "t:8:14: error: there is no step 'f'\n"
              "t:9:18: error: there is no measurement 'drpo' (did you mean 'drop'?)\n"
              "t:10:10: error: there is no parameter '1000' (did you mean '100'?)\n"
              "t:11:12: error: there is no operation or command 'SetVale'\n");
}

TEST_F(SuiteTest, AnswersToStepsThatNeitherTheProcedureNorACalledOneHas_AreMistakes) {
    Write("p.toml", "name = 'n'\nstart = 's'\n[engine.parameters.100]\nvalue = 1\n"
                    "[steps.s]\nprocedure = 'called.toml'\nnext = 'e'\n[steps.e]\nend = 'passed'\n");
    Write("called.toml", "name = 'n'\nstart = 'asks'\n[steps.asks]\nask = 'Ready?'\nnext = 'e'\n"
                         "[steps.e]\nend = 'passed'\n");
    EXPECT_EQ(Mistakes("procedure = 'p.toml'\n[[case]]\nname = 'one'\n"
                       "answers = [{ step = 'asks', answer = 'OK' }, { step = 'ask', answer = 'OK' }]\n"),
              "t:4:55: error: there is no step 'ask' (did you mean 'asks'?)\n");
}

TEST_F(SuiteTest, FaultsOfWhatTheProcedureLacks_AreMistakes) {
    Write("p.toml", procedure);
    EXPECT_EQ(Mistakes("procedure = 'p.toml'\n[[case]]\nname = 'one'\n"
                       "faults.mayPass = [{ command = 'q', step = 'finally', why = 'w' }, "
                       "{ lost = '101', step = 't', why = 'w' }, { refused = '100', why = 'w' }]\n"),
              "t:4:31: error: there is no command 'q'\n"
              "t:4:76: error: there is no parameter '101' (did you mean '100'?)\n"
              "t:4:90: error: there is no step 't'\n");
}

TEST_F(SuiteTest, ValuesThatAParameterCannotHave_AreMistakes) {
    Write("p.toml", procedure);
    EXPECT_EQ(
        Mistakes("procedure = 'p.toml'\n[[case]]\nname = 'one'\nparameters = { 100 = 1.5 }\n"
                 "[[case]]\nname = 'two'\nparameters = { 100 = 11 }\n"
                 "[[case]]\nname = 'three'\ndata = { crank = inf }\n"),
        "t:4:16: error: the value of parameter '100' must be of the same type as in the engine: a whole "
        "number\n"
        "t:7:16: error: the value lies outside 'min' and 'max' of parameter '100'\n"
        "t:10:10: error: 'crank' must be a finite number\n");
}

TEST_F(SuiteTest, MistakeInADefault_IsReportedOnce) {
    Write("p.toml", procedure);
    EXPECT_EQ(Mistakes("procedure = 'p.toml'\nexpected = { ending = 'x' }\n"
                       "[[case]]\nname = 'one'\n[[case]]\nname = 'two'\n"),
              "t:2:23: error: there is no step 'x'\n");
}

TEST_F(SuiteTest, FilesThatCannotBeRead_AreMistakesAtTheirNames) {
    Write("p.toml", passing);
    const std::string mistakes =
        Mistakes("[[case]]\nname = 'one'\nprocedure = 'q.toml'\n"
                 "[[case]]\nname = 'two'\nprocedure = 'p.toml'\nengine = 'e.toml'\n");
    EXPECT_NE(mistakes.find("t:3:13: error: cannot read the procedure "), std::string::npos) << mistakes;
    EXPECT_NE(mistakes.find("t:7:10: error: cannot read the engine "), std::string::npos) << mistakes;
}

TEST_F(SuiteTest, MistakesOfAProcedure_AreReportedOnceForAllItsCases) {
    const std::string file = Write("p.toml", "name = 'n'\nstart = 'x'\n[steps.e]\nend = 'passed'\n");
    EXPECT_EQ(Mistakes("procedure = 'p.toml'\n[[case]]\nname = 'one'\n[[case]]\nname = 'two'\n"),
              file + ":2:9: error: there is no step 'x'\n");
}

} // namespace

} // namespace vant::host
