#pragma once

#include "platform/Clock.h"
#include "tests/support/VirtualTime.h"
#include "tests/unit/commands/PersistentRun.h"

#include <string>

namespace vant::test {

/// A persistent command on a thread of its own in virtual time. `log` has every call of its thread with the
/// time: `250 Evaluate()`.
template <class Class>
class TimedRun : public PersistentRun<Class> {
protected:
    TimedRun() {
        this->host.Threads().startsThreads = true;
        this->host.onCall = [this](const std::string& call) {
            log.push_back(std::to_string(ClockMilliseconds()) + ' ' + call);
        };
    }

    /// Executes a new command; its thread runs when the test waits.
    void Start(Properties properties) {
        this->Execute(properties);
        log.clear();
    }
    /// Waits until the command's thread has ended.
    void Join() { this->host.Threads().Join(); }
    void RunToEnd(Properties properties) {
        Start(properties);
        Join();
    }
    /// Calls in the log whose text begins so.
    Calls LoggedCalls(const std::string& operation) const {
        Calls found;
        for (const std::string& entry : log) {
            if (entry.compare(entry.find(' ') + 1, operation.size(), operation) == 0)
                found.push_back(entry);
        }
        return found;
    }

    Calls log;

private:
    VirtualTime m_virtualTime;
};

} // namespace vant::test
