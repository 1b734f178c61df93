// Every string allocation of an execution that fails in turn, as the portable platform lets a test arrange.

#include "commands/Calculator.h"
#include "commands/CommandTerminator.h"
#include "commands/CompositeCommand.h"
#include "commands/DataStoreWriter.h"
#include "commands/EGRValvePositionAdjuster.h"
#include "commands/SampledThrottleAdjuster.h"
#include "commands/StringFormatter.h"
#include "commands/ThrottleAdjuster.h"
#include "platform/portable/testing.h"
#include "tests/support/Commands.h"
#include "tests/support/EngineHost.h"
#include "tests/support/VirtualTime.h"
#include "tests/unit/commands/EngineAtTarget.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace vant::test {

namespace {

std::size_t allocations = 0;
std::size_t failingAllocation = 0;

/// Counts the string allocations of its life; the one of the given number, counted from 1, fails.
class FailAllocation {
public:
    explicit FailAllocation(std::size_t number) noexcept {
        allocations = 0;
        failingAllocation = number;
        vant::testing::SetBstrAllocationHook([]() noexcept { return ++allocations != failingAllocation; });
    }
    ~FailAllocation() { vant::testing::SetBstrAllocationHook(nullptr); }
    FailAllocation(const FailAllocation&) = delete;
    FailAllocation& operator=(const FailAllocation&) = delete;
};

/// Executes the command again and again, each time with another allocation failing, until none fails any
/// more. Each execution with a failure must return `outcome` and leave no string behind.
void ExpectOutcomeOfEveryFailure(IVantCommand& command, TestHost& host, HRESULT outcome) {
    ASSERT_EQ(S_OK, command.Execute());
    const std::size_t before = vant::testing::LiveBstrCount();
    for (std::size_t number = 1;; ++number) {
        HRESULT code = S_OK;
        bool failed = false;
        {
            const FailAllocation fail(number);
            code = command.Execute();
            failed = allocations >= number;
        }
        EXPECT_EQ(before, vant::testing::LiveBstrCount()) << "allocation " << number;
        if (!failed) {
            EXPECT_EQ(S_OK, code);
            EXPECT_GT(number, 1u) << "nothing was allocated";
            break;
        }
        EXPECT_EQ(outcome, code) << "allocation " << number;
    }
    host.ForgetCalls();
}

TEST(AllocationFailure, CompositeCommand_Fails) {
    TestHost host;
    const auto command = CreateCommand<CCompositeCommand>(host, {{L"commandIDList", L"A B C"}});
    ExpectOutcomeOfEveryFailure(*command.Get(), host, E_FAIL);
}

TEST(AllocationFailure, CommandTerminator_Fails) {
    TestHost host;
    const auto command = CreateCommand<CCommandTerminator>(host, {{L"commandID", L"T1"}});
    ExpectOutcomeOfEveryFailure(*command.Get(), host, E_FAIL);
}

TEST(AllocationFailure, DataStoreWriter_FailsAndKeepsTheEntry) {
    TestHost host;
    const auto command = CreateCommand<CDataStoreWriter>(host, {{L"dsLocation", L"x"}, {L"value", L"1"}});
    ExpectOutcomeOfEveryFailure(*command.Get(), host, E_FAIL);
    EXPECT_EQ("\"1\"", Show(host.dataStore[L"x"].Get()));
}

TEST(AllocationFailure, Calculator_EndsQuietlyAndKeepsTheEntry) {
    TestHost host;
    host.dataStore[L"a"] = CComVariant(CComBSTR(L"1"));
    const auto command = CreateCommand<CCalculator>(
        host, {{L"operation", L"add"}, {L"dsSourceA", L"a"}, {L"sourceB", L"2"}, {L"dsResult", L"x"}});
    ExpectOutcomeOfEveryFailure(*command.Get(), host, S_OK);
    EXPECT_EQ("\"3\"", Show(host.dataStore[L"x"].Get()));
}

TEST(AllocationFailure, StringFormatter_EndsQuietlyAndStoresNothing) {
    TestHost host;
    host.dataStore[L"number"] = CComVariant(2.5);
    host.dataStore[L"text"] = CComVariant(CComBSTR(L"$p(P) $d(number)"));
    host.parameters[L"P"].text = L"p";
    for (const auto& [operation, source, stored] : {std::tuple(L"round", L"number", "SetValue(x, \"2\")"),
                                                    {L"numToHMS", L"number", "SetValue(x, \"00:00:02\")"},
                                                    {L"substitute", L"text", "SetValue(x, \"p 2.5\")"}}) {
        const auto command = CreateCommand<CStringFormatter>(
            host, {{L"operation", operation}, {L"dsSourceString", source}, {L"dsTargetString", L"x"}});
        for (std::size_t number = 1;; ++number) {
            host.ForgetCalls();
            bool failed = false;
            {
                const FailAllocation fail(number);
                EXPECT_EQ(S_OK, command->Execute());
                failed = allocations >= number;
            }
            const auto stores = std::count_if(host.calls.begin(), host.calls.end(),
                                              [](const auto& call) { return call.starts_with("SetValue("); });
            if (!failed) {
                EXPECT_EQ(stored, host.calls.back());
                break;
            }
            // The copy that the host makes is the last one; then the call has been made.
            const bool hostsCopy = !host.calls.empty() && host.calls.back() == stored;
            EXPECT_EQ(hostsCopy ? 1 : 0, stores) << Show(operation) << ", allocation " << number;
        }
        EXPECT_EQ(std::string(stored).substr(12, std::string(stored).size() - 13),
                  Show(host.dataStore[L"x"].Get()));
    }
}

/// Lets a number of string allocations succeed in its life; all later ones fail.
class MemoryEndsAfter {
public:
    explicit MemoryEndsAfter(std::size_t successes) noexcept {
        allocations = 0;
        failingAllocation = successes + 1;
        vant::testing::SetBstrAllocationHook([]() noexcept { return ++allocations < failingAllocation; });
    }
    ~MemoryEndsAfter() { vant::testing::SetBstrAllocationHook(nullptr); }
    MemoryEndsAfter(const MemoryEndsAfter&) = delete;
    MemoryEndsAfter& operator=(const MemoryEndsAfter&) = delete;

