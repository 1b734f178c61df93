#pragma once

// The base classes of the objects of a host in memory.

#include "platform/Bstr.h"
#include "platform/ComException.h"
#include "tests/support/TestHost.h"

#include <atomic>
#include <gtest/gtest.h>
#include <new>
#include <string_view>

namespace vant::test {

/// Identity and reference count of one host object, which lives as long as the host.
template <class Interface>
class HostObject : public Interface {
public:
    explicit HostObject(TestHost& host) noexcept : m_host(host) {}
    HostObject(const HostObject&) = delete;
    HostObject& operator=(const HostObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        *out = iid == IID_IUnknown ? static_cast<IUnknown*>(this) : nullptr;
        if (!*out)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        m_host.CountReference(1);
        return ++m_references;
    }
    ULONG STDMETHODCALLTYPE Release() override {
        if (m_references == 0) {
            ADD_FAILURE() << "a host object was released too often";
            return 0;
        }
        m_host.CountReference(-1);
        return --m_references;
    }

protected:
    ~HostObject() = default;

    HRESULT Enter(std::string_view operation, std::string_view arguments) {
        if (m_references == 0)
            ADD_FAILURE() << operation << " was called on a host object without references";
        return m_host.Enter(operation, arguments);
    }
    HRESULT Unexpected(const char* slot) {
        ADD_FAILURE() << "a slot that no command uses was called: " << slot;
        return E_NOTIMPL;
    }
    /// Hands out another object of the host.
    template <class Other>
    static HRESULT HandOut(HRESULT code, Other& object, Other** out) {
        *out = nullptr;
        if (FAILED(code))
            return code;
        object.AddRef();
        *out = &object;
        return code;
    }
    /// Does what a call asks for, unless `code` is a failure. Returns E_OUTOFMEMORY if memory runs
    /// out.
    template <class Action>
    static HRESULT Perform(HRESULT code, Action action) {
        if (FAILED(code))
            return code;
        try {
            const HRESULT done = action();
            return FAILED(done) ? done : code;
        } catch (const CComException& exception) {
            return exception.Code();
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }
    static HRESULT ReturnText(HRESULT code, std::wstring_view text, BSTR* out) {
        return Perform(code, [&] {
            *out = CComBSTR(text).Detach();
            return S_OK;
        });
    }

    TestHost& m_host;

private:
    std::atomic<ULONG> m_references{0};
};

/// A host object with a dual interface, of which no command uses IDispatch's part.
template <class Interface>
class DualHostObject : public HostObject<Interface> {
public:
    using HostObject<Interface>::HostObject;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override {
        return this->Unexpected("GetTypeInfoCount");
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override {
        return this->Unexpected("GetTypeInfo");
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return this->Unexpected("GetIDsOfNames");
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return this->Unexpected("Invoke");
    }

protected:
    ~DualHostObject() = default;
};

} // namespace vant::test
