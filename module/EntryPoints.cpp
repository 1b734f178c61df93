// The four exported entry points. No exception leaves them.

#include "module/Module.h"
#include "module/registration/Registration.h"
#include "platform/ComObject.h"

// The platform declares the two entry points of every component; these two are declared here.
// VantCommands.def lists the exports on Windows, VantCommands.map elsewhere.
extern "C" {
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
