#pragma once

#include "host/engine/model/EngineError.h"
#include "host/engine/model/Reading.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// What was returned at certain times, in milliseconds since the engine began, in their order.
template <class Item>
class Timeline {
public:
    void Add(std::int64_t time, Item item) { m_items.emplace_back(time, std::move(item)); }

    /// What was returned at `now`: of several items of one time each call returns the next one. Before the
    /// first time it is the first item; null if there are none.
    const Item* Next(std::int64_t now) {
        if (m_items.empty())
            return nullptr;
        const auto after =
            std::upper_bound(m_items.begin(), m_items.end(), now,
                             [](std::int64_t time, const auto& item) { return time < item.first; });
        if (after == m_items.begin())
            return &m_items.front().second;
        const auto first =
            std::lower_bound(m_items.begin(), after, std::prev(after)->first,
                             [](const auto& item, std::int64_t time) { return item.first < time; });
        const auto begin = static_cast<std::size_t>(first - m_items.begin());
        const auto last = static_cast<std::size_t>(after - m_items.begin()) - 1;
        m_next = std::clamp(m_next, begin, last);
        return &m_items[std::exchange(m_next, std::min(m_next + 1, last))].second;
    }

private:
    std::vector<std::pair<std::int64_t, Item>> m_items;
    std::size_t m_next = 0;
};

/// How a condition set was evaluated.
struct RecordedEvaluation {
    std::int32_t code = 0; ///< The result.
    bool allMet = false;
    std::string failed{}; ///< The description of the condition that did not hold; empty if there was none.
    std::optional<Value> value{}; ///< What it compared.
    std::string limits{};
};

/// What an engine returned in an earlier run, in place of a simulation.
struct EngineRecording {
    std::map<std::string, Timeline<Expected<Reading>>> readings{}; ///< By parameter.
    std::map<std::string, Timeline<std::optional<EngineError>>>
        writes{}; ///< By parameter; nothing: it succeeded.
    std::map<std::string, Timeline<std::vector<std::size_t>>>
        faultRecords{};                                                ///< By fault array: places of records.
    std::map<std::string, Timeline<RecordedEvaluation>> evaluations{}; ///< By condition set.
};

} // namespace vant::host
