// The simulated engine as commands see it, through the host's services.

#include "host/engine/objects/EngineObjects.h"

#include "host/record/Json.h"
#include "host/services/Services.h"

#include <gtest/gtest.h>
#include <thread>

namespace vant::host {

namespace {

class EngineObjectsTest : public ::testing::Test {
protected:
    EngineObjectsTest() {
        EngineParameter speed;
        speed.name = "Engine speed";
        speed.value = std::int64_t{800};
        speed.unitsKey = "rpm";
        speed.max = 3000;
        description.parameters["101000"] = speed;
        speed.fails = true;
        description.parameters["101001"] = speed;
        description.units["rpm"] = "1/min";
        auto& records199000 = description.faultArrays["199000"];
        records199000.emplace_back().fields = {{"199009", "Inactive"}};
        records199000.emplace_back().fields = {{"199008", "190"}, {"199009", "Active"}};
        description.faultArrays["empty"] = {};
        description.connection = "7 main";
        journal.Observe([this](const Record& record) { records.push_back(record); });
    }

    /// The services over the description as it then is.
    Services& Host() {
        if (!services)
            services.emplace(
                journal, [](const std::string&) { return S_OK; }, PersistentThreads::EndObserver(),
                description);
        return *services;
    }

    static CComBSTR Text(std::wstring_view text) { return CComBSTR(text); }

    /// The last record as "SERVICE.OPERATION(ARGUMENTS) RESULT".
    std::string Last() const {
        const Record& record = records.back();
        const Json arguments = ToJson(record)["arguments"];
        return record.service + '.' + record.operation + arguments.dump() + ' ' + ToText(*record.result);
    }

    CComPtr<IParameterOld> Parameter(const wchar_t* id) {
        CComPtr<IUnknown> object;
        EXPECT_EQ(Host().parameterService.GetParameter(Text(id).Get(), 1, &object), S_OK);
        CComPtr<IParameterOld> parameter;
        EXPECT_EQ(object.QueryInterface(&parameter), S_OK);
        return parameter;
    }
    CComPtr<IFaultRecordList> Faults(const wchar_t* id) {
        CComPtr<IUnknown> object;
        EXPECT_EQ(Host().parameterService.GetParameter(Text(id).Get(), 2, &object), S_OK);
        CComPtr<IFaultArray> array;
        EXPECT_EQ(object.QueryInterface(&array), S_OK);
        CComPtr<IUnknown> listObject;
        EXPECT_EQ(array->get_Records(&listObject), S_OK);
        CComPtr<IFaultRecordList> list;
        EXPECT_EQ(listObject.QueryInterface(&list), S_OK);
        return list;
    }
    CComPtr<IECMServicesOld> EcmServices() {
        CComPtr<IECMServicesOld> result;
        EXPECT_EQ(CComPtr<IUnknown>(&Host().threadService).QueryInterface(&result), S_OK);
        return result;
    }
    CComPtr<IECMSessionManager> Sessions() {
        CComPtr<IECMSessionManager> result;
        EXPECT_EQ(EcmServices().QueryInterface(&result), S_OK);
        return result;
    }
    CComPtr<IECMDirectory> EcmDirectory() {
        CComPtr<IECMDirectory> result;
        EXPECT_EQ(Sessions()->GetDirectory(&result), S_OK);
        return result;
    }
    CComPtr<IECMSession> OpenSession() {
        CComPtr<IUnknown> ecm;
        EXPECT_EQ(EcmDirectory()->OpenECM(7, &ecm), S_OK);
        CComPtr<IECMSession> session;
        EXPECT_EQ(ecm.QueryInterface(&session), S_OK);
        return session;
    }

    /// Walks the protocol source chain; the first failing step ends the walk with its result.
    HRESULT WalkProtocolChain(LONG ecmId, LONG& kind) {
        CComPtr<IProtocolSource> source;
        CComPtr<IProtocolSourceA> a;
        CComPtr<IProtocolSourceB> b;
        CComPtr<IProtocolSourceC> c;
        CComPtr<IProtocolSourceD> d;
        HRESULT code = Sessions()->GetProtocolSource(&source);
        if (SUCCEEDED(code))
            code = source->GetA(ecmId, &a);
        if (SUCCEEDED(code))
            code = a->GetB(&b);
        if (SUCCEEDED(code))
            code = b->GetC(nullptr, &c);
        if (SUCCEEDED(code))
            code = c->GetD(nullptr, &d);
        if (SUCCEEDED(code))
            code = d->get_Kind(&kind);
        return code;
    }

