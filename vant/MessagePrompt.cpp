#include "vant/MessagePrompt.h"

#include "host/text/Printable.h"
#include "platform/Utf8.h"

#include <optional>
#include <string>

namespace vant::program {

using namespace host;

MessagePrompt::MessagePrompt(std::ostream& out, std::istream& in, bool closesAtOnce, ConsoleReport* report)
    : m_out(out), m_in(in), m_closesAtOnce(closesAtOnce), m_report(report) {
    SetMessagePresenter(
        [this](const std::wstring& text, const std::wstring& caption, UINT) { Show(text, caption); });
}

MessagePrompt::~MessagePrompt() {
    SetMessagePresenter({});
}

void MessagePrompt::Show(const std::wstring& text, const std::wstring& caption) {
    const std::lock_guard lock(m_oneAtATime);
    std::optional<ConsoleReport::Interlude> interlude;
    if (m_report)
        interlude.emplace(*m_report);
    // In one piece: other threads write too.
    m_out << '[' + Printable(ToUtf8(caption)) + "] " + Printable(ToUtf8(text)) +
                 (m_closesAtOnce ? "\n" : "\nPress Enter to go on.\n");
    m_out.flush();
    if (m_closesAtOnce)
        return;
    std::string ignored;
    std::getline(m_in, ignored);
}

} // namespace vant::program
