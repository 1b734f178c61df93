#pragma once

#include "platform/ComObject.h"
#include "platform/system.h"

namespace vant {

/// Creates an object of one class and asks it for `iid`; on failure nothing is left behind and `*out` is
/// null.
using ObjectCreator = HRESULT (*)(REFIID iid, void** out) noexcept;

/// The ObjectCreator of command class `Class`.
template <class Class>
HRESULT CreateObject(REFIID iid, void** out) noexcept {
    CComObject<Class>* object = nullptr;
    if (const HRESULT code = CComObject<Class>::CreateInstance(&object); FAILED(code))
        return code;
    object->AddRef();
    const HRESULT code = object->QueryInterface(iid, out);
    object->Release();
    return code;
}

/// The class object of one class. The module keeps it until it unloads; it holds no module lock itself.
class CClassFactory final : public CComObjectRootEx<CComMultiThreadModel>, public IClassFactory {
public:
    explicit CClassFactory(ObjectCreator creator) noexcept : m_creator(creator) {}
    virtual ~CClassFactory() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

private:
    ObjectCreator m_creator;
};

} // namespace vant
