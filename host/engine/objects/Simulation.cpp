#include "host/engine/objects/Simulation.h"

#include "host/engine/objects/EngineAccess.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace vant::host {

namespace {

HRESULT Write(Engine& engine, const TimedWrite& write) {
    return WriteValue(engine, write.id, CComVariant(CComBSTR(ToWide(write.value))).Get());
}

std::optional<Value> Read(const Engine& engine, const std::string& id) {
    const Expected<Reading> read = engine.Read(id);
    const Reading* const reading = std::get_if<Reading>(&read);
    return reading ? std::optional(reading->value) : std::nullopt;
}

} // namespace

HRESULT TryWrite(const EngineDescription& description, const TimedWrite& write) {
    const auto found = description.parameters.find(write.id);
    if (found == description.parameters.end())
        return CodeOf(EngineError::NotFound);
    // On its own, because what it follows does not matter.
    EngineParameter parameter = found->second;
    const bool readOnly = parameter.behaviour && !parameter.behaviour->FollowsWrites();
    parameter.readOnly = parameter.readOnly || readOnly;
    parameter.behaviour.reset();
    Engine engine({{write.id, std::move(parameter)}}, 0, [] { return 0; });
    return Write(engine, write);
}

std::vector<std::string> ChangingFaultArrays(const EngineDescription& description) {
    std::vector<std::string> ids;
    for (const auto& [id, records] : description.faultArrays) {
        if (std::any_of(records.begin(), records.end(), [](const auto& each) { return each.Changes(); }))
            ids.push_back(id);
    }
    return ids;
}

void SimulateEngine(const EngineDescription& description, std::int64_t duration, std::int64_t every,
                    const std::vector<TimedWrite>& writes, const std::function<bool(EngineRow)>& take) {
    std::int64_t now = 0;
    Engine engine(description, [&now] { return now; });
    const std::vector<std::string> faultArrays = ChangingFaultArrays(description);
    auto nextWrite = writes.begin();
    for (std::int64_t time = 0; time <= duration; time += every) {
        for (; nextWrite != writes.end() && nextWrite->time <= time; ++nextWrite) {
            now = nextWrite->time;
            Write(engine, *nextWrite);
        }
        now = time;
        EngineRow row{time, {}, {}};
        row.values.reserve(description.parameters.size());
        for (const auto& [id, parameter] : description.parameters)
            row.values.push_back(Read(engine, id));
        for (const std::string& id : faultArrays)
            row.faultCounts.push_back(engine.FaultRecords(id).size());
        if (!take(std::move(row)))
            return;
    }
}

} // namespace vant::host
