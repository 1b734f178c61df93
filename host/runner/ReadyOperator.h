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

    /// The places of the answers that have not been used, from 0.
    std::vector<std::size_t> UnusedOnes() const;
    /// A warning for each of them.
    Diagnostics Unused() const;

private:
    std::vector<ReadyAnswer> m_answers;
    mutable std::mutex m_access; ///< Protects what follows.
    std::vector<bool> m_isUsed = std::vector<bool>(m_answers.size());
};

} // namespace vant::host
