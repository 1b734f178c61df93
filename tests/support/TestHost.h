#pragma once

#include "framework/interfaces/HostServices.h"
#include "platform/Variant.h"
#include "platform/system.h"
#include "tests/support/HostThreads.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace vant::test {

/// One parameter of the simulated engine.
struct HostParameter {
    std::wstring name;
    std::wstring text; ///< what get_Text returns
    CComVariant value; ///< what get_Value returns
    std::wstring unitsKey;
    bool offersInterface = true; ///< whether QueryInterface offers IParameterOld
};

/// A complete host in memory: the context, its nine services, the controller. It notes every call in order,
/// can make any call fail or throw, and counts the references that are held on its objects. A call of a slot
/// that no command uses, of an object without references, or one Release too many, is a failure of the
/// running test.
///
/// Calls are accepted on any thread; the public data may be touched only while no command runs. The host must
/// outlive the commands that hold its services.
class TestHost {
public:
    TestHost();
    ~TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    // Both are lent: no reference is added.
    IVantContext* Context() noexcept;
    IVantController* Controller() noexcept;

    // What the services work on.
    std::map<std::wstring, CComVariant, std::less<>> dataStore;
    std::map<std::wstring, HostParameter, std::less<>> parameters;
    /// What GetParameter returns for kind 2, by identifier; the objects are lent. For a null one it succeeds
    /// and returns no object.
    std::map<std::wstring, IUnknown*, std::less<>> arrays;
    std::map<std::wstring, HRESULT, std::less<>>
        commandResults; ///< RunCommand's result by identifier; else S_OK
    std::wstring connectionIdentifier = L"1";
    std::vector<std::wstring> transitions;                ///< all that were set, in order
    std::vector<IVantPersistentCommand*> stoppedCommands; ///< all that the controller was told of; not held
    /// The object that the thread service offers as IECMServicesOld; an EngineServices puts itself here.
    IUnknown* engineServices = nullptr;

    /// The thread service.
    HostThreads& Threads() noexcept;

    /// Every call so far as text, `SetValue(drop, "3")`, also those that failed. Names are written bare,
    /// values as Show writes them. IUnknown's operations do not count as calls, except asking a parameter for
    /// its interface: `QueryInterface(IParameterOld)`.
    std::vector<std::string> calls;
    /// Operations that fail with the given code, by name ("GetValue", "get_DataStore", "QueryInterface").
    /// With a success code they do their work and return that code.
    std::map<std::string, HRESULT, std::less<>> fail;

    /// Called with every call as it is noted, on the calling thread and before the call does anything.
    std::function<void(const std::string& call)> onCall;

    /// Makes call `number` fail with `code`, counted from 1 at the last ForgetCalls. A number of 0 fails
    /// none.
    void FailCall(std::size_t number, HRESULT code) noexcept;
    /// Makes call `number` throw std::runtime_error, as a host should not.
    void ThrowAtCall(std::size_t number) noexcept;
    std::size_t CallCount() const noexcept { return calls.size(); }
    void ForgetCalls() noexcept { calls.clear(); }

    /// References held on all objects of this host.
    LONG OutstandingReferences() const noexcept { return m_references.load(); }

    /// For the host's own objects: notes a call and returns the code it has to fail with, else S_OK.
    HRESULT Enter(std::string_view operation, std::string_view arguments);
    /// For the host's own objects: counts references.
    void CountReference(LONG change) noexcept { m_references += change; }
    /// For the host's own objects: guards the public data.
    std::mutex& Mutex() noexcept { return m_mutex; }

private:
    struct Objects;

    std::mutex m_mutex;
    std::size_t m_failAt = 0;
    HRESULT m_failCode = E_FAIL;
    std::size_t m_throwAt = 0;
    std::atomic<LONG> m_references{0};
    std::unique_ptr<Objects> m_objects;
};

/// A text for logs and messages: printable ASCII unchanged, other characters as \u{HEX}; `null` for a null
/// BSTR.
std::string Show(std::wstring_view text);
std::string Show(BSTR text);
/// A value for logs and messages: `"3"` for a string, `3` for an integer, `3.0` for a double, `true`,
/// `empty`; `null` for a null string; the type's number for any other.
std::string Show(const VARIANT& value);

} // namespace vant::test
