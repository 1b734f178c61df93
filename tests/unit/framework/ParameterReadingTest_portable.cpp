// That reading a parameter frees the string it is given, as the portable platform's count of live strings
// shows.

#include "platform/portable/testing.h"
#include "tests/unit/framework/ProbeCommand.h"

namespace vant::test {

namespace {

TEST(ParameterReadingMemory, String_IsFreedOnEveryPath) {
    TestHost host;
    host.parameters[L"RPM"].value = CComVariant(LONG{800});
    host.parameters[L""].value = CComVariant(1.5);
    const auto command = CreateCommand<CProbeCommand>(host, {});
    const auto* const reader = static_cast<CProbeCommand*>(command.Get());
    const std::size_t before = vant::testing::LiveBstrCount();
    EXPECT_EQ(800, reader->ReadParameterAsLong(CComBSTR(L"RPM")));
    EXPECT_EQ(1.5, reader->ReadParameterAsDouble(CComBSTR(L"RPM")));
    EXPECT_EQ(before, vant::testing::LiveBstrCount());
    for (const char* step : {"GetParameter", "QueryInterface", "get_Value"}) {
        host.fail[step] = E_FAIL;
        EXPECT_THROW(reader->ReadParameterAsLong(CComBSTR(L"RPM")), CComErrorHandlerException);
        EXPECT_THROW(reader->ReadParameterAsDouble(CComBSTR(L"RPM")), CComErrorHandlerException);
        host.fail.clear();
        EXPECT_EQ(before, vant::testing::LiveBstrCount()) << step;
    }
}

} // namespace

} // namespace vant::test
