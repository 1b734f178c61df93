#include "host/procedure/ProcedureReader.h"
#include "host/runner/CommandCheck.h"
#include "tests/unit/host/BuiltModule.h"
#include "tests/unit/host/ScriptedFactory.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

/// All that the built module's classes say about a command, whose class begins in line 6 and whose properties
/// in line 7.
std::string Said(const std::string& command) {
    const LoadedModule module(test::BuiltModuleFile());
    Diagnostics found;
    const Procedure procedure = ReadProcedure(
        "name = 'n'\nstart = 's'\n[steps]\ns = { end = 'passed' }\n[commands.c]\n" + command, found);
    CheckCommands(procedure, module, found);
    EXPECT_TRUE(module.CanUnload());
    std::string result;
    for (const Diagnostic& each : found.Sorted())
        result += each.Text("f") + '\n';
    return result;
}

std::string Calculator(const std::string& properties) {
    return "class = 'Calculator'\nproperties = { " + properties + " }\n";
}

TEST(ProcedureCheck, CompleteCommand_IsAccepted) {
    EXPECT_EQ(Said(Calculator("sourceA = '1', dsResult = 'r', operation = 'add'")), "");
}

TEST(ProcedureCheck, UnknownClass_IsReportedWithTheNearestName) {
    EXPECT_EQ(Said("class = 'Calculater'"),
              "f:6:9: error: there is no class 'Calculater' (did you mean 'Calculator'?)\n");
    EXPECT_EQ(Said("class = 'Nothing'"), "f:6:9: error: there is no class 'Nothing'\n");
}

TEST(ProcedureCheck, ClassThatTheModuleLacks_IsReportedAsSuch) {
    const test::ScriptedFactory empty;
    Diagnostics found;
    Procedure procedure;
    procedure.commands["c"].className = {"Timer", {6, 9}};
    CheckCommands(procedure, empty, found);
    EXPECT_EQ(found.Sorted().at(0).Text("f"), "f:6:9: error: class 'Timer' is not in this module");
}

TEST(ProcedureCheck, UnknownProperty_IsReportedWithTheNameThatTheClassAccepts) {
    EXPECT_EQ(Said(Calculator("operaton = 'add'")),
              "f:7:16: error: class Calculator has no property 'operaton' (did you mean 'operation'?)\n");
    EXPECT_EQ(Said(Calculator("ddsResult = 'add'")),
              "f:7:16: error: class Calculator has no property 'ddsResult' (did you mean 'dsResult'?)\n");
    EXPECT_EQ(Said(Calculator("sourcea = '1'")),
              "f:7:16: error: class Calculator has no property 'sourcea' (did you mean 'sourceA'?)\n");
    EXPECT_EQ(Said(Calculator("suorceA = '1'")),
              "f:7:16: error: class Calculator has no property 'suorceA' (did you mean 'sourceA'?)\n");
    EXPECT_EQ(Said(Calculator("colour = 'red'")),
              "f:7:16: error: class Calculator has no property 'colour'\n");
}

TEST(ProcedureCheck, EveryUnknownProperty_IsReported) {
    EXPECT_EQ(Said(Calculator("colour = 'red', size = '1'")),
              "f:7:16: error: class Calculator has no property 'colour'\n"
              "f:7:32: error: class Calculator has no property 'size'\n");
}

TEST(ProcedureCheck, IncompleteSet_IsReportedAtTheCommand) {
    EXPECT_EQ(
        Said(Calculator("sourceA = '1', operation = 'add'")),
        "f:5:11: error: command 'c' has not the properties that a Calculator needs: one is missing, or two "
        "exclude each other\n");
}

TEST(ProcedureCheck, PropertiesThatExcludeEachOther_AreNamed) {
    EXPECT_EQ(
        Said(Calculator("sourceA = '1', dsSourceA = 'a', dsResult = 'r', operation = 'add'")),
        "f:5:11: error: command 'c' has not the properties that a Calculator needs: leave out 'sourceA' or "
        "'dsSourceA'\n");
}

TEST(ProcedureCheck, ClassThatCannotBeCreated_IsAFailureOfTheModule) {
    test::ScriptedFactory factory;
    factory.createResult = E_OUTOFMEMORY;
    Procedure procedure;
    procedure.commands["c"].className = {"Calculator", {}};
    Diagnostics found;
    EXPECT_THROW(CheckCommands(procedure, factory, found), ModuleFailure);
}

} // namespace

} // namespace vant::host
