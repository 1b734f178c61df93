#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vant::host {

/// The longest duration, in milliseconds: some thirty years.
inline constexpr std::int64_t longestDuration = 1'000'000'000'000;

/// A duration such as "250ms", "1.5s", "10min" or "1h", in whole milliseconds; nothing for any other text,
/// and for one that is negative or longer than `longestDuration`.
std::optional<std::int64_t> ParseDuration(std::string_view text);

/// A time since the beginning as a clock shows it: "0:05", "1:30.250", "1:02:03".
std::string FormatTime(std::int64_t milliseconds);
/// A duration with the unit that fits: "250 ms", "1.5 s", "10 min", "2 h".
std::string FormatDuration(std::int64_t milliseconds);

} // namespace vant::host
