#include "vant/EngineRun.h"

#include "host/engine/objects/Simulation.h"
#include "host/procedure/Loading.h"
#include "host/record/Json.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"
#include "host/text/Suggestion.h"
#include "vant/EngineTable.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace vant::program {

using namespace host;

namespace {

/// Of a table; comma-separated values are written as they come.
constexpr std::int64_t mostRows = 100000;

/// All mistakes of the arguments, line by line.
class Mistakes {
public:
    void Add(const std::string& message) { m_text += Printable("vant: " + message) + '\n'; }
    const std::string& Text() const noexcept { return m_text; }

private:
    std::string m_text;
};

/// A write and the argument that asks for it.
struct AskedWrite {
    std::string argument;
    TimedWrite write;
};

/// At least a millisecond, even if it is a mistake.
std::int64_t ReadDuration(const char* option, const std::string& text, Mistakes& mistakes) {
    const std::int64_t duration = ParseDuration(text).value_or(0);
    if (duration == 0)
        mistakes.Add(std::string(option) + " needs a duration such as 500ms, 60s, 10min or 1h, not '" + text +
                     "'");
    return std::max<std::int64_t>(duration, 1);
}

std::vector<AskedWrite> ReadWrites(const std::vector<std::string>& arguments, Mistakes& mistakes) {
    std::vector<AskedWrite> writes;
    for (const std::string& each : arguments) {
        const std::size_t equals = each.find('=');
        const std::size_t at = each.rfind('@');
        const auto time = at == std::string::npos ? std::nullopt : ParseDuration(each.substr(at + 1));
        if (equals == std::string::npos || !time || at < equals)
            mistakes.Add("--set needs ID=VALUE@TIME, such as 13190=45@5s, not '" + each + "'");
        else
            writes.push_back(
                {each, {each.substr(0, equals), each.substr(equals + 1, at - equals - 1), *time}});
    }
    std::stable_sort(writes.begin(), writes.end(),
                     [](const AskedWrite& a, const AskedWrite& b) { return a.write.time < b.write.time; });
    return writes;
}

std::string DescribeRefusal(HRESULT code) {
    if (code == E_ACCESSDENIED)
        return "the parameter is read-only";
    if (code == E_BOUNDS)
        return "the value lies beyond the parameter's limits";
    return "the value does not fit the parameter (" + ToText(code) + ")";
}

void CheckWrites(const std::vector<AskedWrite>& writes, const EngineDescription& description,
                 std::int64_t duration, Mistakes& mistakes) {
    std::vector<std::string> ids;
    for (const auto& [id, parameter] : description.parameters)
        ids.push_back(id);
    for (const auto& [argument, write] : writes) {
        const std::string beginning = "--set " + argument + ": ";
        const HRESULT code = TryWrite(description, write);
        if (code == HRESULT_FROM_WIN32(ERROR_NOT_FOUND))
            mistakes.Add(beginning + "there is no parameter '" + write.id + "'" + DidYouMean(write.id, ids));
        else if (FAILED(code))
            mistakes.Add(beginning + DescribeRefusal(code));
        if (write.time > duration)
            mistakes.Add(beginning + "the time lies after the end");
    }
}

/// The engine and the messages about its files; nothing if it cannot be run.
std::optional<EngineDescription> ReadDescription(const std::string& file, Mistakes& mistakes,
                                                 std::string& messages) {
    try {
        LoadedEngine loaded = LoadEngine(file);
        messages = loaded.files.Print();
        if (loaded.files.HasErrors())
            return std::nullopt;
        if (!loaded.engine)
            mistakes.Add(file + ": the procedure has no engine");
        return std::move(loaded.engine);
    } catch (const std::runtime_error& failure) {
        mistakes.Add(failure.what());
        return std::nullopt;
    }
}

} // namespace

ExitCode RunEngine(const EngineRunOptions& options) {
    Mistakes mistakes;
    const std::int64_t duration = ReadDuration("--for", options.duration, mistakes);
    const std::int64_t every = ReadDuration("--every", options.every, mistakes);
    const std::vector<AskedWrite> asked = ReadWrites(options.writes, mistakes);
    if (!options.csv && duration / every >= mostRows)
        mistakes.Add("--for and --every ask for more than " + std::to_string(mostRows) + " rows");
    std::string messages;
    std::optional<EngineDescription> description = ReadDescription(options.file, mistakes, messages);
    if (description && mistakes.Text().empty())
        CheckWrites(asked, *description, duration, mistakes);
    std::cerr << mistakes.Text() << messages;
    if (!description || !mistakes.Text().empty())
        return ExitCode::WrongInput;

    description->seed = options.seed.value_or(description->seed);
    std::vector<TimedWrite> writes;
    writes.reserve(asked.size());
    for (const AskedWrite& each : asked)
        writes.push_back(each.write);
    if (options.csv) {
        CsvWriter out(std::cout, *description);
        SimulateEngine(*description, duration, every, writes, [&](const EngineRow& row) {
            out.Write(row);
            return !std::cout.fail();
        });
    } else {
        EngineTable table(*description);
        SimulateEngine(*description, duration, every, writes, [&](const EngineRow& row) {
            table.Add(row);
            return true;
        });
        table.Print(std::cout);
    }
    if (!std::cout.flush())
        throw Failure(ExitCode::Broken, "the report could not be written completely");
    return ExitCode::Passed;
}

} // namespace vant::program
