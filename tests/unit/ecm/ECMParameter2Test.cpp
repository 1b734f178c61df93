#include "ecm/ECMParameter2.h"

#include "tests/support/EngineHost.h"
#include "tests/support/HostObject.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <utility>

namespace vant::test {

namespace {

using namespace std::string_view_literals;

using Calls = std::vector<std::string>;

/// The host's data service, watched: it may give no object for a write, and notes when its last reference
/// goes.
class WatchedDataService final : public DualHostObject<IDataServiceOld> {
public:
    WatchedDataService(TestHost& host, CComPtr<IDataServiceOld> service, std::vector<std::string>& released)
        : DualHostObject(host), m_service(std::move(service)), m_released(released) {}

    bool writesGiveNothing = false;
    bool connectionIsNull = false;

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = DualHostObject::Release();
        if (left == 0)
            m_released.emplace_back("data service");
        return left;
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IDataServiceOld 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IDataServiceOld 8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IDataServiceOld 9"); }
    HRESULT STDMETHODCALLTYPE GetConnection(IConnectionOld** connection) override {
        return connectionIsNull ? S_OK : m_service->GetConnection(connection);
    }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Unexpected("IDataServiceOld 11"); }
    HRESULT STDMETHODCALLTYPE GetParameter(BSTR id, LONG kind, IUnknown** parameter) override {
        return m_service->GetParameter(id, kind, parameter);
    }
    HRESULT STDMETHODCALLTYPE SetParameter(BSTR id, LONG kind, VARIANT value, IUnknown** parameter) override {
        if (writesGiveNothing)
            return S_OK;
        return m_service->SetParameter(id, kind, value, parameter);
    }

private:
    CComPtr<IDataServiceOld> m_service;
    std::vector<std::string>& m_released;
};

CComPtr<IDataServiceOld> DataServiceOf(TestHost& host) {
    CComPtr<IDataServiceOld> service;
    host.Context()->get_ParameterService(&service);
    host.ForgetCalls();
    return service;
}

/// The code of the exception that `action` throws; S_OK if it throws nothing.
template <class Action>
HRESULT Thrown(Action action) {
    try {
        action();
        return S_OK;
    } catch (const CComErrorHandlerException& exception) {
        return exception.Code();
    }
}

class ECMParameter2Test : public ::testing::Test {
protected:
    ECMParameter2Test() {
        Add(L"13190", CComVariant(LONG{800}));
        Add(L"11", Text(L"low"));
        Add(L"14", Text(L"high"));
        engine.sessionValues[13190] = CComVariant(LONG{750});
    }

    static CComVariant Text(std::wstring_view text) { return CComVariant(CComBSTR(text)); }
    void Add(const std::wstring& id, CComVariant value) { host.parameters[id].value = std::move(value); }
    void ReadDirectly() { engine.protocolKind = 4; }

    ECMParameter2 Open() { return ECMParameter2(engine.Object(), &service); }

    /// What ReadLong stores; nothing if it returns E_FAIL, which must leave the output alone.
    std::optional<LONG> Read(std::wstring_view id = L"13190") {
        const ECMParameter2 parameter = Open();
        LONG value = 4711;
        const HRESULT code = parameter.ReadLong(id, value);
        if (code == S_OK)
            return value;
        EXPECT_EQ(E_FAIL, code);
        EXPECT_EQ(4711, value);
        return std::nullopt;
    }
    std::string ReadText(std::wstring_view id) {
        CComBSTR text;
        Open().ReadString(id, text);
        return Show(text.Get());
    }
    long Count(std::string_view operation) const {
        return static_cast<long>(std::count_if(host.calls.begin(), host.calls.end(), [&](const auto& call) {
            return call.starts_with(operation) && call[operation.size()] == '(';
        }));
    }
    Calls Writes() const {
        Calls writes;
        std::copy_if(host.calls.begin(), host.calls.end(), std::back_inserter(writes),
                     [](const auto& call) { return call.starts_with("SetParameter("); });
        return writes;
    }
    /// The number of a call in a run that has just been made; the calls are then forgotten.
    std::size_t NumberOf(std::string_view call) {
        const auto found = std::find(host.calls.begin(), host.calls.end(), call);
        EXPECT_NE(host.calls.end(), found) << call;
        const auto number = static_cast<std::size_t>(found - host.calls.begin()) + 1;
        host.ForgetCalls();
        return number;
    }

