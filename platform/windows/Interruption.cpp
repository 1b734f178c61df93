#include "platform/Interruption.h"

#include "platform/Console.h"

#include <atomic>

namespace vant {

namespace {

std::atomic<void (*)()> interruptHandler{nullptr};
std::atomic<ULONGLONG> firstInterrupt{0}; ///< in milliseconds since the system's start; 0: none yet

/// The system calls this on a thread of its own for each event.
BOOL WINAPI HandleConsoleEvent(DWORD event) {
    constexpr ULONGLONG sameInterrupt = 500;
    const ULONGLONG now = GetTickCount64() + 1;
    ULONGLONG first = 0;
    if (firstInterrupt.compare_exchange_strong(first, now)) {
        interruptHandler.load()();
    } else if (now - first > sameInterrupt) {
        RestoreConsole();
        return FALSE; // The system ends the program.
    }
    // After any other event the system ends the program as soon as this function returns, so it waits for the
    // program to end in its own way. The system sets a limit of some seconds.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        WaitForSingleObject(GetCurrentProcess(), INFINITE);
    return TRUE;
}

} // namespace

void OnFirstInterrupt(void (*handler)()) {
    interruptHandler = handler;
    SetConsoleCtrlHandler(HandleConsoleEvent, TRUE);
}

} // namespace vant
