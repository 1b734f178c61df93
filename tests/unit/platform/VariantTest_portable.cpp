// What the portable VARIANT functions refuse although Windows takes it: nothing in this system asks for it.

#include "platform/Variant.h"
#include "platform/portable/testing.h"

#include <gtest/gtest.h>

namespace vant {
namespace {

VARIANT OfType(unsigned type) {
    VARIANT value{};
    value.vt = static_cast<VARTYPE>(type);
    return value;
}

TEST(PortableVariant, ConversionFlags_AreRefused) {
    const CComVariant number(LONG{1});
    CComVariant result;
    EXPECT_EQ(E_INVALIDARG, VariantChangeType(&result, &number.Get(), 2, VT_BSTR));
    EXPECT_EQ(VT_EMPTY, result.Get().vt);
}

TEST(PortableVariant, TargetTypesBeyondTheFour_AreRefused) {
    const CComVariant number(LONG{1});
    for (const unsigned type :
         {VT_EMPTY, VT_NULL, VT_I2, VT_R4, VT_CY, VT_DATE, VT_UNKNOWN, VT_I8, VT_UINT}) {
        SCOPED_TRACE(type);
        CComVariant result;
        EXPECT_EQ(DISP_E_BADVARTYPE,
                  VariantChangeType(&result, &number.Get(), 0, static_cast<VARTYPE>(type)));
        EXPECT_EQ(VT_EMPTY, result.Get().vt);
    }
}

TEST(PortableVariant, ReferencesArraysAndDecimals_AreNotConverted) {
    for (const unsigned type : {VT_BYREF | VT_I4, VT_BYREF | VT_VARIANT, VT_ARRAY | VT_I4, VT_DECIMAL + 0}) {
        SCOPED_TRACE(type);
        const VARIANT value = OfType(type);
        CComVariant result;
        EXPECT_EQ(DISP_E_TYPEMISMATCH, VariantChangeType(&result, &value, 0, VT_I4));
        EXPECT_EQ(DISP_E_TYPEMISMATCH, VariantChangeType(&result, &value, 0, VT_BSTR));
    }
}

TEST(PortableVariant, Arrays_AreNeitherClearedNorCopied) {
    VARIANT value = OfType(VT_ARRAY | VT_I4);
    EXPECT_EQ(DISP_E_BADVARTYPE, VariantClear(&value));
    EXPECT_EQ(VT_ARRAY | VT_I4, value.vt);
    VARIANT copy = OfType(VT_EMPTY);
    EXPECT_EQ(DISP_E_BADVARTYPE, VariantCopy(&copy, &value));
    EXPECT_EQ(VT_EMPTY, copy.vt);
}

/// An object that clears, while its last reference is released, the VARIANT that held it.
class ClearsItsHolder final : public IUnknown {
public:
    explicit ClearsItsHolder(VARIANT& holder) noexcept : m_holder(holder) {}

    int releases = 0;
    VARTYPE typeSeen = 0xFFFF;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override {
        if (++releases == 1) {
            typeSeen = m_holder.vt;
            EXPECT_EQ(S_OK, VariantClear(&m_holder));
        }
        return 0;
    }

private:
    VARIANT& m_holder;
};

TEST(PortableVariant, ObjectThatClearsItsHolderWhileItIsReleased_IsReleasedOnce) {
    for (const VARTYPE type : {VT_UNKNOWN, VT_DISPATCH}) {
        VARIANT value = OfType(type);
        ClearsItsHolder object(value);
        value.punkVal = &object;
        EXPECT_EQ(S_OK, VariantClear(&value));
        EXPECT_EQ(1, object.releases);
        EXPECT_EQ(VT_EMPTY, object.typeSeen);
        EXPECT_EQ(VT_EMPTY, value.vt);
    }
}

TEST(PortableVariant, FailedReplacement_FreesTheNewValue) {
    const std::size_t before = testing::LiveBstrCount();
    VARIANT array = OfType(VT_ARRAY | VT_I4);
    const CComVariant number(2.5);
    EXPECT_EQ(DISP_E_BADVARTYPE, VariantChangeType(&array, &number.Get(), 0, VT_BSTR));
    EXPECT_EQ(VT_ARRAY | VT_I4, array.vt);
    EXPECT_EQ(before, testing::LiveBstrCount());
}

TEST(PortableVariant, EveryLocale_HasTheSameNumbers) {
    for (const LCID locale : {0U, 1033U, 1031U, 0x0400U, 0x0800U}) {
        VARIANT value = CComVariant(1234.5).Detach();
        EXPECT_EQ(S_OK, VariantChangeTypeEx(&value, &value, locale, 0, VT_BSTR));
        EXPECT_EQ(L"1234.5", TextOf(StringMember(value)));
        VariantClear(&value);
    }
}

} // namespace
} // namespace vant