    TestHost host;
    EngineServices engine{host};
    WatchedDataService service{host, DataServiceOf(host), engine.released};
};

// The choice of the read path

TEST_F(ECMParameter2Test, ProtocolKinds4And5_ReadDirectly_OthersThroughTheDataService) {
    for (const LONG kind : {-1, 0, 1, 2, 3, 4, 5, 6, 7}) {
        engine.protocolKind = kind;
        EXPECT_EQ(kind == 4 || kind == 5 ? 750 : 800, Read()) << kind;
    }
}

TEST_F(ECMParameter2Test, Construction_WithDataServiceReads_WalksTheProtocolChainAndOpensNothing) {
    host.connectionIdentifier = L"42";
    { const ECMParameter2 parameter = Open(); }
    EXPECT_EQ((Calls{"QueryInterface(IECMServicesOld)", "QueryInterface(IECMSessionManager)",
                     "GetDirectory()", "GetProtocolSource()", "GetConnection()", "get_ConnectionIdentifier()",
                     "GetA(42)", "GetB()", "GetC()", "GetD()", "get_Kind()"}),
              host.calls);
}

TEST_F(ECMParameter2Test, Construction_WithDirectReads_OpensAndRegistersASession) {
    ReadDirectly();
    host.connectionIdentifier = L"42";
    { const ECMParameter2 parameter = Open(); }
    EXPECT_EQ(
        (Calls{"QueryInterface(IECMServicesOld)", "QueryInterface(IECMSessionManager)", "GetDirectory()",
               "GetProtocolSource()", "GetConnection()", "get_ConnectionIdentifier()", "GetA(42)", "GetB()",
               "GetC()", "GetD()", "get_Kind()", "GetConnection()", "get_ConnectionIdentifier()",
               "OpenECM(42)", "QueryInterface(IECMSession)", "Register()", "CloseECM(7)"}),
        host.calls);
}

TEST_F(ECMParameter2Test, AFailureAnywhereInTheProtocolChain_SelectsDirectReads) {
    for (const char* step : {"GetProtocolSource", "GetA", "GetB", "GetC", "GetD", "get_Kind"}) {
        host.fail[step] = E_NOTIMPL;
        EXPECT_EQ(750, Read()) << step;
        host.fail.clear();
    }
}

TEST_F(ECMParameter2Test, ProtocolChainThatGivesNoObject_SelectsDirectReads) {
    for (const char* step : {"GetProtocolSource", "GetA", "GetB", "GetC", "GetD"}) {
        engine.givesNothing = {step};
        EXPECT_EQ(750, Read()) << step;
    }
}

TEST_F(ECMParameter2Test, FailedProtocolChain_StillReadsTheConnectionForTheSession) {
    host.fail["GetProtocolSource"] = E_FAIL;
    Read();
    EXPECT_EQ(1, Count("GetConnection"));
    EXPECT_EQ(1, Count("OpenECM"));
}

TEST_F(ECMParameter2Test, ConnectionIdentifier_CountsByItsLeadingDigits) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"12", "GetA(12)"},
        {L"  12x34", "GetA(12)"},
        {L"-3", "GetA(-3)"},
        {L"+5.9", "GetA(5)"},
        {L"007", "GetA(7)"},
        {L"ECM", "GetA(0)"},
        {L"", "GetA(0)"},
        {L"x1", "GetA(0)"},
        {L"2147483647", "GetA(2147483647)"},
        {L"2147483648", "GetA(2147483647)"},
        {L"99999999999999999999999", "GetA(2147483647)"},
        {L"-99999999999999999999999", "GetA(-2147483648)"},
    };
    for (const auto& [identifier, call] : cases) {
        host.connectionIdentifier = identifier;
        host.ForgetCalls();
        { const ECMParameter2 parameter = Open(); }
        EXPECT_EQ(1, std::count(host.calls.begin(), host.calls.end(), call)) << Show(identifier);
    }
}

