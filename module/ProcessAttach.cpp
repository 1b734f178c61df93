// Loading and unloading. The module needs no work of its own at load time; unloading releases the cached
// class objects.

#include "module/Module.h"

#ifdef _WIN32

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(instance);
    // At the end of the process its other threads are gone, wherever they stood; nothing is left to release
    // for.
    if (reason == DLL_PROCESS_DETACH && !processEnds)
        vant::Module().ReleaseClassObjects();
    return TRUE;
}

#else

__attribute__((destructor)) static void DetachProcess() {
    vant::Module().ReleaseClassObjects();
}

#endif
