#include "host/procedure/TableReader.h"

#include "host/text/Duration.h"
#include "host/text/Suggestion.h"

#include <cmath>
#include <limits>

namespace vant::host {

const char* KindOf(const toml::node& node) {
    switch (node.type()) {
    case toml::node_type::table:
        return "a table";
    case toml::node_type::array:
        return "a list";
    case toml::node_type::string:
        return "a string";
    case toml::node_type::integer:
    case toml::node_type::floating_point:
        return "a number";
    case toml::node_type::boolean:
        return "true or false";
    default:
        return "a date or time";
    }
}

void TableReader::CheckKeys(const toml::table& table, const std::string& owner,
                            const std::vector<std::string>& known) {
    for (const auto& [key, node] : table) {
        if (std::find(known.begin(), known.end(), key.str()) != known.end())
            continue;
        const auto meant = NearestName(key.str(), known);
        m_found.Error(PositionOf(key), owner + " has no key " + Quoted(key.str()) + DidYouMean(meant));
        if (meant)
            m_meant.emplace(&table, *meant);
    }
}

bool TableReader::HasOrMeans(const toml::table& table, std::string_view key) const {
    return table.contains(key) || m_meant.contains({&table, std::string(key)});
}

void TableReader::CheckNeeds(const toml::table& table, std::string_view key, std::string_view needed) {
    if (table.contains(key) && !HasOrMeans(table, needed))
        m_found.Error(PositionOf(table.find(key)->first), Quoted(key) + " needs " + Quoted(needed));
}

const toml::table* TableReader::AsTable(const toml::node& node, const std::string& what) {
    const toml::table* const table = node.as_table();
    if (!table)
        m_found.Error(PositionOf(node), what + " must be a table, not " + KindOf(node));
    return table;
}

const toml::array* TableReader::AsList(const toml::node& node, const std::string& must) {
    const toml::array* const list = node.as_array();
    if (!list)
        m_found.Error(PositionOf(node), must + ", not " + KindOf(node));
    return list;
}

const toml::array* TableReader::ListOf(const toml::node& node, std::string_view key,
                                       const std::string& item) {
    const std::string items = item.substr(item.find(' ') + 1) + 's';
    const toml::array* const list = AsList(node, Quoted(key) + " must be a list of " + items);
    if (list && list->empty())
        m_found.Error(PositionOf(node), Quoted(key) + " is empty: add " + item + ", or leave the key out");
    return list;
}

std::optional<Located> TableReader::Text(const toml::node& node, const std::string& what) {
    if (const auto text = node.value_exact<std::string>())
        return Located{*text, PositionOf(node)};
    const bool quotable = !node.is_table() && !node.is_array();
    m_found.Error(PositionOf(node),
                  what + " must be a string, not " + KindOf(node) + (quotable ? ": write it in quotes" : ""));
    return std::nullopt;
}

std::optional<Located> TableReader::OptionalText(const toml::table& table, std::string_view key) {
    const toml::node* const node = table.get(key);
    return node ? Text(*node, Quoted(key)) : std::nullopt;
}

std::optional<Located> TableReader::RequiredText(const toml::table& table, std::string_view key,
                                                 Position owner) {
    if (!HasOrMeans(table, key))
        m_found.Error(owner, Quoted(key) + " is missing");
    return OptionalText(table, key);
}

std::optional<Located> TableReader::OptionalName(const toml::table& table, std::string_view key) {
    auto name = OptionalText(table, key);
    if (!name || !name->text.empty())
        return name;
    m_found.Error(name->position, Quoted(key) + " is empty");
    return std::nullopt;
}

std::optional<Located> TableReader::RequiredName(const toml::table& table, std::string_view key,
                                                 Position owner) {
    if (!HasOrMeans(table, key))
        m_found.Error(owner, Quoted(key) + " is missing");
    return OptionalName(table, key);
}

std::vector<Located> TableReader::Names(const toml::table& table, std::string_view key,
                                        const std::string& item) {
    std::vector<Located> names;
    const toml::node* const node = table.get(key);
    const toml::array* const list = node ? ListOf(*node, key, item) : nullptr;
    if (!list)
        return names;
    for (const toml::node& each : *list) {
        auto name = Text(each, item);
        if (name && name->text.empty())
            m_found.Error(name->position, item + " is empty");
        else if (name)
            names.push_back(std::move(*name));
    }
    return names;
}

std::optional<std::int64_t> TableReader::Duration(const toml::node& node, std::string_view key) {
    const auto text = node.value_exact<std::string>();
    const auto duration = text ? ParseDuration(*text) : std::nullopt;
    if (!duration)
        m_found.Error(PositionOf(node),
                      Quoted(key) +
                          " must be a duration such as \"250ms\", \"5s\", \"10min\" or \"1h\", not " +
                          (text ? "\"" + *text + "\"" : KindOf(node)));
    return duration;
}

std::optional<std::int64_t> TableReader::OptionalDuration(const toml::table& table, std::string_view key) {
    const toml::node* const node = table.get(key);
    return node ? Duration(*node, key) : std::nullopt;
}

std::optional<std::int64_t> TableReader::OptionalCount(const toml::table& table, std::string_view key,
                                                       std::int64_t least) {
    const toml::node* const node = table.get(key);
    if (!node)
        return std::nullopt;
    const auto count = node->value_exact<std::int64_t>();
    if (count && *count >= least && *count <= std::numeric_limits<std::int32_t>::max())
        return count;
    m_found.Error(PositionOf(*node), Quoted(key) + " must be a whole number from " + std::to_string(least));
    return std::nullopt;
}

bool TableReader::OptionalTruth(const toml::table& table, std::string_view key) {
    const toml::node* const node = table.get(key);
    if (!node)
        return false;
    if (const auto truth = node->value_exact<bool>())
        return *truth;
    m_found.Error(PositionOf(*node), Quoted(key) + " must be true or false, not " + KindOf(*node));
    return false;
}

std::optional<Value> TableReader::ComparedValue(const toml::node& node, Comparison comparison,
                                                const std::string& owner) {
    const std::string name = Quoted(NameOf(comparison));
    if (IsOrder(comparison) && !node.is_number())
        m_found.Error(PositionOf(node), name + " must be a number, not " + KindOf(node));
    else if (node.is_number() && !std::isfinite(node.value<double>().value_or(0)))
        m_found.Error(PositionOf(node),
                      name + " must be a finite number; leave " + owner + " out if there is no limit");
    else
        return Scalar(node, name);
    return std::nullopt;
}

std::optional<Value> TableReader::Scalar(const toml::node& node, const std::string& what) {
    if (const auto text = node.value_exact<std::string>())
        return *text;
    if (const auto number = node.value_exact<std::int64_t>()) {
        if (*number >= std::numeric_limits<std::int32_t>::min() &&
            *number <= std::numeric_limits<std::int32_t>::max())
            return *number;
        m_found.Error(PositionOf(node),
                      "a whole number must lie between -2147483648 and 2147483647; write it in quotes "
                      "to keep it as text");
        return std::nullopt;
    }
    if (const auto real = node.value_exact<double>())
        return *real;
    if (const auto truth = node.value_exact<bool>())
        return *truth;
    m_found.Error(PositionOf(node), what + " must be a string, a number, true or false, not " + KindOf(node));
    return std::nullopt;
}

} // namespace vant::host
