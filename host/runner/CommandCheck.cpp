#include "host/runner/CommandCheck.h"

#include "host/record/Json.h"
#include "host/runner/LoadedModule.h"
#include "host/text/Suggestion.h"
#include "platform/Bstr.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

namespace {

/// Every text that lies one mistake away from `written`: a letter too much, swapped with the next, wrong, or
/// missing.
std::vector<std::string> NearTexts(const std::string& written) {
    std::string letters;
    for (char letter = 'a'; letter <= 'z'; ++letter) {
        letters.push_back(letter);
        letters.push_back(static_cast<char>(letter - 'a' + 'A'));
    }
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < written.size(); ++i) {
        texts.push_back(written.substr(0, i) + written.substr(i + 1));
        if (i + 1 < written.size()) {
            texts.push_back(written);
            std::swap(texts.back()[i], texts.back()[i + 1]);
        }
        for (const char letter : letters) {
            texts.push_back(written);
            texts.back()[i] = letter;
        }
    }
    for (std::size_t i = 0; i <= written.size(); ++i) {
        for (const char letter : letters)
            texts.push_back(written.substr(0, i) + letter + written.substr(i));
    }
    return texts;
}

class CommandCheck {
public:
    CommandCheck(const std::string& id, const Command& command, const CommandFactory& factory,
                 Diagnostics& found)
        : m_id(id), m_command(command), m_factory(factory), m_found(found) {}

    void Run() {
        CComPtr<IVantCommand> object;
        const HRESULT created = m_factory.Create(m_command.className.text, object);
        if (created == CLASS_E_CLASSNOTAVAILABLE) {
            ReportClass();
            return;
        }
        if (created == REGDB_E_CLASSNOTREG)
            throw ModuleFailure("the class " + m_command.className.text +
                                " is not registered; `vant register` registers the module's classes");
        if (FAILED(created))
            throw ModuleFailure("the module could not create a " + m_command.className.text + ": " +
                                ToText(created));
        bool accepted = true;
        for (const Property& property : m_command.properties) {
            if (const HRESULT code = Set(*object.Get(), property); FAILED(code)) {
                accepted = false;
                ReportProperty(property, code);
            }
        }
        if (accepted && !IsValid(*object.Get()))
            ReportSet();
    }

private:
    static HRESULT Set(IVantCommand& object, const Property& property) {
        return object.SetProperty(CComBSTR(ToWide(property.name.text)).Get(),
                                  CComBSTR(ToWide(property.value.text)).Get());
    }

    static bool IsValid(IVantCommand& object) {
        VARIANT_BOOL valid = VARIANT_FALSE;
        return SUCCEEDED(object.get_IsValid(&valid)) && valid != VARIANT_FALSE;
    }

    void ReportClass() {
        const std::string& name = m_command.className.text;
        const std::vector<std::string> names = ClassNames();
        const bool known = std::find(names.begin(), names.end(), name) != names.end();
        m_found.Error(m_command.className.position,
                      known ? "class '" + name + "' is not in this module"
                            : "there is no class '" + name + "'" + DidYouMean(name, names));
    }

    void ReportProperty(const Property& property, HRESULT code) {
        const std::string& name = property.name.text;
        if (code == E_INVALIDARG)
            m_found.Error(property.name.position, "class " + m_command.className.text + " has no property '" +
                                                      name + "'" + DidYouMean(AcceptedNear(name)));
        else
            m_found.Error(property.name.position,
                          "command '" + m_id + "' refuses property '" + name + "': " + ToText(code));
    }

    /// A name near `written` that the class accepts. A command does not tell its names, but it can be asked
    /// about each.
    std::optional<std::string> AcceptedNear(const std::string& written) const {
        constexpr std::size_t longestName = 64;
        CComPtr<IVantCommand> object;
        if (written.size() > longestName || FAILED(m_factory.Create(m_command.className.text, object)))
            return std::nullopt;
        for (const std::string& text : NearTexts(written)) {
            if (SUCCEEDED(object->SetProperty(CComBSTR(ToWide(text)).Get(), nullptr)))
                return text;
        }
        return std::nullopt;
    }

    void ReportSet() {
        std::string message =
            "command '" + m_id + "' has not the properties that a " + m_command.className.text + " needs: ";
        std::string surplus;
        for (const Property& property : m_command.properties) {
            if (IsValidWithout(property))
                surplus += (surplus.empty() ? "'" : " or '") + property.name.text + "'";
        }
        message += surplus.empty() ? "one is missing, or two exclude each other" : "leave out " + surplus;
        m_found.Error(m_command.position, message);
    }

    bool IsValidWithout(const Property& left) const {
        CComPtr<IVantCommand> object;
        if (FAILED(m_factory.Create(m_command.className.text, object)))
            return false;
        for (const Property& property : m_command.properties) {
            if (&property != &left && FAILED(Set(*object.Get(), property)))
                return false;
        }
        return IsValid(*object.Get());
    }

    const std::string& m_id;
    const Command& m_command;
    const CommandFactory& m_factory;
    Diagnostics& m_found;
};

} // namespace

void CheckCommands(const Procedure& procedure, const CommandFactory& factory, Diagnostics& found) {
    for (const auto& [id, command] : procedure.commands) {
        // A class that is missing has been reported already.
        if (!command.className.text.empty())
            CommandCheck(id, command, factory, found).Run();
    }
}

} // namespace vant::host
