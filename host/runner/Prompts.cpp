#include "host/runner/Prompts.h"

#include "host/record/Vocabulary.h"
#include "platform/Clock.h"
#include "platform/Event.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vant::host {

namespace {

/// How often a wait looks whether it is over.
constexpr std::int64_t period = 100;

Value TextOrNull(std::string text) {
    return text.empty() ? Value(nullptr) : Value(std::move(text));
}

/// Waits until a time of the clock. Whether that time has come before `isOver` returned true.
bool WaitUntil(std::int64_t end, const std::function<bool()>& isOver) {
    Event never;
    for (;;) {
        const std::int64_t rest = end - ClockMilliseconds();
        if (rest <= 0 || isOver())
            return rest <= 0 && !isOver();
        never.Wait(static_cast<DWORD>(std::min(rest, period)));
    }
}

} // namespace

Prompts::Outcome Prompts::Show(const Prompt& prompt, std::optional<std::int64_t> timeout,
                               const std::string& entry, const std::function<bool()>& isOver) {
    m_journal.AddEvent(event::PromptShown,
                       {{argument::kind, NameOf(prompt.kind)},
                        {argument::caption, TextOrNull(prompt.caption)},
                        {argument::text, prompt.text},
                        {argument::buttons, TextOrNull(fmt::format("{}", fmt::join(prompt.buttons, ", ")))},
                        {argument::units, TextOrNull(prompt.units)},
                        {argument::limits, TextOrNull(Describe(prompt.limits))},
                        {argument::data, TextOrNull(entry)}});
    const std::int64_t began = ClockMilliseconds();
    const auto isTimeOut = [&] { return timeout && ClockMilliseconds() - began >= *timeout; };
    const auto ends = [&] { return isOver() || isTimeOut(); };
    std::optional<Answer> answer = m_operator ? m_operator->Ask(prompt, ends) : std::nullopt;
    if (answer && answer->after > 0 && !WaitUntil(began + answer->after, ends))
        answer.reset();
    Outcome outcome;
    if (answer && !answer->mistake.empty())
        outcome.mistake = std::exchange(answer, std::nullopt)->mistake;
    else if (!answer && prompt.standard && !isOver() && (!timeout || WaitUntil(began + *timeout, isOver)))
        answer = Answer{*prompt.standard, "default"};
    const bool wasAnswered = answer.has_value();
    outcome.isOver = !wasAnswered && isOver();
    if (wasAnswered)
        outcome.answer = answer->value;
    m_journal.AddEvent(event::PromptClosed,
                       {{argument::answer, outcome.answer.value_or(nullptr)},
                        {argument::by, wasAnswered ? Value(answer->by) : Value(nullptr)}});
    return outcome;
}

} // namespace vant::host
