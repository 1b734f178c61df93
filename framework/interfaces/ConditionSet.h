#pragma once

#include "platform/ComPtr.h"
#include "platform/system.h"

namespace vant {

inline constexpr IID IID_IConditionSet = {
    0x0A6DE5AA, 0x944F, 0x4B75, {0xA9, 0x2C, 0xF9, 0x21, 0xFD, 0x03, 0x88, 0x9E}};

/// The conditions of a test, all of which must hold. The host keeps the object in a data-store entry. [host
/// thread, persistent thread]
struct IConditionSet : IUnknown {
    /// Slot 3. VARIANT_TRUE if every condition holds.
    virtual HRESULT STDMETHODCALLTYPE Evaluate(VARIANT_BOOL* allMet) = 0;
    /// Slot 4. The name of the data-store entry with the message of the condition that failed; the caller
    /// frees it.
    virtual HRESULT STDMETHODCALLTYPE GetFailureKey(BSTR* key) = 0;
};

template <>
struct IidOf<IConditionSet> {
    static constexpr const IID& value = IID_IConditionSet;
};

} // namespace vant
