#pragma once

#include "platform/Bstr.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace vant {

/// Gives the text that a reference's name stands for; throws where it cannot be read.
using ReferenceReader = std::function<CComBSTR(std::wstring_view name)>;

/// Inserted values are searched in turn, so a value may insert values. This many levels may stand inside one
/// another,
inline constexpr std::size_t maxReferenceDepth = 64;
/// and all values inserted inside values may hold this many characters together. A text's own references are
/// not limited in number.
inline constexpr std::size_t maxNestedCharacters = std::size_t{1} << 20;

/// Replaces every reference in `text`, `opening` NAME ")", by what `read` gives for NAME, from left to right.
/// The search goes on at the first character of the inserted value. Names are taken as they stand, to the
/// first ")". A reference that is not closed, and all that follows it, stays as it is. Takes time in
/// proportion to the text and the inserted values. Throws what `read` throws, and CComException(E_FAIL) once
/// one of the two limits above is passed, as a value that contains its own reference must.
std::wstring ExpandReferences(std::wstring_view text, std::wstring_view opening, const ReferenceReader& read);

} // namespace vant
