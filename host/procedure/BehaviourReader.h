#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/procedure/QuantityReader.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// Reads what the parameters of an engine do over time: their keys "behaviour" and "fails".
class BehaviourReader : private QuantityReader {
public:
    explicit BehaviourReader(Diagnostics& found) : QuantityReader(found) {}

    /// Reads "behaviour" of a parameter whose value and limits have been read, unless it has none.
    void ReadBehaviour(const std::string& id, const toml::table& table, EngineParameter& parameter);
    /// Reads "fails": whether, when, or at which read the reads fail.
    void ReadFails(const toml::table& table, EngineParameter& parameter);
    /// Checks, once all parameters have been read, what follows what.
    void CheckFollowed(const std::map<std::string, EngineParameter>& parameters);

private:
    /// A parameter that names another one as its source.
    struct Reference {
        std::string_view key; ///< Where it is named: "follows" or "of".
        std::string follower;
        Located followed;
    };

    void ReadSource(const std::string& id, const toml::table& table, Behaviour& behaviour,
                    const Value& value);
    void ReadFollows(const std::string& id, const toml::node& node, Behaviour& behaviour);
    void ReadSum(const std::string& id, const toml::node& node, Behaviour& behaviour);
    void ReadThreshold(const std::string& id, const toml::node& node, Behaviour& behaviour,
                       const Value& value);
    void ReadRamp(const toml::node& node, Behaviour& behaviour, const Value& value);
    void ReadChanges(const toml::node& node, Behaviour& behaviour, const Value& value);
    void ReadSequence(const toml::table& table, const toml::node& node, Behaviour& behaviour,
                      const Value& value);
    void ReadDelay(const toml::table& table, Behaviour& behaviour);
    void ReadLoads(const toml::node& node, Behaviour& behaviour);
    void ReadDecimals(const toml::node& node, Behaviour& behaviour, const Value& value);
    void CheckOneSource(const toml::table& table);
    void CheckFits(const toml::table& table, const Value& value);
    /// Reads the required key "of" of a table within a behaviour, the id of a parameter.
    std::string ReadOf(const std::string& id, const toml::table& table, Position owner);
    void CheckReference(const Reference& reference, const std::map<std::string, EngineParameter>& parameters);
    void CheckCircles(const std::map<std::string, EngineParameter>& parameters);

    std::vector<Reference> m_references;
};

} // namespace vant::host
