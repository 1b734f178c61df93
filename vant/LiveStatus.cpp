#include "vant/LiveStatus.h"

#include "host/record/Vocabulary.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"

#include <fmt/format.h>

namespace vant::program {

using namespace host;

namespace {

std::string InSeconds(std::int64_t milliseconds) {
    return FormatTime(milliseconds / 1000 * 1000);
}

} // namespace

void LiveStatus::Take(const Record& record) {
    m_text.Take(record);
    if (record.service == service::Runner)
        TakeEvent(record);
    else if (record.service == service::ConditionSet && record.command.empty())
        m_unmet = m_text.DescribeUnmet(record);
    else if (const Value* const cookie = record.Find(argument::cookie);
             cookie && record.operation == operation::RegisterCallback)
        m_running[record.Text(argument::threadName) + ' ' + Readable(*cookie)] = Printable(record.command);
}

void LiveStatus::TakeEvent(const Record& record) {
    if (record.operation == event::ProcedureStarted) {
        m_steps.emplace_back();
    } else if (record.operation == event::StepEntered && !m_steps.empty()) {
        LeaveStep();
        m_steps.back() = "step " + Printable(record.Text(argument::step));
    } else if (record.operation == event::FinallyStarted && !m_steps.empty()) {
        LeaveStep();
        m_steps.back() = "clean-up";
    } else if (record.operation == event::WaitStarted) {
        const Value* const limit = record.Find(argument::limit);
        const auto* const number = limit ? std::get_if<std::int64_t>(limit) : nullptr;
        m_wait = {Printable(record.Text(argument::waitsFor)), record.time,
                  number ? std::optional(*number) : std::nullopt};
        m_unmet.clear();
    } else if (record.operation == event::TransitionFollowed || record.operation == event::StepRetried) {
        LeaveStep();
    } else if (record.operation == event::ThreadEnded) {
        m_running.erase(record.thread);
    } else if (record.operation == event::ProcedureEnded && !m_steps.empty()) {
        LeaveStep();
        m_steps.pop_back();
    }
}

void LiveStatus::LeaveStep() {
    m_wait.reset();
    m_unmet.clear();
}

std::string LiveStatus::Text(std::int64_t now) const {
    if (m_steps.empty() || m_steps.back().empty())
        return {};
    std::string text = fmt::format("{}  {}", fmt::join(m_steps, ", "), InSeconds(now));
    if (m_wait) {
        const std::string limit = m_wait->limit ? " of at most " + InSeconds(*m_wait->limit) : "";
        text += fmt::format("  waits for {} ({}{})", m_wait->what, InSeconds(now - m_wait->began), limit);
    }
    if (!m_unmet.empty())
        text += ": " + m_unmet;
    std::string running;
    for (const auto& [thread, command] : m_running)
        running += (running.empty() ? "  running: " : ", ") + command;
    return text + running;
}

} // namespace vant::program
