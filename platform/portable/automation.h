#pragma once

// Automation strings and values: BSTR and VARIANT with their Windows layout and rules, and the conversions
// between texts and numbers. docs/platform.md states the number and text rules.

#include "platform/portable/types.h"
#include "platform/portable/unknown.h"

/// A length-prefixed wide string: the length in bytes stands in the 32 bits before the text, a null follows
/// it. The text may hold embedded nulls. A null BSTR equals the empty string.
using BSTR = OLECHAR*;

using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

enum VARENUM : VARTYPE {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_DECIMAL = 14,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
};

union CY {
    std::int64_t int64;
};

struct IRecordInfo;
struct SAFEARRAY;

/// A typed value, laid out as on Windows: the type, three reserved words, then the value.
struct VARIANT {
    struct Record {
        PVOID pvRecord;
        IRecordInfo* pRecInfo;
    };

    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union {
        LONGLONG llVal;
        LONG lVal;
        BYTE bVal;
        SHORT iVal;
        FLOAT fltVal;
        DOUBLE dblVal;
        VARIANT_BOOL boolVal;
        SCODE scode;
        CY cyVal;
        DATE date;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        PVOID byref;
        CHAR cVal;
        USHORT uiVal;
        ULONG ulVal;
        ULONGLONG ullVal;
        INT intVal;
        UINT uintVal;
        Record record;
    };
};
using VARIANTARG = VARIANT;

inline constexpr HRESULT VARCMP_LT = 0;
inline constexpr HRESULT VARCMP_EQ = 1;
inline constexpr HRESULT VARCMP_GT = 2;
inline constexpr HRESULT VARCMP_NULL = 3;

inline constexpr int CSTR_LESS_THAN = 1;
inline constexpr int CSTR_EQUAL = 2;
inline constexpr int CSTR_GREATER_THAN = 3;

extern "C" {

/// Each of the three allocators returns null when memory runs out, and for a null text returns: null
/// (SysAllocString), or a string of that length whose content is unset (the other two).
VANT_PLATFORM_API BSTR SysAllocString(const OLECHAR* text);
VANT_PLATFORM_API BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
VANT_PLATFORM_API BSTR SysAllocStringByteLen(const char* bytes, UINT length);
VANT_PLATFORM_API void SysFreeString(BSTR text);
/// Length in characters and in bytes; 0 for a null string.
VANT_PLATFORM_API UINT SysStringLen(BSTR text);
VANT_PLATFORM_API UINT SysStringByteLen(BSTR text);

/// No pointer given to the VARIANT functions may be null.
VANT_PLATFORM_API void VariantInit(VARIANT* value);
/// Frees what the value owns (string, interface reference) and makes it VT_EMPTY; a VT_BYREF owns nothing.
/// Arrays, records and unknown types return DISP_E_BADVARTYPE and stay as they are.
VANT_PLATFORM_API HRESULT VariantClear(VARIANT* value);
/// Clears the destination and puts a copy there: a string of its own (an empty one for a null string), one
/// more reference to an object, everything else as it stands, a VT_BYREF's pointer too. Fails with
/// DISP_E_BADVARTYPE if either of the two is of a type that VariantClear refuses, or with E_OUTOFMEMORY;
/// the destination is unchanged then.
VANT_PLATFORM_API HRESULT VariantCopy(VARIANT* destination, const VARIANT* source);
/// Converts a value to VT_I4, VT_R8, VT_BSTR or VT_BOOL; to its own type it copies. docs/platform.md has the
/// rules. Fails with DISP_E_TYPEMISMATCH for a value that cannot be converted (null, error, currency, date,
/// decimal, object, VT_BYREF, array, or a text that is not a number), DISP_E_OVERFLOW for one out of the
/// target's range, DISP_E_BADVARTYPE for an unknown source type and for every other target type, E_INVALIDARG
/// for flags other than 0, E_OUTOFMEMORY. On failure the destination is unchanged. Destination and source may
/// be the same object. The locale is taken as 1033 with invariant digits whatever lcid says.
VANT_PLATFORM_API HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags,
                                            VARTYPE type);
VANT_PLATFORM_API HRESULT VariantChangeTypeEx(VARIANT* destination, const VARIANT* source, LCID lcid,
                                              USHORT flags, VARTYPE type);

/// Compares two strings, case-sensitively, character code by character code; a null string equals an empty
/// one. Returns VARCMP_LT, VARCMP_EQ or VARCMP_GT. flags must be 0.
VANT_PLATFORM_API HRESULT VarBstrCmp(BSTR left, BSTR right, LCID lcid, ULONG flags);
/// The same order over counted texts (a length of -1: null-terminated). Returns CSTR_LESS_THAN, CSTR_EQUAL or
/// CSTR_GREATER_THAN; 0 for a null text or flags other than 0.
VANT_PLATFORM_API int CompareStringW(LCID lcid, DWORD flags, LPCWSTR left, int leftLength, LPCWSTR right,
                                     int rightLength);
}
