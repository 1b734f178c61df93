#include "platform/portable/testing.h"
#include "tests/support/VirtualTime.h"
#include "tests/unit/framework/PersistentProbe.h"

#include <malloc.h>

namespace vant::test {

namespace {

class ExecutedOften : public WithPersistentProbe<250> {
protected:
    void ExecuteAndStop(int times) {
        host.Threads().startsThreads = false;
        for (int time = 0; time < times; ++time) {
            ASSERT_EQ(S_OK, Execute());
            ASSERT_EQ(S_OK, Stop());
            host.Threads().ReleaseCallbacks();
            host.Threads().ForgetRegistrations();
            host.ForgetCalls();
            host.stoppedCommands.clear();
        }
    }
};

TEST_F(ExecutedOften, HoldsOneEventAndNoMoreMemory) {
    const std::size_t eventsBefore = testing::LiveEventCount();
    const std::size_t stringsBefore = testing::LiveBstrCount();
    ExecuteAndStop(1000);
    const std::size_t events = testing::LiveEventCount();
    const auto memory = mallinfo2().uordblks;
    ExecuteAndStop(100'000);
    EXPECT_EQ(events, testing::LiveEventCount());
    EXPECT_EQ(eventsBefore + 1, events);
    EXPECT_EQ(stringsBefore, testing::LiveBstrCount());
    EXPECT_EQ(memory, mallinfo2().uordblks);
    command.Release();
    EXPECT_EQ(eventsBefore, testing::LiveEventCount());
}

TEST_F(ExecutedOften, OnThreadsOfTheirOwn_HoldsOneEvent) {
    const VirtualTime virtualTime;
    const std::size_t before = testing::LiveEventCount();
    for (int time = 0; time < 1000; ++time) {
        ASSERT_EQ(S_OK, Execute());
        ASSERT_EQ(S_OK, Stop());
        host.Threads().Join();
        host.Threads().ForgetRegistrations();
    }
    EXPECT_EQ(1000, probe->runs);
    EXPECT_EQ(before + 1, testing::LiveEventCount());
}

} // namespace

} // namespace vant::test
