#include "host/runner/Operator.h"

#include "host/record/Json.h"
#include "host/record/ReportText.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <fmt/format.h>
#include <limits>
#include <system_error>

namespace vant::host {

namespace {

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool BeginsWith(std::string_view text, std::string_view beginning) {
    return text.size() >= beginning.size() && std::equal(beginning.begin(), beginning.end(), text.begin(),
                                                         [](char a, char b) { return Lower(a) == Lower(b); });
}

std::optional<double> NumberOf(std::string_view text) {
    double number = 0;
    const auto [end, mistake] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (mistake != std::errc() || end != text.data() + text.size() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

/// A button by its text comes before one by its number.
EnteredAnswer ReadButton(const Prompt& prompt, std::string_view entered) {
    const auto& buttons = prompt.buttons;
    std::vector<std::string_view> beginning;
    for (const std::string& each : buttons) {
        if (BeginsWith(each, entered) && each.size() == entered.size())
            return {each, {}};
        if (BeginsWith(each, entered))
            beginning.push_back(each);
    }
    if (beginning.size() == 1)
        return {std::string(beginning.front()), {}};
    if (const auto number = NumberOf(entered)) {
        for (std::size_t i = 0; i < buttons.size(); ++i) {
            if (static_cast<double>(i + 1) == *number)
                return {buttons[i], {}};
        }
    }
    const std::string all = fmt::format("{}", fmt::join(buttons, ", "));
    return {{},
            fmt::format("{} is {} of: {}", Quoted(entered),
                        beginning.empty() ? "none" : "the beginning of more than one", all)};
}

EnteredAnswer ReadValue(const Prompt& prompt, std::string_view entered) {
    Value value = std::string(entered);
    if (prompt.kind == Prompt::Kind::Number) {
        const auto number = NumberOf(Trimmed(entered));
        if (!number)
            return {{}, Quoted(entered) + " is not a number, such as 12 or 0.5"};
        value = *number;
        if (*number == std::trunc(*number) && std::abs(*number) <= std::numeric_limits<std::int32_t>::max())
            value = static_cast<std::int64_t>(*number);
    }
    if (!Satisfies(prompt.limits, value))
        return {{}, fmt::format("{} is not within the limits: {}", Quoted(entered), Describe(prompt.limits))};
    return {std::move(value), {}};
}

} // namespace

const char* NameOf(Prompt::Kind kind) {
    switch (kind) {
    case Prompt::Kind::Message:
        return "message";
    case Prompt::Kind::Buttons:
        return "buttons";
    case Prompt::Kind::Text:
        return "text";
    default:
        return "number";
    }
}

std::string DescribeAnswers(const Prompt& prompt) {
    std::string text;
    if (prompt.kind == Prompt::Kind::Buttons) {
        for (std::size_t i = 0; i < prompt.buttons.size(); ++i)
            text += fmt::format("{}{} {}", i == 0 ? "" : ", ", i + 1, prompt.buttons[i]);
    } else {
        text = prompt.kind == Prompt::Kind::Number ? "a number" : "a text";
        if (!prompt.units.empty())
            text += " in " + prompt.units;
        if (const std::string limits = Describe(prompt.limits); !limits.empty())
            text += ", " + limits;
    }
    return prompt.standard ? fmt::format("{} [{}]", text, Readable(*prompt.standard)) : text;
}

EnteredAnswer ReadAnswer(const Prompt& prompt, std::string_view entered) {
    if (prompt.kind == Prompt::Kind::Message)
        return {prompt.standard, {}};
    const std::string_view trimmed = Trimmed(entered);
    if (trimmed.empty() && prompt.standard)
        return {prompt.standard, {}};
    if (prompt.kind != Prompt::Kind::Buttons)
        return ReadValue(prompt, entered);
    if (trimmed.empty())
        return {{}, fmt::format("enter one of: {}", fmt::join(prompt.buttons, ", "))};
    return ReadButton(prompt, trimmed);
}

} // namespace vant::host
