#include "vant/CoverageReport.h"

#include "host/text/Printable.h"
#include "vant/TextTable.h"

#include <fmt/format.h>
#include <string>

namespace vant::program {

using namespace host;

namespace {

std::string Describe(const CoverageCount& count) {
    return count.of == 0 ? "-" : fmt::format("{}/{} {}%", count.reached, count.of, count.Percent());
}

std::vector<std::string> RowOf(const CoveredProcedure& procedure) {
    std::vector<std::string> row = {Printable(procedure.file)};
    for (const CoverageCount& each : procedure.columns)
        row.push_back(Describe(each));
    row.push_back(Describe(procedure.all));
    return row;
}

/// The columns of all procedures together.
CoveredProcedure SumOf(const std::vector<CoveredProcedure>& procedures) {
    CoveredProcedure sum{.file = "all", .all = TotalOf(procedures)};
    for (const CoveredProcedure& each : procedures) {
        for (std::size_t i = 0; i < sum.columns.size(); ++i)
            sum.columns[i] += each.columns[i];
    }
    return sum;
}

} // namespace

void PrintCoverage(std::ostream& out, const std::vector<CoveredProcedure>& procedures) {
    std::vector<std::string> heading = {"coverage"};
    heading.insert(heading.end(), coverageColumns.begin(), coverageColumns.end());
    heading.emplace_back("all");
    std::vector<std::vector<std::string>> rows = {std::move(heading)};
    for (const CoveredProcedure& each : procedures)
        rows.push_back(RowOf(each));
    if (procedures.size() > 1)
        rows.push_back(RowOf(SumOf(procedures)));
    PrintTable(out, rows, 1);
    for (const CoveredProcedure& procedure : procedures) {
        for (const CoveragePoint& each : procedure.notReached)
            out << Printable(PlaceOf(procedure.file, each.position)) << ": not reached: " << each.what
                << '\n';
    }
}

} // namespace vant::program
