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
    /// that does not hold, and the commands that run on with their progress. Empty outside steps. `now` is in
    /// milliseconds since the run began.
    std::string Text(std::int64_t now) const;

private:
    struct Wait {
        std::string what;
        std::int64_t began = 0;
        std::optional<std::int64_t> limit;
    };

    /// What a command was asked for, as far as its properties say it.
    struct Extent {
        std::string className;
        std::optional<std::int64_t> duration; ///< In milliseconds.
        std::optional<std::int64_t> readings;
    };
    /// A command on a thread of its own.
    struct Running {
        std::string command;
        std::int64_t began = 0;
        std::int64_t readings = 0;
        Extent extent;
    };

    static std::string Describe(const Running& running, std::int64_t now);
    void TakeEvent(const host::Record& record);
    void CountReading(const std::string& thread);
    void TakeProperty(const host::Record& record);
    void LeaveStep();

    host::ReportText m_text;
    std::vector<std::string> m_steps; ///< Of the procedure, of the one that its step runs, and so on.
    std::optional<Wait> m_wait;
    std::string m_unmet;
    std::map<std::string, Extent> m_extents;  ///< By command.
    std::map<std::string, Running> m_running; ///< By thread.
};

} // namespace vant::program
