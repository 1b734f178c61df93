// The shortest text of a number reads back as that number: over pseudo-random numbers with a fixed seed.

#include "platform/Bstr.h"
#include "platform/Variant.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace vant {
namespace {

constexpr int rounds = 100'000;

std::wstring TextOfNumber(CComVariant number) {
    EXPECT_EQ(S_OK, number.ChangeType(VT_BSTR));
    return std::wstring(TextOf(StringMember(number.Get())));
}

double NumberOfText(const std::wstring& text) {
    CComVariant value{CComBSTR(text)};
    EXPECT_EQ(S_OK, value.ChangeType(VT_R8));
    return value.Get().dblVal;
}

std::size_t SignificantDigits(const std::wstring& text) {
    std::wstring digits;
    for (const wchar_t character : text.substr(0, text.find(L'E'))) {
        if (character >= L'0' && character <= L'9' && !(character == L'0' && digits.empty()))
            digits += character;
    }
    return digits.find_last_not_of(L'0') + 1;
}

void ExpectRoundTrip(double value) {
    const std::wstring text = TextOfNumber(CComVariant(value));
    SCOPED_TRACE(::testing::PrintToString(text));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(NumberOfText(text)));
    EXPECT_LE(SignificantDigits(text), 17U);
    const double size = std::abs(value);
    EXPECT_EQ(size < 1e-4 || size >= 1e15, text.find(L'E') != std::wstring::npos);
}

TEST(PortableNumberText, DoublesOfAnyBits_ReadBackTheSame) {
    std::mt19937_64 random(20240131);
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const auto value = std::bit_cast<double>(random());
        if (std::isfinite(value))
            ExpectRoundTrip(value);
    }
}

TEST(PortableNumberText, DoublesOfEverydaySize_ReadBackTheSame) {
    std::mt19937_64 random(20240201);
    std::uniform_real_distribution<double> exponent(-6.0, 17.0);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    for (int round = 0; round < rounds && !HasFailure(); ++round)
        ExpectRoundTrip(mantissa(random) * std::pow(10.0, exponent(random)));
}

TEST(PortableNumberText, DecimalsOfFewDigits_KeepTheirDigits) {
    std::mt19937_64 random(20240202);
    std::uniform_int_distribution<std::int64_t> digits(1, 999'999'999'999'999);
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const std::int64_t number = digits(random);
        const auto thousandths = static_cast<double>(number) / 1000.0;
        std::wstring expected = std::to_wstring(number / 1000);
        std::wstring fraction = std::to_wstring(1000 + number % 1000).substr(1);
        fraction.erase(fraction.find_last_not_of(L'0') + 1);
        if (!fraction.empty())
            expected += L'.' + fraction;
        EXPECT_EQ(expected, TextOfNumber(CComVariant(thousandths)));
    }
}

TEST(PortableNumberText, BordersOfTheDoubles_ReadBackTheSame) {
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::max(), Limits::lowest(), Limits::min(), Limits::denorm_min(),
                               std::nextafter(Limits::min(), 0.0), std::nextafter(1e15, 0.0),
                               std::nextafter(1e-4, 0.0), std::nextafter(1.0, 2.0)})
        ExpectRoundTrip(value);
}

TEST(PortableNumberText, LongsOfAnyBits_ReadBackTheSame) {
    std::mt19937 random(20240203);
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const auto number = std::bit_cast<LONG>(static_cast<std::uint32_t>(random()));
        CComVariant value{CComBSTR(TextOfNumber(CComVariant(number)))};
        EXPECT_EQ(S_OK, value.ChangeType(VT_I4));
        EXPECT_EQ(number, value.Get().lVal);
    }
}

TEST(PortableNumberText, DigitsBeyondEveryDouble_StillDecideATie) {
    // 2^53 + 1 lies halfway between two doubles; one digit far behind the point lifts it to the upper one.
    const std::wstring half = L"9007199254740993." + std::wstring(2000, L'0');
    EXPECT_EQ(9007199254740992.0, NumberOfText(half));
    EXPECT_EQ(9007199254740994.0, NumberOfText(half + L"1"));
}

TEST(PortableNumberText, LongTexts_AreReadToTheirEnd) {
    const std::wstring zeros(5000, L'0');
    EXPECT_EQ(1.0, NumberOfText(zeros + L"1"));
    EXPECT_EQ(1.0, NumberOfText(L"1" + zeros + L"e-5000"));
    EXPECT_EQ(1.0, NumberOfText(L"0." + zeros + L"1e5001"));
    CComVariant tooLarge{CComBSTR(L"1" + zeros)};
    EXPECT_EQ(DISP_E_OVERFLOW, tooLarge.ChangeType(VT_R8));
    EXPECT_EQ(DISP_E_OVERFLOW, tooLarge.ChangeType(VT_I4));
}

} // namespace
} // namespace vant
