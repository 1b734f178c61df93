#include "commands/EGRValvePositionAdjuster.h"
#include "tests/support/Commands.h"
#include "tests/support/VirtualTime.h"

#include <functional>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class EGRValvePositionAdjusterInTime : public ::testing::Test {
protected:
    EGRValvePositionAdjusterInTime() {
        Set(L"110143", 10);
        Set(L"110145", 50);
        Set(L"14531", 38);
        host.onCall = [this](const std::string& call) {
            if (!call.starts_with("QueryInterface(") && !call.starts_with("get_"))
                log.push_back(At(call));
            if (call.starts_with("SetParameter(") && ++m_writes == m_eventWrite)
                m_event();
        };
    }

    void Set(const wchar_t* id, LONG value) { host.parameters[id].value = CComVariant(value); }
    /// Does something just before this write, the first being 1, takes effect.
    void AtWrite(int number, std::function<void()> event) {
        m_eventWrite = number;
        m_event = std::move(event);
    }
    void Walk() {
        EXPECT_EQ(S_OK,
                  CreateCommand<CEGRValvePositionAdjuster>(host, {{L"failTransition", L"bad"}})->Execute());
    }
    /// The positions that were written, in order.
    Calls Written() const {
        const std::string opening = "SetParameter(110145, 1, ";
        Calls written;
        for (const std::string& call : host.calls) {
            if (call.starts_with(opening))
                written.push_back(call.substr(opening.size(), call.size() - opening.size() - 1));
        }
        return written;
    }
    static std::string At(const std::string& what) {
        return std::to_string(ClockMilliseconds()) + ' ' + what;
    }

    TestHost host;
    Calls log;

private:
    const VirtualTime m_time;
    int m_writes = 0;
    int m_eventWrite = 0;
    std::function<void()> m_event;
};

TEST_F(EGRValvePositionAdjusterInTime, Walk_StepsDownToTheTargetAndChoosesNoTransition) {
    Walk();
    EXPECT_EQ((Calls{"45", "40", "38"}), Written());
    EXPECT_EQ(15'000, ClockMilliseconds());
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(EGRValvePositionAdjusterInTime, PositionEqualToTheTarget_IsWrittenOnce) {
    Set(L"110145", 38);
    Walk();
    EXPECT_EQ((Calls{"38"}), Written());
    EXPECT_EQ(5000, ClockMilliseconds());
}

TEST_F(EGRValvePositionAdjusterInTime, PositionBelowTheTarget_IsRaisedToIt) {
    Set(L"110145", -100);
    Walk();
    EXPECT_EQ((Calls{"38"}), Written());
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(EGRValvePositionAdjusterInTime, EnablingFallsDuringTheWalk_EndsAfterTheDelayOfTheStep) {
    AtWrite(2, [this] { Set(L"110143", 9); });
    Walk();
    EXPECT_EQ((Calls{"45", "40"}), Written());
    EXPECT_EQ(10'000, ClockMilliseconds());
    EXPECT_EQ("10000 GetParameter(14531, 1)", log.back()) << "all three are read before it ends";
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(EGRValvePositionAdjusterInTime, ReportedPositionCounts_NotTheWrittenOne) {
    // The engine takes no position until the fourth write.
    Set(L"110145", 40);
    int writes = 0;
    const auto note = host.onCall;
    host.onCall = [&, note](const std::string& call) {
        note(call);
        if (call.starts_with("SetParameter("))
            ++writes;
        else if (call == "GetParameter(110145, 1)" && writes < 4)
            Set(L"110145", 40);
    };
    Walk();
    EXPECT_EQ((Calls{"38", "38", "38", "38"}), Written());
    EXPECT_EQ(20'000, ClockMilliseconds());
}

TEST_F(EGRValvePositionAdjusterInTime, PositionThatNeverReachesTheTarget_IsWalkedWithoutLimit) {
    const auto note = host.onCall;
    host.onCall = [this, note](const std::string& call) {
        note(call);
        if (call == "GetParameter(110145, 1)")
            Set(L"110145", 40);
    };
    AtWrite(200, [this] { Set(L"110143", 9); });
    Walk();
    EXPECT_EQ(Calls(200, "38"), Written());
    EXPECT_EQ(200 * 5000, ClockMilliseconds());
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(EGRValvePositionAdjusterInTime, TargetThatMoves_IsFollowed) {
    AtWrite(1, [this] { Set(L"14531", 30); });
    Walk();
    EXPECT_EQ((Calls{"45", "40", "35", "30"}), Written());
}

TEST_F(EGRValvePositionAdjusterInTime, FailedReadAfterAStep_TakesTheFailTransition) {
    for (const wchar_t* id : {L"110143", L"110145", L"14531"}) {
        SCOPED_TRACE(Show(id));
        log.clear();
        host.transitions.clear();
        Set(L"110145", 50);
        const std::int64_t start = ClockMilliseconds();
        const auto note = host.onCall;
        host.onCall = [&, note](const std::string& call) {
            note(call);
            if (ClockMilliseconds() == start + 5000)
                host.parameters[id].offersInterface = false;
        };
        Walk();
        host.onCall = note;
        host.parameters[id].offersInterface = true;
        EXPECT_EQ(start + 5000, ClockMilliseconds());
        EXPECT_EQ((std::vector<std::wstring>{L"bad"}), host.transitions);
    }
}

TEST_F(EGRValvePositionAdjusterInTime, FailedLaterWrite_TakesTheFailTransition) {
    AtWrite(3, [this] { host.fail["SetParameter"] = E_FAIL; });
    Walk();
    EXPECT_EQ((Calls{"45", "40", "38"}), Written());
    EXPECT_EQ("10000 SetTransition(bad)", log.back());
    EXPECT_EQ(40, host.parameters[L"110145"].value.Get().lVal) << "the last accepted position stays";
}

TEST_F(EGRValvePositionAdjusterInTime, FailedFailTransition_IsIgnored) {
    AtWrite(1, [this] { host.fail = {{"SetParameter", E_FAIL}, {"SetTransition", E_FAIL}}; });
    Walk();
    EXPECT_EQ((Calls{"0 SetParameter(110145, 1, 45)", "0 SetTransition(bad)"}),
              Calls(log.end() - 2, log.end()));
}

} // namespace

} // namespace vant::test
