#pragma once

#include "host/record/Journal.h"
#include "host/runner/Operator.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace vant::host {

/// Puts prompts to the operator and records them with their answers. Any thread may call.
class Prompts {
public:
    /// `answering` may be null: then nothing but standard answers. Both must outlive this object.
    Prompts(Journal& journal, Operator* answering) : m_journal(journal), m_operator(answering) {}

    /// What came of a prompt.
    struct Outcome {
        std::optional<Value> answer{};
        bool isOver = false;   ///< There is no answer because `isOver` returned true.
        std::string mistake{}; ///< Why the operator's answer is not one, if it is not.
    };

    /// Shows a prompt and returns when it has been answered, at the latest when `isOver` returns true. If the
    /// operator does not answer, after `timeout` in milliseconds of the run's time, or at once without one,
    /// the standard answer counts. `entry`: the data entry that receives the answer, for the record.
    Outcome Show(const Prompt& prompt, std::optional<std::int64_t> timeout, const std::string& entry,
                 const std::function<bool()>& isOver);

private:
    Journal& m_journal;
    Operator* const m_operator;
};

} // namespace vant::host
