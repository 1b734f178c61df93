#pragma once

#include "platform/system.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vant {

/// Makes what this process registers from now on hold for the current user only, by the system's redirection
/// of the classes root (RegOverridePredefKey). On other systems than Windows the class catalogue is the
/// user's anyway, and this does nothing.
VANT_PLATFORM_API HRESULT RegisterForUserOnly();

/// For each of the classes, given as "{...}" text, the module file that is registered for it; nothing for a
/// class that is not registered. All come from the same state of the registration. Throws std::runtime_error,
/// with file and line, if the class catalogue cannot be read.
VANT_PLATFORM_API std::vector<std::optional<std::wstring>>
RegisteredModules(const std::vector<std::wstring>& classIds);

/// The file in which this system keeps registrations; nothing if it keeps them elsewhere, or the file has no
/// name because the environment lacks it.
VANT_PLATFORM_API std::optional<std::filesystem::path> ClassCatalogueFile();

} // namespace vant
