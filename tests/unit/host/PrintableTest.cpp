#include "host/text/Printable.h"

#include <gtest/gtest.h>

namespace vant {

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

TEST(Printable, EverythingElse_Stays) {
    EXPECT_EQ(Printable("18 \xC2\xB0\x43 \xE2\x82\xAC \\"), "18 \xC2\xB0\x43 \xE2\x82\xAC \\");
    EXPECT_EQ(Printable(""), "");
}

} // namespace

} // namespace vant