    EngineDescription description;
    std::vector<Record> records;
    Journal journal{[] { return std::int64_t{0}; }};
    std::optional<Services> services;
};

TEST_F(EngineObjectsTest, Parameter_ReturnsNameTextValueAndUnitsKey) {
    const auto parameter = Parameter(L"101000");
    CComBSTR name;
    EXPECT_EQ(parameter->get_Name(&name), S_OK);
    EXPECT_EQ(name.Text(), L"Engine speed");
    CComBSTR text;
    EXPECT_EQ(parameter->get_Text(&text), S_OK);
    EXPECT_EQ(text.Text(), L"800");
    EXPECT_EQ(Last(), R"(Parameter.get_Text{"id":"101000","value":"800"} 0x00000000)");
    CComVariant value;
    EXPECT_EQ(parameter->get_Value(&value), S_OK);
    EXPECT_EQ(value.Get().vt, VT_I4);
    EXPECT_EQ(value.Get().lVal, 800);
    EXPECT_EQ(Last(), R"(Parameter.get_Value{"id":"101000","value":800} 0x00000000)");
    CComBSTR key;
    EXPECT_EQ(parameter->get_UnitsKey(&key), S_OK);
    EXPECT_EQ(key.Text(), L"rpm");
}

TEST_F(EngineObjectsTest, FailingParameter_IsFoundButRefusesReads) {
    const auto parameter = Parameter(L"101001");
    CComVariant value;
    EXPECT_EQ(parameter->get_Value(&value), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(Last(), R"(Parameter.get_Value{"id":"101001"} 0x8007001E)");
    CComBSTR text;
    EXPECT_EQ(parameter->get_Text(&text), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(text.Get(), nullptr);
    CComBSTR name;
    EXPECT_EQ(parameter->get_Name(&name), S_OK);
}

TEST_F(EngineObjectsTest, NullPointers_AreRefused) {
    const auto parameter = Parameter(L"101000");
    EXPECT_EQ(parameter->get_Text(nullptr), E_POINTER);
    EXPECT_EQ(parameter->get_Value(nullptr), E_POINTER);
    EXPECT_EQ(parameter->get_Name(nullptr), E_POINTER);
    EXPECT_EQ(Sessions()->GetDirectory(nullptr), E_POINTER);
    EXPECT_EQ(OpenSession()->Register(nullptr), E_POINTER);
    EXPECT_EQ(Faults(L"199000")->get_Count(nullptr), E_POINTER);
    EXPECT_EQ(Faults(L"199000")->get_Item(CComVariant(LONG{1}).Get(), nullptr), E_POINTER);
}

TEST_F(EngineObjectsTest, GetParameter_FindsIdsOfTheRequestedKindAlone) {
    IUnknown* object = &Host().service3;
    EXPECT_EQ(Host().parameterService.GetParameter(Text(L"199000").Get(), 1, &object),
              HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Host().parameterService.GetParameter(Text(L"101000").Get(), 2, &object),
              HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(Host().parameterService.GetParameter(Text(L"101000").Get(), 3, &object), E_INVALIDARG);
}

TEST_F(EngineObjectsTest, SetParameter_WritesAndReturnsTheParameter) {
    CComPtr<IUnknown> object;
    EXPECT_EQ(Host().parameterService.SetParameter(Text(L"101000").Get(), 1, CComVariant(Text(L"1200")).Get(),
                                                   &object),
              S_OK);
    EXPECT_EQ(Last(), R"(ParameterService.SetParameter{"id":"101000","kind":1,"value":"1200"} 0x00000000)");
    EXPECT_EQ(object.Get(), Parameter(L"101000").Get());
    CComVariant value;
    EXPECT_EQ(Parameter(L"101000")->get_Value(&value), S_OK);
    EXPECT_EQ(value.Get().lVal, 1200);
    EXPECT_EQ(
        Host().parameterService.SetParameter(Text(L"101000").Get(), 1, CComVariant(LONG{1}).Get(), nullptr),
        S_OK);
}

TEST_F(EngineObjectsTest, SetParameterThatFails_ReturnsNoParameter) {
    IUnknown* object = &Host().service3;
    EXPECT_EQ(Host().parameterService.SetParameter(Text(L"101000").Get(), 1, CComVariant(LONG{3001}).Get(),
                                                   &object),
              E_BOUNDS);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(
        Host().parameterService.SetParameter(Text(L"199000").Get(), 2, CComVariant(LONG{1}).Get(), &object),
        E_INVALIDARG);
    EXPECT_EQ(
        Host().parameterService.SetParameter(Text(L"none").Get(), 1, CComVariant(LONG{1}).Get(), &object),
        HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(EngineObjectsTest, Connection_ReturnsItsIdentifier) {
    CComPtr<IConnectionOld> connection;
    ASSERT_EQ(Host().parameterService.GetConnection(&connection), S_OK);
    CComBSTR identifier;
    EXPECT_EQ(connection->get_ConnectionIdentifier(&identifier), S_OK);
    EXPECT_EQ(identifier.Text(), L"7 main");
}

TEST_F(EngineObjectsTest, ThreadServiceEcmServicesAndSessionManager_AreOneObject) {
    const CComPtr<IUnknown> thread(&Host().threadService);
    const auto ecm = EcmServices();
    const auto sessions = Sessions();
    CComPtr<IUnknown> fromEcm;
    CComPtr<IUnknown> fromSessions;
    ASSERT_EQ(ecm.QueryInterface(&fromEcm), S_OK);
    ASSERT_EQ(sessions.QueryInterface(&fromSessions), S_OK);
    EXPECT_EQ(fromEcm.Get(), thread.Get());
    EXPECT_EQ(fromSessions.Get(), thread.Get());
    CComPtr<IECMServicesOld> again;
    EXPECT_EQ(sessions.QueryInterface(&again), S_OK);
    EXPECT_EQ(again.Get(), ecm.Get());
}

TEST_F(EngineObjectsTest, ProtocolChain_ReturnsEveryKind) {
    for (LONG kind = 0; kind <= 6; ++kind) {
        services.reset();
        description.protocol = kind;
        LONG read = -1;
        EXPECT_EQ(WalkProtocolChain(7, read), S_OK);
        EXPECT_EQ(read, kind);
    }
}

TEST_F(EngineObjectsTest, ProtocolChain_FailsAtTheDescribedStep) {
    const char* const names[] = {"SessionManager.GetProtocolSource",
                                 "ProtocolSource.GetA",
                                 "ProtocolSourceA.GetB",
                                 "ProtocolSourceB.GetC",
                                 "ProtocolSourceC.GetD",
                                 "ProtocolSourceD.get_Kind"};
    for (int step = 0; step < 6; ++step) {
        services.reset();
        description.protocolFails = static_cast<ProtocolStep>(step);
        LONG kind = -1;
        EXPECT_EQ(WalkProtocolChain(7, kind), E_FAIL);
        EXPECT_EQ(kind, -1);
        EXPECT_EQ(records.back().service + '.' + records.back().operation, names[step]);
        EXPECT_TRUE(services->StillHeld().empty());
    }
}

TEST_F(EngineObjectsTest, ProtocolChain_OfAnotherControlModuleIsNotFound) {
    LONG kind = -1;
    EXPECT_EQ(WalkProtocolChain(8, kind), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(EngineObjectsTest, ConnectionWithoutDigits_BelongsToControlModule0) {
    description.connection = "main";
    LONG kind = -1;
    EXPECT_EQ(WalkProtocolChain(0, kind), S_OK);
}

TEST_F(EngineObjectsTest, ConnectionNumberBeyond32Bits_IsClamped) {
    constexpr LONG greatest = 2147483647;
    for (const auto& [connection, number] : {std::pair<const char*, LONG>{"2147483648", greatest},
                                             {"99999999999999999999 main", greatest},
                                             {"-2147483649", -greatest - 1},
                                             {"-99999999999999999999", -greatest - 1}}) {
        services.reset();
        description.connection = connection;
        LONG kind = -1;
        EXPECT_EQ(WalkProtocolChain(number, kind), S_OK) << connection;
    }
}

TEST_F(EngineObjectsTest, Session_ReadsParametersWhileAHandleIsOpen) {
    const auto session = OpenSession();
    IECMSessionItem* none = nullptr;
    EXPECT_EQ(session->ReadParameter(101000, 1, &none), E_UNEXPECTED);

    LONG handle = 0;
    ASSERT_EQ(session->Register(&handle), S_OK);
    CComPtr<IECMSessionItem> item;
    ASSERT_EQ(session->ReadParameter(101000, 1, &item), S_OK);
    CComVariant value;
    EXPECT_EQ(item->get_Value(&value), S_OK);
    EXPECT_EQ(value.Get().lVal, 800);
    EXPECT_EQ(session->ReadParameter(5, 1, &none), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(session->ReadParameter(101000, 2, &none), E_INVALIDARG);
    CComPtr<IECMSessionItem> failing;
    ASSERT_EQ(session->ReadParameter(101001, 1, &failing), S_OK);
    CComVariant unread;
    EXPECT_EQ(failing->get_Value(&unread), HRESULT_FROM_WIN32(ERROR_READ_FAULT));

    EXPECT_EQ(EcmDirectory()->CloseECM(handle), S_OK);
    EXPECT_EQ(EcmDirectory()->CloseECM(handle), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(session->ReadParameter(101000, 1, &none), E_UNEXPECTED);
}

TEST_F(EngineObjectsTest, Session_ReturnsADifferentHandleForEachRegistration) {
    const auto session = OpenSession();
    LONG first = 0;
    LONG second = 0;
    ASSERT_EQ(session->Register(&first), S_OK);
    ASSERT_EQ(session->Register(&second), S_OK);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
}

TEST_F(EngineObjectsTest, OpenECM_FindsOneControlModule) {
    IUnknown* ecm = &Host().service3;
    EXPECT_EQ(EcmDirectory()->OpenECM(1, &ecm), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(ecm, nullptr);
}

TEST_F(EngineObjectsTest, OpenHandle_CountsAsHeld) {
    LONG handle = 0;
    ASSERT_EQ(OpenSession()->Register(&handle), S_OK);
    EXPECT_EQ(services->StillHeld(), std::vector<std::string>{"Session"});
    EXPECT_EQ(EcmDirectory()->CloseECM(handle), S_OK);
    EXPECT_TRUE(services->StillHeld().empty());
}

TEST_F(EngineObjectsTest, Units_AreFoundByTheirKeys) {
    CComPtr<IUnknown> object;
    ASSERT_EQ(EcmServices()->GetUnits(&object), S_OK);
    auto* const table = static_cast<IUnitsTable*>(object.Get());
    CComPtr<IUnit> unit;
    ASSERT_EQ(table->GetUnit(Text(L"rpm").Get(), &unit), S_OK);
    CComBSTR text;
    EXPECT_EQ(unit->get_Text(&text), S_OK);
    EXPECT_EQ(text.Text(), L"1/min");
    CComPtr<IUnit> none;
    EXPECT_EQ(table->GetUnit(Text(L"RPM").Get(), &none), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(none.Get(), nullptr);
}

TEST_F(EngineObjectsTest, FaultArray_ReturnsRecordsAndFieldsInOrder) {
    const auto list = Faults(L"199000");
    LONG count = 0;
    ASSERT_EQ(list->get_Count(&count), S_OK);
    EXPECT_EQ(count, 2);
    CComPtr<IFaultRecord> record;
    ASSERT_EQ(list->get_Item(CComVariant(LONG{2}).Get(), &record), S_OK);
    ASSERT_EQ(record->get_Count(&count), S_OK);
    EXPECT_EQ(count, 2);
    CComPtr<IFaultField> field;
    ASSERT_EQ(record->get_Item(CComVariant(LONG{1}).Get(), &field), S_OK);
    CComBSTR name;
    CComBSTR value;
    EXPECT_EQ(field->get_Name(&name), S_OK);
    EXPECT_EQ(field->get_Value(&value), S_OK);
    EXPECT_EQ(name.Text(), L"199008");
    EXPECT_EQ(value.Text(), L"190");
}

TEST_F(EngineObjectsTest, FaultArray_TakesIntegerIndexesFromOne) {
    const auto list = Faults(L"199000");
    CComPtr<IFaultRecord> record;
    EXPECT_EQ(list->get_Item(CComVariant(LONG{0}).Get(), &record), DISP_E_BADINDEX);
    EXPECT_EQ(list->get_Item(CComVariant(LONG{3}).Get(), &record), DISP_E_BADINDEX);
    EXPECT_EQ(list->get_Item(CComVariant(1.0).Get(), &record), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(record.Get(), nullptr);
}

TEST_F(EngineObjectsTest, EmptyFaultArray_HasNoRecords) {
    LONG count = -1;
    EXPECT_EQ(Faults(L"empty")->get_Count(&count), S_OK);
    EXPECT_EQ(count, 0);
}

class FaultsThatReturnTest : public EngineObjectsTest {
protected:
    FaultsThatReturnTest() {
        auto& faults = description.faultArrays["returning"];
        for (const char* const code : {"1", "2", "3"})
            faults.emplace_back().fields = {{"199008", code}};
        faults[1].when = FaultCondition{"101000", FaultCondition::Relation::Above, 1000.0, 0, true};
        faults[1].clearedBy = FaultClearing{"101000", std::int64_t{500}};
    }

    void SetSpeed(LONG speed) {
        EXPECT_EQ(
            Host().parameterService.SetParameter(Text(L"101000").Get(), 1, CComVariant(speed).Get(), nullptr),
            S_OK);
    }
    /// The values of the first fields.
    static std::vector<std::string> CodesIn(IFaultRecordList& list) {
        LONG count = 0;
        EXPECT_EQ(list.get_Count(&count), S_OK);
        std::vector<std::string> codes;
        for (LONG i = 1; i <= count; ++i) {
            CComPtr<IFaultRecord> record;
            EXPECT_EQ(list.get_Item(CComVariant(i).Get(), &record), S_OK);
            CComPtr<IFaultField> field;
            EXPECT_EQ(record->get_Item(CComVariant(LONG{1}).Get(), &field), S_OK);
            CComBSTR code;
            EXPECT_EQ(field->get_Value(&code), S_OK);
            codes.push_back(ToUtf8(code.Text()));
        }
        return codes;
    }
    using Codes = std::vector<std::string>;
};

TEST_F(FaultsThatReturnTest, Records_AreThoseThatArePresentWhenTheyAreRequested) {
    EXPECT_EQ(CodesIn(*Faults(L"returning").Get()), (Codes{"1", "3"}));
    SetSpeed(1001);
    EXPECT_EQ(CodesIn(*Faults(L"returning").Get()), (Codes{"1", "2", "3"}));
    SetSpeed(500);
    EXPECT_EQ(CodesIn(*Faults(L"returning").Get()), (Codes{"1", "3"}));
}

TEST_F(FaultsThatReturnTest, ListThatIsHeld_StaysAsItIs) {
    const auto before = Faults(L"returning");
    SetSpeed(1001);
    const auto after = Faults(L"returning");
    CComPtr<IFaultRecord> second;
    ASSERT_EQ(after->get_Item(CComVariant(LONG{2}).Get(), &second), S_OK);
    SetSpeed(500);
    EXPECT_EQ(CodesIn(*before.Get()), (Codes{"1", "3"}));
    EXPECT_EQ(CodesIn(*after.Get()), (Codes{"1", "2", "3"}));
    LONG fields = 0;
    EXPECT_EQ(second->get_Count(&fields), S_OK);
    EXPECT_EQ(fields, 1);
    EXPECT_EQ(services->StillHeld(),
              (std::vector<std::string>{"FaultRecordList", "FaultRecordList", "FaultRecord"}));
}

TEST_F(FaultsThatReturnTest, SameRecords_AreTheSameObjects) {
    const auto before = Faults(L"returning");
    SetSpeed(1001);
    const auto between = Faults(L"returning");
    SetSpeed(500);
    EXPECT_EQ(Faults(L"returning").Get(), before.Get());
    EXPECT_NE(between.Get(), before.Get());
    CComPtr<IFaultRecord> last;
    CComPtr<IFaultRecord> lastOfMore;
    ASSERT_EQ(before->get_Item(CComVariant(LONG{2}).Get(), &last), S_OK);
    ASSERT_EQ(between->get_Item(CComVariant(LONG{3}).Get(), &lastOfMore), S_OK);
    EXPECT_EQ(last.Get(), lastOfMore.Get());
}

TEST_F(FaultsThatReturnTest, RecordsWithoutAPlaceForThem_AreRefused) {
    CComPtr<IUnknown> object;
    ASSERT_EQ(Host().parameterService.GetParameter(Text(L"returning").Get(), 2, &object), S_OK);
    CComPtr<IFaultArray> array;
    ASSERT_EQ(object.QueryInterface(&array), S_OK);
    EXPECT_EQ(array->get_Records(nullptr), E_POINTER);
}

TEST_F(FaultsThatReturnTest, RequestsOnManyThreads_SeeWholeLists) {
    Host();
    std::vector<std::thread> threads;
    threads.emplace_back([this] {
        for (int i = 0; i < 100; ++i)
            SetSpeed(i % 2 == 0 ? 1001 : 500);
    });
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([this] {
            for (int j = 0; j < 100; ++j) {
                const Codes codes = CodesIn(*Faults(L"returning").Get());
                EXPECT_TRUE(codes == (Codes{"1", "3"}) || codes == (Codes{"1", "2", "3"}));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(services->StillHeld().empty());
}

TEST_F(EngineObjectsTest, ObjectsThatAreHeld_AreNamed) {
    const auto parameter = Parameter(L"101000");
    const auto list = Faults(L"199000");
    const auto ecm = EcmServices();
    EXPECT_EQ(services->StillHeld(),
              (std::vector<std::string>{"Parameter '101000'", "FaultRecordList", "ECMServices"}));
}

TEST_F(EngineObjectsTest, ReservedSlots_AreNotImplementedAndRecorded) {
    EXPECT_EQ(Parameter(L"101000")->Reserved7(), E_NOTIMPL);
    EXPECT_EQ(Last(), "Parameter.Reserved7{} 0x80004001");
    EXPECT_EQ(EcmServices()->Reserved11(), E_NOTIMPL);
    EXPECT_EQ(Sessions()->Reserved8(), E_NOTIMPL);
    EXPECT_EQ(EcmDirectory()->Reserved7(), E_NOTIMPL);
    EXPECT_EQ(OpenSession()->Reserved10(), E_NOTIMPL);
}

TEST_F(EngineObjectsTest, ReadsAndWritesOnManyThreads_AllSucceed) {
    Host();
    std::vector<std::thread> threads;
    for (LONG i = 0; i < 4; ++i)
        threads.emplace_back([this, i] {
            for (LONG j = 0; j < 50; ++j) {
                EXPECT_EQ(services->parameterService.SetParameter(
                              CComBSTR(L"101000").Get(), 1, CComVariant(LONG{i * 100 + j}).Get(), nullptr),
                          S_OK);
                const auto parameter = Parameter(L"101000");
                CComVariant value;
                EXPECT_EQ(parameter->get_Value(&value), S_OK);
                CComBSTR text;
                EXPECT_EQ(parameter->get_Text(&text), S_OK);
                LONG handle = 0;
                const auto session = OpenSession();
                EXPECT_EQ(session->Register(&handle), S_OK);
                CComPtr<IECMSessionItem> item;
                EXPECT_EQ(session->ReadParameter(101000, 1, &item), S_OK);
                EXPECT_EQ(EcmDirectory()->CloseECM(handle), S_OK);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(services->StillHeld().empty());
}

} // namespace

} // namespace vant::host
