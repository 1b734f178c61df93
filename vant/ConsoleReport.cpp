#include "vant/ConsoleReport.h"

#include "host/procedure/ClassReport.h"
#include "host/record/CallScope.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/runner/Runner.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>
#include <vector>

namespace vant::program {

using namespace host;

namespace {

constexpr std::size_t idWidth = 16;

std::string Padded(std::string text, std::size_t width) {
    if (const std::size_t taken = WidthOf(text); taken < width)
        text.append(width - taken, ' ');
    return text;
}

/// As wide as the longest name of a class.
std::size_t ClassWidth() {
    static const std::size_t width = [] {
        std::size_t longest = 0;
        for (const std::string& name : ClassNames())
            longest = std::max(longest, name.size());
        return longest;
    }();
    return width;
}

std::string JsonOf(const Value* value) {
    return value ? Printable(ToJson(*value).dump()) : "null";
}

/// Often the only hint at why a command failed or did nothing.
std::string LineOfFailedCall(const Record& record) {
    std::vector<std::string> arguments;
    for (const Argument& each : record.arguments)
        arguments.push_back(fmt::format("{} = {}", each.name, JsonOf(&each.value)));
    return fmt::format("call failed: {} {}{}{}: {}", record.service, record.operation,
                       arguments.empty() ? "" : " ", fmt::join(arguments, ", "), ToText(*record.result));
}

std::string KeyOf(const Record& record) {
    return fmt::format("{}\n{}", record.thread, record.command);
}

} // namespace

void ConsoleReport::operator()(const Record& record) {
    if (record.service == service::Runner)
        WriteEvent(record);
    else if (const std::string line = LineOfCall(record); !line.empty())
        Write(record, line);
    m_out.flush();
}

void ConsoleReport::WriteEvent(const Record& record) {
    if (record.operation == event::ProcedureStarted) {
        m_out << Printable(record.Text(argument::name)) << '\n';
    } else if (record.operation == event::StepEntered) {
        m_linesOfThreads.clear();
        m_out << "\nstep " << Printable(record.Text(argument::step)) << '\n';
    } else if (record.operation == event::CommandEnded) {
        Write(record, LineOfCommand(record));
    } else if (record.operation == event::ThreadEnded) {
        m_out << fmt::format("  {} has ended\n", Padded(Printable(record.command), idWidth));
    } else if (record.operation == event::TransitionFollowed) {
        m_out << "  -> " << Printable(record.Text(argument::to)) << '\n';
    } else if (record.operation == event::DataLeft) {
        WriteEntry(record);
    } else if (record.operation == event::ProcedureEnded) {
        WriteVerdict(record);
    }
}

std::string ConsoleReport::LineOfCall(const Record& record) {
    if (!record.result)
        return {};
    if (FAILED(*record.result))
        return LineOfFailedCall(record);
    if (record.operation == operation::ShowInstruction)
        return "instruction: " + Printable(record.Text(argument::text));
    if (record.operation == operation::SetComponentProperty)
        return fmt::format("display: {}.{} = {}", Printable(record.Text(argument::componentId)),
                           Printable(record.Text(argument::name)), JsonOf(record.Find(argument::value)));
    if (record.operation == operation::RegisterCallback)
        m_runningOn.insert(KeyOf(record));
    else if (record.service == service::ConditionSet && record.Find(argument::failed))
        return fmt::format("conditions {} not met: {}, but was {}", Printable(record.Text(argument::name)),
                           Printable(record.Text(argument::failed)), JsonOf(record.Find(argument::value)));
    return {};
}

std::string ConsoleReport::LineOfCommand(const Record& record) {
    const bool runsOn = m_runningOn.erase(KeyOf(record)) != 0;
    const HRESULT result = record.result.value_or(E_UNEXPECTED);
    const std::string outcome =
        FAILED(result) ? fmt::format("FAILED {} ({})", ToText(result), record.Text(argument::phase))
        : runsOn       ? "ok, runs on"
                       : "ok";
    const std::string caller = record.Text(argument::caller);
    return fmt::format("{} {} {}{}{}", Padded(Printable(record.command), idWidth),
                       Padded(Printable(record.Text(argument::className)), ClassWidth()), outcome,
                       caller.empty() ? "" : ", run by ", Printable(caller));
}

void ConsoleReport::Write(const Record& record, const std::string& line) {
    if (record.thread == mainThread || m_linesOfThreads.insert(line).second)
        m_out << fmt::format("  {}\n", line); // In one piece: other threads may write messages meanwhile.
}

void ConsoleReport::WriteEntry(const Record& record) {
    if (!m_hasEntries)
        m_out << "\ndata\n";
    m_hasEntries = true;
    m_out << "  " << Printable(record.Text(argument::name)) << " = " << JsonOf(record.Find(argument::value))
          << '\n';
}

void ConsoleReport::WriteVerdict(const Record& record) {
    const std::string verdict = record.Text(argument::verdict);
    m_out << '\n';
    if (m_coloured)
        m_out << (verdict == NameOf(Verdict::Passed) ? "\x1b[32m" : "\x1b[31m");
    m_out << verdict;
    if (m_coloured)
        m_out << "\x1b[0m";
    m_out << ": " << Printable(record.Text(argument::reason)) << '\n';
}

} // namespace vant::program
