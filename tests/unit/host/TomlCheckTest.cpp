#include "host/procedure/TomlCheck.h"

#include "host/procedure/Toml.h"

#include <gtest/gtest.h>
#include <string>

namespace vant::host {

namespace {

std::string Messages(std::string_view toml) {
    Diagnostics found;
    const bool parsed = ParseToml(toml, found).has_value();
    EXPECT_NE(parsed, found.HasErrors());
    return found.Print("f");
}

TEST(TomlText, OfEveryKind_IsParsed) {
    EXPECT_EQ(
        Messages(
            "# Größe\na = 'ö\"' # ü\nb = \"\\\"ä\"\nc = '''\n'ö'\n'''''\nd = \"\"\"\n\\\"\"\" ö\"\"\"\"\n"
            "e = [ 1, # [\n {f = 1.5, 'g.h' = []} ]\n[i.\"j.k\"]\n[[l]]\n"),
        "");
    EXPECT_EQ(Messages(""), "");
    EXPECT_EQ(Messages("\xEF\xBB\xBFname = 'n'"), "");
}

TEST(TomlText, WithoutClosingQuote_IsReportedAtTheOpeningOne) {
    EXPECT_EQ(Messages("a = 1\nb = \"text\nc = 2\n"),
              "f:2:5: error: the string that begins here has no closing \"\n");
    EXPECT_EQ(Messages("b = 'text"), "f:1:5: error: the string that begins here has no closing '\n");
    EXPECT_EQ(Messages("b = \"text\\"), "f:1:5: error: the string that begins here has no closing \"\n");
    EXPECT_EQ(Messages("ä = 1"), "f:1:1: error: a character beyond ASCII outside quotes: write \" before and "
                                 "after the text\n");
    EXPECT_EQ(Messages("\nb = '''text''\n\n"),
              "f:2:5: error: the string that begins here has no closing '''\n");
}

TEST(TomlText, WithoutClosingBracket_IsReportedAtTheOpeningOne) {
    EXPECT_EQ(Messages("a = [ 1,\n 2\n"), "f:1:5: error: this '[' is never closed\n");
    EXPECT_EQ(Messages("a = 'ü' \nb = { c = 1\nd = 2 }\n"),
              "f:2:5: error: this '{' is not closed on its line\n");
    EXPECT_EQ(Messages("a = [ { b = 1 ]\n"), "f:1:7: error: this '{' is closed by ']'\n");
    EXPECT_EQ(Messages("a = 1 ]\n"), "f:1:7: error: this ']' closes nothing\n");
}

TEST(TomlText, CharactersBeyondAscii_OutsideStrings_AreRefused) {
    EXPECT_EQ(Messages("value = 20 \u00B0C\n"),
              "f:1:12: error: a character beyond ASCII outside quotes: write "
              "\" before and after the text\n");
    EXPECT_EQ(Messages("value = \u201Ctext\u201D\n"), "f:1:9: error: a typographic quote: write \" or '\n");
}

TEST(TomlText, QuoteInTheMiddleOfAValue_IsRefused) {
    EXPECT_EQ(Messages("x=0'\u039E'"), "f:1:4: error: a quote in the middle of a name or value\n");
    EXPECT_EQ(Messages("x = 'a'\"b\""), "f:1:8: error: a quote in the middle of a name or value\n");
    EXPECT_EQ(Messages("x=0.'\u039E'"), "f:1:5: error: a quote in the middle of a name or value\n");
    EXPECT_EQ(Messages("x = [1,\n0.'b']"), "f:2:3: error: a quote in the middle of a name or value\n");
    EXPECT_EQ(Messages("x = { a.'b' = 1, c.\"d\" = 2.'e' }"),
              "f:1:28: error: a quote in the middle of a name or value\n");
    EXPECT_EQ(Messages("[a.'b']\nc.\"d\" = [{ e.'f' = 1 }, { g.'h' = 'i' }]\n[[j.'k']]\n"), "");
    EXPECT_EQ(Messages("\"a\".'b' = ['c','d']\n\"e\"='f'\n['g'.\"h\"]\n"), "");
    EXPECT_EQ(Messages("\xEF\xBB\xBF\"name\" = 'n'"), "");
}

TEST(TomlText, InAnotherEncoding_IsRefused) {
    EXPECT_EQ(Messages(std::string_view("\xFF\xFEn\0=\0", 6)),
              "f:1:1: error: the file is UTF-16: save it as UTF-8\n");
    EXPECT_EQ(Messages(std::string_view("n\0a\0", 4)), "f:1:1: error: the file is not a text in UTF-8\n");
}

TEST(TomlText, NestingBeyondTheLimits_IsRefused) {
    const auto brackets = [](std::size_t count) {
        return "a = " + std::string(count, '[') + std::string(count, ']') + '\n';
    };
    EXPECT_EQ(Messages(brackets(deepestNesting)), "");
    EXPECT_EQ(Messages(brackets(deepestNesting + 1)),
              "f:1:69: error: more than 64 brackets inside one another\n");
    std::string name = "a";
    for (std::size_t i = 1; i < mostNameParts; ++i)
        name += ".a";
    EXPECT_EQ(Messages('[' + name + "]\n"), "");
    EXPECT_EQ(Messages('[' + name + ".a]\n"), "f:1:65: error: a name of more than 32 parts\n");
}

TEST(TomlText, ThatFailsAnAssertionOfTheParser_IsReportedByItsLine) {
    EXPECT_EQ(Messages("a = 1\n[.x]\nb = 2\n").substr(0, 4), "f:2:");
    EXPECT_EQ(Messages("a = 1\nx = 1979-05-27T:\n").substr(0, 4), "f:2:");
    EXPECT_EQ(Messages("x = 1979-05-27T:").substr(0, 4), "f:1:");
}

} // namespace

} // namespace vant::host
