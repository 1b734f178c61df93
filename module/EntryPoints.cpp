// The four exported entry points. Every exception ends before them.

#include "module/Module.h"
#include "module/registration/Registration.h"
#include "platform/ComObject.h"

extern "C" {
// The SDK declares the first two on Windows; the export list is VantCommands.def there, VantCommands.map
// elsewhere.
#ifndef _WIN32
VANT_PLATFORM_API HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID iid, void** out);
VANT_PLATFORM_API HRESULT STDAPICALLTYPE DllCanUnloadNow();
#endif
VANT_PLATFORM_API HRESULT STDAPICALLTYPE DllRegisterServer();
VANT_PLATFORM_API HRESULT STDAPICALLTYPE DllUnregisterServer();
}

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID iid, void** out) {
    return vant::Module().GetClassObject(classId, iid, out);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() {
    return vant::ModuleLock::Count() == 0 ? S_OK : S_FALSE;
}

HRESULT STDAPICALLTYPE DllRegisterServer() {
    return vant::RegisterModule(vant::ScriptMode::Register);
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
    return vant::RegisterModule(vant::ScriptMode::Unregister);
}
