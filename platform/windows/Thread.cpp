#include "platform/Thread.h"

#include <string>

namespace vant {

void NameThisThread(std::wstring_view name) noexcept {
    // Older versions of Windows lack the function.
    using SetThreadDescriptionFunction = HRESULT WINAPI(HANDLE thread, PCWSTR name);
    try {
        const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32"), "SetThreadDescription");
        if (const auto set = reinterpret_cast<SetThreadDescriptionFunction*>(reinterpret_cast<void*>(found)))
            set(GetCurrentThread(), std::wstring(name).c_str());
    } catch (...) {
        // The thread stays without a name.
    }
}

} // namespace vant
