#pragma once

#include "platform/Variant.h"

namespace vant {

/// The value as a 32-bit integer, or 0 if it cannot be converted to one.
inline LONG ToLongOrZero(CComVariant value, LCID locale) noexcept {
    return SUCCEEDED(value.ChangeType(VT_I4, locale)) ? value.Get().lVal : 0;
}

} // namespace vant
