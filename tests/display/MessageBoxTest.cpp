// The system's own message box: needs a display, which the test's command provides.

#include "framework/interfaces/ClassIds.h"
#include "tests/module/BuiltModule.h"
#include "tests/support/Commands.h"
#include "tests/support/EmptyDesktop.h"
#include "tests/support/TestHost.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace vant::test {
namespace {

constexpr DWORD patience =
    30'000; // milliseconds; a box that never appears fails the test instead of hanging it
constexpr DWORD pause = 20;
constexpr const wchar_t* dialogClass = L"#32770";

/// A visible window that has the foreground for as long as the object lives.
class ForegroundWindow {
public:
    ForegroundWindow()
        : m_window(CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                                   nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)) {
        SetForegroundWindow(m_window);
        for (DWORD waited = 0; GetForegroundWindow() != m_window && waited < patience; waited += pause) {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageW(&message);
            Sleep(pause);
        }
    }
    ~ForegroundWindow() { DestroyWindow(m_window); }
    ForegroundWindow(const ForegroundWindow&) = delete;
    ForegroundWindow& operator=(const ForegroundWindow&) = delete;

    HWND Get() const { return m_window; }

private:
    HWND m_window;
};

/// What a technician sees of the box.
struct Seen {
    bool appeared = false;
    HWND owner = nullptr;
    std::wstring text;
    int buttons = 0;
    bool hasIcon = false;
};

BOOL CALLBACK LookAtPart(HWND part, LPARAM parameter) {
    auto& seen = *reinterpret_cast<Seen*>(parameter);
    wchar_t kind[32] = {};
    wchar_t text[256] = {};
    GetClassNameW(part, kind, 32);
    GetWindowTextW(part, text, 256);
    if (std::wstring_view(kind) == L"Button" && IsWindowVisible(part))
        ++seen.buttons;
    else if (GetWindowLongPtrW(part, GWL_STYLE) & SS_ICON)
        seen.hasIcon = true;
    else
        seen.text += text;
    return TRUE;
}

/// Waits for the box with that caption, looks at it and presses OK.
Seen LookAndClose(const wchar_t* caption) {
    Seen seen;
    for (DWORD waited = 0; waited < patience; waited += pause) {
        const HWND box = FindWindowW(dialogClass, caption);
        if (box && IsWindowVisible(box)) {
            seen.appeared = true;
            seen.owner = GetWindow(box, GW_OWNER);
            EnumChildWindows(box, LookAtPart, reinterpret_cast<LPARAM>(&seen));
            PostMessageW(box, WM_COMMAND, IDOK, 0);
            return seen;
        }
        Sleep(pause);
    }
    return seen;
}

TEST(MessageBox, EntryWithText_ShowsItWithCaptionIconAndOneButtonUntilItIsClosed) {
    const ForegroundWindow window;
    ASSERT_EQ(GetForegroundWindow(), window.Get());
    const BuiltModule module;
    TestHost host;
    host.dataStore[L"message"] = CComVariant(CComBSTR(L"Key on"));
    CComPtr<IVantCommand> command;
    ASSERT_EQ(module.Create(CLSID_MessageDisplayer, IID_IVantCommand, reinterpret_cast<void**>(&command)),
              S_OK);
    ASSERT_EQ(command->Initialize(host.Context(), host.Controller()), S_OK);
    SetProperties(*command.Get(), {{L"dsString", L"message"}});

    Seen seen;
    std::thread technician([&seen] { seen = LookAndClose(L"TORVEX"); });
    const HRESULT code = command->Execute();
    technician.join();

    EXPECT_EQ(code, S_OK);
    EXPECT_TRUE(seen.appeared);
    EXPECT_EQ(seen.owner, window.Get());
    EXPECT_EQ(seen.text, L"Key on");
    EXPECT_EQ(seen.buttons, 1);
    EXPECT_TRUE(seen.hasIcon);
    EXPECT_EQ(FindWindowW(dialogClass, L"TORVEX"), nullptr);
}

TEST(MessageBox, NoForegroundWindow_ShowsNothingAndReturnsAtOnce) {
    const BuiltModule module;
    TestHost host;
    host.dataStore[L"message"] = CComVariant(CComBSTR(L"Key on"));
    OnEmptyDesktop([&] {
        CComPtr<IVantCommand> command;
        ASSERT_EQ(module.Create(CLSID_MessageDisplayer, IID_IVantCommand, reinterpret_cast<void**>(&command)),
                  S_OK);
        ASSERT_EQ(command->Initialize(host.Context(), host.Controller()), S_OK);
        SetProperties(*command.Get(), {{L"dsString", L"message"}});
        EXPECT_EQ(command->Execute(), S_OK);
        EXPECT_EQ(FindWindowW(dialogClass, L"TORVEX"), nullptr);
    });
}

} // namespace
} // namespace vant::test
