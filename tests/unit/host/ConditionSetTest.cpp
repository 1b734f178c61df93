#include "host/conditions/ConditionSet.h"

#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/services/Services.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

Condition On(Condition::Kind kind, const char* subject, Comparison comparison, Value value,
             const char* message = "message") {
    Condition condition;
    condition.kind = kind;
    condition.subject = subject;
    condition.comparison = comparison;
    condition.value = std::move(value);
    condition.message = message;
    return condition;
}
constexpr auto parameter = Condition::Kind::Parameter;
constexpr auto data = Condition::Kind::Data;

class ConditionSetTest : public ::testing::Test {
protected:
    ConditionSetTest() {
        journal.Observe([this](const Record& record) { records.push_back(record); });
        description.emplace();
        description->parameters["100"].value = std::int64_t{800};
        description->parameters["fan"].value = "OFF";
        description->parameters["lost"].value = 1.5;
        description->parameters["lost"].fails = true;
    }

    HRESULT Evaluate(std::vector<Condition> conditions, bool& allMet) {
        services.emplace(
            journal, [](const std::string&) { return S_OK; }, PersistentThreads::EndObserver(), description,
            Components(), ConditionSets{{"set", Conditions{.list = std::move(conditions)}}});
        services->data.Set(L"text", CComVariant(CComBSTR(L" 12.5 ")));
        services->data.Set(L"word", CComVariant(CComBSTR(L"warm")));
        services->data.Set(L"number", CComVariant(12.5));
        return Again(allMet);
    }
    HRESULT Again(bool& allMet) {
        VARIANT_BOOL flag = 7;
        const HRESULT code = services->conditionSets.front().Evaluate(&flag);
        allMet = flag == VARIANT_TRUE;
        EXPECT_TRUE(allMet || flag == VARIANT_FALSE);
        return code;
    }
    bool Holds(Condition condition) {
        bool allMet = false;
        EXPECT_EQ(Evaluate({std::move(condition)}, allMet), S_OK);
        return allMet;
    }
    HRESULT Key(std::wstring& key) {
        CComBSTR text;
        const HRESULT code = services->conditionSets.front().GetFailureKey(&text);
        key = text.Text();
        return code;
    }

    std::vector<Record> records;
    Journal journal{[] { return std::int64_t{0}; }};
    std::optional<EngineDescription> description;
    std::optional<Services> services;
};

TEST_F(ConditionSetTest, Comparison_OfNumbersIncludesTheLimitIfItsNameSaysSo) {
    const auto holds = [this](Comparison comparison, double limit) {
        return Holds(On(parameter, "100", comparison, limit));
    };
    EXPECT_TRUE(holds(Comparison::Below, 800.5));
    EXPECT_FALSE(holds(Comparison::Below, 800));
    EXPECT_TRUE(holds(Comparison::Above, 799.5));
    EXPECT_FALSE(holds(Comparison::Above, 800));
    EXPECT_TRUE(holds(Comparison::AtLeast, 800));
    EXPECT_FALSE(holds(Comparison::AtLeast, 800.5));
    EXPECT_TRUE(holds(Comparison::AtMost, 800));
    EXPECT_FALSE(holds(Comparison::AtMost, 799.5));
}

TEST_F(ConditionSetTest, Equality_ComparesByTheTypeOfTheWrittenValue) {
    EXPECT_TRUE(Holds(On(parameter, "fan", Comparison::Is, "OFF")));
    EXPECT_FALSE(Holds(On(parameter, "fan", Comparison::Is, "off")));
    EXPECT_TRUE(Holds(On(parameter, "fan", Comparison::IsNot, "ON")));
    EXPECT_TRUE(Holds(On(parameter, "100", Comparison::Is, "800")));
    EXPECT_FALSE(Holds(On(parameter, "100", Comparison::Is, "800.0")));
    EXPECT_TRUE(Holds(On(parameter, "100", Comparison::Is, 800.0)));
    EXPECT_TRUE(Holds(On(parameter, "100", Comparison::Is, std::int64_t{800})));
    EXPECT_FALSE(Holds(On(parameter, "100", Comparison::IsNot, std::int64_t{800})));
    EXPECT_TRUE(Holds(On(parameter, "100", Comparison::Is, true)));
}

