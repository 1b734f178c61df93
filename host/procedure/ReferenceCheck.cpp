#include "host/procedure/ReferenceCheck.h"

#include "host/text/Printable.h"

#include <fmt/format.h>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace vant::host {

namespace {

class ReferenceCheck {
public:
    ReferenceCheck(const Procedure& procedure, const DataUse& data, const CalledData& called,
                   const EngineAtHand& engine, const WholeParts& whole, Diagnostics& found)
        : m_procedure(procedure), m_data(data), m_called(called), m_engine(engine), m_whole(whole),
          m_found(found), m_mayFail(NamesThatMayFail(procedure)) {}

    void CheckCommand(const CommandUse& command) {
        for (const NameUse& use : command.names)
            CheckUse(command, use);
        if (!command.traits->parameters.front().empty())
            NeedEngine(command, command.command->className.position);
        if (MayLackEngine(command))
            return;
        std::string missing;
        for (const std::string_view id : command.traits->parameters) {
            if (!id.empty() && !m_engine.engine->parameters.contains(std::string(id)))
                missing += (missing.empty() ? "" : ", ") + Quoted(id);
        }
        if (!missing.empty())
            ReportLack(command.command->className.position,
                       fmt::format("the engine lacks what the class {} uses: {}", command.traits->className,
                                   missing));
    }

    void CheckRest() {
        for (const auto& [name, conditions] : m_procedure.conditions)
            CheckConditions(conditions);
        for (const auto& [name, measurement] : m_procedure.measurements)
            CheckMeasurement(name, measurement);
        for (const auto& [id, step] : m_procedure.steps) {
            if (step.procedure)
                CheckCall(*step.procedure);
            if (step.ask)
                CheckQuestion(id, *step.ask);
        }
        CheckTexts();
    }

private:
    void CheckUse(const CommandUse& command, const NameUse& use) {
        const Position& position = use.property->value.position;
        if (use.name.empty()) {
            if (use.kind != PropertyKind::Transition && use.kind != PropertyKind::DataEntryBaseName)
                ReportEmpty(command, use);
            return;
        }
        switch (use.kind) {
        case PropertyKind::Command:
        case PropertyKind::PersistentCommand:
            CheckCommandId(use);
            break;
        case PropertyKind::DataEntry:
            CheckEntry(use.name, position);
            break;
        case PropertyKind::DataEntryRead:
            CheckEntryRead(command, use);
            break;
        case PropertyKind::DataEntryWritten:
            if (m_procedure.conditions.contains(use.name))
                m_found.Error(position, Quoted(use.name) + " is a condition set: store the value elsewhere");
            break;
        case PropertyKind::ConditionSet:
            CheckConditionSet(use.name, position);
            break;
        case PropertyKind::Parameter:
        case PropertyKind::FaultArray:
            CheckPartOfEngine(command, use);
            break;
        case PropertyKind::Component:
            if (!m_mayFail.contains(command.id))
                CheckComponent(command, use);
            break;
        default:
            break;
        }
    }

    void CheckPartOfEngine(const CommandUse& command, const NameUse& use) {
        const Position& position = use.property->value.position;
        NeedEngine(command, position);
        if (MayLackEngine(command))
            return;
        if (use.kind == PropertyKind::Parameter)
            CheckEngineHas("parameter", m_engine.engine->parameters, use.name, position);
        else
            CheckEngineHas("fault array", m_engine.engine->faultArrays, use.name, position);
    }

    void ReportEmpty(const CommandUse& command, const NameUse& use) {
        const std::string& text = use.property->value.text;
        std::string_view mistake = " has a reference without a name";
        if (text.empty())
            mistake = " is empty";
        else if (use.known->kind == PropertyKind::CommandList)
            mistake = " has an empty id: write one space between two ids, and none around them";
        else if (use.known->kind == PropertyKind::ParameterList)
            mistake = " begins with a space, which makes an empty id";
        if (!text.empty() && m_reportedEmpty == use.property)
            return; // Several spaces are one mistake.
        m_reportedEmpty = use.property;
        m_found.Error(use.property->value.position, fmt::format("{} of command {}{}", Quoted(use.known->name),
                                                                Quoted(command.id), mistake));
    }

    /// Whether nothing can be said about what the command asks of the engine.
    bool MayLackEngine(const CommandUse& command) const {
        return !m_engine.engine || !m_engine.isKnown || m_mayFail.contains(command.id);
    }

    /// Says once that what is asked of the engine cannot be checked.
    void NeedEngine(const Position& position) {
        if (m_engine.engine || !m_engine.isKnown || m_saidThatEngineLacks)
            return;
        m_saidThatEngineLacks = true;
        m_found.Warning(position, "the procedure has no engine, so parameters are not checked: name one in "
                                  "'engine' or with --engine");
    }

    void NeedEngineForCondition(const Position& position) {
        if (!m_engine.isNeeded) {
            NeedEngine(position);
            return;
        }
        m_saidThatEngineLacks = true;
        m_found.Error(position, "a condition on a parameter needs an engine: name one in 'engine' or with "
                                "--engine");
    }

