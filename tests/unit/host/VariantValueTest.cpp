#include "host/object/VariantValue.h"

#include <gtest/gtest.h>
#include <utility>

namespace vant::host {

namespace {

TEST(VariantValue, VariantsOfEveryKind_ConvertToValues) {
    EXPECT_EQ(ToValue(CComVariant().Get()), Value(nullptr));
    EXPECT_EQ(ToValue(CComVariant(LONG{-5}).Get()), Value(std::int64_t{-5}));
    EXPECT_EQ(ToValue(CComVariant(2.5).Get()), Value(2.5));
    EXPECT_EQ(ToValue(CComVariant(CComBSTR(L"\u20AC")).Get()), Value("\xE2\x82\xAC"));
    EXPECT_EQ(ToValue(CComVariant(CComBSTR()).Get()), Value(""));
    VARIANT other{};
    other.vt = VT_UNKNOWN;
    EXPECT_EQ(ToValue(other), Value("(object)"));
    other.vt = VT_DISPATCH;
    EXPECT_EQ(ToValue(other), Value("(object)"));
    other.vt = VT_INT;
    other.intVal = 12;
    EXPECT_EQ(ToValue(other), Value(std::int64_t{12}));
    other.vt = VT_DATE;
    EXPECT_EQ(ToValue(other), Value("(VARIANT of type 7)"));
    other.vt = VT_I2;
    other.iVal = -3;
    EXPECT_EQ(ToValue(other), Value(std::int64_t{-3}));
    other.vt = VT_R4;
    other.fltVal = 0.5F;
    EXPECT_EQ(ToValue(other), Value(0.5));
    other.vt = VT_NULL;
    EXPECT_EQ(ToValue(other), Value(nullptr));
}

TEST(VariantValue, ValuesOfEveryKind_ConvertToVariantsAndBack) {
    const std::pair<Value, VARTYPE> table[] = {
        {nullptr, VT_EMPTY},      {true, VT_BOOL}, {false, VT_BOOL},  {std::int64_t{-2147483648LL}, VT_I4},
        {std::int64_t{7}, VT_I4}, {1.5, VT_R8},    {"text", VT_BSTR}, {"", VT_BSTR},
    };
    for (const auto& [value, type] : table) {
        const CComVariant variant = ToVariant(value);
        EXPECT_EQ(variant.Get().vt, type);
        EXPECT_EQ(ToValue(variant.Get()), value);
    }
}

} // namespace

} // namespace vant::host
