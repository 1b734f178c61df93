#pragma once

#include <functional>

namespace vant::program {

/// From now on the first request to end the program (see OnFirstInterrupt) is left to an InterruptScope. Call
/// it before the program starts other threads.
void TakeInterrupts();

/// Whether there has been such a request. Any thread.
bool IsInterrupted();

/// Lets the user interrupt work for as long as this object lives. One at a time.
class InterruptScope {
public:
    /// Calls `abort` at the request, on another thread; at once if there has been one. `abort` must not
    /// throw.
    explicit InterruptScope(std::function<void()> abort);
    ~InterruptScope();
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;

    /// For the request.
    void Abort() const { m_abort(); }

private:
    const std::function<void()> m_abort;
};

} // namespace vant::program
