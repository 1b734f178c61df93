#pragma once

#include "host/record/Value.h"
#include "platform/Variant.h"
#include "platform/system.h"

namespace vant::host {

/// The content of a VARIANT: null for VT_EMPTY and VT_NULL, the text "(object)" for VT_UNKNOWN and
/// VT_DISPATCH, a text such as "(VARIANT of type 7)" for any other type that Value does not know.
Value ToValue(const VARIANT& value);

/// VT_EMPTY, VT_BOOL, VT_I4, VT_R8 or VT_BSTR. Integers must lie in the range of a LONG.
CComVariant ToVariant(const Value& value);

} // namespace vant::host
