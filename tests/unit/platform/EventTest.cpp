#include "platform/Event.h"

#include "platform/Clock.h"

#include <gtest/gtest.h>
#include <thread>

namespace vant {

namespace {

TEST(Event, BeginsNotSignalled) {
    Event event;
    EXPECT_EQ(WAIT_TIMEOUT, event.Wait(0));
}

TEST(Event, AutoReset_OneWaitTakesTheSignal) {
    Event event;
    event.Set();
    EXPECT_EQ(WAIT_OBJECT_0, event.Wait(0));
    EXPECT_EQ(WAIT_TIMEOUT, event.Wait(0));
}

TEST(Event, AutoReset_SignalsDoNotAccumulate) {
    Event event;
    event.Set();
    event.Set();
    EXPECT_EQ(WAIT_OBJECT_0, event.Wait(INFINITE));
    EXPECT_EQ(WAIT_TIMEOUT, event.Wait(0));
}

TEST(Event, ManualReset_StaysSignalledUntilReset) {
    Event event(Event::Kind::ManualReset);
    event.Set();
    EXPECT_EQ(WAIT_OBJECT_0, event.Wait(0));
    EXPECT_EQ(WAIT_OBJECT_0, event.Wait(INFINITE));
    event.Reset();
    EXPECT_EQ(WAIT_TIMEOUT, event.Wait(0));
}

TEST(Event, Reset_TakesTheSignalBack) {
    Event event;
    event.Set();
    event.Reset();
    EXPECT_EQ(WAIT_TIMEOUT, event.Wait(0));
}

TEST(Event, Wait_LastsAsLongAsItSays) {
    Event event;
    const std::int64_t start = ClockMilliseconds();
    EXPECT_EQ(WAIT_TIMEOUT, event.Wait(30));
    EXPECT_GE(ClockMilliseconds() - start, 29); // Two clocks of the system may differ by a fraction.
}

TEST(Event, SetOnAnotherThread_EndsAWaitWithoutEnd) {
    Event event;
    std::thread setter([&event] { event.Set(); });
    EXPECT_EQ(WAIT_OBJECT_0, event.Wait(INFINITE));
    setter.join();
}

TEST(Event, WhatIsWrittenBeforeSet_IsSeenAfterTheWait) {
    Event event;
    int value = 0;
    std::thread setter([&] {
        value = 7;
        event.Set();
    });
    event.Wait(INFINITE);
    EXPECT_EQ(7, value);
    setter.join();
}

TEST(Sleep, LastsAsLongAsItSays) {
    const std::int64_t start = ClockMilliseconds();
    ::Sleep(30);
    EXPECT_GE(ClockMilliseconds() - start, 29);
}

TEST(CreateEventW, InitialState_IsSignalled) {
    const HANDLE event = CreateEventW(nullptr, FALSE, TRUE, nullptr);
    ASSERT_NE(nullptr, event);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 0));
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event, 0));
    EXPECT_NE(FALSE, CloseHandle(event));
}

TEST(CreateEventW, EventOperations_AnswerTrue) {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ASSERT_NE(nullptr, event);
    EXPECT_NE(FALSE, SetEvent(event));
    EXPECT_NE(FALSE, ResetEvent(event));
    EXPECT_NE(FALSE, CloseHandle(event));
}

TEST(NullHandle, IsRefusedByEveryOperation) {
    EXPECT_EQ(FALSE, SetEvent(nullptr));
    EXPECT_EQ(FALSE, ResetEvent(nullptr));
    EXPECT_EQ(FALSE, CloseHandle(nullptr));
    EXPECT_EQ(WAIT_FAILED, WaitForSingleObject(nullptr, 0));
    EXPECT_EQ(WAIT_FAILED, WaitForSingleObject(nullptr, INFINITE));
}

} // namespace

} // namespace vant
