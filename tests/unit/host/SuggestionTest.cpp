#include "host/text/Suggestion.h"

#include <gtest/gtest.h>
#include <vector>

namespace vant::host {

namespace {

const std::vector<std::string> names = {"Calculator", "Timer", "measure", "stop"};

TEST(Suggestion, WrongMissingSurplusOrSwappedLetter_FindsTheName) {
    EXPECT_EQ(NearestName("Calculater", names), "Calculator");
    EXPECT_EQ(NearestName("mesure", names), "measure");
    EXPECT_EQ(NearestName("Timmer", names), "Timer");
    EXPECT_EQ(NearestName("sotp", names), "stop");
}

TEST(Suggestion, WrongCase_IsNotAMistake) {
    EXPECT_EQ(NearestName("CALCULATOR", names), "Calculator");
}

TEST(Suggestion, MoreThanAThirdWrong_FindsNothing) {
    EXPECT_EQ(NearestName("Tinner", names), "Timer"); // two of six
    EXPECT_EQ(NearestName("Tonne", names), std::nullopt);
    EXPECT_EQ(NearestName("x", names), std::nullopt);
    EXPECT_EQ(NearestName("", names), std::nullopt);
}

TEST(Suggestion, SeveralEquallyNear_FindsTheFirst) {
    EXPECT_EQ(NearestName("bot", std::vector<std::string>{"dog", "bat", "bet"}), "bat");
}

TEST(Suggestion, TextOfMoreThan64Bytes_FindsNothing) {
    const std::string longName(65, 'a');
    EXPECT_EQ(NearestName(longName, std::vector{longName}), std::nullopt);
    EXPECT_EQ(NearestName(std::string(64, 'a'), std::vector{longName}), std::nullopt);
    EXPECT_EQ(NearestName(std::string(63, 'a'), std::vector{std::string(64, 'a')}), std::string(64, 'a'));
}

TEST(Suggestion, Message_ContainsTheSuggestionOrIsEmpty) {
    EXPECT_EQ(DidYouMean("Timr", names), " (did you mean 'Timer'?)");
    EXPECT_EQ(DidYouMean("unlike", names), "");
}

} // namespace

} // namespace vant::host
