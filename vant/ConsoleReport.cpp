#include "vant/ConsoleReport.h"

#include "host/record/CallScope.h"
#include "host/record/Json.h"
#include "host/runner/LoadedModule.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <string>

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

std::string Quoted(const Value* value) {
    return value ? Printable(ToJson(*value).dump()) : "null";
}

/// Why a command failed, or did nothing, is seldom to be seen but from the call that failed.
std::string LineOfFailedCall(const Record& record) {
    std::string line = "call failed: " + record.service + ' ' + record.operation;
    for (const Argument& each : record.arguments)
        line += (&each == &record.arguments.front() ? " " : ", ") + each.name + " = " + Quoted(&each.value);
    return line + ": " + ToText(*record.result);
}

std::string KeyOf(const Record& record) {
    return record.thread + '\n' + record.command;
}

} // namespace

void ConsoleReport::operator()(const Record& record) {
    if (record.service == "Runner")
        WriteEvent(record);
    else if (const std::string line = LineOfCall(record); !line.empty())
        Write(record, line);
    m_out.flush();
}

void ConsoleReport::WriteEvent(const Record& record) {
    if (record.operation == "ProcedureStarted") {
        m_out << Printable(record.Text("name")) << '\n';
    } else if (record.operation == "StepEntered") {
        m_linesOfThreads.clear();
        m_out << "\nstep " << Printable(record.Text("step")) << '\n';
    } else if (record.operation == "CommandEnded") {
        Write(record, LineOfCommand(record));
    } else if (record.operation == "ThreadEnded") {
        m_out << "  " + Padded(Printable(record.command), idWidth) + " has ended\n";
    } else if (record.operation == "TransitionFollowed") {
        m_out << "  -> " << Printable(record.Text("to")) << '\n';
    } else if (record.operation == "DataLeft") {
        WriteEntry(record);
    } else if (record.operation == "ProcedureEnded") {
        WriteVerdict(record);
    }
}

std::string ConsoleReport::LineOfCall(const Record& record) {
    if (!record.result)
        return {};
    if (FAILED(*record.result))
        return LineOfFailedCall(record);
    if (record.operation == "ShowInstruction")
        return "instruction: " + Printable(record.Text("text"));
    if (record.operation == "SetComponentProperty")
        return "display: " + Printable(record.Text("componentId") + '.' + record.Text("name")) + " = " +
               Quoted(record.Find("value"));
    if (record.operation == "RegisterCallback")
        m_runningOn.insert(KeyOf(record));
    else if (record.service == "ConditionSet" && record.Find("failed"))
        return "conditions " + Printable(record.Text("name")) +
               " not met: " + Printable(record.Text("failed")) + ", but was " + Quoted(record.Find("value"));
    return {};
}

std::string ConsoleReport::LineOfCommand(const Record& record) {
    std::string line = Padded(Printable(record.command), idWidth) + ' ' +
                       Padded(Printable(record.Text("class")), ClassWidth()) + ' ';
    const bool runsOn = m_runningOn.erase(KeyOf(record)) != 0;
    if (record.result && SUCCEEDED(*record.result))
        line += runsOn ? "ok, runs on" : "ok";
    else
        line += "FAILED " + ToText(record.result.value_or(E_UNEXPECTED)) + " (" + record.Text("phase") + ')';
    if (const std::string caller = record.Text("caller"); !caller.empty())
        line += ", run by " + Printable(caller);
    return line;
}

void ConsoleReport::Write(const Record& record, const std::string& line) {
    if (record.thread == mainThread || m_linesOfThreads.insert(line).second)
        m_out << "  " + line + '\n'; // in one piece: a message may come from another thread
}

void ConsoleReport::WriteEntry(const Record& record) {
    if (!m_hasEntries)
        m_out << "\ndata\n";
    m_hasEntries = true;
    m_out << "  " << Printable(record.Text("name")) << " = " << Quoted(record.Find("value")) << '\n';
}

void ConsoleReport::WriteVerdict(const Record& record) {
    const std::string verdict = record.Text("verdict");
    m_out << '\n';
    if (m_coloured)
        m_out << (verdict == "passed" ? "\x1b[32m" : "\x1b[31m");
    m_out << verdict;
    if (m_coloured)
        m_out << "\x1b[0m";
    m_out << ": " << Printable(record.Text("reason")) << '\n';
}

} // namespace vant::program
