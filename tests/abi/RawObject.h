#pragma once

#include "platform/system.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace vant::abi {

using RawFunction = void (*)();

class RawHost;

/// An interface as the binary contract sees it: memory that begins with a pointer to a table of functions. A
/// slot without a function is a trap: it notes its own number and returns E_NOTIMPL.
class RawObject {
public:
    static constexpr int slotCount = 32;

    /// An object that is nothing but traps, the first three slots included.
    RawObject();
    /// An object of `host` that counts its references in slots 1 and 2, and returns itself in slot 0 for
    /// IUnknown and `iid`, if there is one.
    RawObject(RawHost& host, const wchar_t* name, const IID* iid = nullptr);
    RawObject(const RawObject&) = delete;
    RawObject& operator=(const RawObject&) = delete;

    template <class Function>
    void Place(int slot, Function* function) {
        m_slots[static_cast<std::size_t>(slot)] = reinterpret_cast<RawFunction>(function);
    }
    /// Makes slot 0 return `other` for `iid`.
    void AlsoOffers(const IID& iid, RawObject& other);

    RawHost& Host() const noexcept { return *m_host; }
    const std::wstring& Name() const noexcept { return m_name; }
    int References() const noexcept { return m_references; }
    /// The numbers of the traps that were called, in order.
    const std::vector<int>& Trapped() const noexcept { return m_trapped; }
    /// The object as its callers know it. A reference is added, which the receiver owns.
    void* Give() noexcept;

private:
    template <int slot>
    static HRESULT STDMETHODCALLTYPE Trap(RawObject* self);
    template <int... slots>
    void SetTraps(std::integer_sequence<int, slots...>);
    static HRESULT STDMETHODCALLTYPE QueryInterface(RawObject* self, const IID* iid, void** out);
    static ULONG STDMETHODCALLTYPE AddRef(RawObject* self);
    static ULONG STDMETHODCALLTYPE Release(RawObject* self);

    const RawFunction* m_table = nullptr; // what callers read; it must stay the first member
    std::array<RawFunction, slotCount> m_slots{};
    RawHost* m_host = nullptr;
    std::wstring m_name;
    const IID* m_iid = nullptr;
    const IID* m_otherIid = nullptr;
    RawObject* m_other = nullptr;
    int m_references = 0;
    std::vector<int> m_trapped;
};

/// Calls the function in `slot` of an object of whatever make. Arguments must have exactly the documented
/// types.
template <class Result, class... Arguments>
Result CallSlot(void* object, int slot, Arguments... arguments) {
    using Function = Result(STDMETHODCALLTYPE*)(void*, Arguments...);
    const RawFunction* const table = *static_cast<const RawFunction* const*>(object);
    return reinterpret_cast<Function>(table[slot])(object, arguments...);
}

} // namespace vant::abi
