// String allocations that fail, as the portable platform lets a test arrange.

#include "platform/portable/testing.h"
#include "tests/unit/framework/ProbeCommand.h"

namespace vant::test {

namespace {

std::size_t allocationsLeft = 0;

/// While it lives, string allocations fail after the first `successes`.
class AllocationsEndAfter {
public:
    explicit AllocationsEndAfter(std::size_t successes) noexcept {
        allocationsLeft = successes;
        vant::testing::SetBstrAllocationHook([]() noexcept {
            if (allocationsLeft == 0)
                return false;
            --allocationsLeft;
            return true;
        });
    }
    ~AllocationsEndAfter() { vant::testing::SetBstrAllocationHook(nullptr); }
    AllocationsEndAfter(const AllocationsEndAfter&) = delete;
    AllocationsEndAfter& operator=(const AllocationsEndAfter&) = delete;
};

class AllocationFailure : public WithProbe {
protected:
    AllocationFailure() : name(L"value"), text(L"text") {}

    const CComBSTR name;
    const CComBSTR text;
};

TEST_F(AllocationFailure, PutLabel_ReturnsOutOfMemoryAndKeepsTheOldLabel) {
    ASSERT_EQ(S_OK, command->put_Label(name.Get()));
    {
        const AllocationsEndAfter none(0);
        EXPECT_EQ(E_OUTOFMEMORY, command->put_Label(text.Get()));
    }
    CComBSTR label;
    ASSERT_EQ(S_OK, command->get_Label(&label));
    EXPECT_EQ(L"value", label.Text());
}

TEST_F(AllocationFailure, PutNullLabel_NeedsNoMemory) {
    const AllocationsEndAfter none(0);
    EXPECT_EQ(S_OK, command->put_Label(nullptr));
}

TEST_F(AllocationFailure, GetLabel_ReturnsOutOfMemoryAndANullString) {
    ASSERT_EQ(S_OK, command->put_Label(text.Get()));
    const AllocationsEndAfter none(0);
    wchar_t unset = 0;
    BSTR label = &unset; // never read nor freed
    EXPECT_EQ(E_OUTOFMEMORY, command->get_Label(&label));
    EXPECT_EQ(nullptr, label);
}

TEST_F(AllocationFailure, GetNullLabel_NeedsNoMemory) {
    const AllocationsEndAfter none(0);
    CComBSTR label;
    EXPECT_EQ(S_OK, command->get_Label(&label));
}

TEST_F(AllocationFailure, SetProperty_ReturnsFailAndKeepsNothing) {
    const std::size_t before = vant::testing::LiveBstrCount();
    for (const std::size_t successes : {0, 1}) {
        const AllocationsEndAfter some(successes);
        EXPECT_EQ(E_FAIL, command->SetProperty(name.Get(), text.Get()));
        EXPECT_TRUE(probe->m_properties.empty());
        EXPECT_EQ(before, vant::testing::LiveBstrCount());
    }
    EXPECT_EQ(S_OK, command->SetProperty(name.Get(), text.Get()));
    EXPECT_EQ(before + 2, vant::testing::LiveBstrCount());
}

TEST_F(AllocationFailure, SetUndeclaredProperty_ReturnsInvalidArgument) {
    const AllocationsEndAfter none(0);
    EXPECT_EQ(E_INVALIDARG, command->SetProperty(text.Get(), text.Get()));
}

TEST_F(AllocationFailure, IsValid_NeedsNoMemory) {
    const AllocationsEndAfter none(0);
    VARIANT_BOOL isValid = VARIANT_TRUE;
    EXPECT_EQ(S_OK, command->get_IsValid(&isValid));
    EXPECT_EQ(VARIANT_FALSE, isValid);
}

TEST_F(AllocationFailure, CopyOfAProperty_MakesExecuteFail) {
    ASSERT_EQ(S_OK, command->SetProperty(name.Get(), text.Get()));
    probe->body = [this] { probe->GetProperty(L"value"); };
    {
        const AllocationsEndAfter none(0);
        EXPECT_EQ(E_FAIL, command->Execute());
    }
    EXPECT_EQ(S_OK, command->Execute());
}

TEST_F(AllocationFailure, Command_FreesEveryStringAtItsEnd) {
    const std::size_t before = vant::testing::LiveBstrCount();
    auto other = CreateCommand<CProbeCommand>({{L"value", L"1"}, {L"source", L"2"}});
    other->put_Label(text.Get());
    EXPECT_EQ(before + 5, vant::testing::LiveBstrCount());
    other.Release();
    EXPECT_EQ(before, vant::testing::LiveBstrCount());
}

} // namespace

} // namespace vant::test
