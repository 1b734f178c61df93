#include "platform/Bstr.h"
#include "platform/Variant.h"
#include "platform/portable/testing.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace vant {
namespace {

bool Refuse() noexcept {
    return false;
}

/// While it lives no BSTR can be allocated.
class OutOfMemory {
public:
    OutOfMemory() { testing::SetBstrAllocationHook(Refuse); }
    ~OutOfMemory() { testing::SetBstrAllocationHook(nullptr); }
    OutOfMemory(const OutOfMemory&) = delete;
    OutOfMemory& operator=(const OutOfMemory&) = delete;
};

template <class Action>
HRESULT CodeThrownBy(Action action) {
    try {
        action();
    } catch (const CComException& exception) {
        return exception.Code();
    }
    return S_OK;
}

TEST(PortableBstr, TextOfEveryLength_IsAlignedForItsCharacters) {
    for (UINT length = 0; length < 70; ++length) {
        const BSTR text = SysAllocStringByteLen(nullptr, length);
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(text) % alignof(wchar_t));
        SysFreeString(text);
    }
}

TEST(PortableBstr, LongestLengths_AreRefused) {
    EXPECT_EQ(nullptr, SysAllocStringLen(nullptr, 0xFFFFFFFFU));
    EXPECT_EQ(nullptr, SysAllocStringByteLen(nullptr, 0xFFFFFFFFU));
}

TEST(PortableBstr, LiveCount_FollowsAllocationAndFree) {
    const std::size_t before = testing::LiveBstrCount();
    const BSTR first = SysAllocString(L"a");
    const BSTR second = SysAllocStringLen(L"", 0);
    EXPECT_EQ(before + 2, testing::LiveBstrCount());
    SysFreeString(first);
    SysFreeString(nullptr);
    EXPECT_EQ(before + 1, testing::LiveBstrCount());
    SysFreeString(second);
    EXPECT_EQ(before, testing::LiveBstrCount());
}

TEST(PortableBstr, HoldersAndValuesOfEveryKind_LeaveNoStringBehind) {
    const std::size_t before = testing::LiveBstrCount();
    {
        CComBSTR text(L"1.5");
        CComBSTR copy(text);
        copy = text;
        copy = CComBSTR(L"moved");
        copy.Attach(SysAllocString(L"attached"));
        CComVariant value(CComBSTR(L"2.5"));
        CComVariant other(value);
        other = value;
        other = CComVariant(LONG{3});
        EXPECT_EQ(S_OK, other.ChangeType(VT_BSTR));
        EXPECT_EQ(S_OK, value.ChangeType(VT_R8));
        EXPECT_EQ(S_OK, value.ChangeType(VT_BSTR));
        EXPECT_EQ(DISP_E_OVERFLOW, CComVariant(CComBSTR(L"1e400")).ChangeType(VT_R8));
    }
    EXPECT_EQ(before, testing::LiveBstrCount());
}

TEST(PortableBstr, OutOfMemory_MakesEveryAllocatorAnswerNull) {
    const OutOfMemory outOfMemory;
    EXPECT_EQ(nullptr, SysAllocString(L"a"));
    EXPECT_EQ(nullptr, SysAllocStringLen(L"a", 1));
    EXPECT_EQ(nullptr, SysAllocStringByteLen("a", 1));
}

TEST(PortableBstr, OutOfMemory_MakesACopyingHolderThrowAndKeepItsText) {
    const CComBSTR text(L"text");
    CComBSTR target(L"kept");
    const OutOfMemory outOfMemory;
    EXPECT_EQ(E_OUTOFMEMORY, CodeThrownBy([&] { CComBSTR copy(text); }));
    EXPECT_EQ(E_OUTOFMEMORY, CodeThrownBy([&] { CComBSTR::Copy(text.Get()); }));
    EXPECT_EQ(E_OUTOFMEMORY, CodeThrownBy([&] { target = text; }));
    EXPECT_EQ(L"kept", target.Text());
}

TEST(PortableVariant, OutOfMemory_FailsTheCopyAndKeepsTheDestination) {
    const CComVariant text(CComBSTR(L"text"));
    CComVariant target(LONG{5});
    const OutOfMemory outOfMemory;
    EXPECT_EQ(E_OUTOFMEMORY, CodeThrownBy([&] { CComVariant copy(text); }));
    EXPECT_EQ(E_OUTOFMEMORY, CodeThrownBy([&] { target = text; }));
    EXPECT_EQ(VT_I4, target.Get().vt);
    EXPECT_EQ(5, target.Get().lVal);
}

TEST(PortableVariant, OutOfMemory_FailsTheConversionToTextAndKeepsTheDestination) {
    for (const CComVariant& number : {CComVariant(2.5), CComVariant(LONG{7}), CComVariant()}) {
        CComVariant target(number);
        const OutOfMemory outOfMemory;
        EXPECT_EQ(E_OUTOFMEMORY, target.ChangeType(VT_BSTR));
        EXPECT_EQ(number.Get().vt, target.Get().vt);
    }
}

TEST(PortableVariant, OutOfMemory_DoesNotTouchTheReadingOfNumbers) {
    CComVariant value(CComBSTR(L"123456789012345678901234567890.5"));
    const OutOfMemory outOfMemory;
    EXPECT_EQ(S_OK, value.ChangeType(VT_R8));
    EXPECT_EQ(123456789012345678901234567890.5, value.Get().dblVal);
}

} // namespace
} // namespace vant
