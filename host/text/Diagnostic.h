#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// A place in a file; both count from 1, columns in characters.
struct Position {
    std::uint32_t line = 1;
    std::uint32_t column = 1;

    friend bool operator<(const Position& a, const Position& b) noexcept {
        return a.line != b.line ? a.line < b.line : a.column < b.column;
    }
};

enum class Severity { Error, Warning };

/// Something to say about a procedure file.
struct Diagnostic {
    Position position;
    Severity severity = Severity::Error;
    std::string message;

    /// "FILE:LINE:COLUMN: error: MESSAGE" (or "warning").
    std::string Text(std::string_view file) const;
};

/// What is to be said about one file.
class Diagnostics {
public:
    void Error(Position position, std::string message);
    void Warning(Position position, std::string message);

    bool HasErrors() const noexcept { return m_hasErrors; }
    /// In the order of the file.
    std::vector<Diagnostic> Sorted() const;

private:
    std::vector<Diagnostic> m_all;
    bool m_hasErrors = false;
};

} // namespace vant::host
