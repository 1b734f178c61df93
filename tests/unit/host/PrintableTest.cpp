#include "host/text/Printable.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

TEST(Printable, ControlCharacters_AreWrittenOut) {
    EXPECT_EQ(Printable("a\nb\tc\rd"), "a\\nb\\tc\\rd");
    EXPECT_EQ(Printable("\x1b[31m\x7f"), "\\x1B[31m\\x7F");
    EXPECT_EQ(Printable(std::string_view("\0", 1)), "\\x00");
}

TEST(Printable, ControlCharactersOfTwoBytes_AreWrittenOut) {
    EXPECT_EQ(Printable("\xC2\x9B"
                        "31m"),
              "\\x9B31m");
}

TEST(Printable, EverythingElse_IsUnchanged) {
    EXPECT_EQ(Printable("18 \xC2\xB0\x43 \xE2\x82\xAC \\"), "18 \xC2\xB0\x43 \xE2\x82\xAC \\");
    EXPECT_EQ(Printable(""), "");
}

TEST(WidthOf, Text_CountsCharactersNotBytes) {
    EXPECT_EQ(WidthOf(""), 0U);
    EXPECT_EQ(WidthOf("rpm"), 3U);
    EXPECT_EQ(WidthOf("w\xC3\xA4rm \xE2\x82\xAC \xF0\x9F\x8C\xA1"), 8U);
}

} // namespace

} // namespace vant::host
