#include "host/procedure/FaultReader.h"

#include <cmath>
#include <utility>

namespace vant::host {

namespace {

using Relation = FaultCondition::Relation;

constexpr std::pair<std::string_view, Relation> relations[] = {{"is", Relation::Is},
                                                               {"above", Relation::Above},
                                                               {"atLeast", Relation::AtLeast},
                                                               {"below", Relation::Below},
                                                               {"atMost", Relation::AtMost}};

} // namespace

std::vector<FaultRecordDescription> FaultReader::Read(const toml::key& id, const toml::node& node) {
    std::vector<FaultRecordDescription> records;
    const toml::array* const list =
        AsList(node, "fault array " + Quoted(id.str()) + " must be a list of records");
    if (!list)
        return records;
    for (const toml::node& each : *list)
        ReadRecord(each, records.emplace_back());
    return records;
}

void FaultReader::ReadRecord(const toml::node& node, FaultRecordDescription& record) {
    const toml::table* const table = AsTable(node, "a fault record");
    if (!table)
        return;
    CheckKeys(*table, "a fault record", {"fields", "from", "until", "when", "clearedBy"});
    if (const toml::node* const fields = table->get("fields"))
        ReadFields(*fields, record);
    else
        m_found.Error(PositionOf(node), "'fields' is missing");
    ReadPeriod(*table, record);
    if (const toml::node* const when = table->get("when"))
        ReadCondition(*when, record);
    if (const toml::node* const clearing = table->get("clearedBy"))
        ReadClearing(*clearing, record);
}

void FaultReader::ReadFields(const toml::node& node, FaultRecordDescription& record) {
    const toml::array* const list = AsList(node, "'fields' must be a list of fields");
    if (!list)
        return;
    for (const toml::node& each : *list)
        ReadField(each, record);
}

void FaultReader::ReadField(const toml::node& node, FaultRecordDescription& record) {
    const toml::table* const table = AsTable(node, "a field");
    if (!table)
        return;
    CheckKeys(*table, "a field", {"name", "value"});
    const auto name = RequiredText(*table, "name", PositionOf(node));
    const auto value = RequiredText(*table, "value", PositionOf(node));
    if (name && value)
        record.fields.push_back({name->text, value->text});
}

void FaultReader::ReadPeriod(const toml::table& table, FaultRecordDescription& record) {
    record.from = Time(table, "from").value_or(0);
    record.until = Time(table, "until");
    if (record.until && *record.until <= record.from)
        m_found.Error(PositionOf(*table.get("until")),
                      std::string("'until' must be later than ") +
                          (table.contains("from") ? "'from'" : "the beginning"));
}

void FaultReader::ReadCondition(const toml::node& node, FaultRecordDescription& record) {
    const toml::table* const table = AsTable(node, "'when'");
    if (!table)
        return;
    CheckKeys(*table, "the condition of a fault",
              {"parameter", "is", "above", "atLeast", "below", "atMost", "for", "latched"});
    FaultCondition& condition = record.when.emplace();
    Located id;
    const EngineParameter* const parameter = FindParameter(*table, PositionOf(node), id);
    condition.parameter = id.text;
    if (parameter && parameter->behaviour && !parameter->behaviour->sequence.empty())
        m_found.Error(id.position,
                      Quoted(id.text) + " changes when it is read, so no fault can watch it: add 'every'");
    ReadRelation(*table, PositionOf(node), parameter, condition);
    condition.holdsFor = Time(*table, "for").value_or(0);
    condition.latched = Truth(*table, "latched").value_or(true);
}

void FaultReader::ReadRelation(const toml::table& table, Position owner, const EngineParameter* parameter,
                               FaultCondition& condition) {
    int count = 0;
    for (const auto& [key, relation] : relations) {
        const toml::node* const node = table.get(key);
        if (!node)
            continue;
        ++count;
        condition.relation = relation;
        if (relation != Relation::Is) {
            condition.value = Number(table, key).value_or(0);
            if (parameter && !NumberIn(parameter->value))
                m_found.Error(PositionOf(*node), "the value of the parameter is not a number: use 'is'");
        } else if (parameter) {
            condition.value = SameKind(*node, "'is'", parameter->value).value_or(Value());
        }
    }
    if (count == 0)
        m_found.Error(owner, "a comparison is missing: 'is', 'above', 'atLeast', 'below' or 'atMost'");
    else if (count > 1)
        m_found.Error(owner, "the condition of a fault has one comparison");
}

void FaultReader::ReadClearing(const toml::node& node, FaultRecordDescription& record) {
    const toml::table* const table = AsTable(node, "'clearedBy'");
    if (!table)
        return;
    CheckKeys(*table, "'clearedBy'", {"parameter", "is"});
    Located id;
    const EngineParameter* const parameter = FindParameter(*table, PositionOf(node), id);
    const toml::node* const is = table->get("is");
    if (!is)
        m_found.Error(PositionOf(node), "'is' is missing");
    if (!is || !parameter)
        return;
    if (auto value = SameKind(*is, "'is'", parameter->value)) {
        CheckCanBeWritten(*is, *value, id, *parameter);
        record.clearedBy = FaultClearing{std::move(id.text), std::move(*value)};
    }
}

void FaultReader::CheckCanBeWritten(const toml::node& node, const Value& value, const Located& id,
                                    const EngineParameter& parameter) {
    if (parameter.readOnly || (parameter.behaviour && !parameter.behaviour->FollowsWrites())) {
        m_found.Error(id.position, Quoted(id.text) + " refuses writes, so none can clear the record");
        return;
    }
    const auto number = NumberIn(value);
    if (!number)
        return;
    if ((parameter.min && !(*number >= *parameter.min)) || (parameter.max && !(*number <= *parameter.max)))
        m_found.Error(PositionOf(node),
                      "'is' lies outside 'min' and 'max' of " + Quoted(id.text) + ": it cannot be written");
    else if (!std::isfinite(*number))
        m_found.Error(PositionOf(node), "'is' must be a finite number");
    else if (std::holds_alternative<std::int64_t>(parameter.value) && std::nearbyint(*number) != *number)
        m_found.Error(PositionOf(node), "'is' must be a whole number, as the value of " + Quoted(id.text));
}

const EngineParameter* FaultReader::FindParameter(const toml::table& table, Position owner, Located& id) {
    const auto written = RequiredText(table, "parameter", owner);
    if (!written)
        return nullptr;
    id = *written;
    const auto found = m_parameters.find(id.text);
    if (found != m_parameters.end())
        return &found->second;
    m_found.Error(id.position,
                  "there is no parameter " + Quoted(id.text) + m_found.Suggest(id.text, m_parameters));
    return nullptr;
}

} // namespace vant::host
