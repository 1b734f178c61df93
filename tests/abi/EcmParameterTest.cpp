// ECMParameter2 on a host of raw function tables: both read paths and the write reach the documented slots.

#include "ecm/ECMParameter2.h"
#include "tests/abi/RawHost.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>

namespace vant::abi {

namespace {

using Calls = std::vector<std::wstring>;

const Calls choice = {L"sessionManager 9()", L"sessionManager 10()", L"parameterService 10()",
                      L"connection 7()",     L"source 9(42)",        L"sourceA 14()",
                      L"sourceB 8(null)",    L"sourceC 12(null)",    L"sourceD 16()"};

class RawEcmParameter : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_EQ(host.Trapped(), Calls());
        EXPECT_EQ(host.References(), 0);
    }
    ECMParameter2 Open() {
        return ECMParameter2(reinterpret_cast<IUnknown*>(&host.threadService),
                             reinterpret_cast<IDataServiceOld*>(&host.parameterService));
    }
    /// What came after the choice of the read path.
    Calls LaterCalls() const {
        const auto end =
            host.calls.begin() + static_cast<std::ptrdiff_t>(std::min(host.calls.size(), choice.size()));
        EXPECT_EQ(Calls(host.calls.begin(), end), choice);
        return {end, host.calls.end()};
    }

    RawHost host;
};

TEST_F(RawEcmParameter, ReadLong_ThroughTheDataService) {
    LONG value = 0;
    EXPECT_EQ(Open().ReadLong(L"190", value), S_OK);
    EXPECT_EQ(value, 800);
    EXPECT_EQ(LaterCalls(), (Calls{L"parameterService 12(190, 1)", L"parameter 10()"}));
}

TEST_F(RawEcmParameter, ReadLong_Directly_OpensRegistersReadsAndCloses) {
    host.protocolKind = 4;
    LONG value = 0;
    EXPECT_EQ(Open().ReadLong(L"190", value), S_OK);
    EXPECT_EQ(value, 750);
    EXPECT_EQ(LaterCalls(),
              (Calls{L"parameterService 10()", L"connection 7()", L"directory 9(42)", L"session 7()",
                     L"session 11(190, 1)", L"sessionItem 12()", L"directory 10(7)"}));
}

TEST_F(RawEcmParameter, ReadString_WithDirectReads_StillGoesThroughTheDataService) {
    host.protocolKind = 5;
    CComBSTR text;
    Open().ReadString(L"190", text);
    EXPECT_EQ(text.Text(), L"800");
    EXPECT_EQ(LaterCalls(),
              (Calls{L"parameterService 10()", L"connection 7()", L"directory 9(42)", L"session 7()",
                     L"parameterService 12(190, 1)", L"parameter 10()", L"directory 10(7)"}));
}

TEST_F(RawEcmParameter, GuardedWrite_ReadsBothGuardsAndWritesByValue) {
    EXPECT_EQ(Open().WriteLong(L"190", 5, true), S_OK);
    EXPECT_EQ(LaterCalls(),
              (Calls{L"parameterService 12(11, 1)", L"parameter 10()", L"parameterService 12(14, 1)",
                     L"parameter 10()", L"parameterService 13(190, 1, number 5)",
                     L"parameterService 12(14, 1)", L"parameter 10()"}));
}

TEST_F(RawEcmParameter, WriteString_WritesATextByValue) {
    EXPECT_EQ(Open().WriteString(L"190", CComBSTR(L"on"), false), S_OK);
    EXPECT_EQ(LaterCalls(), (Calls{L"parameterService 13(190, 1, text on)"}));
}

} // namespace

} // namespace vant::abi
