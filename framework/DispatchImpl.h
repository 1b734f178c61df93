#pragma once

#include "platform/system.h"

namespace vant {

/// The IDispatch part of a dual interface whose type library belongs to the host. It behaves as if that
/// library were not registered: there is one type description, but it cannot be loaded.
template <class Interface, const IID* iid>
class IDispatchImpl : public Interface {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (!count)
            return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** out) override {
        if (out)
            *out = nullptr;
        if (index != 0)
            return DISP_E_BADINDEX;
        return out ? TYPE_E_LIBNOTREGISTERED : E_POINTER;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return TYPE_E_LIBNOTREGISTERED;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return TYPE_E_LIBNOTREGISTERED;
    }

protected:
    ~IDispatchImpl() = default;

    /// IUnknown, IDispatch and the interface itself, all at its start; null for anything else.
    void* FindInterface(REFIID wanted) noexcept {
        return wanted == IID_IUnknown || wanted == IID_IDispatch || wanted == *iid
                   ? static_cast<Interface*>(this)
                   : nullptr;
    }
};

} // namespace vant
