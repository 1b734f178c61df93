#include "host/procedure/ProcedureReader.h"

#include "host/procedure/ConditionReader.h"
#include "host/procedure/EngineReader.h"
#include "host/procedure/ProcedureNames.h"
#include "host/procedure/TableReader.h"
#include "host/text/Suggestion.h"

#include <set>
#include <utility>

namespace vant::host {

namespace {

/// Goes through the TOML tables and builds the procedure, noting each mistake and going on.
class ProcedureReader : private TableReader {
public:
    explicit ProcedureReader(Diagnostics& found) : TableReader(found) {}

    Procedure Read(const toml::table& root) {
        CheckKeys(root, "a procedure",
                  {"name", "start", "data", "conditions", "components", "engine", "commands", "steps"});
        if (const auto name = RequiredName(root, "name", {1, 1}))
            m_procedure.name = name->text;
        if (auto start = RequiredName(root, "start", {1, 1}))
            m_procedure.start = std::move(*start);
        ForEach(root, "data", [this](const toml::key& key, const toml::node& node) { ReadData(key, node); });
        ForEach(root, "conditions",
                [this](const toml::key& key, const toml::node& node) { ReadConditions(key, node); });
        ForEach(root, "commands",
                [this](const toml::key& key, const toml::node& node) { ReadCommand(key, node); });
        ForEach(root, "components",
                [this](const toml::key& key, const toml::node& node) { ReadComponent(key, node); });
        if (const toml::node* const engine = root.get("engine"))
            ReadEngineKey(*engine);
        ForEach(root, "steps", [this](const toml::key& key, const toml::node& node) { ReadStep(key, node); });
        if (m_procedure.steps.empty() && !root.contains("steps"))
            m_found.Error({1, 1}, "'steps' is missing: a procedure needs a step that ends it");
        return std::move(m_procedure);
    }

private:
    void ReadData(const toml::key& key, const toml::node& node) {
        Value& value = m_procedure.data[std::string(key.str())];
        if (auto read = Scalar(node, "data entry " + Quoted(key.str())))
            value = std::move(*read);
    }

    void ReadConditions(const toml::key& key, const toml::node& node) {
        const std::string name(key.str());
        if (m_procedure.data.contains(name))
            m_found.Error(PositionOf(key), "a condition set is an entry of the data store, and " +
                                               Quoted(name) + " is one already");
        m_procedure.conditions[name] = ReadConditionSet(key, node, m_found);
    }

    void ReadCommand(const toml::key& key, const toml::node& node) {
        Command& command = m_procedure.commands[std::string(key.str())];
        command.position = PositionOf(key);
        const toml::table* const table = AsTable(node, "command " + Quoted(key.str()));
        if (!table)
            return;
        CheckKeys(*table, "a command", {"class", "properties"});
        if (auto className = RequiredName(*table, "class", command.position))
            command.className = std::move(*className);
        ForEach(*table, "properties", [&](const toml::key& name, const toml::node& value) {
            if (auto text = Text(value, "property " + Quoted(name.str())))
                command.properties.push_back({{std::string(name.str()), PositionOf(name)}, std::move(*text)});
            else
                command.misread.emplace_back(name.str());
        });
    }

    void ReadStep(const toml::key& key, const toml::node& node) {
        Step& step = m_procedure.steps[std::string(key.str())];
        step.position = PositionOf(key);
        const toml::table* const table = AsTable(node, "step " + Quoted(key.str()));
        if (!table)
            return;
        CheckKeys(*table, "a step", {"run", "wait", "next", "failed", "on", "end"});
        if (const toml::node* const run = table->get("run"))
            ReadRun(*run, step);
        ReadWait(*table, step);
        step.next = OptionalText(*table, "next");
        step.failed = OptionalText(*table, "failed");
        ForEach(*table, "on", [&](const toml::key& id, const toml::node& target) {
            if (auto text = Text(target, "transition " + Quoted(id.str())))
                step.on.emplace(std::string(id.str()), std::move(*text));
        });
        ReadEnd(*table, step);
        CheckShape(key, *table);
    }

    void ReadComponent(const toml::key& key, const toml::node& node) {
        std::set<std::string>& properties = m_procedure.components[std::string(key.str())];
        const toml::table* const table = AsTable(node, "component " + Quoted(key.str()));
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
                properties.insert(name->text);
        }
    }

    /// The engine itself, or the name of its file.
    void ReadEngineKey(const toml::node& node) {
        if (node.is_table())
            m_procedure.engine = ReadEngine(*node.as_table(), m_found);
        else if (const auto file = node.value_exact<std::string>())
            m_procedure.engineFile = Located{*file, PositionOf(node)};
        else
            m_found.Error(PositionOf(node),
                          std::string("'engine' must be a table or the name of a file, not ") + KindOf(node));
    }

    void ReadRun(const toml::node& node, Step& step) {
        const toml::array* const list = node.as_array();
        if (!list) {
            m_found.Error(PositionOf(node),
                          std::string("'run' must be a list of command ids, not ") + KindOf(node));
            return;
        }
        if (list->empty())
            m_found.Error(PositionOf(node), "'run' is empty: name a command, or leave the key out");
        for (const toml::node& each : *list) {
            if (auto id = Text(each, "a command id"))
                step.run.push_back(std::move(*id));
        }
    }

    void ReadWait(const toml::table& table, Step& step) {
        const auto wait = OptionalText(table, "wait");
        if (!wait)
            return;
        if (wait->text == "transition") {
            step.wait = Wait::Transition;
        } else if (wait->text == "end") {
            step.wait = Wait::End;
        } else {
            const std::string names[] = {"transition", "end"};
            m_found.Error(wait->position,
                          "'wait' is \"transition\" or \"end\"" + DidYouMean(wait->text, names));
        }
    }

    void ReadEnd(const toml::table& table, Step& step) {
        const auto end = OptionalText(table, "end");
        if (!end)
            return;
        if (end->text == "passed") {
            step.end = Verdict::Passed;
        } else if (end->text == "failed") {
            step.end = Verdict::Failed;
        } else {
            const std::string names[] = {"passed", "failed"};
            m_found.Error(end->position, "'end' is \"passed\" or \"failed\"" + DidYouMean(end->text, names));
        }
    }

    /// A step either ends the procedure or leads somewhere.
    void CheckShape(const toml::key& key, const toml::table& table) {
        if (table.contains("end")) {
            for (const auto& [other, node] : table) {
                if (other != "end")
                    m_found.Error(PositionOf(other), "step " + Quoted(key.str()) +
                                                         " ends the procedure, so it can have no " +
                                                         Quoted(other.str()));
            }
            return;
        }
        const toml::table* const on = table["on"].as_table();
        if (!table.contains("next") && !(on && !on->empty() && table.contains("run")))
            m_found.Error(PositionOf(key), "step " + Quoted(key.str()) +
                                               " leads nowhere: add 'next', or 'end', or 'run' with 'on'");
    }

    Procedure m_procedure;
};

} // namespace

Procedure ReadProcedure(const toml::table& root, Diagnostics& found) {
    Procedure procedure = ProcedureReader(found).Read(root);
    CheckConditionNames(procedure, found);
    CheckNames(procedure, found);
    return procedure;
}

Procedure ReadProcedure(std::string_view toml, Diagnostics& found) {
    const std::optional<toml::table> root = ParseToml(toml, found);
    return root ? ReadProcedure(*root, found) : Procedure();
}

} // namespace vant::host
