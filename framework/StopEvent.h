#pragma once

#include "framework/SharedSlot.h"
#include "platform/Event.h"

namespace vant {

/// The auto-reset event that ends the run of a persistent command. Each run gets a new one; an earlier one is
/// closed when the last wait for it has ended.
///
/// Runs that overlap share the newest event from their next wait on. A signal ends one wait; signals do not
/// accumulate, and one that was given before Renew may be lost. Who has to end overlapping runs signals again
/// until each of them has ended.
class CStopEvent {
public:
    /// For a run that begins. Throws CComException or std::bad_alloc where there is no memory for an event.
    void Renew() { m_event.Set(std::make_shared<Event>()); }

    /// Any thread. Nothing happens before the first run.
    void Signal() noexcept {
        if (const auto event = m_event.Get())
            event->Set();
    }
    /// As WaitForSingleObject: WAIT_TIMEOUT where nobody signalled, WAIT_OBJECT_0, WAIT_FAILED before the
    /// first run.
    DWORD Wait(DWORD milliseconds) noexcept {
        const auto event = m_event.Get();
        return event ? event->Wait(milliseconds) : WAIT_FAILED;
    }

private:
    CSharedSlot<Event> m_event;
};

} // namespace vant
