#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vant::host {

/// For each of several choices, the number of the option that is taken.
using Combination = std::vector<std::size_t>;

/// Every combination of one option of each choice, the last choice changing fastest. `options` has the number
/// of options of each choice, none of them 0.
std::vector<Combination> AllCombinations(const std::vector<std::size_t>& options);

/// Few combinations in which every two options of different choices occur together at least once; the same
/// ones every time. With one or two choices, all of them.
std::vector<Combination> PairCombinations(const std::vector<std::size_t>& options);

/// How many combinations there are in all; `most` if there are more.
std::size_t CountCombinations(const std::vector<std::size_t>& options, std::size_t most);

} // namespace vant::host
