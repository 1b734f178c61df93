#include "commands/StringFormatter.h"

#include "ecm/Conversion.h"
#include "ecm/ResultPolicy.h"
#include "framework/ReferenceExpansion.h"

#include <cfloat>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace vant {

namespace {

constexpr CBstrLiteral substitute(L"substitute");
constexpr CBstrLiteral round(L"round");
constexpr CBstrLiteral numToHms(L"numToHMS");

double ToDouble(CComBSTR text) {
    CComVariant number(std::move(text));
    return SUCCEEDED(number.ChangeType(VT_R8)) ? number.Get().dblVal : 0.0;
}

/// Towards zero; the smallest integer for everything that does not fit.
LONG Truncate(double number) {
    constexpr LONG smallest = std::numeric_limits<LONG>::min();
    const double whole = std::trunc(number);
    const bool fits = whole >= smallest && whole <= std::numeric_limits<LONG>::max();
    return fits ? static_cast<LONG>(whole) : smallest;
}

// As a double, 0.03 times 100 is 3; with more digits it is less, and would be cut to 2.
static_assert(FLT_EVAL_METHOD == 0);

/// Cuts further decimals off; on purpose it does not round to the nearest.
CComBSTR Round(const CComBSTR& text, LONG decimals) {
    // In extended precision: some runtimes are off by a digit for small powers in double.
    const auto scale = static_cast<double>(std::pow(10.0L, decimals));
    CCheckedResult result;
    CComVariant rounded(Truncate(ToDouble(text) * scale) / scale);
    result = rounded.ChangeType(VT_BSTR); // fails only without memory
    return CComBSTR::Copy(StringMember(rounded.Get()));
}

/// Negative numbers are padded like those of one digit: -1 yields 0-1.
std::wstring FormatTwoDigits(LONG value) {
    return (value <= 9 ? L"0" : L"") + std::to_wstring(value);
}

CComBSTR NumToHms(const CComBSTR& text) {
    const LONG total = ToLongOrZero(CComVariant(CComBSTR(text)), lcidEnglishUS);
    const LONG rest = total % 3600;
    return CComBSTR(FormatTwoDigits(total / 3600) + L":" + FormatTwoDigits(rest / 60) + L":" +
                    FormatTwoDigits(rest % 60));
}

} // namespace

void CStringFormatter::ExecuteCommand() {
    try {
        Format();
    } catch (...) {
        // Ends quietly; the target entry keeps its value.
    }
}

void CStringFormatter::Format() const {
    CCheckedResult result;
    const CComBSTR operation = GetProperty(L"operation");
    const CComBSTR source = ReadEntryAsText(GetProperty(L"dsSourceString"));
    const CComVariant output(Apply(operation.Get(), source));
    result = SetDataStoreValue(GetProperty(L"dsTargetString"), output);
}

/// Any other operation yields a null text, which is not a failure.
CComBSTR CStringFormatter::Apply(BSTR operation, const CComBSTR& text) const {
    if (SameText(operation, substitute.Get()))
        return Substitute(text);
    if (SameText(operation, round.Get()))
        return Round(text, ToLongOrZero(CComVariant(GetProperty(L"roundLength")), lcidEnglishUS));
    if (SameText(operation, numToHms.Get()))
        return NumToHms(text);
    return CComBSTR();
}

CComBSTR CStringFormatter::Substitute(const CComBSTR& text) const {
    const CComBSTR withParameters = ExpandParameterReferences(text);
    return CComBSTR(ExpandReferences(withParameters.Text(), L"$d(", [this](std::wstring_view name) {
        return ReadEntryAsText(CComBSTR(name));
    }));
}

CComBSTR CStringFormatter::ReadEntryAsText(const CComBSTR& entry) const {
    CCheckedResult result;
    CComVariant value;
    result = GetDataStoreValue(entry, value);
    // A value that has no text counts as empty, but running out of memory is a failure.
    if (const HRESULT converted = value.ChangeType(VT_BSTR); converted == E_OUTOFMEMORY)
        result = converted;
    return CComBSTR::Copy(StringMember(value.Get()));
}

} // namespace vant
