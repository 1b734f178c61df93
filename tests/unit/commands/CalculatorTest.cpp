#include "commands/Calculator.h"

#include "tests/support/Commands.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class Calculator : public ::testing::Test {
protected:
    /// Executes a Calculator whose result goes to the entry "result", and returns that entry as Show does.
    std::string Calculate(std::wstring_view operation, Properties operands) {
        auto command =
            CreateCommand<CCalculator>(host, {{L"operation", operation}, {L"dsResult", L"result"}});
        SetProperties(*command.Get(), operands);
        EXPECT_EQ(S_OK, command->Execute());
        return Show(host.dataStore[L"result"].Get());
    }
    void Store(std::wstring_view entry, CComVariant value) {
        host.dataStore.insert_or_assign(std::wstring(entry), std::move(value));
    }
    void Store(std::wstring_view entry, std::wstring_view text) { Store(entry, CComVariant(CComBSTR(text))); }

    TestHost host;
};

// Operations

TEST_F(Calculator, Operations_AreAppliedToBothOperands) {
    const Properties operands = {{L"sourceA", L"7.5"}, {L"sourceB", L"2"}};
    EXPECT_EQ("\"9.5\"", Calculate(L"add", operands));
    EXPECT_EQ("\"5.5\"", Calculate(L"subtract", operands));
    EXPECT_EQ("\"15\"", Calculate(L"multiply", operands));
    EXPECT_EQ("\"3.75\"", Calculate(L"divide", operands));
    EXPECT_EQ("\"-7.5\"", Calculate(L"negate", operands));
}

TEST_F(Calculator, UnknownOperation_GivesZero) {
    const Properties operands = {{L"sourceA", L"7.5"}, {L"sourceB", L"2"}};
    for (const std::wstring_view operation :
         {std::wstring_view(L"Add"), std::wstring_view(L"ADD"), std::wstring_view(L""),
          std::wstring_view(L"ad"), std::wstring_view(L"adds"), std::wstring_view(L" add"),
          std::wstring_view(L"add "), std::wstring_view(L"add\0", 4), std::wstring_view(L"power"),
          std::wstring_view(L"+")})
        EXPECT_EQ("\"0\"", Calculate(operation, operands)) << Show(operation);
}

TEST_F(Calculator, NullOperation_GivesZero) {
    const auto command = CreateCommand<CCalculator>(host, {{L"sourceA", L"7"}, {L"dsResult", L"result"}});
    ASSERT_EQ(S_OK, command->SetProperty(CComBSTR(L"operation").Get(), nullptr));
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ((Calls{"SetValue(result, \"0\")"}), host.calls);
}

TEST_F(Calculator, Negate_NeedsNoB) {
    EXPECT_EQ("\"-5\"", Calculate(L"negate", {{L"sourceA", L"5"}}));
}

