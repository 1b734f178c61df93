#include "vant/TextTable.h"

#include "host/text/Printable.h"

#include <algorithm>

namespace vant::program {

void PrintTable(std::ostream& out, const std::vector<std::vector<std::string>>& rows, std::size_t left) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], host::WidthOf(row[column]));
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::string blanks(widths[column] - host::WidthOf(row[column]), ' ');
            line += (column == 0 ? "" : "  ") + (column < left ? row[column] + blanks : blanks + row[column]);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    }
}

} // namespace vant::program
