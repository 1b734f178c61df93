#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/runner/CommandFactory.h"
#include "platform/Bstr.h"
#include "platform/ComObject.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

namespace vant::test {

/// What a scripted command has when it executes.
struct Scene {
    IVantContext* context;
    IVantController* controller;
    std::map<std::wstring, std::wstring> properties;

    template <class Interface>
    CComPtr<Interface> Service(HRESULT (STDMETHODCALLTYPE IVantContext::*operation)(Interface**)) const {
        CComPtr<Interface> service;
        (context->*operation)(&service);
        return service;
    }
    HRESULT SetTransition(const std::wstring& id) const {
        return Service(&IVantContext::get_ProcedureController)->SetTransition(CComBSTR(id).Get());
    }
    HRESULT RunCommand(const std::wstring& id) const {
        return Service(&IVantContext::get_CommandRunner)->RunCommand(CComBSTR(id).Get());
    }
};

using Body = std::function<HRESULT(const Scene&)>;

/// A command class whose body is written in the test. It holds the context and the controller while it lives.
class ScriptedCommand : public CComObjectRootEx<CComMultiThreadModel>, public IVantCommand {
public:
    virtual ~ScriptedCommand() = default;

    Body body;
    HRESULT initializeResult = S_OK;

    HRESULT STDMETHODCALLTYPE Initialize(IVantContext* context, IVantController* controller) override {
        m_context = context;
        m_controller = controller;
        return initializeResult;
    }
    HRESULT STDMETHODCALLTYPE Execute() override {
        return body({m_context.Get(), m_controller.Get(), m_properties});
    }
    HRESULT STDMETHODCALLTYPE SetProperty(BSTR name, BSTR value) override {
        if (TextOf(name) == L"refused")
            return E_INVALIDARG;
        m_properties.emplace(TextOf(name), TextOf(value));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_IsValid(VARIANT_BOOL* isValid) override {
        *isValid = VARIANT_TRUE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_Label(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Label(BSTR) override { return E_NOTIMPL; }

protected:
    void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown || iid == IID_IVantCommand ? static_cast<IVantCommand*>(this) : nullptr;
    }

private:
    CComPtr<IVantContext> m_context;
    CComPtr<IVantController> m_controller;
    std::map<std::wstring, std::wstring> m_properties;
};

/// Creates commands whose classes are written in the test.
class ScriptedFactory : public host::CommandFactory {
public:
    std::map<std::string, Body, std::less<>> classes;
    HRESULT createResult = S_OK;
    HRESULT initializeResult = S_OK;

    HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const override {
        if (FAILED(createResult))
            return createResult;
        const auto found = classes.find(className);
        if (found == classes.end())
            return CLASS_E_CLASSNOTAVAILABLE;
        CComObject<ScriptedCommand>* created = nullptr;
        CComObject<ScriptedCommand>::CreateInstance(&created);
        created->body = found->second;
        created->initializeResult = initializeResult;
        command = created;
        return S_OK;
    }
    bool CanUnload() const override { return ModuleLock::Count() == 0; }
};

} // namespace vant::test
