#include "vant/MessagePrompt.h"

#include "host/text/Printable.h"
#include "platform/Utf8.h"

#include <string>

namespace vant {

MessagePrompt::MessagePrompt(std::ostream& out, std::istream& in, bool answers)
    : m_out(out), m_in(in), m_answers(answers) {
    SetMessagePresenter(
        [this](const std::wstring& text, const std::wstring& caption, UINT) { Show(text, caption); });
}

MessagePrompt::~MessagePrompt() {
    SetMessagePresenter({});
}

void MessagePrompt::Show(const std::wstring& text, const std::wstring& caption) {
    const std::lock_guard lock(m_oneAtATime);
    m_out << '[' << Printable(ToUtf8(caption)) << "] " << Printable(ToUtf8(text)) << '\n';
    if (m_answers) {
        m_out.flush();
        return;
    }
    m_out << "Press Enter to go on." << std::endl;
    std::string ignored;
    std::getline(m_in, ignored);
}

} // namespace vant
