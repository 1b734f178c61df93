#pragma once

#include "host/text/Diagnostic.h"

#include <string_view>

namespace vant::host {

/// Checks a text for mistakes in TOML's syntax that the parser does not report well, or at all: a wrong
/// encoding, characters beyond ASCII outside strings and comments, brackets and quotes that are never closed,
/// and nesting beyond the limits below. Returns whether it found nothing; otherwise the first mistake is in
/// `found`.
bool CheckTomlText(std::string_view toml, Diagnostics& found);

/// Brackets and braces inside one another.
inline constexpr std::size_t deepestNesting = 64;
/// Parts of a dotted name.
inline constexpr std::size_t mostNameParts = 32;

} // namespace vant::host
