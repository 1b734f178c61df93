#pragma once

// Numbers as automation writes and reads them, under the invariant locale; docs/platform.md has the rules
// with examples. Internal to the platform library. Nothing here allocates or throws.

#include "platform/portable/types.h"

#include <string_view>

namespace vant {

/// The text of one number, held in place.
class NumberText {
public:
    operator std::wstring_view() const noexcept { return {m_characters, m_length}; }
    void Append(char character) noexcept { m_characters[m_length++] = static_cast<wchar_t>(character); }
    void Append(std::string_view characters) noexcept {
        for (const char character : characters)
            Append(character);
    }

private:
    // The longest texts are doubles such as -1.2345678901234567E-308, with 24 characters.
    wchar_t m_characters[32];
    std::size_t m_length = 0;
};

NumberText FormatNumber(std::int64_t value) noexcept;
NumberText FormatNumber(std::uint32_t value) noexcept;
NumberText FormatNumber(std::uint64_t value) noexcept;
/// The shortest decimal that reads back as the same float or double. A float keeps to plain digits while it
/// has at most 7 integer digits, a double while it has at most 15.
NumberText FormatNumber(float value) noexcept;
NumberText FormatNumber(double value) noexcept;

/// The double nearest to a text, or that double rounded to an integer before it is made: no digit of the text
/// is lost on the way. Both read up to the first null character, return DISP_E_TYPEMISMATCH for a text that
/// is not a number and DISP_E_OVERFLOW for one out of range, and then leave `out` unset.
HRESULT ParseDouble(std::wstring_view text, double& out) noexcept;
HRESULT ParseLong(std::wstring_view text, LONG& out) noexcept;

/// The integer nearest to a double, the even one of two that are equally near; DISP_E_OVERFLOW out of range
/// and for NaN.
HRESULT RoundToLong(double value, LONG& out) noexcept;

} // namespace vant
