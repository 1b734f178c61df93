#include "platform/Process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace vant {
namespace {

TEST(PortableProcess, Arguments_AreThoseAfterTheProgramsName) {
    const char* const arguments[] = {"program", "first", "\xC3\xBC"};
    EXPECT_EQ((std::vector<std::string>{"first", "\xC3\xBC"}), ProcessArguments(3, arguments));
    EXPECT_TRUE(ProcessArguments(1, arguments).empty());
    EXPECT_TRUE(ProcessArguments(0, arguments).empty());
}

TEST(PortableProcess, ProgramFolder_HoldsThisProgram) {
    EXPECT_TRUE(std::filesystem::exists(ProgramFolder() / "unit_platform"));
}

TEST(PortableProcess, ClosedStandardStreams_AreNotTakenByFilesAndFail) {
    EXPECT_EXIT(
        {
            close(STDIN_FILENO);
            close(STDOUT_FILENO);
            close(STDERR_FILENO);
            SecureStandardStreams();
            char byte = 0;
            const bool standardOnesFail = read(STDIN_FILENO, &byte, 1) < 0 &&
                                          write(STDOUT_FILENO, &byte, 1) < 0 &&
                                          write(STDERR_FILENO, &byte, 1) < 0;
            const int next = open("/dev/null", O_RDONLY);
            std::_Exit(standardOnesFail && next > STDERR_FILENO ? 7 : 8);
        },
        ::testing::ExitedWithCode(7), "");
}

TEST(PortableProcess, OpenStandardStreams_StayWhatTheyAre) {
    EXPECT_EXIT(
        {
            SecureStandardStreams();
            constexpr char text[] = "still here";
            std::_Exit(write(STDERR_FILENO, text, sizeof(text) - 1) > 0 ? 7 : 8);
        },
        ::testing::ExitedWithCode(7), "still here");
}

TEST(PortableProcess, ClosedPipe_FailsTheWriteOnly) {
    EXPECT_EXIT(
        {
            SecureStandardStreams();
            int ends[2] = {};
            if (pipe(ends) != 0)
                std::_Exit(9);
            close(ends[0]);
            std::_Exit(write(ends[1], "x", 1) < 0 && errno == EPIPE ? 7 : 8);
        },
        ::testing::ExitedWithCode(7), "");
}

} // namespace
} // namespace vant
