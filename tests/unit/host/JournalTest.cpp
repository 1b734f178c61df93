#include "host/record/Journal.h"

#include "host/record/CallScope.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

namespace vant::host {

namespace {

Record Event(const char* operation) {
    Record record;
    record.service = "Test";
    record.operation = operation;
    return record;
}

class JournalTest : public ::testing::Test {
protected:
    JournalTest() {
        journal.Observe([this](const Record& record) { records.push_back(record); });
    }

    std::int64_t now = 0;
    Journal journal{[this] { return now; }};
    std::vector<Record> records;
};

TEST_F(JournalTest, Record_HasTheTimeOfTheClock) {
    now = 250;
    journal.Add(Event("First"));
    now = 1000;
    journal.Add(Event("Second"));
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].time, 250);
    EXPECT_EQ(records[1].time, 1000);
}

TEST_F(JournalTest, EveryObserver_GetsEachRecordInOrder) {
    std::string seen;
    journal.Observe([&seen](const Record& record) { seen += record.operation + ' '; });
    journal.Add(Event("First"));
    journal.Add(Event("Second"));
    EXPECT_EQ(seen, "First Second ");
    EXPECT_EQ(records.size(), 2U);
}

TEST_F(JournalTest, RecordWithinNestedCommands_NamesTheInnermost) {
    journal.Add(Event("Outside"));
    {
        const CommandScope outer("outer");
        {
            const CommandScope inner("inner");
            journal.Add(Event("Inside"));
            EXPECT_EQ(CommandDepth(), 2U);
        }
        journal.Add(Event("After"));
    }
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].command, "");
    EXPECT_EQ(records[1].command, "inner");
    EXPECT_EQ(records[2].command, "outer");
    EXPECT_EQ(CommandDepth(), 0U);
}

TEST_F(JournalTest, ThreadAndCommand_AreThoseOfTheCallingThread) {
    const CommandScope scope("here");
    std::thread([this] {
        const ThreadScope name("worker");
        journal.Add(Event("There"));
    }).join();
    journal.Add(Event("Here"));
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].thread, "worker");
    EXPECT_EQ(records[0].command, "");
    EXPECT_EQ(records[1].thread, "main");
    EXPECT_EQ(records[1].command, "here");
}

TEST_F(JournalTest, EndOfAThreadScope_RestoresThePreviousName) {
    const ThreadScope outer("outer");
    { const ThreadScope inner("inner"); }
    EXPECT_EQ(CurrentThread(), "outer");
}

TEST_F(JournalTest, ManyThreads_LoseNoRecord) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([this] {
            for (int j = 0; j < 250; ++j)
                journal.Add(Event("Call"));
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(records.size(), 1000U);
    EXPECT_TRUE(journal.IsComplete());
}

TEST_F(JournalTest, ObserverThatFails_MakesTheJournalIncompleteAndAffectsNoOther) {
    EXPECT_TRUE(journal.IsComplete());
    journal.Observe([](const Record&) { throw std::runtime_error("full"); });
    journal.Add(Event("First"));
    EXPECT_FALSE(journal.IsComplete());
    EXPECT_EQ(records.size(), 1U);
}

TEST(RealJournal, Time_NeverRunsBackwards) {
    Journal journal;
    std::vector<std::int64_t> times;
    journal.Observe([&times](const Record& record) { times.push_back(record.time); });
    for (int i = 0; i < 100; ++i)
        journal.Add(Event("Call"));
    EXPECT_GE(times.front(), 0);
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
}

TEST(RecordArguments, AreFoundByName) {
    Record record;
    record.Add("text", std::string("a"));
    record.Add("number", std::int64_t{1});
    ASSERT_NE(record.Find("number"), nullptr);
    EXPECT_EQ(*record.Find("number"), Value(std::int64_t{1}));
    EXPECT_EQ(record.Find("other"), nullptr);
    EXPECT_EQ(record.Text("text"), "a");
    EXPECT_EQ(record.Text("number"), "");
}

} // namespace

} // namespace vant::host
