#include "host/text/Suggestion.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace vant::host {

namespace {

constexpr std::size_t longest = 64;

char LowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// Number of mistakes between two texts of at most `longest` bytes.
std::size_t Distance(std::string_view left, std::string_view right) {
    using Row = std::array<std::size_t, longest + 1>;
    Row beforeLast{};
    Row last{};
    Row current{};
    for (std::size_t j = 0; j <= right.size(); ++j)
        last[j] = j;
    for (std::size_t i = 1; i <= left.size(); ++i) {
        current[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const char a = LowerCase(left[i - 1]);
            const char b = LowerCase(right[j - 1]);
            current[j] = std::min({last[j] + 1, current[j - 1] + 1, last[j - 1] + (a == b ? 0 : 1)});
            if (i > 1 && j > 1 && a == LowerCase(right[j - 2]) && b == LowerCase(left[i - 2]))
                current[j] = std::min(current[j], beforeLast[j - 2] + 1);
        }
        beforeLast = last;
        last = current;
    }
    return last[right.size()];
}

} // namespace

std::optional<std::string> NearestName(std::string_view written, std::span<const std::string> names) {
    if (written.size() > longest)
        return std::nullopt;
    const std::string* nearest = nullptr;
    std::size_t fewest = std::max<std::size_t>(1, written.size() / 3) + 1;
    for (const std::string& name : names) {
        if (name.size() > longest)
            continue;
        const std::size_t mistakes = Distance(written, name);
        // A text that shares nothing with the name is not a misspelling of it.
        if (mistakes < fewest && mistakes < std::max(written.size(), name.size())) {
            fewest = mistakes;
            nearest = &name;
        }
    }
    return nearest ? std::optional(*nearest) : std::nullopt;
}

std::string DidYouMean(const std::optional<std::string>& name) {
    return name ? " (did you mean '" + *name + "'?)" : std::string();
}

std::string DidYouMean(std::string_view written, std::span<const std::string> names) {
    return DidYouMean(NearestName(written, names));
}

} // namespace vant::host
