#include "commands/ParameterSampler.h"
#include "tests/unit/commands/TimedRun.h"

namespace vant::test {

namespace {

class ParameterSamplerInTime : public TimedRun<CParameterSampler> {
protected:
    ParameterSamplerInTime() {
        host.parameters[L"100"] = {L"Engine speed", L"750", CComVariant(750.0), L"rpm"};
    }

    void Start() {
        TimedRun::Start({{L"parameterID", L"100"},
                         {L"period", L"200"},
                         {L"numSamples", L"3"},
                         {L"delay", L"1000"},
                         {L"dsTarget", L"mean"},
                         {L"completionTransition", L"done"}});
    }
    void StopAfter(DWORD milliseconds) {
        Sleep(milliseconds);
        EXPECT_EQ(S_OK, Stop());
        Join();
        EXPECT_EQ(milliseconds, ClockMilliseconds());
        EXPECT_EQ("nothing", Stored(L"mean"));
        EXPECT_TRUE(host.transitions.empty());
    }
};

TEST_F(ParameterSamplerInTime, Run_LastsTheDelayAndOnePeriodForEveryReading) {
    Start();
    Join();
    EXPECT_EQ((Calls{"1000 get_Value()", "1200 get_Value()", "1400 get_Value()"}), LoggedCalls("get_Value"));
    EXPECT_EQ(Calls{"1600 SetValue(mean, \"750\")"}, LoggedCalls("SetValue"));
    EXPECT_EQ(Calls{"1600 SetTransition(done)"}, LoggedCalls("SetTransition"));
}

TEST_F(ParameterSamplerInTime, WithoutDelay_ReadsAtOnce) {
    RunToEnd({{L"parameterID", L"100"}, {L"period", L"200"}, {L"numSamples", L"2"}, {L"dsTarget", L"mean"}});
    EXPECT_EQ((Calls{"0 get_Value()", "200 get_Value()"}), LoggedCalls("get_Value"));
    EXPECT_EQ(400, ClockMilliseconds());
}

TEST_F(ParameterSamplerInTime, NoSamples_LastsTheDelay) {
    RunToEnd({{L"parameterID", L"100"},
              {L"period", L"200"},
              {L"numSamples", L"0"},
              {L"delay", L"300"},
              {L"dsTarget", L"mean"},
              {L"completionTransition", L"done"}});
    ASSERT_EQ(2u, log.size());
    EXPECT_TRUE(log[0].starts_with("300 SetValue(mean, ")) << log[0];
    EXPECT_EQ("300 SetTransition(done)", log[1]);
}

TEST_F(ParameterSamplerInTime, NegativeNumberOfSamples_TakesNoTimeButTheDelay) {
    RunToEnd({{L"parameterID", L"100"},
              {L"period", L"200"},
              {L"numSamples", L"-1"},
              {L"delay", L"300"},
              {L"dsTarget", L"mean"}});
    EXPECT_EQ((Calls{"300 SetValue(mean, \"0\")", "300 SetTransition(null)"}), log);
}

TEST_F(ParameterSamplerInTime, StoppedDuringTheDelay_ReadsNothing) {
    Start();
    StopAfter(500);
    EXPECT_EQ(Calls{}, LoggedCalls("get_Value"));
}

TEST_F(ParameterSamplerInTime, StoppedDuringAPeriod_StoresNothing) {
    Start();
    StopAfter(1300);
    EXPECT_EQ(2u, LoggedCalls("get_Value").size());
}

TEST_F(ParameterSamplerInTime, StoppedDuringTheLastPeriod_StoresNothing) {
    Start();
    StopAfter(1500);
    EXPECT_EQ(3u, LoggedCalls("get_Value").size());
}

TEST_F(ParameterSamplerInTime, EveryReading_IsTheValueOfThatMoment) {
    Start();
    Sleep(1100);
    host.parameters[L"100"].value = CComVariant(900.0);
    Join();
    EXPECT_EQ("\"850\"", Stored(L"mean"));
}

} // namespace

} // namespace vant::test
