#include "platform/portable/automation.h"
#include "platform/portable/number_text.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

namespace {

/// The types whose value stands in the VARIANT itself or is one string or interface pointer.
bool IsSimple(VARTYPE type) {
    return type <= VT_DECIMAL || (type >= VT_I1 && type <= VT_UINT);
}

/// The types that point at a value or an array of the caller's.
bool IsReference(VARTYPE type) {
    const VARTYPE pointedAt = type & static_cast<VARTYPE>(~(VT_BYREF | VT_ARRAY));
    return (type & VT_BYREF) != 0 && pointedAt > VT_NULL && IsSimple(pointedAt);
}

bool IsArray(VARTYPE type) {
    const VARTYPE element = type & static_cast<VARTYPE>(~VT_ARRAY);
    return (type & VT_ARRAY) != 0 && element > VT_NULL && IsSimple(element);
}

/// Makes a string VARIANT of a text.
HRESULT SetText(VARIANT& result, std::wstring_view text) {
    result.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!result.bstrVal)
        return E_OUTOFMEMORY;
    result.vt = VT_BSTR;
    return S_OK;
}

HRESULT SetLong(VARIANT& result, LONG number) {
    result.vt = VT_I4;
    result.lVal = number;
    return S_OK;
}

HRESULT SetDouble(VARIANT& result, double number) {
    result.vt = VT_R8;
    result.dblVal = number;
    return S_OK;
}

HRESULT SetBool(VARIANT& result, bool value) {
    result.vt = VT_BOOL;
    result.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT ToLong(double number, LONG& out) {
    return vant::RoundToLong(number, out);
}

// Unsigned numbers of 32 bits keep their bits and so may turn negative; wider ones are checked.
HRESULT ToLong(std::uint32_t number, LONG& out) {
    out = static_cast<LONG>(number);
    return S_OK;
}

HRESULT ToLong(std::int64_t number, LONG& out) {
    if (!std::in_range<LONG>(number))
        return DISP_E_OVERFLOW;
    out = static_cast<LONG>(number);
    return S_OK;
}

HRESULT ToLong(std::uint64_t number, LONG& out) {
    if (!std::in_range<LONG>(number))
        return DISP_E_OVERFLOW;
    out = static_cast<LONG>(number);
    return S_OK;
}

template <class Number>
HRESULT ConvertNumber(Number number, VARTYPE type, VARIANT& result) {
    switch (type) {
    case VT_I4: {
        LONG integer = 0;
        const HRESULT code = ToLong(number, integer);
        return SUCCEEDED(code) ? SetLong(result, integer) : code;
    }
    case VT_R8:
        return SetDouble(result, static_cast<double>(number));
    case VT_BOOL:
        return SetBool(result, number != Number{});
    default:
        return SetText(result, vant::FormatNumber(number));
    }
}

/// Letters of A to Z only: what the two words need.
bool EqualsIgnoringCase(std::wstring_view text, std::wstring_view lowerWord) {
    return std::equal(text.begin(), text.end(), lowerWord.begin(), lowerWord.end(), [](wchar_t a, wchar_t b) {
        return a == b || (a >= L'A' && a <= L'Z' && a - L'A' + L'a' == b);
    });
}

HRESULT ConvertText(std::wstring_view text, VARTYPE type, VARIANT& result) {
    if (type == VT_I4) {
        LONG integer = 0;
        const HRESULT code = vant::ParseLong(text, integer);
        return SUCCEEDED(code) ? SetLong(result, integer) : code;
    }
    if (type == VT_BOOL) {
        const std::wstring_view word = text.substr(0, text.find(L'\0'));
        if (EqualsIgnoringCase(word, L"true") || word == L"#TRUE#")
            return SetBool(result, true);
        if (EqualsIgnoringCase(word, L"false") || word == L"#FALSE#")
            return SetBool(result, false);
    }
    double number = 0.0;
    if (const HRESULT code = vant::ParseDouble(text, number); FAILED(code))
        return code;
    return type == VT_BOOL ? SetBool(result, number != 0.0) : SetDouble(result, number);
}

/// Converts to one of the four target types, which is not the source's own.
HRESULT Convert(const VARIANT& source, VARTYPE type, VARIANT& result) {
    switch (source.vt) {
    case VT_EMPTY:
        return type == VT_BSTR ? SetText(result, {}) : ConvertNumber(std::int64_t{0}, type, result);
    case VT_I1:
        // CHAR is unsigned on some processors; the value never is.
        return ConvertNumber(std::int64_t{static_cast<signed char>(source.cVal)}, type, result);
    case VT_UI1:
        return ConvertNumber(std::int64_t{source.bVal}, type, result);
    case VT_I2:
        return ConvertNumber(std::int64_t{source.iVal}, type, result);
    case VT_UI2:
        return ConvertNumber(std::int64_t{source.uiVal}, type, result);
    case VT_I4:
        return ConvertNumber(std::int64_t{source.lVal}, type, result);
    case VT_INT:
        return ConvertNumber(std::int64_t{source.intVal}, type, result);
    case VT_UI4:
        return ConvertNumber(source.ulVal, type, result);
    case VT_UINT:
        return ConvertNumber(source.uintVal, type, result);
    case VT_I8:
        return ConvertNumber(std::int64_t{source.llVal}, type, result);
    case VT_UI8:
        return ConvertNumber(std::uint64_t{source.ullVal}, type, result);
    case VT_R4:
        return ConvertNumber(source.fltVal, type, result);
    case VT_R8:
        return ConvertNumber(source.dblVal, type, result);
    case VT_BOOL:
        return ConvertNumber(std::int64_t{source.boolVal}, type, result);
    case VT_BSTR:
        return ConvertText({source.bstrVal ? source.bstrVal : L"", SysStringLen(source.bstrVal)}, type,
                           result);
    default:
        return IsSimple(source.vt) || IsReference(source.vt) || IsArray(source.vt) ? DISP_E_TYPEMISMATCH
                                                                                   : DISP_E_BADVARTYPE;
    }
}

/// Puts a new value in the place of the one that `destination` holds; frees it if that one cannot be
/// cleared.
HRESULT Replace(VARIANT& destination, VARIANT& value) {
    if (const HRESULT code = VariantClear(&destination); FAILED(code)) {
        VariantClear(&value);
        return code;
    }
    destination = value;
    return S_OK;
}

} // namespace

