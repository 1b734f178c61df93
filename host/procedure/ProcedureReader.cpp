#include "host/procedure/ProcedureReader.h"

#include "host/procedure/ConditionReader.h"
#include "host/procedure/EngineReader.h"
#include "host/procedure/MeasurementReader.h"
#include "host/procedure/ProcedureNames.h"
#include "host/procedure/StepReader.h"
#include "host/procedure/TableReader.h"

#include <map>
#include <set>
#include <string>
#include <utility>

namespace vant::host {

namespace {

/// Goes through the TOML tables and builds the procedure, noting each mistake and going on.
class ProcedureReader : private TableReader {
public:
    explicit ProcedureReader(Diagnostics& found) : TableReader(found) {}

    Procedure Read(const toml::table& root, std::span<const toml::table> shared) {
        CheckKeys(root, "a procedure",
                  {"name", "description", "revision", "author", "maxTime", "maxSteps", "start", "on",
                   "finally", "finallyTime", "include", "data", "conditions", "components", "measurements",
                   "engine", "commands", "steps"});
        if (HasOrMeans(root, "name") || HasOrMeans(root, "start") || HasOrMeans(root, "steps"))
            ReadHead(root);
        else
            m_found.Error(
                {},
                "'name', 'start' and 'steps' are missing: this is not a procedure; a file that procedures "
                "include is checked with them");
        for (const toml::table& each : shared) {
            if (const auto steps = each.find("steps"); steps != each.end())
                m_found.Error(PositionOf(steps->first),
                              "an included file has no steps: to run a procedure, name it "
                              "in 'procedure' of a step");
            else
                CheckKeys(each, "an included file",
                          {"data", "conditions", "components", "measurements", "commands"});
            ReadShared(each);
        }
        ReadShared(root);
        if (const toml::node* const engine = root.get("engine"))
            ReadEngineKey(*engine);
        ForEach(root, "steps", [this](const toml::key& key, const toml::node& node) {
            m_procedure.steps[std::string(key.str())] = ReadStep(key, node, m_found);
        });
        return std::move(m_procedure);
    }

    std::vector<Located> ReadIncludes(const toml::table& root) {
        return Names(root, "include", "a file name");
    }

private:
    void ReadHead(const toml::table& root) {
        if (auto name = RequiredName(root, "name", {1, 1}))
            m_procedure.name = std::move(name->text);
        if (auto start = RequiredName(root, "start", {1, 1}))
            m_procedure.start = std::move(*start);
        if (!HasOrMeans(root, "steps"))
            m_found.Error({1, 1}, "'steps' is missing: a procedure needs a step that ends it");
        const auto read = [&](const char* key, std::string& text) {
            if (auto located = OptionalText(root, key))
                text = std::move(located->text);
        };
        read("description", m_procedure.description);
        read("revision", m_procedure.revision);
        read("author", m_procedure.author);
        m_procedure.maxTime = OptionalLimit(root, "maxTime", defaultMaxTime);
        m_procedure.maxSteps = OptionalCount(root, "maxSteps", 1).value_or(defaultMaxSteps);
        ForEach(root, "on", [&](const toml::key& id, const toml::node& target) {
            if (auto text = Text(target, "transition " + Quoted(id.str())))
                m_procedure.on.emplace(std::string(id.str()), std::move(*text));
        });
        m_procedure.finally = Names(root, "finally", "a command id");
        m_procedure.finallyTime = OptionalLimit(root, "finallyTime", defaultFinallyTime);
        if (root.contains("finallyTime") && !root.contains("finally"))
            m_found.Error(PositionOf(root.find("finallyTime")->first), "'finallyTime' needs 'finally'");
    }

    std::int64_t OptionalLimit(const toml::table& root, std::string_view key, std::int64_t standard) {
        const auto limit = OptionalDuration(root, key);
        if (limit == 0)
            m_found.Error(PositionOf(*root.get(key)), Quoted(key) + " must be above 0");
        return limit.value_or(standard);
    }

    /// What procedures can share.
    void ReadShared(const toml::table& table) {
        ForEach(table, "data", [this](const toml::key& key, const toml::node& node) { ReadData(key, node); });
        ForEach(table, "conditions",
                [this](const toml::key& key, const toml::node& node) { ReadConditions(key, node); });
        ForEach(table, "commands",
                [this](const toml::key& key, const toml::node& node) { ReadCommand(key, node); });
        ForEach(table, "components",
                [this](const toml::key& key, const toml::node& node) { ReadComponent(key, node); });
        ForEach(table, "measurements", [this](const toml::key& key, const toml::node& node) {
            if (Measurement* const measurement = Add(m_procedure.measurements, "measurement", key))
                *measurement = ReadMeasurement(key, node, m_found);
        });
    }

