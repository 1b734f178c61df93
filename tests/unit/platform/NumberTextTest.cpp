// The conversions between texts and numbers: one table that holds for both builds.
//
// If the two builds differ, the row says OnSystem(portable, windows). The Windows column of such a row was
// taken from Wine and documents the system at hand; another Windows may return something else there. They
// differ in four ways:
//
// More than 15 significant digits (7 from a VT_R4): Windows does not write them and is inexact in reading
// them. The portable build writes the shortest text that reads back the same and always reads the nearest
// double.
//
// Infinities and NaN.
//
// Slips of Wine's reader: values from 0.05 below 0.1 become the integer 1, a minus sign makes up for a
// missing closing parenthesis, a comma or a second sign may stand in an exponent, &H80000000 turns negative
// as a double.
//
// VT_CY, VT_DATE and a null VT_DISPATCH, which the portable build does not convert.

#include "platform/Bstr.h"
#include "platform/Variant.h"

#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <variant>
#include <vector>

namespace vant {
namespace {

constexpr LCID english = 1033;
constexpr LONG minLong = std::numeric_limits<LONG>::min();
constexpr LONG maxLong = std::numeric_limits<LONG>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct Failure {
    HRESULT code;
    bool operator==(const Failure&) const = default;
};
constexpr Failure mismatch{DISP_E_TYPEMISMATCH};
constexpr Failure overflow{DISP_E_OVERFLOW};

/// What a conversion returns: a failure, or the value in the target's type.
using Outcome = std::variant<Failure, LONG, double, bool, std::wstring>;

std::string Printable(std::wstring_view text) {
    std::string result = "\"";
    for (const wchar_t character : text) {
        if (character >= L' ' && character < 0x7F) {
            result += static_cast<char>(character);
        } else {
            char code[16];
            std::snprintf(code, sizeof(code), "\\u%04X", static_cast<unsigned>(character));
            result += code;
        }
    }
    return result + '"';
}

/// All 17 digits, so that neighbours differ.
std::string Printable(double number) {
    char digits[40];
    std::snprintf(digits, sizeof(digits), "%.17g", number);
    return digits;
}

std::string Printable(const Outcome& outcome) {
    if (const auto* failure = std::get_if<Failure>(&outcome))
        return "failure " + std::to_string(failure->code);
    if (const auto* integer = std::get_if<LONG>(&outcome))
        return "integer " + std::to_string(*integer);
    if (const auto* number = std::get_if<double>(&outcome))
        return "double " + Printable(*number);
    if (const auto* boolean = std::get_if<bool>(&outcome))
        return *boolean ? "true" : "false";
    return "text " + Printable(std::wstring_view(std::get<std::wstring>(outcome)));
}

/// Outcomes are equal also if both are NaN; zeros must agree in their sign.
bool Same(const Outcome& left, const Outcome& right) {
    const auto* a = std::get_if<double>(&left);
    const auto* b = std::get_if<double>(&right);
    if (!a || !b)
        return left == right;
    return std::signbit(*a) == std::signbit(*b) && (*a == *b || (std::isnan(*a) && std::isnan(*b)));
}

template <class Value>
Outcome OnSystem(Value portable, Outcome windows) {
    const bool onWindows = sizeof(wchar_t) == 2;
    return onWindows ? windows : Outcome(portable);
}

struct Row {
    std::string name;
    CComVariant source;
    Outcome integer;
    Outcome number;
    Outcome text;
    Outcome boolean;
};

/// A text source. Its text outcome is always the text itself.
Row Text(std::wstring_view text, Outcome integer, Outcome number, Outcome boolean) {
    return {Printable(text), CComVariant(CComBSTR(text)), integer, number, std::wstring(text), boolean};
}
/// A text that is a number of moderate size and no zero.
Row Number(std::wstring_view text, LONG integer, double number) {
    return Text(text, integer, number, true);
}
Row Zero(std::wstring_view text, double number = 0.0) {
    return Text(text, LONG{0}, number, false);
}
Row NoNumber(std::wstring_view text) {
    return Text(text, mismatch, mismatch, mismatch);
}
/// A text that only some slip of the Windows build reads.
Row NoNumberHere(std::wstring_view text, LONG integer, double number) {
    return Text(text, OnSystem(mismatch, integer), OnSystem(mismatch, number), OnSystem(mismatch, true));
}
/// A text that is a number but no 32-bit integer.
Row TooLong(std::wstring_view text, double number) {
    return Text(text, overflow, number, true);
}
Row TooLarge(std::wstring_view text) {
    return Text(text, overflow, overflow, overflow);
}

Row Double(double value, Outcome integer, Outcome text) {
    return {"double " + Printable(value), CComVariant(value), integer, value, text, value != 0.0};
}

template <class Assign>
Row Value(const char* name, VARTYPE type, Assign assign, Outcome integer, Outcome number, Outcome text,
          Outcome boolean) {
    CComVariant source;
    VARIANT* const value = &source;
    assign(*value);
    value->vt = type;
    return {name, source, integer, number, text, boolean};
}
Row Float(float value, Outcome integer, Outcome text) {
    return Value(
        "float", VT_R4, [&](VARIANT& v) { v.fltVal = value; }, integer, static_cast<double>(value), text,
        value != 0.0F);
}
/// A whole number of any type: `assign` puts it into its member.
template <class Assign>
Row Whole(const char* name, VARTYPE type, Assign assign, Outcome integer, double number,
          const wchar_t* text) {
    return Value(name, type, assign, integer, number, std::wstring(text), number != 0.0);
}

std::vector<Row> TextForms() {
    return {
        // Plain numbers.
        Zero(L"0"),
        Number(L"1", 1, 1.0),
        Number(L"007", 7, 7.0),
        Number(L"0000000000000000000000000000000000000001", 1, 1.0),
        Number(L"101000", 101000, 101000.0),
        Zero(L"0."),
        Zero(L".0"),
        Number(L"5.", 5, 5.0),
        Number(L"123.456", 123, 123.456),
        Number(L"0.1", 0, 0.1),
        Number(L"0.3", 0, 0.3),
        Number(L"2.67", 3, 2.67),
        NoNumber(L""),
        NoNumber(L" "),
        NoNumber(L"."),
        NoNumber(L"1.2.3"),
        NoNumber(L"1..2"),
        NoNumber(L"1.5."),
        NoNumber(L"abc"),
        NoNumber(L"1a"),
        NoNumber(L"x1"),
        NoNumber(L"1/2"),
        NoNumber(L"1:30"),
        NoNumber(L"2020-01-01"),
        NoNumber(L"0x10"),
        NoNumber(L"10%"),
        NoNumber(L"10#"),
        NoNumber(L"\uFF11"),
        NoNumber(L"\u0661"),
        // Blanks.
        Number(L"  1  ", 1, 1.0),
        Number(L"\t\n\v\f\r1\r\n", 1, 1.0),
        Number(L"\u00A01\u00A0", 1, 1.0),
        Number(L"\u30001", 1, 1.0),
        Number(L"\u20031", 1, 1.0),
        NoNumber(L"\u200B1"),
        NoNumber(L"\uFEFF1"),
        NoNumber(L"1 2"),
        NoNumber(L"1 000"),
        NoNumber(L"1 .5"),
        NoNumber(L"1. 5"),
        // Signs.
        Number(L"-1", -1, -1.0),
        Number(L"+1", 1, 1.0),
        Number(L"1-", -1, -1.0),
        Number(L"1+", 1, 1.0),
        Number(L" - 1", -1, -1.0),
        Number(L"1 - ", -1, -1.0),
        Number(L"+-1", -1, -1.0),
        Number(L"-+1", -1, -1.0),
        Number(L"+1-", -1, -1.0),
        Number(L"-1+", -1, -1.0),
        Number(L"1+-", -1, -1.0),
        Number(L"1--", -1, -1.0),
        NoNumber(L"--1"),
        NoNumber(L"++1"),
        NoNumber(L"-1-"),
        NoNumber(L"+1+"),
        NoNumber(L"-"),
        NoNumber(L"+"),
        Zero(L"-0", -0.0),
        Zero(L"-0.0", -0.0),
        Zero(L"(0)", -0.0),
        // Parentheses.
        Number(L"(1)", -1, -1.0),
        Number(L" ( 1 ) ", -1, -1.0),
        Number(L"(-1)", -1, -1.0),
        Number(L"(1-)", -1, -1.0),
        Number(L"-(1)", -1, -1.0),
        Number(L"(1)-", -1, -1.0),
        Number(L"(+1)", -1, -1.0),
        Number(L"(1))", -1, -1.0),
        NoNumber(L"(1"),
        NoNumber(L"1)"),
        NoNumber(L"()"),
        NoNumber(L"((1))"),
        NoNumber(L"1("),
        NoNumber(L"(1)1"),
        NoNumberHere(L"(-1", -1, -1.0),
        // Thousands commas.
        Number(L"1,000", 1000, 1000.0),
        Number(L"1,234,567", 1234567, 1234567.0),
        Number(L"1,234.5", 1234, 1234.5),
        Number(L"12,34", 1234, 1234.0),
        Number(L"1,,0", 10, 10.0),
        Number(L"1,", 1, 1.0),
        Number(L"1 ,", 1, 1.0),
        Number(L"1.5,5", 2, 1.55),
        Number(L".,5", 0, 0.5),
        NoNumber(L","),
        NoNumber(L",1"),
        NoNumber(L"-,1"),
        NoNumber(L"$,1"),
        NoNumber(L"1, 000"),
        NoNumber(L".,"),
        // Money.
        Number(L"$1", 1, 1.0),
        Number(L"$ 1", 1, 1.0),
        Number(L"1$", 1, 1.0),
        Number(L"-$1", -1, -1.0),
        Number(L"$-1", -1, -1.0),
        Number(L"($1,234.56)", -1235, -1234.56),
        Number(L"$(1)", -1, -1.0),
        Number(L"$1$", 1, 1.0),
        Number(L"1$$", 1, 1.0),
        Number(L"1e3 $", 1000, 1000.0),
        NoNumber(L"$"),
        NoNumber(L"$$1"),
        NoNumber(L"$1e3"),
        NoNumber(L"USD1"),
        NoNumber(L"\u20AC1"),
        // Exponents.
        Number(L"1e3", 1000, 1000.0),
        Number(L"1E+3", 1000, 1000.0),
        Number(L"1e-3", 0, 0.001),
        Number(L"1.e3", 1000, 1000.0),
        Number(L"1,000e2", 100000, 100000.0),
        Number(L"1e00000000000000003", 1000, 1000.0),
        Number(L"1e3-", -1000, -1000.0),
        Number(L"(1e3)", -1000, -1000.0),
        Number(L"-1E-05", 0, -0.00001),
        NoNumber(L"1e"),
        NoNumber(L"1e+"),
        NoNumber(L"e3"),
        NoNumber(L".e3"),
        NoNumber(L"1 e3"),
        NoNumber(L"1e 3"),
        NoNumber(L"1e3.5"),
        NoNumber(L"1e3e3"),
        NoNumber(L"1d3"),
        NoNumberHere(L"1e1,5", 150, 150.0),
        NoNumberHere(L"1e++1", 10, 10.0),
        // Hexadecimal and octal numbers: the bits of a 32-bit integer, no sign heeded.
        Number(L"&H10", 16, 16.0),
        Number(L"&hfF", 255, 255.0),
        Number(L" &H1e3 ", 0x1E3, 483.0),
        Number(L"&H8000", 32768, 32768.0),
        Number(L"&H7FFFFFFF", maxLong, 2147483647.0),
        Number(L"&H0000000000000000000001", 1, 1.0),
        Number(L"-&H1", 1, 1.0),
        Number(L"(&H1)", 1, 1.0),
        Number(L"&H1-", 1, 1.0),
        Zero(L"&H0"),
        Number(L"&O17", 15, 15.0),
        Number(L"&o17", 15, 15.0),
        Text(L"&HFFFFFFFF", LONG{-1}, overflow, overflow),
        Text(L"&H80000001", minLong + 1, overflow, overflow),
        Text(L"&H80000000", minLong, OnSystem(overflow, -2147483648.0), OnSystem(overflow, true)),
        Text(L"&O37777777777", LONG{-1}, overflow, overflow),
        TooLarge(L"&H100000000"),
        TooLarge(L"&H8000000000000000"),
        TooLarge(L"&O40000000000"),
        NoNumber(L"&"),
        NoNumber(L"&H"),
        NoNumber(L"&HG"),
        NoNumber(L"&H 1"),
        NoNumber(L"&H-1"),
        NoNumber(L"&H1.5"),
        NoNumber(L"&H1,"),
        NoNumber(L"&H1$"),
        NoNumber(L"$&H1"),
        NoNumber(L"&O8"),
        NoNumber(L"&17"),
        NoNumber(L"&B1"),
        // A text ends at its first null character.
        Number({L"1\0", 2}, 1, 1.0),
        Number({L"1\0002", 3}, 1, 1.0),
        Number({L"1\0abc", 5}, 1, 1.0),
        NoNumber({L"\0001", 2}),
        NoNumber({L"-\0001", 3}),
        // Words.
        Text(L"True", mismatch, mismatch, true),
        Text(L"fAlSe", mismatch, mismatch, false),
        Text(L"#TRUE#", mismatch, mismatch, true),
        Text(L"#FALSE#", mismatch, mismatch, false),
        Text({L"True\0x", 6}, mismatch, mismatch, true),
        NoNumber(L"#True#"),
        NoNumber(L" True"),
        NoNumber(L"True "),
        NoNumber(L"Tru"),
        NoNumber(L"Yes"),
        NoNumber(L"INF"),
        NoNumber(L"NAN"),
        NoNumber(L"1.#INF"),
    };
}

std::vector<Row> TextValues() {
    return {
        // Halves go to the even integer, and no digit is lost on the way.
        Number(L"0.5", 0, 0.5),
        Number(L".5", 0, 0.5),
        Number(L"1.5", 2, 1.5),
        Number(L"2.5", 2, 2.5),
        Number(L"3.5", 4, 3.5),
        Number(L"-0.5", 0, -0.5),
        Number(L"-1.5", -2, -1.5),
        Number(L"-2.5", -2, -2.5),
        Number(L"2.500", 2, 2.5),
        Number(L"25e-1", 2, 2.5),
        Number(L"2500001e-6", 3, 2.500001),
        Number(L"0.0000005e6", 0, 0.5),
        Number(L"0.4999999", 0, 0.4999999),
        Number(L"0.6", 1, 0.6),
        Text(L"2.50000000000000000000000000000000001", LONG{3}, OnSystem(2.5, 2.4999999999999996), true),
        Text(L"1.49999999999999999999", LONG{1}, 1.5, true),
        Text(L"0.06", OnSystem(LONG{0}, LONG{1}), 0.06, true),
        Text(L".06", OnSystem(LONG{0}, LONG{1}), 0.06, true),
        // The limits of a 32-bit integer.
        Number(L"2147483647", maxLong, 2147483647.0),
        Number(L"2147483647.4", maxLong, 2147483647.4),
        Number(L"2147483646.5", maxLong - 1, 2147483646.5),
        Number(L"2.147483647e9", maxLong, 2147483647.0),
        Number(L"21474836470e-1", maxLong, 2147483647.0),
        Number(L"-2147483648", minLong, -2147483648.0),
        Number(L"-2147483648.5", minLong, -2147483648.5),
        TooLong(L"2147483647.5", 2147483647.5),
        TooLong(L"2147483648", 2147483648.0),
        TooLong(L"-2147483648.6", -2147483648.6),
        TooLong(L"-2147483649", -2147483649.0),
        TooLong(L"4294967295", 4294967295.0),
        TooLong(L"4294967296", 4294967296.0),
        TooLong(L"1e10", 1e10),
        // The limits of a double.
        TooLong(L"123456789012345", 123456789012345.0),
        TooLong(L"9007199254740993", 9007199254740992.0),
        Text(L"1e308", overflow, OnSystem(1e308, 9.9999999999999981e307), true),
        Text(L"1.7976931348623157e308", overflow, OnSystem(1.7976931348623157e308, overflow),
             OnSystem(true, overflow)),
        Text(L"3.14159265358979323846", LONG{3}, OnSystem(3.141592653589793, 3.1415926535897927), true),
        Text(L"4.9e-324", LONG{0}, OnSystem(5e-324, 0.0), OnSystem(true, false)),
        Number(L"5e-324", 0, 5e-324),
        Zero(L"1e-400"),
        Zero(L"1e-99999999999"),
        Zero(L"0e99999"),
        Zero(L"-1e-400", -0.0),
        TooLarge(L"1.7976931348623159e308"),
        TooLarge(L"1e309"),
        TooLarge(L"-1e309"),
        TooLarge(L"1e400"),
        TooLarge(L"1e99999999999"),
    };
}

std::vector<Row> Doubles() {
    const auto text = [](const wchar_t* characters) { return std::wstring(characters); };
    return {
        Double(0.0, LONG{0}, text(L"0")),
        Double(-0.0, LONG{0}, text(L"0")),
        Double(1.0, LONG{1}, text(L"1")),
        Double(-1.0, LONG{-1}, text(L"-1")),
        Double(0.1, LONG{0}, text(L"0.1")),
        Double(0.3, LONG{0}, text(L"0.3")),
        Double(2.67, LONG{3}, text(L"2.67")),
        Double(-123.456, LONG{-123}, text(L"-123.456")),
        Double(12345678.9, LONG{12345679}, text(L"12345678.9")),
        // Rounding.
        Double(0.5, LONG{0}, text(L"0.5")),
        Double(1.5, LONG{2}, text(L"1.5")),
        Double(2.5, LONG{2}, text(L"2.5")),
        Double(3.5, LONG{4}, text(L"3.5")),
        Double(-0.5, LONG{0}, text(L"-0.5")),
        Double(-1.5, LONG{-2}, text(L"-1.5")),
        Double(-2.5, LONG{-2}, text(L"-2.5")),
        Double(2147483647.4, maxLong, text(L"2147483647.4")),
        Double(2147483646.5, maxLong - 1, text(L"2147483646.5")),
        Double(2147483647.5, overflow, text(L"2147483647.5")),
        Double(2147483648.0, overflow, text(L"2147483648")),
        Double(-2147483648.0, minLong, text(L"-2147483648")),
        Double(-2147483648.5, minLong, text(L"-2147483648.5")),
        Double(-2147483648.6, overflow, text(L"-2147483648.6")),
        Double(-2147483649.0, overflow, text(L"-2147483649")),
        // Layout: plain digits up to 15 of them before the point and down to 0.0001.
        Double(100000.0, LONG{100000}, text(L"100000")),
        Double(1e10, overflow, text(L"10000000000")),
        Double(1e14, overflow, text(L"100000000000000")),
        Double(123456789012345.0, overflow, text(L"123456789012345")),
        Double(999999999999999.0, overflow, text(L"999999999999999")),
        Double(99999999999999.9, overflow, text(L"99999999999999.9")),
        Double(1e15, overflow, text(L"1E+15")),
        Double(1.1e15, overflow, text(L"1.1E+15")),
        Double(1e21, overflow, text(L"1E+21")),
        Double(-1.5e21, overflow, text(L"-1.5E+21")),
        Double(1e100, overflow, text(L"1E+100")),
        Double(0.001, LONG{0}, text(L"0.001")),
        Double(0.0001, LONG{0}, text(L"0.0001")),
        Double(0.000123456789012345, LONG{0}, text(L"0.000123456789012345")),
        Double(0.00001, LONG{0}, text(L"1E-05")),
        Double(-0.00001, LONG{0}, text(L"-1E-05")),
        Double(9.9999e-5, LONG{0}, text(L"9.9999E-05")),
        Double(1.234567890123e-5, LONG{0}, text(L"1.234567890123E-05")),
        Double(1e-10, LONG{0}, text(L"1E-10")),
        Double(1e-100, LONG{0}, text(L"1E-100")),
        // More than 15 significant digits.
        Double(0.1 + 0.2, LONG{0}, OnSystem(text(L"0.30000000000000004"), text(L"0.3"))),
        Double(1.0 / 3.0, LONG{0}, OnSystem(text(L"0.3333333333333333"), text(L"0.333333333333333"))),
        Double(2.0 / 3.0, LONG{1}, OnSystem(text(L"0.6666666666666666"), text(L"0.666666666666667"))),
        Double(3.141592653589793, LONG{3}, OnSystem(text(L"3.141592653589793"), text(L"3.14159265358979"))),
        Double(999999999999999.9, overflow, OnSystem(text(L"999999999999999.9"), text(L"1E+15"))),
        Double(1234567890123456.0, overflow,
               OnSystem(text(L"1.234567890123456E+15"), text(L"1.23456789012346E+15"))),
        Double(1.7976931348623157e308, overflow,
               OnSystem(text(L"1.7976931348623157E+308"), text(L"1.79769313486232E+308"))),
        Double(-2.2250738585072014e-308, LONG{0},
               OnSystem(text(L"-2.2250738585072014E-308"), text(L"-2.2250738585072E-308"))),
        Double(5e-324, LONG{0}, OnSystem(text(L"5E-324"), text(L"4.94065645841247E-324"))),
        // No numbers at all.
        Double(infinity, overflow, text(L"INF")),
        Double(-infinity, overflow, text(L"-INF")),
        Double(std::copysign(nan, 1.0), OnSystem(overflow, maxLong), text(L"NAN")),
        Double(std::copysign(nan, -1.0), OnSystem(overflow, maxLong), text(L"-NAN(IND)")),
    };
}

std::vector<Row> OtherTypes() {
    const auto text = [](const wchar_t* characters) { return std::wstring(characters); };
    const auto nothing = [](VARIANT&) {};
    return {
        Value("empty", VT_EMPTY, nothing, LONG{0}, 0.0, text(L""), false),
        Value("null", VT_NULL, nothing, mismatch, mismatch, mismatch, mismatch),
        Value(
            "null string", VT_BSTR, [](VARIANT& v) { v.bstrVal = nullptr; }, mismatch, mismatch, text(L""),
            mismatch),
        Whole(
            "I1 min", VT_I1, [](VARIANT& v) { v.cVal = static_cast<CHAR>(-128); }, LONG{-128}, -128.0,
            L"-128"),
        Whole(
            "I1 max", VT_I1, [](VARIANT& v) { v.cVal = 127; }, LONG{127}, 127.0, L"127"),
        Whole(
            "UI1 max", VT_UI1, [](VARIANT& v) { v.bVal = 255; }, LONG{255}, 255.0, L"255"),
        Whole(
            "I2 min", VT_I2, [](VARIANT& v) { v.iVal = -32768; }, LONG{-32768}, -32768.0, L"-32768"),
        Whole(
            "UI2 max", VT_UI2, [](VARIANT& v) { v.uiVal = 65535; }, LONG{65535}, 65535.0, L"65535"),
        Whole(
            "I4 0", VT_I4, [](VARIANT& v) { v.lVal = 0; }, LONG{0}, 0.0, L"0"),
        Whole(
            "I4 min", VT_I4, [](VARIANT& v) { v.lVal = minLong; }, minLong, -2147483648.0, L"-2147483648"),
        Whole(
            "I4 max", VT_I4, [](VARIANT& v) { v.lVal = maxLong; }, maxLong, 2147483647.0, L"2147483647"),
        Whole(
            "INT", VT_INT, [](VARIANT& v) { v.intVal = -5; }, LONG{-5}, -5.0, L"-5"),
        // 32-bit unsigned numbers keep their bits.
        Whole(
            "UI4 2^31 - 1", VT_UI4, [](VARIANT& v) { v.ulVal = 2147483647U; }, maxLong, 2147483647.0,
            L"2147483647"),
        Whole(
            "UI4 2^31", VT_UI4, [](VARIANT& v) { v.ulVal = 2147483648U; }, minLong, 2147483648.0,
            L"2147483648"),
        Whole(
            "UI4 max", VT_UI4, [](VARIANT& v) { v.ulVal = 4294967295U; }, LONG{-1}, 4294967295.0,
            L"4294967295"),
        Whole(
            "UINT", VT_UINT, [](VARIANT& v) { v.uintVal = 7; }, LONG{7}, 7.0, L"7"),
        Whole(
            "UINT max", VT_UINT, [](VARIANT& v) { v.uintVal = 4294967295U; }, LONG{-1}, 4294967295.0,
            L"4294967295"),
        // 64-bit numbers are checked.
        Whole(
            "I8 0", VT_I8, [](VARIANT& v) { v.llVal = 0; }, LONG{0}, 0.0, L"0"),
        Whole(
            "I8 -2^31", VT_I8, [](VARIANT& v) { v.llVal = -2147483648LL; }, minLong, -2147483648.0,
            L"-2147483648"),
        Whole(
            "I8 2^31", VT_I8, [](VARIANT& v) { v.llVal = 2147483648LL; }, overflow, 2147483648.0,
            L"2147483648"),
        Whole(
            "I8 -2^31 - 1", VT_I8, [](VARIANT& v) { v.llVal = -2147483649LL; }, overflow, -2147483649.0,
            L"-2147483649"),
        Whole(
            "I8 2^32", VT_I8, [](VARIANT& v) { v.llVal = 4294967296LL; }, overflow, 4294967296.0,
            L"4294967296"),
        Whole(
            "I8 2^53 + 1", VT_I8, [](VARIANT& v) { v.llVal = 9007199254740993LL; }, overflow,
            9007199254740992.0, L"9007199254740993"),
        Whole(
            "I8 min", VT_I8, [](VARIANT& v) { v.llVal = std::numeric_limits<LONGLONG>::min(); }, overflow,
            -9223372036854775808.0, L"-9223372036854775808"),
        Whole(
            "UI8 2^31 - 1", VT_UI8, [](VARIANT& v) { v.ullVal = 2147483647ULL; }, maxLong, 2147483647.0,
            L"2147483647"),
        Whole(
            "UI8 2^31", VT_UI8, [](VARIANT& v) { v.ullVal = 2147483648ULL; }, overflow, 2147483648.0,
            L"2147483648"),
        Whole(
            "UI8 max", VT_UI8, [](VARIANT& v) { v.ullVal = std::numeric_limits<ULONGLONG>::max(); }, overflow,
            18446744073709551616.0, L"18446744073709551615"),
        // Single precision: 7 digits; a double has 15.
        Float(0.0F, LONG{0}, text(L"0")),
        Float(0.1F, LONG{0}, text(L"0.1")),
        Float(2.5F, LONG{2}, text(L"2.5")),
        Float(-123.456F, LONG{-123}, text(L"-123.456")),
        Float(1234567.0F, LONG{1234567}, text(L"1234567")),
        Float(1e7F, LONG{10000000}, text(L"1E+07")),
        Float(1e-4F, LONG{0}, text(L"0.0001")),
        Float(1e-5F, LONG{0}, text(L"1E-05")),
        Float(2147483648.0F, overflow, OnSystem(text(L"2.1474836E+09"), text(L"2.147484E+09"))),
        Float(-2147483648.0F, minLong, OnSystem(text(L"-2.1474836E+09"), text(L"-2.147484E+09"))),
        Float(3.1415927F, LONG{3}, OnSystem(text(L"3.1415927"), text(L"3.141593"))),
        Float(std::numeric_limits<float>::infinity(), overflow, text(L"INF")),
        // A truth value is a number; only VARIANT_TRUE is -1.
        Value(
            "true", VT_BOOL, [](VARIANT& v) { v.boolVal = VARIANT_TRUE; }, LONG{-1}, -1.0, text(L"-1"), true),
        Value(
            "false", VT_BOOL, [](VARIANT& v) { v.boolVal = VARIANT_FALSE; }, LONG{0}, 0.0, text(L"0"), false),
        Value(
            "another truth", VT_BOOL, [](VARIANT& v) { v.boolVal = 5; }, LONG{5}, 5.0, text(L"5"), true),
        // What is not a number.
        Value(
            "error", VT_ERROR, [](VARIANT& v) { v.scode = E_FAIL; }, mismatch, mismatch, mismatch, mismatch),
        Value(
            "object", VT_UNKNOWN, [](VARIANT& v) { v.punkVal = nullptr; }, mismatch, mismatch, mismatch,
            mismatch),
        Value(
            "no dispatch object", VT_DISPATCH, [](VARIANT& v) { v.pdispVal = nullptr; },
            OnSystem(mismatch, Failure{DISP_E_BADVARTYPE}), OnSystem(mismatch, Failure{DISP_E_BADVARTYPE}),
            OnSystem(mismatch, Failure{DISP_E_BADVARTYPE}), OnSystem(mismatch, Failure{DISP_E_BADVARTYPE})),
        Value(
            "currency", VT_CY, [](VARIANT& v) { v.cyVal.int64 = 25000; }, OnSystem(mismatch, LONG{2}),
            OnSystem(mismatch, 2.5), OnSystem(mismatch, text(L"2.5")), OnSystem(mismatch, true)),
        Value(
            "date", VT_DATE, [](VARIANT& v) { v.date = 1.5; }, OnSystem(mismatch, LONG{2}),
            OnSystem(mismatch, 1.5), OnSystem(mismatch, text(L"12/31/1899 12:00:00 PM")),
            OnSystem(mismatch, true)),
    };
}

const std::vector<Row>& Table() {
    static const std::vector<Row> table = [] {
        std::vector<Row> rows;
        for (const auto& part : {TextForms(), TextValues(), Doubles(), OtherTypes()})
            rows.insert(rows.end(), part.begin(), part.end());
        return rows;
    }();
    return table;
}

Outcome OutcomeOf(HRESULT code, const VARIANT& value, VARTYPE type) {
    if (FAILED(code))
        return Failure{code};
    EXPECT_EQ(type, value.vt);
    switch (type) {
    case VT_I4:
        return value.lVal;
    case VT_R8:
        return value.dblVal;
    case VT_BOOL:
        return value.boolVal != VARIANT_FALSE;
    default:
        return std::wstring(TextOf(value.bstrVal));
    }
}

Outcome Convert(const CComVariant& source, VARTYPE type) {
    VARIANT view = source.Get();
    CComVariant result;
    const HRESULT code = VariantChangeTypeEx(&result, &view, english, 0, type);
    return OutcomeOf(code, result.Get(), type);
}

Outcome ConvertInPlace(CComVariant value, VARTYPE type) {
    VARIANT taken = value.Detach();
    const HRESULT code = VariantChangeTypeEx(&taken, &taken, english, 0, type);
    const Outcome outcome = OutcomeOf(code, taken, type);
    VariantClear(&taken);
    return outcome;
}

void ExpectSame(const Outcome& expected, const Outcome& actual) {
    EXPECT_TRUE(Same(expected, actual)) << Printable(expected) << " expected, not " << Printable(actual);
}

void CheckColumn(VARTYPE type, Outcome Row::*expected) {
    for (const Row& row : Table()) {
        SCOPED_TRACE(row.name);
        ExpectSame(row.*expected, Convert(row.source, type));
        ExpectSame(row.*expected, ConvertInPlace(row.source, type));
    }
}

TEST(NumberText, EveryRowToLong_GivesTheTablesInteger) {
    CheckColumn(VT_I4, &Row::integer);
}

TEST(NumberText, EveryRowToDouble_GivesTheTablesNumber) {
    CheckColumn(VT_R8, &Row::number);
}

TEST(NumberText, EveryRowToText_GivesTheTablesText) {
    CheckColumn(VT_BSTR, &Row::text);
}

TEST(NumberText, EveryRowToTruth_GivesTheTablesTruth) {
    CheckColumn(VT_BOOL, &Row::boolean);
}

TEST(NumberText, FailedConversion_LeavesTheDestinationAsItWas) {
    for (const Row& row : Table()) {
        if (!std::holds_alternative<Failure>(row.integer))
            continue;
        SCOPED_TRACE(row.name);
        VARIANT source = row.source.Get();
        VARIANT destination = CComVariant(CComBSTR(L"kept")).Detach();
        EXPECT_TRUE(FAILED(VariantChangeTypeEx(&destination, &source, english, 0, VT_I4)));
        EXPECT_EQ(L"kept", TextOf(StringMember(destination)));
        VariantClear(&destination);
    }
}

} // namespace
} // namespace vant
