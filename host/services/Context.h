#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"

namespace vant::host {

/// What a context hands out.
struct ContextServices {
    IProcedureController* procedureController;
    ICommandRunner* commandRunner;
    IComponentService* componentService;
    IUnknown* service7;
    IUnknown* service3;
    IPresentationService* presentationService;
    IDataStore* dataStore;
    IUnknown* threadService;
    IDataServiceOld* parameterService;
};

/// Through which commands reach the services. Each request answers S_OK, or E_POINTER for a null `out`.
class Context final : public HostObject<IVantContext> {
public:
    /// The services must outlive the context.
    Context(Journal& journal, const ContextServices& services)
        : HostObject(journal, "Context"), m_services(services) {}

    HRESULT STDMETHODCALLTYPE get_ProcedureController(IProcedureController** out) override {
        return HandOut("get_ProcedureController", m_services.procedureController, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Refuse("Reserved4"); }
    HRESULT STDMETHODCALLTYPE get_CommandRunner(ICommandRunner** out) override {
        return HandOut("get_CommandRunner", m_services.commandRunner, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Refuse("Reserved6"); }
    HRESULT STDMETHODCALLTYPE get_ComponentService(IComponentService** out) override {
        return HandOut("get_ComponentService", m_services.componentService, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE get_Service7(IUnknown** out) override {
        return HandOut("get_Service7", m_services.service7, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Refuse("Reserved10"); }
    HRESULT STDMETHODCALLTYPE get_Service3(IUnknown** out) override {
        return HandOut("get_Service3", m_services.service3, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return Refuse("Reserved12"); }
    HRESULT STDMETHODCALLTYPE get_PresentationService(IPresentationService** out) override {
        return HandOut("get_PresentationService", m_services.presentationService, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return Refuse("Reserved14"); }
    HRESULT STDMETHODCALLTYPE get_DataStore(IDataStore** out) override {
        return HandOut("get_DataStore", m_services.dataStore, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return Refuse("Reserved16"); }
    HRESULT STDMETHODCALLTYPE get_ThreadService(IUnknown** out) override {
        return HandOut("get_ThreadService", m_services.threadService, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved18() override { return Refuse("Reserved18"); }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return Refuse("Reserved19"); }
    HRESULT STDMETHODCALLTYPE Reserved20() override { return Refuse("Reserved20"); }
    HRESULT STDMETHODCALLTYPE get_ParameterService(IDataServiceOld** out) override {
        return HandOut("get_ParameterService", m_services.parameterService, out);
    }

private:
    template <class Interface>
    HRESULT HandOut(const char* operation, Interface* service, Interface** out) {
        return Answer(operation, [&](Record&) -> HRESULT {
            if (!out)
                return E_POINTER;
            service->AddRef();
            *out = service;
            return S_OK;
        });
    }

    const ContextServices m_services;
};

} // namespace vant::host
