#include "commands/ErrorDisplayer.h"
#include "commands/HelpDisplayer.h"
#include "commands/MessageDisplayer.h"
#include "tests/support/Commands.h"
#include "tests/support/EmptyDesktop.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

TEST(ErrorDisplayer, ValidProperties_DoNothing) {
    TestHost host;
    EXPECT_EQ(S_OK, CreateCommand<CErrorDisplayer>(host, {{L"dsString", L"entry"}})->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

TEST(ErrorDisplayer, MissingString_IsInvalid) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CErrorDisplayer>()->Execute());
}

TEST(ErrorDisplayer, MessageId_IsNotDeclared) {
    EXPECT_EQ(E_INVALIDARG, SetProperty(*CreateCommand<CErrorDisplayer>().Get(), L"dsMessageID", L"entry"));
}

TEST(HelpDisplayer, ValidProperties_DoNothing) {
    TestHost host;
    const auto command = CreateCommand<CHelpDisplayer>(host, {{L"helpFile", L"file"}, {L"helpIndex", L"1"}});
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

TEST(HelpDisplayer, OneOfTheTwo_IsInvalid) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CHelpDisplayer>({{L"helpFile", L"file"}})->Execute());
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CHelpDisplayer>({{L"helpIndex", L"1"}})->Execute());
}

TEST(MessageDisplayer, NoForegroundWindow_ReadsTheEntryAndReturnsAtOnce) {
    TestHost host;
    host.dataStore[L"entry"] = CComVariant(CComBSTR(L"Key on"));
    OnEmptyDesktop([&host] {
        EXPECT_EQ(S_OK, CreateCommand<CMessageDisplayer>(host, {{L"dsString", L"entry"}})->Execute());
    });
    EXPECT_EQ((Calls{"GetValue(entry)"}), host.calls);
}

TEST(MessageDisplayer, MissingString_IsInvalid) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CMessageDisplayer>()->Execute());
}

} // namespace

} // namespace vant::test
