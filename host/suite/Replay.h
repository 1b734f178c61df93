#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/record/Journal.h"
#include "host/runner/Operator.h"

#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace vant::host {

/// What it takes to run a procedure again on what its journal has.
struct ReplayPlan {
    EngineDescription engine{}; ///< Returns what was recorded, at the same times.
    /// Of each prompt, in their order; nothing for one that the operator did not answer.
    std::vector<std::optional<Answer>> answers{};
};

/// The plan of a journal.
ReplayPlan PlanReplay(std::span<const Record> journal);

/// Answers prompts as they were answered before: the first one by the first answer, and so on. Any thread.
class RecordedOperator final : public Operator {
public:
    explicit RecordedOperator(std::vector<std::optional<Answer>> answers) : m_answers(std::move(answers)) {}

    std::optional<Answer> Ask(const Prompt& prompt, const std::function<bool()>& isOver) override;

private:
    const std::vector<std::optional<Answer>> m_answers;
    std::mutex m_access;
    std::size_t m_next = 0;
};

/// The records of a run as far as a replay can repeat them. What the engine's parameters are called and what
/// they hold at the end is left out, and the texts of questions, which may have values that were not
/// recorded; where answers came from does not count.
std::vector<Record> ComparableRecords(std::span<const Record> journal);

} // namespace vant::host