TEST_F(ECMParameter2Test, ConnectionIdentifierWithoutDigits_OpensEcm0) {
    ReadDirectly();
    host.connectionIdentifier = L"ECM";
    EXPECT_EQ(750, Read());
    EXPECT_EQ(1, std::count(host.calls.begin(), host.calls.end(), "OpenECM(0)"));
}

TEST_F(ECMParameter2Test, FailingConnection_Throws) {
    for (const LONG kind : {0, 4}) {
        engine.protocolKind = kind;
        for (const char* step : {"GetConnection", "get_ConnectionIdentifier"}) {
            host.fail[step] = E_NOTIMPL;
            EXPECT_EQ(E_NOTIMPL, Thrown([&] { Open(); })) << step;
            host.fail.clear();
        }
    }
    EXPECT_EQ(0, Count("OpenECM"));
}

TEST_F(ECMParameter2Test, FailingConnectionAfterAFailedProtocolChain_Throws) {
    host.fail["GetProtocolSource"] = E_FAIL;
    host.fail["GetConnection"] = E_NOTIMPL;
    EXPECT_EQ(E_NOTIMPL, Thrown([&] { Open(); }));
}

TEST_F(ECMParameter2Test, ConnectionThatFailsTheSecondTime_Throws) {
    ReadDirectly();
    { const ECMParameter2 parameter = Open(); }
    const auto second = std::find(std::find(host.calls.begin(), host.calls.end(), "get_Kind()"),
                                  host.calls.end(), "GetConnection()");
    host.FailCall(static_cast<std::size_t>(second - host.calls.begin()) + 1, E_NOTIMPL);
    host.ForgetCalls();
    EXPECT_EQ(E_NOTIMPL, Thrown([&] { Open(); }));
    EXPECT_EQ(0, Count("CloseECM"));
}

TEST_F(ECMParameter2Test, ConnectionThatIsNull_Throws) {
    service.connectionIsNull = true;
    EXPECT_EQ(E_POINTER, Thrown([&] { Open(); }));
}

TEST_F(ECMParameter2Test, ServicesWithoutTheirInterface_Throw) {
    host.fail["QueryInterface"] = E_NOINTERFACE;
    EXPECT_EQ(E_NOINTERFACE, Thrown([&] { Open(); }));
    EXPECT_EQ((Calls{"QueryInterface(IECMServicesOld)"}), host.calls);
}

TEST_F(ECMParameter2Test, NullArguments_Throw) {
    EXPECT_EQ(E_POINTER, Thrown([&] { ECMParameter2(nullptr, &service); }));
    EXPECT_EQ(E_POINTER, Thrown([&] { ECMParameter2(engine.Object(), nullptr); }));
}

// Direct reads

TEST_F(ECMParameter2Test, DirectRead_AsksTheSessionForTheNumberOfTheIdentifier) {
    ReadDirectly();
    const ECMParameter2 parameter = Open();
    host.ForgetCalls();
    LONG value = 0;
    EXPECT_EQ(S_OK, parameter.ReadLong(L"13190", value));
    EXPECT_EQ(750, value);
    EXPECT_EQ((Calls{"ReadParameter(13190, 1)", "get_ItemValue()"}), host.calls);
}

TEST_F(ECMParameter2Test, DirectReadOfAnIdentifierWithoutDigits_ReadsNumber0) {
    ReadDirectly();
    engine.sessionValues[0] = CComVariant(LONG{5});
    EXPECT_EQ(5, Read(L"RPM"));
}

TEST_F(ECMParameter2Test, DirectRead_ConvertsToAnInteger) {
    ReadDirectly();
    engine.sessionValues[1] = Text(L"1,234");
    engine.sessionValues[2] = CComVariant(2.5);
    EXPECT_EQ(1234, Read(L"1"));
    EXPECT_EQ(2, Read(L"2"));
}

TEST_F(ECMParameter2Test, DirectReadOfAValueThatIsNotANumber_Stores0) {
    ReadDirectly();
    engine.sessionValues[1] = Text(L"on");
    engine.sessionValues[2] = Text(L"1e10");
    EXPECT_EQ(0, Read(L"1"));
    EXPECT_EQ(0, Read(L"2"));
}

