#include "host/procedure/UseCheck.h"

#include "host/procedure/Cycles.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

class UseCheck {
public:
    UseCheck(const Procedure& procedure, std::span<const CommandUse> commands, const DataUse& data,
             Diagnostics& found)
        : m_procedure(procedure), m_commands(commands), m_data(data), m_found(found) {}

    void CheckCommands() {
        std::unordered_map<std::string_view, std::size_t> numbers;
        for (std::size_t i = 0; i < m_commands.size(); ++i)
            numbers.emplace(m_commands[i].id, i);
        Graph runs(m_commands.size());
        for (std::size_t i = 0; i < m_commands.size(); ++i) {
            for (const NameUse& use : m_commands[i].names) {
                if (use.kind == PropertyKind::Command)
                    runs[i].push_back(numbers.at(use.name));
            }
        }
        std::vector<bool> isRun(m_commands.size());
        const auto markAll = [&](const std::vector<Located>& ids) {
            for (const Located& id : ids)
                MarkReachable(runs, numbers.at(id.text), isRun);
        };
        markAll(m_procedure.finally);
        for (const auto& [id, step] : m_procedure.steps)
            markAll(step.run);
        for (const std::size_t command : Beginnings(runs, isRun))
            Warn(m_commands[command].command->position,
                 "nothing runs command " + Quoted(m_commands[command].id));
        m_isRun = std::move(isRun);
    }

    void CheckData() {
        for (const auto& [name, position] : m_procedure.dataPositions) {
            // An argument that is not used has been reported at the call that passes it.
            if (!m_data.read.contains(name) && !m_data.written.contains(name) &&
                !m_data.arguments.contains(name))
                Warn(position, "nothing uses the data entry " + Quoted(name));
        }
        std::set<std::string_view> reported;
        for (std::size_t i = 0; i < m_commands.size(); ++i) {
            if (m_isRun[i] && m_commands[i].traits->onlyStores)
                CheckStored(m_commands[i], reported);
        }
        for (const auto& [id, step] : m_procedure.steps) {
            if (step.ask && step.ask->data)
                CheckStored(*step.ask->data, reported);
        }
    }

    void CheckConditionSets() {
        for (const auto& [name, conditions] : m_procedure.conditions) {
            if (!m_data.read.contains(name))
                Warn(conditions.position, "nothing uses the condition set " + Quoted(name));
        }
    }

    void CheckMeasurements() {
        std::map<std::string_view, std::string_view> measured;
        for (const auto& [name, measurement] : m_procedure.measurements) {
            const auto [other, isNew] = measured.emplace(measurement.data.text, name);
            if (!isNew)
                Warn(measurement.position,
                     fmt::format("measurement {} reads the data entry {}, as {} does", Quoted(name),
                                 Quoted(measurement.data.text), Quoted(other->second)));
        }
    }

    void CheckComponents() {
        std::set<std::string_view> used;
        for (const CommandUse& command : m_commands) {
            for (const NameUse& use : command.names) {
                if (use.kind == PropertyKind::Component)
                    used.insert(use.name);
            }
        }
        for (const auto& [name, position] : m_procedure.componentPositions) {
            if (!used.contains(name))
                Warn(position, "nothing uses the component " + Quoted(name));
        }
    }

    void CheckParameters() {
        FindParameters();
        for (const auto& [id, position] : m_procedure.parameterPositions) {
            if (!m_parameters.contains(id) && !m_parametersAreUnknown)
                Warn(position, "nothing uses parameter " + Quoted(id) + " of the engine");
        }
    }

private:
    /// Warns about the procedure's own file only: other procedures may use what an included file declares.
    void Warn(const Position& position, std::string message) {
        if (!position.file)
            m_found.Warning(position, std::move(message));
    }

    void CheckStored(const CommandUse& command, std::set<std::string_view>& reported) {
        for (const NameUse& use : command.names) {
            if (use.kind == PropertyKind::DataEntryWritten)
                CheckStored({use.name, use.property->value.position}, reported);
        }
    }

    void CheckStored(const Located& entry, std::set<std::string_view>& reported) {
        const auto read = m_data.written.find(entry.text);
        if (m_data.read.contains(entry.text) || m_data.given.contains(entry.text) ||
            read == m_data.written.end() || !reported.insert(*read).second)
            return;
        Warn(entry.position,
             fmt::format("nothing reads the data entry {}: if it is a result, name it in 'data' or in a "
                         "measurement",
                         Quoted(entry.text)));
    }

    void FindParameters() {
        for (const CommandUse& command : m_commands) {
            m_parameters.insert(command.traits->parameters.begin(), command.traits->parameters.end());
            for (const NameUse& use : command.names)
                FindParametersOf(use);
            if (const Property* const value = FindProperty(*command.command, "value"))
                FindReferences(value->value.text);
        }
        for (const auto& [name, value] : m_procedure.data) {
            if (const auto* const text = std::get_if<std::string>(&value))
                FindReferences(*text);
        }
        for (const auto& [name, conditions] : m_procedure.conditions) {
            for (const Condition& condition : conditions.list) {
                if (condition.kind == Condition::Kind::Parameter)
                    m_parameters.insert(condition.subject);
            }
        }
        FindParametersOfEngine(*m_procedure.engine);
        for (const auto& [id, step] : m_procedure.steps) {
            m_parametersAreUnknown = m_parametersAreUnknown || step.procedure;
            if (step.ask)
                FindReferences(step.ask->text.text);
        }
    }

    /// Those that others depend on.
    void FindParametersOfEngine(const EngineDescription& engine) {
        for (const auto& [id, parameter] : engine.parameters) {
            if (!parameter.behaviour)
                continue;
            for (std::string& followed : parameter.behaviour->Followed())
                m_parameters.insert(std::move(followed));
        }
        for (const auto& [id, records] : engine.faultArrays) {
            for (const FaultRecordDescription& record : records) {
                if (record.when)
                    m_parameters.insert(record.when->parameter);
                if (record.clearedBy)
                    m_parameters.insert(record.clearedBy->parameter);
            }
        }
    }

    void FindParametersOf(const NameUse& use) {
        if (use.kind == PropertyKind::Parameter)
            m_parameters.insert(use.name);
        else if (use.known->holds == PropertyKind::Parameter)
            FindParameterInEntry(use.name);
    }

    /// An entry that holds the id of a parameter.
    void FindParameterInEntry(const std::string& entry) {
        const auto value = m_procedure.data.find(entry);
        const auto* const id =
            value == m_procedure.data.end() ? nullptr : std::get_if<std::string>(&value->second);
        if (id && !id->empty() && m_data.IsConstant(entry))
            m_parameters.insert(*id);
        else
            m_parametersAreUnknown = true;
    }

    void FindReferences(std::string_view text) {
        for (std::string& id : ReferencesIn(text, parameterReference).names)
            m_parameters.insert(std::move(id));
    }

    const Procedure& m_procedure;
    const std::span<const CommandUse> m_commands;
    const DataUse& m_data;
    Diagnostics& m_found;
    std::vector<bool> m_isRun;
    std::set<std::string, std::less<>> m_parameters;
    bool m_parametersAreUnknown = false;
};

} // namespace

void CheckUse(const Procedure& procedure, std::span<const CommandUse> commands, const DataUse& data,
              bool hasOwnEngine, Diagnostics& found) {
    UseCheck check(procedure, commands, data, found);
    check.CheckCommands();
    check.CheckData();
    check.CheckConditionSets();
    check.CheckMeasurements();
    check.CheckComponents();
    if (hasOwnEngine && procedure.engine)
        check.CheckParameters();
}

} // namespace vant::host
