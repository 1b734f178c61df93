#include "vant/ConsoleReport.h"

#include "host/procedure/ClassReport.h"
#include "host/record/CallScope.h"
#include "host/record/Codes.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/runner/Measurements.h"
#include "host/runner/Runner.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <utility>

namespace vant::program {

using namespace host;

namespace {

constexpr std::size_t idWidth = 16;
constexpr std::size_t mostValues = 4;

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

std::string TextIn(const Record& record, std::string_view name) {
    return Printable(record.Text(name));
}

/// An argument of any type for a person; empty if it is missing or null.
std::string ReadableIn(const Record& record, std::string_view name) {
    const Value* const value = record.Find(name);
    return !value || std::holds_alternative<std::nullptr_t>(*value) ? std::string() : Readable(*value);
}

std::int64_t NumberOf(const Record& record, std::string_view name) {
    const Value* const value = record.Find(name);
    const auto* const number = value ? std::get_if<std::int64_t>(value) : nullptr;
    return number ? *number : 0;
}

/// Empty for a moment: in real time nothing is done at once.
std::string Lasted(std::int64_t milliseconds) {
    return milliseconds < 100 ? "" : fmt::format(" ({})", FormatDuration((milliseconds + 5) / 10 * 10));
}

std::string KeyOf(const Record& record) {
    return fmt::format("{}\n{}", record.thread, record.command);
}

std::string WithUnits(std::string value, const std::string& units) {
    return units.empty() || value.empty() ? value : value + ' ' + units;
}

using Row = std::array<std::string, 5>;

Row RowOf(const Record& measured) {
    const std::string step = TextIn(measured, argument::step);
    return {TextIn(measured, argument::name),
            WithUnits(ReadableIn(measured, argument::value), TextIn(measured, argument::units)),
            TextIn(measured, argument::limits), TextIn(measured, argument::verdict),
            step.empty()
                ? ""
                : fmt::format("{} in {}", FormatTime(NumberOf(measured, argument::at) / 1000 * 1000), step)};
}

/// The measurements as lines with columns.
std::vector<std::string> TableOf(const std::vector<Record>& measurements) {
    std::vector<Row> rows;
    std::array<std::size_t, 5> widths{};
    for (const Record& each : measurements) {
        const Row& row = rows.emplace_back(RowOf(each));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], WidthOf(row[i]));
    }
    std::vector<std::string> lines;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += widths[i] == 0 ? "" : Padded(row[i], widths[i] + 2);
        lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
    }
    return lines;
}

} // namespace

ConsoleReport::ConsoleReport(std::ostream& out, Style style)
    : m_out(out), m_style(style), m_log([this](const std::string& line) { Print(line); }) {}

void ConsoleReport::GoLive(TimeSource now) {
    m_live.emplace(m_out, m_access, [this, now = std::move(now)] { return m_status.Text(now()); });
}

ConsoleReport::Interlude::Interlude(ConsoleReport& report) : m_report(report) {
    const std::lock_guard lock(m_report.m_access);
    m_report.m_log.Release();
    if (m_report.m_live)
        m_report.m_live->Hide(true);
    m_report.m_out.flush();
}

ConsoleReport::Interlude::~Interlude() {
    const std::lock_guard lock(m_report.m_access);
    if (m_report.m_live)
        m_report.m_live->Hide(false);
}

void ConsoleReport::operator()(const Record& record) {
    const std::lock_guard lock(m_access);
    m_text.Take(record);
    if (m_live)
        m_status.Take(record);
    if (m_style.detail == Detail::Quiet) {
        WriteQuietly(record);
    } else {
        m_activities.Take(record);
        if (record.service == service::Runner)
            WriteEvent(record);
        else
            WriteCall(record);
    }
    m_out.flush();
    if (m_live)
        m_live->Update();
}

void ConsoleReport::WriteEvent(const Record& record) {
    if (record.operation == event::ProcedureStarted)
        BeginProcedure(record);
    else if (m_levels.empty())
        return;
    else if (record.operation == event::TagGiven)
        WriteOutside(
            fmt::format("  {} = {}", TextIn(record, argument::name), TextIn(record, argument::value)));
    else if (record.operation == event::StepEntered)
        EnterStep(record);
    else if (record.operation == event::FinallyStarted)
        BeginCleanUp(record);
    else if (record.operation == event::DataLeft)
        WriteEntry(record);
    else if (record.operation == event::Measured)
        m_levels.back().measurements.push_back(record);
    else if (record.operation == event::ParameterLeft)
        WriteLeft(record);
    else if (record.operation == event::ProcedureEnded)
        EndProcedure(record);
    else
        WriteEventOfStep(record);
}

