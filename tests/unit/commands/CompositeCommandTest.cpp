#include "commands/CompositeCommand.h"

#include "tests/support/Commands.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class CompositeCommand : public ::testing::Test {
protected:
    HRESULT Run(std::wstring_view list) {
        return CreateCommand<CCompositeCommand>(host, {{L"commandIDList", list}})->Execute();
    }

    TestHost host;
};

TEST_F(CompositeCommand, List_IsRunInOrder) {
    EXPECT_EQ(S_OK, Run(L"A B C"));
    EXPECT_EQ((Calls{"RunCommand(A)", "RunCommand(B)", "RunCommand(C)"}), host.calls);
}

TEST_F(CompositeCommand, SingleIdentifier_IsRun) {
    EXPECT_EQ(S_OK, Run(L"A"));
    EXPECT_EQ((Calls{"RunCommand(A)"}), host.calls);
}

TEST_F(CompositeCommand, RepeatedIdentifier_IsRunEachTime) {
    EXPECT_EQ(S_OK, Run(L"A A"));
    EXPECT_EQ((Calls{"RunCommand(A)", "RunCommand(A)"}), host.calls);
}

TEST_F(CompositeCommand, AdjacentSpaces_GiveAnEmptyIdentifier) {
    EXPECT_EQ(S_OK, Run(L"A  B"));
    EXPECT_EQ((Calls{"RunCommand(A)", "RunCommand()", "RunCommand(B)"}), host.calls);
}

TEST_F(CompositeCommand, LeadingAndTrailingSpaces_GiveEmptyIdentifiers) {
    EXPECT_EQ(S_OK, Run(L" A "));
    EXPECT_EQ((Calls{"RunCommand()", "RunCommand(A)", "RunCommand()"}), host.calls);
}

TEST_F(CompositeCommand, OnlySpaces_GiveOneEmptyIdentifierMoreThanSpaces) {
    EXPECT_EQ(S_OK, Run(L"  "));
    EXPECT_EQ((Calls{"RunCommand()", "RunCommand()", "RunCommand()"}), host.calls);
}

TEST_F(CompositeCommand, EmptyList_GivesOneEmptyIdentifier) {
    EXPECT_EQ(S_OK, Run(L""));
    EXPECT_EQ((Calls{"RunCommand()"}), host.calls);
}

TEST_F(CompositeCommand, NullList_GivesOneEmptyIdentifier) {
    const auto command = CreateCommand<CCompositeCommand>(host, {});
    ASSERT_EQ(S_OK, command->SetProperty(CComBSTR(L"commandIDList").Get(), nullptr));
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ((Calls{"RunCommand()"}), host.calls);
}

TEST_F(CompositeCommand, OtherBlanks_DoNotSeparate) {
    EXPECT_EQ(S_OK, Run(L"A\tB,C\nD"));
    EXPECT_EQ((Calls{"RunCommand(A\\u{9}B,C\\u{A}D)"}), host.calls);
}

TEST_F(CompositeCommand, EmbeddedNulls_BelongToTheIdentifier) {
    EXPECT_EQ(S_OK, Run(std::wstring_view(L"A\0 B\0C", 6)));
    EXPECT_EQ((Calls{"RunCommand(A\\u{0})", "RunCommand(B\\u{0}C)"}), host.calls);
}

TEST_F(CompositeCommand, FailingCommand_EndsTheListAndExecuteFails) {
    host.commandResults[L"B"] = E_UNEXPECTED;
    EXPECT_EQ(E_FAIL, Run(L"A B C"));
    EXPECT_EQ((Calls{"RunCommand(A)", "RunCommand(B)"}), host.calls);
}

TEST_F(CompositeCommand, RefusedEmptyIdentifier_EndsTheList) {
    host.commandResults[L""] = E_INVALIDARG;
    EXPECT_EQ(E_FAIL, Run(L"A  B"));
    EXPECT_EQ((Calls{"RunCommand(A)", "RunCommand()"}), host.calls);
}

TEST_F(CompositeCommand, SuccessCodes_LetTheListGoOn) {
    host.commandResults[L"A"] = S_FALSE;
    EXPECT_EQ(S_OK, Run(L"A B"));
    EXPECT_EQ((Calls{"RunCommand(A)", "RunCommand(B)"}), host.calls);
}

TEST_F(CompositeCommand, ThrowingHost_MakesExecuteFail) {
    const auto command = CreateCommand<CCompositeCommand>(host, {{L"commandIDList", L"A B C"}});
    host.ThrowAtCall(2);
    EXPECT_EQ(E_FAIL, command->Execute());
    EXPECT_EQ((Calls{"RunCommand(A)", "RunCommand(B)"}), host.calls);
}

TEST_F(CompositeCommand, MissingList_ReturnsUnexpectedAndRunsNothing) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CCompositeCommand>(host, {})->Execute());
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(CompositeCommand, WithoutInitialize_ExecuteFails) {
    EXPECT_EQ(E_FAIL, CreateCommand<CCompositeCommand>({{L"commandIDList", L"A"}})->Execute());
}

TEST_F(CompositeCommand, RepeatedExecute_RunsTheListAgain) {
    const auto command = CreateCommand<CCompositeCommand>(host, {{L"commandIDList", L"A"}});
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ((Calls{"RunCommand(A)", "RunCommand(A)"}), host.calls);
}

TEST_F(CompositeCommand, LongList_IsRunWhole) {
    std::wstring list = L"A";
    for (int i = 1; i < 10'000; ++i)
        list += L" A";
    EXPECT_EQ(S_OK, Run(list));
    EXPECT_EQ(Calls(10'000, "RunCommand(A)"), host.calls);
}

} // namespace

} // namespace vant::test
