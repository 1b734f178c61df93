// The built persistent commands by slot number: how they register their callback, what the callback offers,
// and what the body asks of the host.

#include "tests/abi/RawCommand.h"

#include <cstddef>
#include <ostream>
#include <utility>
#include <vector>

namespace vant::abi {

namespace {

using Calls = std::vector<std::wstring>;
using Properties = std::vector<std::pair<const wchar_t*, const wchar_t*>>;

constexpr IID iidThreadCallback = {
    0xE4DBF14F, 0x4B42, 0x43A3, {0xA8, 0xCB, 0xA9, 0x45, 0x4A, 0x3D, 0xEC, 0x33}};
constexpr HRESULT badIndex = static_cast<HRESULT>(0x8002000B);
constexpr HRESULT libraryNotRegistered = static_cast<HRESULT>(0x8002801D);

// The record has the layout that it has in C, whatever the word size.
static_assert(offsetof(RawRegistration, argument) == sizeof(void*));
static_assert(offsetof(RawRegistration, settings) == sizeof(void*) + 4);
static_assert(offsetof(RawRegistration, ownerName) == sizeof(void*) + 16);
static_assert(offsetof(RawRegistration, threadName) == 2 * sizeof(void*) + 16);

const Calls registration = {
    L"threadService 13(callback, 0, 0, 0, 0, IVantPersistentCommandImpl, Persistent Thread)"};

struct PersistentClass {
    const char* name;
    const CLSID* id;
    Properties properties; ///< all that it requires

    friend std::ostream& operator<<(std::ostream& out, const PersistentClass& value) {
        return out << value.name;
    }
};

const PersistentClass timerClass = {"Timer", &timer, {{L"length", L"-1"}, {L"dsBase", L"count"}}};
const PersistentClass stopConditionMonitorClass = {
    "StopConditionMonitor",
    &stopConditionMonitor,
    {{L"dsSetID", L"set"}, {L"dsMessageID", L"message"}, {L"failTransitionID", L"bad"}}};
const PersistentClass monitorUpdaterClass = {
    "MonitorUpdater",
    &monitorUpdater,
    {{L"parameterIDs", L"100 200"}, {L"dsBaseName", L"B"}, {L"monitorID", L"gauge"}}};
const PersistentClass parameterSamplerClass = {
    "ParameterSampler",
    &parameterSampler,
    {{L"parameterID", L"190"}, {L"period", L"0"}, {L"numSamples", L"2"}, {L"dsTarget", L"mean"}}};
const PersistentClass throttleAdjusterClass = {
    "ThrottleAdjuster", &throttleAdjuster, {{L"successTransition", L"good"}, {L"failTransition", L"bad"}}};

/// A persistent command with its host, initialised and with its properties.
class PersistentRun {
public:
    explicit PersistentRun(const PersistentClass& subject) : m_command(*subject.id) {
        EXPECT_EQ(m_command.Initialize(host), S_OK);
        for (const auto& [name, value] : subject.properties)
            Set(name, value);
        EXPECT_EQ(m_command.QueryInterface(iidPersistentCommand, &m_persistent), S_OK);
        host.calls.clear();
    }
    PersistentRun(const PersistentRun&) = delete;
    PersistentRun& operator=(const PersistentRun&) = delete;
    ~PersistentRun() {
        host.ReleaseCallbacks(); // while the module is loaded
        EXPECT_EQ(CallSlot<ULONG>(m_persistent, 2), 1U);
        EXPECT_EQ(host.Trapped(), Calls());
    }

    void Set(const wchar_t* name, const wchar_t* value) {
        EXPECT_EQ(m_command.SetProperty(name, value), S_OK);
    }
    HRESULT Execute() { return m_command.Execute(); }
    HRESULT Stop() { return CallSlot<HRESULT>(m_persistent, 3); }
    void* Persistent() const { return m_persistent; }
    const BuiltModule& Module() const { return m_command.Module(); }
    /// Executes the command and returns its callback.
    void* Register() {
        EXPECT_EQ(Execute(), S_OK);
        EXPECT_EQ(host.callbacks.size(), 1U);
        return host.callbacks.back();
    }
    /// What the body asks of the host.
    Calls BodyCalls() {
        void* const callback = Register();
        return CallsOf(callback);
    }
    /// The same, but the command is stopped before its thread has begun, so that its first wait is its last.
    Calls BodyCallsWhenStopped() {
        void* const callback = Register();
        EXPECT_EQ(Stop(), S_OK);
        return CallsOf(callback);
    }

    RawHost host;

private:
    Calls CallsOf(void* callback) {
        host.calls.clear();
        EXPECT_EQ(CallSlot<HRESULT>(callback, 7), E_FAIL);
        return host.calls;
    }