TEST_F(Calculator, NegateWithBThatIsNotANumber_WritesNothing) {
    Store(L"result", L"before");
    EXPECT_EQ("\"before\"", Calculate(L"negate", {{L"sourceA", L"5"}, {L"sourceB", L"five"}}));
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(Calculator, OnlyA_CountsBAsZero) {
    EXPECT_EQ("\"5\"", Calculate(L"add", {{L"sourceA", L"5"}}));
    EXPECT_EQ("\"5\"", Calculate(L"subtract", {{L"sourceA", L"5"}}));
    EXPECT_EQ("\"0\"", Calculate(L"multiply", {{L"sourceA", L"5"}}));
}

TEST_F(Calculator, DivisionByZero_StoresItsResultOrNothingWhereItHasNoText) {
    // "INF", "-INF" and "-NAN(IND)" on the portable platform and under Wine; the text is the platform's
    // business.
    for (const auto& [dividend, quotient] : {std::pair{L"5", std::numeric_limits<double>::infinity()},
                                             std::pair{L"-5", -std::numeric_limits<double>::infinity()},
                                             std::pair{L"0", std::numeric_limits<double>::quiet_NaN()}}) {
        CComVariant text(quotient);
        const std::string expected = SUCCEEDED(text.ChangeType(VT_BSTR)) ? Show(text.Get()) : "\"before\"";
        // Which not-a-number comes out is the processor's business: its sign may differ.
        for (const wchar_t* zero : {L"0", L"0.0"}) {
            Store(L"result", L"before");
            const std::string result = Calculate(L"divide", {{L"sourceA", dividend}, {L"sourceB", zero}});
            if (!std::isnan(quotient))
                EXPECT_EQ(expected, result);
            else
                EXPECT_EQ(expected == "\"before\"", result == "\"before\"");
        }
    }
}

TEST_F(Calculator, Arithmetic_IsThatOfDoubles) {
    EXPECT_EQ("\"0.3\"", Calculate(L"subtract", {{L"sourceA", L"0.5"}, {L"sourceB", L"0.2"}}));
    EXPECT_EQ("\"1000000000000\"", Calculate(L"multiply", {{L"sourceA", L"1000000"}, {L"sourceB", L"1e6"}}));
    EXPECT_EQ("\"0\"", Calculate(L"subtract", {{L"sourceA", L"1e300"}, {L"sourceB", L"1e300"}}));
}

TEST_F(Calculator, Result_IsAlwaysAString) {
    Calculate(L"add", {{L"sourceA", L"1"}, {L"sourceB", L"2"}});
    EXPECT_EQ(VT_BSTR, host.dataStore[L"result"].Get().vt);
}

// Operands

TEST_F(Calculator, Entries_AreReadAThenBThenTheResultIsWritten) {
    Store(L"a", L"7");
    Store(L"b", L"2");
    EXPECT_EQ("\"9\"", Calculate(L"add", {{L"dsSourceA", L"a"}, {L"dsSourceB", L"b"}}));
    EXPECT_EQ((Calls{"GetValue(a)", "GetValue(b)", "SetValue(result, \"9\")"}), host.calls);
}

TEST_F(Calculator, Literals_AreNotReadFromTheStore) {
    Calculate(L"add", {{L"sourceA", L"1"}, {L"sourceB", L"2"}});
    EXPECT_EQ((Calls{"SetValue(result, \"3\")"}), host.calls);
}

TEST_F(Calculator, EntryOfB_WinsOverItsLiteral) {
    Store(L"b", L"2");
    EXPECT_EQ("\"7\"", Calculate(L"add", {{L"sourceA", L"5"}, {L"sourceB", L"100"}, {L"dsSourceB", L"b"}}));
    EXPECT_EQ("\"7\"",
              Calculate(L"add", {{L"sourceA", L"5"}, {L"sourceB", L"no number"}, {L"dsSourceB", L"b"}}));
}

TEST_F(Calculator, NumericEntries_AreNumbers) {
    Store(L"integer", CComVariant(LONG{-7}));
    Store(L"double", CComVariant(2.25));
    EXPECT_EQ("\"-4.75\"", Calculate(L"add", {{L"dsSourceA", L"integer"}, {L"dsSourceB", L"double"}}));
}

TEST_F(Calculator, TrueEntry_CountsAsMinusOne) {
    VARIANT truth;
    VariantInit(&truth);
    truth.vt = VT_BOOL;
    truth.boolVal = VARIANT_TRUE;
    Store(L"flag", CComVariant::Copy(truth));
    EXPECT_EQ("\"4\"", Calculate(L"add", {{L"sourceA", L"5"}, {L"dsSourceB", L"flag"}}));
}

TEST_F(Calculator, EmptyEntry_CountsAsZero) {
    Store(L"nothing", CComVariant());
    EXPECT_EQ("\"3\"", Calculate(L"add", {{L"dsSourceA", L"nothing"}, {L"sourceB", L"3"}}));
    EXPECT_EQ("\"3\"", Calculate(L"add", {{L"sourceA", L"3"}, {L"dsSourceB", L"nothing"}}));
}

TEST_F(Calculator, TextsOfNumbers_AreAcceptedAsThePlatformDoes) {
    EXPECT_EQ("\"-1234.5\"", Calculate(L"add", {{L"sourceA", L" (1,234.50) "}}));
    EXPECT_EQ("\"120\"", Calculate(L"add", {{L"sourceA", L"1.2E2"}}));
}

TEST_F(Calculator, Result_MayOverwriteItsOwnOperand) {
    Store(L"result", L"1");
    const Properties operands = {{L"dsSourceA", L"result"}, {L"sourceB", L"1"}};
    EXPECT_EQ("\"2\"", Calculate(L"add", operands));
    EXPECT_EQ("\"3\"", Calculate(L"add", operands));
}

TEST_F(Calculator, EntryNames_MayBeEmptyOrHoldNulls) {
    Store(L"", L"4");
    Store(std::wstring_view(L"a\0b", 3), L"5");
    EXPECT_EQ("\"9\"",
              Calculate(L"add", {{L"dsSourceA", L""}, {L"dsSourceB", std::wstring_view(L"a\0b", 3)}}));
    EXPECT_EQ((Calls{"GetValue()", "GetValue(a\\u{0}b)", "SetValue(result, \"9\")"}), host.calls);
}

// Failures

TEST_F(Calculator, OperandsThatAreNoNumbers_WriteNothing) {
    Store(L"result", L"before");
    for (const std::wstring_view text :
         {std::wstring_view(L"five"), std::wstring_view(L""), std::wstring_view(L" "),
          std::wstring_view(L"1.2.3"), std::wstring_view(L"5 rpm")}) {
        EXPECT_EQ("\"before\"", Calculate(L"add", {{L"sourceA", text}})) << Show(text);
        EXPECT_EQ("\"before\"", Calculate(L"add", {{L"sourceA", L"1"}, {L"sourceB", text}})) << Show(text);
        EXPECT_TRUE(host.calls.empty());
    }
}

TEST_F(Calculator, NullLiteral_WritesNothing) {
    const auto command = CreateCommand<CCalculator>(host, {{L"operation", L"add"}, {L"dsResult", L"result"}});
    ASSERT_EQ(S_OK, command->SetProperty(CComBSTR(L"sourceA").Get(), nullptr));
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(Calculator, BothOperands_AreFetchedBeforeEitherIsConverted) {
    Store(L"a", L"five");
    Store(L"b", L"2");
    Calculate(L"add", {{L"dsSourceA", L"a"}, {L"dsSourceB", L"b"}});
    EXPECT_EQ((Calls{"GetValue(a)", "GetValue(b)"}), host.calls);
}

TEST_F(Calculator, MissingEntryOfA_EndsBeforeBIsRead) {
    Store(L"result", L"before");
    Store(L"b", L"2");
    EXPECT_EQ("\"before\"", Calculate(L"add", {{L"dsSourceA", L"nowhere"}, {L"dsSourceB", L"b"}}));
    EXPECT_EQ((Calls{"GetValue(nowhere)"}), host.calls);
}

TEST_F(Calculator, MissingEntryOfB_WritesNothing) {
    Store(L"result", L"before");
    EXPECT_EQ("\"before\"", Calculate(L"negate", {{L"sourceA", L"1"}, {L"dsSourceB", L"nowhere"}}));
    EXPECT_EQ((Calls{"GetValue(nowhere)"}), host.calls);
}

TEST_F(Calculator, EveryHostCallThatFails_EndsQuietlyAndKeepsTheResult) {
    for (std::size_t call = 1; call <= 3; ++call) {
        for (const bool throws : {false, true}) {
            TestHost other;
            other.dataStore[L"a"] = CComVariant(1.0);
            other.dataStore[L"b"] = CComVariant(2.0);
            other.dataStore[L"result"] = CComVariant(CComBSTR(L"before"));
            const auto command = CreateCommand<CCalculator>(other, {{L"operation", L"add"},
                                                                    {L"dsSourceA", L"a"},
                                                                    {L"dsSourceB", L"b"},
                                                                    {L"dsResult", L"result"}});
            if (throws)
                other.ThrowAtCall(call);
            else
                other.FailCall(call, E_UNEXPECTED);
            EXPECT_EQ(S_OK, command->Execute());
            EXPECT_EQ(call, other.CallCount());
            EXPECT_EQ("\"before\"", Show(other.dataStore[L"result"].Get()));
        }
    }
}

TEST_F(Calculator, WithoutInitialize_EndsQuietly) {
    const Properties common = {{L"operation", L"add"}, {L"dsResult", L"result"}};
    const auto literal = CreateCommand<CCalculator>(common);
    SetProperties(*literal.Get(), {{L"sourceA", L"1"}, {L"sourceB", L"2"}});
    EXPECT_EQ(S_OK, literal->Execute());
    const auto reference = CreateCommand<CCalculator>(common);
    SetProperties(*reference.Get(), {{L"dsSourceA", L"a"}, {L"dsSourceB", L"b"}});
    EXPECT_EQ(S_OK, reference->Execute());
}

TEST_F(Calculator, Execute_KeepsNothingForTheNextOne) {
    const auto command = CreateCommand<CCalculator>(
        host, {{L"operation", L"add"}, {L"dsSourceA", L"a"}, {L"sourceB", L"1"}, {L"dsResult", L"result"}});
    Store(L"a", L"five");
    EXPECT_EQ(S_OK, command->Execute());
    Store(L"a", L"5");
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ("\"6\"", Show(host.dataStore[L"result"].Get()));
}

// Validation

class CalculatorValidation : public ::testing::Test {
protected:
    /// Whether the set is valid; Execute must agree with get_IsValid.
    bool IsValid(Properties operands) {
        const auto command = CreateCommand<CCalculator>(host, operands);
        VARIANT_BOOL isValid = VARIANT_FALSE;
        EXPECT_EQ(S_OK, command->get_IsValid(&isValid));
        EXPECT_EQ(isValid ? S_OK : E_UNEXPECTED, command->Execute());
        EXPECT_EQ(isValid != VARIANT_FALSE, host.CallCount() != 0);
        return isValid != VARIANT_FALSE;
    }

    TestHost host;
};

TEST_F(CalculatorValidation, ExactlyOneSourceOfA_IsRequired) {
    EXPECT_TRUE(IsValid({{L"sourceA", L"1"}, {L"dsResult", L"r"}, {L"operation", L"add"}}));
    EXPECT_TRUE(IsValid({{L"dsSourceA", L"a"}, {L"dsResult", L"r"}, {L"operation", L"add"}}));
    EXPECT_FALSE(IsValid({{L"dsResult", L"r"}, {L"operation", L"add"}}));
    EXPECT_FALSE(
        IsValid({{L"sourceA", L"1"}, {L"dsSourceA", L"a"}, {L"dsResult", L"r"}, {L"operation", L"add"}}));
    EXPECT_FALSE(IsValid({{L"sourceB", L"1"}, {L"dsResult", L"r"}, {L"operation", L"add"}}));
}

TEST_F(CalculatorValidation, BothSourcesOfB_MayBeGiven) {
    EXPECT_TRUE(IsValid({{L"sourceA", L"1"},
                         {L"sourceB", L"1"},
                         {L"dsSourceB", L"b"},
                         {L"dsResult", L"r"},
                         {L"operation", L"add"}}));
}

TEST_F(CalculatorValidation, ResultAndOperation_AreRequired) {
    EXPECT_FALSE(IsValid({{L"sourceA", L"1"}, {L"operation", L"add"}}));
    EXPECT_FALSE(IsValid({{L"sourceA", L"1"}, {L"dsResult", L"r"}}));
    EXPECT_TRUE(IsValid({{L"sourceA", L"1"}, {L"dsResult", L""}, {L"operation", L""}}));
}

TEST_F(CalculatorValidation, OtherNames_AreRefused) {
    const auto command = CreateCommand<CCalculator>();
    for (const wchar_t* name : {L"SourceA", L"sourcea", L"value", L"dsSource", L"result"})
        EXPECT_EQ(E_INVALIDARG, SetProperty(*command.Get(), name, L"1")) << name;
}

} // namespace

} // namespace vant::test
