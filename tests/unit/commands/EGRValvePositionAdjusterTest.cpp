#include "commands/EGRValvePositionAdjuster.h"

#include "tests/support/Commands.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

/// All that happens before the first wait.
class EGRValvePositionAdjuster : public ::testing::Test {
protected:
    EGRValvePositionAdjuster() {
        Set(L"110143", CComVariant(LONG{10}));
        Set(L"110145", CComVariant(LONG{50}));
        Set(L"14531", CComVariant(LONG{38}));
    }

    void Set(const wchar_t* id, CComVariant value) { host.parameters[id].value = std::move(value); }
    HRESULT Walk() {
        return CreateCommand<CEGRValvePositionAdjuster>(host, {{L"failTransition", L"bad"}})->Execute();
    }
    /// The calls of a walk whose first write fails, so that it does not wait.
    Calls CallsToFirstWrite() {
        host.fail["SetParameter"] = E_FAIL;
        EXPECT_EQ(S_OK, Walk());
        return host.calls;
    }

    TestHost host;
};

TEST_F(EGRValvePositionAdjuster, FailTransition_IsRequired) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CEGRValvePositionAdjuster>(host, {})->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(EGRValvePositionAdjuster, SuccessTransition_IsNotDeclared) {
    const auto command = CreateCommand<CEGRValvePositionAdjuster>();
    EXPECT_EQ(E_INVALIDARG, SetProperty(*command.Get(), L"successTransition", L"good"));
}

TEST_F(EGRValvePositionAdjuster, EnablingBelow10_ReturnsAtOnce) {
    for (const LONG enabling : {9, 0, -1, INT32_MIN}) {
        host.ForgetCalls();
        Set(L"110143", CComVariant(enabling));
        EXPECT_EQ(S_OK, Walk());
        EXPECT_EQ((Calls{"GetParameter(110143, 1)", "QueryInterface(IParameterOld)", "get_Value()"}),
                  host.calls);
    }
}

TEST_F(EGRValvePositionAdjuster, EnablingThatIsNotANumber_CountsAs0) {
    Set(L"110143", CComVariant(CComBSTR(L"on")));
    EXPECT_EQ(S_OK, Walk());
    EXPECT_EQ(3u, host.calls.size());
}

TEST_F(EGRValvePositionAdjuster, Step_ReadsPositionThenTargetThenWrites) {
    EXPECT_EQ((Calls{"GetParameter(110143, 1)", "QueryInterface(IParameterOld)", "get_Value()",
                     "GetParameter(110145, 1)", "QueryInterface(IParameterOld)", "get_Value()",
                     "GetParameter(14531, 1)", "QueryInterface(IParameterOld)", "get_Value()",
                     "SetParameter(110145, 1, 45)", "SetTransition(bad)"}),
              CallsToFirstWrite());
}

TEST_F(EGRValvePositionAdjuster, Step_IsNeverBelowTheTargetAndNeverOverflows) {
    struct Case {
        LONG position;
        LONG target;
        LONG written;
    };
    for (const auto& [position, target, written] :
         {Case{50, 38, 45}, Case{43, 38, 38}, Case{44, 38, 39}, Case{42, 38, 38}, Case{38, 38, 38},
          Case{20, 38, 38}, Case{-3, -20, -8}, Case{INT32_MAX, INT32_MIN, INT32_MAX - 5},
          Case{INT32_MIN, INT32_MAX, INT32_MAX}, Case{INT32_MIN, INT32_MIN, INT32_MIN},
          Case{INT32_MIN + 2, INT32_MIN, INT32_MIN}, Case{INT32_MAX, INT32_MAX, INT32_MAX},
          Case{INT32_MAX, INT32_MAX - 2, INT32_MAX - 2}}) {
        host.ForgetCalls();
        Set(L"110145", CComVariant(position));
        Set(L"14531", CComVariant(target));
        const Calls calls = CallsToFirstWrite();
        ASSERT_EQ(11u, calls.size());
        EXPECT_EQ("SetParameter(110145, 1, " + std::to_string(written) + ")", calls[9])
            << position << " to " << target;
    }
}

TEST_F(EGRValvePositionAdjuster, FailedRead_TakesTheFailTransition) {
    for (const wchar_t* id : {L"110143", L"110145", L"14531"}) {
        host.ForgetCalls();
        host.parameters[id].offersInterface = false;
        EXPECT_EQ(S_OK, Walk());
        EXPECT_EQ("SetTransition(bad)", host.calls.back()) << Show(id);
        EXPECT_EQ("QueryInterface(IParameterOld)", host.calls[host.calls.size() - 2]) << Show(id);
        host.parameters[id].offersInterface = true;
    }
}

TEST_F(EGRValvePositionAdjuster, FailedFailTransition_IsIgnored) {
    host.fail["SetTransition"] = E_FAIL;
    host.parameters.erase(L"110143");
    EXPECT_EQ(S_OK, Walk());
    EXPECT_EQ((Calls{"GetParameter(110143, 1)", "SetTransition(bad)"}), host.calls);
}

} // namespace

} // namespace vant::test
