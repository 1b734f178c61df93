#pragma once

#include "framework/interfaces/HostServices.h"
#include "platform/system.h"

#include <cstdint>

namespace vant::bench {

/// The smallest possible host: one object that is the context and every service. It stores nothing; a call
/// costs the call, a count, and, where the interface hands something out, the copy or reference handed out.
/// It is never freed.
class MinimalHost final : public IVantContext,
                          public ICommandRunner,
                          public IComponentService,
                          public IDataStore,
                          public IPresentationService,
                          public IProcedureController,
                          public IVantController,
                          public IDataServiceOld {
public:
    // What the host hands out of these; lent.
    IUnknown* threadService = nullptr;
    IUnknown* parameter = nullptr;

    std::uint64_t Calls() const { return m_calls; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

    HRESULT STDMETHODCALLTYPE get_ProcedureController(IProcedureController** out) override {
        return Give(out);
    }
    HRESULT STDMETHODCALLTYPE get_CommandRunner(ICommandRunner** out) override { return Give(out); }
    HRESULT STDMETHODCALLTYPE get_ComponentService(IComponentService** out) override { return Give(out); }
    HRESULT STDMETHODCALLTYPE get_Service7(IUnknown** out) override { return GiveUnknown(out); }
    HRESULT STDMETHODCALLTYPE get_Service3(IUnknown** out) override { return GiveUnknown(out); }
    HRESULT STDMETHODCALLTYPE get_PresentationService(IPresentationService** out) override {
        return Give(out);
    }
    HRESULT STDMETHODCALLTYPE get_DataStore(IDataStore** out) override { return Give(out); }
    HRESULT STDMETHODCALLTYPE get_ThreadService(IUnknown** out) override {
        return threadService ? GiveLent(threadService, out) : GiveUnknown(out);
    }
    HRESULT STDMETHODCALLTYPE get_ParameterService(IDataServiceOld** out) override { return Give(out); }

    HRESULT STDMETHODCALLTYPE RunCommand(BSTR) override { return Count(); }
    HRESULT STDMETHODCALLTYPE RunCommandFromThread(BSTR) override { return Count(); }
    HRESULT STDMETHODCALLTYPE SetComponentProperty(BSTR, BSTR, BSTR) override { return Count(); }
    HRESULT STDMETHODCALLTYPE GetValue(BSTR, VARIANT*) override { return Count(); }
    HRESULT STDMETHODCALLTYPE SetValue(BSTR, VARIANT) override { return Count(); }
    HRESULT STDMETHODCALLTYPE ShowInstruction(BSTR) override { return Count(); }
    HRESULT STDMETHODCALLTYPE SetTransition(BSTR) override { return Count(); }
    HRESULT STDMETHODCALLTYPE TerminateCommand(BSTR) override { return Count(); }
    HRESULT STDMETHODCALLTYPE PersistentCommandStopped(IVantPersistentCommand*) override { return Count(); }
    HRESULT STDMETHODCALLTYPE GetConnection(IConnectionOld**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetParameter(BSTR, LONG, IUnknown** out) override {
        return parameter ? GiveLent(parameter, out) : E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetParameter(BSTR, LONG, VARIANT, IUnknown**) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved18() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved20() override { return E_NOTIMPL; }

private:
    template <class Interface>
    HRESULT Give(Interface** out) {
        AddRef();
        *out = this;
        return Count();
    }
    HRESULT GiveUnknown(IUnknown** out) {
        AddRef();
        *out = static_cast<ICommandRunner*>(this);
        return Count();
    }
    HRESULT GiveLent(IUnknown* object, IUnknown** out) {
        object->AddRef();
        *out = object;
        return Count();
    }
    HRESULT Count() {
        ++m_calls;
        return S_OK;
    }

    ULONG m_references = 1;
    std::uint64_t m_calls = 0;
};

} // namespace vant::bench
