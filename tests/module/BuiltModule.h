#pragma once

#include "platform/ComPtr.h"
#include "platform/DynamicLibrary.h"
#include "platform/Process.h"
#include "platform/system.h"

#include <filesystem>

namespace vant {

/// The built module, loaded from the running program's folder (or a copy of it from elsewhere) and used
/// through its exported entry points alone. Unloaded with the object.
class BuiltModule {
public:
    static std::filesystem::path File() { return ProgramFolder() / LibraryFileName("VantCommands"); }

    explicit BuiltModule(const std::filesystem::path& file = File()) : m_library(file) {}

    HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** out) const {
        return m_getClassObject(classId, iid, out);
    }
    CComPtr<IClassFactory> ClassObject(REFCLSID classId) const {
        CComPtr<IClassFactory> factory;
        GetClassObject(classId, IID_IClassFactory, reinterpret_cast<void**>(&factory));
        return factory;
    }
    /// A new object of the class; failures such as CLASS_E_CLASSNOTAVAILABLE are returned as the module
    /// returns them.
    HRESULT Create(REFCLSID classId, REFIID iid, void** out) const {
        CComPtr<IClassFactory> factory;
        const HRESULT code = GetClassObject(classId, IID_IClassFactory, reinterpret_cast<void**>(&factory));
        return FAILED(code) ? code : factory->CreateInstance(nullptr, iid, out);
    }
    HRESULT CanUnloadNow() const { return m_canUnloadNow(); }
    HRESULT RegisterServer() const { return m_registerServer(); }
    HRESULT UnregisterServer() const { return m_unregisterServer(); }

private:
    using ClassObjectEntry = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
    using PlainEntry = HRESULT STDAPICALLTYPE();

    DynamicLibrary m_library;
    ClassObjectEntry* m_getClassObject = m_library.Find<ClassObjectEntry>("DllGetClassObject");
    PlainEntry* m_canUnloadNow = m_library.Find<PlainEntry>("DllCanUnloadNow");
    PlainEntry* m_registerServer = m_library.Find<PlainEntry>("DllRegisterServer");
    PlainEntry* m_unregisterServer = m_library.Find<PlainEntry>("DllUnregisterServer");
};

} // namespace vant
