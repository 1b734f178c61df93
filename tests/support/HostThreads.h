#pragma once

#include "platform/system.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace vant::test {

class TestHost;

/// How a command registered a callback, and how the callback ended.
struct CallbackRecord {
    std::uint32_t argument = 0;
    std::uint32_t settings[3] = {};
    std::wstring ownerName;
    std::wstring threadName;
    int runs = 0;
    HRESULT result = S_OK; ///< What the last run returned.
};

/// The thread service of a host in memory: IThreadService on the object of context slot 17. Every callback
/// gets its own thread, which takes part in virtual time; threads run first in the order of their
/// registrations. A callback is held until its thread has run it. Calls are noted by, and can be made to fail
/// at, the TestHost: `QueryInterface(IThreadService)`, `RegisterCallback(OWNER, THREAD)`,
/// `UnregisterCallback(COOKIE)`, `Operation11(COOKIE)`, `Operation12(COOKIE)`.
///
/// A test keeps a command alive, and calls Join, before it looks at what the command's thread did. The
/// settings and the records may be touched only while no thread runs.
class HostThreads {
public:
    explicit HostThreads(TestHost& host);
    /// Threads that still run fail the test and are waited for.
    ~HostThreads();
    HostThreads(const HostThreads&) = delete;
    HostThreads& operator=(const HostThreads&) = delete;

    /// A request for IThreadService returns E_NOINTERFACE.
    bool absent = false;
    /// Asking for IThreadService succeeds and returns null.
    bool givesNothing = false;
    /// Whether a registration starts a thread. Without, the callback waits for Run.
    bool startsThreads = true;

    /// The object of context slot 17; lent.
    IUnknown* Object() noexcept;

    /// Registrations that succeeded. The first has the cookie `firstCookie`, the next one more.
    std::size_t RegistrationCount() const noexcept;
    static constexpr std::uint32_t firstCookie = 101;
    const CallbackRecord& Record(std::uint32_t cookie = firstCookie) const;

    /// Waits until all threads have ended. Virtual time passes meanwhile, even if the caller
    /// takes part.
    void Join();
    /// Calls the callback on the calling thread, releases it and returns its result. For a registration that
    /// started no thread.
    HRESULT Run(std::uint32_t cookie = firstCookie);
    /// Releases the callbacks that started no thread and have not been run.
    void ReleaseCallbacks() noexcept;
    /// Forgets all registrations, none of which may still run or wait for Run; the next is the first again.
    void ForgetRegistrations() noexcept;

private:
    struct Objects;

    std::unique_ptr<Objects> m_objects;
};

} // namespace vant::test
