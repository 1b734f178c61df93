#pragma once

#include "platform/MessagePresenter.h"
#include "vant/ConsoleReport.h"

#include <istream>
#include <mutex>
#include <ostream>

namespace vant::program {

/// While it lives, the message boxes of this process appear on a stream as caption and text, and each one
/// waits for Enter; the end of the input counts as Enter. It does nothing on a system that shows messages
/// itself.
class MessagePrompt {
public:
    /// `closesAtOnce`: messages are shown and closed without waiting. `report`, which may be null, writes to
    /// the same stream. All of them must outlive the prompt.
    MessagePrompt(std::ostream& out, std::istream& in, bool closesAtOnce, ConsoleReport* report);
    ~MessagePrompt();
    MessagePrompt(const MessagePrompt&) = delete;
    MessagePrompt& operator=(const MessagePrompt&) = delete;

private:
    void Show(const std::wstring& text, const std::wstring& caption);

    std::mutex m_oneAtATime;
    std::ostream& m_out;
    std::istream& m_in;
    const bool m_closesAtOnce;
    ConsoleReport* const m_report;
};

} // namespace vant::program
