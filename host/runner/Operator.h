#pragma once

#include "host/conditions/Limits.h"
#include "host/record/Value.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// What the operator is shown and has to close or to answer.
struct Prompt {
    enum class Kind {
        Message, ///< It is closed by its only button.
        Buttons, ///< The answer is one of the buttons.
        Text,
        Number
    };

    Kind kind = Kind::Message;
    std::string step{};    ///< The step that asks; empty for the message box of a command.
    std::string caption{}; ///< Of a message box.
    std::string text{};
    std::vector<std::string> buttons{}; ///< Of a message and of a choice.
    std::string units{};                ///< Of a number.
    Limits limits{};                    ///< Of a text or a number.
    std::optional<Value> standard{};    ///< The answer if the operator enters none.
};

/// "message", "buttons", "text" or "number".
const char* NameOf(Prompt::Kind kind);

/// How a prompt can be answered, such as "1 yes, 2 no [no]" or "a number, atLeast 1 [5]".
std::string DescribeAnswers(const Prompt& prompt);

/// An answer as it was entered, or why it is not one.
struct EnteredAnswer {
    std::optional<Value> value{};
    std::string mistake{}; ///< Empty if there is a value.
};

/// Reads an entered answer: a button by its number, its text or the beginning of its text, in any case; a
/// text; a number with a point. Nothing entered is the standard answer. Any answer closes a message.
EnteredAnswer ReadAnswer(const Prompt& prompt, std::string_view entered);

/// An answer of the operator.
struct Answer {
    Value value;
    std::string by = "operator"; ///< What it came from: "operator" or "answers".
    std::int64_t after = 0;      ///< It counts so many milliseconds of the run later.
    std::string mistake{};       ///< If not empty, it is not an answer to this prompt, which has none then.

    bool operator==(const Answer&) const = default;
};

/// The source of answers to the prompts of a run: a person, or a file of answers.
class Operator {
public:
    virtual ~Operator() = default;

    /// Shows a prompt and returns its answer; nothing if there is none, or once `isOver` returns true. While
    /// it waits it calls `isOver` several times in a second. Called on any thread, on several at once. Real
    /// time passes for the run meanwhile, virtual time does not.
    virtual std::optional<Answer> Ask(const Prompt& prompt, const std::function<bool()>& isOver) = 0;
};

} // namespace vant::host
