#pragma once

#include "host/record/Journal.h"
#include "platform/Bstr.h"
#include "platform/ComException.h"
#include "platform/Utf8.h"
#include "platform/system.h"

#include <atomic>
#include <new>
#include <string>
#include <utility>

namespace vant::host {

/// An object that the host lends to commands. The host owns it; references are counted so that a run can tell
/// whether commands released what they were lent, but the last Release destroys nothing. Each operation is
/// recorded in the journal when it is answered (IUnknown's three are not).
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
    const std::string& Name() const noexcept { return m_name; }

protected:
    HostObject(Journal& journal, std::string name) : m_journal(journal), m_name(std::move(name)) {}
    ~HostObject() = default;

    /// The interface of that identifier; null where the object has none. It may be that of another host
    /// object which forms one COM object with this one.
    virtual void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown ? static_cast<IUnknown*>(this) : nullptr;
    }

    /// Performs one operation: `body(record)` adds the arguments to the record and returns the HRESULT. Both
    /// are recorded, and no exception gets out.
    template <class Body>
    HRESULT Answer(const char* operation, Body&& body) noexcept {
        Record record;
        try {
            record.service = m_name;
            record.operation = operation;
            record.result = body(record);
        } catch (const CComException& failure) {
            record.result = failure.Code();
        } catch (const std::bad_alloc&) {
            record.result = E_OUTOFMEMORY;
        } catch (...) {
            record.result = E_FAIL;
        }
        const HRESULT result = *record.result;
        m_journal.Add(std::move(record));
        return result;
    }
    /// Answers an operation that this host does not have.
    HRESULT Refuse(const char* operation) noexcept {
        return Answer(operation, [](Record&) { return E_NOTIMPL; });
    }

private:
    Journal& m_journal;
    const std::string m_name;
    std::atomic<ULONG> m_references{0};
};

/// A host object whose interface is dual. Commands call it by its slots, never through IDispatch.
template <class Interface>
class HostDispatch : public HostObject<Interface> {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return this->Refuse("GetTypeInfoCount"); }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override {
        return this->Refuse("GetTypeInfo");
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return this->Refuse("GetIDsOfNames");
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return this->Refuse("Invoke");
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
