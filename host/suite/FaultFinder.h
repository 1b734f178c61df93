#pragma once

#include "host/suite/Fault.h"
#include "host/suite/RunningProcedures.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace vant::host {

/// Finds every fault that can happen in a run, while it runs without any. An observer of the run's journal.
class FaultFinder {
public:
    /// As RunningProcedures.
    explicit FaultFinder(const LoadedProcedure& loaded) : m_running(loaded) {}

    void operator()(const Record& record);

    /// The faults: of the calls in the order in which they ended, then of the parameters that were read and
    /// written. Of calls with the same name by the same command on one thread, only `repeats`: the first ones
    /// and the last one; 0: all.
    std::vector<Fault> Faults(std::size_t repeats) const;

private:
    /// Calls with the same name by the same command.
    struct Key {
        std::string thread;
        std::string command;
        std::string call;

        friend bool operator<(const Key& a, const Key& b) {
            return std::tie(a.thread, a.command, a.call) < std::tie(b.thread, b.command, b.call);
        }
    };
    struct EnteredStep {
        std::int64_t time = 0;
        std::string step;
        std::string place;
    };

    void TakeCall(const Record& call, const RunningProcedure& running);
    void TakeParameters(const Record& call, const RunningProcedure& running);
    void AddLost(std::vector<Fault>& faults) const;
    void AddRefused(std::vector<Fault>& faults) const;

    RunningProcedures m_running;
    std::vector<Fault> m_calls;
    std::map<Key, std::size_t> m_counts;
    std::vector<EnteredStep> m_steps;
    std::map<std::string, std::int64_t> m_lastReads; ///< Of parameters.
    std::map<std::string, std::string> m_writers; ///< Parameters that were written, and by what: FILE:LINE.
    /// What each command writes in the clean-up.
    std::map<std::string, std::set<std::string>> m_cleanedUp;
};

} // namespace vant::host
