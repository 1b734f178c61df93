#include "platform/Variant.h"

#include <cstring>
#include <gtest/gtest.h>
#include <utility>

namespace vant {
namespace {

/// Counts its references; lives as long as the test.
class CountedObject : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
};

VARIANT OfType(VARTYPE type) {
    VARIANT value{};
    value.vt = type;
    return value;
}

VARIANT Holding(CountedObject& object, VARTYPE type) {
    VARIANT value = OfType(type);
    value.punkVal = &object;
    object.AddRef();
    return value;
}

TEST(VariantFunctions, Init_MakesItEmpty) {
    VARIANT value = OfType(VT_I4);
    VariantInit(&value);
    EXPECT_EQ(VT_EMPTY, value.vt);
}

TEST(VariantFunctions, ClearOfEverySimpleType_MakesItEmpty) {
    for (VARTYPE type = VT_EMPTY; type <= VT_UINT; ++type) {
        if (type == 15) // no type has this number
            continue;
        SCOPED_TRACE(type);
        VARIANT value = OfType(type);
        EXPECT_EQ(S_OK, VariantClear(&value));
        EXPECT_EQ(VT_EMPTY, value.vt);
    }
}

TEST(VariantFunctions, UnknownTypes_AreRefusedAndStayAsTheyAre) {
    for (const unsigned type :
         {15U, 24U, 25U, 64U, 100U, 0x1003U, 0x8003U, 0x2000U, 0x4000U, 0x4001U, 0x400FU, 0xFFFFU}) {
        SCOPED_TRACE(type);
        VARIANT value = OfType(static_cast<VARTYPE>(type));
        EXPECT_EQ(DISP_E_BADVARTYPE, VariantClear(&value));
        EXPECT_EQ(type, value.vt);

        VARIANT number = CComVariant(LONG{7}).Detach();
        EXPECT_EQ(DISP_E_BADVARTYPE, VariantCopy(&number, &value));
        EXPECT_EQ(VT_I4, number.vt);
        EXPECT_EQ(7, number.lVal);
        EXPECT_EQ(DISP_E_BADVARTYPE, VariantCopy(&value, &number));
        EXPECT_EQ(DISP_E_BADVARTYPE, VariantChangeType(&value, &number, 0, VT_R8));
        EXPECT_EQ(type, value.vt);
        if ((type & VT_BYREF) == 0) {
            EXPECT_EQ(DISP_E_BADVARTYPE, VariantChangeType(&number, &value, 0, VT_R8));
        }
    }
}

TEST(VariantFunctions, ClearOfAReference_LeavesWhatItPointsAt) {
    BSTR text = SysAllocString(L"the caller's");
    VARIANT value = OfType(VT_BYREF | VT_BSTR);
    value.byref = &text;
    EXPECT_EQ(S_OK, VariantClear(&value));
    EXPECT_EQ(VT_EMPTY, value.vt);
    EXPECT_STREQ(L"the caller's", text);
    SysFreeString(text);
}

TEST(VariantFunctions, CopyOfAReference_PointsAtTheSame) {
    LONG number = 5;
    VARIANT value = OfType(VT_BYREF | VT_I4);
    value.byref = &number;
    VARIANT copy = OfType(VT_EMPTY);
    ASSERT_EQ(S_OK, VariantCopy(&copy, &value));
    EXPECT_EQ(VT_BYREF | VT_I4, copy.vt);
    EXPECT_EQ(&number, copy.byref);
}

TEST(VariantFunctions, ObjectCopiedAndCleared_IsReferencedAndReleased) {
    for (const VARTYPE type : {VARTYPE{VT_UNKNOWN}, VARTYPE{VT_DISPATCH}}) {
        CountedObject object;
        VARIANT value = Holding(object, type);
        VARIANT copy = OfType(VT_EMPTY);
        ASSERT_EQ(S_OK, VariantCopy(&copy, &value));
        EXPECT_EQ(type, copy.vt);
        EXPECT_EQ(&object, copy.punkVal);
        EXPECT_EQ(3U, object.references);
        EXPECT_EQ(S_OK, VariantClear(&copy));
        EXPECT_EQ(S_OK, VariantClear(&value));
        EXPECT_EQ(1U, object.references);
    }
}

TEST(VariantFunctions, CopyOverAnObject_ReleasesIt) {
    CountedObject object;
    VARIANT destination = Holding(object, VT_UNKNOWN);
    VARIANT number = CComVariant(LONG{7}).Detach();
    ASSERT_EQ(S_OK, VariantCopy(&destination, &number));
    EXPECT_EQ(1U, object.references);
    EXPECT_EQ(7, destination.lVal);
}

TEST(VariantFunctions, CopyOfAString_HasItsOwnBytes) {
    VARIANT value = OfType(VT_BSTR);
    value.bstrVal = SysAllocStringByteLen("a\0bcd", 5);
    VARIANT copy = OfType(VT_EMPTY);
    ASSERT_EQ(S_OK, VariantCopy(&copy, &value));
    EXPECT_NE(value.bstrVal, copy.bstrVal);
    ASSERT_EQ(5U, SysStringByteLen(copy.bstrVal));
    EXPECT_EQ(0, std::memcmp(value.bstrVal, copy.bstrVal, 5));
    VariantClear(&value);
    VariantClear(&copy);
}

TEST(VariantFunctions, CopyOfANullString_IsAnEmptyOne) {
    VARIANT value = OfType(VT_BSTR);
    VARIANT copy = OfType(VT_EMPTY);
    ASSERT_EQ(S_OK, VariantCopy(&copy, &value));
    EXPECT_NE(nullptr, copy.bstrVal);
    EXPECT_EQ(0U, SysStringLen(copy.bstrVal));
    VariantClear(&copy);
}

TEST(VariantFunctions, CopyOntoItself_ChangesNothing) {
    VARIANT value = CComVariant(CComBSTR(L"text")).Detach();
    const BSTR text = value.bstrVal;
    EXPECT_EQ(S_OK, VariantCopy(&value, &value));
    EXPECT_EQ(text, value.bstrVal);
    VariantClear(&value);
}

TEST(VariantFunctions, ChangeToItsOwnType_CopiesEverySimpleType) {
    CountedObject object;
    VARIANT value = Holding(object, VT_UNKNOWN);
    VARIANT copy = OfType(VT_EMPTY);
    ASSERT_EQ(S_OK, VariantChangeType(&copy, &value, 0, VT_UNKNOWN));
    EXPECT_EQ(&object, copy.punkVal);
    EXPECT_EQ(3U, object.references);
    VariantClear(&copy);
    VariantClear(&value);

    VARIANT null = OfType(VT_NULL);
    ASSERT_EQ(S_OK, VariantChangeType(&copy, &null, 0, VT_NULL));
    EXPECT_EQ(VT_NULL, copy.vt);
}

TEST(VariantFunctions, ChangeIntoAString_FreesWhatTheDestinationHeld) {
    CountedObject object;
    VARIANT destination = Holding(object, VT_UNKNOWN);
    VARIANT number = CComVariant(LONG{12}).Detach();
    ASSERT_EQ(S_OK, VariantChangeType(&destination, &number, 0, VT_BSTR));
    EXPECT_EQ(1U, object.references);
    EXPECT_EQ(L"12", TextOf(StringMember(destination)));
    VariantClear(&destination);
}

TEST(CComVariant, Default_IsEmpty) {
    EXPECT_EQ(VT_EMPTY, CComVariant().Get().vt);
}

TEST(CComVariant, MadeOfAValue_HasItsType) {
    const CComVariant number(2.5);
    EXPECT_EQ(VT_R8, number.Get().vt);
    EXPECT_EQ(2.5, number.Get().dblVal);
    const CComVariant integer(LONG{-3});
    EXPECT_EQ(VT_I4, integer.Get().vt);
    EXPECT_EQ(-3, integer.Get().lVal);
    CComBSTR text(L"text");
    const BSTR string = text.Get();
    const CComVariant holder(std::move(text));
    EXPECT_EQ(VT_BSTR, holder.Get().vt);
    EXPECT_EQ(string, holder.Get().bstrVal);
    const CComVariant null{CComBSTR()};
    EXPECT_EQ(VT_BSTR, null.Get().vt);
    EXPECT_EQ(nullptr, null.Get().bstrVal);
}

TEST(CComVariant, Copied_OwnsItsString) {
    const CComVariant text(CComBSTR(L"text"));
    const CComVariant copy(text);
    CComVariant assigned(LONG{1});
    assigned = text;
    for (const VARIANT& other : {copy.Get(), assigned.Get()}) {
        EXPECT_NE(text.Get().bstrVal, other.bstrVal);
        EXPECT_EQ(L"text", TextOf(StringMember(other)));
    }
}

TEST(CComVariant, Moved_HandsTheValueOverAndIsEmpty) {
    CComVariant text(CComBSTR(L"text"));
    const BSTR string = text.Get().bstrVal;
    CComVariant moved(std::move(text));
    EXPECT_EQ(string, moved.Get().bstrVal);
    CComVariant assigned(CComBSTR(L"before"));
    assigned = std::move(moved);
    EXPECT_EQ(string, assigned.Get().bstrVal);
    EXPECT_EQ(VT_EMPTY, moved.Get().vt);
}

TEST(CComVariant, AssignedToItself_KeepsTheValue) {
    CComVariant text(CComBSTR(L"text"));
    CComVariant& same = text;
    text = same;
    EXPECT_EQ(L"text", TextOf(StringMember(text.Get())));
    text = std::move(same);
    EXPECT_EQ(L"text", TextOf(StringMember(text.Get())));
}

TEST(CComVariant, CopyOfAnUnknownType_ThrowsItsCode) {
    try {
        CComVariant::Copy(OfType(100));
        FAIL() << "nothing thrown";
    } catch (const CComException& exception) {
        EXPECT_EQ(DISP_E_BADVARTYPE, exception.Code());
    }
}

TEST(CComVariant, EndOfItsLife_ReleasesTheObject) {
    CountedObject object;
    {
        CComVariant value;
        *&value = Holding(object, VT_UNKNOWN);
        EXPECT_EQ(2U, object.references);
    }
    EXPECT_EQ(1U, object.references);
}

TEST(CComVariant, Detached_GivesTheValueAndIsEmpty) {
    CComVariant text(CComBSTR(L"text"));
    VARIANT value = text.Detach();
    EXPECT_EQ(VT_EMPTY, text.Get().vt);
    EXPECT_EQ(L"text", TextOf(StringMember(value)));
    VariantClear(&value);
}

TEST(CComVariant, ChangedType_HoldsTheConvertedValue) {
    CComVariant value(CComBSTR(L"12"));
    EXPECT_EQ(S_OK, value.ChangeType(VT_R8));
    EXPECT_EQ(VT_R8, value.Get().vt);
    EXPECT_EQ(12.0, value.Get().dblVal);
    EXPECT_EQ(S_OK, value.ChangeType(VT_BSTR));
    EXPECT_EQ(L"12", TextOf(StringMember(value.Get())));
}

TEST(CComVariant, FailedChangeType_KeepsTheValue) {
    CComVariant value(CComBSTR(L"twelve"));
    EXPECT_EQ(DISP_E_TYPEMISMATCH, value.ChangeType(VT_I4));
    EXPECT_EQ(L"twelve", TextOf(StringMember(value.Get())));
}

TEST(StringMember, OfAnythingButAString_IsNull) {
    EXPECT_EQ(nullptr, StringMember(CComVariant(LONG{12}).Get()));
    EXPECT_EQ(nullptr, StringMember(OfType(VT_EMPTY)));
}

} // namespace
} // namespace vant
