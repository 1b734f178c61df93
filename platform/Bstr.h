#pragma once

#include "platform/ComException.h"
#include "platform/system.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace vant {

/// The length of a BSTR in bytes; 0 for a null one. It stands in the 32 bits before the text and is read
/// there: a call into another library would take too long for something that is needed so often.
inline std::uint32_t ByteLengthOf(BSTR text) noexcept {
    std::uint32_t byteLength = 0;
    if (text)
        std::memcpy(&byteLength, reinterpret_cast<const char*>(text) - sizeof(byteLength),
                    sizeof(byteLength));
    return byteLength;
}

/// The characters of a BSTR, embedded nulls included; empty for a null one.
inline std::wstring_view TextOf(BSTR text) noexcept {
    return text ? std::wstring_view(text, ByteLengthOf(text) / sizeof(OLECHAR)) : L"";
}

/// Owns a BSTR, or holds a null one, which equals the empty string. Copies throw CComException(E_OUTOFMEMORY)
/// if they cannot be allocated.
class CComBSTR {
public:
    CComBSTR() noexcept = default;
    explicit CComBSTR(std::wstring_view text) : m_text(Allocate(text)) {}
    CComBSTR(const CComBSTR& other) : m_text(CopyOf(other.m_text)) {}
    CComBSTR(CComBSTR&& other) noexcept : m_text(other.Detach()) {}
    ~CComBSTR() { SysFreeString(m_text); }

    CComBSTR& operator=(const CComBSTR& other) {
        Attach(CopyOf(other.m_text));
        return *this;
    }
    CComBSTR& operator=(CComBSTR&& other) noexcept {
        Attach(other.Detach());
        return *this;
    }

    /// A copy of a BSTR that stays the caller's; null stays null.
    static CComBSTR Copy(BSTR text) {
        CComBSTR result;
        result.m_text = CopyOf(text);
        return result;
    }

    BSTR Get() const noexcept { return m_text; }
    std::wstring_view Text() const noexcept { return TextOf(m_text); }

    /// For a callee to fill; only while empty.
    BSTR* operator&() noexcept {
        assert(!m_text);
        return &m_text;
    }
    /// Takes over a BSTR that the caller owns.
    void Attach(BSTR text) noexcept { SysFreeString(std::exchange(m_text, text)); }
    /// Hands the BSTR to the caller.
    [[nodiscard]] BSTR Detach() noexcept { return std::exchange(m_text, nullptr); }

private:
    static BSTR Allocate(std::wstring_view text) {
        if (text.size() > std::numeric_limits<UINT>::max())
            throw CComException(E_OUTOFMEMORY);
        return Allocated(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
    }
    /// Byte by byte: what a host keeps in a BSTR need not be whole characters.
    static BSTR CopyOf(BSTR text) {
        if (!text)
            return nullptr;
        return Allocated(SysAllocStringByteLen(reinterpret_cast<const char*>(text), ByteLengthOf(text)));
    }
    static BSTR Allocated(BSTR text) {
        if (!text)
            throw CComException(E_OUTOFMEMORY);
        return text;
    }

    BSTR m_text = nullptr;
};

/// The system's locale-aware string comparison: user default locale, no flags, so case-sensitive. One of the
/// CSTR_ values.
inline int CompareTexts(std::wstring_view left, std::wstring_view right) noexcept {
    return CompareStringW(LOCALE_USER_DEFAULT, 0, left.data(), static_cast<int>(left.size()), right.data(),
                          static_cast<int>(right.size()));
}

/// Whether two texts are equal for VarBstrCmp under the user's default locale, without flags: case-sensitive,
/// and null characters do not count. A text that is empty or begins with a null character equals none that
/// begins otherwise.
inline bool SameText(BSTR left, BSTR right) noexcept {
    return VarBstrCmp(left, right, LOCALE_USER_DEFAULT, 0) == VARCMP_EQ;
}

/// A literal laid out as a BSTR, so that it can be passed as one without an allocation. A callee must neither
/// change nor free it.
template <std::size_t size>
class CBstrLiteral {
public:
    constexpr CBstrLiteral(const wchar_t (&text)[size]) noexcept {
        for (std::size_t i = 0; i < size; ++i)
            m_text[i] = text[i];
    }
    BSTR Get() const noexcept { return const_cast<BSTR>(m_text); }

private:
    std::uint32_t m_byteLength = (size - 1) * sizeof(wchar_t);
    wchar_t m_text[size] = {};
};

/// The order of CompareTexts.
struct LocaleLess {
    bool operator()(const CComBSTR& left, const CComBSTR& right) const {
        return CompareTexts(left.Text(), right.Text()) == CSTR_LESS_THAN;
    }
};

} // namespace vant
