#include "vant/TerminalOperator.h"

#include "host/text/Printable.h"

#include <string>
#include <utility>

namespace vant::program {

using namespace host;

namespace {

/// In one piece: other threads write too.
void WriteText(std::ostream& out, const Prompt& prompt) {
    const std::string caption = prompt.caption.empty() ? "" : '[' + Printable(prompt.caption) + "] ";
    out << caption + Printable(prompt.text) + '\n' << std::flush;
}

} // namespace

std::optional<Answer> TerminalOperator::Ask(const Prompt& prompt, const std::function<bool()>& isOver) {
    const std::lock_guard lock(m_oneAtATime);
    std::optional<ConsoleReport::Interlude> interlude;
    if (m_report)
        interlude.emplace(*m_report);
    if (m_showsTexts)
        WriteText(m_out, prompt);
    const bool isMessage = prompt.kind == Prompt::Kind::Message;
    const std::string hint =
        isMessage ? "Press Enter to go on." : "Enter " + Printable(DescribeAnswers(prompt)) + ".";
    m_out << hint + '\n' << std::flush;
    while (const auto line = m_input.Next(isOver)) {
        EnteredAnswer entered = ReadAnswer(prompt, *line);
        if (entered.value)
            return Answer{std::move(*entered.value)};
        m_out << Printable(entered.mistake) + '\n' << std::flush;
    }
    return std::nullopt;
}

std::optional<Answer> AbsentOperator::Ask(const Prompt& prompt, const std::function<bool()>& /*isOver*/) {
    if (m_out)
        WriteText(*m_out, prompt);
    return std::nullopt;
}

} // namespace vant::program
