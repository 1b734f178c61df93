#include "commands/Timer.h"

#include "tests/support/VirtualTime.h"
#include "tests/unit/commands/PersistentRun.h"

#include <utility>

namespace vant::test {

namespace {

/// Its body can be run without Execute.
class COpenTimer : public CTimer {
public:
    using CTimer::ExecutePersistent;
};

class Timer : public PersistentRun<CTimer> {};

TEST_F(Timer, LengthAndDsLength_AreInvalidTogether) {
    const auto both =
        CreateCommand<CTimer>(host, {{L"length", L"1"}, {L"dsLength", L"entry"}, {L"dsBase", L"count"}});
    EXPECT_EQ(E_UNEXPECTED, both->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(Timer, WithoutLength_IsInvalid) {
    EXPECT_EQ(E_UNEXPECTED, CreateCommand<CTimer>(host, {{L"dsBase", L"count"}})->Execute());
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(Timer, NegativeLength_PublishesItAndRunsTheStopCommandWithoutTick) {
    Run({{L"length", L"-5"},
         {L"dsBase", L"count"},
         {L"startCommandID", L"start"},
         {L"tickCommandID", L"tick"},
         {L"stopCommandID", L"stop"}});
    EXPECT_EQ((Calls{"SetValue(count, -5)", "RunCommandFromThread(start)", "RunCommandFromThread(stop)"}),
              host.calls);
}

TEST_F(Timer, NegativeLength_UpCounter_PublishesTheSame) {
    Run({{L"length", L"-1"}, {L"dsBase", L"count"}, {L"type", L"upCounter"}});
    EXPECT_EQ(Calls{"SetValue(count, -1)"}, host.calls);
}

TEST_F(Timer, FirstPublication_IsTheLengthAsInteger) {
    Execute({{L"length", L"10"}, {L"dsBase", L"count"}});
    StopSilently();
    RunBody();
    EXPECT_EQ(VT_I4, host.dataStore[L"count"].Get().vt);
    EXPECT_EQ(10, host.dataStore[L"count"].Get().lVal);
}

TEST_F(Timer, FirstPublication_UpCounter_IsTheLength) {
    Execute({{L"length", L"10"}, {L"dsBase", L"count"}, {L"type", L"upCounter"}});
    StopSilently();
    RunBody();
    EXPECT_EQ(Calls{"SetValue(count, 10)"}, host.calls);
}

TEST_F(Timer, Type_IsComparedAsVarBstrCmpDoes) {
    // Null characters do not count, except at the beginning.
    using namespace std::string_view_literals;
    for (const auto& [type, last] : {std::pair(L"upCounter\0"sv, "SetValue(count, \"1\")"),
                                     {L"\0upCounter"sv, "SetValue(count, \"-1\")"}}) {
        const VirtualTime time;
        Run({{L"length", L"0"}, {L"dsBase", L"count"}, {L"type", type}});
        EXPECT_EQ(last, host.calls.back());
        host.Threads().ForgetRegistrations();
    }
}

TEST_F(Timer, StoppedBeforeItsThreadRuns_PublishesStartsAndTicksOnce) {
    Execute({{L"length", L"10"},
             {L"dsBase", L"count"},
             {L"startCommandID", L"start"},
             {L"tickCommandID", L"tick"},
             {L"stopCommandID", L"stop"}});
    StopSilently();
    RunBody();
    EXPECT_EQ((Calls{"SetValue(count, 10)", "RunCommandFromThread(start)", "RunCommandFromThread(tick)"}),
              host.calls);
}

TEST_F(Timer, StoppedByItsTick_RunsNoStopCommand) {
    StopAt("RunCommandFromThread(tick)");
    Run({{L"length", L"0"}, {L"dsBase", L"count"}, {L"tickCommandID", L"tick"}, {L"stopCommandID", L"stop"}});
    EXPECT_EQ((Calls{"SetValue(count, 0)", "PersistentCommandStopped()", "RunCommandFromThread(tick)"}),
              host.calls);
}

TEST_F(Timer, WaitThatFails_EndsLikeAStop) {
    const auto timer = CreateCommand<COpenTimer>(
        host,
        {{L"length", L"3"}, {L"dsBase", L"count"}, {L"tickCommandID", L"tick"}, {L"stopCommandID", L"stop"}});
    static_cast<COpenTimer*>(timer.Get())->ExecutePersistent(); // There is no stop event before Execute.
    EXPECT_EQ((Calls{"SetValue(count, 3)", "RunCommandFromThread(tick)"}), host.calls);
}

TEST_F(Timer, LengthAndDsLength_InABodyThatIsNotValidated_TheLiteralCounts) {
    const auto timer = CreateCommand<COpenTimer>(
        host, {{L"length", L"-1"}, {L"dsLength", L"seconds"}, {L"dsBase", L"count"}});
    static_cast<COpenTimer*>(timer.Get())->ExecutePersistent();
    EXPECT_EQ(Calls{"SetValue(count, -1)"}, host.calls);
}

TEST_F(Timer, LengthFromTheDataStore_IsReadAsText) {
    Store(L"seconds", L"-3");
    Run({{L"dsLength", L"seconds"}, {L"dsBase", L"count"}});
    EXPECT_EQ((Calls{"GetValue(seconds)", "SetValue(count, -3)"}), host.calls);
}

TEST_F(Timer, LengthWithBlanksAndFraction_IsConvertedAsANumber) {
    Run({{L"length", L" -2.5 "}, {L"dsBase", L"count"}});
    EXPECT_EQ(Calls{"SetValue(count, -2)"}, host.calls);
}

TEST_F(Timer, LengthThatIsNotANumber_EndsQuietly) {
    for (const wchar_t* length : {L"", L"ten", L"1 2", L"99999999999"}) {
        host.Threads().ForgetRegistrations();
        Run({{L"length", length},
             {L"dsBase", L"count"},
             {L"startCommandID", L"start"},
             {L"stopCommandID", L"stop"}});
        EXPECT_EQ(Calls{}, host.calls) << Show(length);
    }
}

TEST_F(Timer, DataStoreReadThatFails_EndsQuietlyAtTheEmptyText) {
    Run({{L"dsLength", L"missing"}, {L"dsBase", L"count"}, {L"stopCommandID", L"stop"}});
    EXPECT_EQ(Calls{"GetValue(missing)"}, host.calls);
}

TEST_F(Timer, DataStoreEntryThatIsNotAText_EndsQuietly) {
    host.dataStore[L"seconds"] = CComVariant(LONG{-3});
    Run({{L"dsLength", L"seconds"}, {L"dsBase", L"count"}, {L"stopCommandID", L"stop"}});
    EXPECT_EQ(Calls{"GetValue(seconds)"}, host.calls);
}

TEST_F(Timer, FailedPublicationAndCommands_AreIgnored) {
    host.fail["SetValue"] = E_ACCESSDENIED;
    host.fail["RunCommandFromThread"] = E_NOTIMPL;
    Run({{L"length", L"-1"},
         {L"dsBase", L"count"},
         {L"startCommandID", L"start"},
         {L"stopCommandID", L"stop"}});
    EXPECT_EQ((Calls{"SetValue(count, -1)", "RunCommandFromThread(start)", "RunCommandFromThread(stop)"}),
              host.calls);
}

TEST_F(Timer, CommandsWithEmptyIds_AreRunAllTheSame) {
    Run({{L"length", L"-1"}, {L"dsBase", L"count"}, {L"startCommandID", L""}, {L"stopCommandID", L""}});
    EXPECT_EQ(3u, host.calls.size());
}

} // namespace

} // namespace vant::test
