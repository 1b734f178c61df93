#include "vant/LiveLine.h"

#include <utility>

namespace vant::program {

using namespace std::chrono_literals;

LiveLine::LiveLine(std::ostream& out, std::mutex& access, std::function<std::string()> text)
    : m_out(out), m_access(access), m_text(std::move(text)), m_thread([this] {
          std::unique_lock lock(m_access);
          while (!m_changed.wait_for(lock, 1s, [this] { return m_ending; }))
              Draw();
      }) {}

LiveLine::~LiveLine() {
    {
        const std::lock_guard lock(m_access);
        Hide(true);
        m_ending = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void LiveLine::Erase() {
    if (m_shown.empty())
        return;
    m_shown.clear();
    m_out << "\r\x1b[K" << std::flush;
}

void LiveLine::Update() {
    if (std::chrono::steady_clock::now() - m_drawn >= 100ms)
        Draw();
}

void LiveLine::Hide(bool hidden) {
    Erase();
    m_hidden = hidden;
}

void LiveLine::Draw() {
    if (m_hidden)
        return;
    std::string text = m_text();
    if (text == m_shown)
        return;
    Erase();
    m_drawn = std::chrono::steady_clock::now();
    // A line that is too long for the terminal is cut at its edge instead of going on in the next line.
    if (!text.empty())
        m_out << "\x1b[?7l" + text + "\x1b[?7h" << std::flush;
    m_shown = std::move(text);
}

} // namespace vant::program
