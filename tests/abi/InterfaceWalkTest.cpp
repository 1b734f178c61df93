// The declared interfaces, walked over raw function tables: every declared operation must reach the slot that
// the binary contract puts it, with its arguments in the documented order and types.

#include "ecm/interfaces/EngineData.h"
#include "framework/interfaces/ConditionSet.h"
#include "framework/interfaces/HostServices.h"
#include "framework/interfaces/ThreadService.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Bstr.h"
#include "platform/Variant.h"
#include "tests/abi/RawHost.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace vant::abi {

namespace {

using Calls = std::vector<std::wstring>;

/// A call and the slot that it must reach.
template <class Interface>
struct Expected {
    int slot;
    void (*call)(Interface*);
};

template <class Interface>
Interface* As(RawObject& object) {
    return reinterpret_cast<Interface*>(&object);
}

/// Calls IUnknown's operations, IDispatch's if the interface has them, then those passed, which must be all
/// of the interface's own, one for each slot from the first.
template <class Interface, std::size_t count>
void ExpectSlots(const Expected<Interface> (&own)[count]) {
    RawObject object;
    auto* const target = As<Interface>(object);
    std::vector<int> slots = {0, 1, 2};
    void* out = nullptr;
    target->QueryInterface(IID_IUnknown, &out);
    target->AddRef();
    target->Release();
    if constexpr (std::is_base_of_v<IDispatch, Interface>) {
        slots.insert(slots.end(), {3, 4, 5, 6});
        target->GetTypeInfoCount(nullptr);
        target->GetTypeInfo(0, 0, nullptr);
        target->GetIDsOfNames(IID_IUnknown, nullptr, 0, 0, nullptr);
        target->Invoke(0, IID_IUnknown, 0, 0, nullptr, nullptr, nullptr, nullptr);
    }
    for (const Expected<Interface>& each : own) {
        EXPECT_EQ(each.slot, slots.back() + 1) << "an operation is missing from the test";
        slots.push_back(each.slot);
        each.call(target);
    }
    EXPECT_EQ(object.Trapped(), slots);
}

TEST(InterfaceWalk, Context) {
    using I = IVantContext;
    ExpectSlots<I>({{3, [](I* i) { i->get_ProcedureController(nullptr); }},
                    {4, [](I* i) { i->Reserved4(); }},
                    {5, [](I* i) { i->get_CommandRunner(nullptr); }},
                    {6, [](I* i) { i->Reserved6(); }},
                    {7, [](I* i) { i->get_ComponentService(nullptr); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->get_Service7(nullptr); }},
                    {10, [](I* i) { i->Reserved10(); }},
                    {11, [](I* i) { i->get_Service3(nullptr); }},
                    {12, [](I* i) { i->Reserved12(); }},
                    {13, [](I* i) { i->get_PresentationService(nullptr); }},
                    {14, [](I* i) { i->Reserved14(); }},
                    {15, [](I* i) { i->get_DataStore(nullptr); }},
                    {16, [](I* i) { i->Reserved16(); }},
                    {17, [](I* i) { i->get_ThreadService(nullptr); }},
                    {18, [](I* i) { i->Reserved18(); }},
                    {19, [](I* i) { i->Reserved19(); }},
                    {20, [](I* i) { i->Reserved20(); }},
                    {21, [](I* i) { i->get_ParameterService(nullptr); }}});
}

TEST(InterfaceWalk, CommandRunner) {
    using I = ICommandRunner;
    ExpectSlots<I>(
        {{3, [](I* i) { i->RunCommand(nullptr); }}, {4, [](I* i) { i->RunCommandFromThread(nullptr); }}});
}

TEST(InterfaceWalk, ComponentService) {
    using I = IComponentService;
    ExpectSlots<I>({{3, [](I* i) { i->Reserved3(); }},
                    {4, [](I* i) { i->Reserved4(); }},
                    {5, [](I* i) { i->Reserved5(); }},
                    {6, [](I* i) { i->Reserved6(); }},
                    {7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->SetComponentProperty(nullptr, nullptr, nullptr); }}});
}

TEST(InterfaceWalk, DataStore) {
    using I = IDataStore;
    ExpectSlots<I>({{3, [](I* i) { i->Reserved3(); }},
                    {4, [](I* i) { i->Reserved4(); }},
                    {5, [](I* i) { i->Reserved5(); }},
                    {6, [](I* i) { i->Reserved6(); }},
                    {7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->GetValue(nullptr, nullptr); }},
                    {10, [](I* i) { i->SetValue(nullptr, VARIANT{}); }}});
}

