#pragma once

#include "platform/system.h"

#include <cassert>
#include <utility>

namespace vant {

/// The interface identifier of an interface type; every interface header specialises it as
/// `template <> struct IidOf<IThing> { static constexpr const IID& value = IID_IThing; };`.
template <class Interface>
struct IidOf;

template <>
struct IidOf<IUnknown> {
    static constexpr const IID& value = IID_IUnknown;
};
template <>
struct IidOf<IDispatch> {
    static constexpr const IID& value = IID_IDispatch;
};
template <>
struct IidOf<IClassFactory> {
    static constexpr const IID& value = IID_IClassFactory;
};

/// Owns one reference to an interface, or none. As large as a plain pointer.
template <class Interface>
class CComPtr {
public:
    CComPtr() noexcept = default;
    /// Adds a reference of its own.
    explicit CComPtr(Interface* pointer) noexcept : m_pointer(pointer) {
        if (m_pointer)
            m_pointer->AddRef();
    }
    CComPtr(const CComPtr& other) noexcept : CComPtr(other.m_pointer) {}
    CComPtr(CComPtr&& other) noexcept : m_pointer(other.Detach()) {}
    ~CComPtr() { Release(); }

    CComPtr& operator=(const CComPtr& other) noexcept { return *this = other.m_pointer; }
    CComPtr& operator=(CComPtr&& other) noexcept {
        CComPtr(std::move(other)).Swap(*this);
        return *this;
    }
    /// Adds a reference to the new pointer and releases the one held before.
    CComPtr& operator=(Interface* pointer) noexcept {
        if (pointer != m_pointer)
            CComPtr(pointer).Swap(*this);
        return *this;
    }

    Interface* Get() const noexcept { return m_pointer; }
    Interface* operator->() const noexcept {
        assert(m_pointer);
        return m_pointer;
    }
    explicit operator bool() const noexcept { return m_pointer != nullptr; }

    /// For a callee to fill with a referenced pointer; only while empty.
    Interface** operator&() noexcept {
        assert(!m_pointer);
        return &m_pointer;
    }

    /// Takes over a reference that the caller owns.
    void Attach(Interface* pointer) noexcept {
        Release();
        m_pointer = pointer;
    }
    /// Hands the reference to the caller.
    [[nodiscard]] Interface* Detach() noexcept { return std::exchange(m_pointer, nullptr); }
    void Release() noexcept {
        if (Interface* const held = Detach())
            held->Release();
    }
    void Swap(CComPtr& other) noexcept { std::swap(m_pointer, other.m_pointer); }

    /// Asks the held object for another interface; E_POINTER while empty.
    template <class Other>
    HRESULT QueryInterface(Other** out) const {
        return m_pointer ? m_pointer->QueryInterface(IidOf<Other>::value, reinterpret_cast<void**>(out))
                         : E_POINTER;
    }

private:
    Interface* m_pointer = nullptr;
};

} // namespace vant
