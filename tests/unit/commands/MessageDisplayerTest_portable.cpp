// What MessageDisplayer shows, through a presenter as only the portable platform has it.

#include "commands/ErrorDisplayer.h"
#include "commands/HelpDisplayer.h"
#include "commands/MessageDisplayer.h"
#include "platform/MessagePresenter.h"
#include "platform/portable/testing.h"
#include "tests/support/Commands.h"
#include "tests/support/StoreOfNoValue.h"

#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <vector>

namespace vant::test {

namespace {

class OpenDisplayer : public CMessageDisplayer {
public:
    using CMessageDisplayer::m_dataStore;
};

class ShownMessage : public ::testing::Test {
protected:
    ShownMessage() {
        SetMessagePresenter([this](const std::wstring& text, const std::wstring& caption, UINT style) {
            shown.push_back(Show(caption) + ": " + Show(text));
            styles.push_back(style);
            whileShown();
        });
    }
    ~ShownMessage() override { SetMessagePresenter(nullptr); }

    HRESULT Display() { return CreateCommand<CMessageDisplayer>(host, {{L"dsString", L"entry"}})->Execute(); }
    void Store(CComVariant value) { host.dataStore[L"entry"] = std::move(value); }

    TestHost host;
    std::vector<std::string> shown;
    std::vector<UINT> styles;
    std::function<void()> whileShown = [] {};
};

TEST_F(ShownMessage, HasTextCaptionAndStyle) {
    Store(CComVariant(CComBSTR(L"Key on")));
    EXPECT_EQ(S_OK, Display());
    EXPECT_EQ((std::vector<std::string>{"TORVEX: Key on"}), shown);
    EXPECT_EQ((std::vector<UINT>{0x12030}), styles);
}

TEST_F(ShownMessage, MissingEntry_IsShownEmpty) {
    EXPECT_EQ(S_OK, Display());
    EXPECT_EQ((std::vector<std::string>{"TORVEX: "}), shown);
}

TEST_F(ShownMessage, EntryThatHoldsNoText_IsShownEmpty) {
    for (const CComVariant& value : {CComVariant(LONG{5}), CComVariant(), CComVariant(CComBSTR())}) {
        Store(value);
        EXPECT_EQ(S_OK, Display());
    }
    EXPECT_EQ(std::vector<std::string>(3, "TORVEX: "), shown);
}

TEST_F(ShownMessage, EntryThatCannotBeClearedOrHoldsAnArray_IsShownEmpty) {
    for (const VARTYPE type : {VARTYPE{15}, VARTYPE{VT_ARRAY | VT_BSTR}}) {
        const auto command = CreateCommand<OpenDisplayer>(host, {{L"dsString", L"entry"}});
        static_cast<CComObject<OpenDisplayer>*>(command.Get())->m_dataStore = new StoreOfNoValue(host, type);
        EXPECT_EQ(S_OK, command->Execute());
    }
    EXPECT_EQ(std::vector<std::string>(2, "TORVEX: "), shown);
}

TEST_F(ShownMessage, Text_IsNotCopied) {
    Store(CComVariant(CComBSTR(L"Key on")));
    std::size_t live = 0;
    whileShown = [&live] { live = vant::testing::LiveBstrCount(); };
    const std::size_t before = vant::testing::LiveBstrCount();
    EXPECT_EQ(S_OK, Display());
    // The property's name and value, and the entry's value that the host gave.
    EXPECT_EQ(before + 3, live);
}

TEST_F(ShownMessage, References_AreNotExpanded) {
    Store(CComVariant(CComBSTR(L"$p(RPM)")));
    EXPECT_EQ(S_OK, Display());
    EXPECT_EQ((std::vector<std::string>{"TORVEX: $p(RPM)"}), shown);
}

TEST_F(ShownMessage, Command_ReturnsWhenTheMessageIsClosed) {
    std::promise<void> appeared;
    std::promise<void> closing;
    whileShown = [&] {
        appeared.set_value();
        closing.get_future().wait();
    };
    auto execution = std::async(std::launch::async, [this] { return Display(); });
    appeared.get_future().wait();
    EXPECT_EQ(std::future_status::timeout, execution.wait_for(std::chrono::seconds(0)));
    closing.set_value();
    EXPECT_EQ(S_OK, execution.get());
}

TEST_F(ShownMessage, ErrorAndHelpDisplayer_ShowNothing) {
    Store(CComVariant(CComBSTR(L"Key on")));
    EXPECT_EQ(S_OK, CreateCommand<CErrorDisplayer>(host, {{L"dsString", L"entry"}})->Execute());
    EXPECT_EQ(
        S_OK,
        CreateCommand<CHelpDisplayer>(host, {{L"helpFile", L"entry"}, {L"helpIndex", L"1"}})->Execute());
    EXPECT_TRUE(shown.empty());
}

TEST_F(ShownMessage, PresenterThatThrows_IsNoFailureOfTheCommand) {
    whileShown = [] { throw std::runtime_error("no terminal"); };
    EXPECT_EQ(S_OK, Display());
}

TEST_F(ShownMessage, RemovedPresenter_ShowsNothing) {
    SetMessagePresenter(nullptr);
    EXPECT_EQ(S_OK, Display());
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(nullptr, GetForegroundWindow());
    EXPECT_EQ(0, MessageBoxW(nullptr, L"text", L"caption", MB_OK));
}

TEST_F(ShownMessage, NullTexts_AreEmpty) {
    EXPECT_EQ(IDOK, MessageBoxW(GetForegroundWindow(), nullptr, nullptr, MB_OK));
    EXPECT_EQ((std::vector<std::string>{": "}), shown);
}

TEST_F(ShownMessage, PresenterMayBeReplacedWhileItShows) {
    whileShown = [] { SetMessagePresenter(nullptr); };
    EXPECT_EQ(S_OK, Display());
    EXPECT_EQ(1u, shown.size());
    EXPECT_EQ(nullptr, GetForegroundWindow());
}

} // namespace

} // namespace vant::test