TEST(InterfaceWalk, PresentationService) {
    using I = IPresentationService;
    ExpectSlots<I>({{3, [](I* i) { i->Reserved3(); }},
                    {4, [](I* i) { i->Reserved4(); }},
                    {5, [](I* i) { i->Reserved5(); }},
                    {6, [](I* i) { i->Reserved6(); }},
                    {7, [](I* i) { i->ShowInstruction(nullptr); }}});
}

TEST(InterfaceWalk, ProcedureController) {
    using I = IProcedureController;
    ExpectSlots<I>({{3, [](I* i) { i->Reserved3(); }},
                    {4, [](I* i) { i->Reserved4(); }},
                    {5, [](I* i) { i->Reserved5(); }},
                    {6, [](I* i) { i->Reserved6(); }},
                    {7, [](I* i) { i->SetTransition(nullptr); }}});
}

TEST(InterfaceWalk, Controller) {
    using I = IVantController;
    ExpectSlots<I>({{3, [](I* i) { i->TerminateCommand(nullptr); }},
                    {4, [](I* i) { i->Reserved4(); }},
                    {5, [](I* i) { i->Reserved5(); }},
                    {6, [](I* i) { i->PersistentCommandStopped(nullptr); }}});
}

TEST(InterfaceWalk, DataService) {
    using I = IDataServiceOld;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->GetConnection(nullptr); }},
                    {11, [](I* i) { i->Reserved11(); }},
                    {12, [](I* i) { i->GetParameter(nullptr, 1, nullptr); }},
                    {13, [](I* i) { i->SetParameter(nullptr, 1, VARIANT{}, nullptr); }}});
}

TEST(InterfaceWalk, Connection) {
    using I = IConnectionOld;
    ExpectSlots<I>({{7, [](I* i) { i->get_ConnectionIdentifier(nullptr); }}});
}

TEST(InterfaceWalk, Parameter) {
    using I = IParameterOld;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->get_Name(nullptr); }},
                    {9, [](I* i) { i->get_Text(nullptr); }},
                    {10, [](I* i) { i->get_Value(nullptr); }},
                    {11, [](I* i) { i->get_UnitsKey(nullptr); }}});
}

TEST(InterfaceWalk, EcmServices) {
    using I = IECMServicesOld;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->Reserved10(); }},
                    {11, [](I* i) { i->Reserved11(); }},
                    {12, [](I* i) { i->GetUnits(nullptr); }}});
}

TEST(InterfaceWalk, Unit) {
    using I = IUnit;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }}, {8, [](I* i) { i->get_Text(nullptr); }}});
}

TEST(InterfaceWalk, UnitsTable) {
    using I = IUnitsTable;
    ExpectSlots<I>({{7, [](I* i) { i->GetUnit(nullptr, nullptr); }}});
}

TEST(InterfaceWalk, SessionManager) {
    using I = IECMSessionManager;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->GetDirectory(nullptr); }},
                    {10, [](I* i) { i->GetProtocolSource(nullptr); }}});
}

TEST(InterfaceWalk, Directory) {
    using I = IECMDirectory;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->OpenECM(0, nullptr); }},
                    {10, [](I* i) { i->CloseECM(0); }}});
}

TEST(InterfaceWalk, Session) {
    using I = IECMSession;
    ExpectSlots<I>({{7, [](I* i) { i->Register(nullptr); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->Reserved10(); }},
                    {11, [](I* i) { i->ReadParameter(0, 1, nullptr); }}});
}

TEST(InterfaceWalk, SessionItem) {
    using I = IECMSessionItem;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->Reserved10(); }},
                    {11, [](I* i) { i->Reserved11(); }},
                    {12, [](I* i) { i->get_Value(nullptr); }}});
}

TEST(InterfaceWalk, ProtocolSource) {
    using I = IProtocolSource;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->GetA(0, nullptr); }}});
}

TEST(InterfaceWalk, ProtocolSourceA) {
    using I = IProtocolSourceA;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->Reserved10(); }},
                    {11, [](I* i) { i->Reserved11(); }},
                    {12, [](I* i) { i->Reserved12(); }},
                    {13, [](I* i) { i->Reserved13(); }},
                    {14, [](I* i) { i->GetB(nullptr); }}});
}

