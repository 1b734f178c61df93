#pragma once

#include "host/procedure/CommandUse.h"
#include "host/procedure/Procedure.h"

#include <set>
#include <span>
#include <string>
#include <string_view>

namespace vant::host {

/// What those who run a procedure give it and take from it.
struct CallerUse {
    std::set<std::string> given{}; ///< Entries that a caller gives.
    std::set<std::string> taken{}; ///< Entries that a caller takes as results.
};

/// The data-store entries of a procedure by what happens to them.
struct DataUse {
    using Names = std::set<std::string, std::less<>>;

    Names given{};     ///< At the beginning, condition sets among them.
    Names written{};   ///< By a command, a question, or as the result of a called procedure.
    Names arguments{}; ///< Of those given, the ones that callers give.
    Names read{};      ///< By anything, references in texts among them.
    /// Whose texts may have references replaced; in the second, those to entries, too.
    Names expanded{};
    Names expandedWithEntries{};

    bool Exists(std::string_view name) const { return given.contains(name) || written.contains(name); }
    /// Given by the procedure itself and never written.
    bool IsConstant(std::string_view name) const {
        return given.contains(name) && !written.contains(name) && !arguments.contains(name);
    }
};

DataUse FindDataUse(const Procedure& procedure, std::span<const CommandUse> commands,
                    const CallerUse& callers);

} // namespace vant::host
