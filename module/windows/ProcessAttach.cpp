// Unloading releases the cached class objects and what the C++ runtime keeps; loading takes no work.

#include "module/Module.h"
#include "module/windows/TlsSlots.h"

namespace __gnu_cxx {
/// The C++ runtime's own: frees what the runtime keeps for as long as it is loaded. It is linked into the
/// module, so it goes with the module.
void __freeres();
} // namespace __gnu_cxx

extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID processEnds) {
    // When the process ends, its other threads are already gone, wherever they stood: nothing can be released
    // safely, and the system takes everything back anyway.
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        vant::Module().ReleaseClassObjects();
        __gnu_cxx::__freeres();
        vant::FreeTlsSlots();
    }
    return TRUE;
}
