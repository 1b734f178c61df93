#pragma once

#include <string>
#include <string_view>

namespace vant::host {

/// A text as XML has it between tags or in quotes. Line ends and tabs are kept as references. Every character
/// that XML 1.0 excludes, and every byte that is not UTF-8, becomes U+FFFD.
std::string ToXml(std::string_view text);

} // namespace vant::host
