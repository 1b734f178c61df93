#pragma once

#include "host/engine/objects/Simulation.h"

#include <ostream>
#include <string>
#include <vector>

namespace vant::program {

/// Rows of an engine's parameters as a table for people: ids, names and units, then the rows, each column as
/// wide as it must be.
class EngineTable {
public:
    explicit EngineTable(const host::EngineDescription& engine);
    void Add(const host::EngineRow& row);
    void Print(std::ostream& out) const;

private:
    std::vector<std::vector<std::string>> m_rows;
};

/// Writes rows of an engine's parameters as comma-separated values, under a line with the ids.
class CsvWriter {
public:
    /// The stream must outlive the writer.
    CsvWriter(std::ostream& out, const host::EngineDescription& engine);
    void Write(const host::EngineRow& row);

private:
    std::ostream& m_out;
};

} // namespace vant::program
