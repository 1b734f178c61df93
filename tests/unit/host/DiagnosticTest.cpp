#include "host/text/Diagnostic.h"

#include "host/text/Duration.h"

#include <gtest/gtest.h>
#include <map>

namespace vant::host {

namespace {

TEST(Diagnostics, Messages_StandInTheOrderOfTheFile) {
    Diagnostics found;
    found.Error({3, 1}, "late");
    found.Warning({1, 2}, "early");
    EXPECT_EQ(found.Print("f"), "f:1:2: warning: early\nf:3:1: error: late\n");
    EXPECT_TRUE(found.HasErrors());
}

TEST(Diagnostics, WarningsAlone_AreNotErrors) {
    Diagnostics found;
    found.Warning({1, 1}, "only this");
    EXPECT_FALSE(found.HasErrors());
}

TEST(Diagnostics, ControlCharacters_AreWrittenOut) {
    Diagnostics found;
    found.Error({1, 1}, "no '\x1B[2J\n'");
    EXPECT_EQ(found.Print("a\tb"), "a\\tb:1:1: error: no '\\x1B[2J\\n'\n");
}

TEST(Diagnostics, MoreThanTheLimit_AreCounted) {
    Diagnostics found;
    for (std::uint32_t line = 1; line <= Diagnostics::mostPrinted + 3; ++line)
        found.Error({line, 1}, "e");
    const std::string text = found.Print("f");
    EXPECT_EQ(text.substr(text.rfind("e\n") - 16),
              "f:100:1: error: e\nf: 3 more messages are not shown; 103 are errors in all\n");
}

TEST(Diagnostics, Suggestions_EndAfterSomeMistakes) {
    const std::map<std::string, int> names = {{"speed", 1}, {"torque", 2}};
    Diagnostics found;
    for (std::size_t i = 0; i < Diagnostics::mostSuggestions; ++i)
        EXPECT_EQ(found.Suggest("sped", names), " (did you mean 'speed'?)");
    EXPECT_EQ(found.Suggest("sped", names), "");
}

TEST(Duration, NumberWithUnit_IsMilliseconds) {
    EXPECT_EQ(ParseDuration("250ms"), 250);
    EXPECT_EQ(ParseDuration("1.5s"), 1500);
    EXPECT_EQ(ParseDuration("10min"), 600000);
    EXPECT_EQ(ParseDuration("2h"), 7200000);
    EXPECT_EQ(ParseDuration("0s"), 0);
}

TEST(Duration, AnythingElse_IsNone) {
    for (const char* const text : {"", "5", "s", "5 s", "5S", "-1s", "nans", "infs", "1e300h", "5sx", "+5s"})
        EXPECT_EQ(ParseDuration(text), std::nullopt) << text;
}

} // namespace

} // namespace vant::host
