// Runs every benchmark several times, interleaved, and sets each figure beside its floor: `bench [--json
// FILE]`, and any option of the benchmark library.

#include <benchmark/benchmark.h>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace vant::bench {
void RegisterCommandBenchmarks();
void RegisterHostBenchmarks();
void RegisterPersistentBenchmarks();
void RegisterProgramBenchmarks();
} // namespace vant::bench

namespace {

/// Keeps the medians by benchmark name, in nanoseconds.
class MedianReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred)
                errors.push_back(run.benchmark_name() + ": " + run.error_message);
            else if (run.aggregate_name == "median")
                medians[NameOf(run)] = run;
        }
    }

    std::map<std::string, Run> medians;
    std::vector<std::string> errors;

private:
    static std::string NameOf(const Run& run) {
        const auto& [function, args] = std::pair(run.run_name.function_name, run.run_name.args);
        return args.empty() ? function : function + '/' + args;
    }
};

/// Benchmarks that measure their time themselves measure wall time, the others take CPU time.
double TimeOf(const benchmark::BenchmarkReporter::Run& run) {
    return run.run_name.time_type.empty() ? run.GetAdjustedCPUTime() : run.GetAdjustedRealTime();
}

constexpr double perSecondToNanoseconds = 1e9;

nlohmann::ordered_json Summarise(const std::map<std::string, benchmark::BenchmarkReporter::Run>& medians) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (const auto& [name, run] : medians) {
        if (name.ends_with("/floor"))
            continue;
        nlohmann::ordered_json row = {{"name", name}, {"ns", TimeOf(run)}};
        if (const auto floor = medians.find(name + "/floor"); floor != medians.end()) {
            row["floor_ns"] = TimeOf(floor->second);
            row["ratio"] = TimeOf(run) / TimeOf(floor->second);
        }
        if (const auto rate = run.counters.find("items_per_second"); rate != run.counters.end())
            row["ns_per_item"] = perSecondToNanoseconds / rate->second.value;
        all.push_back(row);
    }
    return all;
}

void Print(const nlohmann::ordered_json& rows) {
    // Of Stop and Round, which wait, and of vant it is wall time; of the others CPU time.
    std::printf("%-36s %14s %12s %7s %12s\n", "median time", "ns", "floor ns", "ratio", "ns per item");
    for (const auto& row : rows) {
        std::printf("%-36s %14.1f", row["name"].get<std::string>().c_str(), row["ns"].get<double>());
        if (row.contains("ratio"))
            std::printf(" %12.1f %7.2f", row["floor_ns"].get<double>(), row["ratio"].get<double>());
        if (row.contains("ns_per_item"))
            std::printf(" %33.2f", row["ns_per_item"].get<double>());
        std::printf("\n");
    }
}

} // namespace

int main(int argc, char** argv) {
    std::string jsonFile;
    std::vector<char*> arguments = {argv[0]};
    static char repetitions[] = "--benchmark_repetitions=9";
    static char interleaving[] = "--benchmark_enable_random_interleaving=true";
    static char minTime[] = "--benchmark_min_time=0.05";
    arguments.insert(arguments.end(), {repetitions, interleaving, minTime});
    for (int i = 1; i < argc; ++i) {
        if (argv[i] == std::string("--json") && i + 1 < argc)
            jsonFile = argv[++i];
        else
            arguments.push_back(argv[i]);
    }
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    vant::bench::RegisterCommandBenchmarks();
    vant::bench::RegisterPersistentBenchmarks();
    vant::bench::RegisterHostBenchmarks();
    vant::bench::RegisterProgramBenchmarks();
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const std::string& error : reporter.errors)
        std::cerr << error << '\n';
    if (!reporter.errors.empty() || reporter.medians.empty())
        return 1;

    const auto rows = Summarise(reporter.medians);
    Print(rows);
    if (!jsonFile.empty() && !(std::ofstream(jsonFile) << rows.dump(2) << '\n')) {
        std::cerr << jsonFile << ": cannot be written\n";
        return 1;
    }
    return 0;
}
