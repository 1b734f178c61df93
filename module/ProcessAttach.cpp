// Loading and unloading. The module needs no work of its own at load time; unloading releases the cached
// class objects.

#include "module/Module.h"

#ifdef _WIN32

#include "module/TlsSlots.h"

namespace __gnu_cxx {
/// The C++ runtime's own: frees what it keeps for as long as it is loaded. It is linked in, so that is as
/// long as we are.
void __freeres();
} // namespace __gnu_cxx

extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID processEnds) {
    // At the end of the process the other threads have been ended at any point, so nothing is released.
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        vant::Module().ReleaseClassObjects();
        __gnu_cxx::__freeres();
        vant::FreeTlsSlots();
    }
    return TRUE;
}

#else

__attribute__((destructor)) static void DetachProcess() {
    vant::Module().ReleaseClassObjects();
}

#endif
