#include "commands/CommandTerminator.h"

#include "tests/support/Commands.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

/// Opens the body, which Execute does not reach without "commandID".
class OpenTerminator : public CCommandTerminator {
public:
    using CCommandTerminator::ExecuteCommand;
};

class CommandTerminator : public ::testing::Test {
protected:
    TestHost host;
};

TEST_F(CommandTerminator, CommandId_IsTerminatedOnce) {
    EXPECT_EQ(S_OK, CreateCommand<CCommandTerminator>(host, {{L"commandID", L"T1"}})->Execute());
    EXPECT_EQ((Calls{"TerminateCommand(T1)"}), host.calls);
}

TEST_F(CommandTerminator, CommandId_IsPassedAsItStands) {
    EXPECT_EQ(S_OK, CreateCommand<CCommandTerminator>(host, {{L"commandID", L" T1 T2 "}})->Execute());
    EXPECT_EQ(
        S_OK,
        CreateCommand<CCommandTerminator>(host, {{L"commandID", std::wstring_view(L"T\0x", 3)}})->Execute());
    EXPECT_EQ((Calls{"TerminateCommand(T\\u{0}x)"}), host.calls);
}

TEST_F(CommandTerminator, EmptyCommandId_IsPassedToTheController) {
    EXPECT_EQ(S_OK, CreateCommand<CCommandTerminator>(host, {{L"commandID", L""}})->Execute());
    EXPECT_EQ((Calls{"TerminateCommand()"}), host.calls);
}

TEST_F(CommandTerminator, NullCommandId_IsPassedToTheController) {
    const auto command = CreateCommand<CCommandTerminator>(host, {});
    ASSERT_EQ(S_OK, command->SetProperty(CComBSTR(L"commandID").Get(), nullptr));
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ((Calls{"TerminateCommand(null)"}), host.calls);
}

TEST_F(CommandTerminator, FailingTermination_MakesExecuteFail) {
    host.fail["TerminateCommand"] = E_UNEXPECTED;
    EXPECT_EQ(E_FAIL, CreateCommand<CCommandTerminator>(host, {{L"commandID", L"T1"}})->Execute());
    EXPECT_EQ((Calls{"TerminateCommand(T1)"}), host.calls);
}

TEST_F(CommandTerminator, ThrowingController_MakesExecuteFail) {
    const auto command = CreateCommand<CCommandTerminator>(host, {{L"commandID", L"T1"}});
    host.ThrowAtCall(1);
    EXPECT_EQ(E_FAIL, command->Execute());
}

TEST_F(CommandTerminator, SuccessCodeOfTheController_IsNotPassedOn) {
    host.fail["TerminateCommand"] = S_FALSE;
    EXPECT_EQ(S_OK, CreateCommand<CCommandTerminator>(host, {{L"commandID", L"T1"}})->Execute());
}

TEST_F(CommandTerminator, MissingCommandId_ReturnsUnexpectedAndCallsNothing) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CCommandTerminator>(host, {})->Execute());
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(CommandTerminator, BodyWithoutCommandId_DoesNothing) {
    const auto command = CreateCommand<OpenTerminator>(host, {});
    static_cast<OpenTerminator*>(static_cast<CComObject<OpenTerminator>*>(command.Get()))->ExecuteCommand();
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(CommandTerminator, WithoutInitialize_ExecuteFails) {
    EXPECT_EQ(E_FAIL, CreateCommand<CCommandTerminator>({{L"commandID", L"T1"}})->Execute());
}

TEST_F(CommandTerminator, WithoutController_ExecuteFails) {
    const auto command = CreateCommand<CCommandTerminator>({{L"commandID", L"T1"}});
    ASSERT_EQ(S_OK, command->Initialize(host.Context(), nullptr));
    EXPECT_EQ(E_FAIL, command->Execute());
}

} // namespace

} // namespace vant::test
