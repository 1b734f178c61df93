#include "platform/Clock.h"

#include "platform/Event.h"

#include <chrono>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vant {

namespace {

using Steps = std::vector<std::string>;

/// Real milliseconds.
double MeasureRealTime(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Virtual time in which the test's thread takes part. What its threads write needs no lock: one runs at a
/// time.
class VirtualTime : public ::testing::Test {
protected:
    VirtualTime() {
        UseVirtualTime();
        m_participant.emplace();
    }
    ~VirtualTime() override {
        Join();
        m_participant.reset();
        UseRealTime();
    }

    void Start(std::function<void()> work) { Start(ClockPlace(), std::move(work)); }
    void Start(ClockPlace place, std::function<void()> work) {
        Work& added = m_threads.emplace_back();
        added.thread = std::thread(
            [&added, work = std::move(work)](ClockPlace ownPlace) {
                const ClockParticipant participant(std::move(ownPlace));
                work();
                added.ended.Set();
            },
            std::move(place));
    }
    /// Waits until all threads have ended; time goes on.
    void Join() {
        for (Work& work : m_threads) {
            work.ended.Wait(INFINITE);
            work.thread.join();
        }
        m_threads.clear();
    }
    /// Notes a step with its time.
    void Note(const std::string& step) { steps.push_back(std::to_string(ClockMilliseconds()) + ' ' + step); }
    /// From here on the test's thread does not take part.
    void LeaveTime() { m_participant.reset(); }

    Steps steps;

private:
    struct Work {
        Event ended{Event::Kind::ManualReset};
        std::thread thread;
    };

    std::deque<Work> m_threads;
    std::optional<ClockParticipant> m_participant;
};

TEST_F(VirtualTime, BeginsAt0AndStandsStillWhileAThreadRuns) {
    EXPECT_EQ(0, ClockMilliseconds());
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(0, ClockMilliseconds());
}

TEST_F(VirtualTime, Sleep_TakesItsTimeInVirtualTimeAndNoneInRealTime) {
    const double taken = MeasureRealTime([] { Sleep(3'600'000); });
    EXPECT_EQ(3'600'000, ClockMilliseconds());
    EXPECT_LT(taken, 60'000);
}

TEST_F(VirtualTime, SleepOfNoLength_TakesNoTimeAndLetsNobodyElseRun) {
    Start([this] { Note("other"); });
    Sleep(0);
    Note("own");
    Join();
    EXPECT_EQ((Steps{"0 own", "0 other"}), steps);
}

TEST_F(VirtualTime, ZeroWait_LetsNobodyElseRun) {
    Start([this] { Note("other"); });
    Event event;
    EXPECT_EQ(WAIT_TIMEOUT, event.Wait(0));
    Note("own");
    Join();
    EXPECT_EQ((Steps{"0 own", "0 other"}), steps);
}

TEST_F(VirtualTime, SignalledEvent_LetsNobodyElseRun) {
    Start([this] { Note("other"); });
    Event event;
    event.Set();
    EXPECT_EQ(WAIT_OBJECT_0, event.Wait(INFINITE));
    Note("own");
    Join();
    EXPECT_EQ((Steps{"0 own", "0 other"}), steps);
}

TEST_F(VirtualTime, LongestTimes_AreCounted) {
    Sleep(INFINITE - 1);
    Sleep(INFINITE - 1);
    EXPECT_EQ(2 * (std::int64_t{INFINITE} - 1), ClockMilliseconds());
}

TEST_F(VirtualTime, Time_JumpsFromDeadlineToDeadline) {
    Start([this] {
        Sleep(300);
        Note("long");
    });
    Start([this] {
        Sleep(100);
        Note("short");
        Sleep(100);
        Note("short again");
    });
    Join();
    EXPECT_EQ((Steps{"100 short", "200 short again", "300 long"}), steps);
}

TEST_F(VirtualTime, EqualDeadlines_RunInTheOrderInWhichTheyBeganToWait) {
    Start([this] {
        Sleep(50);
        Sleep(50);
        Note("began last");
    });
    for (const char* name : {"first", "second", "third"})
        Start([this, name] {
            Sleep(100);
            Note(name);
        });
    Join();
    EXPECT_EQ((Steps{"100 first", "100 second", "100 third", "100 began last"}), steps);
}

TEST_F(VirtualTime, Threads_RunFirstInTheOrderOfTheirPlaces) {
    ClockPlace first;
    ClockPlace second;
    Start(std::move(second), [this] { Note("second place"); });
    Start(std::move(first), [this] { Note("first place"); });
    Join();
    EXPECT_EQ((Steps{"0 first place", "0 second place"}), steps);
}

TEST_F(VirtualTime, PlaceOfAThreadThatNeverStarts_IsGivenUp) {
    { const ClockPlace place; }
    Sleep(10);
    EXPECT_EQ(10, ClockMilliseconds());
}

TEST_F(VirtualTime, MovedPlace_IsGivenUpOnce) {
    {
        ClockPlace place;
        const ClockPlace moved(std::move(place));
    }
    Sleep(10);
    EXPECT_EQ(10, ClockMilliseconds());
}

TEST_F(VirtualTime, PlaceOfAThreadThatHasNotStarted_KeepsTimeFromPassing) {
    std::optional<ClockPlace> place(std::in_place);
    Start([this] {
        Sleep(10);
        Note("slept");
    });
    LeaveTime();
    EXPECT_EQ(0, ClockMilliseconds());
    EXPECT_TRUE(steps.empty());
    place.reset();
    Join();
    EXPECT_EQ((Steps{"10 slept"}), steps);
}

TEST_F(VirtualTime, Set_EndsAWaitAtTheTimeOfTheSignal) {
    Event event;
    Start([&] {
        EXPECT_EQ(WAIT_OBJECT_0, event.Wait(1000));
        Note("signalled");
    });
    Sleep(400);
    event.Set();
    Join();
    Sleep(1); // The deadline that was not reached does not pull the time.
    Note("later");
    EXPECT_EQ((Steps{"400 signalled", "401 later"}), steps);
}

TEST_F(VirtualTime, Set_LetsTheSetterGoOnUntilItWaits) {
    Event event;
    Start([&] {
        event.Wait(INFINITE);
        Note("woken");
    });
    Sleep(1);
    event.Set();
    Note("set");
    Sleep(1);
    Note("waited");
    EXPECT_EQ((Steps{"1 set", "1 woken", "2 waited"}), steps);
}

TEST_F(VirtualTime, OneSignal_GoesToTheThreadThatHasWaitedLongest) {
    Event event;
    for (const char* name : {"first", "second"})
        Start([&, name] {
            event.Wait(INFINITE);
            Note(name);
        });
    Sleep(10);
    event.Set();
    Sleep(10);
    event.Set();
    Join();
    EXPECT_EQ((Steps{"10 first", "20 second"}), steps);
}

TEST_F(VirtualTime, TwoSignalsForTwoWaiters_AreNotLost) {
    Event event;
    for (const char* name : {"first", "second"})
        Start([&, name] {
            event.Wait(INFINITE);
            Note(name);
        });
    Sleep(10);
    event.Set();
    event.Set();
    Join();
    EXPECT_EQ((Steps{"10 first", "10 second"}), steps);
    EXPECT_EQ(WAIT_TIMEOUT, event.Wait(0));
}

TEST_F(VirtualTime, ManualResetEvent_WakesAllInTheOrderInWhichTheyWaited) {
    Event event(Event::Kind::ManualReset);
    for (const char* name : {"first", "second", "third"})
        Start([&, name] {
            event.Wait(INFINITE);
            Note(name);
        });
    Sleep(10);
    event.Set();
    Join();
    EXPECT_EQ((Steps{"10 first", "10 second", "10 third"}), steps);
}

TEST_F(VirtualTime, SignalAtTheMomentOfTheDeadline_ComesTooLateForTheWaitThatBeganFirst) {
    Event event;
    Start([&] {
        EXPECT_EQ(WAIT_TIMEOUT, event.Wait(100));
        Note("timed out");
    });
    Start([&] {
        Sleep(100);
        event.Set();
        Note("set");
    });
    Join();
    EXPECT_EQ((Steps{"100 timed out", "100 set"}), steps);
    EXPECT_EQ(WAIT_OBJECT_0, event.Wait(0)); // The signal stays.
}

TEST_F(VirtualTime, SignalAtTheMomentOfTheDeadline_EndsTheWaitThatBeganLater) {
    Event event;
    Start([&] {
        Sleep(100);
        event.Set();
        Note("set");
    });
    Start([&] {
        EXPECT_EQ(WAIT_OBJECT_0, event.Wait(100));
        Note("signalled");
    });
    Join();
    EXPECT_EQ((Steps{"100 set", "100 signalled"}), steps);
}

TEST_F(VirtualTime, NobodyWithADeadline_TimeStandsUntilASignalFromOutside) {
    Event event;
    Start([&] {
        Sleep(10);
        event.Wait(INFINITE);
        Note("signalled from outside");
    });
    Sleep(20); // The thread waits for the event now.
    LeaveTime();
    event.Set();
    Join();
    EXPECT_EQ((Steps{"20 signalled from outside"}), steps);
}

TEST_F(VirtualTime, ThreadThatTakesNoPart_WaitsInRealTime) {
    LeaveTime();
    Event event;
    const double taken = MeasureRealTime([&] { EXPECT_EQ(WAIT_TIMEOUT, event.Wait(20)); });
    EXPECT_GE(taken, 19);
    EXPECT_EQ(0, ClockMilliseconds());
}

TEST_F(VirtualTime, ThreadThatNoLongerTakesPart_DoesNotHoldTimeUp) {
    Start([this] {
        Sleep(10);
        Note("alone");
    });
    LeaveTime();
    Join();
    EXPECT_EQ((Steps{"10 alone"}), steps);
}

TEST_F(VirtualTime, UsedAgain_BeginsAt0) {
    Sleep(10);
    LeaveTime();
    UseVirtualTime();
    EXPECT_EQ(0, ClockMilliseconds());
}

/// Several threads that sleep, wait for each other and start further ones.
class ManySteps : public VirtualTime {
protected:
    void Run() {
        Event handover;
        for (unsigned thread = 0; thread < 4; ++thread)
            Start([this, thread, &handover] {
                unsigned state = thread + 1;
                for (int step = 0; step < 5; ++step) {
                    state = state * 1103515245 + 12345;
                    const DWORD length = state >> 16 & 3;
                    if (length == 0)
                        handover.Set();
                    const DWORD outcome = thread % 2 ? handover.Wait(10 * length) : (Sleep(length), 0);
                    Note(std::to_string(thread) + (outcome == WAIT_OBJECT_0 ? " signalled" : " timed out"));
                }
            });
        Join();
    }
};

TEST_F(ManySteps, Repeated1000Times_AreTheSameEveryTime) {
    Run();
    const Steps expected = std::exchange(steps, {});
    ASSERT_EQ(20u, expected.size());
    for (int repetition = 0; repetition < 1000; ++repetition) {
        LeaveTime();
        UseVirtualTime();
        const ClockParticipant participant;
        Run();
        ASSERT_EQ(expected, std::exchange(steps, {})) << repetition;
    }
}

TEST(RealTime, ParticipantsAndPlaces_DoNothing) {
    const ClockPlace place;
    const ClockParticipant first;
    const ClockParticipant second;
    Event event;
    const double taken = MeasureRealTime([&] { EXPECT_EQ(WAIT_TIMEOUT, event.Wait(20)); });
    EXPECT_GE(taken, 19);
}

TEST(ScaledTime, WaitsAreShorterByTheSpeed) {
    UseRealTime(100);
    Event event;
    const std::int64_t start = ClockMilliseconds();
    const double taken = MeasureRealTime([&] {
        Sleep(1000);
        EXPECT_EQ(WAIT_TIMEOUT, event.Wait(1000));
    });
    const std::int64_t passed = ClockMilliseconds() - start;
    UseRealTime();
    EXPECT_GE(passed, 1990);
    EXPECT_GE(taken, 19);
    EXPECT_LT(taken, 1500); // far less than the 2000 of real time
}

TEST(ScaledTime, SpeedBelow1_MakesWaitsLonger) {
    UseRealTime(0.5);
    const double taken = MeasureRealTime([] { Sleep(10); });
    UseRealTime();
    EXPECT_GE(taken, 19);
}

TEST(ScaledTime, Set_EndsAWaitAtOnce) {
    UseRealTime(0.001);
    Event event;
    std::thread setter([&event] { event.Set(); });
    EXPECT_EQ(WAIT_OBJECT_0, event.Wait(60'000)); // 1000 minutes of real time
    setter.join();
    UseRealTime();
}

} // namespace

} // namespace vant
