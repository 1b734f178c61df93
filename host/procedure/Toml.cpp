// The TOML library is compiled here, once. Its assertions, which some invalid texts fail, become exceptions.

#include <stdexcept>

namespace {

struct TomlAssertion : std::logic_error {
    using std::logic_error::logic_error;
};

constexpr void CheckTomlAssertion(bool holds) {
    if (!holds)
        throw TomlAssertion("an assertion of the TOML parser");
}

} // namespace

#define TOML_ASSERT(condition) CheckTomlAssertion(static_cast<bool>(condition))
#define TOML_ASSERT_ASSUME(condition) TOML_ASSERT(condition)
#define TOML_IMPLEMENTATION
#include "host/procedure/Toml.h"
#include "host/procedure/TomlCheck.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace vant::host {

namespace {

/// Whether the parser fails an assertion at some place in the text.
bool FailsAssertion(std::string_view toml) {
    try {
        std::ignore = toml::parse(toml);
    } catch (const TomlAssertion&) {
        return true;
    } catch (const toml::parse_error&) {
        // A mistake that it reports, as at the end of a text that has been cut off.
    }
    return false;
}

/// The line at which the parser fails an assertion: the last one of the shortest beginning that fails it.
Position PositionOfFailure(std::string_view toml) {
    std::vector<std::size_t> lineEnds;
    for (std::size_t i = 0; i < toml.size(); ++i) {
        if (toml[i] == '\n' || i + 1 == toml.size())
            lineEnds.push_back(i + 1);
    }
    const auto line = std::partition_point(lineEnds.begin(), lineEnds.end(), [toml](std::size_t end) {
        return !FailsAssertion(toml.substr(0, end));
    });
    return {static_cast<std::uint32_t>(line - lineEnds.begin()) + 1, 1};
}

/// The parser's words for a mistake in the words of other messages.
std::string Reworded(std::string_view mistake) {
    constexpr std::string_view beginning = "Error while parsing ";
    if (mistake.find("utf-8") != std::string_view::npos)
        return "a character that is not UTF-8: save the file as UTF-8";
    if (mistake.starts_with(beginning))
        return "invalid " + std::string(mistake.substr(beginning.size()));
    return std::string(mistake);
}

} // namespace

std::optional<toml::table> ParseToml(std::string_view toml, Diagnostics& found,
                                     const std::shared_ptr<const std::string>& file) {
    Diagnostics mistakes;
    if (CheckTomlText(toml, mistakes)) {
        try {
            return file ? toml::parse(toml, *file) : toml::parse(toml);
        } catch (const toml::parse_error& mistake) {
            mistakes.Error(PositionOf(mistake.source()), Reworded(mistake.description()));
        } catch (const TomlAssertion&) {
            mistakes.Error(PositionOfFailure(toml), "this line is not valid TOML");
        }
    }
    for (const Diagnostic& each : mistakes.Sorted())
        found.Error({each.position.line, each.position.column, file}, each.message);
    return std::nullopt;
}

Position PositionOf(const toml::source_region& region) {
    return {std::max(region.begin.line, 1U), std::max(region.begin.column, 1U), region.path};
}

Position PositionOf(const toml::key& key) {
    return PositionOf(key.source());
}

Position PositionOf(const toml::node& node) {
    return PositionOf(node.source());
}

} // namespace vant::host
