#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vant::host {

/// The one of `names` that `written` was probably meant to be: the nearest, counting a wrong, missing,
/// surplus or swapped letter as one mistake and a wrong case as none. Nothing where even the nearest has more
/// than one mistake in three letters; nothing for texts of more than 64 bytes. Of several equally near, the
/// first.
std::optional<std::string> NearestName(std::string_view written, std::span<const std::string> names);

/// " (did you mean 'NAME'?)" with the nearest name, else an empty text: the end of an error message.
std::string DidYouMean(std::string_view written, std::span<const std::string> names);
/// The same for a name that is already known to be meant.
std::string DidYouMean(const std::optional<std::string>& name);

} // namespace vant::host
