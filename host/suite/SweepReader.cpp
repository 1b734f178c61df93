#include "host/suite/SweepReader.h"

#include "host/procedure/TableReader.h"

#include <cmath>
#include <fmt/format.h>
#include <utility>

namespace vant::host {

namespace {

class SweepReader : private TableReader {
public:
    explicit SweepReader(Diagnostics& found) : TableReader(found) {}

    Sweep Read(const toml::node& node) {
        const std::size_t errors = m_found.Errors();
        Sweep sweep;
        const toml::table* const table = AsTable(node, "'sweep'");
        if (!table)
            return sweep;
        CheckKeys(*table, "a sweep", {"seed", "parameters", "data", "combine"});
        if (const toml::node* const seed = table->get("seed"))
            Add(sweep, SweptValue::Kind::Seed, "seed", PositionOf(*seed), *seed);
        ForEach(*table, "parameters", [&](const toml::key& key, const toml::node& values) {
            Add(sweep, SweptValue::Kind::Parameter, std::string(key.str()), PositionOf(key), values);
        });
        ForEach(*table, "data", [&](const toml::key& key, const toml::node& values) {
            Add(sweep, SweptValue::Kind::Data, std::string(key.str()), PositionOf(key), values);
        });
        if (const auto combine = OptionalText(*table, "combine"))
            sweep.pairs = ReadCombine(*combine);
        if (m_found.Errors() != errors)
            return {};
        if (sweep.swept.empty())
            m_found.Error(PositionOf(node), "the sweep is empty: add 'seed', 'parameters' or 'data'");
        else if (IsTooLarge(sweep))
            m_found.Error(PositionOf(node),
                          fmt::format("the sweep stands for more than {} cases", mostSweptCases));
        else
            return sweep;
        return {};
    }

private:
    bool ReadCombine(const Located& combine) {
        static const std::vector<std::string> words = {"all", "pairs"};
        if (std::find(words.begin(), words.end(), combine.text) == words.end())
            m_found.Error(combine.position, "'combine' is \"all\" or \"pairs\", not \"" + combine.text + '"' +
                                                m_found.Suggest(combine.text, words));
        return combine.text == "pairs";
    }

    void Add(Sweep& sweep, SweptValue::Kind kind, std::string name, Position position,
             const toml::node& node) {
        SweptValue swept{kind, std::move(name), std::move(position)};
        if (const toml::table* const range = node.as_table())
            ReadRange(*range, swept);
        else if (const toml::array* const list =
                     AsList(node, Quoted(swept.name) + " must be a list of values or a range"))
            ReadList(*list, swept);
        if (kind == SweptValue::Kind::Seed)
            CheckSeeds(swept);
        if (!swept.values.empty())
            sweep.swept.push_back(std::move(swept));
    }

    void ReadList(const toml::array& list, SweptValue& swept) {
        if (list.empty())
            m_found.Error(PositionOf(list), Quoted(swept.name) + " is empty: add a value");
        for (const toml::node& each : list) {
            if (auto value = Scalar(each, "a value of " + Quoted(swept.name)))
                swept.values.push_back(std::move(*value));
        }
    }

    void ReadRange(const toml::table& range, SweptValue& swept) {
        CheckKeys(range, "a range", {"from", "to", "step"});
        const auto from = Number(range, "from", true);
        const auto to = Number(range, "to", true);
        const auto step = Number(range, "step", false);
        if (!from || !to || (range.contains("step") && !step))
            return;
        const double first = *NumberIn(*from);
        const double width = step ? *NumberIn(*step) : 1;
        // What computing with decimals adds does not take the last value away.
        const double last = std::floor((*NumberIn(*to) - first) / width + 1e-9);
        if (width <= 0)
            m_found.Error(PositionOf(*range.get("step")), "'step' must be above 0");
        else if (last < 0)
            m_found.Error(PositionOf(*range.get("to")), "'to' is less than 'from'");
        else if (last >= static_cast<double>(mostSweptCases))
            m_found.Error(PositionOf(range),
                          fmt::format("the range has more than {} values", mostSweptCases));
        else
            for (std::size_t i = 0; i <= static_cast<std::size_t>(last); ++i)
                swept.values.push_back(ValueAt(*from, step.value_or(std::int64_t{1}), i));
    }

    /// A whole number if `from` and `step` are; otherwise rounded to what a person would write.
    static Value ValueAt(const Value& from, const Value& step, std::size_t number) {
        const auto* const wholeFrom = std::get_if<std::int64_t>(&from);
        const auto* const wholeStep = std::get_if<std::int64_t>(&step);
        if (wholeFrom && wholeStep)
            return *wholeFrom + *wholeStep * static_cast<std::int64_t>(number);
        const double exact = *NumberIn(from) + *NumberIn(step) * static_cast<double>(number);
        return std::stod(fmt::format("{:.12g}", exact));
    }

    std::optional<Value> Number(const toml::table& range, std::string_view key, bool required) {
        const toml::node* const node = range.get(key);
        if (!node) {
            if (required && !HasOrMeans(range, key))
                m_found.Error(PositionOf(range), Quoted(key) + " is missing");
            return std::nullopt;
        }
        if (!node->is_number() || !std::isfinite(node->value<double>().value_or(0))) {
            m_found.Error(PositionOf(*node), Quoted(key) + " must be a finite number, not " +
                                                 (node->is_number() ? "that" : KindOf(*node)));
            return std::nullopt;
        }
        return Scalar(*node, Quoted(key));
    }

    void CheckSeeds(SweptValue& swept) {
        const bool wrong = std::any_of(swept.values.begin(), swept.values.end(), [](const Value& each) {
            const auto* const seed = std::get_if<std::int64_t>(&each);
            return !seed || *seed < 0;
        });
        if (wrong)
            m_found.Error(swept.position, "seeds must be whole numbers from 0");
    }
};

} // namespace

Sweep ReadSweep(const toml::node& node, Diagnostics& found) {
    return SweepReader(found).Read(node);
}

} // namespace vant::host
