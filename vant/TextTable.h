#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace vant::program {

/// Prints rows, which have the same number of cells, as lines with columns two spaces apart. The first `left`
/// columns are aligned to the left, the others to the right.
void PrintTable(std::ostream& out, const std::vector<std::vector<std::string>>& rows, std::size_t left = 0);

} // namespace vant::program
