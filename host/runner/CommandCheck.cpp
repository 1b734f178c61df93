#include "host/runner/CommandCheck.h"

#include "host/procedure/ClassReport.h"
#include "host/record/Json.h"
#include "host/text/Printable.h"
#include "platform/Bstr.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>
#include <string>
#include <vector>

namespace vant::host {

namespace {

/// Creates a command to ask it; null if the module lacks the class.
CComPtr<IVantCommand> CreateToAsk(const std::string& className, const CommandFactory& factory) {
    CComPtr<IVantCommand> object;
    const HRESULT code = factory.Create(className, object);
    if (code == CLASS_E_CLASSNOTAVAILABLE)
        return {};
    if (code == REGDB_E_CLASSNOTREG)
        throw ModuleFailure("the class " + className +
                            " is not registered; `vant register` registers the module's classes");
    if (FAILED(code))
        throw ModuleFailure("the module could not create a " + className + ": " + ToText(code));
    return object;
}

void CheckProperties(const std::string& id, const Command& command, const CommandFactory& factory,
                     Diagnostics& found) {
    const CComPtr<IVantCommand> object = CreateToAsk(command.className.text, factory);
    for (const auto& [name, value] : command.properties) {
        const HRESULT code =
            object->SetProperty(CComBSTR(ToWide(name.text)).Get(), CComBSTR(ToWide(value.text)).Get());
        if (FAILED(code))
            found.Error(name.position, fmt::format("the module refuses property {} of command {}: {}",
                                                   Quoted(name.text), Quoted(id), ToText(code)));
    }
    VARIANT_BOOL valid = VARIANT_FALSE;
    if (!found.HasErrors() && (FAILED(object->get_IsValid(&valid)) || valid == VARIANT_FALSE))
        found.Error(command.position,
                    fmt::format("the module does not accept the properties of command {}", Quoted(id)));
}

} // namespace

void CheckCommands(const Procedure& procedure, const CommandFactory& factory, Diagnostics& found) {
    std::set<std::string> present;
    std::set<std::string> missing;
    const bool readWell = !found.HasErrors();
    const std::vector<std::string> classes = ClassNames();
    for (const auto& [id, command] : procedure.commands) {
        const auto& [name, position] = command.className;
        if (std::find(classes.begin(), classes.end(), name) == classes.end())
            continue; // It is missing or unknown, which has been reported.
        if (!present.contains(name) && !missing.contains(name))
            (CreateToAsk(name, factory) ? present : missing).insert(name);
        if (missing.contains(name))
            found.Error(position, fmt::format("class {} is not in this module", Quoted(name)));
    }
    if (!readWell || !missing.empty())
        return;
    for (const auto& [id, command] : procedure.commands)
        CheckProperties(id, command, factory, found);
}

} // namespace vant::host
