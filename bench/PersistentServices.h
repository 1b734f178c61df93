#pragma once

#include "ecm/interfaces/EngineData.h"
#include "framework/interfaces/ThreadService.h"
#include "platform/Bstr.h"
#include "platform/ComPtr.h"

#include <atomic>
#include <cstdint>

namespace vant::bench {

/// The least that persistent commands need beside MinimalHost: one object that is the thread service, the
/// engine services with their units, and every parameter. A registration only keeps the callback. It is never
/// freed.
class PersistentServices final : public IThreadService,
                                 public IECMServicesOld,
                                 public IUnitsTable,
                                 public IUnit,
                                 public IParameterOld {
public:
    /// The callback that was registered last.
    CComPtr<IThreadCallback> callback;

    IUnknown* Object() { return static_cast<IThreadService*>(this); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        *out = nullptr;
        if (iid == IID_IThreadService)
            *out = static_cast<IThreadService*>(this);
        else if (iid == IID_IECMServicesOld)
            *out = static_cast<IECMServicesOld*>(this);
        else if (iid == IID_IParameterOld)
            *out = static_cast<IParameterOld*>(this);
        if (!*out)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

    HRESULT STDMETHODCALLTYPE RegisterCallback(IThreadCallback* registered, const ThreadRegistration*,
                                               std::uint32_t* cookie) override {
        callback = registered;
        *cookie = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE UnregisterCallback(std::uint32_t) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Operation11(std::uint32_t) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Operation12(std::uint32_t) override { return S_OK; }

    HRESULT STDMETHODCALLTYPE GetUnits(IUnknown** out) override {
        AddRef();
        *out = static_cast<IUnitsTable*>(this);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetUnit(BSTR, IUnit** out) override {
        AddRef();
        *out = this;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* out) override { return Give(L"1450", out); }
    HRESULT STDMETHODCALLTYPE get_UnitsKey(BSTR* out) override { return Give(L"rpm", out); }
    HRESULT STDMETHODCALLTYPE get_Name(BSTR* out) override { return Give(L"engine speed", out); }
    HRESULT STDMETHODCALLTYPE get_Value(VARIANT*) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }

private:
    static HRESULT Give(const wchar_t* text, BSTR* out) {
        *out = CComBSTR(text).Detach();
        return S_OK;
    }

    std::atomic<ULONG> m_references{1};
};

} // namespace vant::bench
