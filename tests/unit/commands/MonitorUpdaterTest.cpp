#include "commands/MonitorUpdater.h"

#include "tests/support/EngineHost.h"
#include "tests/unit/commands/PersistentRun.h"

namespace vant::test {

namespace {

class MonitorUpdater : public PersistentRun<CMonitorUpdater> {
protected:
    MonitorUpdater() {
        engine.units = {{L"rpm", L"1/min"}, {L"temperature", L"deg C"}};
        host.parameters[L"100"] = {L"Engine speed", L"750", CComVariant(750.0), L"rpm"};
        host.parameters[L"200"] = {L"Coolant", L"81.5", CComVariant(81.5), L"temperature"};
    }

    /// One round, with the stop signalled beforehand. If the round fails there would be no second.
    void RunOneRound(std::wstring_view ids) {
        host.Threads().ForgetRegistrations();
        Execute({{L"parameterIDs", ids}, {L"dsBaseName", L"B"}, {L"monitorID", L"monitor"}});
        StopSilently();
        RunBody();
    }
    /// The identifiers that one round asks for, each in brackets.
    std::string AskedFor(std::wstring_view ids) {
        for (const wchar_t* id : {L"", L"1", L"2", L"3"})
            host.parameters[id] = {L"name", L"text", CComVariant(1.0), L"rpm"};
        RunOneRound(ids);
        std::string asked;
        for (const std::string& call : host.calls) {
            if (call.starts_with("GetParameter("))
                asked += '[' + call.substr(13, call.find(',') - 13) + ']';
        }
        return asked;
    }

