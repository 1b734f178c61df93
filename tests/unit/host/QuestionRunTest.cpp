// Steps that ask the operator, and message boxes, in virtual time, with the built module.

#include "host/record/Vocabulary.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

/// Answers the prompts with lines, in order; an empty list is the end of the input.
class ScriptedOperator final : public Operator {
public:
    explicit ScriptedOperator(std::vector<std::string> lines, std::int64_t after = 0)
        : m_lines(std::move(lines)), m_after(after) {}

    std::optional<Answer> Ask(const Prompt& prompt, const std::function<bool()>&) override {
        prompts.push_back(prompt);
        if (m_next == m_lines.size())
            return std::nullopt;
        EnteredAnswer entered = ReadAnswer(prompt, m_lines[m_next++]);
        return Answer{entered.value.value_or(nullptr), "operator", m_after, entered.mistake};
    }

    std::vector<Prompt> prompts;

private:
    const std::vector<std::string> m_lines;
    const std::int64_t m_after;
    std::size_t m_next = 0;
};

RunOutcome RunAsking(const std::string& steps, Operator& answering, const std::string& top = "") {
    return RunSteps(steps, top, {.answering = &answering});
}

/// How the prompts were closed, such as "yes operator".
std::vector<std::string> Closed(const RunOutcome& outcome) {
    std::vector<std::string> closed;
    for (const Record& each : outcome.Of(event::PromptClosed))
        closed.push_back(each.Text(argument::answer) + ' ' + each.Text(argument::by));
    return closed;
}

const std::string choice = "[steps.s]\nask = { text = 'On?', buttons = ['yes', 'no'] }\n"
                           "on = { yes = 'good', no = 'bad' }\n";

TEST(Question, Button_IsTheTransition) {
    ScriptedOperator answering({"n"});
    const RunOutcome outcome = RunAsking(choice, answering);
    EXPECT_EQ(outcome.Path(), "s:0 bad:0");
    EXPECT_EQ(Closed(outcome), std::vector<std::string>{"no operator"});
    const Record shown = outcome.Of(event::PromptShown).at(0);
    EXPECT_EQ(shown.Text(argument::kind), "buttons");
    EXPECT_EQ(shown.Text(argument::text), "On?");
    EXPECT_EQ(shown.Text(argument::buttons), "yes, no");
    EXPECT_EQ(answering.prompts.at(0).step, "s");
}

TEST(Question, Answer_CountsAfterItsDelay) {
    ScriptedOperator answering({"yes"}, 3000);
    EXPECT_EQ(RunAsking(choice, answering).Path(), "s:0 good:3000");
}

TEST(Question, EnteredValue_IsStoredAsTextAndIsAMeasurement) {
    ScriptedOperator answering({"12.50"});
    const RunOutcome outcome =
        RunAsking("[measurements.entered]\ndata = 'entered'\natLeast = 12\n"
                  "[steps.s]\nask = { text = 'How much?', data = 'entered', number = true }\n"
                  "next = 'good'\n",
                  answering);
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(outcome.LeftIn("entered"), std::vector<std::string>{"12.5"});
    EXPECT_EQ(outcome.Of(event::Measured).at(0).Text(argument::step), "s");
}

TEST(Question, Text_HasTheTextsOfEntriesAndParameters) {
    ScriptedOperator answering({""});
    RunAsking(
        "[steps.s]\nask = 'Gear $d(gear), limit $d(limit), $p(temperature) deg, lost $p(lost), $d(open'\n"
        "delay = '1s'\nnext = 't'\n"
        "[steps.t]\nask = '$p(temperature), $p(lost)'\ndelay = '6s'\nnext = 'good'\n",
        answering);
    EXPECT_EQ(answering.prompts.at(0).text, "Gear neutral, limit 5, 20 deg, lost 90, $d(open");
    EXPECT_EQ(answering.prompts.at(0).kind, Prompt::Kind::Message);
    EXPECT_EQ(answering.prompts.at(1).text, "21, 90");
}

