#include "commands/MonitorUpdater.h"
#include "tests/support/EngineHost.h"
#include "tests/unit/commands/TimedRun.h"

namespace vant::test {

namespace {

/// Lets a test change a property, which no host can.
class CChangingUpdater : public CMonitorUpdater {
public:
    void Change(std::wstring_view name, std::wstring_view value) {
        m_properties.insert_or_assign(CComBSTR(name), CComBSTR(value));
    }
};

class MonitorUpdaterInTime : public TimedRun<CChangingUpdater> {
protected:
    MonitorUpdaterInTime() {
        engine.units = {{L"rpm", L"1/min"}};
        host.parameters[L"100"] = {L"Engine speed", L"750", CComVariant(750.0), L"rpm"};
        host.parameters[L"200"] = {L"Fan speed", L"90", CComVariant(90.0), L"rpm"};
    }

    void Start(std::wstring_view ids) {
        TimedRun::Start({{L"parameterIDs", ids}, {L"dsBaseName", L"B"}, {L"monitorID", L"monitor"}});
    }
    void StopAfter(DWORD milliseconds) {
        Sleep(milliseconds);
        EXPECT_EQ(S_OK, Stop());
        Join();
    }

    EngineServices engine{host};
};

TEST_F(MonitorUpdaterInTime, PublishesAtOnceAndThenEvery250Milliseconds) {
    Start(L"100 200");
    StopAfter(600);
    EXPECT_EQ((Calls{"0 SetComponentProperty(monitor, parameter, \"B100\")",
                     "0 SetComponentProperty(monitor, parameter, \"B200\")",
                     "250 SetComponentProperty(monitor, parameter, \"B100\")",
                     "250 SetComponentProperty(monitor, parameter, \"B200\")",
                     "500 SetComponentProperty(monitor, parameter, \"B100\")",
                     "500 SetComponentProperty(monitor, parameter, \"B200\")"}),
              LoggedCalls("SetComponentProperty"));
    EXPECT_EQ(600, ClockMilliseconds());
}

TEST_F(MonitorUpdaterInTime, EveryRound_PublishesTheValueOfThatMoment) {
    Start(L"100");
    Sleep(100);
    host.parameters[L"100"].text = L"800";
    StopAfter(200);
    EXPECT_EQ((Calls{"0 SetValue(B100_value, \"750\")", "250 SetValue(B100_value, \"800\")"}),
              LoggedCalls("SetValue(B100_value"));
}

TEST_F(MonitorUpdaterInTime, ListThatChangesBetweenRounds_IsSplitAgain) {
    Start(L"100");
    Sleep(300);
    const auto change = [this](std::wstring_view ids) {
        static_cast<CChangingUpdater*>(command.Get())->Change(L"parameterIDs", ids);
    };
    change(L"200 100");
    Sleep(250);
    change(L"200");
    Sleep(250);
    change(L"");
    StopAfter(500);
    EXPECT_EQ((Calls{"0 SetComponentProperty(monitor, parameter, \"B100\")",
                     "250 SetComponentProperty(monitor, parameter, \"B100\")",
                     "500 SetComponentProperty(monitor, parameter, \"B200\")",
                     "500 SetComponentProperty(monitor, parameter, \"B100\")",
                     "750 SetComponentProperty(monitor, parameter, \"B200\")"}),
              LoggedCalls("SetComponentProperty"));
    EXPECT_EQ(1300, ClockMilliseconds());
}

TEST_F(MonitorUpdaterInTime, OneFailure_EndsItForGood) {
    Start(L"100");
    Sleep(300);
    host.fail["SetValue"] = E_ACCESSDENIED;
    Sleep(300);
    host.fail.clear();
    log.clear();
    Join(); // without a stop
    EXPECT_EQ(Calls{}, log);
    EXPECT_EQ("\"750\"", Stored(L"B100_value")); // The entries keep their last values.
    EXPECT_TRUE(host.stoppedCommands.empty());
}

TEST_F(MonitorUpdaterInTime, LeadingSpace_EndsItInTheFirstRound) {
    Start(L" 100");
    Join();
    EXPECT_EQ(Calls{"0 GetParameter(, 1)"}, log);
    EXPECT_EQ(0, ClockMilliseconds());
}

TEST_F(MonitorUpdaterInTime, EmptyList_KeepsRunningUntilStopped) {
    Start(L"");
    StopAfter(10'000);
    EXPECT_EQ(Calls{"10000 PersistentCommandStopped()"}, log);
    EXPECT_EQ(10'000, ClockMilliseconds());
}

} // namespace

} // namespace vant::test
