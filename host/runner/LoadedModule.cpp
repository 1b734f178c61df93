#include "host/runner/LoadedModule.h"

#include "framework/interfaces/ClassIds.h"
#include "platform/Utf8.h"

namespace vant::host {

LoadedModule::LoadedModule(const std::filesystem::path& file)
    : m_library(file), m_getClassObject(m_library.Find<GetClassObjectFunction>("DllGetClassObject")),
      m_canUnloadNow(m_library.Find<PlainFunction>("DllCanUnloadNow")) {}

HRESULT LoadedModule::Create(std::string_view className, CComPtr<IVantCommand>& command) const {
    const std::wstring name = ToWide(className);
    for (const ClassRow& row : classTable) {
        if (name != row.name)
            continue;
        CComPtr<IClassFactory> factory;
        const HRESULT code =
            m_getClassObject(*row.classId, IID_IClassFactory, reinterpret_cast<void**>(&factory));
        if (FAILED(code))
            return code;
        return factory ? CheckGiven(factory->CreateInstance(nullptr, IID_IVantCommand,
                                                            reinterpret_cast<void**>(&command)),
                                    command)
                       : E_UNEXPECTED;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

bool LoadedModule::CanUnload() const {
    return m_canUnloadNow() == S_OK;
}

HRESULT LoadedModule::Register() const {
    return m_library.Find<PlainFunction>("DllRegisterServer")();
}

HRESULT LoadedModule::Unregister() const {
    return m_library.Find<PlainFunction>("DllUnregisterServer")();
}

} // namespace vant::host