TEST(Question, UnreadableParameter_IsAQuestionMark) {
    ScriptedOperator answering({""});
    RunAsking("[steps.s]\ndelay = '6s'\nnext = 't'\n[steps.t]\nask = 'lost $p(lost)'\nnext = 'good'\n",
              answering);
    EXPECT_EQ(answering.prompts.at(0).text, "lost ?");
}

TEST(Question, TextToConfirm_IsClosedWithoutAnOperator) {
    const RunOutcome outcome = RunSteps("[steps.s]\nask = 'Open the valve.'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(Closed(outcome), std::vector<std::string>{"OK default"});
}

TEST(Question, WithoutAnswer_IsAnsweredByItsDefaultAfterItsTimeout) {
    const std::string keys = "[steps.s]\non = { yes = 'good', no = 'bad' }\n";
    const RunOutcome atOnce =
        RunSteps(keys + "ask = { text = 'On?', buttons = ['yes', 'no'], default = 'no' }\n");
    EXPECT_EQ(atOnce.Path(), "s:0 bad:0");
    const std::string withTimeout =
        keys + "ask = { text = 'On?', buttons = ['yes', 'no'], default = 'no', timeout = '30s' }\n";
    const RunOutcome later = RunSteps(withTimeout);
    EXPECT_EQ(later.Path(), "s:0 bad:30000");
    EXPECT_EQ(Closed(later), std::vector<std::string>{"no default"});
    ScriptedOperator slow({"yes"}, 40'000);
    EXPECT_EQ(RunAsking(withTimeout, slow).Path(), "s:0 bad:30000");
    ScriptedOperator quick({"yes"}, 20'000);
    EXPECT_EQ(RunAsking(withTimeout, quick).Path(), "s:0 good:20000");
}

TEST(Question, WithoutAnswerAndDefault_EndsTheRunWithItsCleanUp) {
    const RunOutcome outcome = RunSteps(choice + "failed = 'good'\n", "finally = ['close']\n");
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason, "the question 'On?' of step 's' has no answer: it needs an operator, a file of "
                              "answers, or 'default'");
    EXPECT_EQ(outcome.Path(), "s:0");
    EXPECT_EQ(outcome.Executed(), "close");
    EXPECT_EQ(Closed(outcome), std::vector<std::string>{" "});
}

TEST(Question, AnswerThatItDoesNotTake_EndsTheRunInSpiteOfADefault) {
    ScriptedOperator answering({"perhaps"});
    const RunOutcome outcome = RunAsking(
        "[steps.s]\nask = { text = 'On?', buttons = ['yes'], default = 'yes' }\non = { yes = 'good' }\n",
        answering);
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.reason,
              "the question 'On?' of step 's' does not take the answer: 'perhaps' is none of: yes");
}

TEST(Question, InACalledProcedureWithoutAnswer_EndsTheCallerToo) {
    Procedure procedure =
        ProcedureOf(warmUpBench + "[steps.s]\nprocedure = 'f'\nnext = 'good'\nfailed = 'good'\n");
    procedure.steps.at("s").procedure->procedure = std::make_shared<const Procedure>(
        ProcedureOf("name = 'called'\nstart = 's'\n[steps.e]\nend = 'passed'\n"
                    "[steps.s]\nask = { text = 'On?', buttons = ['e'] }\non = { e = 'e' }\n"));
    const RunOutcome outcome = RunProcedure(procedure);
    EXPECT_EQ(outcome.verdict, Verdict::Error);
    EXPECT_EQ(outcome.Path(), "s:0 s:0");
    EXPECT_EQ(outcome.reason.find("the question 'On?' of step 's' has no answer"), 0U) << outcome.reason;
}

TEST(Question, StopOfAMonitor_WithdrawsIt) {
    ScriptedOperator slow({"yes"}, 60'000);
    const RunOutcome outcome = RunAsking("[steps.s]\nrun = ['stop']\nask = { text = 'On?', buttons = ['yes'] "
                                         "}\non = { yes = 'good', stop = 'bad' }\n",
                                         slow);
    EXPECT_EQ(outcome.verdict, Verdict::Failed) << outcome.reason;
    EXPECT_EQ(Closed(outcome), std::vector<std::string>{" "});
}

TEST(Question, TimeoutOfTheStep_WithdrawsItAndNamesTheWait) {
    ScriptedOperator slow({"yes"}, 60'000);
    const RunOutcome outcome = RunAsking(choice + "timeout = '5s'\n", slow);
    EXPECT_EQ(outcome.verdict, Verdict::Failed);
    EXPECT_EQ(outcome.reason, "the time of step 's' ran out: it has waited for an answer since 0:00");
}

TEST(Question, Interruption_WithdrawsIt) {
    ScriptedOperator slow({"yes"}, 60'000);
    const RunOutcome outcome = RunSteps(
        "[steps.s]\nrun = ['count']\nask = { text = 'On?', buttons = ['yes'] }\non = { yes = 'good' }\n", "",
        {.answering = &slow}, IsOperation(operation::SetValue));
    EXPECT_EQ(outcome.verdict, Verdict::Aborted);
}

TEST(Question, ButtonUnderRetry_AsksAgain) {
    ScriptedOperator answering({"no", "no", "yes"});
    const RunOutcome outcome = RunAsking(choice + "retry = { times = 5, on = ['no'] }\n", answering);
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_EQ(answering.prompts.size(), 3U);
}

TEST(Question, ChoiceOfACommand_LeavesItOut) {
    ScriptedOperator answering({"yes"});
    const RunOutcome outcome =
        RunAsking("[steps.s]\nrun = ['check']\nask = { text = 'On?', buttons = ['yes'] }\n"
                  "on = { yes = 'good', no = 'bad' }\n",
                  answering);
    EXPECT_EQ(outcome.Path(), "s:0 bad:0");
    EXPECT_TRUE(answering.prompts.empty());
}

const std::string message =
    "[commands.tell]\nclass = 'MessageDisplayer'\nproperties = { dsString = 'gear' }\n";

TEST(MessageBox, IsAPromptOfItsCommand) {
    ScriptedOperator answering({"", ""}, 2000);
    const RunOutcome outcome = RunAsking(message + "[steps.s]\nrun = ['tell']\nnext = 'good'\n", answering);
    EXPECT_EQ(outcome.Path(), "s:0 good:2000");
    EXPECT_EQ(answering.prompts.at(0).caption, "TORVEX");
    EXPECT_EQ(answering.prompts.at(0).text, "neutral");
    EXPECT_EQ(outcome.Of(event::PromptShown, "tell").size(), 1U);
    EXPECT_EQ(outcome.Of(event::PromptClosed, "tell").size(), 1U);
}

TEST(MessageBox, OnAThread_BelongsToTheCommandOfThatThread) {
    const RunOutcome outcome =
        RunSteps(message + "[commands.later]\nclass = 'Timer'\n"
                           "properties = { length = '2', dsBase = 'left', stopCommandID = 'tell' }\n"
                           "[steps.s]\nrun = ['later']\nwait = 'end'\nnext = 'good'\n");
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    const Record shown = outcome.Of(event::PromptShown, "tell").at(0);
    EXPECT_EQ(shown.time, 3000);
    EXPECT_NE(shown.thread, mainThread);
}

TEST(MessageBox, Interruption_ClosesIt) {
    ScriptedOperator slow({""}, 60'000);
    const RunOutcome outcome = RunSteps(
        message + "[steps.s]\nrun = ['count', 'tell']\nnext = 'good'\n", "", {.answering = &slow},
        [](const Record& record) { return record.operation == operation::SetValue && record.time > 0; });
    EXPECT_EQ(outcome.verdict, Verdict::Aborted);
    EXPECT_LT(outcome.records.back().time, 10'000);
    EXPECT_EQ(Closed(outcome), std::vector<std::string>{" "});
}

} // namespace

} // namespace vant::host