void ConsoleReport::WriteEventOfStep(const Record& record) {
    if (record.operation == event::CommandEnded) {
        WriteCommand(record);
    } else if (record.operation == event::ThreadEnded) {
        WriteEndOfThread(record);
    } else if (record.operation == event::ResultMissing) {
        const std::string line =
            fmt::format("{} has not written {} ({})", Quoted(record.command),
                        Quoted(record.Text(argument::value)), TextIn(record, argument::name));
        WriteInStep(record, line, line);
    } else if (record.operation == event::WaitStarted) {
        const std::int64_t limit = NumberOf(record, argument::limit);
        const std::string line = fmt::format("waits for {}{}{}", TextIn(record, argument::waitsFor),
                                             limit ? ", at most " : "", limit ? FormatDuration(limit) : "");
        Write(line, line);
    } else if (record.operation == event::PromptShown) {
        const std::string caption = ReadableIn(record, argument::caption);
        const std::string line =
            fmt::format("{}: {}{}", record.Text(argument::kind) == "message" ? "message" : "question",
                        caption.empty() ? "" : "[" + caption + "] ", TextIn(record, argument::text));
        Write(line, line);
    } else if (record.operation == event::PromptClosed) {
        WriteAnswer(record);
    } else if (record.operation == event::StepTimedOut) {
        const std::string reason = TextIn(record, argument::reason);
        Write(fmt::format("time ran out{}{}{}{}", reason.empty() ? "" : ": ", reason,
                          m_lastUnmet.empty() ? "" : "; at last ", m_lastUnmet),
              "time ran out");
    } else if (record.operation == event::StepRetried) {
        Write(
            fmt::format("try {}: {}", NumberOf(record, argument::attempt), TextIn(record, argument::reason)),
            "try: " + record.Text(argument::reason));
        BeginLog("\ntry", "another try of ");
    } else if (record.operation == event::TransitionFollowed) {
        const std::string line = "-> " + TextIn(record, argument::to);
        Write(line, line, Lasted(record.time - m_levels.back().stepBegan.value_or(record.time)));
        m_levels.back().stepBegan.reset();
    }
}

/// Closing a message is not worth a line.
void ConsoleReport::WriteAnswer(const Record& record) {
    if (record.Text(argument::answer) == "OK")
        return;
    const std::string by = record.Text(argument::by);
    const std::string line =
        fmt::format("answer: {}", by.empty() ? "none" : ReadableIn(record, argument::answer));
    Write(by.empty() || by == "operator" ? line : fmt::format("{} ({})", line, by), line);
}

void ConsoleReport::WriteCall(const Record& record) {
    if (!record.result)
        return;
    if (record.operation == operation::RegisterCallback && SUCCEEDED(*record.result))
        m_runningOn.insert(KeyOf(record));
    WriteUnmet(record);
    if (m_style.detail == Detail::Verbose) {
        Write(fmt::format("{} {}{}{}", FormatTime(record.time), Printable(record.command),
                          record.command.empty() ? "" : ": ", m_text.DescribeCall(record)),
              {});
    } else if (FAILED(*record.result)) {
        WriteFailedCall(record);
    } else if (record.operation == operation::ShowInstruction) {
        const std::string line = "instruction: " + TextIn(record, argument::text);
        WriteInStep(record, line, line);
    } else if (record.operation == operation::SetComponentProperty) {
        const std::string shape = fmt::format("display: {}.{}", TextIn(record, argument::componentId),
                                              TextIn(record, argument::name));
        const std::string line = fmt::format("{} = {}", shape, JsonOf(record.Find(argument::value)));
        if (IsNewInStep(record, line))
            Write(line, shape);
    }
}