TEST_F(ECMParameter2Test, DirectReadOfAFailingValue_Stores0) {
    ReadDirectly();
    host.fail["get_ItemValue"] = E_NOTIMPL;
    EXPECT_EQ(0, Read());
    EXPECT_EQ(1, Count("get_ItemValue"));
}

TEST_F(ECMParameter2Test, DirectReadWhoseValueThrows_IsAFailedRead) {
    ReadDirectly();
    Read();
    host.ThrowAtCall(NumberOf("get_ItemValue()"));
    EXPECT_EQ(std::nullopt, Read());
}

TEST_F(ECMParameter2Test, AFailedStepOfTheDirectPath_IsAFailedRead) {
    ReadDirectly();
    for (const char* step : {"GetDirectory", "OpenECM", "ReadParameter"}) {
        host.fail[step] = E_NOTIMPL;
        EXPECT_EQ(std::nullopt, Read()) << step;
        host.fail.clear();
    }
}

TEST_F(ECMParameter2Test, ADirectPathThatGivesNoObject_IsAFailedRead) {
    ReadDirectly();
    for (const char* step : {"GetDirectory", "OpenECM", "ReadParameter"}) {
        engine.givesNothing = {step};
        EXPECT_EQ(std::nullopt, Read()) << step;
    }
}

TEST_F(ECMParameter2Test, OpenedEcmWithoutASession_IsAFailedRead) {
    ReadDirectly();
    Read();
    host.FailCall(NumberOf("QueryInterface(IECMSession)"), E_NOINTERFACE);
    EXPECT_EQ(std::nullopt, Read());
    EXPECT_EQ(0, Count("Register"));
}

TEST_F(ECMParameter2Test, NoSessionManager_IsAFailedRead) {
    Read();
    host.FailCall(NumberOf("QueryInterface(IECMSessionManager)"), E_NOINTERFACE);
    EXPECT_EQ(std::nullopt, Read());
    EXPECT_EQ(0, Count("GetParameter"));
}

// Closing

TEST_F(ECMParameter2Test, RegisteredHandle_IsClosedOnce_AtTheEnd) {
    ReadDirectly();
    for (const LONG handle : {0, 1, 2147483647}) {
        engine.handle = handle;
        host.ForgetCalls();
        EXPECT_EQ(750, Read());
        EXPECT_EQ("CloseECM(" + std::to_string(handle) + ")", host.calls.back());
        EXPECT_EQ(1, Count("CloseECM"));
    }
}

TEST_F(ECMParameter2Test, NegativeHandle_IsNotClosed_ButReads) {
    ReadDirectly();
    engine.handle = -5;
    EXPECT_EQ(750, Read());
    EXPECT_EQ(0, Count("CloseECM"));
}

TEST_F(ECMParameter2Test, FailedRegister_KeepsTheSession_AndLeavesNothingToClose_WhateverHandleItGave) {
    ReadDirectly();
    host.fail["Register"] = E_FAIL;
    EXPECT_EQ(750, Read());
    EXPECT_EQ(0, Count("CloseECM"));
}

TEST_F(ECMParameter2Test, DataServiceReads_CloseNothing) {
    EXPECT_EQ(800, Read());
    EXPECT_EQ(0, Count("CloseECM"));
}

TEST_F(ECMParameter2Test, RegisteredHandle_IsClosedWhileAnExceptionPasses) {
    ReadDirectly();
    EXPECT_EQ(E_INVALIDARG, Thrown([&] {
                  CComBSTR text;
                  Open().ReadString(L"unknown", text);
              }));
    EXPECT_EQ("CloseECM(7)", host.calls.back());
    EXPECT_EQ(1, Count("CloseECM"));
}

TEST_F(ECMParameter2Test, CloseThatFailsOrThrows_HarmsNothing) {
    ReadDirectly();
    host.fail["CloseECM"] = E_FAIL;
    EXPECT_EQ(750, Read());
    host.fail.clear();
    host.ThrowAtCall(NumberOf("CloseECM(7)"));
    EXPECT_EQ(750, Read());
}

