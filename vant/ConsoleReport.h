#pragma once

#include "host/record/Journal.h"

#include <ostream>
#include <set>
#include <string>

namespace vant::program {

/// Writes what happens in a run as plain text, line by line, while it happens. A line that the threads of
/// persistent commands repeat is written once in each step.
class ConsoleReport {
public:
    /// `coloured`: whether the verdict is coloured for a terminal. The stream must outlive the report.
    ConsoleReport(std::ostream& out, bool coloured) : m_out(out), m_coloured(coloured) {}
    void operator()(const host::Record& record);

private:
    void WriteEvent(const host::Record& record);
    /// The line about a call of a command; empty if the call is not worth one.
    std::string LineOfCall(const host::Record& record);
    std::string LineOfCommand(const host::Record& record);
    /// A line within a step.
    void Write(const host::Record& record, const std::string& line);
    void WriteEntry(const host::Record& record);
    void WriteVerdict(const host::Record& record);

    std::ostream& m_out;
    const bool m_coloured;
    bool m_hasEntries = false;
    /// The commands, by thread and id, that have started a thread and have not returned yet.
    std::set<std::string> m_runningOn;
    std::set<std::string> m_linesOfThreads; ///< Written in this step.
};

} // namespace vant::program
