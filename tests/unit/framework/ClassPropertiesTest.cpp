#include "framework/interfaces/ClassProperties.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

namespace vant {
namespace {

TEST(ClassProperties, PropertiesOfClass_ReturnsItsRowsInOrder) {
    const auto properties = PropertiesOfClass("ParameterWriter");
    ASSERT_EQ(properties.size(), 4u);
    EXPECT_EQ(properties[0].name, "parameterID");
    EXPECT_EQ(properties[1].name, "dsParameterID");
    EXPECT_EQ(properties[2].name, "value");
    EXPECT_EQ(properties[3].name, "dsValue");
}

TEST(ClassProperties, UnknownClassOrName_ReturnsNothing) {
    EXPECT_TRUE(PropertiesOfClass("Clock").empty());
    EXPECT_TRUE(PropertiesOfClass("").empty());
    EXPECT_EQ(FindClassProperty("Clock", "length"), nullptr);
    EXPECT_EQ(FindClassProperty("Timer", "Length"), nullptr);
}

TEST(ClassProperties, FindClassProperty_ReturnsTheRowOfThatName) {
    const ClassProperty* const property = FindClassProperty("Timer", "dsLength");
    ASSERT_NE(property, nullptr);
    EXPECT_EQ(property->className, "Timer");
    EXPECT_EQ(property->alternative, "length");
    EXPECT_TRUE(property->required);
    EXPECT_EQ(property->kind, PropertyKind::DataEntryRead);
    EXPECT_EQ(property->holds, PropertyKind::Seconds);
    EXPECT_FALSE(FindClassProperty("Timer", "type")->required);
}

TEST(ClassProperties, NamesThatBeginWithDs_NameEntries) {
    using enum PropertyKind;
    constexpr PropertyKind entryKinds[] = {DataEntry, DataEntryRead, DataEntryWritten, DataEntryBaseName,
                                           ConditionSet};
    for (const ClassProperty& property : classProperties) {
        const bool isEntry = std::ranges::find(entryKinds, property.kind) != std::end(entryKinds);
        EXPECT_EQ(isEntry, property.name.starts_with("ds")) << property.className << ' ' << property.name;
    }
}

TEST(ClassProperties, KindText_IsTheKindInWords) {
    EXPECT_EQ(KindText(PropertyKind::Number), "number");
    EXPECT_EQ(KindText(PropertyKind::DataEntryBaseName), "data entry base name");
    EXPECT_EQ(KindText(PropertyKind::ComponentProperty), "component property");
}

TEST(ClassProperties, DescribeKind_AddsWordsAndWhatTheEntryHolds) {
    EXPECT_EQ(DescribeKind(*FindClassProperty("Timer", "length")), "seconds");
    EXPECT_EQ(DescribeKind(*FindClassProperty("Timer", "dsLength")), "data entry read: seconds");
    EXPECT_EQ(DescribeKind(*FindClassProperty("Timer", "type")), "choice: upCounter, downCounter");
}

} // namespace
} // namespace vant
