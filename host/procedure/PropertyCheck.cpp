#include "host/procedure/PropertyCheck.h"

#include "framework/interfaces/ClassProperties.h"
#include "host/procedure/ClassReport.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

namespace {

class CommandProperties {
public:
    CommandProperties(const std::string& id, const Command& command, Diagnostics& found)
        : m_id(id), m_command(command), m_known(PropertiesOfClass(command.className.text)), m_found(found) {}

    void Check() {
        for (const Property& property : m_command.properties) {
            if (!FindClassProperty(m_command.className.text, property.name.text))
                ReportUnknown(property);
        }
        for (const ClassProperty& known : m_known) {
            if (known.required && m_command.hasAllProperties)
                CheckGiven(known);
            if (!known.alternative.empty())
                CheckAlternative(known);
        }
    }

private:
    const Property* Find(std::string_view name) const {
        const auto found = std::find_if(m_command.properties.begin(), m_command.properties.end(),
                                        [name](const Property& each) { return each.name.text == name; });
        return found == m_command.properties.end() ? nullptr : &*found;
    }

    void ReportUnknown(const Property& property) {
        std::vector<std::string> names;
        for (const ClassProperty& known : m_known)
            names.emplace_back(known.name);
        const std::optional<std::string> meant = NearestName(property.name.text, names);
        m_found.Error(property.name.position,
                      fmt::format("class {} has no property {}{}", m_command.className.text,
                                  Quoted(property.name.text), DidYouMean(meant)));
        if (meant)
            m_reported.push_back(*meant);
    }

    /// Whether a property is given, or a mistake that looks like it has been reported.
    bool IsGiven(std::string_view name) const {
        const auto holds = [name](const std::vector<std::string>& names) {
            return std::find(names.begin(), names.end(), name) != names.end();
        };
        return Find(name) || holds(m_command.misread) || holds(m_reported);
    }

    /// Of two alternatives the first speaks for both.
    void CheckGiven(const ClassProperty& known) {
        const bool speaks = known.alternative.empty() || IsFirst(known);
        if (!speaks || IsGiven(known.name) || (!known.alternative.empty() && IsGiven(known.alternative)))
            return;
        std::string names = Quoted(known.name);
        if (!known.alternative.empty())
            names += " or " + Quoted(known.alternative);
        m_found.Error(m_command.position,
                      fmt::format("command {} needs the property {}", Quoted(m_id), names));
    }

    void CheckAlternative(const ClassProperty& known) {
        const Property* const property = Find(known.name);
        const Property* const other = Find(known.alternative);
        // Reported at the later one.
        if (property && other && other->name.position < property->name.position)
            m_found.Error(property->name.position,
                          fmt::format("{} and {} exclude each other: leave one of them out",
                                      Quoted(other->name.text), Quoted(known.name)));
    }

    bool IsFirst(const ClassProperty& known) const {
        return &known < FindClassProperty(known.className, known.alternative);
    }

    const std::string& m_id;
    const Command& m_command;
    const std::span<const ClassProperty> m_known;
    std::vector<std::string> m_reported; ///< What unknown names were probably meant to be.
    Diagnostics& m_found;
};

} // namespace

bool CheckProperties(const Procedure& procedure, Diagnostics& found) {
    const std::vector<std::string> names = ClassNames();
    const std::size_t errors = found.Errors();
    bool areRead = true;
    for (const auto& [id, command] : procedure.commands) {
        const auto& [name, position] = command.className;
        areRead = areRead && !name.empty() && command.misread.empty() && command.hasAllProperties;
        if (name.empty())
            continue; // It is missing, which has been reported.
        if (std::find(names.begin(), names.end(), name) == names.end())
            found.Error(position,
                        fmt::format("there is no class {}{}", Quoted(name), DidYouMean(name, names)));
        else
            CommandProperties(id, command, found).Check();
    }
    return areRead && found.Errors() == errors;
}

} // namespace vant::host
