#include "commands/EGRValvePositionAdjuster.h"
#include "platform/portable/testing.h"
#include "tests/support/Commands.h"
#include "tests/support/VirtualTime.h"

#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

/// What the debug output is given, and the calls, in one list.
Calls* trace = nullptr;

class EGRValvePositionAdjusterTrace : public ::testing::Test {
protected:
    EGRValvePositionAdjusterTrace() {
        trace = &log;
        vant::testing::SetOutputDebugHook(
            [](LPCWSTR text) { trace->push_back(At("\"" + Show(std::wstring_view(text)) + '"')); });
        host.onCall = [this](const std::string& call) {
            if (!call.starts_with("QueryInterface(") && !call.starts_with("get_"))
                log.push_back(At(call));
        };
    }
    ~EGRValvePositionAdjusterTrace() override {
        vant::testing::SetOutputDebugHook(nullptr);
        trace = nullptr;
    }

    void Walk(LONG enabling, LONG position, LONG target) {
        host.parameters[L"110143"].value = CComVariant(enabling);
        host.parameters[L"110145"].value = CComVariant(position);
        host.parameters[L"14531"].value = CComVariant(target);
        EXPECT_EQ(S_OK,
                  CreateCommand<CEGRValvePositionAdjuster>(host, {{L"failTransition", L"bad"}})->Execute());
    }
    static std::string At(const std::string& what) {
        return std::to_string(ClockMilliseconds()) + ' ' + what;
    }

    TestHost host;
    Calls log;

private:
    const VirtualTime m_time;
};

TEST_F(EGRValvePositionAdjusterTrace, StandsBeforeTheReadsOfEachStep) {
    Walk(10, 45, 38);
    EXPECT_EQ(
        (Calls{"0 GetParameter(110143, 1)", "0 \"onCycle::EGR::beign\"", "0 GetParameter(110145, 1)",
               "0 GetParameter(14531, 1)", "0 SetParameter(110145, 1, 40)", "5000 GetParameter(110143, 1)",
               "5000 GetParameter(110145, 1)", "5000 GetParameter(14531, 1)", "5000 \"onCycle::EGR::beign\"",
               "5000 GetParameter(110145, 1)", "5000 GetParameter(14531, 1)",
               "5000 SetParameter(110145, 1, 38)", "10000 GetParameter(110143, 1)",
               "10000 GetParameter(110145, 1)", "10000 GetParameter(14531, 1)"}),
        log);
}

TEST_F(EGRValvePositionAdjusterTrace, IsNotWrittenWhereNotEnabled) {
    Walk(9, 50, 38);
    EXPECT_EQ((Calls{"0 GetParameter(110143, 1)"}), log);
}

} // namespace

} // namespace vant::test
