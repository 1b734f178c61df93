#include "host/runner/CommandCheck.h"

#include "host/procedure/ProcedureReader.h"
#include "host/runner/LoadedModule.h"
#include "tests/unit/host/BuiltModule.h"
#include "tests/unit/host/ScriptedFactory.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

TEST(CommandCheck, CommandsOfTheBuiltModule_AreAccepted) {
    const LoadedModule module(test::BuiltModuleFile());
    Diagnostics found;
    const Procedure procedure =
        ReadProcedure("name = 'n'\nstart = 's'\n[steps]\ns = { end = 'passed' }\n[commands.c]\n"
                      "class = 'Calculator'\n"
                      "properties = { sourceA = '1', dsResult = 'r', operation = 'add' }\n",
                      found);
    CheckCommands(procedure, module, found);
    EXPECT_EQ(found.Print("f"), "");
    EXPECT_TRUE(module.CanUnload());
}

TEST(CommandCheck, IncompleteSet_IsRefusedByTheBuiltModule) {
    const LoadedModule module(test::BuiltModuleFile());
    Procedure procedure;
    Command& command = procedure.commands["c"];
    command.position = {5, 11};
    command.className = {"Calculator", {6, 9}};
    command.properties.push_back({{"sourceA", {}}, {"1", {}}});
    Diagnostics found;
    CheckCommands(procedure, module, found);
    EXPECT_EQ(found.Print("f"), "f:5:11: error: the module does not accept the properties of command 'c'\n");
}

TEST(CommandCheck, PropertyThatTheModuleRefuses_IsReported) {
    test::ScriptedFactory factory;
    factory.classes["Timer"] = {};
    Procedure procedure;
    Command& command = procedure.commands["c"];
    command.position = {5, 11};
    command.className = {"Timer", {6, 9}};
    command.properties.push_back({{"refused", {7, 3}}, {"1", {}}});
    Diagnostics found;
    CheckCommands(procedure, factory, found);
    EXPECT_EQ(found.Print("f"),
              "f:7:3: error: the module refuses property 'refused' of command 'c': 0x80070057\n");
}

TEST(CommandCheck, ClassThatTheModuleLacks_IsReportedForEachCommand) {
    const test::ScriptedFactory empty;
    Diagnostics found;
    Procedure procedure;
    procedure.commands["a"].className = {"Timer", {6, 9}};
    procedure.commands["b"].className = {"Timer", {8, 9}};
    procedure.commands["c"].className = {"Unknown", {9, 9}};
    CheckCommands(procedure, empty, found);
    EXPECT_EQ(found.Print("f"), "f:6:9: error: class 'Timer' is not in this module\n"
                                "f:8:9: error: class 'Timer' is not in this module\n");
}

TEST(CommandCheck, ClassThatCannotBeCreated_IsAFailureOfTheModule) {
    test::ScriptedFactory factory;
    factory.createResult = E_OUTOFMEMORY;
    Procedure procedure;
    procedure.commands["c"].className = {"Calculator", {}};
    Diagnostics found;
    EXPECT_THROW(CheckCommands(procedure, factory, found), ModuleFailure);
}

} // namespace

} // namespace vant::host
