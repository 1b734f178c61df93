#pragma once

#include "platform/Bstr.h"
#include "platform/ComException.h"
#include "platform/system.h"

#include <cassert>
#include <string_view>

namespace vant {

/// The string that a VARIANT holds; null for one that holds anything else, however printable. The text stays
/// the VARIANT's.
inline BSTR StringMember(const VARIANT& value) noexcept {
    return value.vt == VT_BSTR ? value.bstrVal : nullptr;
}

/// The object that a VARIANT holds; null for one that holds anything else. No reference is added.
inline IUnknown* UnknownMember(const VARIANT& value) noexcept {
    return value.vt == VT_UNKNOWN || value.vt == VT_DISPATCH ? value.punkVal : nullptr;
}

/// English (United States): the locale of all conversions to and from 32-bit integers.
inline constexpr LCID lcidEnglishUS = 1033;

/// Owns a VARIANT and what it holds; VT_EMPTY at first.
class CComVariant {
public:
    CComVariant() noexcept { VariantInit(&m_value); }
    explicit CComVariant(double number) noexcept : CComVariant() {
        m_value.vt = VT_R8;
        m_value.dblVal = number;
    }
    explicit CComVariant(LONG number) noexcept : CComVariant() {
        m_value.vt = VT_I4;
        m_value.lVal = number;
    }
    /// Takes the string over as a VT_BSTR; a null one stays null.
    explicit CComVariant(CComBSTR&& text) noexcept : CComVariant() {
        m_value.vt = VT_BSTR;
        m_value.bstrVal = text.Detach();
    }
    /// Throws CComException with the code of a copy that fails.
    CComVariant(const CComVariant& other) : CComVariant() { CopyFrom(other.m_value); }
    CComVariant(CComVariant&& other) noexcept : m_value(other.m_value) { VariantInit(&other.m_value); }
    ~CComVariant() { VariantClear(&m_value); }
    CComVariant& operator=(const CComVariant& other) {
        CopyFrom(other.m_value);
        return *this;
    }
    CComVariant& operator=(CComVariant&& other) noexcept {
        const VARIANT taken = other.Detach();
        VariantClear(&m_value);
        m_value = taken;
        return *this;
    }

    /// A copy of a VARIANT that stays the caller's. Throws CComException with the code of a copy that fails.
    static CComVariant Copy(const VARIANT& value) {
        CComVariant result;
        result.CopyFrom(value);
        return result;
    }

    const VARIANT& Get() const noexcept { return m_value; }
    /// For a callee to fill; only while empty.
    VARIANT* operator&() noexcept {
        assert(m_value.vt == VT_EMPTY);
        return &m_value;
    }
    /// Converts in place by the platform's coercion under the user's default locale, no flags; unchanged on
    /// failure.
    HRESULT ChangeType(VARTYPE type) noexcept { return VariantChangeType(&m_value, &m_value, 0, type); }
    /// The same under a given locale.
    HRESULT ChangeType(VARTYPE type, LCID locale) noexcept {
        return VariantChangeTypeEx(&m_value, &m_value, locale, 0, type);
    }
    /// Frees what the value owns and makes it VT_EMPTY; returns whether the platform could.
    HRESULT Clear() noexcept { return VariantClear(&m_value); }
    /// Hands the value, and what it owns, to the caller.
    [[nodiscard]] VARIANT Detach() noexcept {
        const VARIANT value = m_value;
        VariantInit(&m_value);
        return value;
    }

private:
    void CopyFrom(const VARIANT& value) {
        // Some SDKs declare the source without const; it is only read.
        if (const HRESULT code = VariantCopy(&m_value, const_cast<VARIANT*>(&value)); FAILED(code))
            throw CComException(code);
    }

    VARIANT m_value;
};

} // namespace vant
