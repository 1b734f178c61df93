#include "host/object/VariantValue.h"

#include "platform/Utf8.h"

#include <fmt/format.h>

namespace vant::host {

namespace {

struct VariantMaker {
    CComVariant operator()(std::nullptr_t) const { return {}; }
    CComVariant operator()(bool truth) const {
        CComVariant result;
        VARIANT* const filled = &result;
        filled->vt = VT_BOOL;
        filled->boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
        return result;
    }
    CComVariant operator()(std::int64_t number) const { return CComVariant(static_cast<LONG>(number)); }
    CComVariant operator()(double number) const { return CComVariant(number); }
    CComVariant operator()(const std::string& text) const { return CComVariant(CComBSTR(ToWide(text))); }
};

} // namespace

Value ToValue(const VARIANT& value) {
    switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
        return nullptr;
    case VT_BOOL:
        return value.boolVal != VARIANT_FALSE;
    case VT_I2:
        return std::int64_t{value.iVal};
    case VT_I4:
    case VT_INT:
        return std::int64_t{value.lVal};
    case VT_R4:
        return double{value.fltVal};
    case VT_R8:
        return value.dblVal;
    case VT_BSTR:
        return ToUtf8(TextOf(value.bstrVal));
    case VT_UNKNOWN:
    case VT_DISPATCH:
        return "(object)";
    default:
        return fmt::format("(VARIANT of type {})", value.vt);
    }
}

CComVariant ToVariant(const Value& value) {
    return std::visit(VariantMaker{}, value);
}

} // namespace vant::host
