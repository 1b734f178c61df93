#pragma once

#include "framework/interfaces/ClassProperties.h"
#include "host/procedure/ClassTraits.h"
#include "host/procedure/Procedure.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// A name in a property of a command, such as that of a data entry.
struct NameUse {
    PropertyKind kind; ///< Of what is named: lists and the references in texts are taken apart.
    std::string name;
    const Property* property;
    const ClassProperty* known;
};

/// A command and all that its properties name.
struct CommandUse {
    std::string_view id;
    const Command* command;
    const ClassTraits* traits;
    std::vector<NameUse> names{};
};

/// The commands of a procedure in the order of its map. Properties that the class does not have are left out.
std::vector<CommandUse> CommandUses(const Procedure& procedure);

/// What the entry must hold that a property of kind "data entry read" names: that of a StringFormatter
/// depends on its operation.
PropertyKind HeldKind(const Command& command, const ClassProperty& known);

/// The value of a property; null if the command does not have it.
const Property* FindProperty(const Command& command, std::string_view name);

/// The commands and operations that steps list in `mayFail`.
std::set<std::string_view> NamesThatMayFail(const Procedure& procedure);

/// The names in a text in which references are replaced: each NAME in `opening` NAME ")". `isOpen` tells
/// whether the text ends inside a reference.
struct References {
    std::vector<std::string> names{};
    bool isOpen = false;
};
References ReferencesIn(std::string_view text, std::string_view opening);

inline constexpr std::string_view parameterReference = "$p(";
inline constexpr std::string_view entryReference = "$d(";

} // namespace vant::host
