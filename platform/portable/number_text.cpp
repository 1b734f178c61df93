#include "platform/portable/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace vant {
namespace {

NumberText Spell(std::string_view characters) noexcept {
    NumberText text;
    text.Append(characters);
    return text;
}

template <class Integer>
NumberText FormatInteger(Integer value) noexcept {
    char digits[24];
    const char* const end = std::to_chars(digits, std::end(digits), value).ptr;
    return Spell({digits, end});
}

/// Lays the digits d1 d2 ... of d1.d2... x 10^exponent out without an exponent.
void AppendPlain(NumberText& text, std::string_view digits, int exponent) noexcept {
    if (exponent < 0) {
        text.Append('0');
        text.Append('.');
        for (int zero = exponent + 1; zero < 0; ++zero)
            text.Append('0');
        text.Append(digits);
        return;
    }
    const std::size_t integerDigits = static_cast<std::size_t>(exponent) + 1;
    for (std::size_t place = 0; place < std::max(integerDigits, digits.size()); ++place) {
        if (place == integerDigits)
            text.Append('.');
        text.Append(place < digits.size() ? digits[place] : '0');
    }
}

void AppendScientific(NumberText& text, std::string_view digits, int exponent) noexcept {
    AppendPlain(text, digits, 0);
    text.Append('E');
    text.Append(exponent < 0 ? '-' : '+');
    const int size = std::abs(exponent);
    if (size >= 100)
        text.Append(static_cast<char>('0' + size / 100));
    text.Append(static_cast<char>('0' + size / 10 % 10));
    text.Append(static_cast<char>('0' + size % 10));
}

template <class Float>
NumberText FormatFloat(Float value) noexcept {
    if (std::isnan(value))
        return Spell(std::signbit(value) ? "-NAN(IND)" : "NAN");
    if (std::isinf(value))
        return Spell(value < 0 ? "-INF" : "INF");
    if (value == 0)
        return Spell("0");
    // "d.ddde-XX": the digits and the exponent are taken from it.
    char buffer[32];
    const char* const end =
        std::to_chars(buffer, std::end(buffer), std::abs(value), std::chars_format::scientific).ptr;
    const std::string_view scientific(buffer, end);
    const char* const mark = scientific.begin() + scientific.find('e');
    char digits[20];
    const char* const digitsEnd = std::remove_copy(scientific.begin(), mark, digits, '.');
    int exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, exponent);

    constexpr int plainDigits = std::is_same_v<Float, float> ? 7 : 15;
    const std::string_view significant(digits, digitsEnd);
    NumberText text;
    if (value < 0)
        text.Append('-');
    if (exponent >= -4 && exponent < plainDigits)
        AppendPlain(text, significant, exponent);
    else
        AppendScientific(text, significant, exponent);
    return text;
}

bool IsBlank(wchar_t character) noexcept {
    constexpr std::wstring_view blanks =
        L" \t\n\v\f\r\x85\xA0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006"
        L"\u2007\u2008\u2009\u200A\u2028\u2029\u202F\u205F\u3000";
    return blanks.find(character) != std::wstring_view::npos;
}

/// The value of a digit up to F; 16 for any other character.
unsigned DigitValue(wchar_t character) noexcept {
    constexpr std::wstring_view lower = L"0123456789abcdef";
    constexpr std::wstring_view upper = L"0123456789ABCDEF";
    const std::size_t value = std::min(lower.find(character), upper.find(character));
    return value == std::wstring_view::npos ? 16U : static_cast<unsigned>(value);
}

/// A number text taken apart: +-0.d1d2d3... x 10^point, or the bits of a hexadecimal or octal one.
struct ParsedNumber {
    // No double's rounding depends on more digits than these; of what follows it only matters whether
    // anything but zeros does, which the last digit kept then shows.
    static constexpr std::size_t maxDigits = 800;

    bool negative = false;
    std::array<char, maxDigits> digits;
    std::size_t digitCount = 0;
    std::int64_t point = 0;

    bool isBits = false;
    bool bitsOverflow = false;
    std::uint32_t bits = 0;

    void AddDigit(char digit) noexcept {
        if (digitCount < maxDigits)
            digits[digitCount++] = digit;
        else if (digit != '0' && digits.back() == '0')
            digits.back() = '1';
    }
};

/// Reads a number as automation writes them for English (United States): signs, a parenthesis, a currency
/// sign and blanks may stand in any order before the digits and after them.
class NumberReader {
public:
    explicit NumberReader(std::wstring_view text) noexcept : m_rest(text.substr(0, text.find(L'\0'))) {}