    RawCommand m_command;
    void* m_persistent = nullptr;
};

class EveryBuiltPersistentCommand : public testing::TestWithParam<PersistentClass> {};

INSTANTIATE_TEST_SUITE_P(Abi, EveryBuiltPersistentCommand,
                         testing::Values(timerClass, stopConditionMonitorClass, monitorUpdaterClass,
                                         parameterSamplerClass, throttleAdjusterClass),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(EveryBuiltPersistentCommand, Execute_RegistersItsCallbackThroughSlot13OfTheThreadService) {
    PersistentRun run(GetParam());
    const void* const callback = run.Register();
    EXPECT_NE(callback, nullptr);
    EXPECT_EQ(run.host.calls, registration);
    EXPECT_EQ(run.host.threadService.References(), 2);
}

TEST_P(EveryBuiltPersistentCommand, Execute_RefusedRegistration_Succeeds) {
    PersistentRun run(GetParam());
    run.host.result = E_FAIL;
    EXPECT_EQ(run.Execute(), S_OK);
    EXPECT_EQ(run.host.calls, registration);
}

TEST_P(EveryBuiltPersistentCommand, Stop_TellsTheControllerThroughSlot6WithItsOwnInterface) {
    PersistentRun run(GetParam());
    EXPECT_EQ(run.Stop(), S_OK);
    EXPECT_EQ(run.host.calls, (Calls{L"controller 6(pointer)"}));
    EXPECT_EQ(run.host.stoppedCommand, run.Persistent());
    run.host.result = static_cast<HRESULT>(0x80041234);
    EXPECT_EQ(run.Stop(), static_cast<HRESULT>(0x80041234));
}

TEST_P(EveryBuiltPersistentCommand, Stop_WithoutController_ReturnsPointer) {
    RawCommand command(*GetParam().id);
    void* persistent = nullptr;
    ASSERT_EQ(command.QueryInterface(iidPersistentCommand, &persistent), S_OK);
    EXPECT_EQ(CallSlot<HRESULT>(persistent, 3), E_POINTER);
    CallSlot<ULONG>(persistent, 2);
}

TEST_P(EveryBuiltPersistentCommand, Callback_ReturnsItselfAsUnknownDispatchAndThreadCallback) {
    PersistentRun run(GetParam());
    void* const callback = run.Register();
    for (const IID* iid : {&IID_IUnknown, &IID_IDispatch, &iidThreadCallback}) {
        void* out = nullptr;
        EXPECT_EQ(CallSlot<HRESULT>(callback, 0, iid, &out), S_OK);
        EXPECT_EQ(out, callback);
        EXPECT_EQ(CallSlot<ULONG>(out, 2), 1U);
    }
    for (const IID* iid : {&iidCommand, &iidPersistentCommand, &iidSupportErrorInfo, &IID_NULL}) {
        void* out = &run;
        EXPECT_EQ(CallSlot<HRESULT>(callback, 0, iid, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
    }
}

TEST_P(EveryBuiltPersistentCommand, Callback_Slots3To6_ReturnAsWithoutRegisteredLibrary) {
    PersistentRun run(GetParam());
    void* const callback = run.Register();
    UINT count = 0;
    EXPECT_EQ(CallSlot<HRESULT>(callback, 3, &count), S_OK);
    EXPECT_EQ(count, 1U);
    void* info = &run;
    EXPECT_EQ(CallSlot<HRESULT>(callback, 4, UINT{1}, LCID{1033}, &info), badIndex);
    EXPECT_EQ(info, nullptr);
    info = &run;
    EXPECT_EQ(CallSlot<HRESULT>(callback, 4, UINT{0}, LCID{1033}, &info), libraryNotRegistered);
    EXPECT_EQ(info, nullptr);
    const CComBSTR name(L"RunOnThread");
    LPOLESTR names[] = {name.Get()};
    DISPID id = 0;
    EXPECT_EQ(CallSlot<HRESULT>(callback, 5, &IID_NULL, &names[0], UINT{1}, LCID{1033}, &id),
              libraryNotRegistered);
    EXPECT_EQ(CallSlot<HRESULT>(callback, 6, DISPID{1}, &IID_NULL, LCID{1033}, WORD{1},
                                static_cast<void*>(nullptr), static_cast<VARIANT*>(nullptr),
                                static_cast<void*>(nullptr), static_cast<UINT*>(nullptr)),
              libraryNotRegistered);
}

TEST_P(EveryBuiltPersistentCommand, Callback_KeepsTheModuleButNotTheCommand) {
    RawHost host;
    const BuiltModule module;
    {
        RawCommand command(*GetParam().id);
        EXPECT_EQ(command.Initialize(host), S_OK);
        for (const auto& [name, value] : GetParam().properties)
            EXPECT_EQ(command.SetProperty(name, value), S_OK);
        EXPECT_EQ(command.Execute(), S_OK);
    } // which expects the last reference to go
    EXPECT_EQ(host.References(), 0);
    EXPECT_EQ(module.CanUnloadNow(), S_FALSE);
    ASSERT_EQ(host.callbacks.size(), 1U);
    EXPECT_EQ(CallSlot<ULONG>(host.callbacks[0], 2), 0U);
    host.callbacks.clear();
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
}

TEST(BuiltPersistentCommand, Timer_RunsItsCommandsThroughSlot4OfTheRunner) {
    PersistentRun run(timerClass);
    run.Set(L"startCommandID", L"start");
    run.Set(L"tickCommandID", L"tick");
    run.Set(L"stopCommandID", L"stop");
    EXPECT_EQ(run.BodyCalls(), (Calls{L"dataStore 10(count, number -1)", L"commandRunner 4(start)",
                                      L"commandRunner 4(stop)"}));
}

TEST(BuiltPersistentCommand, StopConditionMonitor_ReportsThroughTheStoreTheProcedureAndTheController) {
    PersistentRun run(stopConditionMonitorClass);
    run.host.objects = {{L"set", &run.host.conditionSet}};
    run.host.entries = {{L"conditionSet text 4", L"too cold"}};
    run.host.allMet = VARIANT_FALSE;
    EXPECT_EQ(run.BodyCalls(),
              (Calls{L"dataStore 9(set, type 0)", L"conditionSet 3()", L"conditionSet 4()",
                     L"dataStore 9(conditionSet text 4, type 0)", L"dataStore 10(message, text too cold)",
                     L"procedureController 7(bad)", L"controller 6(pointer)"}));
}

TEST(BuiltPersistentCommand, StopConditionMonitor_StoppedBeforeItsThreadBegins_LooksOnce) {
    PersistentRun run(stopConditionMonitorClass);
    run.host.objects = {{L"set", &run.host.conditionSet}};
    EXPECT_EQ(run.BodyCallsWhenStopped(), (Calls{L"dataStore 9(set, type 0)", L"conditionSet 3()"}));
}

TEST(BuiltPersistentCommand, MonitorUpdater_ReadsTheUnitsThroughSlots12And7And8) {
    PersistentRun run(monitorUpdaterClass);
    const Calls of100 = {L"parameterService 12(100, 1)",
                         L"parameter 9()",
                         L"parameter 11()",
                         L"parameter 8()",
                         L"ecmServices 12()",
                         L"unitsTable 7(parameter text 11)",
                         L"unit 8()",
                         L"dataStore 10(B100_name, text parameter text 8)",
                         L"dataStore 10(B100_value, text parameter text 9)",
                         L"dataStore 10(B100_units, text unit text 8)",
                         L"componentService 10(gauge, parameter, B100)"};
    const Calls calls = run.BodyCallsWhenStopped();
    ASSERT_EQ(calls.size(), 2 * of100.size());
    EXPECT_EQ(Calls(calls.begin(), calls.begin() + 11), of100);
    EXPECT_EQ(calls[11], L"parameterService 12(200, 1)");
    EXPECT_EQ(calls.back(), L"componentService 10(gauge, parameter, B200)");
}

TEST(BuiltPersistentCommand, ParameterSampler_ReadsThroughSlot10OfTheParameterAndStoresAText) {
    PersistentRun run(parameterSamplerClass);
    run.Set(L"completionTransition", L"done");
    EXPECT_EQ(run.BodyCalls(),
              (Calls{L"parameterService 12(190, 1)", L"parameter 10()", L"parameterService 12(190, 1)",
                     L"parameter 10()", L"dataStore 10(mean, text 800)", L"procedureController 7(done)"}));
}

TEST(BuiltPersistentCommand, ThrottleAdjuster_ReadsBothLimitsAndWritesThroughSlot13) {
    PersistentRun run(throttleAdjusterClass);
    run.host.parameterValue = 20;
    EXPECT_EQ(run.BodyCallsWhenStopped(),
              (Calls{L"parameterService 12(13191, 1)", L"parameter 10()", L"parameterService 12(13192, 1)",
                     L"parameter 10()", L"parameterService 13(13190, 1, number 20)"}));
}

TEST(BuiltPersistentCommand, ThrottleAdjuster_LimitsThatExcludeTheStart_TakeTheFailTransitionThroughSlot7) {
    PersistentRun run(throttleAdjusterClass);
    EXPECT_EQ(run.BodyCalls(),
              (Calls{L"parameterService 12(13191, 1)", L"parameter 10()", L"parameterService 12(13192, 1)",
                     L"parameter 10()", L"procedureController 7(bad)"}));
}

} // namespace

} // namespace vant::abi
