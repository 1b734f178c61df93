#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vant::host {

/// A text with its control characters written out, as in "\n", "\t" or "\x1B", so that it keeps to its line
/// and controls no terminal. Takes UTF-8; everything else stays.
std::string Printable(std::string_view utf8);

/// A text in single quotes, as messages name things.
std::string Quoted(std::string_view text);

/// The characters of a UTF-8 text, for columns.
std::size_t WidthOf(std::string_view utf8);

} // namespace vant::host
