#include "host/procedure/LimitsReader.h"

#include "host/procedure/TableReader.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace vant::host {

namespace {

class LimitsReader : private TableReader {
public:
    explicit LimitsReader(Diagnostics& found) : TableReader(found) {}

    Limits Read(const toml::table& table) {
        Limits limits;
        for (const Comparison comparison : comparisons) {
            const toml::node* const node = table.get(NameOf(comparison));
            if (auto value = node ? ComparedValue(*node, comparison, "it") : std::nullopt)
                limits.comparisons.push_back({comparison, std::move(*value)});
        }
        if (const toml::node* const node = table.get("oneOf"))
            ReadOneOf(*node, limits);
        if (auto like = OptionalText(table, "like"))
            limits.like = std::move(like->text);
        CheckOrder(table, limits);
        return limits;
    }

private:
    void ReadOneOf(const toml::node& node, Limits& limits) {
        const toml::array* const list = ListOf(node, "oneOf", "a value");
        if (!list)
            return;
        for (const toml::node& each : *list) {
            if (auto value = Scalar(each, "a value of 'oneOf'"))
                limits.oneOf.push_back(std::move(*value));
        }
    }

    /// No number can satisfy a lower limit above the upper one.
    void CheckOrder(const toml::table& table, const Limits& limits) {
        std::optional<double> lower;
        std::optional<double> upper;
        for (const auto& [comparison, value] : limits.comparisons) {
            if (comparison == Comparison::AtLeast || comparison == Comparison::Above)
                lower = std::max(lower.value_or(-HUGE_VAL), NumberIn(value).value_or(0));
            else if (comparison == Comparison::AtMost || comparison == Comparison::Below)
                upper = std::min(upper.value_or(HUGE_VAL), NumberIn(value).value_or(0));
        }
        if (!lower || !upper || *lower <= *upper)
            return;
        const char* const key = table.contains("atMost") ? "atMost" : "below";
        m_found.Error(PositionOf(*table.get(key)), "the upper limit is less than the lower one");
    }
};

} // namespace

Limits ReadLimits(const toml::table& table, Diagnostics& found) {
    return LimitsReader(found).Read(table);
}

} // namespace vant::host
