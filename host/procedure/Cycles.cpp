#include "host/procedure/Cycles.h"

#include <utility>

namespace vant::host {

namespace {

/// Visits everything that can be reached from `start` and has not been visited, and calls `leave` with each
/// node once all that follows it has been left. No recursion: paths may be long.
template <class Leave>
void Walk(const Graph& graph, std::size_t start, std::vector<bool>& visited, Leave leave) {
    if (visited[start])
        return;
    visited[start] = true;
    std::vector<std::pair<std::size_t, std::size_t>> path = {{start, 0}}; // each node and its next edge
    while (!path.empty()) {
        const std::size_t node = path.back().first;
        const std::size_t edge = path.back().second++;
        if (edge == graph[node].size()) {
            leave(node);
            path.pop_back();
        } else if (const std::size_t next = graph[node][edge]; !visited[next]) {
            visited[next] = true;
            path.emplace_back(next, 0);
        }
    }
}

Graph Reversed(const Graph& graph) {
    Graph reversed(graph.size());
    for (std::size_t node = 0; node < graph.size(); ++node) {
        for (const std::size_t next : graph[node])
            reversed[next].push_back(node);
    }
    return reversed;
}

} // namespace

// Kosaraju's algorithm: the nodes in the order in which a walk leaves them, then, from the last one back, all
// that leads to each.
std::vector<std::size_t> StrongComponents(const Graph& graph) {
    std::vector<std::size_t> order;
    std::vector<bool> visited(graph.size());
    for (std::size_t node = 0; node < graph.size(); ++node)
        Walk(graph, node, visited, [&order](std::size_t left) { order.push_back(left); });

    const Graph reversed = Reversed(graph);
    std::vector<std::size_t> components(graph.size());
    visited.assign(graph.size(), false);
    for (auto node = order.rbegin(); node != order.rend(); ++node)
        Walk(reversed, *node, visited, [&](std::size_t left) { components[left] = *node; });
    return components;
}

void MarkReachable(const Graph& graph, std::size_t start, std::vector<bool>& marked) {
    Walk(graph, start, marked, [](std::size_t) {});
}

std::vector<std::size_t> Beginnings(const Graph& graph, const std::vector<bool>& marked) {
    const std::vector<std::size_t> components = StrongComponents(graph);
    std::vector<bool> isLedTo(graph.size()); // by component
    for (std::size_t node = 0; node < graph.size(); ++node) {
        for (const std::size_t next : graph[node]) {
            if (!marked[node] && components[node] != components[next])
                isLedTo[components[next]] = true;
        }
    }
    std::vector<std::size_t> beginnings;
    for (std::size_t node = 0; node < graph.size(); ++node) {
        if (marked[node] || isLedTo[components[node]])
            continue;
        isLedTo[components[node]] = true; // The rest of its cycle.
        beginnings.push_back(node);
    }
    return beginnings;
}

} // namespace vant::host
