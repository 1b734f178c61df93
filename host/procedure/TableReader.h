#pragma once

#include "host/procedure/Procedure.h"
#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vant::host {

/// The kind of a value, as messages name it.
const char* KindOf(const toml::node& node);

/// The base of all readers of TOML tables. Each mistake is noted, and reading goes on.
class TableReader {
protected:
    explicit TableReader(Diagnostics& found) : m_found(found) {}
    ~TableReader() = default;

    void CheckKeys(const toml::table& table, const std::string& owner, const std::vector<std::string>& known);
    /// Whether the table has the key, or one that has been reported as a misspelling of it.
    bool HasOrMeans(const toml::table& table, std::string_view key) const;

    /// A mistake if the table has the key and not the one that it needs.
    void CheckNeeds(const toml::table& table, std::string_view key, std::string_view needed);

    /// Null, and a mistake, if the node is not a table; `what` names it.
    const toml::table* AsTable(const toml::node& node, const std::string& what);
    /// Null, and a mistake, if the node is not a list; `must` says what it must be.
    const toml::array* AsList(const toml::node& node, const std::string& must);

    /// The list under a key, of which `item` names one item, as in "a value". Null, and a mistake, if the
    /// node is not a list; an empty list is a mistake, too.
    const toml::array* ListOf(const toml::node& node, std::string_view key, const std::string& item);

    /// Visits the entries of a table, if there is one, in the order of the file.
    template <class Visit>
    void ForEach(const toml::table& owner, std::string_view name, Visit visit) {
        const toml::node* const node = owner.get(name);
        const toml::table* const table = node ? AsTable(*node, Quoted(name)) : nullptr;
        if (!table)
            return;
        std::vector<std::pair<const toml::key*, const toml::node*>> entries;
        for (const auto& [key, value] : *table)
            entries.emplace_back(&key, &value);
        std::sort(entries.begin(), entries.end(),
                  [](const auto& a, const auto& b) { return PositionOf(*a.first) < PositionOf(*b.first); });
        for (const auto& [key, value] : entries)
            visit(*key, *value);
    }

    std::optional<Located> Text(const toml::node& node, const std::string& what);
    std::optional<Located> OptionalText(const toml::table& table, std::string_view key);
    /// A missing key is reported at `owner`.
    std::optional<Located> RequiredText(const toml::table& table, std::string_view key, Position owner);
    /// As the two above, for names: an empty one is a mistake, too.
    std::optional<Located> OptionalName(const toml::table& table, std::string_view key);
    std::optional<Located> RequiredName(const toml::table& table, std::string_view key, Position owner);
    /// The names in a list, each not empty; `item` names one of them, as in "a command id". Empty if the key
    /// is absent.
    std::vector<Located> Names(const toml::table& table, std::string_view key, const std::string& item);
    /// A duration such as "250ms" or "5s", in milliseconds.
    std::optional<std::int64_t> Duration(const toml::node& node, std::string_view key);
    std::optional<std::int64_t> OptionalDuration(const toml::table& table, std::string_view key);
    /// A whole number from `least` to 2^31 - 1.
    std::optional<std::int64_t> OptionalCount(const toml::table& table, std::string_view key,
                                              std::int64_t least);
    bool OptionalTruth(const toml::table& table, std::string_view key);
    /// A string, a number, true or false; `what` names it.
    std::optional<Value> Scalar(const toml::node& node, const std::string& what);
    /// The value with which a comparison compares; `owner` is what would be left out without a limit.
    std::optional<Value> ComparedValue(const toml::node& node, Comparison comparison,
                                       const std::string& owner);

    Diagnostics& m_found;

private:
    std::set<std::pair<const toml::table*, std::string>>
        m_meant; ///< What unknown keys were probably meant to be.
};

} // namespace vant::host
