#pragma once

#include "platform/system.h"

#include <optional>
#include <string>

namespace vant {

/// Lets what this process registers from now on hold for the current user only, through the system's own
/// redirection of the classes root (RegOverridePredefKey). Elsewhere than on Windows the class catalogue is
/// the user's anyway and nothing is to do.
VANT_PLATFORM_API HRESULT RegisterForUserOnly();

/// The module file that is registered for a class; nothing where the class is not registered or the
/// registration cannot be read.
VANT_PLATFORM_API std::optional<std::wstring> RegisteredModule(const std::wstring& classIdText);

} // namespace vant
