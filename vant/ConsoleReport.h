#pragma once

#include "host/record/Journal.h"

#include <ostream>

namespace vant {

/// Writes what happens in a run as plain text, line by line, while it happens.
class ConsoleReport {
public:
    /// `coloured`: whether the verdict is coloured for a terminal. The stream must outlive the report.
    ConsoleReport(std::ostream& out, bool coloured) : m_out(out), m_coloured(coloured) {}
    void operator()(const Record& record);

private:
    /// What a command shows to the technician, where the call is one that does.
    void WriteShown(const Record& record);
    void WriteCommand(const Record& record);
    void WriteEntry(const Record& record);
    void WriteVerdict(const Record& record);

    std::ostream& m_out;
    const bool m_coloured;
    bool m_hasEntries = false;
};

} // namespace vant
