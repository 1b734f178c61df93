#pragma once

#include "host/text/Suggestion.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace vant::host {

/// A place in a file; both count from 1, columns in characters.
struct Position {
    std::uint32_t line = 1;
    std::uint32_t column = 1;
    /// The file's name, if it is not the one that the messages are about but one that this one includes.
    std::shared_ptr<const std::string> file{};

    /// Places in the file itself come first, then those in other files, by name.
    friend bool operator<(const Position& a, const Position& b) noexcept {
        const std::string_view left = a.file ? std::string_view(*a.file) : std::string_view();
        const std::string_view right = b.file ? std::string_view(*b.file) : std::string_view();
        return std::tie(left, a.line, a.column) < std::tie(right, b.line, b.column);
    }
};

enum class Severity { Error, Warning };

/// A message about a place in a file.
struct Diagnostic {
    Position position;
    Severity severity = Severity::Error;
    std::string message;

    /// "FILE:LINE:COLUMN: error: MESSAGE" (or "warning"), with control characters written out. `file` is the
    /// file that the message is about, unless its position names another one.
    std::string Text(std::string_view file) const;
};

/// The messages about one file.
class Diagnostics {
public:
    /// So many messages are printed; the rest is counted.
    static constexpr std::size_t mostPrinted = 100;
    /// So many names are suggested: each one is looked for among all names of its kind.
    static constexpr std::size_t mostSuggestions = 20;

    void Error(Position position, std::string message);
    void Warning(Position position, std::string message);

    bool HasErrors() const noexcept { return m_errors != 0; }
    std::size_t Errors() const noexcept { return m_errors; }
    std::size_t Warnings() const noexcept { return m_all.size() - m_errors; }
    /// In the order of the file.
    std::vector<Diagnostic> Sorted() const;
    /// One line for each message, in the order of the file, up to `mostPrinted`; a last line counts the rest.
    std::string Print(std::string_view file) const;

    /// DidYouMean with names or with the keys of a map; an empty text after `mostSuggestions` calls.
    template <class Names>
    std::string Suggest(std::string_view written, const Names& known) {
        if (m_suggestions == mostSuggestions)
            return {};
        ++m_suggestions;
        std::vector<std::string> names;
        names.reserve(known.size());
        for (const auto& each : known) {
            if constexpr (requires { each.first; })
                names.push_back(each.first);
            else
                names.push_back(each);
        }
        return DidYouMean(written, names);
    }

private:
    std::vector<Diagnostic> m_all;
    std::size_t m_errors = 0;
    std::size_t m_suggestions = 0;
};

} // namespace vant::host
