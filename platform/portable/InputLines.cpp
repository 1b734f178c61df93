#include "platform/InputLines.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace vant {

namespace {

constexpr int period = 50; // milliseconds

/// The first line of `text`, which loses it.
std::optional<std::string> TakeLine(std::string& text) {
    const std::size_t end = text.find('\n');
    if (end == std::string::npos)
        return std::nullopt;
    std::string line = text.substr(0, end);
    text.erase(0, end + 1);
    return line;
}

} // namespace

struct InputLines::Source {
    std::string text; ///< Read and not returned yet.
    bool hasEnded = false;
};

InputLines::InputLines() : m_source(std::make_shared<Source>()) {}

InputLines::~InputLines() = default;

std::optional<std::string> InputLines::Next(const std::function<bool()>& isOver) {
    auto& [text, hasEnded] = *m_source;
    for (;;) {
        if (auto line = TakeLine(text))
            return line;
        if (hasEnded && !text.empty())
            return std::exchange(text, {}); // A last line without an end.
        if (hasEnded || isOver())
            return std::nullopt;
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (poll(&input, 1, period) <= 0)
            continue;
        char block[4096];
        const ssize_t count = read(STDIN_FILENO, block, sizeof(block));
        if (count > 0)
            text.append(block, static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EINTR && errno != EAGAIN))
            hasEnded = true;
    }
}

} // namespace vant
