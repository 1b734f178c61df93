#pragma once

#include "platform/system.h"

#include <string_view>

namespace vant {

/// Gives the calling thread a name under which debuggers and system tools show it, if the system can.
/// Linux keeps the first 15 bytes of its UTF-8.
VANT_PLATFORM_API void NameThisThread(std::wstring_view name) noexcept;

} // namespace vant
