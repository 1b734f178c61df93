#include "host/runner/ReadyOperator.h"

#include <utility>

namespace vant::host {

namespace {

bool Fits(const ReadyAnswer& ready, const Prompt& prompt) {
    return (ready.step.empty() || ready.step == prompt.step) &&
           (prompt.text.find(ready.prompt) != std::string::npos ||
            prompt.caption.find(ready.prompt) != std::string::npos);
}

} // namespace

std::optional<Answer> ReadyOperator::Ask(const Prompt& prompt, const std::function<bool()>& /*isOver*/) {
    const std::lock_guard lock(m_access);
    for (std::size_t i = 0; i < m_answers.size(); ++i) {
        const ReadyAnswer& ready = m_answers[i];
        if ((m_isUsed[i] && !ready.repeats) || !Fits(ready, prompt))
            continue;
        m_isUsed[i] = true;
        EnteredAnswer entered = ReadAnswer(prompt, ready.answer);
        return Answer{entered.value.value_or(nullptr), "answers", ready.after, std::move(entered.mistake)};
    }
    return std::nullopt;
}

std::vector<std::size_t> ReadyOperator::UnusedOnes() const {
    const std::lock_guard lock(m_access);
    std::vector<std::size_t> unused;
    for (std::size_t i = 0; i < m_answers.size(); ++i) {
        if (!m_isUsed[i])
            unused.push_back(i);
    }
    return unused;
}

Diagnostics ReadyOperator::Unused() const {
    Diagnostics unused;
    for (const std::size_t each : UnusedOnes())
        unused.Warning(m_answers[each].position, "no prompt used this answer");
    return unused;
}

} // namespace vant::host
