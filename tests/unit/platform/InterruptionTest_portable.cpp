#include "platform/Interruption.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace vant {
namespace {

/// As a terminal or another program asks: the signal goes to the process, not to a thread.
void Send(int signal) {
    kill(getpid(), signal);
}

class RequestToEnd : public ::testing::TestWithParam<int> {};

TEST_P(RequestToEnd, First_CallsTheHandlerOnAnotherThread) {
    EXPECT_EXIT(
        {
            static const auto here = std::this_thread::get_id();
            OnFirstInterrupt([] { std::_Exit(std::this_thread::get_id() == here ? 8 : 7); });
            Send(GetParam());
            for (;;)
                pause();
        },
        ::testing::ExitedWithCode(7), "");
}

// Real time, a little more than half a second.
TEST_P(RequestToEnd, SecondOneLater_EndsTheProgram) {
    EXPECT_EXIT(
        {
            OnFirstInterrupt([] {});
            Send(SIGINT);
            std::this_thread::sleep_for(std::chrono::milliseconds(600));
            Send(GetParam());
            for (;;)
                pause();
        },
        ::testing::KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(Signals, RequestToEnd, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(PortableInterruption, SecondOneAtOnce_CountsAsTheFirst) {
    EXPECT_EXIT(
        {
            OnFirstInterrupt([] {
                static int calls = 0;
                if (++calls > 1)
                    std::_Exit(8);
            });
            Send(SIGINT);
            Send(SIGINT);
            Send(SIGTERM);
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            std::_Exit(7);
        },
        ::testing::ExitedWithCode(7), "");
}

TEST(PortableInterruption, HangUpThatIsIgnored_StaysIgnored) {
    EXPECT_EXIT(
        {
            std::signal(SIGHUP, SIG_IGN);
            OnFirstInterrupt([] { std::_Exit(8); });
            Send(SIGHUP);
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            std::_Exit(7);
        },
        ::testing::ExitedWithCode(7), "");
}

} // namespace
} // namespace vant
