#include "framework/ReferenceExpansion.h"

#include "platform/ComException.h"

#include <algorithm>
#include <vector>

namespace vant {

namespace {

/// Text still to be searched. It is kept back to front, so that the next character is the last one: taking
/// from the front and inserting at the front then cost no more than the characters concerned.
class PendingText {
public:
    explicit PendingText(std::wstring_view text) : m_reversed(text.rbegin(), text.rend()) {}

    bool Empty() const { return m_reversed.empty(); }
    std::size_t Size() const { return m_reversed.size(); }

    bool StartsWith(std::wstring_view prefix) const {
        return prefix.size() <= m_reversed.size() &&
               std::equal(prefix.begin(), prefix.end(), m_reversed.rbegin());
    }
    /// Distance to the first `character` at or after `offset`; npos if there is none.
    std::size_t Find(wchar_t character, std::size_t offset) const {
        const auto from = m_reversed.rbegin() + static_cast<std::ptrdiff_t>(offset);
        const auto found = std::find(from, m_reversed.rend(), character);
        return found == m_reversed.rend() ? std::wstring::npos
                                          : static_cast<std::size_t>(found - m_reversed.rbegin());
    }
    void MoveTo(std::wstring& output, std::size_t count) {
        output.append(m_reversed.rbegin(), m_reversed.rbegin() + static_cast<std::ptrdiff_t>(count));
        Drop(count);
    }
    std::wstring Take(std::size_t count) {
        std::wstring taken;
        MoveTo(taken, count);
        return taken;
    }
    void Drop(std::size_t count) { m_reversed.resize(m_reversed.size() - count); }
    void Insert(std::wstring_view text) { m_reversed.append(text.rbegin(), text.rend()); }

private:
    std::wstring m_reversed;
};

/// Keeps account of the inserted values whose end may still lie ahead, the innermost last.
class NestingGuard {
public:
    /// How deep inside inserted values the text with `pending` characters to go begins; 0 in the text itself.
    std::size_t DepthAt(std::size_t pending) {
        while (!m_levels.empty() && m_levels.back().end >= pending)
            m_levels.pop_back();
        return m_levels.empty() ? 0 : m_levels.back().depth;
    }
    /// Notes a value of `length` characters inserted at that depth, before the last `pending` characters.
    void Insert(std::size_t length, std::size_t depth, std::size_t pending) {
        if (depth > 0)
            m_nestedCharacters += length;
        if (depth + 1 > maxReferenceDepth || m_nestedCharacters > maxNestedCharacters)
            throw CComException(E_FAIL);
        m_levels.push_back({pending, depth + 1});
    }

private:
    struct Level {
        std::size_t end; ///< characters pending once the value has been searched
        std::size_t depth;
    };
    std::vector<Level> m_levels;
    std::size_t m_nestedCharacters = 0;
};

} // namespace

std::wstring ExpandReferences(std::wstring_view text, std::wstring_view opening,
                              const ReferenceReader& read) {
    std::wstring output;
    PendingText pending(text);
    NestingGuard guard;
    while (!pending.Empty()) {
        const std::size_t plain = pending.Find(opening.front(), 0);
        if (plain == std::wstring::npos) {
            pending.MoveTo(output, pending.Size());
            break;
        }
        pending.MoveTo(output, plain);
        if (!pending.StartsWith(opening)) {
            pending.MoveTo(output, 1);
            continue;
        }
        const std::size_t closing = pending.Find(L')', opening.size());
        if (closing == std::wstring::npos) {
            pending.MoveTo(output, pending.Size());
            break;
        }
        const std::size_t depth = guard.DepthAt(pending.Size());
        pending.Drop(opening.size());
        const std::wstring name = pending.Take(closing - opening.size());
        pending.Drop(1);
        const CComBSTR value = read(name);
        guard.Insert(value.Text().size(), depth, pending.Size());
        pending.Insert(value.Text());
    }
    return output;
}

} // namespace vant
