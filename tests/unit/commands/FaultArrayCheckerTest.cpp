#include "commands/FaultArrayChecker.h"

#include "tests/support/Commands.h"
#include "tests/support/EngineHost.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using namespace std::string_literals;

using Calls = std::vector<std::string>;

const FaultRecord active = {{L"199009", L"Active"}, {L"199008", L"P0123"}};
const FaultRecord inactive = {{L"199009", L"Inactive"}, {L"199008", L"P0456"}};

class FaultArrayChecker : public ::testing::Test {
protected:
    FaultArrayChecker() { host.dataStore[L"code"] = CComVariant(CComBSTR(L"before")); }

    HRESULT Execute(Properties properties) {
        const auto command = CreateCommand<CFaultArrayChecker>(host, properties);
        host.FailCall(failAt, E_NOTIMPL);
        host.ThrowAtCall(throwAt);
        const HRESULT code = command->Execute();
        host.FailCall(0, S_OK);
        host.ThrowAtCall(0);
        return code;
    }
    /// Checks array "faults" with all properties given: "clean" or "faulty" and the entry "code".
    std::string Check() {
        host.transitions.clear();
        host.dataStore[L"code"] = CComVariant(CComBSTR(L"before"));
        EXPECT_EQ(S_OK, Execute({{L"arrayID", L"faults"},
                                 {L"successTransitionID", L"clean"},
                                 {L"failTransitionID", L"faulty"},
                                 {L"dsFaultCode", L"code"}}));
        std::string outcome;
        for (const std::wstring& transition : host.transitions)
            outcome += Show(transition) + ' ';
        return outcome + Show(host.dataStore[L"code"].Get());
    }
    std::string CheckRecord(const FaultRecord& record) { return CheckRecords({record}); }
    std::string CheckRecords(const std::vector<FaultRecord>& records) {
        const FaultArray array(host, L"faults", records);
        return Check();
    }

    TestHost host;
    std::size_t failAt = 0;  ///< the call of the execution that fails, counted from 1
    std::size_t throwAt = 0; ///< the one that throws
};

const char* const cleanOutcome = "clean \"before\"";
const char* const quietEnd = "\"before\"";

// Comparisons

TEST_F(FaultArrayChecker, NamesAndStatus_AreComparedAsVarBstrCmpDoes) {
    // Null characters do not count, except at the beginning.
    EXPECT_EQ("faulty \"P0123\"", CheckRecord({{L"1990\0"
                                                L"09"s,
                                                L"Active\0"s},
                                               {L"199008\0"s, L"P0123"}}));
    EXPECT_EQ(cleanOutcome, CheckRecord({{L"\0"
                                          L"199009"s,
                                          L"Active"},
                                         {L"199008", L"P0123"}}));
    EXPECT_EQ(cleanOutcome, CheckRecord({{L"199009", L"\0Active"s}, {L"199008", L"P0123"}}));
}

// Calls

TEST_F(FaultArrayChecker, Array_IsAskedForWithKind2_AndItemsByIntegersFrom1) {
    EXPECT_EQ("faulty \"P0123\"", CheckRecords({inactive, active}));
    EXPECT_EQ((Calls{"GetParameter(faults, 2)",
                     "QueryInterface(IFaultArray)",
                     "get_Records()",
                     "QueryInterface(IFaultRecordList)",
                     "get_RecordCount()",
                     "get_Record(1)",
                     "get_FieldCount()",
                     "get_Field(1)",
                     "get_FieldName()",
                     "get_FieldValue()",
                     "get_Record(2)",
                     "get_FieldCount()",
                     "get_Field(1)",
                     "get_FieldName()",
                     "get_FieldValue()",
                     "get_FieldCount()",
                     "get_Field(1)",
                     "get_FieldName()",
                     "get_Field(2)",
                     "get_FieldName()",
                     "get_FieldValue()",
                     "SetValue(code, \"P0123\")",
                     "SetTransition(faulty)"}),
              host.calls);
}

TEST_F(FaultArrayChecker, Objects_AreReleasedInTheReverseOfAcquisition) {
    const FaultArray array(host, L"faults", {active});
    Check();
    EXPECT_EQ((Calls{"record 1", "records", "array"}), Calls(array.released.end() - 3, array.released.end()));
}

// Clean arrays

TEST_F(FaultArrayChecker, EmptyArray_TakesTheSuccessTransition) {
    EXPECT_EQ(cleanOutcome, CheckRecords({}));
}

TEST_F(FaultArrayChecker, NoActiveRecord_TakesTheSuccessTransition) {
    EXPECT_EQ(cleanOutcome, CheckRecords({inactive, inactive}));
}

TEST_F(FaultArrayChecker, NegativeCount_IsAnEmptyArray) {
    FaultArray array(host, L"faults", {active});
    array.count = -1;
    EXPECT_EQ(cleanOutcome, Check());
}

TEST_F(FaultArrayChecker, RecordWithoutAStatus_IsNotActive) {
    EXPECT_EQ(cleanOutcome, CheckRecords({{{L"199008", L"Active"}, {L"1", L"Active"}}, {}}));
}

TEST_F(FaultArrayChecker, StatusIsComparedExactly) {
    for (const wchar_t* status : {L"active", L"ACTIVE", L"", L"Active ", L" Active", L"Activ", L"1"})
        EXPECT_EQ(cleanOutcome, CheckRecord({{L"199009", status}})) << Show(status);
}

TEST_F(FaultArrayChecker, FieldNamesAreComparedExactly) {
    for (const wchar_t* name : {L"199009 ", L"0199009", L"19900", L"1990090", L""})
        EXPECT_EQ(cleanOutcome, CheckRecord({{name, L"Active"}})) << Show(name);
}

// Active faults

