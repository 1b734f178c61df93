#include "commands/PropertySetter.h"

#include "tests/support/Commands.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class PropertySetter : public ::testing::Test {
protected:
    PropertySetter() {
        host.parameters[L"RPM"].text = L"750";
        host.parameters[L"VSS"].text = L"42";
        host.dataStore[L"x"] = CComVariant(CComBSTR(L"stored"));
    }

    /// Sets property "text" of component "label" from these sources.
    HRESULT Set(Properties sources) {
        auto command =
            CreateCommand<CPropertySetter>(host, {{L"propertyName", L"text"}, {L"componentID", L"label"}});
        SetProperties(*command.Get(), sources);
        return command->Execute();
    }
    static Calls SetTo(std::string value) {
        return {"SetComponentProperty(label, text, \"" + std::move(value) + "\")"};
    }

    TestHost host;
};

// Sources

TEST_F(PropertySetter, Literal_WinsOverBothOthers_WhichAreNotRead) {
    EXPECT_EQ(S_OK, Set({{L"value", L"Idle"}, {L"dsValue", L"x"}, {L"pValue", L"RPM"}}));
    EXPECT_EQ(SetTo("Idle"), host.calls);
}

TEST_F(PropertySetter, EmptyLiteral_StillWins) {
    EXPECT_EQ(S_OK, Set({{L"value", L""}, {L"dsValue", L"x"}}));
    EXPECT_EQ(SetTo(""), host.calls);
}

TEST_F(PropertySetter, NullLiteral_IsTheEmptyTextAndStillWins) {
    const auto command =
        CreateCommand<CPropertySetter>(host, {{L"propertyName", L"text"}, {L"componentID", L"label"}});
    ASSERT_EQ(S_OK, command->SetProperty(CComBSTR(L"value").Get(), nullptr));
    SetProperties(*command.Get(), {{L"dsValue", L"x"}, {L"pValue", L"RPM"}});
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ(SetTo(""), host.calls);
}

TEST_F(PropertySetter, DataStoreEntry_WinsOverTheParameter) {
    EXPECT_EQ(S_OK, Set({{L"dsValue", L"x"}, {L"pValue", L"RPM"}}));
    EXPECT_EQ((Calls{"GetValue(x)", SetTo("stored").front()}), host.calls);
}

TEST_F(PropertySetter, Parameter_GivesItsText) {
    EXPECT_EQ(S_OK, Set({{L"pValue", L"RPM"}}));
    EXPECT_EQ(
        (Calls{"GetParameter(RPM, 1)", "QueryInterface(IParameterOld)", "get_Text()", SetTo("750").front()}),
        host.calls);
}

TEST_F(PropertySetter, NoSource_SetsTheEmptyText) {
    EXPECT_EQ(S_OK, Set({}));
    EXPECT_EQ(SetTo(""), host.calls);
}

TEST_F(PropertySetter, EntryThatHoldsNoText_SetsTheEmptyText) {
    for (const CComVariant& value : {CComVariant(LONG{5}), CComVariant(), CComVariant(CComBSTR())}) {
        host.dataStore[L"x"] = value;
        EXPECT_EQ(S_OK, Set({{L"dsValue", L"x"}}));
        EXPECT_EQ((Calls{"GetValue(x)", SetTo("").front()}), host.calls);
    }
}

// References

TEST_F(PropertySetter, ReferencesInALiteral_AreExpanded) {
    EXPECT_EQ(S_OK, Set({{L"value", L"speed $p(VSS) km/h at $p(RPM)"}}));
    EXPECT_EQ(SetTo("speed 42 km/h at 750").front(), host.calls.back());
    EXPECT_EQ("GetParameter(VSS, 1)", host.calls.front());
}

TEST_F(PropertySetter, ReferencesInAnEntryAndInAParametersText_AreExpanded) {
    host.dataStore[L"x"] = CComVariant(CComBSTR(L"<$p(RPM)>"));
    EXPECT_EQ(S_OK, Set({{L"dsValue", L"x"}}));
    EXPECT_EQ(SetTo("<750>").front(), host.calls.back());
    host.parameters[L"chain"].text = L"[$p(VSS)]";
    EXPECT_EQ(S_OK, Set({{L"pValue", L"chain"}}));
    EXPECT_EQ(SetTo("[42]").front(), host.calls.back());
}

TEST_F(PropertySetter, DataStoreReferences_AreNotExpanded) {
    EXPECT_EQ(S_OK, Set({{L"value", L"$d(x)"}}));
    EXPECT_EQ(SetTo("$d(x)"), host.calls);
}

TEST_F(PropertySetter, UnclosedReference_StaysAsItIs) {
    EXPECT_EQ(S_OK, Set({{L"value", L"$p(RPM) $p(VSS"}}));
    EXPECT_EQ(SetTo("750 $p(VSS").front(), host.calls.back());
}

// Failures

TEST_F(PropertySetter, FailedReadOfTheEntry_FailsAndLeavesTheComponentUnchanged) {
    EXPECT_EQ(E_FAIL, Set({{L"dsValue", L"missing"}, {L"pValue", L"RPM"}}));
    EXPECT_EQ((Calls{"GetValue(missing)"}), host.calls);
}

TEST_F(PropertySetter, FailedReadOfTheParameter_FailsAndLeavesTheComponentUnchanged) {
    EXPECT_EQ(E_FAIL, Set({{L"pValue", L"unknown"}}));
    EXPECT_EQ((Calls{"GetParameter(unknown, 1)"}), host.calls);
    for (const char* operation : {"QueryInterface", "get_Text"}) {
        host.fail[operation] = E_NOTIMPL;
        EXPECT_EQ(E_FAIL, Set({{L"pValue", L"RPM"}})) << operation;
        EXPECT_FALSE(host.calls.back().starts_with("SetComponentProperty"));
        host.fail.clear();
    }
}

TEST_F(PropertySetter, FailedReadInAReference_FailsAndLeavesTheComponentUnchanged) {
    EXPECT_EQ(E_FAIL, Set({{L"value", L"$p(RPM) $p(unknown)"}}));
    EXPECT_EQ("GetParameter(unknown, 1)", host.calls.back());
}

TEST_F(PropertySetter, FailedSetting_Fails) {
    host.fail["SetComponentProperty"] = E_NOTIMPL;
    EXPECT_EQ(E_FAIL, Set({{L"value", L"Idle"}}));
}

TEST_F(PropertySetter, NeverInitialised_Fails) {
    const auto command =
        CreateCommand<CPropertySetter>({{L"propertyName", L"text"}, {L"componentID", L"label"}});
    EXPECT_EQ(E_FAIL, command->Execute());
}

TEST_F(PropertySetter, NameAndComponent_AreRequired) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CPropertySetter>(host, {{L"propertyName", L"text"}})->Execute());
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CPropertySetter>(host, {{L"componentID", L"label"}})->Execute());
}

} // namespace

} // namespace vant::test
