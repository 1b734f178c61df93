#include "commands/Timer.h"
#include "tests/unit/commands/TimedRun.h"

namespace vant::test {

namespace {

class TimerInTime : public TimedRun<CTimer> {};

TEST_F(TimerInTime, DownCounter_CountsToMinus1) {
    RunToEnd({{L"length", L"2"},
              {L"dsBase", L"count"},
              {L"startCommandID", L"start"},
              {L"tickCommandID", L"tick"},
              {L"stopCommandID", L"stop"}});
    EXPECT_EQ((Calls{"0 SetValue(count, 2)", "0 RunCommandFromThread(start)", "0 RunCommandFromThread(tick)",
                     "1000 SetValue(count, \"1\")", "1000 RunCommandFromThread(tick)",
                     "2000 SetValue(count, \"0\")", "2000 RunCommandFromThread(tick)",
                     "3000 SetValue(count, \"-1\")", "3000 RunCommandFromThread(stop)"}),
              log);
}

TEST_F(TimerInTime, UpCounter_CountsOneBeyondItsLength) {
    RunToEnd({{L"length", L"2"}, {L"dsBase", L"count"}, {L"type", L"upCounter"}});
    EXPECT_EQ((Calls{"0 SetValue(count, 2)", "1000 SetValue(count, \"1\")", "2000 SetValue(count, \"2\")",
                     "3000 SetValue(count, \"3\")"}),
              log);
}

TEST_F(TimerInTime, OtherTypes_CountDown) {
    for (const wchar_t* type : {L"UpCounter", L"upcounter", L"upCounter ", L"downCounter", L""}) {
        const std::int64_t start = ClockMilliseconds();
        Start({{L"length", L"0"}, {L"dsBase", L"count"}, {L"type", type}});
        Join();
        EXPECT_EQ(start + 1000, ClockMilliseconds());
        EXPECT_EQ("\"-1\"", Stored(L"count")) << Show(type);
    }
}

TEST_F(TimerInTime, Length0_TicksOnceAndLastsOneSecond) {
    RunToEnd({{L"length", L"0"},
              {L"dsBase", L"count"},
              {L"startCommandID", L"start"},
              {L"tickCommandID", L"tick"},
              {L"stopCommandID", L"stop"}});
    EXPECT_EQ((Calls{"0 SetValue(count, 0)", "0 RunCommandFromThread(start)", "0 RunCommandFromThread(tick)",
                     "1000 SetValue(count, \"-1\")", "1000 RunCommandFromThread(stop)"}),
              log);
}

TEST_F(TimerInTime, Length0_UpCounter_EndsAt1) {
    RunToEnd({{L"length", L"0"}, {L"dsBase", L"count"}, {L"type", L"upCounter"}});
    EXPECT_EQ((Calls{"0 SetValue(count, 0)", "1000 SetValue(count, \"1\")"}), log);
}

TEST_F(TimerInTime, LengthFromTheDataStore_IsReadOnce) {
    Store(L"seconds", L"1");
    RunToEnd({{L"dsLength", L"seconds"}, {L"dsBase", L"count"}});
    EXPECT_EQ((Calls{"0 GetValue(seconds)", "0 SetValue(count, 1)", "1000 SetValue(count, \"0\")",
                     "2000 SetValue(count, \"-1\")"}),
              log);
}

TEST_F(TimerInTime, LongCount_TicksOnceMoreThanItsLength) {
    RunToEnd({{L"length", L"600"}, {L"dsBase", L"count"}, {L"tickCommandID", L"tick"}});
    EXPECT_EQ(601u, LoggedCalls("RunCommandFromThread(tick)").size());
    EXPECT_EQ(601'000, ClockMilliseconds());
    EXPECT_EQ("\"-1\"", Stored(L"count"));
}

TEST_F(TimerInTime, StoppedInThirdSecond_RunsNoStopCommand) {
    Start({{L"length", L"10"}, {L"dsBase", L"count"}, {L"stopCommandID", L"stop"}});
    Sleep(2500);
    EXPECT_EQ(S_OK, Stop());
    Join();
    EXPECT_EQ((Calls{"0 SetValue(count, 10)", "1000 SetValue(count, \"9\")", "2000 SetValue(count, \"8\")",
                     "2500 PersistentCommandStopped()"}),
              log);
    EXPECT_EQ(2500, ClockMilliseconds());
}

TEST_F(TimerInTime, RunOut_TellsTheControllerNothing) {
    RunToEnd({{L"length", L"1"}, {L"dsBase", L"count"}, {L"stopCommandID", L"stop"}});
    EXPECT_TRUE(host.stoppedCommands.empty());
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(TimerInTime, FailedPublicationsAndCommands_AreIgnored) {
    host.fail["SetValue"] = E_ACCESSDENIED;
    host.fail["RunCommandFromThread"] = E_NOTIMPL;
    RunToEnd(
        {{L"length", L"1"}, {L"dsBase", L"count"}, {L"tickCommandID", L"tick"}, {L"stopCommandID", L"stop"}});
    EXPECT_EQ((Calls{"0 SetValue(count, 1)", "0 RunCommandFromThread(tick)", "1000 SetValue(count, \"0\")",
                     "1000 RunCommandFromThread(tick)", "2000 SetValue(count, \"-1\")",
                     "2000 RunCommandFromThread(stop)"}),
              log);
}

TEST_F(TimerInTime, CommandsThatTakeTime_DelayTheCount) {
    const auto note = host.onCall;
    host.onCall = [note](const std::string& call) {
        note(call);
        if (call == "RunCommandFromThread(tick)")
            Sleep(300);
    };
    RunToEnd({{L"length", L"1"}, {L"dsBase", L"count"}, {L"tickCommandID", L"tick"}});
    EXPECT_EQ((Calls{"0 SetValue(count, 1)", "1300 SetValue(count, \"0\")", "2600 SetValue(count, \"-1\")"}),
              LoggedCalls("SetValue"));
}

TEST_F(TimerInTime, ExecutedAgainAfterItsEnd_CountsAgain) {
    RunToEnd({{L"length", L"0"}, {L"dsBase", L"count"}});
    log.clear();
    EXPECT_EQ(S_OK, command->Execute());
    Join();
    EXPECT_EQ((Calls{"1000 SetValue(count, 0)", "2000 SetValue(count, \"-1\")"}), LoggedCalls("SetValue"));
}

} // namespace

} // namespace vant::test
