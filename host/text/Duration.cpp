#include "host/text/Duration.h"

#include <charconv>
#include <cmath>
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

} // namespace vant::host
