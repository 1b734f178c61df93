#include "host/record/Activity.h"

#include "host/record/Vocabulary.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

Record Event(const char* operation, const char* command, std::int64_t time) {
    return {.time = time,
            .thread = "main",
            .command = command,
            .service = service::Runner,
            .operation = operation,
            .arguments = {},
            .result = S_OK};
}

Record Write(const char* command, const std::string& entry, std::int64_t value, HRESULT result = S_OK) {
    return {.time = 0,
            .thread = "main",
            .command = command,
            .service = service::DataStore,
            .operation = operation::SetValue,
            .arguments = {{argument::name, entry}, {argument::value, value}},
            .result = result};
}

TEST(Activities, CommandThatRunsItself_HasAnActivityForEachRun) {
    Activities activities;
    activities.Take(Event(event::CommandCreated, "a", 10));
    activities.Take(Write("a", "outer", 1));
    activities.Take(Event(event::CommandCreated, "a", 20));
    activities.Take(Write("a", "inner", 2));
    const Activity inner = activities.End(Event(event::CommandEnded, "a", 30));
    activities.Take(Write("a", "outer", 3));
    const Activity outer = activities.End(Event(event::CommandEnded, "a", 40));
    EXPECT_EQ(inner.began, 20);
    ASSERT_EQ(inner.values.size(), 1U);
    EXPECT_EQ(inner.values[0].name, "inner");
    EXPECT_EQ(outer.began, 10);
    ASSERT_EQ(outer.values.size(), 1U);
    EXPECT_EQ(outer.values[0].value, Value(std::int64_t{3}));
}

TEST(Activities, EndWithoutABeginning_IsAnEmptyActivity) {
    Activities activities;
    const Activity activity = activities.End(Event(event::CommandEnded, "a", 30));
    EXPECT_EQ(activity.began, 30);
    EXPECT_TRUE(activity.values.empty());
}

TEST(Activity, BeyondTheLimit_ValuesAndFailedCallsAreCounted) {
    Activity activity;
    for (std::size_t i = 0; i < Activity::most + 2; ++i) {
        activity.Take(Write("a", std::to_string(i), 1));
        activity.Take(Write("a", std::to_string(i), 1, E_FAIL));
    }
    EXPECT_EQ(activity.values.size(), Activity::most);
    EXPECT_EQ(activity.failedCalls.size(), Activity::most);
    EXPECT_EQ(activity.omitted, 4U);
}

TEST(UsedValue, FailedCall_HasNone) {
    EXPECT_TRUE(UsedValueOf(Write("a", "entry", 1)));
    EXPECT_FALSE(UsedValueOf(Write("a", "entry", 1, E_INVALIDARG)));
}

} // namespace

} // namespace vant::host
