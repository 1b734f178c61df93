#pragma once

#include "host/engine/model/EngineDescription.h"
#include "platform/system.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// A write of a text at a time, in milliseconds since the engine began.
struct TimedWrite {
    std::string id;
    std::string value;
    std::int64_t time = 0;
};

/// The result of a write, S_OK if the engine accepts it. It does not depend on anything that happens before.
HRESULT TryWrite(const EngineDescription& description, const TimedWrite& write);

/// An engine at a time.
struct EngineRow {
    std::int64_t time = 0; ///< Milliseconds since the engine began.
    /// Of all parameters, in the order of their ids. A parameter whose read fails has none.
    std::vector<std::optional<Value>> values;
    std::vector<std::size_t> faultCounts; ///< Of the arrays that ChangingFaultArrays names.
};

/// The ids of the fault arrays with records that may come or go, in order.
std::vector<std::string> ChangingFaultArrays(const EngineDescription& description);

/// Runs an engine without waiting: calls `take` with a row at time 0 and then each `every` milliseconds, up
/// to `duration`, until `take` returns false. `writes` are in order of time; refused writes have no effect.
void SimulateEngine(const EngineDescription& description, std::int64_t duration, std::int64_t every,
                    const std::vector<TimedWrite>& writes, const std::function<bool(EngineRow)>& take);

} // namespace vant::host
