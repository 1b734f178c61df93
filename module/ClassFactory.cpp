#include "module/ClassFactory.h"

namespace vant {

HRESULT CClassFactory::QueryInterface(REFIID iid, void** out) {
    if (!out)
        return E_POINTER;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    *out = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
}

ULONG CClassFactory::AddRef() {
    return InternalAddRef();
}

ULONG CClassFactory::Release() {
    const ULONG left = InternalRelease();
    if (left == 0)
        delete this;
    return left;
}

HRESULT CClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** out) {
    if (!out)
        return E_POINTER;
    *out = nullptr;
    return outer ? CLASS_E_NOAGGREGATION : m_creator(iid, out);
}

HRESULT CClassFactory::LockServer(BOOL lock) {
    if (lock)
        ModuleLock::Add();
    else
        ModuleLock::Release();
    return S_OK;
}

} // namespace vant
