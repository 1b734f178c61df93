#pragma once

#include "platform/Event.h"

#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace vant::host {

/// Calls functions at deadlines, on a thread of its own that takes part in virtual time. Any thread may call.
class Watchdog {
public:
    Watchdog();
    /// Every guard has ended.
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    struct Deadline {
        std::int64_t at;
        std::function<void()> expire;
    };
    using Place = std::list<Deadline>::iterator;

public:
    /// A deadline, as long as it lives.
    class Guard {
    public:
        /// Calls `expire` once if the guard still lives after so many milliseconds. `expire` must neither
        /// throw nor wait, nor use the watchdog. When the guard's destructor returns, `expire` has returned
        /// or is not called any more.
        Guard(Watchdog& watchdog, std::int64_t milliseconds, std::function<void()> expire);
        ~Guard();
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        Watchdog& m_watchdog;
        Place m_place;
    };

private:
    void Watch() noexcept;
    /// Calls what is due, and returns the time to the next deadline.
    DWORD ExpireDue() noexcept;

    std::mutex m_access;
    std::list<Deadline> m_deadlines;
    bool m_ending = false;
    Event m_changed;
    Event m_ended;
    std::jthread m_thread; ///< Last: it uses everything above.
};

} // namespace vant::host
