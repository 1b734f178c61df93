#include "platform/DynamicLibrary.h"

#include "platform/Process.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace vant {
namespace {

template <class Action>
std::string MessageOf(Action action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing thrown";
}

TEST(DynamicLibrary, FileIsMissing_ThrowsTheSystemsReason) {
    const auto file = ProgramFolder() / LibraryFileName("NoSuchLibrary");
    const std::string reason = MessageOf([&] { DynamicLibrary library(file); });
    EXPECT_NE("", reason);
    EXPECT_NE("nothing thrown", reason);
}

TEST(DynamicLibrary, FileIsNoLibrary_ThrowsAnotherReason) {
    const auto missing = ProgramFolder() / LibraryFileName("NoSuchLibrary");
    const TemporaryFolder folder;
    const auto text = folder.Write(LibraryFileName("OnlyText"), "no library at all");
    const std::string reason = MessageOf([&] { DynamicLibrary library(text); });
    EXPECT_NE("", reason);
    EXPECT_NE("nothing thrown", reason);
    EXPECT_NE(MessageOf([&] { DynamicLibrary library(missing); }), reason);
}

TEST(DynamicLibrary, ExportIsMissing_ThrowsTheFilesAndTheExportsName) {
    const std::string name = LibraryFileName("UnitPlatformLibrary");
    const DynamicLibrary library(ProgramFolder() / name);
    EXPECT_EQ(name + " exports no NoSuchFunction",
              MessageOf([&] { library.Find<void()>("NoSuchFunction"); }));
}

TEST(DynamicLibrary, ExportIsThere_FindsIt) {
    const DynamicLibrary library(ProgramFolder() / LibraryFileName("UnitPlatformLibrary"));
    EXPECT_EQ(42, library.Find<int(int)>("Doubled")(21));
}

} // namespace
} // namespace vant
