#pragma once

#include "platform/Bstr.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace vant {

/// Returns the text for the name in a reference. Throws if it cannot be read.
using ReferenceReader = std::function<CComBSTR(std::wstring_view name)>;

/// An inserted value is searched for references, too. So many levels of values may be nested.
inline constexpr std::size_t maxReferenceDepth = 64;
/// The number of characters of all nested values together. The number of references in the text itself is not
/// limited.
inline constexpr std::size_t maxNestedCharacters = std::size_t{1} << 20;

/// Replaces every reference in `text`, which is `opening` NAME ")", by `read(NAME)`, from left to right. The
/// search continues at the first character of the inserted value. NAME ends at the first ")". A reference
/// that is not closed stays unchanged, with everything after it. The time is proportional to the text and the
/// inserted values. Throws what `read` throws, and CComException(E_FAIL) if a limit above is exceeded, which
/// ends a value that contains itself.
std::wstring ExpandReferences(std::wstring_view text, std::wstring_view opening, const ReferenceReader& read);

} // namespace vant
