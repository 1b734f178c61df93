#include "host/runner/Operator.h"

#include "host/runner/ReadyOperator.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

Prompt Buttons(std::vector<std::string> buttons, std::optional<Value> standard = {}) {
    return {.kind = Prompt::Kind::Buttons,
            .step = "lamp",
            .text = "Is the lamp on?",
            .buttons = std::move(buttons),
            .standard = std::move(standard)};
}

Prompt Number(std::optional<Value> standard = {}) {
    Prompt prompt{
        .kind = Prompt::Kind::Number, .step = "speed", .text = "How fast?", .standard = std::move(standard)};
    prompt.limits.comparisons = {{Comparison::AtLeast, std::int64_t{1}}, {Comparison::Below, 10.5}};
    return prompt;
}

Prompt Text(std::string pattern = "*") {
    Prompt prompt{.kind = Prompt::Kind::Text, .text = "Which one?"};
    prompt.limits.like = std::move(pattern);
    return prompt;
}

TEST(ReadAnswer, Button_IsFoundByTextBeginningOrNumber) {
    const Prompt prompt = Buttons({"yes", "no", "not now", "1"});
    const auto answer = [&](const char* entered) { return ReadAnswer(prompt, entered).value; };
    EXPECT_EQ(answer("yes"), Value("yes"));
    EXPECT_EQ(answer(" Y\r"), Value("yes"));
    EXPECT_EQ(answer("NO"), Value("no")) << "the whole text comes before the beginning of another";
    EXPECT_EQ(answer("not"), Value("not now"));
    EXPECT_EQ(answer("2"), Value("no"));
    EXPECT_EQ(answer("1"), Value("1")) << "a text comes before a number";
    EXPECT_EQ(answer("5"), std::nullopt);
    EXPECT_EQ(answer("0"), std::nullopt);
    EXPECT_EQ(answer(""), std::nullopt);
}

TEST(ReadAnswer, WhatIsNoButton_IsExplained) {
    EXPECT_EQ(ReadAnswer(Buttons({"yes", "no"}), "maybe").mistake, "'maybe' is none of: yes, no");
    EXPECT_EQ(ReadAnswer(Buttons({"up", "upper"}), "U").mistake,
              "'U' is the beginning of more than one of: up, upper");
    EXPECT_EQ(ReadAnswer(Buttons({"yes", "no"}), "").mistake, "enter one of: yes, no");
}

TEST(ReadAnswer, NothingEntered_IsTheStandardAnswer) {
    EXPECT_EQ(ReadAnswer(Buttons({"yes", "no"}, "no"), " ").value, Value("no"));
    EXPECT_EQ(ReadAnswer(Number(2.5), "").value, Value(2.5));
}

TEST(ReadAnswer, Number_IsReadWithItsLimits) {
    EXPECT_EQ(ReadAnswer(Number(), " 2.5 ").value, Value(2.5));
    EXPECT_EQ(ReadAnswer(Number(), "1e1").value, Value(std::int64_t{10}));
    EXPECT_EQ(ReadAnswer(Number(), "10.5").mistake, "'10.5' is not within the limits: atLeast 1, below 10.5");
    for (const char* const entered : {"", "x", "2,5", "2 3", "nan", "inf", "0x2", "1e999"})
        EXPECT_EQ(ReadAnswer(Number(), entered).mistake,
                  fmt::format("'{}' is not a number, such as 12 or 0.5", entered));
}

TEST(ReadAnswer, Text_IsKeptAsItIs) {
    EXPECT_EQ(ReadAnswer(Text(), " a b ").value, Value(" a b "));
    EXPECT_EQ(ReadAnswer(Text(), "").value, Value(""));
    EXPECT_EQ(ReadAnswer(Text("A?-*"), "AB-7").value, Value("AB-7"));
    EXPECT_EQ(ReadAnswer(Text("A?-*"), "B").mistake, "'B' is not within the limits: like \"A?-*\"");
}

TEST(ReadAnswer, Message_IsClosedByAnything) {
    const Prompt message{.text = "Key on", .buttons = {"OK"}, .standard = "OK"};
    EXPECT_EQ(ReadAnswer(message, "what?").value, Value("OK"));
}

TEST(DescribeAnswers, ListsWhatCanBeEntered) {
    EXPECT_EQ(DescribeAnswers(Buttons({"yes", "no"}, "no")), "1 yes, 2 no [no]");
    Prompt number = Number(std::int64_t{5});
    number.units = "1/min";
    EXPECT_EQ(DescribeAnswers(number), "a number in 1/min, atLeast 1, below 10.5 [5]");
    EXPECT_EQ(DescribeAnswers({.kind = Prompt::Kind::Text}), "a text");
}

/// As in a file, each after its line "[[answer]]".
std::vector<ReadyAnswer> Answers(const std::vector<std::string>& tables) {
    std::string toml;
    for (const std::string& each : tables)
        toml += fmt::format("[[answer]]\n{}\n", each);
    Diagnostics found;
    std::vector<ReadyAnswer> answers = ReadAnswers(toml, found);
    EXPECT_EQ(found.Print("f"), "");
    return answers;
}

constexpr auto isNeverOver = [] { return false; };

TEST(ReadyOperator, TakesTheFirstAnswerThatFitsAndIsUnused) {
    ReadyOperator ready(Answers({"step = 'speed'\nanswer = 3", "prompt = 'lamp'\nanswer = 'n'\nafter = '2s'",
                                 "prompt = 'lamp'\nanswer = 'yes'\nrepeat = true", "answer = 8"}));
    const Prompt lamp = Buttons({"yes", "no"});
    const auto first = ready.Ask(lamp, isNeverOver);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->value, Value("no"));
    EXPECT_EQ(first->after, 2000);
    EXPECT_EQ(first->by, "answers");
    EXPECT_EQ(ready.Ask(lamp, isNeverOver)->value, Value("yes"));
    EXPECT_EQ(ready.Ask(lamp, isNeverOver)->value, Value("yes"));
    EXPECT_EQ(ready.Unused().Print("f"), "f:1:1: warning: no prompt used this answer\n"
                                         "f:12:1: warning: no prompt used this answer\n");
    EXPECT_EQ(ready.Ask(Number(), isNeverOver)->value, Value(std::int64_t{3}));
    EXPECT_EQ(ready.Ask(Number(), isNeverOver)->value, Value(std::int64_t{8}));
    EXPECT_EQ(ready.Ask(Number(), isNeverOver), std::nullopt);
    EXPECT_EQ(ready.Unused().Print("f"), "");
}

TEST(ReadyOperator, AnswerThatThePromptDoesNotTake_HasTheReason) {
    ReadyOperator ready(Answers({"answer = 'perhaps'"}));
    EXPECT_EQ(ready.Ask(Buttons({"yes"}), isNeverOver)->mistake, "'perhaps' is none of: yes");
}

TEST(ReadyOperator, CaptionOfAMessage_IsAPlaceToLook) {
    ReadyOperator ready(Answers({"prompt = 'TORVEX'\nanswer = 'OK'"}));
    EXPECT_TRUE(ready.Ask({.caption = "TORVEX", .text = "Key on", .standard = "OK"}, isNeverOver));
}

} // namespace

} // namespace vant::host
