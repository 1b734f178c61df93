#include "framework/interfaces/ClassIds.h"
#include "host/procedure/ClassReport.h"
#include "platform/Utf8.h"
#include "tests/unit/host/BuiltModule.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

namespace vant::host {

namespace {

TEST(LoadedModule, EveryClass_IsCreatedByName) {
    const LoadedModule module(test::BuiltModuleFile());
    for (const ClassRow& row : classTable) {
        CComPtr<IVantCommand> command;
        EXPECT_EQ(module.Create(ToUtf8(row.name), command), S_OK) << ToUtf8(std::wstring_view(row.name));
        EXPECT_TRUE(command);
    }
}

TEST(LoadedModule, UnknownClass_IsNotAvailable) {
    const LoadedModule module(test::BuiltModuleFile());
    CComPtr<IVantCommand> command;
    EXPECT_EQ(module.Create("calculator", command), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_FALSE(command);
}

TEST(LoadedModule, LiveCommand_ForbidsUnloading) {
    const LoadedModule module(test::BuiltModuleFile());
    EXPECT_TRUE(module.CanUnload());
    CComPtr<IVantCommand> command;
    ASSERT_EQ(module.Create("Calculator", command), S_OK);
    EXPECT_FALSE(module.CanUnload());
    command.Release();
    EXPECT_TRUE(module.CanUnload());
}

TEST(LoadedModule, ModuleThatSucceedsWithoutAnObject_IsAFailure) {
    const LoadedModule module(ProgramFolder() / LibraryFileName("UnitHostEmptyHandedModule"));
    CComPtr<IVantCommand> command;
    EXPECT_EQ(module.Create("Calculator", command), E_UNEXPECTED); // no command
    EXPECT_EQ(module.Create("Calculator", command), E_UNEXPECTED); // no class object
    EXPECT_FALSE(command);
}

TEST(LoadedModule, FileThatIsMissing_Throws) {
    EXPECT_THROW(LoadedModule(ProgramFolder() / "missing.library"), std::runtime_error);
}

TEST(LoadedModule, FileThatIsNotALibrary_Throws) {
    EXPECT_THROW(LoadedModule{ProgramFolder()}, std::runtime_error);
}

TEST(ClassNames, AreThoseOfTheTable) {
    const std::vector<std::string> names = ClassNames();
    EXPECT_EQ(names.size(), std::size(classTable));
    EXPECT_EQ(std::count(names.begin(), names.end(), "Calculator"), 1);
}

} // namespace

} // namespace vant::host
