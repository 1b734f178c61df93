#include "module/registration/Script.h"

#include "tests/unit/module/FakeKeyStore.h"

#include <gtest/gtest.h>
#include <string>

namespace vant {
namespace {

using Operations = std::vector<std::wstring>;

class Script : public testing::Test {
protected:
    HRESULT Register(std::string_view script) {
        return RunScript(script, module, ScriptMode::Register, store);
    }
    HRESULT Unregister(std::string_view script) {
        return RunScript(script, module, ScriptMode::Unregister, store);
    }

    std::wstring module = L"C:\\Service\\VantCommands.dll";
    FakeKeyStore store;
};

constexpr std::string_view whole = "HKCR\n"
                                   "{\n"
                                   "\tVantCommands.Timer.1 = s 'Timer Class'\n"
                                   "\t{\n"
                                   "\t\tCLSID = s '{2A3B}'\n"
                                   "\t}\n"
                                   "\tNoRemove CLSID\n"
                                   "\t{\n"
                                   "\t\tForceRemove {2A3B} = s 'Timer Class'\n"
                                   "\t\t{\n"
                                   "\t\t\tInprocServer32 = s '%MODULE%'\n"
                                   "\t\t\t{\n"
                                   "\t\t\t\tval ThreadingModel = s 'Free'\n"
                                   "\t\t\t}\n"
                                   "\t\t\t'TypeLib' = s '{3BE2}'\n"
                                   "\t\t}\n"
                                   "\t}\n"
                                   "}";

TEST_F(Script, BraceThatDoesNotStandAlone_BelongsToTheName) {
    EXPECT_EQ(Register("HKCR { {2A3B} = s 'x' }"), S_OK);
    EXPECT_EQ(store.operations, (Operations{L"create {2A3B}", L"set {2A3B} [] x"}));
}
TEST_F(Script, Registering_WritesKeysAndValuesInTheOrderOfTheText) {
    EXPECT_EQ(Register(whole), S_OK);
    EXPECT_EQ(store.operations, (Operations{
                                    L"create VantCommands.Timer.1",
                                    L"set VantCommands.Timer.1 [] Timer Class",
                                    L"create VantCommands.Timer.1\\CLSID",
                                    L"set VantCommands.Timer.1\\CLSID [] {2A3B}",
                                    L"create CLSID",
                                    L"delete tree CLSID\\{2A3B}",
                                    L"create CLSID\\{2A3B}",
                                    L"set CLSID\\{2A3B} [] Timer Class",
                                    L"create CLSID\\{2A3B}\\InprocServer32",
                                    L"set CLSID\\{2A3B}\\InprocServer32 [] C:\\Service\\VantCommands.dll",
                                    L"set CLSID\\{2A3B}\\InprocServer32 [ThreadingModel] Free",
                                    L"create CLSID\\{2A3B}\\TypeLib",
                                    L"set CLSID\\{2A3B}\\TypeLib [] {3BE2}",
                                }));
}
TEST_F(Script, Unregistering_RemovesEverythingButTheKeyThatIsKept) {
    ASSERT_EQ(Register(whole), S_OK);
    EXPECT_EQ(Unregister(whole), S_OK);
    ASSERT_EQ(store.keys.size(), 1U);
    EXPECT_EQ(store.keys.begin()->first, L"CLSID");
}
TEST_F(Script, Unregistering_LeavesAKeyThatHoldsSomebodyElsesSubkey) {
    ASSERT_EQ(Register(whole), S_OK);
    store.keys[L"VantCommands.Timer.1\\Other"];
    EXPECT_EQ(Unregister(whole), S_OK);
    EXPECT_TRUE(store.keys.contains(L"VantCommands.Timer.1\\Other"));
    EXPECT_TRUE(store.keys.contains(L"VantCommands.Timer.1"));
    EXPECT_FALSE(store.keys.contains(L"VantCommands.Timer.1\\CLSID"));
}
TEST_F(Script, Unregistering_TakesAForceRemoveKeyWholeInOneOperation) {
    EXPECT_EQ(Unregister("HKCR { ForceRemove A { B { val C = s 'd' } } }"), S_OK);
    EXPECT_EQ(store.operations, (Operations{L"delete tree A"}));
}
TEST_F(Script, Unregistering_RemovesTheValuesOfAKeptKey) {
    EXPECT_EQ(Unregister("HKCR { NoRemove A { val C = s 'd' } }"), S_OK);
    EXPECT_EQ(store.operations, (Operations{L"unset A [C]"}));
}
TEST_F(Script, Registering_ReplacesWhatAForceRemoveKeyHeldBefore) {
    store.keys[L"CLSID\\{2A3B}\\Stale"][L""] = L"old";
    EXPECT_EQ(Register(whole), S_OK);
    EXPECT_FALSE(store.keys.contains(L"CLSID\\{2A3B}\\Stale"));
}
TEST_F(Script, FinalLineBreak_MakesNoDifference) {
    FakeKeyStore other;
    EXPECT_EQ(Register(whole), S_OK);
    EXPECT_EQ(RunScript(std::string(whole) + "\r\n", module, ScriptMode::Register, other), S_OK);
    EXPECT_EQ(store.operations, other.operations);
}
TEST_F(Script, QuotedNames_MayHoldBlanksBracesAndKeywords) {
    EXPECT_EQ(Register("HKCR { 'val' { 'No Remove {x}' = s '' } }"), S_OK);
    EXPECT_EQ(store.operations,
              (Operations{L"create val", L"create val\\No Remove {x}", L"set val\\No Remove {x} [] "}));
}
TEST_F(Script, DoubledQuote_StandsForOne) {
    EXPECT_EQ(Register("HKCR { A = s 'it''s' }"), S_OK);
    EXPECT_EQ(store.keys[L"A"][L""], L"it's");
}
TEST_F(Script, SingleBytesAbove127_AreLatin1) {
    EXPECT_EQ(Register("HKCR { A = s 'M\xFC"
                       "ller' }"),
              S_OK);
    EXPECT_EQ(store.keys[L"A"][L""], L"M\u00FCller");
}
TEST_F(Script, ModulePath_MayHoldQuotesBlanksForeignLettersAndThePlaceholder) {
    module = L"C:\\it's \u00E9\u4E2D\\{x} %MODULE%\\" + std::wstring(400, L'a') + L".dll";
    EXPECT_EQ(Register("HKCR { A = s '\"%MODULE%\" %MODULE%' }"), S_OK);
    EXPECT_EQ(store.keys[L"A"][L""], L"\"" + module + L"\" " + module);
}
TEST_F(Script, FailingStore_EndsTheScriptWithItsResultAndKeepsWhatWasWritten) {
    store.failAt = L"CLSID\\{2A3B}\\InprocServer32";
    store.failure = E_OUTOFMEMORY;
    EXPECT_EQ(Register(whole), E_OUTOFMEMORY);
    EXPECT_TRUE(store.keys.contains(L"VantCommands.Timer.1\\CLSID"));
    EXPECT_TRUE(store.keys.contains(L"CLSID\\{2A3B}"));
    EXPECT_FALSE(store.keys.contains(L"CLSID\\{2A3B}\\TypeLib"));
    EXPECT_EQ(store.operations.back(), L"create CLSID\\{2A3B}\\InprocServer32");
}
TEST_F(Script, MalformedPlace_StopsThereAndKeepsWhatWasWritten) {
    EXPECT_EQ(Register("HKCR { A = s 'a' B = s C = s 'c' }"), scriptMalformed);
    EXPECT_EQ(store.operations, (Operations{L"create A", L"set A [] a"}));
}
TEST_F(Script, MalformedScripts_AreRefusedAndWriteNothingFromThereOn) {
    for (const std::string_view script : {"",
                                          "HKCR",
                                          "HKCR {",
                                          "HKCR { } }",
                                          "HKLM { }",
                                          "{ }",
                                          "HKCR { A",
                                          "HKCR { = s 'x' }",
                                          "HKCR { '' }",
                                          "HKCR { A = 'x' }",
                                          "HKCR { A = d '1' }",
                                          "HKCR { A = s x }",
                                          "HKCR{ A }",
                                          "HKCR { A = s 'x }",
                                          "HKCR { val A = s 'x' }",
                                          "HKCR { NoRemove }",
                                          "HKCR { 'A }",
                                          "'HKCR' { }",
                                          "HKCR { ForceRemove '\\' }",
                                          "HKCR { \\A }",
                                          "HKCR { A\\B }"}) {
        FakeKeyStore untouched;
        EXPECT_EQ(RunScript(script, module, ScriptMode::Register, untouched), scriptMalformed) << script;
        EXPECT_EQ(untouched.keys.size(), script == "HKCR { A" ? 1U : 0U) << script;
    }
}
TEST_F(Script, NullInAName_IsRefused) {
    using namespace std::string_view_literals;
    EXPECT_EQ(Register("HKCR { ForceRemove '\0' }"sv), scriptMalformed);
    EXPECT_EQ(Register("HKCR { A\0B }"sv), scriptMalformed);
    EXPECT_TRUE(store.operations.empty());
}
TEST_F(Script, ExcessiveNesting_IsRefused) {
    std::string script = "HKCR {";
    for (int i = 0; i < 100'000; ++i)
        script += "A { ";
    EXPECT_EQ(Register(script), scriptMalformed);
}

} // namespace
} // namespace vant
