#pragma once

#include "host/procedure/Loading.h"
#include "host/record/Journal.h"
#include "host/record/ProcedureDepth.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// The name of a procedure's file in results: the same for every way to write it.
std::string NormalName(const std::string& file);

/// A procedure that has begun and not ended, in a run.
struct RunningProcedure {
    const Procedure* procedure = nullptr;
    std::string file{}; ///< As NormalName returns it.
    std::string step{}; ///< The current one; empty before the first.
    bool inFinally = false;
};

/// Follows a run through its procedures, by the records of its journal.
class RunningProcedures {
public:
    /// The procedure must outlive this object. Values of its data and engine may differ from those of the
    /// run.
    explicit RunningProcedures(const LoadedProcedure& loaded);

    /// Takes the next record. Returns the procedure that it belongs to, as it is after the record; null if
    /// none has begun. Valid until the next call.
    const RunningProcedure* Take(const Record& record);

private:
    void Begin();

    const Procedure& m_outermost;
    std::map<const Procedure*, std::string> m_files;
    ProcedureDepth m_depths;
    std::vector<RunningProcedure> m_running;
    bool m_hasEnded = false; ///< The innermost one, by the last record.
};

/// The conditions of a set that an evaluation has looked at, and whether they were met; empty if the outcome
/// is not known.
std::vector<std::pair<const Condition*, bool>> EvaluatedConditions(const Record& evaluation,
                                                                   const Procedure& procedure);

} // namespace vant::host