/// Often the only hint at why a command failed or did nothing.
void ConsoleReport::WriteFailedCall(const Record& record) {
    const std::string shape =
        fmt::format("call failed: {} {} {}{} {}", record.service, record.operation, record.Text(argument::id),
                    record.Text(argument::name), ToText(*record.result));
    if (m_linesOfStep.insert(KeyOf(record) + shape).second)
        Write("call failed: " + m_text.DescribeCall(record), shape);
}

void ConsoleReport::WriteUnmet(const Record& record) {
    const std::string unmet = m_text.DescribeUnmet(record);
    if (unmet.empty())
        return;
    if (record.command.empty())
        m_lastUnmet = unmet;
    const std::string conditions = Quoted(record.Text(argument::name));
    WriteInStep(record, fmt::format("conditions {} not met: {}", conditions, unmet),
                fmt::format("conditions {} not met: {}", conditions, record.Text(argument::failed)));
}

void ConsoleReport::WriteQuietly(const Record& record) {
    if (record.service != service::Runner)
        return;
    if (record.operation == event::ProcedureStarted) {
        m_levels.emplace_back();
    } else if (record.operation == event::Measured) {
        const std::string verdict = record.Text(argument::verdict);
        if (verdict == NameOf(Outcome::Failed) || verdict == NameOf(Outcome::Missing))
            m_levels.back().measurements.push_back(record);
    } else if (record.operation == event::ProcedureEnded) {
        for (const std::string& line : TableOf(m_levels.back().measurements))
            WriteOutside(line);
        m_levels.pop_back();
        if (m_levels.empty())
            WriteVerdict(record);
    }
}

void ConsoleReport::BeginProcedure(const Record& record) {
    const std::string name = TextIn(record, argument::name);
    if (!m_levels.empty()) {
        const std::string line = "procedure " + name;
        Write(line, line);
        m_levels.emplace_back();
        return;
    }
    m_levels.emplace_back();
    WriteOutside(name);
    for (const char* const each : {argument::description, argument::revision, argument::author}) {
        if (const std::string text = TextIn(record, each); !text.empty())
            WriteOutside(
                fmt::format("  {}{}", each == argument::description ? "" : each + std::string(" "), text));
    }
}

void ConsoleReport::BeginLog(const std::string& suffix, const std::string& prefix) {
    if (m_style.detail == Detail::Verbose)
        return;
    std::string path;
    for (const Level& each : m_levels)
        path += each.step + '\n';
    m_log.BeginStep(path + suffix, fmt::format("{}step {}", prefix, Printable(m_levels.back().step)));
}

void ConsoleReport::EnterStep(const Record& record) {
    Level& level = m_levels.back();
    level.step = record.Text(argument::step);
    level.stepBegan = record.time;
    m_linesOfStep.clear();
    m_lastUnmet.clear();
    BeginLog();
    const std::string description = TextIn(record, argument::description);
    const std::string line =
        fmt::format("step {}{}{}", Printable(level.step), description.empty() ? "" : ": ", description);
    Write(line, line, {}, false);
}

void ConsoleReport::EndStep(const Record& record) {
    Level& level = m_levels.back();
    if (const std::string lasted = Lasted(record.time - level.stepBegan.value_or(record.time));
        !lasted.empty())
        Write("ended", "ended", lasted);
    level.stepBegan.reset();
    if (m_levels.size() == 1)
        m_log.EndStep();
}

void ConsoleReport::BeginCleanUp(const Record& record) {
    EndStep(record);
    m_linesOfStep.clear();
    Write("clean-up", "clean-up", {}, false);
}

void ConsoleReport::EndProcedure(const Record& record) {
    EndStep(record);
    WriteMeasurements();
    const bool isOuter = m_levels.size() == 1;
    if (isOuter) {
        WriteVerdict(record);
    } else {
        const std::string verdict = TextIn(record, argument::verdict);
        Write(fmt::format("{}: {}", verdict, TextIn(record, argument::reason)), verdict, {}, false);
    }
    m_levels.pop_back();
}

std::string ConsoleReport::DescribeWork(const Activity& activity) const {
    std::size_t failures = 0;
    for (const Activity::FailedCall& each : activity.failedCalls)
        failures += each.times;
    std::string text = failures > 1 ? fmt::format(", {} calls failed", failures) : "";
    for (std::size_t i = 0; i < std::min(activity.values.size(), mostValues); ++i)
        text += (i == 0 ? "  " : ", ") + m_text.Describe(activity.values[i]);
    if (activity.values.size() > mostValues)
        text += fmt::format(", {} more", activity.values.size() - mostValues);
    return text;
}

