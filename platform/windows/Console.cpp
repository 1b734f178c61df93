#include "platform/Console.h"

#include <atomic>
#include <cstdlib>

namespace vant {

namespace {

/// The state of the console before PrepareConsole.
UINT formerCodePage = 0;
DWORD formerMode = 0;

std::atomic<bool> codePageChanged{false};
std::atomic<bool> modeChanged{false};

HANDLE Output() {
    return GetStdHandle(STD_OUTPUT_HANDLE);
}

} // namespace

void PrepareConsole() {
    std::atexit([] { RestoreConsole(); });
    if (const UINT codePage = GetConsoleOutputCP(); codePage != CP_UTF8 && SetConsoleOutputCP(CP_UTF8)) {
        formerCodePage = codePage;
        codePageChanged = true;
    }
    DWORD mode = 0;
    if (!GetConsoleMode(Output(), &mode) || (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0)
        return;
    if (SetConsoleMode(Output(), mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING)) {
        formerMode = mode;
        modeChanged = true;
    }
}

void RestoreConsole() noexcept {
    if (modeChanged.exchange(false))
        SetConsoleMode(Output(), formerMode);
    if (codePageChanged.exchange(false))
        SetConsoleOutputCP(formerCodePage);
}

bool OutputIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(Output(), &mode) != FALSE;
}

bool OutputTakesColours() {
    DWORD mode = 0;
    return GetConsoleMode(Output(), &mode) && (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

} // namespace vant