    /// False for a text that is not a number.
    bool Read(ParsedNumber& number) noexcept {
        ReadLead();
        if (Next() == L'&' && !m_currency) {
            if (!ReadBits(number))
                return false;
        } else if (!ReadMantissa(number) || !ReadExponent(number)) {
            return false;
        }
        ReadTail(number.isBits);
        number.negative = m_minus || m_open;
        return m_rest.empty() && m_open == m_closed;
    }

private:
    wchar_t Next() const noexcept { return m_rest.empty() ? L'\0' : m_rest.front(); }
    void Skip() noexcept { m_rest.remove_prefix(1); }
    bool NextIsDigit() const noexcept { return DigitValue(Next()) < 10; }

    /// Takes `mark` if it comes next and `seen` allows it; sets `seen`.
    bool TakeOnce(wchar_t mark, bool& seen) noexcept {
        if (Next() != mark || seen)
            return false;
        Skip();
        return seen = true;
    }
    bool TakeBlank() noexcept {
        if (!IsBlank(Next()))
            return false;
        Skip();
        return true;
    }

    void ReadLead() noexcept {
        while (TakeBlank() || TakeOnce(L'+', m_plus) || TakeOnce(L'-', m_minus) || TakeOnce(L'(', m_open) ||
               TakeOnce(L'$', m_currency)) {
        }
    }

    /// "&H" and hexadecimal digits, or "&O" and octal ones, without a sign: the bits of a 32-bit integer.
    bool ReadBits(ParsedNumber& number) noexcept {
        Skip();
        const wchar_t kind = Next();
        const unsigned base = kind == L'H' || kind == L'h' ? 16 : (kind == L'O' || kind == L'o' ? 8 : 0);
        if (base == 0)
            return false;
        Skip();
        if (DigitValue(Next()) >= base)
            return false;
        number.isBits = true;
        std::uint64_t bits = 0;
        for (; DigitValue(Next()) < base; Skip()) {
            bits = bits * base + DigitValue(Next());
            if (bits > std::numeric_limits<std::uint32_t>::max()) {
                number.bitsOverflow = true;
                bits = 0;
            }
        }
        number.bits = static_cast<std::uint32_t>(bits);
        return true;
    }

    /// Digits with at most one decimal point; commas may stand anywhere but at the beginning.
    bool ReadMantissa(ParsedNumber& number) noexcept {
        bool anyDigit = false;
        bool pointSeen = false;
        for (bool first = true;; first = false) {
            if (NextIsDigit()) {
                const auto digit = static_cast<char>('0' + DigitValue(Next()));
                Skip();
                anyDigit = true;
                const bool leadingZero = digit == '0' && number.digitCount == 0;
                if (!leadingZero)
                    number.AddDigit(digit);
                number.point += (leadingZero ? 0 : 1) - (pointSeen ? 1 : 0);
            } else if (!(TakeOnce(L'.', pointSeen) || (!first && TakeComma()))) {
                return anyDigit;
            }
        }
    }
    bool TakeComma() noexcept {
        if (Next() != L',')
            return false;
        Skip();
        return true;
    }

    /// An exponent, if there is one; an amount of money that begins with its sign has none.
    bool ReadExponent(ParsedNumber& number) noexcept {
        if (m_currency || (Next() != L'e' && Next() != L'E'))
            return true;
        Skip();
        const bool negative = Next() == L'-';
        if (negative || Next() == L'+')
            Skip();
        if (!NextIsDigit())
            return false;
        // Far beyond every double already, and far from overflowing.
        constexpr std::int64_t limit = 1'000'000'000'000;
        std::int64_t exponent = 0;
        for (; NextIsDigit(); Skip())
            exponent = std::min<std::int64_t>(exponent * 10 + DigitValue(Next()), limit);
        number.point += negative ? -exponent : exponent;
        return true;
    }

    /// After the digits a mark may come again and again; only a sign of the kind that stood before them may
    /// not.
    void ReadTail(bool isBits) noexcept {
        const bool plusBefore = m_plus;
        const bool minusBefore = m_minus;
        for (;; Skip()) {
            const wchar_t next = Next();
            if (next == L'-' && !minusBefore)
                m_minus = true;
            else if (next == L')' && m_open)
                m_closed = true;
            else if (!IsBlank(next) && (next != L'+' || plusBefore) &&
                     ((next != L'$' && next != L',') || isBits))
                return;
        }
    }

