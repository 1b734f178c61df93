#include "host/procedure/QuestionReader.h"

#include "host/procedure/LimitsReader.h"
#include "host/procedure/TableReader.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

class QuestionReader : private TableReader {
public:
    explicit QuestionReader(Diagnostics& found) : TableReader(found) {}

    Question Read(const toml::node& node) {
        Question question;
        if (auto text = node.value_exact<std::string>()) {
            question.text = {std::move(*text), PositionOf(node)};
            CheckText(question.text);
            return question;
        }
        const toml::table* const table = node.as_table();
        if (!table) {
            m_found.Error(PositionOf(node),
                          std::string("'ask' must be a string or a table, not ") + KindOf(node));
            return question;
        }
        CheckKeys(*table, "a question",
                  {"text", "buttons", "data", "number", "units", "above", "atLeast", "below", "atMost",
                   "oneOf", "like", "timeout", "default"});
        if (auto text = RequiredName(*table, "text", PositionOf(node)))
            question.text = std::move(*text);
        ReadButtons(*table, question);
        ReadEntry(*table, question);
        ReadStandard(*table, question);
        return question;
    }

private:
    void CheckText(const Located& text) {
        if (text.text.empty())
            m_found.Error(text.position, "'ask' is empty: write what the operator is asked");
    }

    void ReadButtons(const toml::table& table, Question& question) {
        question.buttons = Names(table, "buttons", "a transition");
        std::set<std::string_view> known;
        for (const Located& each : question.buttons) {
            if (!known.insert(each.text).second)
                m_found.Error(each.position, "there are two buttons " + Quoted(each.text));
        }
        if (table.contains("buttons") && table.contains("data"))
            m_found.Error(PositionOf(table.find("data")->first),
                          "a question has 'buttons' or 'data', not both");
    }

    /// What is entered.
    void ReadEntry(const toml::table& table, Question& question) {
        question.data = OptionalName(table, "data");
        question.limits = ReadLimits(table, m_found);
        question.isNumber = OptionalTruth(table, "number") || !question.limits.comparisons.empty();
        if (const auto units = OptionalText(table, "units"))
            question.units = units->text;
        for (const char* const key :
             {"number", "units", "above", "atLeast", "below", "atMost", "oneOf", "like"})
            CheckNeeds(table, key, "data");
    }

    void ReadStandard(const toml::table& table, Question& question) {
        question.timeout = OptionalDuration(table, "timeout");
        if (question.timeout == 0)
            m_found.Error(PositionOf(*table.get("timeout")), "'timeout' must be above 0");
        const toml::node* const node = table.get("default");
        const bool hasAnswers = table.contains("buttons") || table.contains("data");
        if (!node) {
            if (hasAnswers)
                CheckNeeds(table, "timeout", "default");
            return;
        }
        question.standard = Scalar(*node, "'default'");
        if (!hasAnswers && !HasOrMeans(table, "buttons") && !HasOrMeans(table, "data"))
            m_found.Error(PositionOf(*node), "'default' needs 'buttons' or 'data'");
        if (!question.standard)
            return;
        if (!question.buttons.empty())
            CheckButton(*node, question);
        else if (question.data)
            CheckValue(*node, question);
    }

    void CheckButton(const toml::node& node, const Question& question) {
        const bool exists =
            std::any_of(question.buttons.begin(), question.buttons.end(),
                        [&](const Located& each) { return Value(each.text) == question.standard; });
        if (!exists)
            m_found.Error(PositionOf(node), "'default' must be one of the buttons");
    }

    void CheckValue(const toml::node& node, const Question& question) {
        if (question.isNumber != node.is_number())
            m_found.Error(PositionOf(node), std::string("'default' must be ") +
                                                (question.isNumber ? "a number" : "a string") + ", not " +
                                                KindOf(node));
        else if (!Satisfies(question.limits, *question.standard))
            m_found.Error(PositionOf(node),
                          "'default' is not within the limits: " + Describe(question.limits));
    }
};

} // namespace

Question ReadQuestion(const toml::node& node, Diagnostics& found) {
    return QuestionReader(found).Read(node);
}

} // namespace vant::host
