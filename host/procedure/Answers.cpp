#include "host/procedure/Answers.h"

#include "host/procedure/TableReader.h"
#include "host/record/ReportText.h"

#include <utility>

namespace vant::host {

namespace {

class AnswersReader : private TableReader {
public:
    explicit AnswersReader(Diagnostics& found) : TableReader(found) {}

    std::vector<ReadyAnswer> Read(const toml::table& root) {
        CheckKeys(root, "a file of answers", {"answer"});
        if (const toml::node* const node = root.get("answer"))
            return ReadList(*node, "answer");
        if (!HasOrMeans(root, "answer"))
            m_found.Error({}, "the file has no answers: write [[answer]] before each one");
        return {};
    }

    std::vector<ReadyAnswer> ReadList(const toml::node& node, std::string_view key) {
        std::vector<ReadyAnswer> answers;
        if (const toml::array* const list = AsList(node, Quoted(key) + " must be a list of tables")) {
            for (const toml::node& each : *list)
                ReadOne(each, answers.emplace_back(ReadyAnswer{PositionOf(each)}));
        }
        return answers;
    }

private:
    void ReadOne(const toml::node& node, ReadyAnswer& ready) {
        const toml::table* const table = AsTable(node, "an answer");
        if (!table)
            return;
        CheckKeys(*table, "an answer", {"step", "prompt", "answer", "after", "repeat"});
        if (auto step = OptionalName(*table, "step")) {
            ready.step = std::move(step->text);
            ready.stepPosition = step->position;
        }
        if (auto prompt = OptionalName(*table, "prompt"))
            ready.prompt = std::move(prompt->text);
        const toml::node* const answer = table->get("answer");
        if (const auto value = answer ? Scalar(*answer, "'answer'") : std::nullopt) {
            const auto* const text = std::get_if<std::string>(&*value);
            ready.answer = text ? *text : Readable(*value);
        } else if (!HasOrMeans(*table, "answer")) {
            m_found.Error(PositionOf(node), "'answer' is missing");
        }
        ready.after = OptionalDuration(*table, "after").value_or(0);
        ready.repeats = OptionalTruth(*table, "repeat");
    }
};

} // namespace

std::vector<ReadyAnswer> ReadAnswers(const toml::table& root, Diagnostics& found) {
    return AnswersReader(found).Read(root);
}

std::vector<ReadyAnswer> ReadAnswerList(const toml::node& node, std::string_view key, Diagnostics& found) {
    return AnswersReader(found).ReadList(node, key);
}

std::vector<ReadyAnswer> ReadAnswers(std::string_view toml, Diagnostics& found) {
    const std::optional<toml::table> root = ParseToml(toml, found);
    return root ? ReadAnswers(*root, found) : std::vector<ReadyAnswer>();
}

} // namespace vant::host
