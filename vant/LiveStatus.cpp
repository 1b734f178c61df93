#include "vant/LiveStatus.h"

#include "host/procedure/ClassReport.h"
#include "host/record/Vocabulary.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"

#include <charconv>
#include <fmt/format.h>
#include <system_error>

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
        m_running[record.Text(argument::threadName) + ' ' + Readable(*cookie)] = {
            Printable(record.command), record.time, 0, m_extents[record.command]};
    else if (record.operation == operation::get_Value && SUCCEEDED(record.result.value_or(E_FAIL)))
        CountReading(record.thread);
}

void LiveStatus::CountReading(const std::string& thread) {
    if (const auto running = m_running.find(thread); running != m_running.end())
        ++running->second.readings;
}

void LiveStatus::TakeProperty(const Record& record) {
    Extent& extent = m_extents[record.command];
    const std::string kind = KindOfProperty(extent.className, record.Text(argument::name));
    const std::string value = record.Text(argument::value);
    std::int64_t number = 0;
    if (std::from_chars(value.data(), value.data() + value.size(), number).ec != std::errc())
        return;
    constexpr std::int64_t longestSeconds = 1'000'000'000;
    if (kind == "count")
        extent.readings = number;
    else if (kind == "seconds" && number <= longestSeconds)
        extent.duration = number * 1000;
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
    } else if (record.operation == event::CommandCreated) {
        m_extents[record.command] = {record.Text(argument::className), {}, {}};
    } else if (record.operation == event::PropertySet) {
        TakeProperty(record);
    } else if (record.operation == event::WaitStarted) {
        const Value* const limit = record.Find(argument::limit);
        const auto* const number = limit ? std::get_if<std::int64_t>(limit) : nullptr;
        m_wait = {Printable(record.Text(argument::waitsFor)), record.time,
                  number ? std::optional(*number) : std::nullopt};
        m_unmet.clear();
    } else if (record.operation == event::PromptShown && record.command.empty()) {
        m_wait = {"an answer", record.time, std::nullopt};
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

std::string LiveStatus::Describe(const Running& running, std::int64_t now) {
    if (running.extent.readings)
        return fmt::format("{} ({} of {} readings)", running.command, running.readings,
                           *running.extent.readings);
    if (running.extent.duration)
        return fmt::format("{} ({} of {})", running.command, InSeconds(now - running.began),
                           InSeconds(*running.extent.duration));
    return running.command;
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
    for (const auto& [thread, each] : m_running)
        running += (running.empty() ? "  running: " : ", ") + Describe(each, now);
    return text + running;
}

} // namespace vant::program
