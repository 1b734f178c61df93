#include "vant/EngineRun.h"

#include "host/engine/objects/EngineAccess.h"
#include "host/object/VariantValue.h"
#include "host/procedure/EngineReader.h"
#include "host/procedure/ProcedureReader.h"
#include "host/record/Json.h"
#include "host/text/Printable.h"
#include "host/text/Suggestion.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <toml++/toml.h>
#include <utility>

namespace vant::program {

using namespace host;

namespace {

constexpr std::int64_t mostRows = 100000;
constexpr double longestDuration = 1e12; // ms

/// All that is wrong with the arguments and the files, line by line.
class Mistakes {
public:
    void Add(const std::string& message) {
        m_text += "vant: " + message + '\n';
        m_hinders = true;
    }
    void Add(const Diagnostics& found, const std::string& file) {
        for (const Diagnostic& each : found.Sorted())
            m_text += each.Text(file) + '\n';
        m_hinders = m_hinders || found.HasErrors();
    }

    /// Warnings do not hinder.
    bool Hinder() const noexcept { return m_hinders; }
    const std::string& Text() const noexcept { return m_text; }

private:
    std::string m_text;
    bool m_hinders = false;
};

/// A write that is made when its time has come.
struct TimedWrite {
    std::string argument; ///< As it was given.
    std::string id;
    std::string value;
    std::int64_t time = 0;
};

using Row = std::vector<std::string>;

std::string TextOf(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number);
    return std::string(text.data(), end.ptr);
}

struct CellMaker {
    std::string operator()(std::nullptr_t) const { return {}; }
    std::string operator()(bool truth) const { return truth ? "true" : "false"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return TextOf(number); }
    std::string operator()(const std::string& text) const { return text; }
};

/// A number with its unit, in milliseconds; nothing for anything else.
std::optional<std::int64_t> Milliseconds(std::string_view text) {
    double number = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (code != std::errc())
        return std::nullopt;
    constexpr std::pair<std::string_view, double> units[] = {
        {"ms", 1}, {"s", 1000}, {"min", 60000}, {"h", 3600000}};
    for (const auto& [unit, milliseconds] : units) {
        if (text.substr(static_cast<std::size_t>(end - text.data())) == unit) {
            const double duration = number * milliseconds;
            if (duration >= 0 && duration <= longestDuration)
                return std::llround(duration);
        }
    }
    return std::nullopt;
}

/// At least a millisecond, also where it is a mistake.
std::int64_t Duration(const char* option, const std::string& text, Mistakes& mistakes) {
    const std::int64_t duration = Milliseconds(text).value_or(0);
    if (duration == 0)
        mistakes.Add(std::string(option) + " needs a duration such as 500ms, 60s, 10min or 1h, not '" + text +
                     "'");
    return std::max<std::int64_t>(duration, 1);
}

std::vector<TimedWrite> ReadWrites(const std::vector<std::string>& arguments, Mistakes& mistakes) {
    std::vector<TimedWrite> writes;
    for (const std::string& each : arguments) {
        const std::size_t equals = each.find('=');
        const std::size_t at = each.rfind('@');
        const auto time = at == std::string::npos ? std::nullopt : Milliseconds(each.substr(at + 1));
        if (equals == std::string::npos || !time || at < equals)
            mistakes.Add("--set needs ID=VALUE@TIME, such as 13190=45@5s, not '" + each + "'");
        else
            writes.push_back({each, each.substr(0, equals), each.substr(equals + 1, at - equals - 1), *time});
    }
    std::stable_sort(writes.begin(), writes.end(),
                     [](const TimedWrite& a, const TimedWrite& b) { return a.time < b.time; });
    return writes;
}

/// Procedures have what no engine has.
bool IsProcedure(std::string_view text) {
    try {
        const toml::table root = toml::parse(text);
        return root.contains("engine") || root.contains("commands") || root.contains("steps");
    } catch (const toml::parse_error&) {
        return false; // reading it as an engine says what is wrong
    }
}

std::optional<EngineDescription> ReadEngineFile(const std::filesystem::path& file, Mistakes& mistakes) {
    Diagnostics found;
    EngineDescription engine = ReadEngine(ReadFile(file), found);
    mistakes.Add(found, FileName(file));
    return engine;
}

/// The engine that stands in a procedure or in the file that the procedure names.
std::optional<EngineDescription> EngineOf(const std::string& file, std::string_view text,
                                          Mistakes& mistakes) {
    Diagnostics found;
    Procedure procedure = ReadProcedure(text, found);
    mistakes.Add(found, file);
    if (procedure.engine)
        return std::move(procedure.engine);
    if (procedure.engineFile)
        return ReadEngineFile(PathFromUtf8(file).parent_path() / PathFromUtf8(procedure.engineFile->text),
                              mistakes);
    mistakes.Add(file + ": the procedure has no engine");
    return std::nullopt;
}

std::optional<EngineDescription> ReadDescription(const std::string& file, Mistakes& mistakes) {
    try {
        const std::string text = ReadFile(PathFromUtf8(file));
        return IsProcedure(text) ? EngineOf(file, text, mistakes)
                                 : ReadEngineFile(PathFromUtf8(file), mistakes);
    } catch (const std::exception& failure) {
        mistakes.Add(file + ": " + failure.what());
        return std::nullopt;
    }
}

HRESULT Perform(const TimedWrite& write, Engine& engine) {
    return WriteValue(engine, write.id, CComVariant(CComBSTR(ToWide(write.value))).Get());
}

std::string Refusal(HRESULT code) {
    if (code == E_ACCESSDENIED)
        return "the parameter is read-only";
    if (code == E_BOUNDS)
        return "the value lies beyond the parameter's limits";
    return "the value does not fit the parameter (" + ToText(code) + ")";
}

/// Whether a write is taken depends on nothing that happens before.
void CheckWrites(const std::vector<TimedWrite>& writes, const EngineDescription& description,
                 std::int64_t duration, Mistakes& mistakes) {
    std::vector<std::string> ids;
    for (const auto& [id, parameter] : description.parameters)
        ids.push_back(id);
    Engine engine(description.parameters, 0, [] { return 0; });
    for (const TimedWrite& write : writes) {
        const std::string beginning = "--set " + write.argument + ": ";
        if (const HRESULT code = Perform(write, engine); code == HRESULT_FROM_WIN32(ERROR_NOT_FOUND))
            mistakes.Add(beginning + "there is no parameter '" + write.id + "'" + DidYouMean(write.id, ids));
        else if (FAILED(code))
            mistakes.Add(beginning + Refusal(code));
        if (write.time > duration)
            mistakes.Add(beginning + "the time lies after the end");
    }
}

/// One row for each moment: the seconds, then every parameter; `failed` where a read fails.
std::vector<Row> Simulate(const EngineDescription& description, std::int64_t duration, std::int64_t every,
                          const std::vector<TimedWrite>& writes, const char* failed) {
    std::int64_t now = 0;
    Engine engine(description.parameters, description.seed, [&now] { return now; });
    auto nextWrite = writes.begin();
    std::vector<Row> rows;
    for (std::int64_t time = 0; time <= duration; time += every) {
        for (; nextWrite != writes.end() && nextWrite->time <= time; ++nextWrite) {
            now = nextWrite->time;
            Perform(*nextWrite, engine);
        }
        now = time;
        Row& row = rows.emplace_back(Row{TextOf(static_cast<double>(time) / 1000)});
        for (const auto& [id, parameter] : description.parameters) {
            CComVariant value;
            const bool read = SUCCEEDED(ReadValue(engine, id, value));
            row.push_back(read ? std::visit(CellMaker{}, ToValue(value.Get())) : failed);
        }
    }
    return rows;
}

Row IdRow(const EngineDescription& description) {
    Row ids = {"seconds"};
    for (const auto& [id, parameter] : description.parameters)
        ids.push_back(id);
    return ids;
}

/// Ids, names and units, then the rows, each column as wide as it must be.
void PrintTable(std::ostream& out, const EngineDescription& description, std::vector<Row> rows) {
    Row names = {""};
    Row units = {""};
    for (const auto& [id, parameter] : description.parameters) {
        const auto unit = description.units.find(parameter.unitsKey);
        names.push_back(parameter.name);
        units.push_back(unit == description.units.end() ? parameter.unitsKey : unit->second);
    }
    const auto prepend = [&rows](Row row) {
        if (std::any_of(row.begin(), row.end(), [](const std::string& cell) { return !cell.empty(); }))
            rows.insert(rows.begin(), std::move(row));
    };
    prepend(std::move(units));
    prepend(std::move(names));
    prepend(IdRow(description));
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], WidthOf(row[column]));
    }
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column)
            line.append(widths[column] - WidthOf(row[column]) + (column == 0 ? 0 : 2), ' ')
                .append(row[column]);
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    }
}

