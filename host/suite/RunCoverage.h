#pragma once

#include "host/record/Json.h"
#include "host/suite/RunningProcedures.h"

#include <map>
#include <set>
#include <string>

namespace vant::host {

/// Finds out what one run reaches of its procedures. An observer of the run's journal.
class RunCoverage {
public:
    /// As RunningProcedures.
    explicit RunCoverage(const LoadedProcedure& loaded) : m_running(loaded) {}

    void operator()(const Record& record);

    /// For each file the points that were reached: an object of lists.
    Json Reached() const { return m_reached; }

private:
    using Points = std::set<std::string>;

    static void TakeEvent(const Record& record, const RunningProcedure& running, Points& reached);
    static void TakeTransition(const Record& record, const RunningProcedure& running, Points& reached);
    static void TakeMeasurement(const Record& record, const RunningProcedure& running, Points& reached);

    RunningProcedures m_running;
    std::map<std::string, Points> m_reached;
};

} // namespace vant::host
