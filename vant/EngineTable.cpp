#include "vant/EngineTable.h"

#include "host/text/Printable.h"
#include "vant/TextTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <utility>
#include <variant>

namespace vant::program {

using namespace host;

namespace {

using Cells = std::vector<std::string>;

std::string NumberText(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number);
    return std::string(text.data(), end.ptr);
}

struct CellMaker {
    std::string operator()(std::nullptr_t) const { return {}; }
    std::string operator()(bool truth) const { return truth ? "true" : "false"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return NumberText(number); }
    std::string operator()(const std::string& text) const { return text; }
};

/// The seconds, then every parameter, `failed` for a read that fails, then the faults.
Cells CellsOf(const EngineRow& row, const char* failed) {
    Cells cells = {NumberText(static_cast<double>(row.time) / 1000)};
    for (const std::optional<Value>& value : row.values)
        cells.push_back(value ? std::visit(CellMaker{}, *value) : failed);
    for (const std::size_t count : row.faultCounts)
        cells.push_back(std::to_string(count));
    return cells;
}

Cells IdCells(const EngineDescription& engine) {
    Cells ids = {"seconds"};
    for (const auto& [id, parameter] : engine.parameters)
        ids.push_back(id);
    for (const std::string& id : ChangingFaultArrays(engine))
        ids.push_back("faults." + id);
    return ids;
}

void PrintCsv(std::ostream& out, const Cells& cells) {
    const char* separator = "";
    for (const std::string& cell : cells) {
        out << std::exchange(separator, ",");
        if (cell.find_first_of(",\"\r\n") == std::string::npos) {
            out << cell;
            continue;
        }
        out << '"';
        for (const char each : cell)
            out << (each == '"' ? "\"" : "") << each;
        out << '"';
    }
    out << '\n';
}

} // namespace

EngineTable::EngineTable(const EngineDescription& engine) {
    Cells names = {""};
    Cells units = {""};
    for (const auto& [id, parameter] : engine.parameters) {
        const auto unit = engine.units.find(parameter.unitsKey);
        names.push_back(parameter.name);
        units.push_back(unit == engine.units.end() ? parameter.unitsKey : unit->second);
    }
    const Cells ids = IdCells(engine);
    names.resize(ids.size());
    units.resize(ids.size());
    for (Cells cells : {ids, std::move(names), std::move(units)}) {
        for (std::string& cell : cells)
            cell = Printable(cell);
        if (std::any_of(cells.begin(), cells.end(), [](const std::string& cell) { return !cell.empty(); }))
            m_rows.push_back(std::move(cells));
    }
}

void EngineTable::Add(const EngineRow& row) {
    Cells cells = CellsOf(row, "failed");
    for (std::string& cell : cells)
        cell = Printable(cell);
    m_rows.push_back(std::move(cells));
}

void EngineTable::Print(std::ostream& out) const {
    PrintTable(out, m_rows);
}

CsvWriter::CsvWriter(std::ostream& out, const EngineDescription& engine) : m_out(out) {
    PrintCsv(m_out, IdCells(engine));
}

void CsvWriter::Write(const EngineRow& row) {
    PrintCsv(m_out, CellsOf(row, ""));
}

} // namespace vant::program
