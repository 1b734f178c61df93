#include "platform/Thread.h"

#include <string>

#ifndef _WIN32
#include "platform/Utf8.h"

#include <pthread.h>
#endif

namespace vant {

#ifdef _WIN32

void NameThisThread(std::wstring_view name) noexcept {
    // Windows has it since a version of its own: older ones lack the function.
    using SetThreadDescriptionFunction = HRESULT WINAPI(HANDLE thread, PCWSTR name);
    try {
        const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32"), "SetThreadDescription");
        if (const auto set = reinterpret_cast<SetThreadDescriptionFunction*>(reinterpret_cast<void*>(found)))
            set(GetCurrentThread(), std::wstring(name).c_str());
    } catch (...) {
        // The thread stays without a name.
    }
}

#else

void NameThisThread(std::wstring_view name) noexcept {
    constexpr std::size_t longest = 15;
    try {
        std::string text = ToUtf8(name);
        if (text.size() > longest) {
            std::size_t end = longest;
            while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
                --end; // No character is cut in two.
            text.resize(end);
        }
        pthread_setname_np(pthread_self(), text.c_str());
    } catch (...) {
        // The thread stays without a name.
    }
}

#endif

} // namespace vant
