#pragma once

#include "platform/ComPtr.h"
#include "platform/system.h"

#include <atomic>
#include <new>

namespace vant {

/// Counts what keeps the module loaded: live objects and server locks. One count per module, not per process.
class ModuleLock {
public:
    static void Add() noexcept { s_count.fetch_add(1, std::memory_order_relaxed); }
    static void Release() noexcept { s_count.fetch_sub(1, std::memory_order_acq_rel); }
    static LONG Count() noexcept { return s_count.load(std::memory_order_acquire); }

private:
    inline static std::atomic<LONG> s_count{0};
};

/// Threading model of an object whose reference count may change on any thread.
struct CComMultiThreadModel {
    using Counter = std::atomic<ULONG>;
};

/// Holds an object's reference count.
template <class ThreadModel>
class CComObjectRootEx {
public:
    CComObjectRootEx() = default;
    CComObjectRootEx(const CComObjectRootEx&) = delete;
    CComObjectRootEx& operator=(const CComObjectRootEx&) = delete;

protected:
    ~CComObjectRootEx() = default;
    ULONG InternalAddRef() noexcept { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG InternalRelease() noexcept { return m_references.fetch_sub(1, std::memory_order_acq_rel) - 1; }

private:
    typename ThreadModel::Counter m_references{0};
};

/// Names the class identifier under which a class is created.
template <class Class, const CLSID* classId>
class CComCoClass {
public:
    static constexpr const CLSID& GetObjectCLSID() noexcept { return *classId; }

protected:
    ~CComCoClass() = default;
};

/// Keeps the module loaded for as long as it exists.
class ModuleLockHolder {
public:
    ModuleLockHolder() noexcept { ModuleLock::Add(); }
    ~ModuleLockHolder() { ModuleLock::Release(); }
    ModuleLockHolder(const ModuleLockHolder&) = delete;
    ModuleLockHolder& operator=(const ModuleLockHolder&) = delete;
};

/// The object that is really instantiated: adds IUnknown to a class that has
/// `void* FindInterface(REFIID)`, and holds one module lock for as long as it lives.
template <class Base>
class CComObject final : private ModuleLockHolder, public Base {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!out)
            return E_POINTER;
        *out = this->FindInterface(iid);
        if (!*out)
            return E_NOINTERFACE;
        this->InternalAddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return this->InternalAddRef(); }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = this->InternalRelease();
        if (left == 0)
            delete this;
        return left;
    }

    /// Creates an object without any reference: E_POINTER for a null `out`, E_OUTOFMEMORY if it cannot be
    /// allocated, else S_OK.
    static HRESULT CreateInstance(CComObject** out) noexcept {
        if (!out)
            return E_POINTER;
        *out = nullptr;
        try {
            *out = new CComObject;
            return S_OK;
        } catch (...) {
            return E_OUTOFMEMORY;
        }
    }
};

} // namespace vant
