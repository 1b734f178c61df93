#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/procedure/QuantityReader.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// Reads the fault arrays of an engine whose parameters have been read.
class FaultReader : private QuantityReader {
public:
    /// The parameters must outlive the reader.
    FaultReader(Diagnostics& found, const std::map<std::string, EngineParameter>& parameters)
        : QuantityReader(found), m_parameters(parameters) {}

    /// A list of records.
    std::vector<FaultRecordDescription> Read(const toml::key& id, const toml::node& node);

private:
    void ReadRecord(const toml::node& node, FaultRecordDescription& record);
    /// A list of fields, whose order counts and whose names may come again.
    void ReadFields(const toml::node& node, FaultRecordDescription& record);
    void ReadField(const toml::node& node, FaultRecordDescription& record);
    void ReadPeriod(const toml::table& table, FaultRecordDescription& record);
    void ReadCondition(const toml::node& node, FaultRecordDescription& record);
    void ReadRelation(const toml::table& table, Position owner, const EngineParameter* parameter,
                      FaultCondition& condition);
    void ReadClearing(const toml::node& node, FaultRecordDescription& record);
    void CheckCanBeWritten(const toml::node& node, const Value& value, const Located& id,
                           const EngineParameter& parameter);

    /// The parameter that the key "parameter" names; null, and a mistake, if there is none.
    const EngineParameter* FindParameter(const toml::table& table, Position owner, Located& id);

    const std::map<std::string, EngineParameter>& m_parameters;
};

} // namespace vant::host
