#pragma once

#include "host/record/TimeSource.h"
#include "host/record/Value.h"
#include "platform/system.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

struct Argument {
    std::string name;
    Value value;
};

/// One thing that happened in a run: a call of a command on the host, or an event of the runner (service
/// "Runner").
struct Record {
    std::int64_t time = 0; ///< Milliseconds since the run began.
    std::string thread;
    std::string command; ///< The command at work on this thread; empty where there is none.
    std::string service;
    std::string operation;
    std::vector<Argument> arguments;
    std::optional<HRESULT> result; ///< What a call answered; none for an event that has no result.

    void Add(std::string name, Value value) { arguments.push_back({std::move(name), std::move(value)}); }
    /// The argument of that name; null where there is none.
    const Value* Find(std::string_view name) const;
    /// The text argument of that name; empty where there is none.
    std::string Text(std::string_view name) const;
};

/// Takes every record of a run and passes it on, as it happens, to the observers. It keeps nothing itself.
/// The journal is the truth about a run: console, reports and tests are made from it alone.
class Journal {
public:
    using Observer = std::function<void(const Record&)>;

    /// With the time of this process's clock since now: real, scaled or virtual.
    Journal();
    explicit Journal(TimeSource clock) : m_clock(std::move(clock)) {}

    /// Not while a run goes on. Observers are called one at a time, on the thread of the record; they must
    /// not call the journal.
    void Observe(Observer observer) { m_observers.push_back(std::move(observer)); }

    /// Fills in time, thread and command, then calls the observers. Any thread may call. Never fails: a
    /// record that could not be passed on makes the journal incomplete.
    void Add(Record record) noexcept;

    /// Whether every record reached every observer.
    bool IsComplete() const noexcept { return m_complete; }

private:
    TimeSource m_clock;
    std::vector<Observer> m_observers;
    std::mutex m_order;
    std::atomic<bool> m_complete{true};
};

} // namespace vant::host
