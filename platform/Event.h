#pragma once

#include "platform/ComException.h"
#include "platform/system.h"

namespace vant {

/// Owns an event of the system, which begins not signalled. Any thread.
class Event {
public:
    /// Whether a wait that the event ends resets it, or only Reset does.
    enum class Kind { AutoReset, ManualReset };

    /// Throws CComException(E_OUTOFMEMORY) if the system has none left.
    explicit Event(Kind kind = Kind::AutoReset)
        : m_handle(CreateEventW(nullptr, kind == Kind::ManualReset, FALSE, nullptr)) {
        if (!m_handle)
            throw CComException(E_OUTOFMEMORY);
    }
    ~Event() { CloseHandle(m_handle); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    void Set() noexcept { SetEvent(m_handle); }
    void Reset() noexcept { ResetEvent(m_handle); }
    /// WAIT_OBJECT_0 if the event ended the wait, WAIT_TIMEOUT after so many milliseconds, WAIT_FAILED.
    DWORD Wait(DWORD milliseconds) noexcept { return WaitForSingleObject(m_handle, milliseconds); }

private:
    const HANDLE m_handle;
};

} // namespace vant
