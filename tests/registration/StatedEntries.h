#pragma once

#include "tests/registration/ClassesRoot.h"

#include <span>
#include <string>
#include <vector>

namespace vant {

inline constexpr const wchar_t* libraryIdText = L"{3BE2B2AE-1EB4-4FE6-BCBD-F45D8D79FE5D}";

/// A command class as its users know it, stated here once more so that no slip in the class table passes
/// unseen.
struct StatedClass {
    const wchar_t* name;
    UINT resource;
    const wchar_t* clsid; ///< in the letter case in which the registration writes it
};

/// All 21 classes, in the order of their resource numbers.
std::span<const StatedClass> StatedClasses();

std::wstring ProgId(const StatedClass& stated);

/// The keys of one class, registered by the module of that file.
Subtree EntriesOf(const StatedClass& stated, const std::filesystem::path& module);

/// The keys of all built classes and of the type library.
Subtree EntriesOfAll(const std::filesystem::path& module);

/// Those of the entries that are not the type library's.
Subtree ClassEntries(Subtree entries);

/// The registration script of one class.
std::string ScriptOf(const StatedClass& stated);

} // namespace vant
