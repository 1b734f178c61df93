#pragma once

#include "host/suite/CaseOutcome.h"
#include "host/suite/TestCase.h"
#include "vant/LiveLine.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace vant::program {

/// Prints what comes of test cases: as soon as all cases before one have ended, and therefore in their order.
/// Cases that have passed are counted, file by file. Any thread may call.
class TestReport {
public:
    /// `live`: the last line of the terminal shows how far the tests have come. Cases and stream must outlive
    /// the report.
    TestReport(std::ostream& out, const std::vector<host::TestCase>& cases, bool live);

    void Take(std::size_t number, host::CaseOutcome outcome);

    /// Ends the report; `milliseconds` of real time have passed. Returns all outcomes.
    std::vector<host::CaseOutcome> Finish(std::int64_t milliseconds);

private:
    using Counts = std::map<host::CaseStatus, std::size_t>;

    void Print(std::size_t number);
    void PrintEndOfFile(const std::string& file);
    void PrintSummary(std::int64_t milliseconds);
    static std::string Describe(const Counts& counts);
    std::string Progress() const;

    std::ostream& m_out;
    const std::vector<host::TestCase>& m_cases;
    std::mutex m_access; ///< Protects what follows, and the stream.
    std::vector<host::CaseOutcome> m_outcomes;
    std::size_t m_printed = 0; ///< So many cases, from the first one on.
    Counts m_counts;           ///< Of all cases that have ended.
    Counts m_countsOfFile;     ///< Of the cases that are printed, of the current file.
    std::optional<LiveLine> m_live;
};

} // namespace vant::program