void VariantInit(VARIANT* value) {
    value->vt = VT_EMPTY;
}

HRESULT VariantClear(VARIANT* value) {
    if (!IsSimple(value->vt) && !IsReference(value->vt))
        return DISP_E_BADVARTYPE;
    // Empty before anything is released: the object may look at the VARIANT that held it.
    const VARIANT held = *value;
    value->vt = VT_EMPTY;
    if (held.vt == VT_BSTR)
        SysFreeString(held.bstrVal);
    else if ((held.vt == VT_UNKNOWN || held.vt == VT_DISPATCH) && held.punkVal)
        held.punkVal->Release();
    return S_OK;
}

HRESULT VariantCopy(VARIANT* destination, const VARIANT* source) {
    if (!IsSimple(source->vt) && !IsReference(source->vt))
        return DISP_E_BADVARTYPE;
    if (destination == source)
        return S_OK;
    VARIANT copy = *source;
    if (copy.vt == VT_BSTR) {
        copy.bstrVal = SysAllocStringByteLen(reinterpret_cast<const char*>(source->bstrVal),
                                             SysStringByteLen(source->bstrVal));
        if (!copy.bstrVal)
            return E_OUTOFMEMORY;
    } else if ((copy.vt == VT_UNKNOWN || copy.vt == VT_DISPATCH) && copy.punkVal) {
        copy.punkVal->AddRef();
    }
    return Replace(*destination, copy);
}

HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags, VARTYPE type) {
    return VariantChangeTypeEx(destination, source, LOCALE_USER_DEFAULT, flags, type);
}

HRESULT VariantChangeTypeEx(VARIANT* destination, const VARIANT* source, LCID /*lcid*/, USHORT flags,
                            VARTYPE type) {
    if (flags != 0)
        return E_INVALIDARG;
    if (type == source->vt)
        return VariantCopy(destination, source);
    if (type != VT_I4 && type != VT_R8 && type != VT_BSTR && type != VT_BOOL)
        return DISP_E_BADVARTYPE;
    VARIANT result{};
    if (const HRESULT code = Convert(*source, type, result); FAILED(code))
        return code;
    return Replace(*destination, result);
}
