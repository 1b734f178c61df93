#include "commands/StringFormatter.h"

#include "framework/ReferenceExpansion.h"
#include "platform/Utf8.h"
#include "tests/support/Commands.h"

#include <optional>
#include <string>
#include <vector>

namespace vant::test {

namespace {

using Calls = std::vector<std::string>;

class StringFormatter : public ::testing::Test {
protected:
    StringFormatter() { host.dataStore[L"target"] = CComVariant(CComBSTR(L"before")); }

    static CComVariant Text(std::wstring_view text) { return CComVariant(CComBSTR(text)); }

    /// Formats `source` into the entry "target" and returns that entry.
    std::string Format(std::wstring_view operation, CComVariant source,
                       std::optional<std::wstring_view> roundLength = std::nullopt) {
        host.dataStore[L"source"] = std::move(source);
        auto command = CreateCommand<CStringFormatter>(
            host,
            {{L"dsSourceString", L"source"}, {L"dsTargetString", L"target"}, {L"operation", operation}});
        if (roundLength)
            SetProperties(*command.Get(), {{L"roundLength", *roundLength}});
        host.FailCall(failAt, E_NOTIMPL);
        host.ThrowAtCall(throwAt);
        EXPECT_EQ(S_OK, command->Execute());
        host.FailCall(0, S_OK);
        host.ThrowAtCall(0);
        return Show(host.dataStore[L"target"].Get());
    }
    std::string Substitute(std::wstring_view text) { return Format(L"substitute", Text(text)); }
    std::string Round(std::wstring_view text, std::wstring_view decimals) {
        return Format(L"round", Text(text), decimals);
    }
    std::string NumToHms(std::wstring_view text) { return Format(L"numToHMS", Text(text)); }

