#include "platform/Bstr.h"

#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace vant {
namespace {

using namespace std::string_view_literals;

constexpr auto embedded = L"a\0b"sv;

HRESULT Compare(std::wstring_view left, std::wstring_view right) {
    const CComBSTR a(left);
    const CComBSTR b(right);
    return VarBstrCmp(a.Get(), b.Get(), LOCALE_USER_DEFAULT, 0);
}

int CompareCounted(std::wstring_view left, std::wstring_view right) {
    return CompareStringW(LOCALE_USER_DEFAULT, 0, left.data(), static_cast<int>(left.size()), right.data(),
                          static_cast<int>(right.size()));
}

TEST(Bstr, Allocated_HoldsTheTextItsLengthAndANull) {
    const BSTR text = SysAllocString(L"abc");
    ASSERT_NE(nullptr, text);
    EXPECT_STREQ(L"abc", text);
    EXPECT_EQ(3U, SysStringLen(text));
    EXPECT_EQ(3U * sizeof(wchar_t), SysStringByteLen(text));
    SysFreeString(text);
}

TEST(Bstr, AllocatedWithLength_KeepsEmbeddedNulls) {
    const BSTR text = SysAllocStringLen(embedded.data(), 3);
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(3U, SysStringLen(text));
    EXPECT_EQ(embedded, std::wstring_view(text, 3));
    EXPECT_EQ(L'\0', text[3]);
    SysFreeString(text);
}

TEST(Bstr, AllocatedShorterThanTheText_EndsWithANull) {
    const BSTR text = SysAllocStringLen(L"abcdef", 2);
    ASSERT_NE(nullptr, text);
    EXPECT_STREQ(L"ab", text);
    SysFreeString(text);
}

TEST(Bstr, LengthInBytes_StandsInThe32BitsBeforeTheText) {
    const BSTR text = SysAllocString(L"abc");
    ASSERT_NE(nullptr, text);
    UINT length = 0;
    std::memcpy(&length, reinterpret_cast<const char*>(text) - sizeof(length), sizeof(length));
    EXPECT_EQ(3U * sizeof(wchar_t), length);
    SysFreeString(text);
}

TEST(Bstr, OddNumberOfBytes_IsKeptAndTheTextEndsWithANull) {
    const BSTR bytes = SysAllocStringByteLen("abcde", 5);
    ASSERT_NE(nullptr, bytes);
    EXPECT_EQ(5U, SysStringByteLen(bytes));
    EXPECT_EQ(5U / sizeof(wchar_t), SysStringLen(bytes));
    EXPECT_EQ("abcde\0"sv, std::string_view(reinterpret_cast<const char*>(bytes), 6));
    SysFreeString(bytes);
}

TEST(Bstr, AllocatedFromNull_IsNullOrAStringOfThatLength) {
    EXPECT_EQ(nullptr, SysAllocString(nullptr));
    const BSTR characters = SysAllocStringLen(nullptr, 4);
    EXPECT_EQ(4U, SysStringLen(characters));
    SysFreeString(characters);
    const BSTR bytes = SysAllocStringByteLen(nullptr, 3);
    EXPECT_EQ(3U, SysStringByteLen(bytes));
    SysFreeString(bytes);
}

TEST(Bstr, Null_HasNoLengthAndEqualsTheEmptyString) {
    EXPECT_EQ(0U, SysStringLen(nullptr));
    EXPECT_EQ(0U, SysStringByteLen(nullptr));
    EXPECT_EQ(L"", TextOf(nullptr));
    const CComBSTR empty(L"");
    EXPECT_EQ(VARCMP_EQ, VarBstrCmp(nullptr, empty.Get(), LOCALE_USER_DEFAULT, 0));
    EXPECT_EQ(VARCMP_EQ, VarBstrCmp(nullptr, nullptr, LOCALE_USER_DEFAULT, 0));
    const CComBSTR text(L"a");
    EXPECT_EQ(VARCMP_LT, VarBstrCmp(nullptr, text.Get(), LOCALE_USER_DEFAULT, 0));
    EXPECT_EQ(VARCMP_GT, VarBstrCmp(text.Get(), nullptr, LOCALE_USER_DEFAULT, 0));
    SysFreeString(nullptr);
}

TEST(Bstr, ComparedTexts_AreEqualOnlyCharacterByCharacter) {
    EXPECT_EQ(VARCMP_EQ, Compare(L"", L""));
    EXPECT_EQ(VARCMP_EQ, Compare(L"round", L"round"));
    EXPECT_NE(VARCMP_EQ, Compare(L"round", L"Round"));
    EXPECT_NE(VARCMP_EQ, Compare(L"round", L"round "));
    EXPECT_NE(VARCMP_EQ, Compare(L"co-op", L"coop"));
    EXPECT_NE(VARCMP_EQ, Compare(L"a_b", L"ab"));
    EXPECT_NE(VARCMP_EQ, Compare(L"\u00E9", L"e"));
    EXPECT_NE(VARCMP_EQ, Compare(embedded, L"a"));
    EXPECT_EQ(CSTR_EQUAL, CompareCounted(L"round", L"round"));
    EXPECT_NE(CSTR_EQUAL, CompareCounted(L"round", L"Round"));
}

TEST(Bstr, VarBstrCmp_IgnoresNullCharacters_ButNotOneAtTheBeginning) {
    EXPECT_EQ(VARCMP_EQ, Compare(L"a\0b"sv, L"ab"));
    EXPECT_EQ(VARCMP_EQ, Compare(L"ab\0\0"sv, L"a\0b"sv));
    EXPECT_EQ(VARCMP_LT, Compare(L"a\0b"sv, L"a\0c"sv));
    EXPECT_EQ(VARCMP_LT, Compare(L"\0b"sv, L"a"));
    EXPECT_EQ(VARCMP_GT, Compare(L"a", L"\0b"sv));
    EXPECT_EQ(VARCMP_LT, Compare(L"\0a"sv, L"a"));
    EXPECT_EQ(VARCMP_EQ, Compare(L"\0a"sv, L"\0\0a"sv));
    EXPECT_EQ(VARCMP_EQ, Compare(L"\0"sv, L"\0\0"sv));
    EXPECT_EQ(VARCMP_GT, Compare(L"\0"sv, L""));
    EXPECT_EQ(VARCMP_LT, Compare(L"", L"\0a"sv));
}

TEST(Bstr, ComparedTexts_AreInTheOrderOfDigitsLettersAndLengths) {
    const std::pair<const wchar_t*, const wchar_t*> ordered[] = {
        {L"", L"a"},   {L"a", L"b"}, {L"ab", L"abc"}, {L"1", L"2"},
        {L"10", L"9"}, {L"1", L"a"}, {L" ", L"1"},    {L"dsLocation", L"dsResult"},
    };
    for (const auto& [less, greater] : ordered) {
        SCOPED_TRACE(::testing::PrintToString(std::wstring(greater)));
        EXPECT_EQ(VARCMP_LT, Compare(less, greater));
        EXPECT_EQ(VARCMP_GT, Compare(greater, less));
        EXPECT_EQ(CSTR_LESS_THAN, CompareCounted(less, greater));
        EXPECT_EQ(CSTR_GREATER_THAN, CompareCounted(greater, less));
        EXPECT_TRUE(LocaleLess()(CComBSTR(less), CComBSTR(greater)));
        EXPECT_FALSE(LocaleLess()(CComBSTR(greater), CComBSTR(less)));
        EXPECT_FALSE(LocaleLess()(CComBSTR(less), CComBSTR(less)));
    }
}

TEST(Bstr, CompareStringW_CountsNullTerminatedTextsAndRefusesNullsAndUnknownFlags) {
    EXPECT_EQ(CSTR_EQUAL, CompareStringW(LOCALE_USER_DEFAULT, 0, L"abc", -1, L"abcd", 3));
    EXPECT_EQ(0, CompareStringW(LOCALE_USER_DEFAULT, 0, nullptr, 0, L"a", 1));
    EXPECT_EQ(0, CompareStringW(LOCALE_USER_DEFAULT, 0, L"a", 1, nullptr, 0));
    EXPECT_EQ(0, CompareStringW(LOCALE_USER_DEFAULT, 0x80000000U, L"a", 1, L"a", 1));
}

TEST(LocaleLess, MapOfHolders_IsInTheOrderOfTheLocaleAndKeepsCasesApart) {
    std::map<CComBSTR, int, LocaleLess> map;
    map.emplace(CComBSTR(L"b"), 2);
    map.emplace(CComBSTR(L"A"), 3);
    map.emplace(CComBSTR(L"a"), 1);
    ASSERT_EQ(3u, map.size());
    EXPECT_EQ(1, map.at(CComBSTR(L"a")));
    EXPECT_EQ(3, map.at(CComBSTR(L"A")));
    EXPECT_EQ(2, map.rbegin()->second);
    EXPECT_FALSE(map.contains(CComBSTR()));
}

TEST(CComBSTR, Default_IsNull) {
    const CComBSTR text;
    EXPECT_EQ(nullptr, text.Get());
    EXPECT_EQ(L"", text.Text());
}

TEST(CComBSTR, MadeOfAText_HoldsAllOfIt) {
    EXPECT_EQ(embedded, CComBSTR(embedded).Text());
    const CComBSTR empty(L"");
    EXPECT_NE(nullptr, empty.Get());
    EXPECT_EQ(L"", empty.Text());
}

TEST(CComBSTR, Copied_OwnsAnotherStringWithTheSameText) {
    const CComBSTR text(embedded);
    const CComBSTR copy(text);
    EXPECT_NE(text.Get(), copy.Get());
    EXPECT_EQ(embedded, copy.Text());
    CComBSTR assigned(L"before");
    assigned = text;
    EXPECT_NE(text.Get(), assigned.Get());
    EXPECT_EQ(embedded, assigned.Text());
}

TEST(CComBSTR, CopiedFromNull_IsNull) {
    const CComBSTR null;
    const CComBSTR copy(null);
    EXPECT_EQ(nullptr, copy.Get());
    EXPECT_EQ(nullptr, CComBSTR::Copy(nullptr).Get());
    CComBSTR assigned(L"before");
    assigned = null;
    EXPECT_EQ(nullptr, assigned.Get());
}

TEST(CComBSTR, CopyOfACallersString_LeavesItToTheCaller) {
    const BSTR text = SysAllocString(L"abc");
    {
        const CComBSTR copy = CComBSTR::Copy(text);
        EXPECT_NE(text, copy.Get());
        EXPECT_EQ(L"abc", copy.Text());
    }
    EXPECT_STREQ(L"abc", text);
    SysFreeString(text);
}

TEST(CComBSTR, CopyOfAnOddNumberOfBytes_HoldsThemAll) {
    CComBSTR bytes;
    bytes.Attach(SysAllocStringByteLen("abcde", 5));
    const CComBSTR copy = CComBSTR::Copy(bytes.Get());
    ASSERT_EQ(5U, SysStringByteLen(copy.Get()));
    EXPECT_EQ(0, std::memcmp("abcde", copy.Get(), 5));
}

TEST(CComBSTR, Moved_HandsTheStringOverAndIsNull) {
    CComBSTR text(L"abc");
    const BSTR string = text.Get();
    CComBSTR moved(std::move(text));
    EXPECT_EQ(string, moved.Get());
    CComBSTR assigned(L"before");
    assigned = std::move(moved);
    EXPECT_EQ(string, assigned.Get());
    EXPECT_EQ(nullptr, moved.Get());
}

TEST(CComBSTR, AssignedToItself_KeepsTheText) {
    CComBSTR text(L"abc");
    CComBSTR& same = text;
    text = same;
    EXPECT_EQ(L"abc", text.Text());
    text = std::move(same);
    EXPECT_EQ(L"abc", text.Text());
}

TEST(CComBSTR, AttachedAndDetached_TakesAndGivesTheStringItself) {
    const BSTR string = SysAllocString(L"abc");
    CComBSTR text(L"before");
    text.Attach(string);
    EXPECT_EQ(string, text.Get());
    EXPECT_EQ(string, text.Detach());
    EXPECT_EQ(nullptr, text.Get());
    SysFreeString(string);
}

TEST(CComBSTR, AddressOfAnEmptyOne_IsForACalleeToFill) {
    const auto fill = [](BSTR* out) { *out = SysAllocString(L"filled"); };
    CComBSTR text;
    fill(&text);
    EXPECT_EQ(L"filled", text.Text());
}

} // namespace
} // namespace vant
