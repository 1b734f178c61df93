// The calls on the host that command bodies make through their base.

#include "ecm/ResultPolicy.h"
#include "platform/ComException.h"
#include "tests/support/StoreOfNoValue.h"
#include "tests/unit/framework/ProbeCommand.h"

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class HostCalls : public WithProbe {
protected:
    HostCalls() {
        Initialize();
        host.ForgetCalls();
        host.parameters[L"13190"].value = CComVariant(CComBSTR(L"41.5"));
    }
    /// The code of the checked call that ends `action`.
    template <class Action>
    static HRESULT CodeOf(Action action) {
        try {
            action();
        } catch (const CComErrorHandlerException& exception) {
            return exception.Code();
        }
        return S_OK;
    }

    const CComBSTR x{L"x"};
    const CComBSTR y{L"y"};
    const CComBSTR id{L"13190"};
};

TEST_F(HostCalls, EveryCall_ReachesItsServiceWithItsArguments) {
    EXPECT_EQ(S_OK, probe->RunCommand(x));
    EXPECT_EQ(S_OK, probe->RunCommandFromThread(y));
    EXPECT_EQ(S_OK, probe->TerminateCommand(x));
    EXPECT_EQ(S_OK, probe->SetDataStoreValue(x, CComVariant(LONG{3})));
    CComVariant value;
    EXPECT_EQ(S_OK, probe->GetDataStoreValue(x, value));
    EXPECT_EQ("3", Show(value.Get()));
    EXPECT_EQ(S_OK, probe->SetComponentProperty(x, y, id));
    EXPECT_EQ(S_OK, probe->ShowInstruction(x));
    SetProperties(*command.Get(), {{L"value", L"x"}});
    EXPECT_EQ(S_OK, probe->ChooseTransition(L"value"));
    EXPECT_EQ(S_OK, probe->ChooseTransition(L"parameterID")); // which is not set
    CComPtr<IUnknown> parameter;
    EXPECT_EQ(S_OK, probe->GetParameter(id, 7, parameter));
    EXPECT_TRUE(parameter);
    EXPECT_EQ(S_OK, probe->SetParameter(id, CComVariant(2.5)));
    EXPECT_EQ((Calls{"RunCommand(x)", "RunCommandFromThread(y)", "TerminateCommand(x)", "SetValue(x, 3)",
                     "GetValue(x)", "SetComponentProperty(x, y, \"13190\")", "ShowInstruction(x)",
                     "SetTransition(x)", "SetTransition(null)", "GetParameter(13190, 7)",
                     "SetParameter(13190, 1, 2.5)"}),
              host.calls);
}

TEST_F(HostCalls, CodeOfTheHost_IsReturned) {
    for (const char* operation :
         {"RunCommand", "RunCommandFromThread", "TerminateCommand", "SetValue", "GetValue", "GetParameter",
          "SetParameter", "SetComponentProperty", "ShowInstruction", "SetTransition"})
        host.fail[operation] = E_UNEXPECTED;
    CComVariant value;
    CComBSTR text;
    CComPtr<IUnknown> parameter;
    EXPECT_EQ(E_UNEXPECTED, probe->RunCommand(x));
    EXPECT_EQ(E_UNEXPECTED, probe->RunCommandFromThread(x));
    EXPECT_EQ(E_UNEXPECTED, probe->TerminateCommand(x));
    EXPECT_EQ(E_UNEXPECTED, probe->SetDataStoreValue(x, value));
    EXPECT_EQ(E_UNEXPECTED, probe->GetDataStoreValue(x, value));
    EXPECT_EQ(E_UNEXPECTED, probe->GetDataStoreText(x, text));
    EXPECT_EQ(E_UNEXPECTED, probe->GetParameter(id, 1, parameter));
    EXPECT_EQ(E_UNEXPECTED, probe->SetParameter(id, value));
    EXPECT_EQ(E_UNEXPECTED, probe->SetComponentProperty(x, x, x));
    EXPECT_EQ(E_UNEXPECTED, probe->ShowInstruction(x));
    EXPECT_EQ(E_UNEXPECTED, probe->ChooseTransition(L"value"));
}

