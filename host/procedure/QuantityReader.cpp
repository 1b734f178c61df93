#include "host/procedure/QuantityReader.h"

#include "host/text/Duration.h"

#include <cmath>

namespace vant::host {

namespace {

constexpr double longestSeconds = 1e9;

} // namespace

std::optional<Value> QuantityReader::SameKind(const toml::node& node, const std::string& what,
                                              const Value& value) {
    auto read = Scalar(node, what);
    if (!read)
        return std::nullopt;
    const bool same = NumberIn(value) ? NumberIn(*read).has_value() : read->index() == value.index();
    if (!same) {
        m_found.Error(PositionOf(node),
                      what + " must be of the same kind as the parameter's 'value', not " + KindOf(node));
        return std::nullopt;
    }
    return read;
}

std::optional<bool> QuantityReader::Truth(const toml::table& table, std::string_view key) {
    const toml::node* const node = table.get(key);
    if (!node)
        return std::nullopt;
    const auto truth = node->value_exact<bool>();
    if (!truth)
        m_found.Error(PositionOf(*node), Quoted(key) + " must be true or false, not " + KindOf(*node));
    return truth;
}

std::optional<double> QuantityReader::Number(const toml::table& table, std::string_view key) {
    const toml::node* const node = table.get(key);
    if (!node)
        return std::nullopt;
    const auto number = node->is_number() ? node->value<double>() : std::nullopt;
    if (!number || !std::isfinite(*number)) {
        m_found.Error(PositionOf(*node), Quoted(key) + " must be a number, not " +
                                             (number ? "nan or an infinite one" : KindOf(*node)));
        return std::nullopt;
    }
    return number;
}

std::optional<double> QuantityReader::RequiredNumber(const toml::table& table, std::string_view key,
                                                     Position owner) {
    if (!table.contains(key))
        m_found.Error(owner, Quoted(key) + " is missing");
    return Number(table, key);
}

double QuantityReader::AboveZero(const toml::table& table, std::string_view key) {
    return CheckAboveZero(table, key, Number(table, key));
}

std::optional<double> QuantityReader::Seconds(const toml::table& table, std::string_view key) {
    const toml::node* const node = table.get(key);
    if (!node || node->is_number())
        return Number(table, key);
    const auto text = node->value_exact<std::string>();
    if (const auto milliseconds = text ? ParseDuration(*text) : std::nullopt)
        return static_cast<double>(*milliseconds) / 1000;
    m_found.Error(PositionOf(*node),
                  Quoted(key) +
                      " must be a number of seconds, or a text such as '250ms', '5s', '10min' or "
                      "'1h', not " +
                      (text ? Quoted(*text) : KindOf(*node)));
    return std::nullopt;
}

double QuantityReader::SecondsAboveZero(const toml::table& table, std::string_view key) {
    return CheckAboveZero(table, key, Seconds(table, key));
}

std::optional<std::int64_t> QuantityReader::Time(const toml::table& table, std::string_view key) {
    const auto seconds = Seconds(table, key);
    if (!seconds)
        return std::nullopt;
    if (*seconds < 0 || *seconds > longestSeconds) {
        m_found.Error(PositionOf(*table.get(key)),
                      Quoted(key) + " must lie between 0 and 1000000000 seconds");
        return std::nullopt;
    }
    return std::llround(*seconds * 1000);
}

std::optional<std::int64_t> QuantityReader::RequiredTime(const toml::table& table, std::string_view key,
                                                         Position owner) {
    if (!table.contains(key))
        m_found.Error(owner, Quoted(key) + " is missing");
    return Time(table, key);
}

double QuantityReader::CheckAboveZero(const toml::table& table, std::string_view key,
                                      std::optional<double> number) {
    if (!number || *number > 0)
        return number.value_or(0);
    m_found.Error(PositionOf(*table.get(key)), Quoted(key) + " must be above 0");
    return 0;
}

} // namespace vant::host
