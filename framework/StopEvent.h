#pragma once

#include "framework/SharedSlot.h"
#include "platform/Event.h"

namespace vant {

/// The auto-reset event that ends the run of a persistent command. Each run gets a new one; an earlier one is
/// closed when the last wait for it has ended.
///
/// Overlapping runs share the newest event from their next wait on. A signal ends one wait. Signals do not
/// accumulate, and a signal before Renew may be lost. To end overlapping runs, signal again until each of
/// them has ended.
class CStopEvent {
public:
    /// Makes the event of a new run. Throws CComException or std::bad_alloc without memory.
    void Renew() { m_event.Set(std::make_shared<Event>()); }

    /// Any thread. Has no effect before the first run.
    void Signal() noexcept {
        if (const auto event = m_event.Get())
            event->Set();
    }
    /// Waits like WaitForSingleObject. Returns WAIT_OBJECT_0 after a signal, WAIT_TIMEOUT without one, and
    /// WAIT_FAILED before the first run.
    DWORD Wait(DWORD milliseconds) noexcept {
        const auto event = m_event.Get();
        return event ? event->Wait(milliseconds) : WAIT_FAILED;
    }

private:
    CSharedSlot<Event> m_event;
};

} // namespace vant
