// Every string allocation of an execution that fails in turn, as the portable platform lets a test arrange.

#include "commands/Calculator.h"
#include "commands/CommandTerminator.h"
#include "commands/CompositeCommand.h"
#include "commands/DataStoreWriter.h"
#include "platform/portable/testing.h"
#include "tests/support/Commands.h"

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
/// more. Each execution with a failure must answer `outcome` and leave no string behind.
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

} // namespace

} // namespace vant::test
