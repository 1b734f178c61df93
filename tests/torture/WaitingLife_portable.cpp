#include "framework/interfaces/ClassIds.h"
#include "tests/torture/EcmParameterUse.h"
#include "tests/torture/Life.h"

#include <utility>

namespace vant::test {

namespace {

Calls operator+(Calls calls, const Calls& more) {
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

Calls From(const Calls& calls, std::size_t start) {
    return {calls.begin() + static_cast<std::ptrdiff_t>(start), calls.end()};
}

Calls ReadingOf(const std::string& id) {
    return {"GetParameter(" + id + ", 1)", "QueryInterface(IParameterOld)", "get_Value()"};
}

// Once built, ECMParameter2 is asked for the engine speed through the data service,
const Calls speedReading = ReadingOf("101000");
// or in a direct session, which a protocol that is not known wants.
const Calls connectionRequest = {"GetConnection()", "get_ConnectionIdentifier()"};
const Calls directReading =
    connectionRequest + Calls{"OpenECM(1)", "QueryInterface(IECMSession)", "Register()",
                              "ReadParameter(101000, 1)", "get_ItemValue()"};
const Calls closing = {"CloseECM(7)"};

/// A throttle adjuster's way to a speed in its band at the first reading.
struct Adjustment {
    Calls before;      ///< the first write
    Calls write;       ///< the first
    Calls secondWrite; ///< after a reading that failed
    Calls check;       ///< behind the reading
    Calls end;         ///< once the session is closed

    Calls FromReading() const { return construction + speedReading + check + end; }
    Calls All() const { return before + write + FromReading(); }

    /// Where the speed cannot be read, it stays below the band.
    Calls NextStep() const { return secondWrite + FromReading(); }

    std::vector<IgnoredCall> Ignored(HRESULT code) const {
        const std::size_t request = before.size() + write.size();
        const std::size_t reading = request + construction.size();
        std::vector<IgnoredCall> all = {
            {request + 1, connectionRequest + NextStep(), code}, // no session manager
            {request + 2, From(FromReading(), 3), code},         // no directory, none is needed
        };
        for (const std::size_t step : {3, 6, 7, 8, 9, 10}) // the protocol is not known
            all.push_back({request + step, directReading + check + closing + end, code});
        // Nothing leaves ReadLong.
        for (std::size_t step = 0; step < speedReading.size(); ++step)
            all.push_back({reading + step, NextStep(), code, true});
        return all;
    }
};

const Calls failTransition = {"SetTransition(bad)"};
const Calls successTransition = {"SetTransition(good)"};

/// A persistent body always returns E_FAIL.
Work BodyWork(const Calls& calls, const std::vector<IgnoredCall>& ignored = {},
              const Calls& afterFailure = {}) {
    return {calls, E_FAIL, ignored, std::nullopt, afterFailure, E_FAIL};
}

Scenario SampledThrottleAdjuster() {
    const Adjustment adjustment = {{},
                                   {"SetParameter(110142, 1, 20)"},
                                   {"SetParameter(110142, 1, 25)"},
                                   ReadingOf("199236"),
                                   successTransition};
    return {"SampledThrottleAdjuster",
            &CLSID_SampledThrottleAdjuster,
            {{L"successTransition", L"good"}, {L"failTransition", L"bad"}},
            adjustment.All(),
            S_OK,
            adjustment.Ignored(S_OK),
            std::nullopt,
            failTransition};
}

Scenario EGRValvePositionAdjuster() {
    return {"EGRValvePositionAdjuster",
            &CLSID_EGRValvePositionAdjuster,
            {{L"failTransition", L"bad"}},
            ReadingOf("110143") + ReadingOf("110145") + ReadingOf("14531") +
                Calls{"SetParameter(110145, 1, 40)"} + ReadingOf("110143") + ReadingOf("110145") +
                ReadingOf("14531"),
            S_OK,
            {},
            std::nullopt,
            failTransition};
}

/// A scenario of a persistent command that goes on to its body.
Scenario WithBody(const char* name, const CLSID& classId,
                  std::vector<std::pair<std::wstring, std::wstring>> properties, Body body) {
    return {name,         &classId, std::move(properties), RegistrationCalls(), S_OK, {},
            std::nullopt, {},       std::move(body)};
}

Scenario TimerBody() {
    const Calls calls = {"GetValue(zero)",
                         "SetValue(count, 0)",
                         "RunCommandFromThread(start)",
                         "RunCommandFromThread(tick)",
                         "SetValue(count, \"-1\")",
                         "RunCommandFromThread(stop)"};
    std::vector<IgnoredCall> ignored;
    for (std::size_t number = 1; number < calls.size(); ++number) // without its length it ends
        ignored.push_back({number, From(calls, number + 1), E_FAIL});
    return WithBody("TimerBody", CLSID_Timer,
                    {{L"dsLength", L"zero"},
                     {L"dsBase", L"count"},
                     {L"startCommandID", L"start"},
                     {L"tickCommandID", L"tick"},
                     {L"stopCommandID", L"stop"}},
                    {BodyWork(calls, ignored)});
}

Scenario StopConditionMonitorBody() {
    const Calls round = {"GetValue(failing)",  "QueryInterface(IConditionSet)",
                         "Evaluate()",         "GetFailureKey()",
                         "GetValue(first)",    "SetValue(result, \"12.5\")",
                         "SetTransition(bad)", "PersistentCommandStopped()"};
    // A round that fails is followed by another, unless the command has been stopped by then.
    return WithBody("StopConditionMonitorBody", CLSID_StopConditionMonitor,
                    {{L"dsSetID", L"failing"}, {L"failTransitionID", L"bad"}, {L"dsMessageID", L"result"}},
                    {BodyWork(round, {{round.size() - 1, {}, E_FAIL, true}}, round)});
}

Scenario MonitorUpdaterBody() {
    return WithBody(
        "MonitorUpdaterBody", CLSID_MonitorUpdater,
        {{L"parameterIDs", L"190"}, {L"dsBaseName", L"B"}, {L"monitorID", L"gauge"}},
        {BodyWork({"GetParameter(190, 1)", "QueryInterface(IParameterOld)", "get_Text()", "get_UnitsKey()",
                   "get_Name()", "QueryInterface(IECMServicesOld)", "GetUnits()", "GetUnit(rpm)",
                   "get_UnitText()", "SetValue(B190_name, \"speed\")", "SetValue(B190_value, \"750\")",
                   "SetValue(B190_units, \"1/min\")", "SetComponentProperty(gauge, parameter, \"B190\")"}),
         true});
}

Scenario ParameterSamplerBody() {
    return WithBody("ParameterSamplerBody", CLSID_ParameterSampler,
                    {{L"parameterID", L"190"},
                     {L"period", L"10"},
                     {L"numSamples", L"2"},
                     {L"delay", L"5"},
                     {L"dsTarget", L"result"},
                     {L"completionTransition", L"good"}},
                    {BodyWork(ReadingOf("190") + ReadingOf("190") + Calls{"SetValue(result, \"750\")"} +
                              successTransition)});
}

Scenario ThrottleAdjusterBody() {
    const Adjustment adjustment = {ReadingOf("13191") + ReadingOf("13192"),
                                   {"SetParameter(13190, 1, 20)"},
                                   {"SetParameter(13190, 1, 25)"},
                                   {},
                                   successTransition};
    return WithBody("ThrottleAdjusterBody", CLSID_ThrottleAdjuster,
                    {{L"successTransition", L"good"}, {L"failTransition", L"bad"}},
                    {BodyWork(adjustment.All(), adjustment.Ignored(E_FAIL), failTransition)});
}

} // namespace

const std::vector<Scenario>& WaitingScenarios() {
    static const std::vector<Scenario> all = {
        SampledThrottleAdjuster(),  EGRValvePositionAdjuster(), TimerBody(),
        StopConditionMonitorBody(), MonitorUpdaterBody(),       ParameterSamplerBody(),
        ThrottleAdjusterBody(),
    };
    return all;
}

} // namespace vant::test
