#pragma once

#include "host/engine/model/FaultDescription.h"
#include "host/engine/model/LiveParameter.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// One record of a fault array during a run. Steps never go back.
class LiveFault {
public:
    /// The parameter that the condition watches must be in `all`, and must not move afterwards.
    LiveFault(const FaultRecordDescription& description, const std::map<std::string, LiveParameter>& all);

    /// Whether the record is present at a step, at or after the last one that was observed.
    bool IsPresent(std::int64_t step) const noexcept;

    /// Looks at the condition at a step, once all parameters have taken their inputs.
    void Observe(std::int64_t step, std::uint64_t writes);
    /// Clears the record if it is one that this write clears. The record is to be observed afterwards.
    void TakeWrite(const std::string& parameter, const Value& value, std::int64_t step);

    /// The times at which the record may come or go by itself.
    void AddSchedule(std::vector<std::int64_t>& times) const;
    /// Whether what the condition watches may move after a step.
    bool InputMoves(std::int64_t step) const { return m_watched && m_watched->Moves(step); }

private:
    bool IsInItsTime(std::int64_t step) const noexcept;
    /// Whether nothing speaks against the record, now and if that lasts.
    bool Holds(std::int64_t step, std::uint64_t writes) const;

    const FaultRecordDescription m_description;
    const LiveParameter* m_watched = nullptr; ///< Null without a condition.
    std::optional<std::int64_t> m_since;      ///< The step since which it has held.
    bool m_isSet = false;                     ///< Whether it stays while the condition does not hold.
    bool m_isOver = false;                    ///< Whether it has been cleared and cannot set itself again.
};

} // namespace vant::host
