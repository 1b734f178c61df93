#pragma once

#include "host/procedure/TableReader.h"
#include "host/record/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vant::host {

/// The base of the readers of an engine's tables: numbers, times, truth values, and values of a parameter's
/// kind.
class QuantityReader : protected TableReader {
protected:
    using TableReader::TableReader;
    ~QuantityReader() = default;

    /// A value of the same kind as a parameter's `value`. All numbers are of one kind.
    std::optional<Value> SameKind(const toml::node& node, const std::string& what, const Value& value);

    std::optional<bool> Truth(const toml::table& table, std::string_view key);
    /// A finite number.
    std::optional<double> Number(const toml::table& table, std::string_view key);
    std::optional<double> RequiredNumber(const toml::table& table, std::string_view key, Position owner);
    /// The number at `key`; 0 if the key is missing or, with a mistake, if its value is not above 0.
    double AboveZero(const toml::table& table, std::string_view key);

    /// A number of seconds, or a text such as "250ms", in seconds.
    std::optional<double> Seconds(const toml::table& table, std::string_view key);
    /// As AboveZero, for seconds.
    double SecondsAboveZero(const toml::table& table, std::string_view key);
    /// Seconds from 0 to 10^9, in milliseconds.
    std::optional<std::int64_t> Time(const toml::table& table, std::string_view key);
    std::optional<std::int64_t> RequiredTime(const toml::table& table, std::string_view key, Position owner);

private:
    double CheckAboveZero(const toml::table& table, std::string_view key, std::optional<double> number);
};

} // namespace vant::host
