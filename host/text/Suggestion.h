#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vant::host {

/// The name that `written` was probably meant to be: the nearest of `names`. A wrong, missing, surplus or
/// swapped letter counts as one mistake, a wrong case as none. Nothing if even the nearest name has more than
/// one mistake in three letters, or for texts of more than 64 bytes. The first of several equally near names.
std::optional<std::string> NearestName(std::string_view written, std::span<const std::string> names);

/// " (did you mean 'NAME'?)" with the nearest name, the end of an error message; otherwise an empty text.
std::string DidYouMean(std::string_view written, std::span<const std::string> names);
/// The same for a name that has been found already.
std::string DidYouMean(const std::optional<std::string>& name);

} // namespace vant::host
