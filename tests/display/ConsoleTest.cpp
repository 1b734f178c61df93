#include "platform/Console.h"

#include <gtest/gtest.h>

namespace vant {
namespace {

/// A console of this program's own, to which standard output goes.
class OwnConsole {
public:
    OwnConsole() {
        FreeConsole();
        if (!AllocConsole())
            return;
        m_console = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_EXISTING, 0, nullptr);
        SetStdHandle(STD_OUTPUT_HANDLE, m_console);
    }
    ~OwnConsole() {
        SetStdHandle(STD_OUTPUT_HANDLE, m_former);
        CloseHandle(m_console);
        FreeConsole();
    }
    OwnConsole(const OwnConsole&) = delete;
    OwnConsole& operator=(const OwnConsole&) = delete;

    DWORD Mode() const {
        DWORD mode = 0;
        EXPECT_TRUE(GetConsoleMode(m_console, &mode)) << GetLastError();
        return mode;
    }

private:
    const HANDLE m_former = GetStdHandle(STD_OUTPUT_HANDLE);
    HANDLE m_console = INVALID_HANDLE_VALUE;
};

TEST(WindowsConsole, PreparedOne_ShowsUtf8AndColoursUntilItIsRestored) {
    const OwnConsole console;
    ASSERT_TRUE(SetConsoleOutputCP(437)) << GetLastError();
    const DWORD plain = console.Mode() & ~static_cast<DWORD>(ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    ASSERT_TRUE(SetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), plain));
    EXPECT_TRUE(OutputIsTerminal());
    EXPECT_FALSE(OutputTakesColours());

    PrepareConsole();
    EXPECT_EQ(GetConsoleOutputCP(), static_cast<UINT>(CP_UTF8));
    EXPECT_NE(console.Mode() & ENABLE_VIRTUAL_TERMINAL_PROCESSING, 0U);
    EXPECT_TRUE(OutputTakesColours());

    RestoreConsole();
    EXPECT_EQ(GetConsoleOutputCP(), 437U);
    EXPECT_EQ(console.Mode(), plain);
    EXPECT_FALSE(OutputTakesColours());

    ASSERT_TRUE(SetConsoleOutputCP(850));
    RestoreConsole();
    EXPECT_EQ(GetConsoleOutputCP(), 850U) << "restored once";
}

TEST(WindowsConsole, OutputToAFile_IsNoTerminal) {
    const HANDLE former = GetStdHandle(STD_OUTPUT_HANDLE);
    const HANDLE file = CreateFileW(L"NUL", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    SetStdHandle(STD_OUTPUT_HANDLE, file);
    EXPECT_FALSE(OutputIsTerminal());
    EXPECT_FALSE(OutputTakesColours());
    SetStdHandle(STD_OUTPUT_HANDLE, former);
    CloseHandle(file);
}

} // namespace
} // namespace vant
