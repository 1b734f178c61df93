#include "host/record/ProcedureDepth.h"

#include "host/record/ReportText.h"
#include "host/record/Vocabulary.h"

#include <algorithm>

namespace vant::host {

std::size_t ProcedureDepth::Take(const Record& record) {
    const bool isEvent = record.service == service::Runner;
    if (isEvent && record.operation == event::ProcedureStarted)
        ++m_running;
    const std::size_t innermost = std::max<std::size_t>(m_running, 1) - 1;
    const auto started = m_startedBy.find(record.thread);
    const std::size_t depth = started == m_startedBy.end() ? innermost : std::min(started->second, innermost);
    if (isEvent && record.operation == event::ProcedureEnded)
        m_running = innermost;
    else if (isEvent && record.operation == event::ThreadEnded)
        m_startedBy.erase(record.thread);
    else if (const Value* const cookie = record.Find(argument::cookie);
             cookie && record.operation == operation::RegisterCallback)
        m_startedBy[record.Text(argument::threadName) + ' ' + Readable(*cookie)] = depth;
    return depth;
}

} // namespace vant::host
