#pragma once

#include "host/procedure/Loading.h"
#include "host/record/Journal.h"
#include "host/record/Json.h"
#include "host/record/ProcedureDepth.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace vant::host {

/// The name of a procedure's file for the coverage: the same for every way to write it.
std::string CoveredFile(const std::string& file);

/// Finds out what one run reaches of its procedures. An observer of the run's journal.
class RunCoverage {
public:
    /// The procedure must outlive this object. Values of its data and engine may differ from those of the
    /// run.
    explicit RunCoverage(const LoadedProcedure& loaded);

    void operator()(const Record& record);

    /// For each file the points that were reached: an object of lists.
    Json Reached() const { return m_reached; }

private:
    /// A procedure that has begun and not ended.
    struct Running {
        const Procedure* procedure = nullptr;
        std::set<std::string>* reached = nullptr;
        const Step* step = nullptr;
        bool cleansUp = false;
    };

    void Begin();
    void TakeEvent(const Record& record, Running& running);
    static void TakeTransition(const Record& record, const Running& running);
    static void TakeEvaluation(const Record& record, const Running& running);
    static void TakeMeasurement(const Record& record, const Running& running);

    const Procedure& m_outermost;
    std::map<const Procedure*, std::string> m_files;
    std::map<std::string, std::set<std::string>> m_reached;
    ProcedureDepth m_depths;
    std::vector<Running> m_running;
};

} // namespace vant::host