    TestHost host;
    std::size_t failAt = 0;  ///< the call of the execution that fails, counted from 1
    std::size_t throwAt = 0; ///< the one that throws
};

const char* const unchanged = "\"before\"";

// Operations

TEST_F(StringFormatter, Execution_ReadsTheSourceAndWritesTheTarget) {
    Format(L"round", Text(L"3.99"));
    EXPECT_EQ((Calls{"GetValue(source)", "SetValue(target, \"3\")"}), host.calls);
}

TEST_F(StringFormatter, UnmatchedOperation_WritesAnEmptyText) {
    for (const wchar_t* operation :
         {L"Round", L"ROUND", L"", L"rounds", L"roun", L" round", L"Substitute", L"NumToHMS", L"numToHms"}) {
        Format(operation, Text(L"3.99"));
        const CComVariant& target = host.dataStore[L"target"];
        EXPECT_EQ(VT_BSTR, target.Get().vt) << Show(operation);
        EXPECT_TRUE(TextOf(StringMember(target.Get())).empty()) << Show(operation);
    }
}

TEST_F(StringFormatter, Operation_IsComparedAsVarBstrCmpDoes) {
    // Null characters do not count, except at the beginning.
    using namespace std::string_view_literals;
    EXPECT_EQ("\"3\"", Format(L"round\0"sv, Text(L"3.99")));
    EXPECT_EQ("\"00:00:07\"", Format(L"num\0ToHMS"sv, Text(L"7")));
    EXPECT_EQ("\"7\"", Format(L"sub\0stitute"sv, Text(L"7")));
    Format(L"\0round"sv, Text(L"3.99"));
    EXPECT_TRUE(TextOf(StringMember(host.dataStore[L"target"].Get())).empty());
}

TEST_F(StringFormatter, UnmatchedOperation_StillReadsTheSource) {
    host.dataStore.erase(L"source");
    const auto command = CreateCommand<CStringFormatter>(
        host, {{L"dsSourceString", L"source"}, {L"dsTargetString", L"target"}, {L"operation", L"other"}});
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ((Calls{"GetValue(source)"}), host.calls);
}

TEST_F(StringFormatter, SourceThatHoldsANumber_IsConvertedToText) {
    EXPECT_EQ("\"5\"", Format(L"substitute", CComVariant(LONG{5})));
    EXPECT_EQ("\"2.5\"", Format(L"substitute", CComVariant(2.5)));
    EXPECT_EQ("\"2\"", Format(L"round", CComVariant(2.9)));
    EXPECT_EQ("\"01:01:01\"", Format(L"numToHMS", CComVariant(LONG{3661})));
}

TEST_F(StringFormatter, EmptySource_IsAnEmptyText) {
    EXPECT_EQ("\"\"", Format(L"substitute", CComVariant()));
    EXPECT_EQ("\"\"", Format(L"substitute", Text(L"")));
    EXPECT_EQ("\"\"", Format(L"substitute", CComVariant(CComBSTR())));
}

TEST_F(StringFormatter, SourceThatHasNoText_CountsAsAnEmptyText) {
    CComVariant source;
    VARIANT* const raw = &source;
    raw->vt = VT_UNKNOWN;
    raw->punkVal = nullptr;
    EXPECT_EQ("\"\"", Format(L"substitute", std::move(source)));
}

// Substitute

TEST_F(StringFormatter, ParameterReference_IsReplacedByTheParametersText) {
    host.parameters[L"190"].text = L"1200";
    EXPECT_EQ("\"rpm=1200\"", Substitute(L"rpm=$p(190)"));
    EXPECT_EQ((Calls{"GetValue(source)", "GetParameter(190, 1)", "QueryInterface(IParameterOld)",
                     "get_Text()", "SetValue(target, \"rpm=1200\")"}),
              host.calls);
}

TEST_F(StringFormatter, DataStoreReference_IsReplacedByTheEntrysText) {
    host.dataStore[L"name"] = Text(L"Pump");
    host.dataStore[L"count"] = CComVariant(LONG{3});
    host.dataStore[L"empty"] = CComVariant();
    EXPECT_EQ("\"3 x Pump.\"", Substitute(L"$d(count) x $d(name)$d(empty)."));
}

TEST_F(StringFormatter, ParameterReferences_GoBeforeDataStoreReferences) {
    host.parameters[L"P"].text = L"p";
    host.dataStore[L"D"] = Text(L"d");
    EXPECT_EQ("\"d p d p\"", Substitute(L"$d(D) $p(P) $d(D) $p(P)"));
    EXPECT_EQ((Calls{"GetValue(source)", "GetParameter(P, 1)", "QueryInterface(IParameterOld)", "get_Text()",
                     "GetParameter(P, 1)", "QueryInterface(IParameterOld)", "get_Text()", "GetValue(D)",
                     "GetValue(D)", "SetValue(target, \"d p d p\")"}),
              host.calls);
}

TEST_F(StringFormatter, InsertedValue_IsSearchedInTurn) {
    host.parameters[L"outer"].text = L"<$p(inner)>";
    host.parameters[L"inner"].text = L"i";
    host.dataStore[L"outer"] = Text(L"[$d(inner)]");
    host.dataStore[L"inner"] = Text(L"j");
    EXPECT_EQ("\"<i> [j]\"", Substitute(L"$p(outer) $d(outer)"));
}

TEST_F(StringFormatter, DataStoreReferenceInAParametersText_IsExpanded_ButNotTheOtherWayRound) {
    host.parameters[L"P"].text = L"$d(D)";
    host.dataStore[L"D"] = Text(L"$p(P)");
    EXPECT_EQ("\"$p(P)\"", Substitute(L"$p(P)"));
}

TEST_F(StringFormatter, ReferencePutTogetherByAnInsertedValue_IsExpanded) {
    host.parameters[L"P"].text = L"$p(";
    host.parameters[L"Q"].text = L"q";
    EXPECT_EQ("\"q\"", Substitute(L"$p(P)Q)"));
}

TEST_F(StringFormatter, Names_AreTakenAsTheyStand) {
    host.dataStore[L" a (b"] = Text(L"x");
    EXPECT_EQ("\"x)\"", Substitute(L"$d( a (b))"));
}

TEST_F(StringFormatter, UnclosedReference_LeavesTheRestUnchanged) {
    host.parameters[L"P"].text = L"p";
    EXPECT_EQ("\"p $p(P\"", Substitute(L"$p(P) $p(P"));
    EXPECT_EQ("\"p $d(\"", Substitute(L"$p(P) $d("));
}

TEST_F(StringFormatter, MarkersOfAnotherKind_ArePlainText) {
    EXPECT_EQ("\"$ $p $x(1) $P(1) $D(1) p(1)\"", Substitute(L"$ $p $x(1) $P(1) $D(1) p(1)"));
}

TEST_F(StringFormatter, ValueThatContainsItself_IsAFailedRead) {
    host.parameters[L"P"].text = L"$p(P)";
    host.dataStore[L"D"] = Text(L"$d(D)");
    EXPECT_EQ(unchanged, Substitute(L"$p(P)"));
    EXPECT_EQ(unchanged, Substitute(L"$d(D)"));
}

TEST_F(StringFormatter, ValuesInsideValues_AreExpandedToTheLimitOfTheGuard) {
    for (std::size_t level = 1; level < maxReferenceDepth; ++level)
        host.dataStore[std::to_wstring(level)] = Text(L"$d(" + std::to_wstring(level + 1) + L")");
    host.dataStore[std::to_wstring(maxReferenceDepth)] = Text(L"deep");
    EXPECT_EQ("\"deep\"", Substitute(L"$d(1)"));
    host.dataStore[L"0"] = Text(L"$d(1)");
    host.dataStore[L"target"] = Text(L"before");
    EXPECT_EQ(unchanged, Substitute(L"$d(0)"));
}

// Round

TEST_F(StringFormatter, Round_CutsTowardZero) {
    EXPECT_EQ("\"2.67\"", Round(L"2.678", L"2"));
    EXPECT_EQ("\"-2.67\"", Round(L"-2.678", L"2"));
    EXPECT_EQ("\"-0.2\"", Round(L"-0.25", L"1"));
    EXPECT_EQ("\"0.9\"", Round(L"0.99", L"1"));
}

TEST_F(StringFormatter, RoundWithoutLength_CutsAllDecimals) {
    EXPECT_EQ("\"3\"", Format(L"round", Text(L"3.99")));
    EXPECT_EQ("\"-3\"", Format(L"round", Text(L"-3.99")));
}

TEST_F(StringFormatter, Round_CutsWhatTheProductIsAsADouble) {
    // With more digits the first three would be cut one lower; 0.29 times 100 is less than 29 as a double,
    // too.
    EXPECT_EQ("\"0.03\"", Round(L"0.03", L"2"));
    EXPECT_EQ("\"0.06\"", Round(L"0.06", L"2"));
    EXPECT_EQ("\"0.09\"", Round(L"0.09", L"2"));
    EXPECT_EQ("\"0.28\"", Round(L"0.29", L"2"));
}

TEST_F(StringFormatter, Round_AddsNoZeros) {
    EXPECT_EQ("\"2.5\"", Round(L"2.5", L"2"));
    EXPECT_EQ("\"7\"", Round(L"7.000", L"3"));
}

/// The platform's own text for 0 divided by 0, quoted.
std::string TextOfNotANumber() {
    volatile double zero = 0.0; // so that the division is made when the test runs
    CComVariant value(zero / zero);
    EXPECT_EQ(value.ChangeType(VT_BSTR), S_OK);
    std::string quoted(1, '"');
    quoted += ToUtf8(TextOf(StringMember(value.Get())));
    quoted += '"';
    return quoted;
}

TEST_F(StringFormatter, NegativeDecimals_CutBeforeThePoint) {
    EXPECT_EQ("\"1200\"", Round(L"1234.5", L"-2"));
    EXPECT_EQ("\"0\"", Round(L"99", L"-2"));
    EXPECT_EQ("\"1230000\"", Round(L"1234567", L"-4"));
}

TEST_F(StringFormatter, DecimalsBeyondAllNumbers_GiveWhatTheArithmeticGives) {
    EXPECT_EQ("\"0\"", Round(L"1", L"400"));             // the smallest integer divided by an infinity
    EXPECT_EQ(TextOfNotANumber(), Round(L"1", L"-400")); // 0 divided by 0
}

TEST_F(StringFormatter, ProductThatDoesNotFit_CountsAsTheSmallestInteger) {
    EXPECT_EQ("\"-2147483648\"", Round(L"3000000000", L"0"));
    EXPECT_EQ("\"-2147483648\"", Round(L"-3000000000", L"0"));
    EXPECT_EQ("\"-2147483648\"", Round(L"2147483648", L"0"));
    EXPECT_EQ("\"-21474836.48\"", Round(L"30000000", L"2"));
    EXPECT_EQ("\"2147483647\"", Round(L"2147483647.9", L"0"));
    EXPECT_EQ("\"-2147483648\"", Round(L"-2147483648.9", L"0"));
}

TEST_F(StringFormatter, InputThatIsNotANumber_CountsAs0) {
    EXPECT_EQ("\"0\"", Round(L"warm", L"2"));
    EXPECT_EQ("\"0\"", Round(L"", L"2"));
    EXPECT_EQ("\"0\"", Format(L"round", CComVariant()));
    EXPECT_EQ("\"00:00:00\"", NumToHms(L"soon"));
    EXPECT_EQ("\"00:00:00\"", NumToHms(L""));
    EXPECT_EQ("\"00:00:00\"", NumToHms(L"2147483648"));
}

TEST_F(StringFormatter, RoundLengthThatIsNotAnInteger_CountsAs0) {
    EXPECT_EQ("\"3\"", Round(L"3.99", L"two"));
    EXPECT_EQ("\"3\"", Round(L"3.99", L""));
}

TEST_F(StringFormatter, RoundLengthWithDecimals_RoundsHalfToEven) {
    EXPECT_EQ("\"3.45\"", Round(L"3.456", L"1.5"));
    EXPECT_EQ("\"3.45\"", Round(L"3.456", L"2.5"));
}

TEST_F(StringFormatter, NullProperties_CountAsEmptyTexts) {
    host.dataStore[L"source"] = Text(L"3.99");
    const auto command =
        CreateCommand<CStringFormatter>(host, {{L"dsSourceString", L"source"}, {L"operation", L"round"}});
    for (const wchar_t* name : {L"dsTargetString", L"roundLength"})
        ASSERT_EQ(S_OK, command->SetProperty(CComBSTR(name).Get(), nullptr));
    EXPECT_EQ(S_OK, command->Execute());
    EXPECT_EQ((Calls{"GetValue(source)", "SetValue(null, \"3\")"}), host.calls);
}

// NumToHms

TEST_F(StringFormatter, Seconds_BecomeHoursMinutesSeconds) {
    EXPECT_EQ("\"01:01:01\"", NumToHms(L"3661"));
    EXPECT_EQ("\"00:00:59\"", NumToHms(L"59"));
    EXPECT_EQ("\"00:00:00\"", NumToHms(L"0"));
    EXPECT_EQ("\"00:01:00\"", NumToHms(L"60"));
    EXPECT_EQ("\"09:59:59\"", NumToHms(L"35999"));
    EXPECT_EQ("\"10:10:10\"", NumToHms(L"36610"));
}

TEST_F(StringFormatter, Hours_AreNotLimited) {
    EXPECT_EQ("\"100:00:00\"", NumToHms(L"360000"));
    EXPECT_EQ("\"596523:14:07\"", NumToHms(L"2147483647"));
}

TEST_F(StringFormatter, NegativeSeconds_ArePaddedPartByPart) {
    EXPECT_EQ("\"00:0-1:0-1\"", NumToHms(L"-61"));
    EXPECT_EQ("\"0-1:00:00\"", NumToHms(L"-3600"));
    EXPECT_EQ("\"0-596523:0-14:0-8\"", NumToHms(L"-2147483648"));
}

TEST_F(StringFormatter, FractionsOfASecond_RoundHalfToEven) {
    EXPECT_EQ("\"00:00:58\"", NumToHms(L"58.4"));
    EXPECT_EQ("\"00:01:00\"", NumToHms(L"59.5"));
}

// Failures

TEST_F(StringFormatter, EveryFailingCall_EndsQuietly_AndLeavesTheTargetUnchanged) {
    host.parameters[L"P"].text = L"p";
    host.dataStore[L"D"] = Text(L"d");
    EXPECT_EQ("\"p d\"", Substitute(L"$p(P) $d(D)"));
    const std::size_t calls = host.calls.size();
    for (const bool throws : {false, true}) {
        for (std::size_t number = 1; number <= calls; ++number) {
            failAt = throws ? 0 : number;
            throwAt = throws ? number : 0;
            host.dataStore[L"target"] = Text(L"before");
            EXPECT_EQ(unchanged, Substitute(L"$p(P) $d(D)")) << number;
            EXPECT_EQ(number, host.calls.size());
        }
    }
}

TEST_F(StringFormatter, UnknownNames_EndQuietly) {
    EXPECT_EQ(unchanged, Substitute(L"$p(unknown)"));
    EXPECT_EQ(unchanged, Substitute(L"$d(unknown)"));
}

TEST_F(StringFormatter, ParameterWithoutItsInterface_IsAFailedRead) {
    host.parameters[L"P"].offersInterface = false;
    EXPECT_EQ(unchanged, Substitute(L"$p(P)"));
}

TEST_F(StringFormatter, NeverInitialised_EndsQuietly) {
    const auto command = CreateCommand<CStringFormatter>(
        {{L"dsSourceString", L"source"}, {L"dsTargetString", L"target"}, {L"operation", L"round"}});
    EXPECT_EQ(S_OK, command->Execute());
}

TEST_F(StringFormatter, AllButTheRoundLength_AreRequired) {
    EXPECT_EQ(E_UNEXPECTED,
              CreateCommand<CStringFormatter>(
                  {{L"dsSourceString", L"a"}, {L"dsTargetString", L"b"}, {L"roundLength", L"1"}})
                  ->Execute());
    EXPECT_EQ(
        E_UNEXPECTED,
        CreateCommand<CStringFormatter>({{L"dsSourceString", L"a"}, {L"operation", L"round"}})->Execute());
    EXPECT_EQ(
        E_UNEXPECTED,
        CreateCommand<CStringFormatter>({{L"dsTargetString", L"a"}, {L"operation", L"round"}})->Execute());
}

} // namespace

} // namespace vant::test
