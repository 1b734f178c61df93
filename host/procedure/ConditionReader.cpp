#include "host/procedure/ConditionReader.h"

#include "host/procedure/TableReader.h"

#include <algorithm>

namespace vant::host {

namespace {

class ConditionReader : private TableReader {
public:
    explicit ConditionReader(Diagnostics& found) : TableReader(found) {}

    Conditions Read(const toml::key& name, const toml::node& node) {
        Conditions conditions{.position = PositionOf(name)};
        const toml::table* const table = AsTable(node, "condition set " + Quoted(name.str()));
        if (!table)
            return conditions;
        CheckKeys(*table, "a condition set", {"all", "any", "failSafe"});
        conditions.failSafe = OptionalTruth(*table, "failSafe");
        if (table->contains("all") && table->contains("any"))
            m_found.Error(PositionOf(table->find("any")->first),
                          "a condition set has 'all' or 'any', not both");
        const char* const key = table->contains("all") ? "all" : "any";
        const toml::node* const list = table->get(key);
        conditions.any = !table->contains("all");
        if (list)
            ReadList(key, *list, std::string(name.str()), conditions.list);
        else if (!HasOrMeans(*table, "all") && !HasOrMeans(*table, "any"))
            m_found.Error(PositionOf(name), "'all' or 'any' is missing");
        return conditions;
    }

private:
    void ReadList(const char* key, const toml::node& node, const std::string& set,
                  std::vector<Condition>& conditions) {
        const toml::array* const list = AsList(node, Quoted(key) + " must be a list of conditions");
        if (!list)
            return;
        if (list->empty())
            m_found.Error(PositionOf(node), Quoted(key) + " is empty: a condition set needs a condition");
        for (const toml::node& each : *list) {
            Condition& condition = conditions.emplace_back();
            ReadCondition(each, condition);
            if (!condition.hasOwnMessage)
                condition.message = set + ": " + Describe(condition);
        }
    }

    void ReadCondition(const toml::node& node, Condition& condition) {
        const toml::table* const table = AsTable(node, "a condition");
        if (!table)
            return;
        CheckKeys(*table, "a condition",
                  {"parameter", "data", "is", "isNot", "below", "above", "atLeast", "atMost", "message"});
        const Position position = PositionOf(node);
        ReadSubject(*table, position, condition);
        ReadComparison(*table, position, condition);
        condition.hasOwnMessage = table->contains("message");
        if (auto message = OptionalName(*table, "message")) {
            condition.message = std::move(message->text);
            condition.messagePosition = message->position;
        }
    }

    void ReadSubject(const toml::table& table, Position position, Condition& condition) {
        const auto parameter = OptionalName(table, "parameter");
        const auto data = OptionalName(table, "data");
        const bool hasBoth = table.contains("parameter") && table.contains("data");
        if (hasBoth || (!HasOrMeans(table, "parameter") && !HasOrMeans(table, "data")))
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
        const bool isMeant = std::any_of(comparisons.begin(), comparisons.end(), [&](Comparison comparison) {
            return HasOrMeans(table, NameOf(comparison));
        });
        if (count == 0 && !isMeant)
            m_found.Error(position, "a comparison is missing: 'is', 'isNot', 'below', 'above', 'atLeast' or "
                                    "'atMost'");
        else if (count > 1)
            m_found.Error(position, "a condition has one comparison: write a condition for each");
    }

    void ReadValue(const toml::node& node, Condition& condition) {
        if (const toml::table* const other = node.as_table()) {
            CheckKeys(*other, "the other side of a comparison", {"data"});
            if (auto entry = RequiredName(*other, "data", PositionOf(node))) {
                condition.otherEntry = std::move(entry->text);
                condition.otherPosition = entry->position;
            }
            return;
        }
        if (auto value = ComparedValue(node, condition.comparison, "the condition"))
            condition.value = std::move(*value);
    }
};

} // namespace

Conditions ReadConditionSet(const toml::key& name, const toml::node& node, Diagnostics& found) {
    return ConditionReader(found).Read(name, node);
}

} // namespace vant::host
