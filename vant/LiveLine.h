#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

namespace vant::program {

/// A line at the end of a terminal's text that shows what is going on now. It is drawn anew once in a second,
/// and erased before other text.
class LiveLine {
public:
    /// `access` protects the stream; `text` is called while it is locked, and returns what to show, without
    /// control characters. All three must outlive the line.
    LiveLine(std::ostream& out, std::mutex& access, std::function<std::string()> text);
    /// Erases the line. `access` must not be locked.
    ~LiveLine();
    LiveLine(const LiveLine&) = delete;
    LiveLine& operator=(const LiveLine&) = delete;

    // While `access` is locked:

    /// Makes place for other text.
    void Erase();
    /// Draws the line if it has changed and was not drawn a moment ago.
    void Update();
    /// Erases the line, and keeps it away as long as `hidden`.
    void Hide(bool hidden);

private:
    void Draw();

    std::ostream& m_out;
    std::mutex& m_access;
    const std::function<std::string()> m_text;
    std::string m_shown;
    bool m_hidden = false;
    bool m_ending = false;
    std::chrono::steady_clock::time_point m_drawn;
    std::condition_variable m_changed;
    std::thread m_thread; ///< Last: it uses everything above.
};

} // namespace vant::program
