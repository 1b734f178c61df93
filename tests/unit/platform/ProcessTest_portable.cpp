#include "platform/Process.h"
#include "platform/portable/kernel.h"
#include "platform/portable/testing.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <thread>
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

TEST(PortableProcess, FirstInterrupt_CallsTheHandlerOnAnotherThread) {
    EXPECT_EXIT(
        {
            static const auto here = std::this_thread::get_id();
            OnFirstInterrupt([] { std::_Exit(std::this_thread::get_id() == here ? 8 : 7); });
            std::raise(SIGINT);
            for (;;)
                pause();
        },
        ::testing::ExitedWithCode(7), "");
}

TEST(PortableProcess, SecondInterrupt_EndsTheProgram) {
    EXPECT_EXIT(
        {
            OnFirstInterrupt([] {});
            std::raise(SIGINT);
            std::raise(SIGINT);
        },
        ::testing::KilledBySignal(SIGINT), "");
}

TEST(PortableDebugOutput, Text_GoesToTheHookWhileThereIsOne) {
    static std::wstring received;
    received.clear();
    testing::SetOutputDebugHook([](LPCWSTR text) { received += text; });
    OutputDebugStringW(L"seen");
    testing::SetOutputDebugHook(nullptr);
    OutputDebugStringW(L"unseen");
    EXPECT_EQ(L"seen", received);
}

} // namespace
} // namespace vant
