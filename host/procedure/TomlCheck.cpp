#include "host/procedure/TomlCheck.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

struct Mistake {
    Position position;
    std::string message;
};

/// Goes through a text character by character. Throws Mistake.
class Scanner {
public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    void Scan() {
        CheckEncoding();
        while (!AtEnd()) {
            const char next = m_text[m_at];
            if (next == '#')
                SkipComment();
            else if (next == '"' || next == '\'')
                SkipString(next);
            else
                TakeCharacter(next);
        }
        if (!m_open.empty())
            throw Mistake{m_open.back().position, Opening() + " is never closed"};
    }

private:
    struct Bracket {
        char opened;
        Position position;
    };

    bool AtEnd() const noexcept { return m_at >= m_text.size(); }
    bool StartsWith(std::string_view text) const noexcept { return m_text.substr(m_at).starts_with(text); }
    std::string Opening() const { return std::string("this '") + m_open.back().opened + "'"; }

    /// One byte further; bytes that continue a character have no column of their own.
    void Advance() noexcept {
        const auto byte = static_cast<unsigned char>(m_text[m_at++]);
        if (byte == '\n') {
            ++m_position.line;
            m_position.column = 1;
        } else if ((byte & 0xC0) != 0x80) {
            ++m_position.column;
        }
    }
    void Advance(std::size_t count) noexcept {
        for (; count > 0; --count)
            Advance();
    }

    void CheckEncoding() {
        if (StartsWith("\xFF\xFE") || StartsWith("\xFE\xFF"))
            throw Mistake{{}, "the file is UTF-16: save it as UTF-8"};
        if (const std::size_t null = m_text.substr(0, 4).find('\0'); null != std::string_view::npos)
            throw Mistake{{}, "the file is not a text in UTF-8"};
        if (StartsWith("\xEF\xBB\xBF"))
            m_text.remove_prefix(3); // a byte order mark
    }

    void SkipComment() noexcept {
        while (!AtEnd() && m_text[m_at] != '\n')
            Advance();
    }

    void SkipString(char quote) {
        const Position begin = m_position;
        constexpr std::string_view mayPrecede = " \t\r\n=[{,";
        const char before = m_at > 0 ? m_text[m_at - 1] : '\n';
        const bool isPartOfName = before == '.' && !m_inValue;
        if (!isPartOfName && mayPrecede.find(before) == std::string_view::npos)
            throw Mistake{begin, "a quote in the middle of a name or value"};
        const std::string three(3, quote);
        const bool manyLines = StartsWith(three);
        Advance(manyLines ? 3 : 1);
        while (!AtEnd() && (manyLines || m_text[m_at] != '\n')) {
            if (m_text[m_at] == '\\' && quote == '"') {
                Advance();
                if (!AtEnd() && (manyLines || m_text[m_at] != '\n'))
                    Advance();
            } else if (manyLines ? StartsWith(three) : m_text[m_at] == quote) {
                Advance(manyLines ? 3 : 1);
                // Up to two quotes before the closing three belong to the string.
                for (int i = 0; manyLines && i < 2 && !AtEnd() && m_text[m_at] == quote; ++i)
                    Advance();
                return;
            } else {
                Advance();
            }
        }
        throw Mistake{begin, "the string that begins here has no closing " +
                                 (manyLines ? three : std::string(1, quote))};
    }

    void TakeCharacter(char next) {
        if (static_cast<unsigned char>(next) >= 0x80)
            RefuseCharacter();
        switch (next) {
        case '[':
        case '{':
            m_open.push_back({next, m_position});
            if (m_open.size() > deepestNesting)
                throw Mistake{m_position,
                              "more than " + std::to_string(deepestNesting) + " brackets inside one another"};
            m_parts = 1;
            m_inValue = m_inValue && next == '['; // A header is none, and an inline table begins with a name.
            break;
        case ']':
        case '}':
            Close(next);
            m_inValue = true;
            break;
        case '.':
            if (++m_parts > mostNameParts)
                throw Mistake{m_position, "a name of more than " + std::to_string(mostNameParts) + " parts"};
            break;
        case '\n':
            if (!m_open.empty() && m_open.back().opened == '{')
                throw Mistake{m_open.back().position, Opening() + " is not closed on its line"};
            m_parts = 1;
            m_inValue = m_inValue && !m_open.empty();
            break;
        case '=':
            m_parts = 1;
            m_inValue = true;
            break;
        case ',':
            m_parts = 1;
            m_inValue = m_open.empty() || m_open.back().opened == '[';
            break;
        default:
            break;
        }
        Advance();
    }

    void Close(char closing) {
        const char opening = closing == ']' ? '[' : '{';
        if (m_open.empty())
            throw Mistake{m_position, std::string("this '") + closing + "' closes nothing"};
        if (m_open.back().opened != opening)
            throw Mistake{m_open.back().position, Opening() + " is closed by '" + closing + "'"};
        m_open.pop_back();
    }

    [[noreturn]] void RefuseCharacter() const {
        constexpr std::string_view quotes[] = {"\u201C", "\u201D", "\u201E", "\u2018", "\u2019", "\u201A"};
        for (const std::string_view quote : quotes) {
            if (StartsWith(quote))
                throw Mistake{m_position, "a typographic quote: write \" or '"};
        }
        throw Mistake{m_position,
                      "a character beyond ASCII outside quotes: write \" before and after the text"};
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    Position m_position;
    std::vector<Bracket> m_open;
    std::size_t m_parts = 1; ///< Of the dotted name at hand.
    bool m_inValue = false;  ///< Whether a value is expected or has begun, not a name.
};

} // namespace

bool CheckTomlText(std::string_view toml, Diagnostics& found) {
    try {
        Scanner(toml).Scan();
        return true;
    } catch (Mistake& mistake) {
        found.Error(mistake.position, std::move(mistake.message));
        return false;
    }
}

} // namespace vant::host
