#pragma once

#include <cstddef>
#include <vector>

namespace vant::host {

/// A graph: for each node, the nodes that it leads to.
using Graph = std::vector<std::vector<std::size_t>>;

/// The strongly connected component of each node: two nodes have the same number if each can be reached from
/// the other. An edge lies on a cycle exactly if both its ends have the same number. Takes time in proportion
/// to nodes and edges.
std::vector<std::size_t> StrongComponents(const Graph& graph);

} // namespace vant::host
