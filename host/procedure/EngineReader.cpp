#include "host/procedure/EngineReader.h"

#include "host/procedure/BehaviourReader.h"
#include "host/procedure/FaultReader.h"
#include "host/procedure/QuantityReader.h"
#include "host/record/Value.h"
#include "host/text/Suggestion.h"

#include <array>
#include <cmath>

namespace vant::host {

namespace {

/// By their order in ProtocolStep.
const std::array<std::string, 6> protocolStepNames = {"GetProtocolSource", "GetA", "GetB", "GetC", "GetD",
                                                      "get_Kind"};
constexpr std::int32_t lastProtocolKind = 6;

class EngineReader : private QuantityReader {
public:
    explicit EngineReader(Diagnostics& found)
        : QuantityReader(found), m_behaviours(found), m_faults(found, m_engine.parameters) {}

    EngineDescription Read(const toml::table& table) {
        CheckKeys(table, "an engine",
                  {"connection", "protocol", "protocolFails", "seed", "parameters", "units", "faults"});
        if (const auto connection = OptionalText(table, "connection"))
            m_engine.connection = connection->text;
        if (const toml::node* const protocol = table.get("protocol"))
            ReadProtocol(*protocol);
        if (const auto step = OptionalText(table, "protocolFails"))
            ReadProtocolStep(*step);
        if (const toml::node* const seed = table.get("seed"))
            ReadSeed(*seed);
        ForEach(table, "parameters",
                [this](const toml::key& key, const toml::node& node) { ReadParameter(key, node); });
        m_behaviours.CheckFollowed(m_engine.parameters);
        ForEach(table, "units", [this](const toml::key& key, const toml::node& node) {
            if (const auto text = Text(node, "unit " + Quoted(key.str())))
                m_engine.units.emplace(std::string(key.str()), text->text);
        });
        CheckUnits();
        ForEach(table, "faults", [this](const toml::key& key, const toml::node& node) {
            m_engine.faultArrays[std::string(key.str())] = m_faults.Read(key, node);
        });
        return std::move(m_engine);
    }

private:
    void ReadProtocol(const toml::node& node) {
        const auto kind = node.value_exact<std::int64_t>();
        if (kind && *kind >= 0 && *kind <= lastProtocolKind)
            m_engine.protocol = static_cast<std::int32_t>(*kind);
        else
            m_found.Error(PositionOf(node), "'protocol' must be a whole number from 0 to 6");
    }

    void ReadProtocolStep(const Located& step) {
        const auto found = std::find(protocolStepNames.begin(), protocolStepNames.end(), step.text);
        if (found == protocolStepNames.end())
            m_found.Error(step.position, "there is no protocol step " + Quoted(step.text) +
                                             DidYouMean(step.text, protocolStepNames));
        else
            m_engine.protocolFails = static_cast<ProtocolStep>(found - protocolStepNames.begin());
    }

    void ReadSeed(const toml::node& node) {
        const auto seed = node.value_exact<std::int64_t>();
        if (seed && *seed >= 0)
            m_engine.seed = static_cast<std::uint64_t>(*seed);
        else
            m_found.Error(PositionOf(node), "'seed' must be a whole number from 0");
    }

    void ReadParameter(const toml::key& key, const toml::node& node) {
        const toml::table* const table = AsTable(node, "parameter " + Quoted(key.str()));
        if (!table)
            return;
        CheckKeys(*table, "a parameter",
                  {"name", "value", "text", "units", "readOnly", "fails", "min", "max", "behaviour"});
        const std::string id(key.str());
        EngineParameter& parameter = m_engine.parameters[id];
        parameter.value = std::string();
        if (const auto name = OptionalText(*table, "name"))
            parameter.name = name->text;
        if (const auto text = OptionalText(*table, "text"))
            parameter.text = text->text;
        if (auto units = OptionalText(*table, "units")) {
            parameter.unitsKey = units->text;
            m_unitsKeys.push_back(std::move(*units));
        }
        parameter.readOnly = Truth(*table, "readOnly").value_or(false);
        m_behaviours.ReadFails(*table, parameter);
        const toml::node* const value = table->get("value");
        if (!value) {
            m_found.Error(PositionOf(key), "'value' is missing");
            return;
        }
        auto read = Scalar(*value, "'value'");
        if (!read)
            return;
        parameter.value = std::move(*read);
        parameter.min = OptionalLimit(*table, "min", parameter.value);
        parameter.max = OptionalLimit(*table, "max", parameter.value);
        CheckLimits(parameter, *table);
        m_behaviours.ReadBehaviour(id, *table, parameter);
    }

    void CheckUnits() {
        for (const Located& key : m_unitsKeys) {
            if (!m_engine.units.contains(key.text))
                m_found.Warning(key.position, "'units' of the engine has no " + Quoted(key.text) +
                                                  m_found.Suggest(key.text, m_engine.units));
        }
    }

    std::optional<double> OptionalLimit(const toml::table& table, std::string_view key, const Value& value) {
        const toml::node* const node = table.get(key);
        if (!node)
            return std::nullopt;
        if (!node->is_number()) {
            m_found.Error(PositionOf(*node), Quoted(key) + " must be a number, not " + KindOf(*node));
            return std::nullopt;
        }
        if (!std::isfinite(node->value<double>().value_or(0))) {
            m_found.Error(PositionOf(*node),
                          Quoted(key) + " must be a finite number; leave it out if there is no limit");
            return std::nullopt;
        }
        if (!NumberIn(value)) {
            m_found.Error(PositionOf(*node), "only a parameter whose value is a number has limits");
            return std::nullopt;
        }
        return node->value<double>();
    }

    void CheckLimits(const EngineParameter& parameter, const toml::table& table) {
        if (parameter.min && parameter.max && *parameter.min > *parameter.max)
            m_found.Error(PositionOf(*table.get("max")), "'max' is less than 'min'");
        else if ((parameter.min && *NumberIn(parameter.value) < *parameter.min) ||
                 (parameter.max && *NumberIn(parameter.value) > *parameter.max))
            m_found.Error(PositionOf(*table.get("value")), "'value' lies outside 'min' and 'max'");
    }

    EngineDescription m_engine;
    std::vector<Located> m_unitsKeys; ///< Of the parameters.
    BehaviourReader m_behaviours;
    FaultReader m_faults;
};

} // namespace

EngineDescription ReadEngine(std::string_view toml, Diagnostics& found) {
    const std::optional<toml::table> root = ParseToml(toml, found);
    return root ? ReadEngine(*root, found) : EngineDescription();
}

EngineDescription ReadEngine(const toml::table& table, Diagnostics& found) {
    return EngineReader(found).Read(table);
}

} // namespace vant::host