void PrintCsvRow(std::ostream& out, const Row& row) {
    const char* separator = "";
    for (const std::string& cell : row) {
        out << std::exchange(separator, ",");
        if (cell.find_first_of(",\"\r\n") == std::string::npos) {
            out << cell;
            continue;
        }
        out << '"';
        for (const char each : cell)
            out << (each == '"' ? "\"" : "") << each;
        out << '"';
    }
    out << '\n';
}

} // namespace

ExitCode RunEngine(const EngineRunOptions& options) {
    Mistakes mistakes;
    const std::int64_t duration = Duration("--for", options.duration, mistakes);
    const std::int64_t every = Duration("--every", options.every, mistakes);
    const std::vector<TimedWrite> writes = ReadWrites(options.writes, mistakes);
    if (duration / every >= mostRows)
        mistakes.Add("--for and --every ask for more than " + std::to_string(mostRows) + " rows");
    std::optional<EngineDescription> description = ReadDescription(options.file, mistakes);
    if (description && !mistakes.Hinder())
        CheckWrites(writes, *description, duration, mistakes);
    std::cerr << mistakes.Text();
    if (mistakes.Hinder())
        return ExitCode::WrongInput;

    description->seed = options.seed.value_or(description->seed);
    std::vector<Row> rows = Simulate(*description, duration, every, writes, options.csv ? "" : "failed");
    if (options.csv) {
        PrintCsvRow(std::cout, IdRow(*description));
        for (const Row& row : rows)
            PrintCsvRow(std::cout, row);
    } else {
        PrintTable(std::cout, *description, std::move(rows));
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "vant: the report could not be written completely\n";
        return ExitCode::Broken;
    }
    return ExitCode::Passed;
}

} // namespace vant::program
