#pragma once

#include "host/record/Journal.h"
#include "host/record/ReportText.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vant::program {

/// What a run is doing now, from its records.
class LiveStatus {
public:
    void Take(const host::Record& record);
    /// One line: the step, the time of the run, what the step waits for and how long already, the condition
    /// that does not hold, and the commands that run on. Empty outside steps. `now` is in milliseconds since
    /// the run began.
    std::string Text(std::int64_t now) const;

private:
    struct Wait {
        std::string what;
        std::int64_t began = 0;
        std::optional<std::int64_t> limit;
    };

    void TakeEvent(const host::Record& record);
    void LeaveStep();

    host::ReportText m_text;
    std::vector<std::string> m_steps; ///< Of the procedure, of the one that its step runs, and so on.
    std::optional<Wait> m_wait;
    std::string m_unmet;
    std::map<std::string, std::string> m_running; ///< Commands by their threads.
};

} // namespace vant::program
