#pragma once

#include "host/procedure/Answers.h"
#include "host/runner/Operator.h"

#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// Answers prompts from a list: the first unused answer that fits a prompt is its answer. Any thread.
class ReadyOperator final : public Operator {
public:
    explicit ReadyOperator(std::vector<ReadyAnswer> answers) : m_answers(std::move(answers)) {}

    /// Nothing if no answer fits.
    std::optional<Answer> Ask(const Prompt& prompt, const std::function<bool()>& isOver) override;

    /// A warning for each answer that has not been used.
    Diagnostics Unused() const;

private:
    std::vector<ReadyAnswer> m_answers;
    mutable std::mutex m_access; ///< Protects what follows.
    std::vector<bool> m_isUsed = std::vector<bool>(m_answers.size());
};

} // namespace vant::host
