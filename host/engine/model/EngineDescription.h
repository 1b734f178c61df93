#pragma once

#include "host/engine/model/Behaviour.h"
#include "host/engine/model/FaultDescription.h"
#include "host/engine/model/Recording.h"
#include "host/record/Value.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// One parameter of a simulated engine. Texts are UTF-8.
struct EngineParameter {
    std::string name;
    Value value;                     ///< Never null; the parameter keeps its type.
    std::optional<std::string> text; ///< Replaces the value's own text until the first write.
    std::string unitsKey;
    bool readOnly = false;
    bool fails = false; ///< Reads of text and value fail.
    std::optional<Outage> outage;
    std::optional<std::int64_t> failingRead; ///< The number of the read that fails, from 1.
    std::optional<double> min;
    std::optional<double> max;
    std::optional<Behaviour> behaviour; ///< Without one, only writes change the value.
};

/// The records of each fault array, in their order.
using FaultArrays = std::map<std::string, std::vector<FaultRecordDescription>>;

/// The steps from a control module's identifier to its kind of protocol, in order.
enum class ProtocolStep { GetProtocolSource, GetA, GetB, GetC, GetD, GetKind };

/// A simulated engine as it is when a run begins; docs/engines.md says what each entry means.
struct EngineDescription {
    std::string connection = "1"; ///< Begins with the decimal number of the control module.
    std::int32_t protocol = 0;    ///< The kind that the chain of protocol sources returns.
    std::optional<ProtocolStep> protocolFails;
    std::uint64_t seed = 0; ///< Of all noise.
    std::map<std::string, EngineParameter> parameters;
    std::map<std::string, std::string> units; ///< Units key to text.
    FaultArrays faultArrays;
    std::shared_ptr<const EngineRecording> recording{}; ///< Answers in place of the simulation; may be null.
};

} // namespace vant::host