TEST_F(ECMParameter2Test, EveryCallThatFailsOrThrows_LeavesNoReferenceAndClosesWhatIsRegistered) {
    ReadDirectly();
    Read();
    const std::size_t calls = host.CallCount();
    const LONG held = host.OutstandingReferences();
    for (const bool throws : {false, true}) {
        for (std::size_t number = 1; number <= calls; ++number) {
            host.FailCall(throws ? 0 : number, E_NOTIMPL);
            host.ThrowAtCall(throws ? number : 0);
            host.ForgetCalls();
            try {
                Read();
            } catch (const CComErrorHandlerException&) {
                EXPECT_FALSE(throws);
            } catch (const std::runtime_error&) {
                EXPECT_TRUE(throws);
            }
            ASSERT_LE(number, host.calls.size());
            const bool registered = Count("Register") == 1 && host.calls[number - 1] != "Register()";
            EXPECT_EQ(registered ? 1 : 0, Count("CloseECM")) << host.calls[number - 1];
            EXPECT_EQ(held, host.OutstandingReferences()) << host.calls[number - 1];
        }
    }
}

TEST_F(ECMParameter2Test, Destruction_ReleasesInTheReverseOfAcquisition) {
    ReadDirectly();
    {
        const ECMParameter2 parameter = Open();
        engine.released.clear();
    }
    EXPECT_EQ(
        (Calls{"opened ECM", "session", "directory", "session manager", "data service", "ECM services"}),
        engine.released);
}

// ReadLong through the data service

TEST_F(ECMParameter2Test, ReadLong_MakesCheckedCallsOnTheDataService) {
    const ECMParameter2 parameter = Open();
    host.ForgetCalls();
    LONG value = 0;
    EXPECT_EQ(S_OK, parameter.ReadLong(L"13190", value));
    EXPECT_EQ(800, value);
    EXPECT_EQ((Calls{"GetParameter(13190, 1)", "QueryInterface(IParameterOld)", "get_Value()"}), host.calls);
}

TEST_F(ECMParameter2Test, ReadLongOfAnUnknownParameter_LeavesTheOutputUntouched) {
    EXPECT_EQ(std::nullopt, Read(L"unknown"));
}

TEST_F(ECMParameter2Test, ReadLong_ConvertsUnderUsEnglish) {
    Add(L"text", Text(L"1,234"));
    Add(L"half", CComVariant(3.5));
    Add(L"empty", CComVariant());
    Add(L"word", Text(L"on"));
    Add(L"large", CComVariant(1e10));
    EXPECT_EQ(1234, Read(L"text"));
    EXPECT_EQ(4, Read(L"half"));
    EXPECT_EQ(0, Read(L"empty"));
    EXPECT_EQ(std::nullopt, Read(L"word"));
    EXPECT_EQ(std::nullopt, Read(L"large"));
}

TEST_F(ECMParameter2Test, FailedStepOfReadLong_IsAFailedRead) {
    for (const char* step : {"GetParameter", "get_Value"}) {
        host.fail[step] = E_NOTIMPL;
        EXPECT_EQ(std::nullopt, Read()) << step;
        host.fail.clear();
    }
    host.parameters[L"13190"].offersInterface = false;
    EXPECT_EQ(std::nullopt, Read());
}

TEST_F(ECMParameter2Test, ReadLong_LetsNoExceptionOut) {
    Read();
    host.ThrowAtCall(NumberOf("get_Value()"));
    EXPECT_EQ(std::nullopt, Read());
}

// ReadString

TEST_F(ECMParameter2Test, ReadString_ConvertsToText) {
    Add(L"number", CComVariant(2.5));
    Add(L"empty", CComVariant());
    EXPECT_EQ("800", ReadText(L"13190"));
    EXPECT_EQ("2.5", ReadText(L"number"));
    EXPECT_EQ("high", ReadText(L"14"));
    EXPECT_EQ("", ReadText(L"empty"));
}

TEST_F(ECMParameter2Test, ReadString_GoesThroughTheDataServiceEvenIfReadsAreDirect) {
    ReadDirectly();
    EXPECT_EQ("800", ReadText(L"13190"));
    EXPECT_EQ(0, Count("ReadParameter"));
}