    void NeedEngine(const CommandUse& command, const Position& position) {
        if (!m_mayFail.contains(command.id))
            NeedEngine(position);
    }

    void CheckCommandId(const NameUse& use) {
        const auto command = m_procedure.commands.find(use.name);
        if (command == m_procedure.commands.end())
            m_found.Error(use.property->value.position, "there is no command " + Quoted(use.name) +
                                                            m_found.Suggest(use.name, m_procedure.commands));
        else if (use.kind == PropertyKind::PersistentCommand && m_whole.commands &&
                 !TraitsOf(command->second.className.text).runsOn)
            m_found.Error(use.property->value.position,
                          fmt::format("command {} of class {} does not run on, so it cannot be ended",
                                      Quoted(use.name), command->second.className.text));
    }

    void CheckEntry(const std::string& name, const Position& position) {
        if (m_whole.commands && !name.empty() && !m_data.Exists(name))
            m_found.Error(position, "there is no data entry " + Quoted(name) + ": nothing sets it" +
                                        SuggestEntry(name));
    }

    void CheckEntryRead(const CommandUse& command, const NameUse& use) {
        const Position& position = use.property->value.position;
        if (use.known->holds == PropertyKind::Parameter)
            NeedEngine(command, position);
        if (m_procedure.conditions.contains(use.name))
            m_found.Error(position, Quoted(use.name) + " is a condition set, which has no value to read");
        else if (use.known->holds == PropertyKind::Parameter && m_data.IsConstant(use.name))
            CheckParameterInEntry(command, use.name);
        else
            CheckEntry(use.name, position);
    }

    /// An entry that holds the id of a parameter in every run.
    void CheckParameterInEntry(const CommandUse& command, const std::string& entry) {
        const auto value = m_procedure.data.find(entry);
        const auto* const id =
            value == m_procedure.data.end() ? nullptr : std::get_if<std::string>(&value->second);
        // An empty id is a value to be given, of which the check of values speaks.
        if (id && !id->empty() && !MayLackEngine(command))
            CheckEngineHas("parameter", m_engine.engine->parameters, *id,
                           m_procedure.dataPositions.at(entry));
    }

    std::string SuggestEntry(const std::string& name) {
        if (m_entries.empty()) {
            m_entries = m_data.given;
            m_entries.insert(m_data.written.begin(), m_data.written.end());
        }
        return m_found.Suggest(name, m_entries);
    }

    void CheckConditionSet(const std::string& name, const Position& position) {
        // A caller may give one, too.
        const bool isGiven = m_data.given.contains(name) && !m_procedure.data.contains(name);
        if (!isGiven)
            m_found.Error(position, "there is no condition set " + Quoted(name) +
                                        m_found.Suggest(name, m_procedure.conditions));
    }

    template <class Map>
    void CheckEngineHas(const char* what, const Map& known, const std::string& id, const Position& position) {
        if (!known.contains(id))
            ReportLack(position, LackOf(what, known, id));
    }

    template <class Map>
    std::string LackOf(const char* what, const Map& known, const std::string& id) {
        return fmt::format("the engine has no {} {}{}", what, Quoted(id), m_found.Suggest(id, known));
    }

    void ReportLack(const Position& position, std::string message) {
        if (m_engine.isAnother)
            m_found.Warning(position, std::move(message));
        else
            m_found.Error(position, std::move(message));
    }

    /// A procedure without components accepts every component, and a component without properties every
    /// property.
    void CheckComponent(const CommandUse& command, const NameUse& use) {
        if (m_procedure.components.empty())
            return;
        const auto component = m_procedure.components.find(use.name);
        if (component == m_procedure.components.end()) {
            m_found.Error(use.property->value.position,
                          "there is no component " + Quoted(use.name) +
                              m_found.Suggest(use.name, m_procedure.components));
            return;
        }
        const Property* const named = FindProperty(*command.command, "propertyName");
        // What a MonitorUpdater sets.
        const std::string property = named ? named->value.text : std::string("parameter");
        if (!property.empty() && !component->second.empty() && !component->second.contains(property))
            m_found.Error((named ? named : use.property)->value.position,
                          fmt::format("component {} has no property {}{}", Quoted(use.name), Quoted(property),
                                      m_found.Suggest(property, component->second)));
    }

    void CheckConditions(const Conditions& conditions) {
        for (const Condition& condition : conditions.list) {
            if (condition.kind == Condition::Kind::Data)
                CheckEntry(condition.subject, condition.position);
            else
                CheckConditionParameter(condition);
            CheckEntry(condition.otherEntry, condition.otherPosition);
            if (condition.hasOwnMessage)
                CheckMessage(condition);
        }
    }

    void CheckConditionParameter(const Condition& condition) {
        if (!m_engine.isKnown || condition.subject.empty())
            return;
        if (!m_engine.engine)
            NeedEngineForCondition(condition.position);
        else if (const auto& known = m_engine.engine->parameters; !known.contains(condition.subject))
            m_found.Error(condition.position, LackOf("parameter", known, condition.subject));
    }

