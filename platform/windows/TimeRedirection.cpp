#include "platform/TimeRedirection.h"

#include "platform/Clock.h"
#include "platform/Waiting.h"
#include "platform/system.h"

#include <atomic>
#include <cstdint>
#include <cstring>
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

/// What an imported function is replaced by; null for one that stays.
void* ReplacementOf(const char* name) {
    const struct {
        const char* name;
        void* function;
    } replacements[] = {
        {"CreateEventW", reinterpret_cast<void*>(&CreateEventHere)},
        {"SetEvent", reinterpret_cast<void*>(&SetEventHere)},
        {"ResetEvent", reinterpret_cast<void*>(&ResetEventHere)},
        {"CloseHandle", reinterpret_cast<void*>(&CloseHandleHere)},
        {"WaitForSingleObject", reinterpret_cast<void*>(&WaitForSingleObjectHere)},
        {"Sleep", reinterpret_cast<void*>(&SleepHere)},
    };
    for (const auto& each : replacements) {
        if (std::strcmp(each.name, name) == 0)
            return each.function;
    }
    return nullptr;
}

void Overwrite(IMAGE_THUNK_DATA& entry, void* function) {
    const auto value = reinterpret_cast<decltype(entry.u1.Function)>(function);
    DWORD protection = 0;
    if (entry.u1.Function == value || !VirtualProtect(&entry, sizeof(entry), PAGE_READWRITE, &protection))
        return;
    entry.u1.Function = value;
    VirtualProtect(&entry, sizeof(entry), protection, &protection);
}

/// Makes the import table of a loaded module point at the functions above. Handles that the system made stay
/// the system's. Doing it again changes nothing; the first time no thread may run in the module.
void Redirect(HMODULE module) {
    TheKernel();
    auto* const base = reinterpret_cast<BYTE*>(module);
    const auto at = [base](DWORD offset) { return reinterpret_cast<void*>(base + offset); };
    const auto& dosHeader = *static_cast<const IMAGE_DOS_HEADER*>(at(0));
    const auto& headers = *static_cast<const IMAGE_NT_HEADERS*>(at(static_cast<DWORD>(dosHeader.e_lfanew)));
    const DWORD imports = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (imports == 0)
        return;
    for (auto* library = static_cast<const IMAGE_IMPORT_DESCRIPTOR*>(at(imports)); library->Name != 0;
         ++library) {
        if (library->OriginalFirstThunk == 0)
            continue; // a library without the names of what it imports
        auto* name = static_cast<const IMAGE_THUNK_DATA*>(at(library->OriginalFirstThunk));
        auto* address = static_cast<IMAGE_THUNK_DATA*>(at(library->FirstThunk));
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const auto* const byName =
                static_cast<const IMAGE_IMPORT_BY_NAME*>(at(static_cast<DWORD>(name->u1.AddressOfData)));
            if (void* const replacement = ReplacementOf(reinterpret_cast<const char*>(byName->Name)))
                Overwrite(*address, replacement);
        }
    }
}

} // namespace

void RedirectProgram() noexcept {
    if (!redirected.exchange(true))
        Redirect(GetModuleHandleW(nullptr));
}

void TakeTimeFromHere(const void* address) noexcept {
    HMODULE library = nullptr;
    if (redirected && GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                             GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                         static_cast<const wchar_t*>(address), &library))
        Redirect(library);
}

} // namespace vant