TEST_F(HostCalls, WithoutInitialize_EveryCallReturnsPointer) {
    const auto bareCommand = CreateCommand<CProbeCommand>();
    const auto& bare = static_cast<const CProbeCommand&>(*bareCommand.Get());
    CComVariant value;
    CComBSTR text;
    CComPtr<IUnknown> parameter;
    EXPECT_EQ(E_POINTER, bare.RunCommand(x));
    EXPECT_EQ(E_POINTER, bare.RunCommandFromThread(x));
    EXPECT_EQ(E_POINTER, bare.TerminateCommand(x));
    EXPECT_EQ(E_POINTER, bare.SetDataStoreValue(x, value));
    EXPECT_EQ(E_POINTER, bare.GetDataStoreValue(x, value));
    EXPECT_EQ(E_POINTER, bare.GetDataStoreText(x, text));
    EXPECT_EQ(E_POINTER, bare.GetParameter(id, 1, parameter));
    EXPECT_EQ(E_POINTER, bare.SetParameter(id, value));
    EXPECT_EQ(E_POINTER, bare.SetComponentProperty(x, x, x));
    EXPECT_EQ(E_POINTER, bare.ShowInstruction(x));
    EXPECT_EQ(E_POINTER, bare.ChooseTransition(L"value"));
    EXPECT_EQ(E_POINTER, CodeOf([&] { bare.ReadParameterText(id); }));
    EXPECT_EQ(E_POINTER, CodeOf([&] { bare.ReadParameterValue(id); }));
}

TEST_F(HostCalls, DataStoreText_ReplacesWhatWasThere) {
    host.dataStore[L"x"] = CComVariant(CComBSTR(L"text"));
    host.dataStore[L"y"] = CComVariant(2.5);
    CComBSTR text(L"before");
    EXPECT_EQ(S_OK, probe->GetDataStoreText(x, text));
    EXPECT_EQ(L"text", text.Text());
    EXPECT_EQ(S_OK, probe->GetDataStoreText(y, text));
    EXPECT_EQ(nullptr, text.Get());
}

TEST_F(HostCalls, DataStoreTextOfAnEntryThatCannotBeCleared_IsEmpty) {
    probe->m_dataStore = new StoreOfNoValue(host);
    for (const HRESULT code : {S_OK, E_UNEXPECTED}) {
        host.fail["GetValue"] = code;
        CComBSTR text(L"before");
        EXPECT_EQ(code, probe->GetDataStoreText(x, text));
        EXPECT_EQ(nullptr, text.Get());
    }
}

TEST_F(HostCalls, DataStoreTextOfAnEntryThatHoldsAnArray_IsEmpty) {
    probe->m_dataStore = new StoreOfNoValue(host, VT_ARRAY | VT_BSTR);
    CComBSTR text(L"before");
    EXPECT_EQ(S_OK, probe->GetDataStoreText(x, text));
    EXPECT_EQ(nullptr, text.Get());
}

TEST_F(HostCalls, ParameterValue_KeepsItsType) {
    EXPECT_EQ("\"41.5\"", Show(probe->ReadParameterValue(id).Get()));
    EXPECT_EQ((Calls{"GetParameter(13190, 1)", "QueryInterface(IParameterOld)", "get_Value()"}), host.calls);
    host.parameters[L"13190"].value = CComVariant(LONG{7});
    EXPECT_EQ("7", Show(probe->ReadParameterValue(id).Get()));
}

TEST_F(HostCalls, ParameterThatCannotBeRead_EndsTheRead) {
    const LONG before = host.OutstandingReferences();
    const auto read = [this] { probe->ReadParameterValue(id); };
    host.fail["GetParameter"] = E_UNEXPECTED;
    EXPECT_EQ(E_UNEXPECTED, CodeOf(read));
    host.fail = {{"get_Value", E_OUTOFMEMORY}};
    EXPECT_EQ(E_OUTOFMEMORY, CodeOf(read));
    host.fail.clear();
    host.parameters[L"13190"].offersInterface = false;
    EXPECT_EQ(E_POINTER, CodeOf(read));
    EXPECT_EQ(before, host.OutstandingReferences());
}

} // namespace

} // namespace vant::test
