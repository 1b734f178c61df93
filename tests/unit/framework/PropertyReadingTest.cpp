#include "ecm/ResultPolicy.h"
#include "tests/unit/framework/ProbeCommand.h"

namespace vant::test {

namespace {

class PropertyReading : public WithProbe {
protected:
    PropertyReading() {
        Initialize();
        host.ForgetCalls();
        for (const wchar_t* name : {L"RPM", L"X", L"Y", L"A"})
            host.parameters[name];
        host.parameters[L"RPM"].text = L"800";
        host.parameters[L"X"].text = L"1";
        host.parameters[L"Y"].text = L"2";
        host.parameters[L"A"].text = L"<$p(X)>";
    }
    void Set(std::wstring_view name, std::wstring_view value) {
        ASSERT_EQ(S_OK, SetProperty(*command.Get(), name, value));
    }
    std::wstring Read() { return std::wstring(probe->GetLiteralOrReference(L"source", L"dsSource").Text()); }
    std::wstring Expand(std::wstring_view text) {
        return std::wstring(probe->ExpandParameterReferences(CComBSTR(text)).Text());
    }
    /// The code of the checked call that ends the expansion of `text`.
    HRESULT CodeOfExpanding(std::wstring_view text) {
        try {
            Expand(text);
        } catch (const CComErrorHandlerException& exception) {
            return exception.Code();
        }
        return S_OK;
    }
    using Calls = std::vector<std::string>;
};

TEST_F(PropertyReading, AbsentProperty_ReadsAsNullString) {
    EXPECT_FALSE(probe->HasProperty(L"value"));
    EXPECT_EQ(nullptr, probe->GetProperty(L"value").Get());
    EXPECT_EQ(nullptr, probe->GetProperty(L"undeclared").Get());
    EXPECT_EQ(nullptr, probe->GetProperty(L"").Get());
}

TEST_F(PropertyReading, GivenProperty_IsFoundByItsExactName) {
    Set(L"value", L"1");
    EXPECT_TRUE(probe->HasProperty(L"value"));
    EXPECT_FALSE(probe->HasProperty(L"Value"));
    EXPECT_EQ(L"1", probe->GetProperty(L"value").Text());
    EXPECT_EQ(nullptr, probe->GetProperty(L"Value").Get());
}

TEST_F(PropertyReading, ReadValue_IsACopy) {
    Set(L"value", L"1");
    probe->GetProperty(L"value").Get()[0] = L'9';
    EXPECT_EQ(L"1", probe->GetProperty(L"value").Text());
}

// Literal or reference

TEST_F(PropertyReading, Literal_IsTheValueAndNoEntryIsRead) {
    Set(L"source", L"5");
    EXPECT_EQ(L"5", Read());
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(PropertyReading, EmptyLiteral_IsTheValue) {
    Set(L"source", L"");
    Set(L"dsSource", L"entry");
    EXPECT_EQ(L"", Read());
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(PropertyReading, Reference_GivesTheTextOfItsEntry) {
    Set(L"dsSource", L"entry");
    host.dataStore[L"entry"] = CComVariant(CComBSTR(std::wstring_view(L"7\0 8", 4)));
    EXPECT_EQ(std::wstring_view(L"7\0 8", 4), Read());
    EXPECT_EQ((Calls{"GetValue(entry)"}), host.calls);
}

TEST_F(PropertyReading, EntryThatHoldsNoString_GivesEmptyText) {
    Set(L"dsSource", L"entry");
    host.dataStore[L"entry"] = CComVariant(LONG{7});
    EXPECT_EQ(L"", Read());
    host.dataStore[L"entry"] = CComVariant(7.5);
    EXPECT_EQ(L"", Read());
    host.dataStore[L"entry"] = CComVariant();
    EXPECT_EQ(L"", Read());
}

TEST_F(PropertyReading, EntryWithNullString_GivesEmptyText) {
    Set(L"dsSource", L"entry");
    host.dataStore[L"entry"] = CComVariant(CComBSTR());
    EXPECT_EQ(L"", Read());
}

TEST_F(PropertyReading, MissingEntry_GivesEmptyText) {
    Set(L"dsSource", L"nowhere");
    EXPECT_EQ(L"", Read());
    EXPECT_EQ((Calls{"GetValue(nowhere)"}), host.calls);
}

TEST_F(PropertyReading, FailingRead_IsNotCheckedAndGivesEmptyText) {
    Set(L"dsSource", L"entry");
    host.dataStore[L"entry"] = CComVariant(CComBSTR(L"7"));
    host.fail["GetValue"] = E_FAIL;
    EXPECT_EQ(L"", Read());
}

TEST_F(PropertyReading, NeitherGiven_ReadsTheEntryWithoutName) {
    EXPECT_EQ(L"", Read());
    EXPECT_EQ((Calls{"GetValue(null)"}), host.calls);
}

TEST_F(PropertyReading, ReferenceWithoutDataStore_GivesEmptyText) {
    const auto bare = CreateCommand<CProbeCommand>({{L"dsSource", L"entry"}});
    EXPECT_EQ(nullptr,
              static_cast<CProbeCommand*>(bare.Get())->GetLiteralOrReference(L"source", L"dsSource").Get());
}

// Parameter references in a text

TEST_F(PropertyReading, TextWithoutReference_AsksNothing) {
    EXPECT_EQ(L"800 rpm $p RPM)", Expand(L"800 rpm $p RPM)"));
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(PropertyReading, ReferenceToAParameter_BecomesItsText) {
    EXPECT_EQ(L"800 rpm", Expand(L"$p(RPM) rpm"));
    EXPECT_EQ((Calls{"GetParameter(RPM, 1)", "QueryInterface(IParameterOld)", "get_Text()"}), host.calls);
}

TEST_F(PropertyReading, TwoReferences_AreExpandedFromLeftToRight) {
    EXPECT_EQ(L"1/2", Expand(L"$p(X)/$p(Y)"));
    EXPECT_EQ((Calls{"GetParameter(X, 1)", "QueryInterface(IParameterOld)", "get_Text()",
                     "GetParameter(Y, 1)", "QueryInterface(IParameterOld)", "get_Text()"}),
              host.calls);
}

TEST_F(PropertyReading, ParameterTextThatContainsAReference_IsExpandedInTurn) {
    EXPECT_EQ(L"<1>", Expand(L"$p(A)"));
}

TEST_F(PropertyReading, ReferenceWithoutName_AsksForTheEmptyIdentifier) {
    EXPECT_EQ(E_INVALIDARG, CodeOfExpanding(L"$p()"));
    EXPECT_EQ((Calls{"GetParameter(, 1)"}), host.calls);
}

TEST_F(PropertyReading, EmptyText_StaysEmpty) {
    EXPECT_EQ(L"", Expand(L""));
    EXPECT_EQ(L"", probe->ExpandParameterReferences(CComBSTR()).Text());
}

TEST_F(PropertyReading, FailingCallOfAReference_EndsTheExpansion) {
    for (const char* operation : {"GetParameter", "QueryInterface", "get_Text"}) {
        host.fail.clear();
        host.fail[operation] = E_OUTOFMEMORY;
        EXPECT_EQ(E_OUTOFMEMORY, CodeOfExpanding(L"$p(X)")) << operation;
    }
}

TEST_F(PropertyReading, ObjectThatIsNotAParameter_EndsTheExpansion) {
    host.parameters[L"X"].offersInterface = false;
    EXPECT_EQ(E_NOINTERFACE, CodeOfExpanding(L"$p(X)"));
}

TEST_F(PropertyReading, FailedExpansion_ReleasesTheParameter) {
    const LONG before = host.OutstandingReferences();
    host.fail["get_Text"] = E_FAIL;
    EXPECT_EQ(E_FAIL, CodeOfExpanding(L"$p(X)"));
    EXPECT_EQ(before, host.OutstandingReferences());
}

TEST_F(PropertyReading, FailedExpansionInABody_MakesExecuteFail) {
    Set(L"value", L"1");
    probe->body = [this] { Expand(L"$p(nothing)"); };
    EXPECT_EQ(E_FAIL, command->Execute());
}

TEST_F(PropertyReading, ParameterThatContainsItself_MakesExecuteFail) {
    Set(L"value", L"1");
    host.parameters[L"X"].text = L"$p(X)";
    probe->body = [this] { Expand(L"$p(X)"); };
    EXPECT_EQ(E_FAIL, command->Execute());
}

TEST_F(PropertyReading, WithoutParameterService_ReadingAParameterFails) {
    const auto bare = CreateCommand<CProbeCommand>();
    try {
        static_cast<CProbeCommand*>(bare.Get())->ReadParameterText(CComBSTR(L"X"));
        ADD_FAILURE() << "nothing was thrown";
    } catch (const CComErrorHandlerException& exception) {
        EXPECT_EQ(E_POINTER, exception.Code());
    }
}

} // namespace

} // namespace vant::test
