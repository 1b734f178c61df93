#include "tests/docs/Markdown.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace vant::test {

namespace {

std::string Trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

/// Empty for a line that is no table row.
TableRow Cells(const std::string& line) {
    TableRow cells;
    if (!line.starts_with('|'))
        return cells;
    std::istringstream rest(line.substr(1));
    for (std::string cell; std::getline(rest, cell, '|');)
        cells.push_back(Trimmed(cell));
    return cells;
}

bool IsFence(const std::string& line) {
    return line.starts_with("```");
}

} // namespace

std::string ReadProjectFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<TableRow> Section::Table(std::string_view firstHeading) const {
    std::vector<TableRow> rows;
    bool inside = false;
    for (const std::string& line : lines) {
        const TableRow cells = Cells(line);
        if (inside && cells.empty())
            break;
        if (inside)
            rows.push_back(cells);
        else
            inside = !cells.empty() && cells.front() == firstHeading;
    }
    if (!rows.empty())
        rows.erase(rows.begin()); // the dashes
    return rows;
}

std::vector<std::string> Section::Code(std::string_view language) const {
    const std::string opening = "```" + std::string(language);
    std::vector<std::string> blocks;
    bool inside = false;
    for (const std::string& line : lines) {
        if (inside && IsFence(line)) {
            inside = false;
        } else if (inside) {
            blocks.back() += line + '\n';
        } else if (line == opening) {
            inside = true;
            blocks.emplace_back();
        }
    }
    return blocks;
}

std::vector<Section> ReadSections(const std::string& path) {
    std::vector<Section> sections(1);
    std::istringstream text(ReadProjectFile(path));
    bool inCode = false;
    for (std::string line; std::getline(text, line);) {
        if (IsFence(line))
            inCode = !inCode;
        const std::size_t level = inCode ? 0 : line.find_first_not_of('#');
        if (level != 0 && level != std::string::npos && line[level] == ' ')
            sections.push_back({static_cast<int>(level), line.substr(level + 1), {}});
        else
            sections.back().lines.push_back(line);
    }
    return sections;
}

std::string Unquoted(const std::string& cell) {
    const bool quoted = cell.size() >= 2 && cell.front() == '`' && cell.back() == '`';
    return quoted ? cell.substr(1, cell.size() - 2) : cell;
}

} // namespace vant::test