TEST_F(ConditionSetTest, TextInTheDataStore_IsConvertedForNumbersAlone) {
    EXPECT_TRUE(Holds(On(data, "text", Comparison::Is, 12.5)));
    EXPECT_FALSE(Holds(On(data, "text", Comparison::Is, "12.5")));
    EXPECT_TRUE(Holds(On(data, "number", Comparison::Is, "12.5")));
    EXPECT_FALSE(Holds(On(data, "text", Comparison::Is, std::int64_t{12}))); // nothing is rounded
}

TEST_F(ConditionSetTest, FirstConditionThatFails_IsRememberedAndEndsTheEvaluation) {
    bool allMet = true;
    ASSERT_EQ(Evaluate({On(parameter, "100", Comparison::Above, 0.0, "a"),
                        On(parameter, "100", Comparison::Below, 5.0, "b"),
                        On(parameter, "lost", Comparison::Above, 0.0, "c")},
                       allMet),
              S_OK);
    EXPECT_FALSE(allMet);
    EXPECT_EQ(ToJson(records.back()).dump(),
              R"({"time":0,"thread":"main","command":null,"service":"ConditionSet","operation":"Evaluate",)"
              R"("arguments":{"name":"set","failed":"parameter 100 below 5.0","parameter":"100",)"
              R"("limits":"below 5.0","value":800.0,"allMet":false},)"
              R"("result":"0x00000000"})");
    std::wstring key;
    EXPECT_EQ(Key(key), S_OK);
    EXPECT_EQ(key, L"b");
}

TEST_F(ConditionSetTest, WithoutAFailure_NoKeyIsReturned) {
    bool allMet = false;
    ASSERT_EQ(Evaluate({On(parameter, "100", Comparison::Above, 0.0)}, allMet), S_OK);
    EXPECT_TRUE(allMet);
    std::wstring key;
    EXPECT_EQ(Key(key), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(services->conditionSets.front().GetFailureKey(nullptr), E_POINTER);
    EXPECT_EQ(services->conditionSets.front().Evaluate(nullptr), E_POINTER);
}

TEST_F(ConditionSetTest, Failure_StaysRememberedWhenAllConditionsHoldAgain) {
    bool allMet = true;
    ASSERT_EQ(Evaluate({On(data, "word", Comparison::Is, "cold", "a")}, allMet), S_OK);
    services->data.Set(L"word", CComVariant(CComBSTR(L"cold")));
    EXPECT_EQ(Again(allMet), S_OK);
    EXPECT_TRUE(allMet);
    std::wstring key;
    EXPECT_EQ(Key(key), S_OK);
    EXPECT_EQ(key, L"a");
}

TEST_F(ConditionSetTest, SubjectThatCannotBeRead_ReturnsItsCodeAndCountsAsFailed) {
    const auto expect = [this](Condition condition, HRESULT code) {
        bool allMet = true;
        condition.message = "unreadable";
        EXPECT_EQ(Evaluate({std::move(condition)}, allMet), code);
        EXPECT_FALSE(allMet);
        std::wstring key;
        EXPECT_EQ(Key(key), S_OK);
        EXPECT_EQ(key, L"unreadable");
    };
    expect(On(parameter, "lost", Comparison::Above, 0.0), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    expect(On(parameter, "lost", Comparison::Is, "1.5"), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    expect(On(parameter, "none", Comparison::Above, 0.0), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    expect(On(data, "none", Comparison::Above, 0.0), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    expect(On(data, "word", Comparison::Above, 0.0), DISP_E_TYPEMISMATCH);
    description.reset();
    expect(On(parameter, "100", Comparison::Above, 0.0), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(ConditionSetTest, DataStore_HoldsTheSetUntilItIsCleared) {
    bool allMet = false;
    Evaluate({On(data, "number", Comparison::Above, 0.0)}, allMet);
    CComVariant entry;
    ASSERT_EQ(services->dataStore.GetValue(CComBSTR(L"set").Get(), &entry), S_OK);
    ASSERT_EQ(entry.Get().vt, VT_UNKNOWN);
    EXPECT_EQ(records.back().Text(argument::value), "(object)");
    CComPtr<IConditionSet> set;
    EXPECT_EQ(CComPtr<IUnknown>(UnknownMember(entry.Get())).QueryInterface(&set), S_OK);
    set.Release();
    entry.Clear();
    EXPECT_EQ(services->StillHeld(), (std::vector<std::string>{"ConditionSet"}));
    services->data.Clear();
    EXPECT_TRUE(services->StillHeld().empty());
}

} // namespace

} // namespace vant::host
