#pragma once

#include "host/record/Journal.h"

#include <cstddef>
#include <map>
#include <string>

namespace vant::host {

/// Finds the procedure that each record of a run belongs to, among those that have begun and not ended.
class ProcedureDepth {
public:
    /// Takes the next record of the run. Returns how deep its procedure is, from 0 for the outermost one: the
    /// innermost procedure, or the one that has started the record's thread. The beginning and the end of a
    /// procedure belong to that procedure.
    std::size_t Take(const Record& record);

private:
    std::size_t m_running = 0;
    std::map<std::string, std::size_t> m_startedBy; ///< The depths at which threads were started, by name.
};

} // namespace vant::host