TEST(InterfaceWalk, ProtocolSourceB) {
    using I = IProtocolSourceB;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }}, {8, [](I* i) { i->GetC(nullptr, nullptr); }}});
}

TEST(InterfaceWalk, ProtocolSourceC) {
    using I = IProtocolSourceC;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->Reserved10(); }},
                    {11, [](I* i) { i->Reserved11(); }},
                    {12, [](I* i) { i->GetD(nullptr, nullptr); }}});
}

TEST(InterfaceWalk, ProtocolSourceD) {
    using I = IProtocolSourceD;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->Reserved10(); }},
                    {11, [](I* i) { i->Reserved11(); }},
                    {12, [](I* i) { i->Reserved12(); }},
                    {13, [](I* i) { i->Reserved13(); }},
                    {14, [](I* i) { i->Reserved14(); }},
                    {15, [](I* i) { i->Reserved15(); }},
                    {16, [](I* i) { i->get_Kind(nullptr); }}});
}

TEST(InterfaceWalk, FaultArray) {
    using I = IFaultArray;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }}, {8, [](I* i) { i->get_Records(nullptr); }}});
}

TEST(InterfaceWalk, FaultRecordList) {
    using I = IFaultRecordList;
    ExpectSlots<I>(
        {{7, [](I* i) { i->get_Item(VARIANT{}, nullptr); }}, {8, [](I* i) { i->get_Count(nullptr); }}});
}

TEST(InterfaceWalk, FaultRecord) {
    using I = IFaultRecord;
    ExpectSlots<I>(
        {{7, [](I* i) { i->get_Item(VARIANT{}, nullptr); }}, {8, [](I* i) { i->get_Count(nullptr); }}});
}

TEST(InterfaceWalk, FaultField) {
    using I = IFaultField;
    ExpectSlots<I>({{7, [](I* i) { i->get_Name(nullptr); }},
                    {8, [](I* i) { i->Reserved8(); }},
                    {9, [](I* i) { i->get_Value(nullptr); }}});
}

TEST(InterfaceWalk, ThreadService) {
    using I = IThreadService;
    ExpectSlots<I>({{7, [](I* i) { i->Reserved7(); }},
                    {8, [](I* i) { i->UnregisterCallback(0); }},
                    {9, [](I* i) { i->Reserved9(); }},
                    {10, [](I* i) { i->Reserved10(); }},
                    {11, [](I* i) { i->Operation11(0); }},
                    {12, [](I* i) { i->Operation12(0); }},
                    {13, [](I* i) { i->RegisterCallback(nullptr, nullptr, nullptr); }}});
}

TEST(InterfaceWalk, ThreadCallback) {
    using I = IThreadCallback;
    ExpectSlots<I>({{7, [](I* i) { i->RunOnThread(); }}});
}

TEST(InterfaceWalk, ConditionSet) {
    using I = IConditionSet;
    ExpectSlots<I>({{3, [](I* i) { i->Evaluate(nullptr); }}, {4, [](I* i) { i->GetFailureKey(nullptr); }}});
}

TEST(InterfaceWalk, Command) {
    using I = IVantCommand;
    ExpectSlots<I>({{3, [](I* i) { i->Initialize(nullptr, nullptr); }},
                    {4, [](I* i) { i->Execute(); }},
                    {5, [](I* i) { i->SetProperty(nullptr, nullptr); }},
                    {6, [](I* i) { i->get_IsValid(nullptr); }},
                    {7, [](I* i) { i->get_Label(nullptr); }},
                    {8, [](I* i) { i->put_Label(nullptr); }}});
}

TEST(InterfaceWalk, PersistentCommand) {
    using I = IVantPersistentCommand;
    ExpectSlots<I>({{3, [](I* i) { i->Stop(); }}});
}

/// Arguments through the declared interfaces, received by functions of the documented signatures.
class InterfaceArguments : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_EQ(host.Trapped(), Calls());
        EXPECT_EQ(host.References(), 0);
    }

    RawHost host;
    const CComBSTR a{L"a"};
    const CComBSTR b{L"b"};
    const CComBSTR c{L"c"};
    const CComVariant text{CComBSTR(L"v")};
    const CComVariant number{LONG{-5}};
};

