#include "module/registration/Registration.h"

#include "module/Module.h"

namespace vant {

HRESULT RegisterModule(ScriptMode mode) noexcept {
    try {
        return RegisterWithSystem(mode);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

HRESULT RunAllScripts(ScriptMode mode, KeyStore& store) {
    const std::wstring modulePath = ModulePath();
    for (const ObjectMapRow& row : ObjectMap()) {
        const HRESULT code = RunScript(EmbeddedScript(row.resource), modulePath, mode, store);
        if (FAILED(code))
            return code;
    }
    return S_OK;
}

} // namespace vant
