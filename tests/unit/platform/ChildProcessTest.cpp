#include "platform/ChildProcess.h"

#include "platform/DynamicLibrary.h"
#include "platform/Process.h"

#include <gtest/gtest.h>
#include <system_error>
#include <thread>

namespace vant {

namespace {

std::filesystem::path ChildFile() {
    std::filesystem::path file = ProgramFolder() / "UnitPlatformChild";
    return file.replace_extension(ProgramFile().extension());
}

std::string Line(ChildProcess& child) {
    std::string line;
    return child.ReadLine(line) ? line : "(no line)";
}

TEST(ChildProcess, Lines_GoToItAndComeBack) {
    ChildProcess child(ChildFile(), {});
    EXPECT_TRUE(child.Write("one\ntwo\nth"));
    EXPECT_EQ(Line(child), "one");
    EXPECT_EQ(Line(child), "two");
    EXPECT_TRUE(child.Write("ree\n"));
    EXPECT_EQ(Line(child), "three");
}

TEST(ChildProcess, LongLine_Arrives) {
    ChildProcess child(ChildFile(), {});
    const std::string line(300'000, 'x');
    std::jthread writer([&] { EXPECT_TRUE(child.Write(line + '\n')); });
    EXPECT_EQ(Line(child), line);
}

TEST(ChildProcess, Arguments_ArriveAsTheyAre) {
    const std::vector<std::string> arguments = {
        "plain", "two words", "", "a\"quote\"", "back\\slash\\", "\\\\\"", "Größe №", "*.toml", "$HOME %OS%"};
    ChildProcess child(ChildFile(), arguments);
    for (const std::string& each : arguments)
        EXPECT_EQ(Line(child), each);
}

TEST(ChildProcess, EndOfItsInput_EndsIt) {
    ChildProcess child(ChildFile(), {});
    EXPECT_EQ(child.AwaitEnd(), "exit code 7");
}

TEST(ChildProcess, ChildThatEnds_ReadsAndWritesNoMore) {
    ChildProcess child(ChildFile(), {});
    EXPECT_TRUE(child.Write("end 3\n"));
    EXPECT_EQ(Line(child), "(no line)");
    EXPECT_EQ(child.AwaitEnd(), "exit code 3");
}

TEST(ChildProcess, Kill_EndsItWhileAnotherThreadReads) {
    ChildProcess child(ChildFile(), {});
    EXPECT_TRUE(child.Write("one\n"));
    EXPECT_EQ(Line(child), "one");
    std::jthread killer([&] { child.Kill(); });
    EXPECT_EQ(Line(child), "(no line)");
    EXPECT_NE(child.AwaitEnd(), "exit code 7");
}

TEST(ChildProcess, OtherChildren_KeepNoPipeOpen) {
    ChildProcess first(ChildFile(), {});
    const ChildProcess second(ChildFile(), {});
    EXPECT_TRUE(first.Write("end 3\n"));
    EXPECT_EQ(Line(first), "(no line)");
    ChildProcess third(ChildFile(), {});
    const ChildProcess fourth(ChildFile(), {});
    EXPECT_EQ(third.AwaitEnd(), "exit code 7");
}

TEST(ChildProcess, ProgramThatDoesNotExist_IsRefused) {
    EXPECT_THROW(ChildProcess(ProgramFolder() / "no such program", {}), std::system_error);
}

} // namespace

} // namespace vant
