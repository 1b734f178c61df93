#pragma once

#include "host/record/Journal.h"
#include "platform/ComException.h"
#include "platform/system.h"

#include <functional>
#include <new>
#include <optional>
#include <utility>

namespace vant::host {

/// The gate through which every call of a command on the host passes. It performs and records the call, or
/// has an interceptor replace it.
class CallGate {
public:
    /// Is shown each call before it is performed: a record whose service, operation, thread and command are
    /// filled in. If it returns a result, the call is not performed; it returns that result, is recorded
    /// without arguments, and its outputs stay as they are. If it returns nothing, the call is performed.
    /// Called on the thread of the call, possibly on several threads at once.
    using Interceptor = std::function<std::optional<HRESULT>(const Record& call)>;

    /// The journal must outlive the gate.
    explicit CallGate(Journal& journal) noexcept : m_journal(journal) {}

    /// Is shown each call when it is over, with its service, operation, thread, command, arguments and
    /// result. Called on the thread of the call, possibly on several threads at once. Must not throw.
    using Watcher = std::function<void(const Record& call)>;

    /// Not during a run.
    void Watch(Watcher watcher) { m_watcher = std::move(watcher); }

    /// Not during a run. An empty interceptor lets every call pass, as at the beginning.
    void Intercept(Interceptor interceptor) { m_interceptor = std::move(interceptor); }
    const Interceptor& CurrentInterceptor() const noexcept { return m_interceptor; }

    /// Performs one call: `body(record)` adds the arguments to the record and returns the HRESULT. The record
    /// is written when the call is over. No exception gets out: CComException becomes its code,
    /// std::bad_alloc becomes E_OUTOFMEMORY, any other becomes E_FAIL. Any thread may call.
    template <class Body>
    HRESULT Perform(const char* service, const char* operation, Body&& body) noexcept {
        Record record;
        try {
            record.service = service;
            record.operation = operation;
            const std::optional<HRESULT> intercepted = Intercepted(record);
            record.result = intercepted ? *intercepted : body(record);
        } catch (const CComException& failure) {
            record.result = failure.Code();
        } catch (const std::bad_alloc&) {
            record.result = E_OUTOFMEMORY;
        } catch (...) {
            record.result = E_FAIL;
        }
        const HRESULT result = *record.result;
        ShowToWatcher(record);
        m_journal.Add(std::move(record));
        return result;
    }

private:
    std::optional<HRESULT> Intercepted(Record& call) const;
    void ShowToWatcher(Record& call) noexcept;

    Journal& m_journal;
    Interceptor m_interceptor;
    Watcher m_watcher;
};

} // namespace vant::host
