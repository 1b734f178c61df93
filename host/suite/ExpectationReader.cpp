#include "host/suite/ExpectationReader.h"

#include "host/procedure/LimitsReader.h"
#include "host/procedure/TableReader.h"

#include <array>
#include <utility>

namespace vant::host {

namespace {

const std::vector<std::string> measurementVerdicts = {"passed", "failed", "missing", "skipped"};
/// By their order in Verdict; no test can expect a run that the user ends.
const std::vector<std::string> verdicts = {"passed", "failed", "error"};

class ExpectationReader : private TableReader {
public:
    explicit ExpectationReader(Diagnostics& found) : TableReader(found) {}

    void Read(const toml::node& node, Expectation& expected) {
        const toml::table* const table = AsTable(node, "'expected'");
        if (!table)
            return;
        CheckKeys(*table, "an expectation",
                  {"verdict", "ending", "path", "data", "measurements", "left", "longest", "mayFail"});
        if (const auto verdict = OptionalText(*table, "verdict")) {
            if (const auto number = Choose(*verdict, "'verdict'", verdicts))
                expected.verdict = static_cast<Verdict>(*number);
        }
        if (auto ending = OptionalName(*table, "ending"))
            expected.ending = std::move(ending);
        if (table->contains("path"))
            expected.path = Names(*table, "path", "a step");
        ForEach(*table, "data", [&](const toml::key& key, const toml::node& value) {
            expected.data.insert_or_assign(std::string(key.str()), ReadValue(key, value));
        });
        ForEach(*table, "measurements", [&](const toml::key& key, const toml::node& value) {
            expected.measurements.insert_or_assign(std::string(key.str()), ReadMeasurement(key, value));
        });
        if (table->contains("left"))
            expected.left.emplace();
        ForEach(*table, "left", [&](const toml::key& key, const toml::node& value) {
            expected.left->insert_or_assign(std::string(key.str()), ReadValue(key, value));
        });
        if (const auto longest = OptionalDuration(*table, "longest"))
            expected.longest = longest;
        if (table->contains("mayFail"))
            expected.mayFail = Names(*table, "mayFail", "a command id or operation");
    }

private:
    std::optional<std::size_t> Choose(const Located& word, const std::string& what,
                                      const std::vector<std::string>& words) {
        const auto found = std::find(words.begin(), words.end(), word.text);
        if (found != words.end())
            return static_cast<std::size_t>(found - words.begin());
        std::string list;
        for (const std::string& each : words)
            list += (list.empty() ? "\"" : each == words.back() ? " or \"" : ", \"") + each + '"';
        m_found.Error(word.position, what + " is " + list + ", not \"" + word.text + '"' +
                                         m_found.Suggest(word.text, words));
        return std::nullopt;
    }

    /// The value itself, or a table of limits.
    ExpectedValue ReadValue(const toml::key& name, const toml::node& node) {
        ExpectedValue value{.position = PositionOf(name)};
        if (const toml::table* const table = node.as_table()) {
            CheckKeys(*table, "an expected value", {limitKeys.begin(), limitKeys.end()});
            AddLimits(*table, value.limits);
        } else {
            AddValue(name, node, value.limits);
        }
        return value;
    }

    ExpectedMeasurement ReadMeasurement(const toml::key& name, const toml::node& node) {
        ExpectedMeasurement expected{.value = {.position = PositionOf(name)}};
        const toml::table* const table = node.as_table();
        if (!table) {
            AddValue(name, node, expected.value.limits);
            return expected;
        }
        std::vector<std::string> known(limitKeys.begin(), limitKeys.end());
        known.emplace_back("verdict");
        CheckKeys(*table, "an expected measurement", known);
        if (const auto verdict = OptionalText(*table, "verdict")) {
            if (Choose(*verdict, "'verdict' of a measurement", measurementVerdicts))
                expected.verdict = verdict->text;
        }
        if (!table->contains("verdict") || table->size() > 1)
            AddLimits(*table, expected.value.limits);
        return expected;
    }

    void AddLimits(const toml::table& table, Limits& limits) {
        if (table.empty())
            m_found.Error(PositionOf(table), "this table is empty: add a value, as in { atLeast = 1 }");
        limits = ReadLimits(table, m_found);
    }

    void AddValue(const toml::key& name, const toml::node& node, Limits& limits) {
        if (auto value = Scalar(node, Quoted(name.str())))
            limits.comparisons.push_back({Comparison::Is, std::move(*value)});
    }
};

} // namespace

void ReadExpectation(const toml::node& node, Expectation& expected, Diagnostics& found) {
    ExpectationReader(found).Read(node, expected);
}

} // namespace vant::host