TEST_F(InterfaceArguments, Context_FillsEachServicesHolderWithThatService) {
    auto* const context = As<IVantContext>(host.context);
    CComPtr<ICommandRunner> commandRunner;
    CComPtr<IComponentService> componentService;
    CComPtr<IDataStore> dataStore;
    CComPtr<IPresentationService> presentationService;
    CComPtr<IProcedureController> procedureController;
    CComPtr<IDataServiceOld> parameterService;
    CComPtr<IUnknown> service3;
    CComPtr<IUnknown> service7;
    CComPtr<IUnknown> threadService;
    context->get_CommandRunner(&commandRunner);
    context->get_ComponentService(&componentService);
    context->get_DataStore(&dataStore);
    context->get_PresentationService(&presentationService);
    context->get_ProcedureController(&procedureController);
    context->get_ParameterService(&parameterService);
    context->get_Service3(&service3);
    context->get_Service7(&service7);
    context->get_ThreadService(&threadService);
    EXPECT_EQ(static_cast<void*>(commandRunner.Get()), &host.commandRunner);
    EXPECT_EQ(static_cast<void*>(componentService.Get()), &host.componentService);
    EXPECT_EQ(static_cast<void*>(dataStore.Get()), &host.dataStore);
    EXPECT_EQ(static_cast<void*>(presentationService.Get()), &host.presentationService);
    EXPECT_EQ(static_cast<void*>(procedureController.Get()), &host.procedureController);
    EXPECT_EQ(static_cast<void*>(parameterService.Get()), &host.parameterService);
    EXPECT_EQ(static_cast<void*>(service3.Get()), &host.service3);
    EXPECT_EQ(static_cast<void*>(service7.Get()), &host.service7);
    EXPECT_EQ(static_cast<void*>(threadService.Get()), &host.threadService);
}

TEST_F(InterfaceArguments, CommandRunner) {
    auto* const runner = As<ICommandRunner>(host.commandRunner);
    EXPECT_EQ(runner->RunCommand(a.Get()), S_OK);
    EXPECT_EQ(runner->RunCommandFromThread(b.Get()), S_OK);
    EXPECT_EQ(host.calls, (Calls{L"commandRunner 3(a)", L"commandRunner 4(b)"}));
}

TEST_F(InterfaceArguments, ComponentService) {
    As<IComponentService>(host.componentService)->SetComponentProperty(a.Get(), b.Get(), c.Get());
    EXPECT_EQ(host.calls, (Calls{L"componentService 10(a, b, c)"}));
}

TEST_F(InterfaceArguments, DataStore) {
    host.entries = {{L"a", L"kept"}};
    auto* const store = As<IDataStore>(host.dataStore);
    CComVariant value;
    EXPECT_EQ(store->GetValue(a.Get(), &value), S_OK);
    EXPECT_EQ(TextOf(StringMember(value.Get())), L"kept");
    EXPECT_EQ(store->SetValue(b.Get(), text.Get()), S_OK);
    EXPECT_EQ(store->SetValue(c.Get(), number.Get()), S_OK);
    EXPECT_EQ(host.calls,
              (Calls{L"dataStore 9(a, type 0)", L"dataStore 10(b, text v)", L"dataStore 10(c, number -5)"}));
}

TEST_F(InterfaceArguments, PresentationServiceAndProcedureController) {
    As<IPresentationService>(host.presentationService)->ShowInstruction(nullptr);
    As<IProcedureController>(host.procedureController)->SetTransition(a.Get());
    EXPECT_EQ(host.calls, (Calls{L"presentationService 7()", L"procedureController 7(a)"}));
}

TEST_F(InterfaceArguments, Controller) {
    RawObject command;
    auto* const controller = As<IVantController>(host.controller);
    controller->TerminateCommand(a.Get());
    controller->PersistentCommandStopped(As<IVantPersistentCommand>(command));
    EXPECT_EQ(host.calls, (Calls{L"controller 3(a)", L"controller 6(pointer)"}));
}

