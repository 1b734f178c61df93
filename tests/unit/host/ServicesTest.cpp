#include "host/services/Services.h"

#include "host/record/Json.h"

#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <thread>

namespace vant::host {

namespace {

class ServicesTest : public ::testing::Test {
protected:
    ServicesTest() {
        journal.Observe([this](const Record& record) { records.push_back(record); });
    }
    static CComBSTR Text(std::wstring_view text) { return CComBSTR(text); }

    /// The last record as "SERVICE.OPERATION(ARGUMENTS) RESULT".
    std::string Last() const {
        const Record& record = records.back();
        Json arguments = ToJson(record)["arguments"];
        return record.service + '.' + record.operation + arguments.dump() + ' ' + ToText(*record.result);
    }

    std::vector<Record> records;
    std::vector<std::string> commandsRun;
    Journal journal{[] { return std::int64_t{0}; }};
    Services services{journal, [this](const std::string& id) {
                          commandsRun.push_back(id);
                          return S_FALSE;
                      }};
};

TEST_F(ServicesTest, DataStore_KeepsACopy) {
    const CComVariant value(Text(L"9.5"));
    EXPECT_EQ(services.dataStore.SetValue(Text(L"crank").Get(), value.Get()), S_OK);
    EXPECT_EQ(Last(), R"(DataStore.SetValue{"name":"crank","value":"9.5"} 0x00000000)");

    CComVariant read;
    EXPECT_EQ(services.dataStore.GetValue(Text(L"crank").Get(), &read), S_OK);
    EXPECT_EQ(TextOf(StringMember(read.Get())), L"9.5");
    EXPECT_NE(read.Get().bstrVal, value.Get().bstrVal);
    EXPECT_EQ(Last(), R"(DataStore.GetValue{"name":"crank","value":"9.5"} 0x00000000)");
}

TEST_F(ServicesTest, DataStore_LastValueReplacesEarlierOnes) {
    services.dataStore.SetValue(Text(L"a").Get(), CComVariant(1.5).Get());
    services.dataStore.SetValue(Text(L"a").Get(), CComVariant(Text(L"x")).Get());
    EXPECT_EQ(services.data.All(), (std::map<std::string, Value>{{"a", "x"}}));
}

TEST_F(ServicesTest, DataStore_UnknownEntryIsNotFoundAndLeavesTheValueEmpty) {
    CComVariant read;
    EXPECT_EQ(services.dataStore.GetValue(Text(L"none").Get(), &read), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(read.Get().vt, VT_EMPTY);
    EXPECT_EQ(Last(), R"(DataStore.GetValue{"name":"none"} 0x80070490)");
}

TEST_F(ServicesTest, DataStore_NullValuePointerIsRefused) {
    services.data.Set(L"a", CComVariant(1.0));
    EXPECT_EQ(services.dataStore.GetValue(Text(L"a").Get(), nullptr), E_POINTER);
}

TEST_F(ServicesTest, DataStore_ValueByReferenceIsRefused) {
    double target = 1;
    VARIANT value{};
    value.vt = VT_BYREF | VT_R8;
    value.byref = &target;
    EXPECT_EQ(services.dataStore.SetValue(Text(L"a").Get(), value), E_INVALIDARG);
    EXPECT_TRUE(services.data.All().empty());
}

TEST_F(ServicesTest, DataStore_RecordsAMachineIntegerAsANumber) {
    VARIANT value{};
    value.vt = VT_INT;
    value.intVal = -12;
    EXPECT_EQ(services.dataStore.SetValue(Text(L"a").Get(), value), S_OK);
    EXPECT_EQ(Last(), R"(DataStore.SetValue{"name":"a","value":-12} 0x00000000)");
}

TEST_F(ServicesTest, DataStore_NullNameIsTheEmptyName) {
    services.dataStore.SetValue(nullptr, CComVariant(1.0).Get());
    CComVariant read;
    EXPECT_EQ(services.dataStore.GetValue(Text(L"").Get(), &read), S_OK);
    EXPECT_EQ(read.Get().dblVal, 1.0);
}

TEST_F(ServicesTest, DataStore_KeepsTheValuesOfManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([this, i] {
            const CComBSTR own(std::wstring(L"own") + static_cast<wchar_t>(L'0' + i));
            for (LONG j = 0; j < 100; ++j) {
                services.dataStore.SetValue(own.Get(), CComVariant(j).Get());
                services.dataStore.SetValue(CComBSTR(L"shared").Get(), CComVariant(CComBSTR(L"text")).Get());
                CComVariant read;
                EXPECT_EQ(services.dataStore.GetValue(CComBSTR(L"shared").Get(), &read), S_OK);
                EXPECT_EQ(TextOf(StringMember(read.Get())), L"text");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(services.data.All().size(), 5U);
    EXPECT_EQ(services.data.All().at("own3"), Value(std::int64_t{99}));
    EXPECT_EQ(records.size(), 1200U);
}

TEST_F(ServicesTest, CommandRunner_PassesTheIdOnAndReturnsTheResult) {
    EXPECT_EQ(services.commandRunner.RunCommand(Text(L"drop").Get()), S_FALSE);
    EXPECT_EQ(Last(), R"(CommandRunner.RunCommand{"commandId":"drop"} 0x00000001)");
    EXPECT_EQ(services.commandRunner.RunCommandFromThread(nullptr), S_FALSE);
    EXPECT_EQ(Last(), R"(CommandRunner.RunCommandFromThread{"commandId":""} 0x00000001)");
    EXPECT_EQ(commandsRun, (std::vector<std::string>{"drop", ""}));
}

TEST_F(ServicesTest, CommandRunner_ExceptionBecomesAResult) {
    Services throwing(journal, [](const std::string&) -> HRESULT { throw CComException(E_OUTOFMEMORY); });
    EXPECT_EQ(throwing.commandRunner.RunCommand(nullptr), E_OUTOFMEMORY);
    Services worse(journal, [](const std::string&) -> HRESULT { throw 1; });
    EXPECT_EQ(worse.commandRunner.RunCommand(nullptr), E_FAIL);
    EXPECT_EQ(records.size(), 2U);
}

/// What a step accepts.
std::function<Acceptance(const std::string&)> OneOf(std::set<std::string> ids) {
    return [ids = std::move(ids)](const std::string& id) {
        return ids.contains(id) ? Acceptance::Accepted : Acceptance::Refused;
    };
}

TEST_F(ServicesTest, ProcedureController_FinalChoiceStaysUntilAnotherFinalOne) {
    services.procedureController.EnterStep([](const std::string& id) {
        return id.starts_with("stop") ? Acceptance::Final : Acceptance::Accepted;
    });
    services.procedureController.SetTransition(Text(L"done").Get());
    EXPECT_FALSE(services.procedureController.IsFinal());
    services.procedureController.SetTransition(Text(L"stop").Get());
    EXPECT_TRUE(services.procedureController.IsFinal());
    EXPECT_EQ(services.procedureController.SetTransition(Text(L"done").Get()), S_OK);
    EXPECT_EQ(services.procedureController.Chosen(), "stop");
    services.procedureController.SetTransition(Text(L"stopNow").Get());
    EXPECT_EQ(services.procedureController.Chosen(), "stopNow");
}

TEST_F(ServicesTest, ProcedureController_LastOfSeveralChoicesCounts) {
    services.procedureController.EnterStep(OneOf({"weak", "strong"}));
    EXPECT_EQ(services.procedureController.Chosen(), std::nullopt);
    EXPECT_EQ(services.procedureController.SetTransition(Text(L"weak").Get()), S_OK);
    EXPECT_EQ(services.procedureController.SetTransition(Text(L"strong").Get()), S_OK);
    EXPECT_EQ(services.procedureController.Chosen(), "strong");
    EXPECT_EQ(Last(), R"(ProcedureController.SetTransition{"transitionId":"strong"} 0x00000000)");
}

TEST_F(ServicesTest, ProcedureController_UnknownTransitionIsRefusedAndTheEarlierChoiceStays) {
    services.procedureController.EnterStep(OneOf({"weak"}));
    services.procedureController.SetTransition(Text(L"weak").Get());
    EXPECT_EQ(services.procedureController.SetTransition(Text(L"Weak").Get()), E_INVALIDARG);
    EXPECT_EQ(services.procedureController.SetTransition(nullptr), S_OK);
    EXPECT_EQ(services.procedureController.Chosen(), "weak");
}

TEST_F(ServicesTest, ProcedureController_NewStepForgetsTheChoice) {
    services.procedureController.EnterStep(OneOf({"weak"}));
    services.procedureController.SetTransition(Text(L"weak").Get());
    services.procedureController.EnterStep(OneOf({"other"}));
    EXPECT_EQ(services.procedureController.Chosen(), std::nullopt);
    EXPECT_EQ(services.procedureController.SetTransition(Text(L"weak").Get()), E_INVALIDARG);
}

TEST_F(ServicesTest, ProcedureController_BetweenStepsAcceptsTheEmptyTransitionAlone) {
    const auto expectRefusals = [this] {
        EXPECT_EQ(services.procedureController.SetTransition(Text(L"").Get()), S_OK);
        EXPECT_EQ(services.procedureController.SetTransition(nullptr), S_OK);
        EXPECT_EQ(services.procedureController.SetTransition(Text(L"weak").Get()), E_INVALIDARG);
        EXPECT_EQ(services.procedureController.Chosen(), std::nullopt);
    };
    expectRefusals();
    services.procedureController.EnterStep(OneOf({"weak"}));
    bool isFinal = true;
    services.procedureController.LeaveStep(isFinal);
    EXPECT_FALSE(isFinal);
    expectRefusals();
}

TEST_F(ServicesTest, ComponentService_RecordsWhatIsShown) {
    EXPECT_EQ(services.componentService.SetComponentProperty(Text(L"gauge").Get(), Text(L"text").Get(),
                                                             Text(L"800 \u20AC").Get()),
              S_OK);
    EXPECT_EQ(Last(), "ComponentService.SetComponentProperty{\"componentId\":\"gauge\",\"name\":\"text\","
                      "\"value\":\"800 \xE2\x82\xAC\"} 0x00000000");
}

TEST_F(ServicesTest, PresentationService_RecordsTheInstruction) {
    EXPECT_EQ(services.presentationService.ShowInstruction(Text(L"Start the engine").Get()), S_OK);
    EXPECT_EQ(Last(), R"(PresentationService.ShowInstruction{"text":"Start the engine"} 0x00000000)");
    EXPECT_EQ(services.presentationService.ShowInstruction(nullptr), S_OK);
}

TEST_F(ServicesTest, ParameterServiceWithoutEngine_FindsNoParameterAndNoConnection) {
    IUnknown* object = &services.service3;
    EXPECT_EQ(services.parameterService.GetParameter(Text(L"101000").Get(), 1, &object),
              HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Last(), R"(ParameterService.GetParameter{"id":"101000","kind":1} 0x80070490)");

    object = &services.service3;
    EXPECT_EQ(services.parameterService.SetParameter(Text(L"1").Get(), 1, CComVariant(2.5).Get(), &object),
              HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Last(), R"(ParameterService.SetParameter{"id":"1","kind":1,"value":2.5} 0x80070490)");

    EXPECT_EQ(services.parameterService.GetParameter(nullptr, 1, nullptr), E_POINTER);
    IConnectionOld* connection = nullptr;
    EXPECT_EQ(services.parameterService.GetConnection(&connection), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(ServicesTest, Controller_FindsNoRunningCommand) {
    EXPECT_EQ(services.controller.TerminateCommand(Text(L"watch").Get()),
              HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(Last(), R"(Controller.TerminateCommand{"commandId":"watch"} 0x80070490)");
    EXPECT_EQ(services.controller.PersistentCommandStopped(nullptr), E_POINTER);
}

TEST_F(ServicesTest, Context_HandsOutEachServiceReferencedAndRecordsIt) {
    const auto expect =
        [this]<class Interface>(HRESULT (STDMETHODCALLTYPE IVantContext::*operation)(Interface**),
                                auto& service, const char* name) {
            IVantContext& context = services.context;
            CComPtr<Interface> out;
            ASSERT_EQ((context.*operation)(&out), S_OK);
            EXPECT_EQ(out.Get(), &service);
            EXPECT_EQ(service.References(), 1U);
            EXPECT_EQ(Last(), std::string("Context.") + name + "{} 0x00000000");
            out.Release();
            EXPECT_EQ(service.References(), 0U);
            EXPECT_EQ((context.*operation)(nullptr), E_POINTER);
        };
    expect(&IVantContext::get_ProcedureController, services.procedureController, "get_ProcedureController");
    expect(&IVantContext::get_CommandRunner, services.commandRunner, "get_CommandRunner");
    expect(&IVantContext::get_ComponentService, services.componentService, "get_ComponentService");
    expect(&IVantContext::get_Service7, services.service7, "get_Service7");
    expect(&IVantContext::get_Service3, services.service3, "get_Service3");
    expect(&IVantContext::get_PresentationService, services.presentationService, "get_PresentationService");
    expect(&IVantContext::get_DataStore, services.dataStore, "get_DataStore");
    expect(&IVantContext::get_ThreadService, services.threadService, "get_ThreadService");
    expect(&IVantContext::get_ParameterService, services.parameterService, "get_ParameterService");
}

TEST_F(ServicesTest, ObjectsThatAreHeld_AreNamed) {
    EXPECT_TRUE(services.StillHeld().empty());
    CComPtr<IUnknown> held(&services.service3);
    CComPtr<IVantController> controller(&services.controller);
    EXPECT_EQ(services.StillHeld(), (std::vector<std::string>{"Controller", "Service3"}));
    held.Release();
    controller.Release();
    EXPECT_TRUE(services.StillHeld().empty());
}

TEST_F(ServicesTest, ThreadServiceWithoutEngine_HasNoEngineInterface) {
    CComPtr<IUnknown> unknown;
    EXPECT_EQ(services.threadService.QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&unknown)), S_OK);
    EXPECT_EQ(unknown.Get(), &services.threadService);
    void* other = &services;
    EXPECT_EQ(services.threadService.QueryInterface(IID_IECMServicesOld, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(services.threadService.QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ServicesTest, ParameterService_HasIDispatchWithoutImplementingIt) {
    CComPtr<IDispatch> dispatch;
    ASSERT_EQ(services.parameterService.QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch)),
              S_OK);
    UINT count = 0;
    EXPECT_EQ(dispatch->GetTypeInfoCount(&count), E_NOTIMPL);
    EXPECT_EQ(dispatch->GetTypeInfo(0, 0, nullptr), E_NOTIMPL);
    EXPECT_EQ(dispatch->GetIDsOfNames(IID_IUnknown, nullptr, 0, 0, nullptr), E_NOTIMPL);
    EXPECT_EQ(dispatch->Invoke(0, IID_IUnknown, 0, 0, nullptr, nullptr, nullptr, nullptr), E_NOTIMPL);
}

TEST_F(ServicesTest, ReservedSlots_AreNotImplementedAndRecorded) {
    EXPECT_EQ(services.context.Reserved4(), E_NOTIMPL);
    EXPECT_EQ(Last(), "Context.Reserved4{} 0x80004001");
    EXPECT_EQ(services.dataStore.Reserved8(), E_NOTIMPL);
    EXPECT_EQ(services.componentService.Reserved9(), E_NOTIMPL);
    EXPECT_EQ(services.presentationService.Reserved3(), E_NOTIMPL);
    EXPECT_EQ(services.procedureController.Reserved6(), E_NOTIMPL);
    EXPECT_EQ(services.parameterService.Reserved11(), E_NOTIMPL);
    EXPECT_EQ(services.controller.Reserved5(), E_NOTIMPL);
    EXPECT_EQ(records.size(), 7U);
}

} // namespace

} // namespace vant::host