TEST_F(ECMParameter2Test, ReadString_ReplacesTheOutput_ButNotWhenItThrows) {
    const ECMParameter2 parameter = Open();
    CComBSTR text(L"before");
    EXPECT_EQ(E_INVALIDARG, Thrown([&] { parameter.ReadString(L"unknown", text); }));
    EXPECT_EQ(L"before", text.Text());
    parameter.ReadString(L"13190", text);
    EXPECT_EQ(L"800", text.Text());
}

TEST_F(ECMParameter2Test, ReadStringThatFails_ThrowsTheCode) {
    const ECMParameter2 parameter = Open();
    CComBSTR text;
    const auto read = [&] { parameter.ReadString(L"13190", text); };
    for (const char* step : {"GetParameter", "QueryInterface", "get_Value"}) {
        host.fail[step] = E_NOTIMPL;
        EXPECT_EQ(E_NOTIMPL, Thrown(read)) << step;
        host.fail.clear();
    }
    host.parameters[L"13190"].offersInterface = false;
    EXPECT_EQ(E_NOINTERFACE, Thrown(read));
}

// Writing

TEST_F(ECMParameter2Test, Write_PassesTheValueWithItsType) {
    ECMParameter2 parameter = Open();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, parameter.Write(L"13190", CComVariant(2.5), false));
    EXPECT_EQ(S_OK, parameter.WriteLong(L"13190", 3, false));
    EXPECT_EQ(S_OK, parameter.WriteString(L"13190", CComBSTR(L"4"), false));
    EXPECT_EQ((Calls{"SetParameter(13190, 1, 2.5)", "QueryInterface(IParameterOld)",
                     "SetParameter(13190, 1, 3)", "QueryInterface(IParameterOld)",
                     "SetParameter(13190, 1, \"4\")", "QueryInterface(IParameterOld)"}),
              host.calls);
}

TEST_F(ECMParameter2Test, WrittenObject_NeedNotOfferItsInterface_NorBeThere) {
    host.parameters[L"13190"].offersInterface = false;
    EXPECT_EQ(S_OK, Open().WriteLong(L"13190", 3, false));
    service.writesGiveNothing = true;
    EXPECT_EQ(S_OK, Open().WriteLong(L"13190", 3, false));
}

TEST_F(ECMParameter2Test, Write_ReturnsTheResultOfClearingTheValue) {
    constexpr VARTYPE noType = 15; // the platform cannot clear a value of it
    service.writesGiveNothing = true;
    CComVariant value;
    (&value)->vt = noType;
    EXPECT_EQ(DISP_E_BADVARTYPE, Open().Write(L"13190", std::move(value), false));
}

TEST_F(ECMParameter2Test, FailedWrite_Throws) {
    EXPECT_EQ(E_INVALIDARG, Thrown([&] { Open().WriteLong(L"unknown", 3, false); }));
    host.fail["SetParameter"] = E_NOTIMPL;
    EXPECT_EQ(E_NOTIMPL, Thrown([&] { Open().WriteString(L"13190", CComBSTR(L"3"), false); }));
}

TEST_F(ECMParameter2Test, GuardedWrite_LendsParameter11TheValueOf14) {
    ECMParameter2 parameter = Open();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, parameter.WriteLong(L"13190", 3, true));
    EXPECT_EQ(
        (Calls{"GetParameter(11, 1)", "QueryInterface(IParameterOld)", "get_Value()", "GetParameter(14, 1)",
               "QueryInterface(IParameterOld)", "get_Value()", "SetParameter(11, 1, \"high\")",
               "QueryInterface(IParameterOld)", "SetParameter(13190, 1, 3)", "QueryInterface(IParameterOld)",
               "GetParameter(14, 1)", "QueryInterface(IParameterOld)", "get_Value()",
               "SetParameter(11, 1, \"low\")", "QueryInterface(IParameterOld)"}),
        host.calls);
}

TEST_F(ECMParameter2Test, GuardedWriteOfAString_IsGuardedToo) {
    Open().WriteString(L"13190", CComBSTR(L"3"), true);
    EXPECT_EQ((Calls{"SetParameter(11, 1, \"high\")", "SetParameter(13190, 1, \"3\")",
                     "SetParameter(11, 1, \"low\")"}),
              Writes());
}

