#include "tests/support/VirtualTime.h"
#include "tests/unit/framework/PersistentProbe.h"

#include <cstdint>

namespace vant::test {

namespace {

/// In virtual time; the times at which the body ran.
template <DWORD period>
class Timed : public WithPersistentProbe<period> {
protected:
    Timed() {
        this->probe->body = [this] { times.push_back(ClockMilliseconds()); };
    }

    std::vector<std::int64_t> times;

private:
    VirtualTime m_virtualTime;
};
class RunOnceTimed : public Timed<0> {
protected:
    /// The body waits for its stop so many times, 500 ms each.
    void WaitInTheBody(int waits) {
        probe->body = [this, waits] {
            for (int wait = 0; wait < waits; ++wait)
                outcomes.push_back(probe->WaitForStop(500));
        };
    }

    std::vector<DWORD> outcomes;
};
class RunRepeatedlyTimed : public Timed<250> {};

using Times = std::vector<std::int64_t>;

TEST_F(RunRepeatedlyTimed, Body_RunsAtOnceAndThenEveryPeriod) {
    Execute();
    EXPECT_EQ(Times{}, times); // Execute does not wait for the first run.
    Sleep(1100);
    Stop();
    host.Threads().Join();
    EXPECT_EQ((Times{0, 250, 500, 750, 1000}), times);
    EXPECT_EQ(1100, ClockMilliseconds());
}

TEST_F(RunRepeatedlyTimed, Period_BeginsAtTheEndOfTheBody) {
    probe->body = [this] {
        times.push_back(ClockMilliseconds());
        Sleep(100);
    };
    Execute();
    Sleep(1000);
    Stop();
    host.Threads().Join();
    EXPECT_EQ((Times{0, 350, 700}), times);
}

TEST_F(RunRepeatedlyTimed, StoppedBeforeTheFirstPeriodElapses_TheBodyRunsNoMore) {
    Execute();
    Sleep(100);
    Stop();
    host.Threads().Join();
    EXPECT_EQ(Times{0}, times);
    EXPECT_EQ(100, ClockMilliseconds());
}

TEST_F(RunRepeatedlyTimed, StoppedWhileTheBodyRuns_TheBodyEndsAndRunsNoMore) {
    probe->body = [this] {
        Sleep(100);
        times.push_back(ClockMilliseconds());
    };
    Execute();
    Sleep(50);
    Stop();
    host.Threads().Join();
    EXPECT_EQ(Times{100}, times);
    EXPECT_EQ(100, ClockMilliseconds());
}

TEST_F(RunRepeatedlyTimed, BodyThatThrowsInALaterRound_EndsTheLoopThere) {
    probe->body = [this] {
        times.push_back(ClockMilliseconds());
        if (times.size() == 3)
            throw CComException(E_FAIL);
    };
    Execute();
    host.Threads().Join();
    EXPECT_EQ((Times{0, 250, 500}), times);
    EXPECT_EQ(E_FAIL, host.Threads().Record().result);
    EXPECT_TRUE(host.stoppedCommands.empty());
}

TEST_F(RunRepeatedlyTimed, ExecutedAgainAfterStop_RunsAgain) {
    Execute();
    Sleep(300);
    Stop();
    host.Threads().Join();
    Execute();
    Sleep(300);
    Stop();
    host.Threads().Join();
    EXPECT_EQ((Times{0, 250, 300, 550}), times);
}

TEST_F(RunRepeatedlyTimed, ExecutedTwiceAtOnce_OneStopEndsOneRun) {
    Execute();
    Execute();
    Sleep(1000); // Both wait for the newest event by now.
    Stop();
    Sleep(300);
    EXPECT_EQ(1, host.Threads().Record(HostThreads::firstCookie).runs +
                     host.Threads().Record(HostThreads::firstCookie + 1).runs);
    Stop();
    host.Threads().Join();
    EXPECT_EQ(1300, ClockMilliseconds());
}

TEST_F(RunOnceTimed, BodyThatDoesNotLookAtTheEvent_IsNotStopped) {
    probe->body = [this] {
        Sleep(500);
        times.push_back(ClockMilliseconds());
    };
    Execute();
    Sleep(100);
    Stop();
    host.Threads().Join();
    EXPECT_EQ(Times{500}, times);
}

TEST_F(RunOnceTimed, BodyThatWaitsForTheEvent_IsStoppedAtOnce) {
    probe->body = [this] {
        EXPECT_EQ(WAIT_OBJECT_0, probe->WaitForStop(500));
        times.push_back(ClockMilliseconds());
    };
    Execute();
    Sleep(100);
    Stop();
    host.Threads().Join();
    EXPECT_EQ(Times{100}, times);
}

TEST_F(RunOnceTimed, OneStop_EndsOneWaitOfTheBody) {
    WaitInTheBody(2);
    Execute();
    Sleep(100);
    Stop();
    host.Threads().Join();
    EXPECT_EQ((std::vector<DWORD>{WAIT_OBJECT_0, WAIT_TIMEOUT}), outcomes);
    EXPECT_EQ(600, ClockMilliseconds());
}

TEST_F(RunOnceTimed, TwoStopsWhileTheBodyWaits_EndThisWaitAndTheNext) {
    WaitInTheBody(2);
    Execute();
    Sleep(100);
    Stop();
    Stop();
    host.Threads().Join();
    EXPECT_EQ((std::vector<DWORD>{WAIT_OBJECT_0, WAIT_OBJECT_0}), outcomes);
    EXPECT_EQ(100, ClockMilliseconds());
}

TEST_F(RunOnceTimed, StoppedAfterExecutingAgain_TheEarlierRunsWaitGoesOn) {
    WaitInTheBody(1);
    Execute();
    Sleep(100); // The first run waits for its own event.
    Execute();
    Sleep(100);
    Stop();
    host.Threads().Join();
    EXPECT_EQ((std::vector<DWORD>{WAIT_OBJECT_0, WAIT_TIMEOUT}), outcomes);
    EXPECT_EQ(500, ClockMilliseconds());
}

} // namespace

} // namespace vant::test
