#pragma once

#include "framework/VantCommandBase.h"

namespace vant {

/// The command contract of one class. `Class` supplies `static constexpr PropertyRow properties[]` and
/// overrides ExecuteCommand; `classId` and `resourceId` are its row of the class table.
///
/// IVantCommand's slots are followed by the virtual destructor and ExecuteCommand, in this order. No host
/// calls them. (With compilers that follow the Itanium C++ ABI the destructor takes two slots.)
template <class Class, const CLSID* classId, UINT resourceId>
class IVantCommandImpl : public CVantCommandBase {
public:
    static constexpr UINT resource = resourceId;

    HRESULT STDMETHODCALLTYPE Execute() final { return ExecuteWith(Class::properties); }
    HRESULT STDMETHODCALLTYPE SetProperty(BSTR name, BSTR value) final {
        return SetPropertyIn(Class::properties, name, value);
    }
    HRESULT STDMETHODCALLTYPE get_IsValid(VARIANT_BOOL* isValid) final {
        return IsValidFor(Class::properties, isValid);
    }

protected:
    /// IUnknown and IVantCommand, both at the object's start; null for anything else.
    void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown || iid == IID_IVantCommand ? static_cast<IVantCommand*>(this) : nullptr;
    }
    bool IsDeclaredProperty(std::wstring_view name) const noexcept {
        return vant::IsDeclaredProperty(Class::properties, name);
    }
    bool ValidateProperties() const { return vant::ValidateProperties(Class::properties, m_properties); }
};

} // namespace vant
