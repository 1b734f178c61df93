// The three adjusters in real time, all at once: one settling delay each.

#include "commands/EGRValvePositionAdjuster.h"
#include "commands/SampledThrottleAdjuster.h"
#include "commands/ThrottleAdjuster.h"
#include "tests/support/Commands.h"
#include "tests/support/EngineHost.h"
#include "tests/unit/commands/EngineAtTarget.h"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace vant::test {

namespace {

/// A host with an engine at its target, and one command.
template <class Class>
class Adjustment {
public:
    explicit Adjustment(Properties properties) {
        SetEngineAtTarget(host);
        host.Threads().startsThreads = false;
        command = CreateCommand<Class>(host, properties);
    }

    TestHost host;
    EngineServices engine{host};
    CComPtr<IVantCommand> command;
};

TEST(AdjustersInRealTime, EachWaitsFiveSecondsAfterItsStep) {
    Adjustment<CThrottleAdjuster> throttle({{L"successTransition", L"good"}, {L"failTransition", L"bad"}});
    Adjustment<CSampledThrottleAdjuster> sampled(
        {{L"successTransition", L"good"}, {L"failTransition", L"bad"}});
    Adjustment<CEGRValvePositionAdjuster> valve({{L"failTransition", L"bad"}});
    EXPECT_EQ(S_OK, throttle.command->Execute());
    const auto start = std::chrono::steady_clock::now();
    {
        std::thread first([&] { throttle.host.Threads().Run(); });
        std::thread second([&] { sampled.command->Execute(); });
        valve.command->Execute();
        first.join();
        second.join();
    }
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(passed, std::chrono::milliseconds(4950)); // Windows counts in ticks of up to 16 ms
    EXPECT_LT(passed, std::chrono::seconds(9)) << "there was more than one delay";
    EXPECT_EQ(std::vector<std::wstring>{L"good"}, throttle.host.transitions);
    EXPECT_EQ(20, throttle.host.parameters[L"13190"].value.Get().lVal);
    EXPECT_EQ(std::vector<std::wstring>{L"good"}, sampled.host.transitions);
    EXPECT_EQ(20, sampled.host.parameters[L"110142"].value.Get().lVal);
    EXPECT_EQ(std::vector<std::wstring>{}, valve.host.transitions);
    EXPECT_EQ(40, valve.host.parameters[L"110145"].value.Get().lVal);
}

} // namespace

} // namespace vant::test
