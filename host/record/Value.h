#pragma once

#include "platform/Variant.h"
#include "platform/system.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

namespace vant {

/// A value as procedures write it and the journal keeps it; texts in UTF-8.
using Value = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string>;

/// What a VARIANT holds: nothing for VT_EMPTY and VT_NULL, the text "(object)" for an object (VT_UNKNOWN), a
/// text such as "(VARIANT of type 7)" for another type that has no counterpart.
Value ToValue(const VARIANT& value);

/// VT_EMPTY, VT_BOOL, VT_I4, VT_R8 or VT_BSTR. Integers must lie in the range of a LONG.
CComVariant ToVariant(const Value& value);

} // namespace vant
