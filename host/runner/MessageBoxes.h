#pragma once

#include <functional>
#include <string>

namespace vant::host {

/// While it lives, the message boxes of this process go to the MessageScope of their thread; outside one they
/// are not shown. One at a time in a process.
class MessageBoxes {
public:
    MessageBoxes();
    ~MessageBoxes();
    MessageBoxes(const MessageBoxes&) = delete;
    MessageBoxes& operator=(const MessageBoxes&) = delete;
};

/// While it lives, receives the message boxes of the calling thread. The scopes of one thread are nested; the
/// innermost one counts.
class MessageScope {
public:
    /// Returns when the message has been closed. Its texts are UTF-8.
    using Show = std::function<void(const std::string& caption, const std::string& text)>;

    /// `show` must outlive the scope.
    explicit MessageScope(const Show& show);
    ~MessageScope();
    MessageScope(const MessageScope&) = delete;
    MessageScope& operator=(const MessageScope&) = delete;

private:
    const Show* const m_outer;
};

} // namespace vant::host
