#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vant::test {

/// The text of a file of the project, by its path from the project's root. Throws std::runtime_error.
std::string ReadProjectFile(const std::string& path);

/// The cells of a table's row, without the blanks around them.
using TableRow = std::vector<std::string>;

/// A heading and what stands below it, up to the next heading of any level.
struct Section {
    int level = 0; ///< 0 before the first heading.
    std::string title;
    std::vector<std::string> lines;

    /// The rows of the section's table whose first column has that heading.
    std::vector<TableRow> Table(std::string_view firstHeading) const;
    /// What stands between "```LANGUAGE" and "```", one text for each such block.
    std::vector<std::string> Code(std::string_view language) const;
};

/// All sections of a document, in order.
std::vector<Section> ReadSections(const std::string& path);

/// What stands between the backticks around a cell; the cell itself where there are none.
std::string Unquoted(const std::string& cell);

} // namespace vant::test
