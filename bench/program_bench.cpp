// How long `vant` takes as a whole, from its start to its end. Wall time.

#include "platform/ChildProcess.h"
#include "platform/Process.h"
#include "platform/Utf8.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vant::bench {

namespace {

constexpr std::int64_t caseCount = 10'000;

/// The files that the program reads and writes here; removed at the end.
class Files {
public:
    Files() : m_folder(std::filesystem::temp_directory_path() / "vant_bench") {
        std::filesystem::create_directories(m_folder);
        std::ofstream(Path("small.toml"))
            << "name = 'Small'\nstart = 'sum'\n[data]\nx = 1\n"
               "[commands.sum]\nclass = 'Calculator'\n"
               "properties = { operation = 'add', dsSourceA = 'x', sourceB = '1', "
               "dsResult = 'sum' }\n"
               "[measurements.sum]\ndata = 'sum'\n"
               "[steps.sum]\nrun = ['sum']\nnext = 'done'\n[steps.done]\nend = 'passed'\n";
        std::ofstream(Path("small.test.toml")) << "[[case]]\nname = 'all'\nprocedure = 'small.toml'\n"
                                                  "sweep = { data.x = { from = 1, to = "
                                               << caseCount << ", step = 1 } }\n";
        // Ten minutes in which the step looks at the engine four times a second.
        std::ofstream(Path("long.toml"))
            << "name = 'Long'\nstart = 's'\n[engine.parameters.1]\nvalue = 20\n"
               "behaviour = { ramp = { to = 90, over = '500s' } }\n"
               "[conditions.warm]\nall = [{ parameter = '1', atLeast = 99 }]\n"
               "[steps.s]\nuntil = 'warm'\ntimeout = '10min'\ntimedOut = 'done'\nnext = 'done'\n"
               "[steps.done]\nend = 'passed'\n";
    }
    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    std::string Path(const char* name) const { return PathToUtf8(m_folder / name); }

private:
    const std::filesystem::path m_folder;
};

const Files& TheFiles() {
    static const Files files;
    return files;
}

/// Runs the program to its end; it must pass.
void RunProgram(const std::vector<std::string>& arguments) {
    static const std::filesystem::path program = ProgramFolder() / "vant";
    ChildProcess child(program, arguments);
    for (std::string line; child.ReadLine(line);) {
    }
    if (const std::string end = child.AwaitEnd(); end != "exit code 0")
        throw std::runtime_error("vant " + arguments.front() + ": " + end);
}

void Measure(benchmark::State& state, const std::vector<std::string>& arguments, std::int64_t items) {
    try {
        for (auto _ : state)
            RunProgram(arguments);
        if (items > 0)
            state.SetItemsProcessed(state.iterations() * items);
    } catch (const std::exception& failure) {
        state.SkipWithError(failure.what());
    }
}

void Register(const char* name, std::vector<std::string> arguments, std::int64_t items = 0) {
    benchmark::RegisterBenchmark(name, [arguments = std::move(arguments), items](benchmark::State& state) {
        Measure(state, arguments, items);
    })->UseRealTime();
}

} // namespace

void RegisterProgramBenchmarks() {
    const Files& files = TheFiles();
    const std::string journal = files.Path("journal");
    Register("vant --version", {"--version"});
    Register("vant run, small", {"run", "--virtual", "--quiet", files.Path("small.toml")});
    Register("vant run, 2400 evaluations", {"run", "--virtual", "--quiet", files.Path("long.toml")});
    Register("vant run, 2400 evaluations, journal",
             {"run", "--virtual", "--quiet", files.Path("long.toml"), "--journal", journal});
    const std::string tests = files.Path("small.test.toml");
    Register("vant test, one worker, per case", {"test", "--jobs", "1", tests}, caseCount);
    Register("vant test, two workers, per case", {"test", "--jobs", "2", tests}, caseCount);
}

} // namespace vant::bench
