#pragma once

#include "platform/system.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace vant {

/// UTF-8 of a wide text, which is UTF-16 if wchar_t has two bytes, otherwise UTF-32. Embedded nulls
/// stay. An unpaired surrogate or a code above U+10FFFF becomes U+FFFD, so the result is
/// always well formed.
VANT_PLATFORM_API std::string ToUtf8(std::wstring_view text);

/// The wide text of UTF-8. Each byte that belongs to no well-formed sequence becomes U+FFFD.
VANT_PLATFORM_API std::wstring ToWide(std::string_view utf8);

/// A file name given in UTF-8.
VANT_PLATFORM_API std::filesystem::path PathFromUtf8(std::string_view utf8);

/// A file name in UTF-8, for messages.
VANT_PLATFORM_API std::string PathToUtf8(const std::filesystem::path& path);

} // namespace vant
