#include "host/procedure/Loading.h"

#include "host/procedure/InputFile.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace vant::host {

namespace {

class LoadingTest : public ::testing::Test {
protected:
    std::string Write(const std::string& name, const std::string& content) {
        return FileName(m_folder.Write(name, content));
    }

    const TemporaryFolder m_folder;
    const std::string m_procedure = "name = 'n'\nstart = 's'\n[steps.s]\nend = 'passed'\n";
};

TEST_F(LoadingTest, Procedure_ComesWithTheEngineThatItNames) {
    Write("e.toml", "[parameters.100]\nvalue = 1\n");
    const LoadedProcedure loaded = LoadProcedure(Write("p.toml", "engine = 'e.toml'\n" + m_procedure), "");
    EXPECT_EQ(loaded.files.Print(), "");
    EXPECT_TRUE(loaded.procedure.engine->parameters.contains("100"));
    EXPECT_EQ(loaded.files.All().size(), 2U);
}

TEST_F(LoadingTest, NamedEngine_TakesThePlaceOfTheOwnOne) {
    const std::string engine = Write("other.toml", "[parameters.200]\nvalue = 1\n");
    const LoadedProcedure loaded =
        LoadProcedure(Write("p.toml", m_procedure + "[engine.parameters.100]\nvalue = 1\n"), engine);
    EXPECT_EQ(loaded.files.Print(), "");
    EXPECT_TRUE(loaded.procedure.engine->parameters.contains("200"));
    EXPECT_FALSE(loaded.procedure.engine->parameters.contains("100"));
}

TEST_F(LoadingTest, MistakesOfAllFiles_AreFoundTogether) {
    Write("e.toml", "protocol = 7\n");
    const std::string file =
        Write("p.toml", "engine = 'e.toml'\n" + m_procedure + "[commands.c]\nclass = 'X'\n");
    const LoadedProcedure loaded = LoadProcedure(file, "");
    EXPECT_TRUE(loaded.files.HasErrors());
    EXPECT_EQ(loaded.files.Print(), file + ":7:9: error: there is no class 'X'\n" +
                                        FileName(m_folder.Path() / "e.toml") +
                                        ":1:12: error: 'protocol' must be a whole number from 0 to 6\n");
}

TEST_F(LoadingTest, EngineThatCannotBeRead_IsAMistakeOfTheProcedure) {
    const std::string file = Write("p.toml", "engine = 'none.toml'\n" + m_procedure);
    const LoadedProcedure loaded = LoadProcedure(file, "");
    EXPECT_EQ(loaded.files.Print().find(file + ":1:10: error: cannot read the engine 'none.toml': "), 0U);
}

TEST_F(LoadingTest, CalledProcedure_IsCheckedWithItsArgumentsAndTheOuterEngine) {
    Write("called.toml", "name = 'c'\nstart = 's'\n[data]\nlength = 'given'\n"
                         "[commands.count]\nclass = 'Timer'\n"
                         "properties = { dsLength = 'length', dsBase = 'left' }\n"
                         "[commands.show]\nclass = 'PropertySetter'\n"
                         "properties = { componentID = 'c', propertyName = 'p', pValue = '101' }\n"
                         "[steps.s]\nrun = ['count', 'show']\nwait = 'end'\nnext = 'e'\n"
                         "[steps.e]\nend = 'passed'\n");
    const std::string file =
        Write("p.toml", "name = 'n'\nstart = 's'\n[engine.parameters.100]\nvalue = 1\n"
                        "[steps.s]\nprocedure = 'called.toml'\narguments = { length = '5' }\nnext = 'e'\n"
                        "[steps.e]\nend = 'passed'\n");
    EXPECT_EQ(LoadProcedure(file, "").files.Print(),
              FileName(m_folder.Path() / "called.toml") +
                  ":10:64: error: the engine has no parameter '101' (did you mean '100'?)\n");
}

TEST_F(LoadingTest, EmptyEntryForAnArgument_IsAWarningOnlyWithoutTheCaller) {
    const std::string called =
        Write("called.toml", "name = 'c'\nstart = 's'\n[data]\nid = ''\nlength = ''\n"
                             "[commands.write]\nclass = 'ParameterWriter'\n"
                             "properties = { dsParameterID = 'id', value = '1' }\n"
                             "[commands.count]\nclass = 'Timer'\n"
                             "properties = { dsLength = 'length', dsBase = 'left' }\n"
                             "[steps.s]\nrun = ['write', 'count']\nwait = 'end'\nnext = 'e'\n"
                             "[steps.e]\nend = 'passed'\n");
    const std::string caller =
        Write("p.toml", "name = 'n'\nstart = 's'\nfinally = ['back']\n[engine.parameters.100]\nvalue = 1\n"
                        "[commands.back]\nclass = 'ParameterWriter'\n"
                        "properties = { parameterID = '100', value = '0' }\n"
                        "[steps.s]\nprocedure = 'called.toml'\narguments = { id = '100', length = '5' }\n"
                        "next = 'e'\n[steps.e]\nend = 'passed'\n");
    EXPECT_EQ(CheckFile(caller, "").Print(), "");
    const LoadedFiles alone = CheckFile(called, Write("e.toml", "[parameters.100]\nvalue = 1\n"));
    EXPECT_FALSE(alone.HasErrors());
    const std::string both[] = {called, caller};
    for (const LoadedFiles& each : CheckFiles(both, ""))
        EXPECT_EQ(each.Print(), "");
    const std::string advice =
        " is empty: write a value, or have every procedure that runs this one give it as an argument\n";
    EXPECT_EQ(alone.Print().find(called + ":4:1: warning: data entry 'id', which command 'write' reads," +
                                 advice + called +
                                 ":5:1: warning: data entry 'length', which command 'count' reads," + advice),
              0U)
        << alone.Print();
}

TEST_F(LoadingTest, ProcedureWithoutAnEngine_IsCheckedWithoutItsParameters) {
    const std::string file =
        Write("p.toml", "name = 'n'\nstart = 's'\n[data]\ntext = '$p(7)'\n"
                        "[conditions.c]\nall = [{ parameter = '7', is = 1 }]\n"
                        "[commands.show]\nclass = 'DiagnosticTestInstruction'\n"
                        "properties = { dsValue = 'text' }\n"
                        "[commands.load]\nclass = 'ParameterLoader'\n"
                        "properties = { parameterID = '7', dsLocation = 'text' }\n"
                        "[steps.s]\nrun = ['show', 'load']\nuntil = 'c'\ntimeout = '1s'\nnext = 'e'\n"
                        "[steps.e]\nend = 'passed'\n");
    EXPECT_EQ(CheckFile(file, "").Print(),
              file + ":6:22: warning: the procedure has no engine, so parameters are "
                     "not checked: name one in 'engine' or with --engine\n");
    const LoadedProcedure toRun = LoadProcedure(file, "");
    EXPECT_TRUE(toRun.files.HasErrors());
    EXPECT_EQ(toRun.files.Print(),
              file + ":6:22: error: a condition on a parameter needs an engine: name one in "
                     "'engine' or with --engine\n");
}

TEST_F(LoadingTest, CheckedFile_IsAProcedureOrAnEngine) {
    EXPECT_EQ(CheckFile(Write("p.toml", m_procedure), "").Print(), "");
    EXPECT_EQ(CheckFile(Write("e.toml", "[parameters.100]\nvalue = 1\n"), "").Print(), "");
    const std::string file = FileName(m_folder.Path() / "none.toml");
    EXPECT_EQ(CheckFile(file, "").Print().find(file + ":1:1: error: the file cannot be read: "), 0U);
    EXPECT_THROW(CheckFile(Write("p.toml", m_procedure), "no such file"), InputError);
}

TEST_F(LoadingTest, CheckedFilesThatRunEachOther_AreBothMistakes) {
    const auto write = [this](const std::string& name, const std::string& called) {
        return Write(name, "name = 'n'\nstart = 's'\n[steps.s]\nprocedure = '" + called +
                               "'\nnext = 'e'\n[steps.e]\nend = 'passed'\n");
    };
    const std::string files[] = {write("a.toml", "b.toml"), write("b.toml", "a.toml")};
    const std::vector<LoadedFiles> checked = CheckFiles(files, "");
    ASSERT_EQ(checked.size(), 2U);
    EXPECT_EQ(checked[0].Print(), files[1] + ":4:13: error: the procedure 'a.toml' would run itself\n");
    EXPECT_EQ(checked[1].Print(), files[0] + ":4:13: error: the procedure 'b.toml' would run itself\n");
}

TEST_F(LoadingTest, FileThatCannotBeRead_Throws) {
    EXPECT_THROW(LoadProcedure("no such file", ""), InputError);
    EXPECT_THROW(LoadProcedure(Write("p.toml", m_procedure), "no such file"), InputError);
    EXPECT_THROW(LoadEngine("no such file"), InputError);
}

TEST_F(LoadingTest, Engine_IsReadFromItsFileOrFromAProcedure) {
    const std::string engine = "[parameters.100]\nvalue = 1\n";
    EXPECT_TRUE(LoadEngine(Write("e.toml", engine)).engine->parameters.contains("100"));
    EXPECT_TRUE(
        LoadEngine(Write("p.toml", "engine = 'e.toml'\n" + m_procedure)).engine->parameters.contains("100"));
    EXPECT_FALSE(LoadEngine(Write("q.toml", m_procedure)).engine.has_value());
    const LoadedEngine wrong = LoadEngine(Write("w.toml", "parameters = 1\n"));
    EXPECT_TRUE(wrong.files.HasErrors());
}

} // namespace

} // namespace vant::host
