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

/// Marks `start` and all that can be reached from it, except beyond what is marked already.
void MarkReachable(const Graph& graph, std::size_t start, std::vector<bool>& marked);

/// From which of the nodes that are not marked all others of them can be reached: those that none of them
/// leads to, and one of each cycle that none outside it leads to.
std::vector<std::size_t> Beginnings(const Graph& graph, const std::vector<bool>& marked);

} // namespace vant::host
