#include "commands/DiagnosticTestInstruction.h"

#include "tests/support/Commands.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

/// A command whose body can be run without a valid property set.
class OpenInstruction : public CDiagnosticTestInstruction {
public:
    using CDiagnosticTestInstruction::ExecuteCommand;
};

class DiagnosticTestInstruction : public ::testing::Test {
protected:
    DiagnosticTestInstruction() { host.parameters[L"RPM"].text = L"1200"; }

    /// Shows the entry "entry".
    HRESULT Instruct() {
        return CreateCommand<CDiagnosticTestInstruction>(host, {{L"dsValue", L"entry"}})->Execute();
    }
    void Store(CComVariant value) { host.dataStore[L"entry"] = std::move(value); }
    void Store(std::wstring_view text) { Store(CComVariant(CComBSTR(text))); }

    TestHost host;
};

TEST_F(DiagnosticTestInstruction, Text_IsShownUnchanged) {
    Store(L"Release the throttle.");
    EXPECT_EQ(S_OK, Instruct());
    EXPECT_EQ((Calls{"GetValue(entry)", "ShowInstruction(Release the throttle.)"}), host.calls);
}

TEST_F(DiagnosticTestInstruction, References_AreReplacedByParameterTexts) {
    Store(L"Hold the throttle at $p(RPM) rpm.");
    EXPECT_EQ(S_OK, Instruct());
    EXPECT_EQ((Calls{"GetValue(entry)", "GetParameter(RPM, 1)", "QueryInterface(IParameterOld)", "get_Text()",
                     "ShowInstruction(Hold the throttle at 1200 rpm.)"}),
              host.calls);
}

TEST_F(DiagnosticTestInstruction, MissingEntry_ShowsAnEmptyInstruction) {
    EXPECT_EQ(S_OK, Instruct());
    EXPECT_EQ((Calls{"GetValue(entry)", "ShowInstruction()"}), host.calls);
}

TEST_F(DiagnosticTestInstruction, EntryThatHoldsNoText_ShowsAnEmptyInstruction) {
    for (const CComVariant& value : {CComVariant(LONG{5}), CComVariant(), CComVariant(CComBSTR())}) {
        Store(value);
        EXPECT_EQ(S_OK, Instruct());
        EXPECT_EQ((Calls{"GetValue(entry)", "ShowInstruction()"}), host.calls);
    }
}

TEST_F(DiagnosticTestInstruction, UnclosedReference_StaysAsItIs) {
    Store(L"$p(RPM) rpm, not $p(RPM");
    EXPECT_EQ(S_OK, Instruct());
    EXPECT_EQ("ShowInstruction(1200 rpm, not $p(RPM)", host.calls.back());
}

TEST_F(DiagnosticTestInstruction, DataStoreReferences_AreNotExpanded) {
    Store(L"$d(entry)");
    EXPECT_EQ(S_OK, Instruct());
    EXPECT_EQ("ShowInstruction($d(entry))", host.calls.back());
}

TEST_F(DiagnosticTestInstruction, NothingGiven_ShowsANullText) {
    const auto command = CreateCommand<OpenInstruction>(host, {});
    static_cast<CComObject<OpenInstruction>*>(command.Get())->ExecuteCommand();
    EXPECT_EQ((Calls{"ShowInstruction(null)"}), host.calls);
}

TEST_F(DiagnosticTestInstruction, FailedShowing_IsIgnored) {
    Store(L"text");
    host.fail["ShowInstruction"] = E_FAIL;
    EXPECT_EQ(S_OK, Instruct());
    EXPECT_EQ("ShowInstruction(text)", host.calls.back());
}

TEST_F(DiagnosticTestInstruction, FailedReadInAReference_FailsAndShowsNothing) {
    Store(L"$p(unknown)");
    EXPECT_EQ(E_FAIL, Instruct());
    EXPECT_EQ((Calls{"GetValue(entry)", "GetParameter(unknown, 1)"}), host.calls);
    Store(L"$p(RPM)");
    for (const char* operation : {"GetParameter", "QueryInterface", "get_Text"}) {
        host.fail[operation] = E_NOTIMPL;
        EXPECT_EQ(E_FAIL, Instruct()) << operation;
        EXPECT_FALSE(host.calls.back().starts_with("ShowInstruction"));
        host.fail.clear();
    }
}

TEST_F(DiagnosticTestInstruction, ParameterThatContainsItself_Fails) {
    host.parameters[L"RPM"].text = L"$p(RPM)";
    Store(L"$p(RPM)");
    EXPECT_EQ(E_FAIL, Instruct());
}

TEST_F(DiagnosticTestInstruction, NeverInitialised_EndsQuietly) {
    EXPECT_EQ(S_OK, CreateCommand<CDiagnosticTestInstruction>({{L"dsValue", L"entry"}})->Execute());
}

TEST_F(DiagnosticTestInstruction, Accepts_OnlyItsOneProperty) {
    const auto command = CreateCommand<CDiagnosticTestInstruction>();
    EXPECT_EQ(E_INVALIDARG, SetProperty(*command.Get(), L"failTransition", L"end"));
    EXPECT_EQ(E_INVALIDARG, SetProperty(*command.Get(), L"value", L"text"));
    EXPECT_EQ(E_UNEXPECTED, command->Execute());
}

} // namespace

} // namespace vant::test