    static bool HasEnded() noexcept { return allocations >= failingAllocation; }
};

using Transitions = std::vector<std::wstring>;

/// An engine at its target.
class AdjusterWithoutMemory : public ::testing::Test {
protected:
    AdjusterWithoutMemory() {
        host.Threads().startsThreads = false;
        SetEngine();
    }

    void SetEngine() {
        SetEngineAtTarget(host);
        engine.sessionValues[101000] = CComVariant(LONG{1500});
    }
    /// Lets memory end ever later, until the adjustment needs no more. Before, it must choose "bad".
    template <class Prepare, class Adjust>
    void ExpectTheFailTransition(Prepare prepare, Adjust adjust) {
        for (std::size_t successes = 0;; ++successes) {
            SetEngine();
            prepare();
            host.transitions.clear();
            bool ended = false;
            {
                const MemoryEndsAfter limit(successes);
                adjust();
                ended = MemoryEndsAfter::HasEnded();
            }
            if (!ended) {
                EXPECT_GT(successes, 0u) << "nothing was allocated";
                return;
            }
            EXPECT_EQ(Transitions{L"bad"}, host.transitions) << "after " << successes << " allocations";
        }
    }

    TestHost host;
    EngineServices engine{host};

private:
    const VirtualTime m_time;
};

TEST_F(AdjusterWithoutMemory, ThrottleAdjuster_HandsOverItsFailTransition) {
    const auto command = CreateCommand<CThrottleAdjuster>(
        host, {{L"successTransition", L"good"}, {L"failTransition", L"bad"}});
    ExpectTheFailTransition(
        [&] {
            host.Threads().ForgetRegistrations();
            EXPECT_EQ(S_OK, command->Execute());
        },
        [&] { host.Threads().Run(); });
}

TEST_F(AdjusterWithoutMemory, SampledThrottleAdjuster_HandsOverItsFailTransition) {
    const auto command = CreateCommand<CSampledThrottleAdjuster>(
        host, {{L"successTransition", L"good"}, {L"failTransition", L"bad"}});
    ExpectTheFailTransition([] {}, [&] { EXPECT_EQ(S_OK, command->Execute()); });
}

TEST_F(AdjusterWithoutMemory, EGRValvePositionAdjuster_HandsOverItsFailTransition) {
    const auto command = CreateCommand<CEGRValvePositionAdjuster>(host, {{L"failTransition", L"bad"}});
    ExpectTheFailTransition([] {}, [&] { EXPECT_EQ(S_OK, command->Execute()); });
}

} // namespace

} // namespace vant::test
