#include "host/runner/Watchdog.h"

#include "platform/Clock.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vant::host {

Watchdog::Watchdog() {
    m_thread = std::jthread([this, place = ClockPlace()]() mutable {
        const ClockParticipant participant(std::move(place));
        Watch();
        m_ended.Set();
    });
}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(m_access);
        m_ending = true;
    }
    m_changed.Set();
    m_ended.Wait(INFINITE); // Before the join: virtual time must be able to go on to the thread's end.
}

Watchdog::Guard::Guard(Watchdog& watchdog, std::int64_t milliseconds, std::function<void()> expire)
    : m_watchdog(watchdog) {
    {
        const std::lock_guard lock(m_watchdog.m_access);
        m_place = m_watchdog.m_deadlines.insert(m_watchdog.m_deadlines.end(),
                                                {ClockMilliseconds() + milliseconds, std::move(expire)});
    }
    m_watchdog.m_changed.Set();
}

Watchdog::Guard::~Guard() {
    const std::lock_guard lock(m_watchdog.m_access);
    m_watchdog.m_deadlines.erase(m_place);
}

void Watchdog::Watch() noexcept {
    for (;;) {
        const DWORD wait = ExpireDue();
        {
            const std::lock_guard lock(m_access);
            if (m_ending)
                return;
        }
        m_changed.Wait(wait);
    }
}

DWORD Watchdog::ExpireDue() noexcept {
    const std::lock_guard lock(m_access);
    const std::int64_t now = ClockMilliseconds();
    std::int64_t next = std::numeric_limits<std::int64_t>::max();
    for (Deadline& each : m_deadlines) {
        if (!each.expire)
            continue;
        if (each.at > now)
            next = std::min(next, each.at);
        else
            std::exchange(each.expire, nullptr)();
    }
    constexpr std::int64_t longestWait = 1'000'000'000;
    return next == std::numeric_limits<std::int64_t>::max()
               ? INFINITE
               : static_cast<DWORD>(std::min(next - now, longestWait));
}

} // namespace vant::host
