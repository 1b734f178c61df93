#include "host/record/Json.h"

#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <streambuf>

namespace vant::host {

namespace {

Record CallRecord() {
    Record record;
    record.time = 12;
    record.thread = "main";
    record.command = "drop";
    record.service = "DataStore";
    record.operation = "SetValue";
    record.result = S_OK;
    return record;
}

std::string Line(const Record& record) {
    std::ostringstream out;
    JsonLinesWriter writer(out);
    writer(record);
    return out.str();
}

TEST(JsonLines, Call_HasItsKeysInOrder) {
    Record record = CallRecord();
    record.Add("name", std::string("crank"));
    record.Add("value", std::string("9.5"));
    EXPECT_EQ(Line(record), "{\"time\":12,\"thread\":\"main\",\"command\":\"drop\",\"service\":\"DataStore\","
                            "\"operation\":\"SetValue\",\"arguments\":{\"name\":\"crank\",\"value\":\"9.5\"},"
                            "\"result\":\"0x00000000\"}\n");
}

TEST(JsonLines, EventOutsideCommands_HasNulls) {
    Record record = CallRecord();
    record.command.clear();
    record.result.reset();
    const Json line = Json::parse(Line(record));
    EXPECT_TRUE(line.at("command").is_null());
    EXPECT_TRUE(line.at("result").is_null());
    EXPECT_EQ(line.at("arguments"), Json::object());
}

TEST(JsonLines, ArgumentsKeepTheirTypes) {
    Record record = CallRecord();
    record.Add("z", true);
    record.Add("y", std::int64_t{-7});
    record.Add("x", 0.1);
    record.Add("w", nullptr);
    record.Add("v", std::string("7"));
    EXPECT_NE(Line(record).find("{\"z\":true,\"y\":-7,\"x\":0.1,\"w\":null,\"v\":\"7\"}"), std::string::npos);
}

TEST(JsonLines, TextBeyondAsciiStaysUtf8_ControlCharactersAreEscaped) {
    Record record = CallRecord();
    record.Add("text", std::string("\xE2\x82\xAC\n\"\0", 6));
    EXPECT_NE(Line(record).find("\"\xE2\x82\xAC\\n\\\"\\u0000\""), std::string::npos);
}

TEST(JsonLines, FailedWrite_ShowsInTheStreamsState) {
    struct Full : std::streambuf {
    } full;
    std::ostream out(&full);
    JsonLinesWriter writer(out);
    writer(CallRecord());
    EXPECT_FALSE(out.good());
}

TEST(JsonValue, NumberThatJsonDoesNotKnow_IsText) {
    using Limits = std::numeric_limits<double>;
    EXPECT_EQ(ToJson(Value(Limits::quiet_NaN())), "NaN");
    EXPECT_EQ(ToJson(Value(Limits::infinity())), "Infinity");
    EXPECT_EQ(ToJson(Value(-Limits::infinity())), "-Infinity");
}

TEST(JsonResult, Code_IsEightHexadecimalDigits) {
    EXPECT_EQ(ToText(E_FAIL), "0x80004005");
    EXPECT_EQ(ToText(S_FALSE), "0x00000001");
}

} // namespace

} // namespace vant::host
