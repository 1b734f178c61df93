#include "platform/TimeRedirection.h"

#include "platform/Clock.h"
#include "platform/Waiting.h"
#include "platform/system.h"
#include "platform/windows/ImportReplacement.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace vant {

namespace {

/// Until a program asks for another time, the system's own is left alone.
std::atomic<bool> redirected{false};

/// The system's own functions: this program's imports are redirected, too.
struct Kernel {
    template <class Function>
    static Function* Find(const char* name) {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
    }

    decltype(&::CreateEventW) createEvent = Find<decltype(::CreateEventW)>("CreateEventW");
    decltype(&::SetEvent) setEvent = Find<decltype(::SetEvent)>("SetEvent");
    decltype(&::ResetEvent) resetEvent = Find<decltype(::ResetEvent)>("ResetEvent");
    decltype(&::CloseHandle) closeHandle = Find<decltype(::CloseHandle)>("CloseHandle");
    decltype(&::WaitForSingleObject) wait = Find<decltype(::WaitForSingleObject)>("WaitForSingleObject");
    decltype(&::Sleep) sleep = Find<decltype(::Sleep)>("Sleep");
};

const Kernel& TheKernel() {
    static const Kernel kernel;
    return kernel;
}

// The system leaves the lowest bit of its handles 0, which marks ours.
constexpr std::uintptr_t mark = 1;

HANDLE HandleOf(waiting::Event* event) {
    return event ? reinterpret_cast<char*>(event) + mark : nullptr;
}

/// Null for a handle that the system made.
waiting::Event* EventOf(HANDLE handle) {
    const auto bits = reinterpret_cast<std::uintptr_t>(handle);
    // No object lies in the first or last 64 KiB, where pseudo-handles such as INVALID_HANDLE_VALUE do, and
    // the console handles of old systems, which are odd.
    const bool ours = (bits & mark) != 0 && bits + 0x10000 > 0x20000;
    return ours ? reinterpret_cast<waiting::Event*>(static_cast<char*>(handle) - mark) : nullptr;
}

std::int64_t LengthOf(DWORD milliseconds) {
    return milliseconds == INFINITE ? waiting::Clock::never : std::int64_t{milliseconds};
}

HANDLE WINAPI CreateEventHere(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initialState,
                              const wchar_t* name) {
    if (name)
        return TheKernel().createEvent(security, manualReset, initialState, name);
    return HandleOf(new (std::nothrow) waiting::Event(manualReset != FALSE, initialState != FALSE));
}

BOOL WINAPI SetEventHere(HANDLE handle) {
    waiting::Event* const event = EventOf(handle);
    if (!event)
        return TheKernel().setEvent(handle);
    waiting::TheClock().Set(*event);
    return TRUE;
}

BOOL WINAPI ResetEventHere(HANDLE handle) {
    waiting::Event* const event = EventOf(handle);
    if (!event)
        return TheKernel().resetEvent(handle);
    waiting::TheClock().Reset(*event);
    return TRUE;
}

BOOL WINAPI CloseHandleHere(HANDLE handle) {
    waiting::Event* const event = EventOf(handle);
    if (!event)
        return TheKernel().closeHandle(handle);
    delete event;
    return TRUE;
}

DWORD WINAPI WaitForSingleObjectHere(HANDLE handle, DWORD milliseconds) {
    waiting::Event* const event = EventOf(handle);
    if (!event)
        return TheKernel().wait(handle, milliseconds);
    return waiting::TheClock().Wait(event, LengthOf(milliseconds)) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

void WINAPI SleepHere(DWORD milliseconds) {
    // A sleep of no length lets other threads run; it takes no time.
    if (milliseconds == 0)
        TheKernel().sleep(0);
    else
        waiting::TheClock().Wait(nullptr, LengthOf(milliseconds));
}

void* Address(auto* function) {
    return reinterpret_cast<void*>(function);
}

/// Makes a loaded module wait by the functions above. Handles that the system made stay the system's. Doing
/// it again changes nothing; the first time no thread may run in the module.
void Redirect(HMODULE module) {
    TheKernel();
    const ImportReplacement replacements[] = {
        {"CreateEventW", Address(&CreateEventHere)},
        {"SetEvent", Address(&SetEventHere)},
        {"ResetEvent", Address(&ResetEventHere)},
        {"CloseHandle", Address(&CloseHandleHere)},
        {"WaitForSingleObject", Address(&WaitForSingleObjectHere)},
        {"Sleep", Address(&SleepHere)},
    };
    ReplaceImports(module, replacements);
}

} // namespace

void RedirectProgram() noexcept {
    if (!redirected.exchange(true))
        Redirect(GetModuleHandleW(nullptr));
}

void TakeTimeFromHere(const void* address) noexcept {
    if (const HMODULE library = redirected ? LibraryOf(address) : nullptr)
        Redirect(library);
}

} // namespace vant
