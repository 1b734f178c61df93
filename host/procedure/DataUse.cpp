#include "host/procedure/DataUse.h"

namespace vant::host {

namespace {

class DataUseFinder {
public:
    DataUseFinder(const Procedure& procedure, std::span<const CommandUse> commands)
        : m_procedure(procedure), m_commands(commands) {}

    DataUse Find(const CallerUse& callers) {
        m_use.given.insert(callers.given.begin(), callers.given.end());
        m_use.arguments.insert(callers.given.begin(), callers.given.end());
        m_use.read.insert(callers.taken.begin(), callers.taken.end());
        for (const auto& [name, value] : m_procedure.data) {
            m_use.given.insert(name);
            if (const auto* const text = std::get_if<std::string>(&value))
                ReadReferences(*text);
        }
        FindInCommands();
        FindInConditions();
        FindInCalls();
        FindInQuestions();
        for (const auto& [name, measurement] : m_procedure.measurements)
            m_use.read.insert(measurement.data.text);
        return std::move(m_use);
    }

private:
    void FindInCommands() {
        for (const CommandUse& command : m_commands) {
            for (const NameUse& use : command.names)
                FindInProperty(*command.command, use);
            // Its text may be expanded later.
            const Property* const value = FindProperty(*command.command, "value");
            if (value)
                ReadReferences(value->value.text);
        }
    }

    void FindInProperty(const Command& command, const NameUse& use) {
        switch (use.kind) {
        case PropertyKind::DataEntryRead:
            m_use.read.insert(use.name);
            if (const PropertyKind held = HeldKind(command, *use.known);
                held == PropertyKind::ExpandedTextWithEntries)
                m_use.expandedWithEntries.insert(use.name);
            else if (held == PropertyKind::ExpandedText)
                m_use.expanded.insert(use.name);
            break;
        case PropertyKind::DataEntry:
        case PropertyKind::ConditionSet:
            m_use.read.insert(use.name);
            break;
        case PropertyKind::DataEntryWritten:
            m_use.written.insert(use.name);
            break;
        case PropertyKind::DataEntryBaseName:
            FindPublished(command, use.name);
            break;
        default:
            break;
        }
    }

    /// What a MonitorUpdater publishes.
    void FindPublished(const Command& command, const std::string& baseName) {
        const Property* const ids = FindProperty(command, "parameterIDs");
        if (!ids)
            return;
        std::string_view rest = ids->value.text;
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find(' '), rest.size());
            for (const char* const suffix : {"_name", "_value", "_units"})
                m_use.written.insert(baseName + std::string(rest.substr(0, end)) + suffix);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }

    void FindInConditions() {
        for (const auto& [name, conditions] : m_procedure.conditions) {
            m_use.given.insert(name);
            for (const Condition& condition : conditions.list) {
                if (condition.kind == Condition::Kind::Data)
                    m_use.read.insert(condition.subject);
                m_use.read.insert(condition.otherEntry);
                if (condition.hasOwnMessage)
                    m_use.read.insert(condition.message);
                else // The host makes the entry itself.
                    m_use.given.insert(condition.message);
            }
        }
    }

    void FindInCalls() {
        for (const auto& [id, step] : m_procedure.steps) {
            if (step.until)
                m_use.read.insert(step.until->text);
            if (!step.procedure)
                continue;
            for (const auto& [name, entry] : step.procedure->passed)
                m_use.read.insert(entry.text);
            for (const auto& [name, entry] : step.procedure->results)
                m_use.written.insert(name);
        }
    }

    void FindInQuestions() {
        for (const auto& [id, step] : m_procedure.steps) {
            if (!step.ask)
                continue;
            ReadReferences(step.ask->text.text);
            if (step.ask->data)
                m_use.written.insert(step.ask->data->text);
        }
    }

    void ReadReferences(std::string_view text) {
        for (std::string& name : ReferencesIn(text, entryReference).names)
            m_use.read.insert(std::move(name));
    }

    const Procedure& m_procedure;
    const std::span<const CommandUse> m_commands;
    DataUse m_use;
};

} // namespace

DataUse FindDataUse(const Procedure& procedure, std::span<const CommandUse> commands,
                    const CallerUse& callers) {
    return DataUseFinder(procedure, commands).Find(callers);
}

} // namespace vant::host
