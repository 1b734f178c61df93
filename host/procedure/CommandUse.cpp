#include "host/procedure/CommandUse.h"

#include <algorithm>

namespace vant::host {

namespace {

/// The parts of a text between single spaces, empty ones included.
std::vector<std::string> SplitAtEachSpace(std::string_view text) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t space = text.find(' ');
        parts.emplace_back(text.substr(0, space));
        if (space == std::string_view::npos)
            return parts;
        text.remove_prefix(space + 1);
    }
}

/// As a MonitorUpdater splits: repeated spaces, and those at the end, give nothing.
std::vector<std::string> SplitAtSpaces(std::string_view text) {
    std::vector<std::string> parts;
    for (std::string& part : SplitAtEachSpace(text)) {
        if (!part.empty() || parts.empty())
            parts.push_back(std::move(part));
    }
    return parts;
}

class UseReader {
public:
    explicit UseReader(CommandUse& use) : m_use(use) {}

    void Read() {
        for (const Property& property : m_use.command->properties) {
            const ClassProperty* const known =
                FindClassProperty(m_use.command->className.text, property.name.text);
            if (known)
                Read(property, *known);
        }
    }

private:
    void Read(const Property& property, const ClassProperty& known) {
        const std::string& text = property.value.text;
        const auto add = [&](PropertyKind kind, std::string name) {
            m_use.names.push_back({kind, std::move(name), &property, &known});
        };
        switch (known.kind) {
        case PropertyKind::ParameterList:
            for (std::string& id : SplitAtSpaces(text))
                add(PropertyKind::Parameter, std::move(id));
            break;
        case PropertyKind::CommandList:
            for (std::string& id : SplitAtEachSpace(text))
                add(PropertyKind::Command, std::move(id));
            break;
        case PropertyKind::ExpandedText:
            for (std::string& id : ReferencesIn(text, parameterReference).names)
                add(PropertyKind::Parameter, std::move(id));
            break;
        case PropertyKind::DataEntry:
        case PropertyKind::DataEntryRead:
        case PropertyKind::DataEntryWritten:
        case PropertyKind::DataEntryBaseName:
        case PropertyKind::ConditionSet:
        case PropertyKind::Parameter:
        case PropertyKind::FaultArray:
        case PropertyKind::Command:
        case PropertyKind::PersistentCommand:
        case PropertyKind::Transition:
        case PropertyKind::Component:
        case PropertyKind::ComponentProperty:
            add(known.kind, text);
            break;
        default:
            break; // It names nothing.
        }
    }

    CommandUse& m_use;
};

} // namespace

std::vector<CommandUse> CommandUses(const Procedure& procedure) {
    std::vector<CommandUse> uses;
    uses.reserve(procedure.commands.size());
    for (const auto& [id, command] : procedure.commands) {
        uses.push_back({id, &command, &TraitsOf(command.className.text)});
        UseReader(uses.back()).Read();
    }
    return uses;
}

PropertyKind HeldKind(const Command& command, const ClassProperty& known) {
    const Property* const operation = FindProperty(command, "operation");
    if (known.holds == PropertyKind::ExpandedTextWithEntries && operation &&
        operation->value.text != "substitute")
        return PropertyKind::Number;
    return known.holds;
}

const Property* FindProperty(const Command& command, std::string_view name) {
    const auto found = std::find_if(command.properties.begin(), command.properties.end(),
                                    [name](const Property& each) { return each.name.text == name; });
    return found == command.properties.end() ? nullptr : &*found;
}

std::set<std::string_view> NamesThatMayFail(const Procedure& procedure) {
    std::set<std::string_view> names;
    for (const auto& [id, step] : procedure.steps) {
        for (const Located& each : step.mayFail)
            names.insert(each.text);
    }
    return names;
}

References ReferencesIn(std::string_view text, std::string_view opening) {
    References references;
    for (std::size_t at = text.find(opening); at != std::string_view::npos; at = text.find(opening, at)) {
        at += opening.size();
        const std::size_t end = text.find(')', at);
        if (end == std::string_view::npos) {
            references.isOpen = true;
            break;
        }
        references.names.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    return references;
}

} // namespace vant::host
