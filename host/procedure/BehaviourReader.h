#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/procedure/TableReader.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// Reads what the parameters of an engine do over time: their keys "behaviour" and "fails".
class BehaviourReader : private TableReader {
public:
    explicit BehaviourReader(Diagnostics& found) : TableReader(found) {}

    /// Reads "behaviour" of a parameter whose value and limits have been read, unless it has none.
    void ReadBehaviour(const std::string& id, const toml::table& table, EngineParameter& parameter);
    /// Reads "fails": whether, when, or at which read the reads fail.
    void ReadFails(const toml::table& table, EngineParameter& parameter);
    /// Checks, once all parameters have been read, what follows what.
    void CheckFollowed(const std::map<std::string, EngineParameter>& parameters);

private:
    /// A parameter that names another one as its source.
    struct Reference {
        std::string follower;
        Located followed;
    };

    void ReadSource(const std::string& id, const toml::table& table, Behaviour& behaviour,
                    const Value& value);
    void ReadFollows(const std::string& id, const toml::node& node, Behaviour& behaviour);
    void ReadRamp(const toml::node& node, Behaviour& behaviour, const Value& value);
    void ReadChanges(const toml::node& node, Behaviour& behaviour, const Value& value);
    void ReadSequence(const toml::table& table, const toml::node& node, Behaviour& behaviour,
                      const Value& value);
    void ReadLoads(const toml::node& node, Behaviour& behaviour);
    void ReadDecimals(const toml::node& node, Behaviour& behaviour, const Value& value);
    void CheckOneSource(const toml::table& table);
    void CheckFits(const toml::table& table, const Value& value);
    void CheckReference(const Reference& reference, const std::map<std::string, EngineParameter>& parameters);
    void CheckCircles(const std::map<std::string, EngineParameter>& parameters);

    /// A value of the same kind as the parameter's. All numbers are of one kind.
    std::optional<Value> SameKind(const toml::node& node, const std::string& what, const Value& value);
    std::optional<double> Number(const toml::table& table, std::string_view key);
    /// The number at `key`; 0 if the key is missing or, with a mistake, if its value is not above 0.
    double AboveZero(const toml::table& table, std::string_view key);
    /// Seconds from the engine's beginning, in milliseconds.
    std::optional<std::int64_t> Time(const toml::table& table, std::string_view key);
    std::optional<std::int64_t> RequiredTime(const toml::table& table, std::string_view key, Position owner);
    std::optional<double> RequiredNumber(const toml::table& table, std::string_view key, Position owner);

    std::vector<Reference> m_references;
};

} // namespace vant::host
