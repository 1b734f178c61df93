#include "module/registration/Script.h"

#include "platform/ComException.h"

#include <algorithm>
#include <cstddef>

namespace vant {

namespace {

/// Far beyond any real script; a longer nesting is refused instead of exhausting the stack.
constexpr int maxNesting = 64;

struct Token {
    enum class Kind { End, OpenBrace, CloseBrace, Equals, Word, Quoted };
    Kind kind = Kind::End;
    std::wstring text; // of a Word or Quoted
    std::size_t line = 1;
    std::size_t column = 1;

    bool IsWord(std::wstring_view word) const { return kind == Kind::Word && text == word; }
    bool IsName() const {
        return (kind == Kind::Word || kind == Kind::Quoted) && !text.empty() &&
               text.find(L'\0') == std::wstring::npos;
    }
};

[[noreturn]] void Malformed(const Token& at, const wchar_t* expected) {
    OutputDebugStringW((L"VantCommands: registration script, line " + std::to_wstring(at.line) +
                        L", column " + std::to_wstring(at.column) + L": " + expected + L"\n")
                           .c_str());
    throw CComException(scriptMalformed);
}

void Check(HRESULT code) {
    if (FAILED(code))
        throw CComException(code);
}

class Lexer {
public:
    explicit Lexer(std::string_view script) : m_rest(script) {}

    Token Next() {
        SkipBlanks();
        Token token;
        token.line = m_line;
        token.column = m_column;
        if (m_rest.empty())
            return token;
        if (m_rest.front() == '\'') {
            token.kind = Token::Kind::Quoted;
            TakeQuoted(token);
            return token;
        }
        while (!m_rest.empty() && !IsBlank(m_rest.front()))
            token.text += Take();
        token.kind = KindOf(token.text);
        return token;
    }

private:
    static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    /// Braces and equals signs count only if they stand alone; class identifiers hold braces.
    static Token::Kind KindOf(std::wstring_view word) {
        return word == L"{"   ? Token::Kind::OpenBrace
               : word == L"}" ? Token::Kind::CloseBrace
               : word == L"=" ? Token::Kind::Equals
                              : Token::Kind::Word;
    }

    void SkipBlanks() {
        while (!m_rest.empty() && IsBlank(m_rest.front()))
            Take();
    }
    void TakeQuoted(Token& token) {
        Take();
        for (;;) {
            if (m_rest.empty())
                Malformed(token, L"this text has no closing quote");
            const wchar_t c = Take();
            if (c == L'\'') {
                if (m_rest.empty() || m_rest.front() != '\'')
                    return;
                Take();
            }
            token.text += c;
        }
    }
    wchar_t Take() {
        const char c = m_rest.front();
        m_rest.remove_prefix(1);
        if (c == '\n') {
            ++m_line;
            m_column = 1;
        } else {
            ++m_column;
        }
        return static_cast<wchar_t>(static_cast<unsigned char>(c));
    }

    std::string_view m_rest;
    std::size_t m_line = 1;
    std::size_t m_column = 1;
};

/// Parses and executes in one pass, so that what precedes a malformed place has been done.
class Interpreter {
public:
    Interpreter(std::string_view script, std::wstring_view modulePath, ScriptMode mode, KeyStore& store)
        : m_lexer(script), m_modulePath(modulePath), m_registering(mode == ScriptMode::Register),
          m_store(store) {
        Advance();
    }

    void Run() {
        do {
            if (!m_token.IsWord(L"HKCR"))
                Malformed(m_token, L"the root key HKCR must stand here");
            Advance();
            RunItems(L"", 1, false);
        } while (m_token.kind != Token::Kind::End);
    }

private:
    void Advance() { m_token = m_lexer.Next(); }

    /// The items between a key's braces. `removed`: the key is already gone with all below it; only the form
    /// counts.
    void RunItems(const std::wstring& path, int depth, bool removed) {
        if (m_token.kind != Token::Kind::OpenBrace)
            Malformed(m_token, L"an opening brace must stand here");
        if (depth > maxNesting)
            Malformed(m_token, L"keys are nested too deeply");
        Advance();
        while (m_token.kind != Token::Kind::CloseBrace) {
            if (m_token.IsWord(L"val"))
                RunValue(path, removed);
            else
                RunKey(path, depth, removed);
        }
        Advance();
    }

    void RunValue(const std::wstring& path, bool removed) {
        const Token value = m_token;
        if (path.empty())
            Malformed(value, L"the root key takes no values");
        Advance();
        const std::wstring name = TakeName();
        if (m_token.kind != Token::Kind::Equals)
            Malformed(m_token, L"'= s' and a text must stand here");
        const std::wstring text = TakeText();
        if (m_registering)
            Check(m_store.SetValue(path, name, text));
        else if (!removed)
            Check(m_store.DeleteValue(path, name));
    }

    void RunKey(const std::wstring& parent, int depth, bool removed) {
        const bool keep = m_token.IsWord(L"NoRemove");
        const bool force = m_token.IsWord(L"ForceRemove");
        if (keep || force)
            Advance();
        // Such a name would reach another key than its own.
        if (m_token.text.find(L'\\') != std::wstring::npos)
            Malformed(m_token, L"a key's name has no backslash");
        const std::wstring name = TakeName();
        const std::wstring path = parent.empty() ? name : parent + L'\\' + name;
        const bool hasText = m_token.kind == Token::Kind::Equals;
        const std::wstring text = hasText ? TakeText() : std::wstring();
        if (m_registering) {
            if (force)
                Check(m_store.DeleteTree(path));
            Check(m_store.CreateKey(path));
            if (hasText)
                Check(m_store.SetValue(path, L"", text));
        } else if (force && !removed) {
            Check(m_store.DeleteTree(path));
            removed = true;
        }
        if (m_token.kind == Token::Kind::OpenBrace)
            RunItems(path, depth + 1, removed);
        if (!m_registering && !removed && !keep)
            Check(m_store.DeleteKey(path));
    }

    std::wstring TakeName() {
        if (!m_token.IsName())
            Malformed(m_token, L"a name must stand here");
        std::wstring name = std::move(m_token.text);
        Advance();
        return name;
    }

    /// What follows an equals sign: the type `s` and a quoted text.
    std::wstring TakeText() {
        Advance();
        if (!m_token.IsWord(L"s"))
            Malformed(m_token, L"the type s must stand here");
        Advance();
        if (m_token.kind != Token::Kind::Quoted)
            Malformed(m_token, L"a text in quotes must stand here");
        std::wstring text = WithModulePath(m_token.text);
        Advance();
        return text;
    }

    std::wstring WithModulePath(std::wstring_view text) const {
        static constexpr std::wstring_view placeholder = L"%MODULE%";
        std::wstring result;
        for (std::size_t found = 0; (found = text.find(placeholder)) != std::wstring_view::npos;
             text.remove_prefix(found + placeholder.size()))
            result.append(text.substr(0, found)).append(m_modulePath);
        return result.append(text);
    }

    Lexer m_lexer;
    Token m_token;
    std::wstring_view m_modulePath;
    bool m_registering;
    KeyStore& m_store;
};

} // namespace

HRESULT RunScript(std::string_view script, std::wstring_view modulePath, ScriptMode mode, KeyStore& store) {
    try {
        Interpreter(script, modulePath, mode, store).Run();
        return S_OK;
    } catch (const CComException& failure) {
        return failure.Code();
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

} // namespace vant
