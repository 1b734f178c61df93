#pragma once

#include "platform/system.h"

#include <span>

namespace vant {

/// A function that a module imports by name, and what it is to call in its place.
struct ImportReplacement {
    const char* name;
    void* function;
};

/// Changes the import table of a loaded module. What it does not import by these names stays. Doing it again
/// changes nothing.
void ReplaceImports(HMODULE module, std::span<const ImportReplacement> replacements);

/// The module in which an address lies; null if there is none. Adds no reference.
HMODULE LibraryOf(const void* address) noexcept;

} // namespace vant
