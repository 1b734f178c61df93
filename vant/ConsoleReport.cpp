#include "vant/ConsoleReport.h"

#include "host/record/Json.h"

#include <string>

namespace vant {

namespace {

std::string Padded(std::string text, std::size_t width) {
    if (text.size() < width)
        text.resize(width, ' ');
    return text;
}

} // namespace

void ConsoleReport::operator()(const Record& record) {
    if (record.service != "Runner")
        WriteShown(record);
    else if (record.operation == "ProcedureStarted")
        m_out << record.Text("name") << '\n';
    else if (record.operation == "StepEntered")
        m_out << "\nstep " << record.Text("step") << '\n';
    else if (record.operation == "CommandEnded")
        WriteCommand(record);
    else if (record.operation == "TransitionFollowed")
        m_out << "  -> " << record.Text("to") << '\n';
    else if (record.operation == "DataLeft")
        WriteEntry(record);
    else if (record.operation == "ProcedureEnded")
        WriteVerdict(record);
    m_out.flush();
}

void ConsoleReport::WriteShown(const Record& record) {
    if (!record.result || FAILED(*record.result))
        return;
    if (record.operation == "ShowInstruction")
        m_out << "  instruction: " << record.Text("text") << '\n';
    else if (record.operation == "SetComponentProperty")
        m_out << "  display: " << record.Text("componentId") << '.' << record.Text("name") << " = "
              << Json(record.Text("value")).dump() << '\n';
}

void ConsoleReport::WriteCommand(const Record& record) {
    m_out << "  " << Padded(record.command, 16) << ' ' << Padded(record.Text("class"), 20) << ' ';
    if (record.result && SUCCEEDED(*record.result))
        m_out << "ok";
    else
        m_out << "FAILED " << ToText(record.result.value_or(E_UNEXPECTED)) << " (" << record.Text("phase")
              << ')';
    if (const std::string caller = record.Text("caller"); !caller.empty())
        m_out << ", run by " << caller;
    m_out << '\n';
}

void ConsoleReport::WriteEntry(const Record& record) {
    if (!m_hasEntries)
        m_out << "\ndata\n";
    m_hasEntries = true;
    const Value* const value = record.Find("value");
    m_out << "  " << record.Text("name") << " = " << (value ? ToJson(*value).dump() : "null") << '\n';
}

void ConsoleReport::WriteVerdict(const Record& record) {
    const std::string verdict = record.Text("verdict");
    m_out << '\n';
    if (m_coloured)
        m_out << (verdict == "passed" ? "\x1b[32m" : "\x1b[31m");
    m_out << verdict;
    if (m_coloured)
        m_out << "\x1b[0m";
    m_out << ": " << record.Text("reason") << '\n';
}

} // namespace vant