    std::wstring_view m_rest;
    bool m_plus = false;
    bool m_minus = false;
    bool m_open = false;
    bool m_closed = false;
    bool m_currency = false;
};

/// The integer nearest to a decimal number, the even one of two that are equally near.
HRESULT RoundToLong(const ParsedNumber& number, LONG& out) noexcept {
    constexpr std::int64_t maxIntegerDigits = 10;
    if (number.digitCount == 0 || number.point < 0) {
        out = 0;
        return S_OK;
    }
    if (number.point > maxIntegerDigits)
        return DISP_E_OVERFLOW;
    const auto integerDigits = static_cast<std::size_t>(number.point);
    std::int64_t whole = 0;
    for (std::size_t place = 0; place < integerDigits; ++place)
        whole = whole * 10 + (place < number.digitCount ? number.digits[place] - '0' : 0);

    const std::string_view digits(number.digits.data(), number.digitCount);
    const std::string_view fraction = digits.substr(std::min(integerDigits, digits.size()));
    if (!fraction.empty()) {
        const bool exactlyHalf = fraction[0] == '5' && fraction.find_first_not_of('0', 1) == fraction.npos;
        if (exactlyHalf ? whole % 2 != 0 : fraction[0] >= '5')
            ++whole;
    }
    if (number.negative)
        whole = -whole;
    if (whole < std::numeric_limits<LONG>::min() || whole > std::numeric_limits<LONG>::max())
        return DISP_E_OVERFLOW;
    out = static_cast<LONG>(whole);
    return S_OK;
}

} // namespace

NumberText FormatNumber(std::int64_t value) noexcept {
    return FormatInteger(value);
}

NumberText FormatNumber(std::uint32_t value) noexcept {
    return FormatInteger(value);
}

NumberText FormatNumber(std::uint64_t value) noexcept {
    return FormatInteger(value);
}

NumberText FormatNumber(float value) noexcept {
    return FormatFloat(value);
}

NumberText FormatNumber(double value) noexcept {
    return FormatFloat(value);
}

HRESULT ParseDouble(std::wstring_view text, double& out) noexcept {
    ParsedNumber number;
    if (!NumberReader(text).Read(number))
        return DISP_E_TYPEMISMATCH;
    if (number.isBits) {
        // A double takes 31 bits: what fills the 32nd would be negative as an integer.
        if (number.bitsOverflow || number.bits > static_cast<std::uint32_t>(std::numeric_limits<LONG>::max()))
            return DISP_E_OVERFLOW;
        out = number.bits;
        return S_OK;
    }
    double size = 0.0;
    // Any other position of the point is out of every double's range; an underflow is zero.
    if (number.digitCount > 0 && number.point > -400) {
        if (number.point > 400)
            return DISP_E_OVERFLOW;
        std::array<char, ParsedNumber::maxDigits + 8> decimal;
        char* end = std::copy_n(number.digits.begin(), number.digitCount, decimal.data());
        *end++ = 'e';
        end = std::to_chars(end, decimal.data() + decimal.size(),
                            number.point - static_cast<std::int64_t>(number.digitCount))
                  .ptr;
        if (std::from_chars(decimal.data(), end, size).ec != std::errc{}) {
            if (number.point > 0)
                return DISP_E_OVERFLOW;
            size = 0.0;
        }
    }
    out = number.negative ? -size : size;
    return S_OK;
}

HRESULT ParseLong(std::wstring_view text, LONG& out) noexcept {
    ParsedNumber number;
    if (!NumberReader(text).Read(number))
        return DISP_E_TYPEMISMATCH;
    if (!number.isBits)
        return RoundToLong(number, out);
    if (number.bitsOverflow)
        return DISP_E_OVERFLOW;
    out = static_cast<LONG>(number.bits);
    return S_OK;
}

HRESULT RoundToLong(double value, LONG& out) noexcept {
    const double below = std::floor(value);
    const double rest = value - below;
    const bool up = rest > 0.5 || (rest == 0.5 && std::fmod(below, 2.0) != 0.0);
    const double nearest = up ? below + 1.0 : below;
    if (!(nearest >= std::numeric_limits<LONG>::min() && nearest <= std::numeric_limits<LONG>::max()))
        return DISP_E_OVERFLOW;
    out = static_cast<LONG>(nearest);
    return S_OK;
}

} // namespace vant
