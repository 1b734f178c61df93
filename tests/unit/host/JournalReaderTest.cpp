#include "host/record/JournalReader.h"

#include "host/record/Json.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace vant::host {

namespace {

std::vector<Record> Read(const std::string& text) {
    std::istringstream in(text);
    return ReadJournal(in);
}

std::string MistakeIn(const std::string& text) {
    try {
        Read(text);
    } catch (const JournalError& failure) {
        return failure.what();
    }
    return "nothing";
}

std::string Line() {
    Record record;
    record.time = 1250;
    record.thread = "main";
    record.command = "drop";
    record.service = "DataStore";
    record.operation = "GetValue";
    record.arguments = {
        {"name", "crank"}, {"value", 9.5}, {"none", nullptr}, {"whole", std::int64_t{3}}, {"on", true}};
    record.result = E_FAIL;
    std::ostringstream out;
    JsonLinesWriter{out}(record);
    return out.str();
}

TEST(ReadJournal, Record_IsReadAsItWasWritten) {
    const std::vector<Record> records = Read(Line() + Line());
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(ToJson(records[1]).dump() + "\n", Line());
    EXPECT_EQ(records[0].result, E_FAIL);
    EXPECT_EQ(*records[0].Find("whole"), Value(std::int64_t{3}));
}

TEST(ReadJournal, EventWithoutCommandAndResult_HasNone) {
    const std::vector<Record> records =
        Read(R"({"time":0,"thread":"main","command":null,"service":"Runner","operation":"FinallyStarted",)"
             R"("arguments":{},"result":null})");
    EXPECT_EQ(records.at(0).command, "");
    EXPECT_EQ(records.at(0).result, std::nullopt);
}

TEST(ReadJournal, LastLineThatWasCut_IsLeftOut) {
    EXPECT_EQ(Read(Line() + Line().substr(0, 30)).size(), 1U);
}

TEST(ReadJournal, WrongLine_IsNamed) {
    EXPECT_EQ(MistakeIn(""), "it has no records");
    EXPECT_EQ(MistakeIn("no journal"), "line 1 is not a record of a journal");
    EXPECT_EQ(MistakeIn(Line() + "{}\n" + Line()), "line 2 is not a record of a journal");
    std::string wrongCode = Line();
    wrongCode.replace(wrongCode.find("0x8"), 3, "8x0");
    EXPECT_EQ(MistakeIn(wrongCode),
              "line 1 is not a record of a journal: 'result' is not a code such as 0x80004005");
}

} // namespace

} // namespace vant::host
