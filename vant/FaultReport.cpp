#include "vant/FaultReport.h"

#include "host/text/Duration.h"
#include "host/text/Printable.h"
#include "vant/TextTable.h"

#include <fmt/format.h>
#include <string>

namespace vant::program {

using namespace host;

namespace {

void PrintRows(std::ostream& out, const std::vector<FaultRow>& rows) {
    std::vector<std::vector<std::string>> cells = {
        {"fault", "runs", "passed", "failed", "error", "excused", "survived"}};
    for (const FaultRow& each : rows) {
        std::vector<std::string>& row = cells.emplace_back(std::vector{each.what});
        for (const std::size_t count :
             {each.runs, each.passed, each.failed, each.error, each.excused, each.survived})
            row.push_back(std::to_string(count));
    }
    PrintTable(out, cells, 1);
}

} // namespace

void PrintFaults(std::ostream& out, const std::vector<TestCase>& cases, const FaultResults& results,
                 std::int64_t milliseconds) {
    if (!results.rows.empty())
        PrintRows(out, results.rows);
    std::size_t survived = 0;
    for (const Survivor& each : results.survivors) {
        const TestCase& tested = cases[each.caseNumber];
        survived += each.runs;
        out << fmt::format("{}: survived: {} ({} run{})\n", Printable(each.place), Printable(each.problem),
                           each.runs, each.runs == 1 ? "" : "s")
            << Printable(fmt::format("  first: {}:{}:{}: {}: {}: {}", tested.file, tested.position.line,
                                     tested.position.column, tested.name, each.moment, each.what.front()))
            << '\n';
        for (std::size_t i = 1; i < each.what.size(); ++i)
            out << "  also: " << each.what[i] << '\n';
    }
    for (const std::string& each : results.useless)
        out << Printable(each) << ": no run needs this entry of 'mayPass'\n";
    out << fmt::format("{} run{} with faults: {} survived", results.runs, results.runs == 1 ? "" : "s",
                       survived);
    if (results.notMet != 0)
        out << fmt::format(", {} met no fault", results.notMet);
    if (results.notRun != 0)
        out << fmt::format(", {} not run", results.notRun);
    out << fmt::format(" ({})\n", FormatDuration(milliseconds));
}

} // namespace vant::program
