#include "host/procedure/MeasurementReader.h"

#include "host/procedure/LimitsReader.h"
#include "host/procedure/TableReader.h"

#include <string>
#include <utility>
#include <vector>

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
        std::vector<std::string> keys = {"data", "units", "description", "optional"};
        keys.insert(keys.end(), limitKeys.begin(), limitKeys.end());
        CheckKeys(*table, "a measurement", keys);
        if (auto data = RequiredName(*table, "data", measurement.position))
            measurement.data = std::move(*data);
        if (const auto units = OptionalText(*table, "units"))
            measurement.units = units->text;
        if (const auto description = OptionalText(*table, "description"))
            measurement.description = description->text;
        measurement.optional = OptionalTruth(*table, "optional");
        measurement.limits = ReadLimits(*table, m_found);
        return measurement;
    }
};

} // namespace

Measurement ReadMeasurement(const toml::key& name, const toml::node& node, Diagnostics& found) {
    return MeasurementReader(found).Read(name, node);
}

} // namespace vant::host