TEST_F(InterfaceArguments, DataServiceAndConnection) {
    auto* const service = As<IDataServiceOld>(host.parameterService);
    CComPtr<IUnknown> read;
    CComPtr<IUnknown> written;
    CComPtr<IConnectionOld> connection;
    CComBSTR identifier;
    service->GetParameter(a.Get(), 1, &read);
    service->SetParameter(b.Get(), 2, number.Get(), &written);
    service->GetConnection(&connection);
    ASSERT_TRUE(connection);
    connection->get_ConnectionIdentifier(&identifier);
    EXPECT_EQ(static_cast<void*>(read.Get()), &host.parameter);
    EXPECT_EQ(static_cast<void*>(written.Get()), &host.parameter);
    EXPECT_EQ(identifier.Text(), L"42");
    EXPECT_EQ(host.calls, (Calls{L"parameterService 12(a, 1)", L"parameterService 13(b, 2, number -5)",
                                 L"parameterService 10()", L"connection 7()"}));
}

TEST_F(InterfaceArguments, Parameter_FoundByItsIdentifier) {
    CComPtr<IParameterOld> parameter;
    ASSERT_EQ(CComPtr(As<IUnknown>(host.parameter)).QueryInterface(&parameter), S_OK);
    CComBSTR name;
    CComBSTR current;
    CComBSTR units;
    CComVariant value;
    parameter->get_Name(&name);
    parameter->get_Text(&current);
    parameter->get_Value(&value);
    parameter->get_UnitsKey(&units);
    EXPECT_EQ(name.Text(), L"parameter text 8");
    EXPECT_EQ(current.Text(), L"parameter text 9");
    EXPECT_EQ(value.Get().vt, VT_I4);
    EXPECT_EQ(value.Get().lVal, 800);
    EXPECT_EQ(units.Text(), L"parameter text 11");
}

TEST_F(InterfaceArguments, UnitsTableAndUnit) {
    CComPtr<IUnit> unit;
    CComBSTR name;
    ASSERT_EQ(As<IUnitsTable>(host.unitsTable)->GetUnit(a.Get(), &unit), S_OK);
    EXPECT_EQ(static_cast<void*>(unit.Get()), &host.unit);
    EXPECT_EQ(unit->get_Text(&name), S_OK);
    EXPECT_EQ(name.Text(), L"unit text 8");
    EXPECT_EQ(host.calls, (Calls{L"unitsTable 7(a)", L"unit 8()"}));
}

TEST_F(InterfaceArguments, ThreadServiceAndEcmServices_FoundByTheirIdentifiersOnOneObject) {
    const CComPtr object(As<IUnknown>(host.threadService));
    CComPtr<IThreadService> threads;
    CComPtr<IECMServicesOld> services;
    ASSERT_EQ(object.QueryInterface(&threads), S_OK);
    ASSERT_EQ(object.QueryInterface(&services), S_OK);
    std::uint32_t cookie = 0;
    auto* const callback = As<IThreadCallback>(host.context);
    const ThreadRegistration registration = {callback, 1, {2, 3, 4}, a.Get(), b.Get()};
    threads->RegisterCallback(callback, &registration, &cookie);
    EXPECT_EQ(host.callbacks, std::vector<void*>{&host.context});
    threads->UnregisterCallback(cookie);
    threads->Operation11(1);
    threads->Operation12(2);
    CComPtr<IUnknown> units;
    services->GetUnits(&units);
    EXPECT_EQ(static_cast<void*>(units.Get()), &host.unitsTable);
    EXPECT_EQ(host.calls, (Calls{L"threadService 13(callback, 1, 2, 3, 4, a, b)", L"threadService 8(7)",
                                 L"threadService 11(1)", L"threadService 12(2)", L"ecmServices 12()"}));
    host.ReleaseCallbacks();
}

TEST_F(InterfaceArguments, ConditionSet_FoundByItsIdentifier) {
    CComPtr<IConditionSet> conditions;
    ASSERT_EQ(CComPtr(As<IUnknown>(host.conditionSet)).QueryInterface(&conditions), S_OK);
    VARIANT_BOOL allMet = VARIANT_FALSE;
    EXPECT_EQ(conditions->Evaluate(&allMet), S_OK);
    EXPECT_EQ(allMet, VARIANT_TRUE);
    CComBSTR key;
    EXPECT_EQ(conditions->GetFailureKey(&key), S_OK);
    EXPECT_EQ(key.Text(), L"conditionSet text 4");
    EXPECT_EQ(host.calls, (Calls{L"conditionSet 3()", L"conditionSet 4()"}));
}

} // namespace

} // namespace vant::abi
