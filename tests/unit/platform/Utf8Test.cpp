#include "platform/Utf8.h"

#include <gtest/gtest.h>

namespace vant {

namespace {

/// The wide text of one character above U+FFFF, as this system writes it.
const std::wstring engine = L"\U0001F697";

TEST(Utf8, CharactersOfEveryLength_ConvertBothWays) {
    const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9A\x97";
    const std::wstring wide = L"a\u00E9\u20AC" + engine;
    EXPECT_EQ(ToUtf8(wide), utf8);
    EXPECT_EQ(ToWide(utf8), wide);
}

TEST(Utf8, EmbeddedNull_Stays) {
    using namespace std::literals;
    EXPECT_EQ(ToUtf8(L"a\0b"sv), "a\0b"sv);
    EXPECT_EQ(ToWide("a\0b"sv), L"a\0b"sv);
}

TEST(Utf8, SurrogatePair_IsOneCharacterOnEverySystem) {
    const wchar_t pair[] = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE97)};
    EXPECT_EQ(ToUtf8(std::wstring_view(pair, 2)), "\xF0\x9F\x9A\x97");
}

TEST(Utf8, UnpairedSurrogate_BecomesReplacementCharacter) {
    for (const int unit : {0xD800, 0xDBFF, 0xDC00, 0xDFFF}) {
        const wchar_t alone[] = {L'a', static_cast<wchar_t>(unit), L'b'};
        EXPECT_EQ(ToUtf8(std::wstring_view(alone, 3)), "a\xEF\xBF\xBD"
                                                       "b")
            << std::hex << unit;
    }
    const wchar_t last[] = {static_cast<wchar_t>(0xD83D)};
    EXPECT_EQ(ToUtf8(std::wstring_view(last, 1)), "\xEF\xBF\xBD");
}

TEST(Utf8, IllFormedBytes_BecomeReplacementCharactersOneByOne) {
    EXPECT_EQ(ToWide("a\x80z"), L"a\uFFFDz");                           // continues nothing
    EXPECT_EQ(ToWide("\xC3"), L"\uFFFD");                               // cut off
    EXPECT_EQ(ToWide("\xC0\xAF"), L"\uFFFD\uFFFD");                     // longer than it need be
    EXPECT_EQ(ToWide("\xED\xA0\x80"), L"\uFFFD\uFFFD\uFFFD");           // a surrogate
    EXPECT_EQ(ToWide("\xF4\x90\x80\x80"), L"\uFFFD\uFFFD\uFFFD\uFFFD"); // above U+10FFFF
    EXPECT_EQ(ToWide("\xFF"), L"\uFFFD");
}

TEST(Utf8, FileNameBeyondAscii_ConvertsBothWays) {
    const std::string name = "pr\xC3\xBC"
                             "fung \xE2\x82\xAC.toml";
    EXPECT_EQ(PathToUtf8(PathFromUtf8(name)), name);
    EXPECT_EQ(PathFromUtf8(name).extension(), ".toml");
}

} // namespace

} // namespace vant
