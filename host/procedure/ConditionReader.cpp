#include "host/procedure/ConditionReader.h"

#include "host/procedure/TableReader.h"

#include <array>
#include <cmath>

namespace vant::host {

namespace {

constexpr std::array comparisons = {Comparison::Is,    Comparison::IsNot,   Comparison::Below,
                                    Comparison::Above, Comparison::AtLeast, Comparison::AtMost};

bool IsOrder(Comparison comparison) {
    return comparison != Comparison::Is && comparison != Comparison::IsNot;
}

class ConditionReader : private TableReader {
public:
    explicit ConditionReader(Diagnostics& found) : TableReader(found) {}

    std::vector<Condition> Read(const toml::key& name, const toml::node& node) {
        const toml::table* const table = AsTable(node, "condition set " + Quoted(name.str()));
        if (!table)
            return {};
        CheckKeys(*table, "a condition set", {"all"});
        const toml::node* const all = table->get("all");
        const toml::array* const list = all ? all->as_array() : nullptr;
        if (!all)
            m_found.Error(PositionOf(name), "'all' is missing");
        else if (!list)
            m_found.Error(PositionOf(*all),
                          std::string("'all' must be a list of conditions, not ") + KindOf(*all));
        else if (list->empty())
            m_found.Error(PositionOf(*all), "'all' is empty: a condition set needs a condition");
        std::vector<Condition> conditions;
        if (list) {
            for (const toml::node& each : *list)
                ReadCondition(each, conditions.emplace_back());
        }
        return conditions;
    }

private:
    void ReadCondition(const toml::node& node, Condition& condition) {
        const toml::table* const table = AsTable(node, "a condition");
        if (!table)
            return;
        CheckKeys(*table, "a condition",
                  {"parameter", "data", "is", "isNot", "below", "above", "atLeast", "atMost", "message"});
        const Position position = PositionOf(node);
        ReadSubject(*table, position, condition);
        ReadComparison(*table, position, condition);
        if (auto message = RequiredName(*table, "message", position)) {
            condition.message = std::move(message->text);
            condition.messagePosition = message->position;
        }
    }

    void ReadSubject(const toml::table& table, Position position, Condition& condition) {
        const auto parameter = OptionalName(table, "parameter");
        const auto data = OptionalName(table, "data");
        const bool hasBoth = table.contains("parameter") && table.contains("data");
        if (hasBoth || (!table.contains("parameter") && !table.contains("data")))
            m_found.Error(position, hasBoth ? "a condition has 'parameter' or 'data', not both"
                                            : "'parameter' or 'data' is missing: what is compared?");
        condition.kind = parameter ? Condition::Kind::Parameter : Condition::Kind::Data;
        if (const auto& subject = parameter ? parameter : data) {
            condition.subject = subject->text;
            condition.position = subject->position;
        }
    }

    void ReadComparison(const toml::table& table, Position position, Condition& condition) {
        int count = 0;
        for (const Comparison comparison : comparisons) {
            const toml::node* const value = table.get(NameOf(comparison));
            if (!value)
                continue;
            ++count;
            condition.comparison = comparison;
            ReadValue(*value, condition);
        }
        if (count == 0)
            m_found.Error(position, "a comparison is missing: 'is', 'isNot', 'below', 'above', 'atLeast' or "
                                    "'atMost'");
        else if (count > 1)
            m_found.Error(position, "a condition has one comparison: write a condition for each");
    }

    void ReadValue(const toml::node& node, Condition& condition) {
        const std::string name = Quoted(NameOf(condition.comparison));
        if (IsOrder(condition.comparison) && !node.is_number())
            m_found.Error(PositionOf(node), name + " must be a number, not " + KindOf(node));
        else if (node.is_number() && !std::isfinite(node.value<double>().value_or(0)))
            m_found.Error(PositionOf(node),
                          name + " must be a finite number; leave the condition out if there is no bound");
        else if (auto value = Scalar(node, name))
            condition.value = std::move(*value);
    }
};

} // namespace

std::vector<Condition> ReadConditionSet(const toml::key& name, const toml::node& node, Diagnostics& found) {
    return ConditionReader(found).Read(name, node);
}

void CheckConditionNames(const Procedure& procedure, Diagnostics& found) {
    for (const auto& [name, conditions] : procedure.conditions) {
        for (const Condition& condition : conditions) {
            // A message that is missing or empty has been reported already.
            if (!condition.message.empty() && !procedure.data.contains(condition.message))
                found.Warning(condition.messagePosition,
                              "there is no data entry " + Quoted(condition.message) + " at the beginning" +
                                  found.Suggest(condition.message, procedure.data));
        }
    }
}

void CheckConditionParameters(const Procedure& procedure, Diagnostics& found) {
    if (procedure.engineFile && !procedure.engine)
        return; // It could not be read, which has been reported.
    for (const auto& [name, conditions] : procedure.conditions) {
        for (const Condition& condition : conditions) {
            const std::string& id = condition.subject;
            if (condition.kind != Condition::Kind::Parameter || id.empty())
                continue;
            if (!procedure.engine)
                found.Error(condition.position, "a condition on a parameter needs an engine");
            else if (!procedure.engine->parameters.contains(id))
                found.Error(condition.position, "the engine has no parameter " + Quoted(id) +
                                                    found.Suggest(id, procedure.engine->parameters));
        }
    }
}

} // namespace vant::host
