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

/// One thing that happened in a run: a call of a command on the host, or an event of the run. Vocabulary.h
/// has the names that occur in it.
struct Record {
    std::int64_t time = 0; ///< Milliseconds since the run began.
    std::string thread;
    std::string command;   ///< The command at work on this thread; empty if there is none.
    std::string service;   ///< `service::Runner` for an event.
    std::string operation; ///< Or the event.
    std::vector<Argument> arguments;
    std::optional<HRESULT> result; ///< Nothing for an event that has no result.

    void Add(std::string name, Value value) { arguments.push_back({std::move(name), std::move(value)}); }
    /// The argument of that name; null if there is none.
    const Value* Find(std::string_view name) const;
    /// The text argument of that name; empty if there is none.
    std::string Text(std::string_view name) const;
};

/// Passes every record of a run on to the observers as it happens, and keeps nothing itself. It is the only
/// source of console, reports and tests.
class Journal {
public:
    using Observer = std::function<void(const Record&)>;

    /// Times count from now, by the clock of this process: real, scaled or virtual.
    Journal();
    explicit Journal(TimeSource clock) : m_clock(std::move(clock)) {}

    /// Not during a run. Observers are called one at a time, on the thread of the record; they must not call
    /// the journal.
    void Observe(Observer observer) { m_observers.push_back(std::move(observer)); }

    /// Fills in time, thread and command, then calls the observers. Any thread may call. If an observer
    /// throws, or memory runs out, the journal is incomplete from then on.
    void Add(Record record) noexcept;
    /// Milliseconds since the run began, as in records. Any thread may call.
    std::int64_t Now() const { return m_clock(); }

    /// Adds an event of the run, one of those in Vocabulary.h. Throws std::bad_alloc.
    void AddEvent(const char* event, std::vector<Argument> arguments, std::optional<HRESULT> result = {});

    /// For a record that could not even be made.
    void MarkIncomplete() noexcept { m_complete = false; }

    /// Whether every record reached every observer.
    bool IsComplete() const noexcept { return m_complete; }

private:
    TimeSource m_clock;
    std::vector<Observer> m_observers;
    std::mutex m_order;
    std::atomic<bool> m_complete{true};
};

} // namespace vant::host
