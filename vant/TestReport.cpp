#include "vant/TestReport.h"

#include "host/text/Duration.h"
#include "host/text/Printable.h"

#include <fmt/format.h>
#include <utility>

namespace vant::program {

using namespace host;

namespace {

std::string CountOfCases(std::size_t count) {
    return fmt::format("{} case{}", count, count == 1 ? "" : "s");
}

/// Such as "  run: failed after 2 s: step 'bad'".
std::string DescribeRun(const Json& result) {
    return fmt::format("  run: {} after {}: {}\n", result["verdict"].get<std::string>(),
                       FormatDuration(result["duration"]), Printable(result["reason"].get<std::string>()));
}

} // namespace

TestReport::TestReport(std::ostream& out, const std::vector<TestCase>& cases, bool live)
    : m_out(out), m_cases(cases), m_outcomes(cases.size()) {
    if (live)
        m_live.emplace(out, m_access, [this] { return Progress(); });
}

void TestReport::Take(std::size_t number, CaseOutcome outcome) {
    const std::lock_guard lock(m_access);
    ++m_counts[outcome.status];
    m_outcomes[number] = std::move(outcome);
    while (m_printed < m_cases.size() && m_outcomes[m_printed].status != CaseStatus::NotRun)
        Print(m_printed++);
    if (m_live)
        m_live->Update();
}

void TestReport::Print(std::size_t number) {
    const TestCase& tested = m_cases[number];
    const CaseOutcome& outcome = m_outcomes[number];
    ++m_countsOfFile[outcome.status];
    if (outcome.status == CaseStatus::Failed || outcome.status == CaseStatus::Error) {
        if (m_live)
            m_live->Erase();
        m_out << Printable(fmt::format("{}:{}:{}: {}: {}", tested.file, tested.position.line,
                                       tested.position.column, NameOf(outcome.status), tested.name))
              << '\n';
        for (const Mismatch& each : outcome.mismatches)
            m_out << fmt::format("  {}: expected {}, but was {}\n", each.what, each.expected, each.came);
        m_out << (outcome.status == CaseStatus::Error ? "  " + Printable(outcome.failure) + '\n'
                                                      : DescribeRun(outcome.result));
    }
    if (number + 1 == m_cases.size() || m_cases[number + 1].file != tested.file)
        PrintEndOfFile(tested.file);
    m_out.flush();
}

void TestReport::PrintEndOfFile(const std::string& file) {
    if (m_live)
        m_live->Erase();
    m_out << Printable(file) << ": " << Describe(m_countsOfFile) << '\n';
    m_countsOfFile.clear();
}

std::vector<CaseOutcome> TestReport::Finish(std::int64_t milliseconds) {
    m_live.reset();
    const std::lock_guard lock(m_access);
    for (; m_printed < m_cases.size(); ++m_printed) {
        if (m_outcomes[m_printed].status == CaseStatus::NotRun)
            ++m_counts[CaseStatus::NotRun];
        Print(m_printed);
    }
    m_out << fmt::format("{}: {} ({})\n", CountOfCases(m_cases.size()), Describe(m_counts),
                         FormatDuration(milliseconds));
    m_out.flush();
    return std::move(m_outcomes);
}

std::string TestReport::Describe(const Counts& counts) {
    std::string text;
    for (const CaseStatus status :
         {CaseStatus::Passed, CaseStatus::Failed, CaseStatus::Error, CaseStatus::NotRun}) {
        if (const auto found = counts.find(status); found != counts.end())
            text += fmt::format("{}{} {}{}", text.empty() ? "" : ", ", found->second, NameOf(status),
                                status == CaseStatus::Error && found->second > 1 ? "s" : "");
    }
    return text;
}

std::string TestReport::Progress() const {
    std::size_t ended = 0;
    for (const auto& [status, count] : m_counts)
        ended += count;
    return fmt::format("{} of {}{}{}", ended, CountOfCases(m_cases.size()), m_counts.empty() ? "" : ": ",
                       Describe(m_counts));
}

} // namespace vant::program