    /// A message that a command makes may come too late.
    void CheckMessage(const Condition& condition) {
        const std::string& message = condition.message;
        if (!message.empty() && m_data.Exists(message) && !m_data.given.contains(message))
            m_found.Warning(condition.messagePosition,
                            "there is no data entry " + Quoted(message) +
                                " at the beginning: a command must write it before the condition fails");
        else
            CheckEntry(message, condition.messagePosition);
    }

    void CheckMeasurement(const std::string& name, const Measurement& measurement) {
        const std::string& entry = measurement.data.text;
        if (!m_whole.commands || entry.empty() || m_data.written.contains(entry))
            return;
        m_found.Error(measurement.data.position,
                      fmt::format("nothing writes the data entry {}, which measurement {} reads{}",
                                  Quoted(entry), Quoted(name), m_found.Suggest(entry, m_data.written)));
    }

    void CheckCall(const ProcedureCall& call) {
        for (const auto& [name, entry] : call.passed) {
            CheckEntry(entry.text, entry.position);
            CheckArgument(call, name);
        }
        for (const auto& [name, value] : call.given)
            CheckArgument(call, name);
        const auto called = m_called.find(call.procedure.get());
        for (const auto& [name, entry] : call.results) {
            if (called != m_called.end() && !called->second->Exists(entry.text))
                m_found.Error(entry.position,
                              fmt::format("procedure {} has no data entry {}: nothing in it sets it",
                                          Quoted(call.file.text), Quoted(entry.text)));
        }
    }

    void CheckArgument(const ProcedureCall& call, const std::string& name) {
        const auto called = m_called.find(call.procedure.get());
        if (called != m_called.end() && !called->second->read.contains(name))
            m_found.Warning(call.file.position, fmt::format("procedure {} does not read the argument {}",
                                                            Quoted(call.file.text), Quoted(name)));
    }

    void CheckQuestion(const std::string& step, const Question& question) {
        const std::string place = "the question of step " + Quoted(step);
        CheckEntriesIn(place, question.text.text, question.text.position);
        CheckParametersIn(place, question.text.text, question.text.position);
        if (question.data && m_procedure.conditions.contains(question.data->text))
            m_found.Error(question.data->position,
                          Quoted(question.data->text) + " is a condition set: store the value elsewhere");
    }

    /// References in texts that commands expand, if the texts are known: those given at the beginning, and
    /// those that a DataStoreWriter writes.
    void CheckTexts() {
        for (const auto& [name, value] : m_procedure.data) {
            if (const auto* const text = std::get_if<std::string>(&value))
                CheckText("data entry " + Quoted(name), *text, name, m_procedure.dataPositions.at(name));
        }
        for (const auto& [id, command] : m_procedure.commands) {
            if (command.className.text != "DataStoreWriter")
                continue;
            const Property* const entry = FindProperty(command, "dsLocation");
            const Property* const value = FindProperty(command, "value");
            if (entry && value)
                CheckText("'value' of command " + Quoted(id), value->value.text, entry->value.text,
                          value->value.position);
        }
    }

    void CheckText(const std::string& place, const std::string& text, const std::string& entry,
                   const Position& position) {
        const bool withEntries = m_data.expandedWithEntries.contains(entry);
        if (withEntries)
            CheckEntriesIn(place, text, position);
        if (withEntries || m_data.expanded.contains(entry))
            CheckParametersIn(place, text, position);
    }

    void CheckEntriesIn(const std::string& place, const std::string& text, const Position& position) {
        if (!m_whole.commands)
            return;
        for (const std::string& name : ReferencesIn(text, entryReference).names) {
            if (!m_data.Exists(name))
                m_found.Error(position, fmt::format("{} refers to the data entry {}: nothing sets it{}",
                                                    place, Quoted(name), SuggestEntry(name)));
        }
    }

    void CheckParametersIn(const std::string& place, const std::string& text, const Position& position) {
        for (const std::string& id : ReferencesIn(text, parameterReference).names) {
            NeedEngine(position);
            if (m_engine.engine && m_engine.isKnown && !m_engine.engine->parameters.contains(id))
                ReportLack(position,
                           fmt::format("{} refers to parameter {}, which the engine does not have{}", place,
                                       Quoted(id), m_found.Suggest(id, m_engine.engine->parameters)));
        }
    }

    const Procedure& m_procedure;
    const DataUse& m_data;
    const CalledData& m_called;
    const EngineAtHand& m_engine;
    const WholeParts& m_whole;
    Diagnostics& m_found;
    const std::set<std::string_view> m_mayFail;
    const Property* m_reportedEmpty = nullptr;
    bool m_saidThatEngineLacks = false;
    DataUse::Names m_entries{}; ///< All that exist, once they have been needed.
};

} // namespace

void CheckReferences(const Procedure& procedure, std::span<const CommandUse> commands, const DataUse& data,
                     const CalledData& called, const EngineAtHand& engine, const WholeParts& whole,
                     Diagnostics& found) {
    ReferenceCheck check(procedure, data, called, engine, whole, found);
    // That a condition needs an engine says enough about the commands that need one, too.
    check.CheckRest();
    for (const CommandUse& command : commands)
        check.CheckCommand(command);
}

} // namespace vant::host
