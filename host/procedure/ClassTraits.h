#pragma once

#include <array>
#include <span>
#include <string_view>

namespace vant::host {

/// What the commands of a class do, as far as it matters here and the table of properties does not have it.
struct ClassTraits {
    std::string_view className;
    bool runsOn = false;     ///< Persistent: a command continues on a thread of its own.
    bool ends = true;        ///< A command that runs on ends by itself, at the latest with its choice.
    bool guards = false;     ///< A command stops what goes on: its choice is final, and ends every wait.
    bool takesTime = false;  ///< A command keeps its step busy for a while.
    bool actuates = false;   ///< A command changes parameters of the engine.
    bool onlyStores = false; ///< A command does nothing but to store a value in an entry.
    std::array<std::string_view, 4> parameters{}; ///< That no property names; the rest is empty.
};

/// Of every class, in the order of their names.
std::span<const ClassTraits> AllClassTraits();

/// Those of one class; of a class that does not exist, those of one that does nothing.
const ClassTraits& TraitsOf(std::string_view className);

} // namespace vant::host
