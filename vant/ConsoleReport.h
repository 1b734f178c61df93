#pragma once

#include "host/record/Activity.h"
#include "host/record/Journal.h"
#include "host/record/ReportText.h"
#include "host/record/TimeSource.h"
#include "vant/LiveLine.h"
#include "vant/LiveStatus.h"
#include "vant/StepLog.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace vant::program {

/// How much of a run is printed.
enum class Detail {
    Quiet, ///< The verdict, and measurements that failed or are missing.
    Normal,
    Verbose ///< Every host call; no step is counted instead of printed.
};

/// Writes what happens in a run as plain text, line by line, while it happens. A line that the threads of
/// persistent commands or a waiting step repeat is written once in each step, also if measured values in it
/// differ.
/// Steps that repeat are counted, see StepLog.
class ConsoleReport {
public:
    struct Style {
        bool coloured = false; ///< The verdict is coloured for a terminal.
        Detail detail = Detail::Normal;
    };

    /// The stream must outlive the report.
    ConsoleReport(std::ostream& out, Style style);
    ConsoleReport(const ConsoleReport&) = delete;
    ConsoleReport& operator=(const ConsoleReport&) = delete;

    void operator()(const host::Record& record);

    /// Shows a live line on the terminal from now on. `now` returns milliseconds since the run began.
    void GoLive(host::TimeSource now);

    /// While it lives, someone else writes to the stream.
    class Interlude {
    public:
        explicit Interlude(ConsoleReport& report);
        ~Interlude();
        Interlude(const Interlude&) = delete;
        Interlude& operator=(const Interlude&) = delete;

    private:
        ConsoleReport& m_report;
    };

private:
    /// A procedure that has not ended; all but the first are run by a step of the one before.
    struct Level {
        std::string step{};
        std::optional<std::int64_t> stepBegan{}; ///< Until its end has been written.
        std::vector<host::Record> measurements{};
        bool hasData = false;
        bool hasLeft = false;
    };

    void WriteEvent(const host::Record& record);
    void WriteEventOfStep(const host::Record& record);
    void WriteCall(const host::Record& record);
    void WriteQuietly(const host::Record& record);

    void BeginProcedure(const host::Record& record);
    void EnterStep(const host::Record& record);
    void EndStep(const host::Record& record);
    void BeginCleanUp(const host::Record& record);
    void EndProcedure(const host::Record& record);

    /// Whatever is written now may be counted if it repeats, together with the lines after it. The arguments
    /// tell it from the step itself.
    void BeginLog(const std::string& suffix = {}, const std::string& prefix = {});

    void WriteAnswer(const host::Record& record);
    void WriteCommand(const host::Record& record);
    void WriteEndOfThread(const host::Record& record);
    /// Each call of a command once in a step; the command's own line counts them.
    void WriteFailedCall(const host::Record& record);
    void WriteUnmet(const host::Record& record);
    void WriteEntry(const host::Record& record);
    void WriteMeasurements();
    void WriteLeft(const host::Record& record);
    void WriteVerdict(const host::Record& record);
    /// How many calls have failed, and the values that were used.
    std::string DescribeWork(const host::Activity& activity) const;

    /// False if a thread, or the step itself, repeats a line that was written in this step.
    bool IsNewInStep(const host::Record& record, const std::string& line);
    /// Writes a line about the record, unless it repeats one of the same shape.
    void WriteInStep(const host::Record& record, const std::string& text, const std::string& shape);
    /// A line with the indentation of the current procedure; `inner`: that of what its steps do.
    void Write(const std::string& text, const std::string& shape, const std::string& duration = {},
               bool inner = true);
    /// A line that belongs to no step.
    void WriteOutside(const std::string& line);
    void Print(const std::string& line);

    std::ostream& m_out;
    const Style m_style;
    std::mutex m_access; ///< Protects the stream and everything below, which the live line reads.
    host::ReportText m_text;
    StepLog m_log;
    host::Activities m_activities;
    std::vector<Level> m_levels;
    std::string m_lastUnmet; ///< In this step.
    /// The commands, by thread and id, that have started a thread and have not returned yet.
    std::set<std::string> m_runningOn;
    std::set<std::string> m_linesOfStep; ///< Those that are written once in each step.
    LiveStatus m_status;
    std::optional<LiveLine> m_live; ///< Destroyed first.
};

} // namespace vant::program
