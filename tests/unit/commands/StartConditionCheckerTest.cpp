#include "commands/StartConditionChecker.h"

#include "tests/support/Commands.h"
#include "tests/support/ConditionSet.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class StartConditionChecker : public ::testing::Test {
protected:
    StartConditionChecker() { host.dataStore[L"failure"] = CComVariant(CComBSTR(L"engine is cold")); }

    HRESULT Execute() {
        return Execute({{L"dsSetID", L"set"},
                        {L"dsFailMessage", L"message"},
                        {L"validTransitionID", L"valid"},
                        {L"invalidTransitionID", L"invalid"}});
    }
    HRESULT Execute(Properties properties) {
        const auto command = CreateCommand<CStartConditionChecker>(host, properties);
        host.FailCall(failAt, E_ACCESSDENIED);
        const HRESULT code = command->Execute();
        host.FailCall(0, S_OK);
        return code;
    }

    TestHost host;
    ConditionSet conditions{host, L"set"};
    std::size_t failAt = 0; ///< the call of the execution that fails, counted from 1
};

const Calls readAndEvaluate = {"GetValue(set)", "QueryInterface(IConditionSet)", "Evaluate()"};

Calls operator+(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(StartConditionChecker, ConditionsMet_ChoosesTheValidTransitionAndWritesNothing) {
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ(readAndEvaluate + Calls{"SetTransition(valid)"}, host.calls);
}

TEST_F(StartConditionChecker, ConditionsNotMet_CopiesTheMessageThenChoosesTheInvalidTransition) {
    conditions.answers = {VARIANT_FALSE};
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ(readAndEvaluate + (Calls{"GetFailureKey()", "GetValue(failure)",
                                       "SetValue(message, \"engine is cold\")", "SetTransition(invalid)"}),
              host.calls);
}

TEST_F(StartConditionChecker, AnyOtherFlag_CountsAsNotMet) {
    for (const VARIANT_BOOL flag : {VARIANT_BOOL{1}, VARIANT_BOOL{-2}}) {
        ConditionSet odd(host, L"set");
        odd.answers = {flag};
        host.transitions.clear();
        EXPECT_EQ(S_OK, Execute());
        EXPECT_EQ((std::vector<std::wstring>{L"invalid"}), host.transitions) << flag;
    }
}

TEST_F(StartConditionChecker, EvaluateThatFailsWithoutFlag_CountsAsNotMet) {
    conditions.leavesFlag = true;
    host.fail["Evaluate"] = E_ACCESSDENIED;
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ((std::vector<std::wstring>{L"invalid"}), host.transitions);
    EXPECT_EQ("\"engine is cold\"", Show(host.dataStore[L"message"].Get()));
}

TEST_F(StartConditionChecker, EvaluateThatFailsWithTheFlagSet_CountsAsMet) {
    host.fail["Evaluate"] = E_ACCESSDENIED;
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ((std::vector<std::wstring>{L"valid"}), host.transitions);
}

TEST_F(StartConditionChecker, EvaluateThatSucceedsWithoutFlag_CountsAsNotMet) {
    conditions.leavesFlag = true;
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ((std::vector<std::wstring>{L"invalid"}), host.transitions);
}

TEST_F(StartConditionChecker, ConditionsMetWithoutValidTransition_DoesNothingVisible) {
    EXPECT_EQ(S_OK, Execute({{L"dsSetID", L"set"}, {L"invalidTransitionID", L"invalid"}}));
    EXPECT_EQ(readAndEvaluate, host.calls);
}

TEST_F(StartConditionChecker, ConditionsNotMetWithoutInvalidTransition_OnlyCopiesTheMessage) {
    conditions.answers = {VARIANT_FALSE};
    EXPECT_EQ(
        S_OK,
        Execute({{L"dsSetID", L"set"}, {L"dsFailMessage", L"message"}, {L"validTransitionID", L"valid"}}));
    EXPECT_EQ(readAndEvaluate +
                  (Calls{"GetFailureKey()", "GetValue(failure)", "SetValue(message, \"engine is cold\")"}),
              host.calls);
}

TEST_F(StartConditionChecker, WithoutFailMessage_CopiesToTheEntryWithoutName) {
    conditions.answers = {VARIANT_FALSE};
    EXPECT_EQ(S_OK, Execute({{L"dsSetID", L"set"}, {L"invalidTransitionID", L"invalid"}}));
    EXPECT_EQ(readAndEvaluate + (Calls{"GetFailureKey()", "GetValue(failure)",
                                       "SetValue(null, \"engine is cold\")", "SetTransition(invalid)"}),
              host.calls);
}

TEST_F(StartConditionChecker, EmptyTransition_IsChosen) {
    EXPECT_EQ(S_OK, Execute({{L"dsSetID", L"set"}, {L"validTransitionID", L""}}));
    EXPECT_EQ((std::vector<std::wstring>{L""}), host.transitions);
}

TEST_F(StartConditionChecker, Message_IsCopiedWithItsType) {
    const auto copyOf = [this](CComVariant message) {
        ConditionSet failing(host, L"set");
        failing.answers = {VARIANT_FALSE};
        host.dataStore[L"failure"] = std::move(message);
        EXPECT_EQ(S_OK, Execute());
        return Show(host.dataStore[L"message"].Get());
    };
    VARIANT flag = {};
    flag.vt = VT_BOOL;
    flag.boolVal = VARIANT_TRUE;
    EXPECT_EQ("7", copyOf(CComVariant(LONG{7})));
    EXPECT_EQ("2.5", copyOf(CComVariant(2.5)));
    EXPECT_EQ("true", copyOf(CComVariant::Copy(flag)));
    EXPECT_EQ("empty", copyOf(CComVariant()));
    EXPECT_EQ("\"a\"", copyOf(CComVariant(CComBSTR(L"a"))));
}

TEST_F(StartConditionChecker, EveryCheckedCallThatFails_EndsTheCommandThere) {
    conditions.answers = {VARIANT_FALSE};
    for (const std::size_t number : {1u, 2u, 4u, 5u, 6u, 7u}) {
        failAt = number;
        EXPECT_EQ(E_FAIL, Execute());
        EXPECT_EQ(number, host.CallCount());
        EXPECT_TRUE(host.transitions.empty());
    }
}

TEST_F(StartConditionChecker, ValidTransitionThatFails_ReturnsEFail) {
    host.fail["SetTransition"] = E_ACCESSDENIED;
    EXPECT_EQ(E_FAIL, Execute());
}

TEST_F(StartConditionChecker, EntryWithoutObject_ChoosesNothing) {
    host.dataStore[L"set"] = CComVariant(CComBSTR(L"no object"));
    EXPECT_EQ(E_FAIL, Execute());
    EXPECT_EQ(Calls{"GetValue(set)"}, host.calls);
}

TEST_F(StartConditionChecker, MissingEntry_ChoosesNothing) {
    host.dataStore.erase(L"set");
    EXPECT_EQ(E_FAIL, Execute());
    EXPECT_EQ(Calls{"GetValue(set)"}, host.calls);
}

TEST_F(StartConditionChecker, ObjectWithoutTheInterface_ChoosesNothing) {
    host.fail["QueryInterface"] = E_NOINTERFACE;
    EXPECT_EQ(E_FAIL, Execute());
    EXPECT_EQ((Calls{"GetValue(set)", "QueryInterface(IConditionSet)"}), host.calls);
}

TEST_F(StartConditionChecker, MissingMessage_ChoosesNothing) {
    conditions.answers = {VARIANT_FALSE};
    conditions.failureKey = L"missing";
    EXPECT_EQ(E_FAIL, Execute());
    EXPECT_EQ("GetValue(missing)", host.calls.back());
}

TEST_F(StartConditionChecker, ReleasesTheSet) {
    const LONG before = host.OutstandingReferences();
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ(before, host.OutstandingReferences());
}

} // namespace

} // namespace vant::test
