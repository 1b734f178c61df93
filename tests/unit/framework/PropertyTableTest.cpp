#include "framework/PropertyTable.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <utility>

namespace vant {

namespace {

constexpr PropertyRow required[] = {{L"name", nullptr, true}};
constexpr PropertyRow optional[] = {{L"name", nullptr, false}};
constexpr PropertyRow requiredPair[] = {{L"value", L"dsValue", true}};
constexpr PropertyRow optionalPair[] = {{L"value", L"dsValue", false}};
constexpr PropertyRow mixed[] = {
    {L"dsA", L"a", true}, {L"dsB", nullptr, false}, {L"b", nullptr, false}, {L"result", nullptr, true}};

PropertyMap Map(std::initializer_list<std::wstring_view> names) {
    PropertyMap map;
    for (const std::wstring_view name : names)
        map.emplace(CComBSTR(name), CComBSTR());
    return map;
}

TEST(IsDeclaredProperty, NamesAndAlternatives_AreDeclared) {
    for (const wchar_t* name : {L"dsA", L"a", L"dsB", L"b", L"result"})
        EXPECT_TRUE(IsDeclaredProperty(mixed, name)) << name;
}

TEST(IsDeclaredProperty, OtherNames_AreNot) {
    for (const wchar_t* name : {L"", L"dsC", L"ds", L"dsAA", L"sA", L" a", L"a "})
        EXPECT_FALSE(IsDeclaredProperty(mixed, name)) << name;
}

TEST(IsDeclaredProperty, OtherCase_IsAnotherName) {
    EXPECT_FALSE(IsDeclaredProperty(mixed, L"DSA"));
    EXPECT_FALSE(IsDeclaredProperty(mixed, L"A"));
    EXPECT_FALSE(IsDeclaredProperty(mixed, L"Result"));
}

TEST(IsDeclaredProperty, NameWithEmbeddedNull_IsAnotherName) {
    EXPECT_FALSE(IsDeclaredProperty(mixed, std::wstring_view(L"a\0", 2)));
    EXPECT_FALSE(IsDeclaredProperty(mixed, std::wstring_view(L"result\0x", 8)));
    EXPECT_FALSE(IsDeclaredProperty(mixed, std::wstring_view(L"\0", 1)));
}

TEST(IsDeclaredProperty, EmptyTable_DeclaresNothing) {
    EXPECT_FALSE(IsDeclaredProperty({}, L"a"));
    EXPECT_FALSE(IsDeclaredProperty({}, L""));
}

TEST(ValidateProperties, RequiredRow_MustBeGiven) {
    EXPECT_FALSE(ValidateProperties(required, Map({})));
    EXPECT_TRUE(ValidateProperties(required, Map({L"name"})));
}

TEST(ValidateProperties, OptionalRow_MayBeLeftOut) {
    EXPECT_TRUE(ValidateProperties(optional, Map({})));
    EXPECT_TRUE(ValidateProperties(optional, Map({L"name"})));
}

TEST(ValidateProperties, RequiredPair_MustBeGivenByExactlyOneName) {
    EXPECT_FALSE(ValidateProperties(requiredPair, Map({})));
    EXPECT_TRUE(ValidateProperties(requiredPair, Map({L"value"})));
    EXPECT_TRUE(ValidateProperties(requiredPair, Map({L"dsValue"})));
    EXPECT_FALSE(ValidateProperties(requiredPair, Map({L"value", L"dsValue"})));
}

TEST(ValidateProperties, OptionalPair_MustNotBeGivenByBothNames) {
    EXPECT_TRUE(ValidateProperties(optionalPair, Map({})));
    EXPECT_TRUE(ValidateProperties(optionalPair, Map({L"value"})));
    EXPECT_TRUE(ValidateProperties(optionalPair, Map({L"dsValue"})));
    EXPECT_FALSE(ValidateProperties(optionalPair, Map({L"value", L"dsValue"})));
}

TEST(ValidateProperties, IndependentRows_MayBeGivenTogether) {
    EXPECT_TRUE(ValidateProperties(mixed, Map({L"a", L"dsB", L"b", L"result"})));
}

TEST(ValidateProperties, AnyRow_CanMakeTheSetInvalid) {
    EXPECT_FALSE(ValidateProperties(mixed, Map({L"dsB", L"b", L"result"})));
    EXPECT_FALSE(ValidateProperties(mixed, Map({L"a", L"dsB", L"b"})));
    EXPECT_FALSE(ValidateProperties(mixed, Map({L"dsA", L"a", L"result"})));
}

TEST(ValidateProperties, NullOrEmptyValue_CountsAsGiven) {
    PropertyMap map = Map({L"name"});
    EXPECT_TRUE(ValidateProperties(required, map));
    map.begin()->second = CComBSTR(L"");
    EXPECT_TRUE(ValidateProperties(required, map));
}

TEST(ValidateProperties, OtherCase_IsAnotherName) {
    EXPECT_FALSE(ValidateProperties(required, Map({L"Name"})));
}

TEST(ValidateProperties, EmptyTable_IsAlwaysValid) {
    EXPECT_TRUE(ValidateProperties({}, Map({})));
}

TEST(PropertyMap, NamesThatDifferInCaseOnly_AreTwoEntries) {
    const PropertyMap map = Map({L"value", L"Value", L"VALUE"});
    EXPECT_EQ(3u, map.size());
    EXPECT_TRUE(map.contains(CComBSTR(L"Value")));
    EXPECT_FALSE(map.contains(CComBSTR(L"vALUE")));
}

TEST(PropertyMap, RepeatedName_KeepsItsFirstValue) {
    PropertyMap map;
    map.emplace(CComBSTR(L"name"), CComBSTR(L"first"));
    map.emplace(CComBSTR(L"name"), CComBSTR(L"second"));
    ASSERT_EQ(1u, map.size());
    EXPECT_EQ(L"first", map.begin()->second.Text());
}

} // namespace

} // namespace vant
