#include "tests/support/HostThreads.h"

#include "framework/interfaces/ThreadService.h"
#include "platform/Clock.h"
#include "platform/ComPtr.h"
#include "platform/Event.h"
#include "tests/support/HostObject.h"

#include <deque>
#include <thread>
#include <utility>

namespace vant::test {

namespace {

struct Registration {
    CallbackRecord record;
    CComPtr<IThreadCallback> callback;
    Event ended{Event::Kind::ManualReset};
    std::thread thread;

    void Run() {
        record.result = callback->RunOnThread();
        ++record.runs;
        callback.Release();
    }
    void RunOnThread(ClockPlace place) {
        const ClockParticipant participant(std::move(place));
        Run();
        ended.Set();
    }
};

/// Lent like the context, so it need not be held to be asked for its interfaces.
class ThreadService final : public DualHostObject<IThreadService> {
public:
    ThreadService(TestHost& host, const HostThreads& settings) noexcept
        : DualHostObject(host), m_settings(settings) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (iid == IID_IThreadService) {
            const HRESULT code = m_host.Enter("QueryInterface", "IThreadService");
            if (m_settings.givesNothing) {
                *out = nullptr;
                return code;
            }
            return HandOut<IThreadService>(SUCCEEDED(code) && m_settings.absent ? E_NOINTERFACE : code, *this,
                                           reinterpret_cast<IThreadService**>(out));
        }
        if (iid == IID_IECMServicesOld)
            return AskEngine(iid, out);
        return DualHostObject::QueryInterface(iid, out);
    }

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IThreadService 7"); }
    HRESULT STDMETHODCALLTYPE UnregisterCallback(std::uint32_t cookie) override {
        return Enter("UnregisterCallback", std::to_string(cookie));
    }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Unexpected("IThreadService 9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return Unexpected("IThreadService 10"); }
    HRESULT STDMETHODCALLTYPE Operation11(std::uint32_t cookie) override {
        return Enter("Operation11", std::to_string(cookie));
    }
    HRESULT STDMETHODCALLTYPE Operation12(std::uint32_t cookie) override {
        return Enter("Operation12", std::to_string(cookie));
    }
    HRESULT STDMETHODCALLTYPE RegisterCallback(IThreadCallback* callback,
                                               const ThreadRegistration* registration,
                                               std::uint32_t* cookie) override {
        EXPECT_EQ(callback, registration->callback);
        return Perform(
            Enter("RegisterCallback", Show(registration->ownerName) + ", " + Show(registration->threadName)),
            [&] {
                *cookie = Start(callback, *registration);
                return S_OK;
            });
    }

    std::deque<Registration> registrations;

private:
    HRESULT AskEngine(REFIID iid, void** out) {
        if (m_host.engineServices)
            return m_host.engineServices->QueryInterface(iid, out);
        *out = nullptr;
        const HRESULT code = m_host.Enter("QueryInterface", "IECMServicesOld");
        return FAILED(code) ? code : E_NOINTERFACE;
    }
    std::uint32_t Start(IThreadCallback* callback, const ThreadRegistration& registration) {
        Registration& added = registrations.emplace_back();
        try {
            added.record = {registration.argument,
                            {registration.settings[0], registration.settings[1], registration.settings[2]},
                            std::wstring(TextOf(registration.ownerName)),
                            std::wstring(TextOf(registration.threadName))};
            added.callback = callback;
            if (m_settings.startsThreads)
                added.thread = std::thread(
                    [&added](ClockPlace place) { added.RunOnThread(std::move(place)); }, ClockPlace());
        } catch (...) {
            registrations.pop_back();
            throw;
        }
        return HostThreads::firstCookie + static_cast<std::uint32_t>(registrations.size() - 1);
    }

    const HostThreads& m_settings;
};

} // namespace

struct HostThreads::Objects {
    Objects(TestHost& host, const HostThreads& settings) : service(host, settings) {}

    Registration& At(std::uint32_t cookie) { return service.registrations.at(cookie - firstCookie); }

    ThreadService service;
};

HostThreads::HostThreads(TestHost& host) : m_objects(std::make_unique<Objects>(host, *this)) {}

HostThreads::~HostThreads() {
    for (const Registration& registration : m_objects->service.registrations)
        if (registration.thread.joinable())
            ADD_FAILURE() << "a thread of the host was not waited for";
    Join();
}

IUnknown* HostThreads::Object() noexcept {
    return &m_objects->service;
}

std::size_t HostThreads::RegistrationCount() const noexcept {
    return m_objects->service.registrations.size();
}

const CallbackRecord& HostThreads::Record(std::uint32_t cookie) const {
    return m_objects->At(cookie).record;
}

void HostThreads::Join() {
    // A command may register another callback while one of its threads runs: the list may grow.
    for (std::size_t index = 0; index < m_objects->service.registrations.size(); ++index) {
        Registration& registration = m_objects->service.registrations[index];
        if (!registration.thread.joinable())
            continue;
        registration.ended.Wait(INFINITE); // not join: virtual time must see that this thread waits
        registration.thread.join();
    }
}

HRESULT HostThreads::Run(std::uint32_t cookie) {
    Registration& registration = m_objects->At(cookie);
    registration.Run();
    return registration.record.result;
}

void HostThreads::ReleaseCallbacks() noexcept {
    for (Registration& registration : m_objects->service.registrations)
        if (!registration.thread.joinable())
            registration.callback.Release();
}

void HostThreads::ForgetRegistrations() noexcept {
    m_objects->service.registrations.clear();
}

} // namespace vant::test