TEST_F(FaultArrayChecker, BothSpellingsOfBothFields_Count) {
    for (const wchar_t* status : {L"199009", L"16786047"})
        for (const wchar_t* code : {L"199008", L"16786048"})
            EXPECT_EQ("faulty \"P1\"", CheckRecord({{L"7", L"x"}, {code, L"P1"}, {status, L"Active"}}))
                << Show(status) << ' ' << Show(code);
}

TEST_F(FaultArrayChecker, FirstActiveRecord_Decides) {
    EXPECT_EQ("faulty \"P0123\"",
              CheckRecords({inactive, active, {{L"199009", L"Active"}, {L"199008", L"P0789"}}}));
    EXPECT_EQ(0, std::count(host.calls.begin(), host.calls.end(), "get_Record(3)"));
}

TEST_F(FaultArrayChecker, FirstStatusField_Decides) {
    EXPECT_EQ(cleanOutcome, CheckRecord({{L"199009", L"Inactive"}, {L"199009", L"Active"}}));
    EXPECT_EQ(cleanOutcome, CheckRecord({{L"16786047", L"Stored"}, {L"199009", L"Active"}}));
    EXPECT_EQ("faulty \"\"", CheckRecord({{L"16786047", L"Active"}, {L"199009", L"Inactive"}}));
}

TEST_F(FaultArrayChecker, FirstCodeField_Counts) {
    EXPECT_EQ("faulty \"P1\"",
              CheckRecord({{L"16786048", L"P1"}, {L"199009", L"Active"}, {L"199008", L"P2"}}));
}

TEST_F(FaultArrayChecker, RecordWithoutACode_StoresTheEmptyString) {
    EXPECT_EQ("faulty \"\"", CheckRecord({{L"199009", L"Active"}}));
}

// Optional properties

TEST_F(FaultArrayChecker, WithoutSuccessTransition_ACleanArrayEndsWithout) {
    const FaultArray array(host, L"faults", {inactive});
    EXPECT_EQ(
        S_OK,
        Execute({{L"arrayID", L"faults"}, {L"failTransitionID", L"faulty"}, {L"dsFaultCode", L"code"}}));
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(FaultArrayChecker, WithoutFaultCode_NothingIsStored) {
    const FaultArray array(host, L"faults", {active});
    EXPECT_EQ(S_OK, Execute({{L"arrayID", L"faults"}, {L"failTransitionID", L"faulty"}}));
    EXPECT_EQ("SetTransition(faulty)", host.calls.back());
    EXPECT_EQ("get_FieldValue()", host.calls[host.calls.size() - 2]) << "the status is the last that is read";
    EXPECT_EQ(1u, host.transitions.size());
}

TEST_F(FaultArrayChecker, WithoutFailTransition_AnActiveFaultIsStoredOnly) {
    const FaultArray array(host, L"faults", {active});
    EXPECT_EQ(
        S_OK,
        Execute({{L"arrayID", L"faults"}, {L"successTransitionID", L"clean"}, {L"dsFaultCode", L"code"}}));
    EXPECT_EQ("SetValue(code, \"P0123\")", host.calls.back());
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(FaultArrayChecker, ArrayId_IsRequired) {
    EXPECT_EQ(E_UNEXPECTED, Execute({{L"successTransitionID", L"clean"}}));
    EXPECT_EQ(Calls{}, host.calls);
}

// Failures

TEST_F(FaultArrayChecker, UnknownArray_EndsQuietly) {
    EXPECT_EQ(quietEnd, Check());
}

TEST_F(FaultArrayChecker, EveryFailingCall_EndsQuietly_WithNothingStoredOrTakenAfterIt) {
    const FaultArray array(host, L"faults", {inactive, active});
    Check();
    const std::size_t calls = host.calls.size();
    ASSERT_EQ("SetTransition(faulty)", host.calls.back());
    for (const bool throws : {false, true}) {
        for (std::size_t number = 1; number <= calls; ++number) {
            failAt = throws ? 0 : number;
            throwAt = throws ? number : 0;
            EXPECT_EQ(number == calls ? "\"P0123\"" : quietEnd, Check()) << number;
            EXPECT_EQ(number, host.calls.size());
        }
    }
}

TEST_F(FaultArrayChecker, CallThatSucceedsAndGivesNoObject_EndsQuietlyThere) {
    FaultArray array(host, L"faults", {active});
    for (const char* operation : {"get_Records", "get_Record", "get_Field"}) {
        array.givesNothing = {operation};
        EXPECT_EQ(quietEnd, Check()) << operation;
        EXPECT_TRUE(host.calls.back().starts_with(std::string(operation) + '(')) << host.calls.back();
    }
}

TEST_F(FaultArrayChecker, ServiceThatSucceedsAndGivesNoArray_EndsQuietly) {
    host.arrays[L"faults"] = nullptr;
    EXPECT_EQ(quietEnd, Check());
    EXPECT_EQ((Calls{"GetParameter(faults, 2)"}), host.calls);
}

TEST_F(FaultArrayChecker, FailingSuccessTransition_EndsQuietly) {
    const FaultArray array(host, L"faults", {});
    host.fail["SetTransition"] = E_NOTIMPL;
    EXPECT_EQ(quietEnd, Check());
}

TEST_F(FaultArrayChecker, ListThatHoldsLessThanItSays_EndsQuietly) {
    FaultArray array(host, L"faults", {inactive});
    array.count = 2;
    EXPECT_EQ(quietEnd, Check());
}

TEST_F(FaultArrayChecker, NeverInitialised_EndsQuietly) {
    EXPECT_EQ(S_OK, CreateCommand<CFaultArrayChecker>({{L"arrayID", L"faults"}})->Execute());
}

} // namespace

} // namespace vant::test
