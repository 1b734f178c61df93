#include "host/text/Duration.h"

#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <system_error>
#include <utility>

namespace vant::host {

std::optional<std::int64_t> ParseDuration(std::string_view text) {
    constexpr std::pair<std::string_view, double> units[] = {
        {"ms", 1}, {"s", 1000}, {"min", 60000}, {"h", 3600000}};
    double number = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (code != std::errc())
        return std::nullopt;
    const std::string_view written = text.substr(static_cast<std::size_t>(end - text.data()));
    for (const auto& [unit, milliseconds] : units) {
        const double duration = number * milliseconds;
        if (written == unit && duration >= 0 && duration <= static_cast<double>(longestDuration))
            return std::llround(duration);
    }
    return std::nullopt;
}

std::string FormatTime(std::int64_t milliseconds) {
    const std::int64_t seconds = milliseconds / 1000;
    const std::int64_t minutes = seconds / 60;
    std::string text = minutes < 60 ? fmt::format("{}:{:02}", minutes, seconds % 60)
                                    : fmt::format("{}:{:02}:{:02}", minutes / 60, minutes % 60, seconds % 60);
    if (milliseconds % 1000 != 0)
        text += fmt::format(".{:03}", milliseconds % 1000);
    return text;
}

std::string FormatDuration(std::int64_t milliseconds) {
    constexpr std::pair<std::int64_t, const char*> units[] = {{3'600'000, "h"}, {60'000, "min"}};
    for (const auto& [length, unit] : units) {
        if (milliseconds >= length && milliseconds % length == 0)
            return fmt::format("{} {}", milliseconds / length, unit);
    }
    if (milliseconds < 1000)
        return fmt::format("{} ms", milliseconds);
    return fmt::format("{} s", static_cast<double>(milliseconds) / 1000);
}

} // namespace vant::host
