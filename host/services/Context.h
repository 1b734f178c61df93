#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

/// The services that a context hands out.
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

/// Hands the services out to commands. Each request returns S_OK, or E_POINTER for a null `out`.
class Context final : public HostObject<IVantContext> {
public:
    /// The services must outlive the context.
    Context(CallGate& gate, const ContextServices& services)
        : HostObject(gate, service::Context), m_services(services) {}

    HRESULT STDMETHODCALLTYPE get_ProcedureController(IProcedureController** out) override {
        return HandOut(operation::get_ProcedureController, m_services.procedureController, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return NotImplemented("Reserved4"); }
    HRESULT STDMETHODCALLTYPE get_CommandRunner(ICommandRunner** out) override {
        return HandOut(operation::get_CommandRunner, m_services.commandRunner, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return NotImplemented("Reserved6"); }
    HRESULT STDMETHODCALLTYPE get_ComponentService(IComponentService** out) override {
        return HandOut(operation::get_ComponentService, m_services.componentService, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE get_Service7(IUnknown** out) override {
        return HandOut(operation::get_Service7, m_services.service7, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return NotImplemented("Reserved10"); }
    HRESULT STDMETHODCALLTYPE get_Service3(IUnknown** out) override {
        return HandOut(operation::get_Service3, m_services.service3, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return NotImplemented("Reserved12"); }
    HRESULT STDMETHODCALLTYPE get_PresentationService(IPresentationService** out) override {
        return HandOut(operation::get_PresentationService, m_services.presentationService, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return NotImplemented("Reserved14"); }
    HRESULT STDMETHODCALLTYPE get_DataStore(IDataStore** out) override {
        return HandOut(operation::get_DataStore, m_services.dataStore, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return NotImplemented("Reserved16"); }
    HRESULT STDMETHODCALLTYPE get_ThreadService(IUnknown** out) override {
        return HandOut(operation::get_ThreadService, m_services.threadService, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved18() override { return NotImplemented("Reserved18"); }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return NotImplemented("Reserved19"); }
    HRESULT STDMETHODCALLTYPE Reserved20() override { return NotImplemented("Reserved20"); }
    HRESULT STDMETHODCALLTYPE get_ParameterService(IDataServiceOld** out) override {
        return HandOut(operation::get_ParameterService, m_services.parameterService, out);
    }

private:
    template <class Interface>
    HRESULT HandOut(const char* operation, Interface* service, Interface** out) {
        return Perform(operation, [&](Record&) -> HRESULT {
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
