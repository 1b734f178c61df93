#pragma once

#include "host/object/CallGate.h"
#include "platform/Bstr.h"
#include "platform/Utf8.h"
#include "platform/system.h"

#include <atomic>
#include <utility>

namespace vant::host {

/// An object that the host lends to commands. The host owns it: references are counted, so that a run can
/// tell whether commands released what they were lent, but the last Release destroys nothing. Every operation
/// but those of IUnknown passes through the host's CallGate. Any thread may call.
template <class Interface>
class HostObject : public Interface {
public:
    HostObject(const HostObject&) = delete;
    HostObject& operator=(const HostObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!out)
            return E_POINTER;
        *out = FindInterface(iid);
        if (!*out)
            return E_NOINTERFACE;
        static_cast<IUnknown*>(*out)->AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return m_references.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    ULONG STDMETHODCALLTYPE Release() override {
        return m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }

    /// References that commands hold now.
    ULONG References() const noexcept { return m_references.load(std::memory_order_acquire); }
    /// The service's name in the journal.
    const char* Name() const noexcept { return m_name; }

protected:
    /// `name` is one of the services in Vocabulary.h. The gate must outlive the object.
    HostObject(CallGate& gate, const char* name) : m_gate(gate), m_name(name) {}
    ~HostObject() = default;

    /// The interface of that identifier; null if the object does not have it. It may belong to another host
    /// object that forms one COM object with this one.
    virtual void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown ? static_cast<IUnknown*>(this) : nullptr;
    }

    /// Performs one operation, see CallGate::Perform.
    template <class Body>
    HRESULT Perform(const char* operation, Body&& body) noexcept {
        return m_gate.Perform(m_name, operation, std::forward<Body>(body));
    }
    /// Records the call of an operation that this host does not implement, and returns E_NOTIMPL.
    HRESULT NotImplemented(const char* operation) noexcept {
        return Perform(operation, [](Record&) { return E_NOTIMPL; });
    }

private:
    CallGate& m_gate;
    const char* const m_name;
    std::atomic<ULONG> m_references{0};
};

/// A host object whose interface is dual. Commands call it through its slots, never through IDispatch.
template <class Interface>
class HostDispatch : public HostObject<Interface> {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override {
        return this->NotImplemented("GetTypeInfoCount");
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override {
        return this->NotImplemented("GetTypeInfo");
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return this->NotImplemented("GetIDsOfNames");
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return this->NotImplemented("Invoke");
    }

protected:
    using HostObject<Interface>::HostObject;
    ~HostDispatch() = default;

    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IDispatch ? static_cast<IDispatch*>(this)
                                    : HostObject<Interface>::FindInterface(iid);
    }
};

} // namespace vant::host
