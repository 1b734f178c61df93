// The built commands, called by slot number, on a host of raw function tables. No interface declaration is
// used here: numbers, identifiers and argument types are written out.

#include "tests/abi/RawCommand.h"
#include "tests/support/EmptyDesktop.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <utility>

namespace vant::abi {

namespace {

using Calls = std::vector<std::wstring>;

/// The requests that a command makes of the context, in their order.
const Calls serviceRequests = {L"context 5()",  L"context 7()",  L"context 11()",
                               L"context 15()", L"context 13()", L"context 17()",
                               L"context 9()",  L"context 3()",  L"context 21()"};

struct NamedClass {
    const char* name;
    const CLSID* id;
    const wchar_t* property; ///< a property that it declares
    bool persistent = false;

    friend std::ostream& operator<<(std::ostream& out, const NamedClass& value) { return out << value.name; }
};

class EveryBuiltCommand : public testing::TestWithParam<NamedClass> {};

INSTANTIATE_TEST_SUITE_P(
    Abi, EveryBuiltCommand,
    testing::Values(NamedClass{"CompositeCommand", &compositeCommand, L"commandIDList"},
                    NamedClass{"CommandTerminator", &commandTerminator, L"commandID"},
                    NamedClass{"Calculator", &calculator, L"operation"},
                    NamedClass{"DataStoreWriter", &dataStoreWriter, L"value"},
                    NamedClass{"ParameterWriter", &parameterWriter, L"parameterID"},
                    NamedClass{"ParameterLoader", &parameterLoader, L"parameterID"},
                    NamedClass{"FaultArrayChecker", &faultArrayChecker, L"arrayID"},
                    NamedClass{"PropertySetter", &propertySetter, L"componentID"},
                    NamedClass{"MessageDisplayer", &messageDisplayer, L"dsString"},
                    NamedClass{"ErrorDisplayer", &errorDisplayer, L"dsString"},
                    NamedClass{"HelpDisplayer", &helpDisplayer, L"helpFile"},
                    NamedClass{"DiagnosticTestInstruction", &diagnosticTestInstruction, L"dsValue"},
                    NamedClass{"StringFormatter", &stringFormatter, L"operation"},
                    NamedClass{"StartConditionChecker", &startConditionChecker, L"dsSetID"},
                    NamedClass{"SampledThrottleAdjuster", &sampledThrottleAdjuster, L"failTransition"},
                    NamedClass{"EGRValvePositionAdjuster", &egrValvePositionAdjuster, L"failTransition"},
                    NamedClass{"Timer", &timer, L"dsBase", true},
                    NamedClass{"StopConditionMonitor", &stopConditionMonitor, L"dsSetID", true},
                    NamedClass{"MonitorUpdater", &monitorUpdater, L"monitorID", true},
                    NamedClass{"ParameterSampler", &parameterSampler, L"dsTarget", true},
                    NamedClass{"ThrottleAdjuster", &throttleAdjuster, L"failTransition", true}),
    [](const auto& instance) { return std::string(instance.param.name); });

/// Whatever a command asked of the host: nothing undocumented, and nothing kept.
void ExpectCleanEnd(RawHost& host) {
    EXPECT_EQ(host.Trapped(), Calls());
    EXPECT_EQ(host.References(), 0);
}

/// Initialises and executes a command and returns what it asked of the services.
Calls CallsOf(const CLSID& classId,
              std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> properties, RawHost& host,
              HRESULT expected = S_OK) {
    {
        RawCommand command(classId);
        EXPECT_EQ(command.Initialize(host), S_OK);
        for (const auto& [name, value] : properties)
            EXPECT_EQ(command.SetProperty(name, value), S_OK);
        host.calls.clear();
        EXPECT_EQ(command.Execute(), expected);
    }
    ExpectCleanEnd(host);
    return host.calls;
}

TEST_P(EveryBuiltCommand, Slot0_UnknownAndCommand_ReturnsTheObjectItself) {
    RawCommand command(*GetParam().id);
    for (const IID* iid : {&IID_IUnknown, &iidCommand}) {
        void* out = nullptr;
        EXPECT_EQ(command.QueryInterface(*iid, &out), S_OK);
        EXPECT_EQ(out, command.Object());
        EXPECT_EQ(CallSlot<ULONG>(out, 2), 1U);
    }
}

TEST_P(EveryBuiltCommand, Slot0_AnyOtherInterface_ReturnsNoInterfaceAndNull) {
    RawCommand command(*GetParam().id);
    for (const IID* iid : {&IID_IDispatch, &iidSupportErrorInfo, &IID_NULL}) {
        void* out = &command;
        EXPECT_EQ(command.QueryInterface(*iid, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
    }
}

TEST_P(EveryBuiltCommand, Slot0_PersistentCommand_IsOfferedByPersistentClassesAlone) {
    RawCommand command(*GetParam().id);
    void* persistent = &command;
    if (!GetParam().persistent) {
        EXPECT_EQ(command.QueryInterface(iidPersistentCommand, &persistent), E_NOINTERFACE);
        EXPECT_EQ(persistent, nullptr);
        return;
    }
    ASSERT_EQ(command.QueryInterface(iidPersistentCommand, &persistent), S_OK);
    void* self = nullptr;
    EXPECT_EQ(CallSlot<HRESULT>(persistent, 0, &IID_IUnknown, &self), S_OK);
    EXPECT_EQ(self, command.Object());
    EXPECT_EQ(CallSlot<ULONG>(self, 2), 2U);
    EXPECT_EQ(CallSlot<ULONG>(persistent, 1), 3U);
    EXPECT_EQ(CallSlot<ULONG>(persistent, 2), 2U);
    EXPECT_EQ(CallSlot<ULONG>(persistent, 2), 1U);
}

TEST_P(EveryBuiltCommand, Slots1And2_CountReferences) {
    RawCommand command(*GetParam().id);
    EXPECT_EQ(CallSlot<ULONG>(command.Object(), 1), 2U);
    EXPECT_EQ(CallSlot<ULONG>(command.Object(), 1), 3U);
    EXPECT_EQ(CallSlot<ULONG>(command.Object(), 2), 2U);
    EXPECT_EQ(CallSlot<ULONG>(command.Object(), 2), 1U);
}

TEST_P(EveryBuiltCommand, Slot3_RequestsNineServicesInOrderAndKeepsThem) {
    RawHost host;
    {
        RawCommand command(*GetParam().id);
        EXPECT_EQ(command.Initialize(host), S_OK);
        EXPECT_EQ(host.calls, serviceRequests);
        for (const RawObject* object :
             {&host.commandRunner, &host.componentService, &host.service3, &host.dataStore, &host.controller,
              &host.presentationService, &host.threadService, &host.service7, &host.procedureController,
              &host.parameterService})
            EXPECT_EQ(object->References(), 1) << "of one object";
        EXPECT_EQ(host.context.References(), 0);
    }
    ExpectCleanEnd(host);
}

TEST_P(EveryBuiltCommand, Slot3_ASecondTime_ReturnsUnexpectedAndAsksNothing) {
    RawHost host;
    RawHost other;
    {
        RawCommand command(*GetParam().id);
        EXPECT_EQ(command.Initialize(host), S_OK);
        EXPECT_EQ(command.Initialize(other), E_UNEXPECTED);
        EXPECT_EQ(command.Initialize(nullptr, nullptr), E_UNEXPECTED);
        EXPECT_EQ(other.calls, Calls());
        EXPECT_EQ(host.References(), 10);
    }
    ExpectCleanEnd(host);
    ExpectCleanEnd(other);
}

TEST_P(EveryBuiltCommand, Slot3_NullContext_ReturnsPointer) {
    RawHost host;
    RawCommand command(*GetParam().id);
    EXPECT_EQ(command.Initialize(nullptr, &host.controller), E_POINTER);
    ExpectCleanEnd(host);
    EXPECT_EQ(command.Initialize(&host.context, nullptr), S_OK) << "a refused context leaves nothing behind";
}

TEST_P(EveryBuiltCommand, Slot3_RefusedRequest_ReturnsItsCodeAndMayBeTriedAgain) {
    for (const bool givesAllTheSame : {false, true}) {
        for (std::size_t request = 0; request < serviceRequests.size(); ++request) {
            SCOPED_TRACE(request);
            RawHost host;
            host.refusedRequest = serviceRequests[request];
            host.givesWhenRefusing = givesAllTheSame;
            {
                RawCommand command(*GetParam().id);
                EXPECT_EQ(command.Initialize(host), static_cast<HRESULT>(0x80041234));
                EXPECT_EQ(host.calls,
                          Calls(serviceRequests.begin(),
                                serviceRequests.begin() + static_cast<std::ptrdiff_t>(request) + 1));
                EXPECT_EQ(host.controller.References(), 0);
                EXPECT_EQ(host.References(), static_cast<int>(request));
                host.refusedRequest.clear();
                EXPECT_EQ(command.Initialize(host), S_OK);
                EXPECT_EQ(host.References(), 10);
                EXPECT_EQ(command.Initialize(host), E_UNEXPECTED);
            }
            ExpectCleanEnd(host);
        }
    }
}

TEST_P(EveryBuiltCommand, Slot4_NothingSet_ReturnsUnexpectedAndRunsNothing) {
    RawHost host;
    EXPECT_EQ(CallsOf(*GetParam().id, {}, host, E_UNEXPECTED), Calls());
}

TEST_P(EveryBuiltCommand, Slot5_RefusesUndeclaredNames) {
    RawCommand command(*GetParam().id);
    EXPECT_EQ(command.SetProperty(GetParam().property, L"x"), S_OK);
    EXPECT_EQ(command.SetProperty(L"Undeclared", L"x"), E_INVALIDARG);
    EXPECT_EQ(CallSlot<HRESULT>(command.Object(), 5, BSTR{}, BSTR{}), E_INVALIDARG);
}

TEST_P(EveryBuiltCommand, Slot6_NothingSet_ReturnsFalseAndRefusesANullPointer) {
    RawCommand command(*GetParam().id);
    VARIANT_BOOL valid = VARIANT_TRUE;
    EXPECT_EQ(command.GetIsValid(&valid), S_OK);
    EXPECT_EQ(valid, VARIANT_FALSE);
    EXPECT_EQ(command.GetIsValid(nullptr), E_POINTER);
}

TEST_P(EveryBuiltCommand, Slots7And8_KeepTheLabelWhole) {
    RawCommand command(*GetParam().id);
    const CComBSTR label(std::wstring_view(L"one\0two", 7));
    CComBSTR read;
    EXPECT_EQ(command.GetLabel(nullptr), E_POINTER);
    EXPECT_EQ(command.GetLabel(&read), S_OK);
    EXPECT_EQ(read.Get(), nullptr);
    EXPECT_EQ(command.PutLabel(label.Get()), S_OK);
    EXPECT_EQ(command.GetLabel(&read), S_OK);
    EXPECT_EQ(read.Text(), label.Text());
    EXPECT_NE(read.Get(), label.Get());
    read.Attach(nullptr);
    EXPECT_EQ(command.PutLabel(nullptr), S_OK);
    EXPECT_EQ(command.GetLabel(&read), S_OK);
    EXPECT_EQ(read.Get(), nullptr);
}

TEST(BuiltCommand, ResultsAndTruth_AreTheNumbersOfTheContract) {
    RawHost host;
    {
        RawCommand command(commandTerminator);
        const auto validity = [&command] {
            VARIANT_BOOL valid = 77;
            EXPECT_EQ(static_cast<std::uint32_t>(command.GetIsValid(&valid)), 0U);
            return static_cast<std::uint16_t>(valid);
        };
        const auto number = [](HRESULT code) { return static_cast<std::uint32_t>(code); };
        EXPECT_EQ(number(command.SetProperty(L"CommandID", L"T1")), 0x80070057U);
        EXPECT_EQ(number(command.GetIsValid(nullptr)), 0x80004003U);
        EXPECT_EQ(validity(), 0U);
        EXPECT_EQ(number(command.Execute()), 0x8000FFFFU);
        EXPECT_EQ(number(command.SetProperty(L"commandID", L"T1")), 0U);
        EXPECT_EQ(validity(), 0xFFFFU);
        EXPECT_EQ(number(command.Initialize(host)), 0U);
        EXPECT_EQ(number(command.Initialize(host)), 0x8000FFFFU);
        EXPECT_EQ(number(command.Execute()), 0U);
        host.result = E_INVALIDARG;
        EXPECT_EQ(number(command.Execute()), 0x80004005U);
    }
    ExpectCleanEnd(host);
}

TEST(BuiltCommand, CompositeCommand_RunsEachIdentifierThroughSlot3OfTheRunner) {
    RawHost host;
    EXPECT_EQ(CallsOf(compositeCommand, {{L"commandIDList", L"A  B"}}, host),
              (Calls{L"commandRunner 3(A)", L"commandRunner 3()", L"commandRunner 3(B)"}));
}

TEST(BuiltCommand, CompositeCommand_RefusedRun_ReturnsFailAndRunsNoMore) {
    RawHost host;
    host.result = E_INVALIDARG;
    EXPECT_EQ(CallsOf(compositeCommand, {{L"commandIDList", L"A B"}}, host, E_FAIL),
              (Calls{L"commandRunner 3(A)"}));
}

TEST(BuiltCommand, CommandTerminator_TerminatesThroughSlot3OfTheController) {
    RawHost host;
    EXPECT_EQ(CallsOf(commandTerminator, {{L"commandID", L"T1"}}, host), (Calls{L"controller 3(T1)"}));
}

TEST(BuiltCommand, DataStoreWriter_WritesATextThroughSlot10OfTheStore) {
    RawHost host;
    EXPECT_EQ(CallsOf(dataStoreWriter, {{L"value", L"12"}, {L"dsLocation", L"here"}}, host),
              (Calls{L"dataStore 10(here, text 12)"}));
}

TEST(BuiltCommand, Calculator_ReadsThroughSlot9AndWritesThroughSlot10OfTheStore) {
    RawHost host;
    host.entries = {{L"first", L"12.5"}, {L"second", L"9.5"}};
    EXPECT_EQ(CallsOf(calculator,
                      {{L"operation", L"subtract"},
                       {L"dsSourceA", L"first"},
                       {L"dsSourceB", L"second"},
                       {L"dsResult", L"difference"}},
                      host),
              (Calls{L"dataStore 9(first, type 0)", L"dataStore 9(second, type 0)",
                     L"dataStore 10(difference, text 3)"}));
}

TEST(BuiltCommand, Calculator_RefusedReadWithAValue_WritesNothing) {
    RawHost host;
    host.entries = {{L"first", L"12.5"}};
    host.result = E_FAIL;
    EXPECT_EQ(
        CallsOf(calculator, {{L"operation", L"negate"}, {L"dsSourceA", L"first"}, {L"dsResult", L"x"}}, host),
        (Calls{L"dataStore 9(first, type 0)"}));
}

TEST(BuiltCommand, ParameterWriter_WritesATextThroughSlot13OfTheParameterService) {
    RawHost host;
    EXPECT_EQ(CallsOf(parameterWriter, {{L"parameterID", L"190"}, {L"value", L"5"}}, host),
              (Calls{L"parameterService 13(190, 1, text 5)"}));
}

TEST(BuiltCommand, ParameterWriter_ReadsReferencesThroughSlot9OfTheStoreAndIgnoresTheResults) {
    RawHost host;
    host.entries = {{L"id", L"190"}};
    host.result = E_FAIL;
    EXPECT_EQ(CallsOf(parameterWriter, {{L"dsParameterID", L"id"}, {L"dsValue", L"missing"}}, host),
              (Calls{L"dataStore 9(id, type 0)", L"dataStore 9(missing, type 0)",
                     L"parameterService 13(190, 1, type 0)"}));
}

TEST(BuiltCommand, ParameterLoader_ReadsThroughSlot10OfTheParameterAndStoresAText) {
    RawHost host;
    EXPECT_EQ(CallsOf(parameterLoader, {{L"parameterID", L"190"}, {L"dsLocation", L"speed"}}, host),
              (Calls{L"parameterService 12(190, 1)", L"parameter 10()", L"dataStore 10(speed, text 800)"}));
}

/// Runs a FaultArrayChecker with all of its properties.
Calls CallsOfFaultCheck(RawHost& host) {
    return CallsOf(faultArrayChecker,
                   {{L"arrayID", L"faults"},
                    {L"successTransitionID", L"good"},
                    {L"failTransitionID", L"bad"},
                    {L"dsFaultCode", L"code"}},
                   host);
}

TEST(BuiltCommand, FaultArrayChecker_WalksTheArrayByIndexesFrom1AndStoresTheActiveCode) {
    RawHost host;
    host.faults = {{{L"199009", L"Inactive"}}, {{L"199008", L"P0123"}, {L"199009", L"Active"}}};
    EXPECT_EQ(CallsOfFaultCheck(host), (Calls{L"parameterService 12(faults, 2)",
                                              L"faultArray 8()",
                                              L"faultRecordList 8()",
                                              L"faultRecordList 7(number 1)",
                                              L"faultRecord 8()",
                                              L"faultRecord 7(number 1)",
                                              L"faultField 7()",
                                              L"faultField 9()",
                                              L"faultRecordList 7(number 2)",
                                              L"faultRecord 8()",
                                              L"faultRecord 7(number 1)",
                                              L"faultField 7()",
                                              L"faultRecord 7(number 2)",
                                              L"faultField 7()",
                                              L"faultField 9()",
                                              L"faultRecord 8()",
                                              L"faultRecord 7(number 1)",
                                              L"faultField 7()",
                                              L"faultField 9()",
                                              L"dataStore 10(code, text P0123)",
                                              L"procedureController 7(bad)"}));
}

TEST(BuiltCommand, FaultArrayChecker_EmptyArray_TakesTheSuccessTransitionThroughSlot7) {
    RawHost host;
    EXPECT_EQ(CallsOfFaultCheck(host), (Calls{L"parameterService 12(faults, 2)", L"faultArray 8()",
                                              L"faultRecordList 8()", L"procedureController 7(good)"}));
}

TEST(BuiltCommand, PropertySetter_ReadsReferencesThroughSlot9OfTheParameterAndSetsThroughSlot10) {
    RawHost host;
    EXPECT_EQ(CallsOf(propertySetter,
                      {{L"propertyName", L"text"}, {L"componentID", L"gauge"}, {L"value", L"<$p(190)>"}},
                      host),
              (Calls{L"parameterService 12(190, 1)", L"parameter 9()",
                     L"componentService 10(gauge, text, <parameter text 9>)"}));
}

TEST(BuiltCommand, PropertySetter_RefusedProperty_ReturnsFail) {
    RawHost host;
    host.result = E_INVALIDARG;
    EXPECT_EQ(CallsOf(propertySetter, {{L"propertyName", L"text"}, {L"componentID", L"gauge"}}, host, E_FAIL),
              (Calls{L"componentService 10(gauge, text, )"}));
}

TEST(BuiltCommand, MessageDisplayer_ReadsThroughSlot9OfTheStore) {
    RawHost host;
    test::OnEmptyDesktop([&host] {
        EXPECT_EQ(CallsOf(messageDisplayer, {{L"dsString", L"missing"}}, host),
                  (Calls{L"dataStore 9(missing, type 0)"}));
    });
}

TEST(BuiltCommand, ErrorAndHelpDisplayers_CallNothing) {
    RawHost host;
    EXPECT_EQ(CallsOf(errorDisplayer, {{L"dsString", L"entry"}}, host), Calls());
    EXPECT_EQ(CallsOf(helpDisplayer, {{L"helpFile", L"manual"}, {L"helpIndex", L"3"}}, host), Calls());
}

TEST(BuiltCommand, DiagnosticTestInstruction_ShowsThroughSlot7AndIgnoresTheResults) {
    RawHost host;
    host.entries = {{L"text", L"hold $p(190)"}};
    host.result = E_FAIL;
    EXPECT_EQ(CallsOf(diagnosticTestInstruction, {{L"dsValue", L"text"}}, host),
              (Calls{L"dataStore 9(text, type 0)", L"parameterService 12(190, 1)", L"parameter 9()",
                     L"presentationService 7(hold parameter text 9)"}));
}

TEST(BuiltCommand, StringFormatter_SubstitutesParametersThenEntries) {
    RawHost host;
    host.entries = {{L"text", L"$d(first) of $p(190)"}, {L"first", L"12.5"}};
    EXPECT_EQ(
        CallsOf(stringFormatter,
                {{L"operation", L"substitute"}, {L"dsSourceString", L"text"}, {L"dsTargetString", L"result"}},
                host),
        (Calls{L"dataStore 9(text, type 0)", L"parameterService 12(190, 1)", L"parameter 9()",
               L"dataStore 9(first, type 0)", L"dataStore 10(result, text 12.5 of parameter text 9)"}));
}

TEST(BuiltCommand, StringFormatter_RoundsAndTellsTime) {
    RawHost host;
    host.entries = {{L"number", L"3661.9"}, {L"seconds", L"3661"}};
    EXPECT_EQ(
        CallsOf(stringFormatter,
                {{L"operation", L"round"}, {L"dsSourceString", L"number"}, {L"dsTargetString", L"result"}},
                host),
        (Calls{L"dataStore 9(number, type 0)", L"dataStore 10(result, text 3661)"}));
    EXPECT_EQ(
        CallsOf(
            stringFormatter,
            {{L"operation", L"numToHMS"}, {L"dsSourceString", L"seconds"}, {L"dsTargetString", L"result"}},
            host),
        (Calls{L"dataStore 9(seconds, type 0)", L"dataStore 10(result, text 01:01:01)"}));
}

TEST(BuiltCommand, StartConditionChecker_AsksTheSetThroughSlot3AndTakesTheValidTransition) {
    RawHost host;
    host.objects = {{L"set", &host.conditionSet}};
    EXPECT_EQ(CallsOf(startConditionChecker, {{L"dsSetID", L"set"}, {L"validTransitionID", L"good"}}, host),
              (Calls{L"dataStore 9(set, type 0)", L"conditionSet 3()", L"procedureController 7(good)"}));
}

TEST(BuiltCommand, StartConditionChecker_ReadsTheFailureKeyThroughSlot4AndCopiesTheMessage) {
    RawHost host;
    host.objects = {{L"set", &host.conditionSet}};
    host.entries = {{L"conditionSet text 4", L"too cold"}};
    for (const VARIANT_BOOL flag : {VARIANT_FALSE, VARIANT_BOOL{1}}) { // true is -1 alone
        host.allMet = flag;
        EXPECT_EQ(
            CallsOf(startConditionChecker,
                    {{L"dsSetID", L"set"}, {L"dsFailMessage", L"message"}, {L"invalidTransitionID", L"bad"}},
                    host),
            (Calls{L"dataStore 9(set, type 0)", L"conditionSet 3()", L"conditionSet 4()",
                   L"dataStore 9(conditionSet text 4, type 0)", L"dataStore 10(message, text too cold)",
                   L"procedureController 7(bad)"}));
    }
}

TEST(BuiltCommand, SampledThrottleAdjuster_RefusedWriteThroughSlot13_TakesTheFailTransition) {
    RawHost host;
    host.writeResult = E_FAIL;
    EXPECT_EQ(CallsOf(sampledThrottleAdjuster, {{L"successTransition", L"good"}, {L"failTransition", L"bad"}},
                      host),
              (Calls{L"parameterService 13(110142, 1, number 20)", L"procedureController 7(bad)"}));
}

TEST(BuiltCommand, EGRValvePositionAdjuster_ReadsTheEnablingValueThroughSlot10OfTheParameter) {
    RawHost host;
    host.parameterValue = 9;
    EXPECT_EQ(CallsOf(egrValvePositionAdjuster, {{L"failTransition", L"bad"}}, host),
              (Calls{L"parameterService 12(110143, 1)", L"parameter 10()"}));
}

} // namespace

} // namespace vant::abi