TEST_F(ECMParameter2Test, GuardedWriteIf11Equals14_WritesNeitherBeforeNorAfter) {
    Add(L"11", Text(L"high"));
    Open().WriteLong(L"13190", 3, true);
    EXPECT_EQ((Calls{"SetParameter(13190, 1, 3)"}), Writes());
}

TEST_F(ECMParameter2Test, GuardedWrite_ComparesTextsWithCase) {
    Add(L"11", Text(L"High"));
    Open().WriteLong(L"13190", 3, true);
    EXPECT_EQ(3u, Writes().size());
}

TEST_F(ECMParameter2Test, GuardedWrite_ComparesAsVarBstrCmpDoes) {
    // Null characters do not count, except at the beginning.
    Add(L"11", Text(L"hi\0gh"sv));
    Add(L"14", Text(L"high\0"sv));
    Open().WriteLong(L"13190", 3, true);
    EXPECT_EQ((Calls{"SetParameter(13190, 1, 3)"}), Writes());
    host.ForgetCalls();
    Add(L"11", Text(L"\0high"sv));
    Add(L"14", Text(L"high"));
    Open().WriteLong(L"13190", 3, true);
    EXPECT_EQ(3u, Writes().size());
}

TEST_F(ECMParameter2Test, GuardedWrite_ComparesNumbersAsText) {
    Add(L"11", CComVariant(LONG{5}));
    Add(L"14", Text(L"5"));
    Open().WriteLong(L"13190", 3, true);
    EXPECT_EQ((Calls{"SetParameter(13190, 1, 3)"}), Writes());
}

TEST_F(ECMParameter2Test, GuardedWriteWithAnEmptySavedValue_DoesNotRestore) {
    for (CComVariant empty : {Text(L""), CComVariant(CComBSTR()), CComVariant()}) {
        Add(L"11", std::move(empty));
        host.ForgetCalls();
        Open().WriteLong(L"13190", 3, true);
        EXPECT_EQ((Calls{"SetParameter(11, 1, \"high\")", "SetParameter(13190, 1, 3)"}), Writes());
    }
}

TEST_F(ECMParameter2Test, GuardedWriteThatMakes14TheSavedValue_DoesNotRestore) {
    Open().WriteString(L"14", CComBSTR(L"low"), true);
    EXPECT_EQ((Calls{"SetParameter(11, 1, \"high\")", "SetParameter(14, 1, \"low\")"}), Writes());
}

TEST_F(ECMParameter2Test, GuardedWriteOf14FromTheSameValue_RestoresWhatItNeverLent) {
    Add(L"11", Text(L"high"));
    Open().WriteString(L"14", CComBSTR(L"other"), true);
    EXPECT_EQ((Calls{"SetParameter(14, 1, \"other\")", "SetParameter(11, 1, \"high\")"}), Writes());
}

TEST_F(ECMParameter2Test, GuardedWriteThatFails_ThrowsWithoutRestoring) {
    EXPECT_EQ(E_INVALIDARG, Thrown([&] { Open().WriteLong(L"unknown", 3, true); }));
    EXPECT_EQ((Calls{"SetParameter(11, 1, \"high\")", "SetParameter(unknown, 1, 3)"}), Writes());
}

TEST_F(ECMParameter2Test, GuardedWriteThatCannotReadItsGuard_Throws) {
    host.parameters.erase(L"14");
    EXPECT_EQ(E_INVALIDARG, Thrown([&] { Open().WriteLong(L"13190", 3, true); }));
    host.parameters.erase(L"11");
    EXPECT_EQ(E_INVALIDARG, Thrown([&] { Open().WriteLong(L"13190", 3, true); }));
    EXPECT_EQ(Calls{}, Writes());
}

TEST_F(ECMParameter2Test, Writes_GoThroughTheDataServiceEvenIfReadsAreDirect) {
    ReadDirectly();
    Open().WriteLong(L"13190", 3, false);
    EXPECT_EQ((Calls{"SetParameter(13190, 1, 3)"}), Writes());
}

} // namespace

} // namespace vant::test