    /// The new entry of that name; null, and a mistake, if there is one already, from another file.
    template <class Entry>
    Entry* Add(std::map<std::string, Entry>& entries, const std::string& what, const toml::key& key) {
        const auto [entry, isNew] = entries.try_emplace(std::string(key.str()));
        if (!isNew)
            m_found.Error(PositionOf(key),
                          what + " " + Quoted(key.str()) + " exists already, in an included file");
        return isNew ? &entry->second : nullptr;
    }

    void ReadData(const toml::key& key, const toml::node& node) {
        Value* const value = Add(m_procedure.data, "data entry", key);
        if (!value)
            return;
        m_procedure.dataPositions[std::string(key.str())] = PositionOf(key);
        if (auto read = Scalar(node, "data entry " + Quoted(key.str())))
            *value = std::move(*read);
    }

    void ReadConditions(const toml::key& key, const toml::node& node) {
        const std::string name(key.str());
        if (m_procedure.data.contains(name))
            m_found.Error(PositionOf(key), "a condition set is an entry of the data store, and " +
                                               Quoted(name) + " is one already");
        if (Conditions* const conditions = Add(m_procedure.conditions, "condition set", key))
            *conditions = ReadConditionSet(key, node, m_found);
    }

    void ReadCommand(const toml::key& key, const toml::node& node) {
        Command* const command = Add(m_procedure.commands, "command", key);
        if (!command)
            return;
        command->position = PositionOf(key);
        const toml::table* const table = AsTable(node, "command " + Quoted(key.str()));
        if (!table)
            return;
        CheckKeys(*table, "a command", {"class", "description", "properties"});
        const toml::node* const properties = table->get("properties");
        command->hasAllProperties = properties ? properties->is_table() : !HasOrMeans(*table, "properties");
        if (auto className = RequiredName(*table, "class", command->position))
            command->className = std::move(*className);
        if (auto description = OptionalText(*table, "description"))
            command->description = std::move(description->text);
        ForEach(*table, "properties", [&](const toml::key& name, const toml::node& value) {
            if (auto text = Text(value, "property " + Quoted(name.str())))
                command->properties.push_back(
                    {{std::string(name.str()), PositionOf(name)}, std::move(*text)});
            else
                command->misread.emplace_back(name.str());
        });
    }

    void ReadComponent(const toml::key& key, const toml::node& node) {
        std::set<std::string>* const properties = Add(m_procedure.components, "component", key);
        m_procedure.componentPositions.emplace(key.str(), PositionOf(key));
        const toml::table* const table =
            properties ? AsTable(node, "component " + Quoted(key.str())) : nullptr;
        if (!table)
            return;
        CheckKeys(*table, "a component", {"properties"});
        const toml::node* const names = table->get("properties");
        if (!names)
            return;
        const toml::array* const list = names->as_array();
        if (!list || list->empty()) {
            m_found.Error(PositionOf(*names), "'properties' must be a list of property names" +
                                                  (list ? std::string(", not an empty one; leave it out if "
                                                                      "the component accepts every property")
                                                        : std::string(", not ") + KindOf(*names)));
            return;
        }
        for (const toml::node& each : *list) {
            if (const auto name = Text(each, "a property name"))
                properties->insert(name->text);
        }
    }

    /// The engine itself, or the name of its file.
    void ReadEngineKey(const toml::node& node) {
        if (const toml::table* const table = node.as_table()) {
            m_procedure.engine = ReadEngine(*table, m_found);
            if (const toml::table* const parameters = table->get_as<toml::table>("parameters")) {
                for (const auto& [key, parameter] : *parameters)
                    m_procedure.parameterPositions.emplace(key.str(), PositionOf(key));
            }
        } else if (const auto file = node.value_exact<std::string>()) {
            m_procedure.engineFile = Located{*file, PositionOf(node)};
        } else {
            m_found.Error(PositionOf(node),
                          std::string("'engine' must be a table or the name of a file, not ") + KindOf(node));
        }
    }

    Procedure m_procedure;
};

} // namespace

Procedure ReadProcedure(const toml::table& root, std::span<const toml::table> shared, Diagnostics& found) {
    if (root.empty()) {
        found.Error({}, "the file is empty: a procedure has at least 'name', 'start' and 'steps'");
        return {};
    }
    Procedure procedure = ProcedureReader(found).Read(root, shared);
    CheckNames(procedure, found);
    return procedure;
}

std::vector<Located> ReadIncludes(const toml::table& root, Diagnostics& found) {
    return ProcedureReader(found).ReadIncludes(root);
}

Procedure ReadProcedure(std::string_view toml, Diagnostics& found) {
    const std::optional<toml::table> root = ParseToml(toml, found);
    return root ? ReadProcedure(*root, {}, found) : Procedure();
}

} // namespace vant::host
