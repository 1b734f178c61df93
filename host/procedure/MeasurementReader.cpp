#include "host/procedure/MeasurementReader.h"

#include "host/procedure/TableReader.h"

#include <cmath>
#include <utility>

namespace vant::host {

namespace {

class MeasurementReader : private TableReader {
public:
    explicit MeasurementReader(Diagnostics& found) : TableReader(found) {}

    Measurement Read(const toml::key& name, const toml::node& node) {
        Measurement measurement{.position = PositionOf(name), .data = {}};
        const toml::table* const table = AsTable(node, "measurement " + Quoted(name.str()));
        if (!table)
            return measurement;
        CheckKeys(*table, "a measurement",
                  {"data", "units", "description", "is", "isNot", "below", "above", "atLeast", "atMost",
                   "oneOf", "like", "optional"});
        if (auto data = RequiredName(*table, "data", measurement.position))
            measurement.data = std::move(*data);
        if (const auto units = OptionalText(*table, "units"))
            measurement.units = units->text;
        if (const auto description = OptionalText(*table, "description"))
            measurement.description = description->text;
        measurement.optional = OptionalTruth(*table, "optional");
        ReadLimits(*table, measurement);
        return measurement;
    }

    void ReadLimits(const toml::table& table, Measurement& measurement) {
        for (const Comparison comparison : comparisons) {
            if (const toml::node* const node = table.get(NameOf(comparison)))
                ReadLimit(*node, comparison, measurement);
        }
        if (const toml::node* const node = table.get("oneOf"))
            ReadOneOf(*node, measurement);
        if (const auto like = OptionalText(table, "like"))
            measurement.like = like->text;
        CheckOrder(table, measurement);
    }

private:
    void ReadLimit(const toml::node& node, Comparison comparison, Measurement& measurement) {
        const std::string name = Quoted(NameOf(comparison));
        if (IsOrder(comparison) && !node.is_number())
            m_found.Error(PositionOf(node), name + " must be a number, not " + KindOf(node));
        else if (node.is_number() && !std::isfinite(node.value<double>().value_or(0)))
            m_found.Error(PositionOf(node),
                          name + " must be a finite number; leave it out if there is no limit");
        else if (auto value = Scalar(node, name))
            measurement.limits.push_back({comparison, std::move(*value)});
    }

    void ReadOneOf(const toml::node& node, Measurement& measurement) {
        const toml::array* const list = AsList(node, "'oneOf' must be a list of values");
        if (!list)
            return;
        if (list->empty())
            m_found.Error(PositionOf(node), "'oneOf' is empty: add a value, or leave the key out");
        for (const toml::node& each : *list) {
            if (auto value = Scalar(each, "a value of 'oneOf'"))
                measurement.oneOf.push_back(std::move(*value));
        }
    }

    /// No number can satisfy a lower limit above the upper one.
    void CheckOrder(const toml::table& table, const Measurement& measurement) {
        std::optional<double> lower;
        std::optional<double> upper;
        for (const auto& [comparison, value] : measurement.limits) {
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

Measurement ReadMeasurement(const toml::key& name, const toml::node& node, Diagnostics& found) {
    return MeasurementReader(found).Read(name, node);
}

const std::vector<std::string>& LimitKeys() {
    static const std::vector<std::string> keys = {"is",      "isNot",  "below", "above",
                                                  "atLeast", "atMost", "oneOf", "like"};
    return keys;
}

void ReadLimits(const toml::table& table, Measurement& measurement, Diagnostics& found) {
    MeasurementReader(found).ReadLimits(table, measurement);
}

} // namespace vant::host