    EngineServices engine{host};
};

Calls CallsOf(const std::string& id, const std::string& name, const std::string& value,
              const std::string& unitsKey, const std::string& units) {
    return {"GetParameter(" + id + ", 1)",
            "QueryInterface(IParameterOld)",
            "get_Text()",
            "get_UnitsKey()",
            "get_Name()",
            "QueryInterface(IECMServicesOld)",
            "GetUnits()",
            "GetUnit(" + unitsKey + ")",
            "get_UnitText()",
            "SetValue(B" + id + "_name, \"" + name + "\")",
            "SetValue(B" + id + "_value, \"" + value + "\")",
            "SetValue(B" + id + "_units, \"" + units + "\")",
            "SetComponentProperty(monitor, parameter, \"B" + id + "\")"};
}

TEST_F(MonitorUpdater, OneParameter_IsReadAndPublishedInOrder) {
    RunOneRound(L"100");
    EXPECT_EQ(CallsOf("100", "Engine speed", "750", "rpm", "1/min"), host.calls);
}

TEST_F(MonitorUpdater, TwoParameters_ArePublishedOneAfterTheOther) {
    RunOneRound(L"100 200");
    Calls expected = CallsOf("100", "Engine speed", "750", "rpm", "1/min");
    const Calls second = CallsOf("200", "Coolant", "81.5", "temperature", "deg C");
    expected.insert(expected.end(), second.begin(), second.end());
    EXPECT_EQ(expected, host.calls);
}

TEST_F(MonitorUpdater, EmptyList_PublishesNothing) {
    RunOneRound(L"");
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(MonitorUpdater, List_IsSplitAtRunsOfSpaces) {
    EXPECT_EQ("[1][2][3]", AskedFor(L"1 2 3"));
    EXPECT_EQ("[1][2]", AskedFor(L"1    2"));
    EXPECT_EQ("[1]", AskedFor(L"1"));
    EXPECT_EQ("[1][1]", AskedFor(L"1 1"));
}

TEST_F(MonitorUpdater, SpacesAtTheEnd_GiveNoFurtherId) {
    EXPECT_EQ("[1]", AskedFor(L"1 "));
    EXPECT_EQ("[1][2]", AskedFor(L"1 2   "));
}

TEST_F(MonitorUpdater, SpacesAtTheBeginning_GiveOneEmptyId) {
    EXPECT_EQ("[][1]", AskedFor(L" 1"));
    EXPECT_EQ("[][1][2]", AskedFor(L"   1 2"));
    EXPECT_EQ("[]", AskedFor(L" "));
    EXPECT_EQ("[]", AskedFor(L"   "));
}

TEST_F(MonitorUpdater, OtherBlanks_BelongToTheId) {
    RunOneRound(L"100\t200");
    EXPECT_EQ(Calls{"GetParameter(100\\u{9}200, 1)"}, host.calls);
}

TEST_F(MonitorUpdater, LeadingSpace_FailsAtTheLookup) {
    RunOneRound(L" 100");
    EXPECT_EQ(Calls{"GetParameter(, 1)"}, host.calls);
}

TEST_F(MonitorUpdater, UnknownParameter_EndsTheRoundAfterThoseBefore) {
    RunOneRound(L"100 300 200");
    ASSERT_EQ(14u, host.calls.size());
    EXPECT_EQ("GetParameter(300, 1)", host.calls.back());
    EXPECT_EQ("\"750\"", Stored(L"B100_value"));
    EXPECT_EQ("nothing", Stored(L"B200_value"));
}

TEST_F(MonitorUpdater, UnknownUnits_EndTheRoundBeforeAnythingIsWritten) {
    engine.units.clear();
    RunOneRound(L"100");
    EXPECT_EQ("GetUnit(rpm)", host.calls.back());
    EXPECT_EQ("nothing", Stored(L"B100_name"));
}

TEST_F(MonitorUpdater, HostWithoutEngineServices_EndsTheRound) {
    host.engineServices = nullptr;
    RunOneRound(L"100");
    EXPECT_EQ("QueryInterface(IECMServicesOld)", host.calls.back());
}

TEST_F(MonitorUpdater, ObjectsThatAreNotGiven_EndTheRound) {
    for (const char* operation : {"GetUnits", "GetUnit"}) {
        engine.givesNothing = {operation};
        RunOneRound(L"100");
        EXPECT_EQ(operation, host.calls.back().substr(0, host.calls.back().find('(')));
    }
}

TEST_F(MonitorUpdater, EveryCallThatFails_EndsTheRoundThere) {
    for (std::size_t number = 1; number <= 13; ++number) {
        host.Threads().ForgetRegistrations();
        Execute({{L"parameterIDs", L"100 200"}, {L"dsBaseName", L"B"}, {L"monitorID", L"monitor"}});
        StopSilently();
        host.FailCall(number, E_ACCESSDENIED);
        RunBody();
        host.FailCall(0, S_OK);
        EXPECT_EQ(number, host.CallCount());
    }
}

TEST_F(MonitorUpdater, Failure_IsNotReported) {
    host.fail["SetValue"] = E_ACCESSDENIED;
    Execute({{L"parameterIDs", L"100"}, {L"dsBaseName", L"B"}, {L"monitorID", L"monitor"}});
    RunBody(); // It would not end but for the failure.
    EXPECT_TRUE(host.stoppedCommands.empty());
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(MonitorUpdater, ReleasesWhatItReads) {
    RunOneRound(L"100 200");
    const LONG held = host.OutstandingReferences();
    host.Threads().ForgetRegistrations();
    EXPECT_EQ(S_OK, command->Execute());
    StopSilently();
    RunBody();
    EXPECT_EQ(held, host.OutstandingReferences());
}

TEST_F(MonitorUpdater, ExecutedAgain_UsesTheListAsItWasSplit) {
    RunOneRound(L"100 200");
    const Calls first = host.calls;
    host.Threads().ForgetRegistrations();
    EXPECT_EQ(S_OK, command->Execute());
    StopSilently();
    RunBody();
    EXPECT_EQ(first, host.calls);
}

TEST_F(MonitorUpdater, EmptyBaseName_LeavesTheIdAlone) {
    Execute({{L"parameterIDs", L"100"}, {L"dsBaseName", L""}, {L"monitorID", L"monitor"}});
    StopSilently();
    RunBody();
    EXPECT_EQ("\"1/min\"", Stored(L"100_units"));
    EXPECT_EQ("SetComponentProperty(monitor, parameter, \"100\")", host.calls.back());
}

} // namespace

} // namespace vant::test
