// That no string of ECMParameter2 is left behind, as the portable platform's count of live strings shows.

#include "ecm/ECMParameter2.h"
#include "platform/portable/testing.h"
#include "tests/support/EngineHost.h"

#include <gtest/gtest.h>

namespace vant::test {

namespace {

class ECMParameter2Memory : public ::testing::Test {
protected:
    ECMParameter2Memory() {
        host.Context()->get_ParameterService(&service);
        for (const wchar_t* id : {L"11", L"13190"})
            host.parameters[id].value = CComVariant(CComBSTR(L"old"));
        host.parameters[L"14"].value = CComVariant(CComBSTR(L"text"));
    }

    TestHost host;
    EngineServices engine{host};
    CComPtr<IDataServiceOld> service;
};

TEST_F(ECMParameter2Memory, WriteString_FreesItsStringWhenTheWriteThrows) {
    host.fail["SetParameter"] = E_FAIL;
    for (const bool guarded : {false, true}) {
        ECMParameter2 parameter(engine.Object(), service.Get());
        const std::size_t before = vant::testing::LiveBstrCount();
        CComBSTR value(L"new");
        EXPECT_EQ(before + 1, vant::testing::LiveBstrCount());
        EXPECT_THROW(parameter.WriteString(L"13190", std::move(value), guarded), CComErrorHandlerException);
        EXPECT_EQ(nullptr, value.Get());
        // What a guarded write saved of parameter "11" lives as long as the object.
        EXPECT_EQ(before + (guarded ? 1 : 0), vant::testing::LiveBstrCount());
    }
}

TEST_F(ECMParameter2Memory, WriteString_FreesItsStringWhenTheHostThrows) {
    ECMParameter2 parameter(engine.Object(), service.Get());
    const std::size_t before = vant::testing::LiveBstrCount();
    host.ForgetCalls();
    host.ThrowAtCall(1);
    EXPECT_ANY_THROW(parameter.WriteString(L"13190", CComBSTR(L"new"), false));
    EXPECT_EQ(before, vant::testing::LiveBstrCount());
}

TEST_F(ECMParameter2Memory, SavedValue_GoesWithTheObject) {
    const std::size_t before = vant::testing::LiveBstrCount();
    {
        ECMParameter2 parameter(engine.Object(), service.Get());
        parameter.WriteLong(L"13190", 5, true); // the old text of 13190 is freed by this
        EXPECT_EQ(before, vant::testing::LiveBstrCount());
    }
    EXPECT_EQ(before - 1, vant::testing::LiveBstrCount());
}

TEST_F(ECMParameter2Memory, ReadString_FreesWhatTheOutputHeld) {
    const ECMParameter2 parameter(engine.Object(), service.Get());
    CComBSTR text(L"before");
    const std::size_t before = vant::testing::LiveBstrCount();
    parameter.ReadString(L"13190", text);
    EXPECT_EQ(before, vant::testing::LiveBstrCount());
}

TEST_F(ECMParameter2Memory, FailedReadLong_LeavesNoString) {
    const ECMParameter2 parameter(engine.Object(), service.Get());
    const std::size_t before = vant::testing::LiveBstrCount();
    LONG value = 0;
    EXPECT_EQ(E_FAIL, parameter.ReadLong(L"13190", value)); // holds no number
    EXPECT_EQ(before, vant::testing::LiveBstrCount());
}

} // namespace

} // namespace vant::test