void ConsoleReport::WriteCommand(const Record& record) {
    const Activity activity = m_activities.End(record);
    const bool runsOn = m_runningOn.erase(KeyOf(record)) != 0;
    const HRESULT result = record.result.value_or(E_UNEXPECTED);
    const std::string outcome =
        FAILED(result) ? fmt::format("FAILED: {} ({})", DescribeCode(result), record.Text(argument::phase))
        : runsOn       ? "ok, runs on"
                       : "ok";
    const std::string caller = record.Text(argument::caller);
    const std::string line = fmt::format("{} {} {}{}{}", Padded(Printable(record.command), idWidth),
                                         Padded(TextIn(record, argument::className), ClassWidth()), outcome,
                                         caller.empty() ? "" : ", run by ", Printable(caller));
    WriteInStep(record, line + DescribeWork(activity), line);
}

void ConsoleReport::WriteEndOfThread(const Record& record) {
    const Activity activity = m_activities.End(record);
    const std::string line = Padded(Printable(record.command), idWidth) + " has ended";
    Write(line + DescribeWork(activity), line);
}

bool ConsoleReport::IsNewInStep(const Record& record, const std::string& line) {
    const bool mayRepeat = record.thread != mainThread || record.command.empty();
    return !mayRepeat || m_linesOfStep.insert(line).second;
}

void ConsoleReport::WriteInStep(const Record& record, const std::string& text, const std::string& shape) {
    if (IsNewInStep(record, shape))
        Write(text, shape);
}

void ConsoleReport::Write(const std::string& text, const std::string& shape, const std::string& duration,
                          bool inner) {
    const std::size_t depth = m_levels.empty() ? 0 : m_levels.size() - 1;
    const std::string blank = !inner && depth == 0 ? "\n" : "";
    m_log.Write({blank + std::string(4 * depth + (inner ? 2 : 0), ' ') + text, shape, duration});
}

void ConsoleReport::WriteOutside(const std::string& line) {
    m_log.Write({line, {}, {}});
}

void ConsoleReport::Print(const std::string& line) {
    if (m_live)
        m_live->Erase();
    m_out << line + '\n'; // In one piece: other threads may write messages meanwhile.
}

void ConsoleReport::WriteEntry(const Record& record) {
    EndStep(record);
    if (m_levels.size() > 1)
        return; // What a called procedure leaves, its caller takes over.
    if (!std::exchange(m_levels.back().hasData, true))
        WriteOutside("\ndata");
    WriteOutside(
        fmt::format("  {} = {}", TextIn(record, argument::name), JsonOf(record.Find(argument::value))));
}

void ConsoleReport::WriteMeasurements() {
    std::vector<Record> measurements = std::exchange(m_levels.back().measurements, {});
    if (measurements.empty())
        return;
    Write("measurements", "measurements", {}, false);
    const std::vector<std::string> lines = TableOf(measurements);
    for (std::size_t i = 0; i < lines.size(); ++i)
        Write(lines[i], measurements[i].Text(argument::name) + measurements[i].Text(argument::verdict));
}

void ConsoleReport::WriteLeft(const Record& record) {
    EndStep(record);
    WriteMeasurements();
    if (!std::exchange(m_levels.back().hasLeft, true))
        WriteOutside("");
    const std::string id = record.Text(argument::id);
    const std::string units = m_text.UnitsOfParameter(id);
    WriteOutside(fmt::format("left at: {} = {}, was {}", m_text.NameOfParameter(id),
                             WithUnits(ReadableIn(record, argument::value), units),
                             WithUnits(ReadableIn(record, argument::was), units)));
}

void ConsoleReport::WriteVerdict(const Record& record) {
    const std::string verdict = record.Text(argument::verdict);
    std::string line = m_style.detail == Detail::Quiet ? "" : "\n";
    if (m_style.coloured)
        line += verdict == NameOf(Verdict::Passed) ? "\x1b[32m" : "\x1b[31m";
    line += verdict;
    if (m_style.coloured)
        line += "\x1b[0m";
    WriteOutside(line + ": " + TextIn(record, argument::reason));
}

} // namespace vant::program
