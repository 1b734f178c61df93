#include "platform/InputLines.h"

#include "platform/Utf8.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace vant {

namespace {

constexpr std::chrono::milliseconds period(50);

/// Some more characters of standard input in UTF-8; empty at its end. Waits for them.
std::string ReadSome() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    DWORD count = 0;
    if (GetConsoleMode(input, &mode)) {
        wchar_t block[1024];
        if (!ReadConsoleW(input, block, static_cast<DWORD>(std::size(block)), &count, nullptr))
            return {};
        return ToUtf8({block, count});
    }
    char block[4096];
    return ReadFile(input, block, sizeof(block), &count, nullptr) ? std::string(block, count) : std::string();
}

} // namespace

/// A thread of its own reads, since a wait for input cannot be ended. It begins with the first line that is
/// asked for, and the process may end while it waits.
struct InputLines::Source {
    std::mutex access; ///< Protects what follows.
    std::condition_variable changed;
    std::string text; ///< Read and not returned yet.
    bool hasBegun = false;
    bool hasEnded = false;

    static void Run(const std::shared_ptr<Source>& source) {
        for (;;) {
            const std::string more = ReadSome();
            const std::lock_guard lock(source->access);
            source->text += more;
            source->hasEnded = more.empty();
            source->changed.notify_all();
            if (source->hasEnded)
                return;
        }
    }

    /// The next line, or at the end of the input what is left.
    std::optional<std::string> TakeLine() {
        const std::size_t end = text.find('\n');
        if (end == std::string::npos)
            return hasEnded && !text.empty() ? std::optional(std::exchange(text, {})) : std::nullopt;
        std::string line = text.substr(0, end > 0 && text[end - 1] == '\r' ? end - 1 : end);
        text.erase(0, end + 1);
        return line;
    }
};

InputLines::InputLines() : m_source(std::make_shared<Source>()) {}

InputLines::~InputLines() = default;

std::optional<std::string> InputLines::Next(const std::function<bool()>& isOver) {
    Source& source = *m_source;
    std::unique_lock lock(source.access);
    if (!std::exchange(source.hasBegun, true))
        std::thread(Source::Run, m_source).detach();
    for (;;) {
        if (auto line = source.TakeLine())
            return line;
        if (source.hasEnded)
            return std::nullopt;
        lock.unlock();
        if (isOver())
            return std::nullopt;
        lock.lock();
        if (source.text.find('\n') == std::string::npos && !source.hasEnded)
            source.changed.wait_for(lock, period);
    }
}

} // namespace vant
