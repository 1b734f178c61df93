#include "commands/ParameterSampler.h"

#include "tests/unit/commands/PersistentRun.h"

#include <limits>

namespace vant::test {

namespace {

/// Its body can be run without Execute.
class COpenSampler : public CParameterSampler {
public:
    using CParameterSampler::ExecutePersistent;
};

class ParameterSampler : public PersistentRun<CParameterSampler> {
protected:
    ParameterSampler() { host.parameters[L"100"] = {L"Engine speed", L"750", CComVariant(750.0), L"rpm"}; }

    /// With a period of 0, so that a run takes no time.
    void Sample(std::wstring_view numSamples) {
        host.Threads().ForgetRegistrations();
        Run({{L"parameterID", L"100"},
             {L"period", L"0"},
             {L"numSamples", numSamples},
             {L"dsTarget", L"mean"},
             {L"completionTransition", L"done"}});
    }
    /// What is stored for a mean: the platform's text of the number.
    static std::string TextOfMean(double mean) {
        CComVariant text(mean);
        EXPECT_EQ(S_OK, text.ChangeType(VT_BSTR));
        return Show(text.Get());
    }
    /// The mean of readings that are given one after the other.
    std::string MeanOf(std::vector<CComVariant> readings) {
        std::size_t next = 0;
        host.onCall = [&](const std::string& call) {
            if (call == "get_Value()")
                host.parameters[L"100"].value = readings.at(next++);
        };
        Sample(std::to_wstring(readings.size()));
        host.onCall = nullptr;
        return Stored(L"mean");
    }
};

const Calls reading = {"GetParameter(100, 1)", "QueryInterface(IParameterOld)", "get_Value()"};

Calls operator+(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(ParameterSampler, StoresTheMeanThenChoosesTheTransition) {
    Sample(L"2");
    EXPECT_EQ(reading + reading + (Calls{"SetValue(mean, \"750\")", "SetTransition(done)"}), host.calls);
}

TEST_F(ParameterSampler, Mean_IsOfAllReadings) {
    EXPECT_EQ("\"2\"", MeanOf({CComVariant(1.0), CComVariant(2.0), CComVariant(3.0)}));
    EXPECT_EQ("\"1.5\"", MeanOf({CComVariant(1.0), CComVariant(2.0)}));
    EXPECT_EQ("\"-0.25\"", MeanOf({CComVariant(-0.25)}));
}

TEST_F(ParameterSampler, Readings_AreConvertedToDoubles) {
    EXPECT_EQ("\"2.25\"", MeanOf({CComVariant(LONG{2}), CComVariant(CComBSTR(L"2.5"))}));
    EXPECT_EQ("\"0\"", MeanOf({CComVariant()}));
}

TEST_F(ParameterSampler, DoesNotStopItself) {
    Sample(L"1");
    EXPECT_TRUE(host.stoppedCommands.empty());
}

TEST_F(ParameterSampler, WithoutCompletionTransition_ChoosesTheOneWithoutName) {
    Run({{L"parameterID", L"100"}, {L"period", L"0"}, {L"numSamples", L"1"}, {L"dsTarget", L"mean"}});
    EXPECT_EQ(reading + (Calls{"SetValue(mean, \"750\")", "SetTransition(null)"}), host.calls);
}

TEST_F(ParameterSampler, EmptyCompletionTransition_IsChosen) {
    Run({{L"parameterID", L"100"},
         {L"period", L"0"},
         {L"numSamples", L"1"},
         {L"dsTarget", L"mean"},
         {L"completionTransition", L""}});
    EXPECT_EQ((std::vector<std::wstring>{L""}), host.transitions);
}

TEST_F(ParameterSampler, NoSamples_StoresValueThatIsNotANumberAndChoosesTheTransition) {
    Sample(L"0");
    ASSERT_EQ(2u, host.calls.size());
    // Processors give the quotient different signs.
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(Stored(L"mean") == TextOfMean(noNumber) || Stored(L"mean") == TextOfMean(-noNumber))
        << Stored(L"mean");
    EXPECT_EQ("SetTransition(done)", host.calls.back());
}

TEST_F(ParameterSampler, NegativeNumberOfSamples_StoresAZero) {
    Sample(L"-3");
    ASSERT_EQ(2u, host.calls.size());
    CComVariant mean(host.dataStore[L"mean"]);
    EXPECT_EQ(VT_BSTR, mean.Get().vt);
    EXPECT_EQ(S_OK, mean.ChangeType(VT_R8));
    EXPECT_EQ(0.0, mean.Get().dblVal);
    EXPECT_EQ("SetTransition(done)", host.calls.back());
}

TEST_F(ParameterSampler, NumberOfSamplesThatIsNotANumber_CountsAs0) {
    Sample(L"0");
    const Calls expected = host.calls;
    for (const wchar_t* numSamples : {L"", L"many", L"99999999999"}) {
        Sample(numSamples);
        EXPECT_EQ(expected, host.calls) << Show(numSamples);
    }
}

TEST_F(ParameterSampler, PeriodAndDelayThatAreNoNumberOrNegative_CountAs0) {
    for (const wchar_t* length : {L"", L"long", L"-1", L"-2147483648", L"99999999999"}) {
        host.Threads().ForgetRegistrations();
        Run({{L"parameterID", L"100"},
             {L"period", length},
             {L"delay", length},
             {L"numSamples", L"2"},
             {L"dsTarget", L"mean"}});
        EXPECT_EQ(reading + reading + (Calls{"SetValue(mean, \"750\")", "SetTransition(null)"}), host.calls)
            << Show(length);
    }
}

TEST_F(ParameterSampler, StoppedBeforeItsThreadRuns_DoesNothing) {
    for (const wchar_t* delay : {L"0", L"60000"}) {
        host.Threads().ForgetRegistrations();
        Execute({{L"parameterID", L"100"},
                 {L"period", L"0"},
                 {L"delay", delay},
                 {L"numSamples", L"2"},
                 {L"dsTarget", L"mean"},
                 {L"completionTransition", L"done"}});
        StopSilently();
        RunBody();
        EXPECT_EQ(Calls{}, host.calls);
    }
}

TEST_F(ParameterSampler, StoppedBeforeItsThreadRuns_WithoutDelay_DoesNothing) {
    Execute({{L"parameterID", L"100"}, {L"period", L"0"}, {L"numSamples", L"2"}, {L"dsTarget", L"mean"}});
    StopSilently();
    RunBody();
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(ParameterSampler, WaitThatFails_EndsLikeAStop) {
    const auto sampler = CreateCommand<COpenSampler>(
        host, {{L"parameterID", L"100"}, {L"period", L"0"}, {L"numSamples", L"1"}, {L"dsTarget", L"mean"}});
    static_cast<COpenSampler*>(sampler.Get())->ExecutePersistent(); // There is no stop event before Execute.
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(ParameterSampler, StoppedAtTheLastReading_StoresNothing) {
    StopAt("get_Value()");
    Sample(L"1");
    EXPECT_EQ("nothing", Stored(L"mean"));
    EXPECT_TRUE(host.transitions.empty());
}

TEST_F(ParameterSampler, StoppedAtTheStore_ChoosesNoTransition) {
    StopAt("SetValue(mean, \"750\")");
    Sample(L"1");
    EXPECT_EQ("\"750\"", Stored(L"mean"));
    EXPECT_TRUE(host.transitions.empty());
    EXPECT_EQ(reading + (Calls{"PersistentCommandStopped()", "SetValue(mean, \"750\")"}), host.calls);
}

TEST_F(ParameterSampler, EveryCallThatFails_EndsTheRunThere) {
    // Reading is 3 calls; a failed request for the interface leaves nothing to read from.
    for (std::size_t number = 1; number <= 8; ++number) {
        host.Threads().ForgetRegistrations();
        host.transitions.clear();
        Execute({{L"parameterID", L"100"},
                 {L"period", L"0"},
                 {L"numSamples", L"2"},
                 {L"dsTarget", L"mean"},
                 {L"completionTransition", L"done"}});
        host.FailCall(number, E_ACCESSDENIED);
        RunBody();
        host.FailCall(0, S_OK);
        EXPECT_EQ(number, host.CallCount());
        EXPECT_TRUE(host.transitions.empty());
    }
}

TEST_F(ParameterSampler, ReadingThatIsNotANumber_EndsTheRun) {
    host.parameters[L"100"].value = CComVariant(CComBSTR(L"n/a"));
    Sample(L"1");
    EXPECT_EQ(reading, host.calls);
}

TEST_F(ParameterSampler, UnknownParameter_EndsTheRun) {
    Run({{L"parameterID", L"300"}, {L"period", L"0"}, {L"numSamples", L"1"}, {L"dsTarget", L"mean"}});
    EXPECT_EQ(Calls{"GetParameter(300, 1)"}, host.calls);
}

TEST_F(ParameterSampler, ReleasesWhatItReads) {
    Sample(L"2");
    const LONG held = host.OutstandingReferences();
    host.Threads().ForgetRegistrations();
    EXPECT_EQ(S_OK, command->Execute());
    RunBody();
    EXPECT_EQ(held, host.OutstandingReferences());
}

} // namespace

} // namespace vant::test
