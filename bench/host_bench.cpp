// What the recording host costs for each call that a command makes, without a journal file and with one. CPU
// time.

#include "framework/interfaces/HostServices.h"
#include "host/object/NamedValues.h"
#include "host/record/CallScope.h"
#include "host/record/Json.h"
#include "host/services/DataStore.h"
#include "platform/Bstr.h"
#include "platform/Variant.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace vant::bench {

namespace {

using namespace host;

/// One call on the data store through the gate, as a command makes it.
void Call(benchmark::State& state, Journal& journal) {
    CallGate gate(journal);
    NamedValues values;
    DataStore store(gate, values);
    const CommandScope scope("work");
    const CComBSTR name(L"speed");
    const CComVariant value{CComBSTR(L"800")};
    for (auto _ : state)
        benchmark::DoNotOptimize(store.SetValue(name.Get(), value.Get()));
}

void HostCall(benchmark::State& state) {
    Journal journal;
    std::int64_t records = 0;
    journal.Observe([&records](const Record&) { ++records; });
    Call(state, journal);
    benchmark::DoNotOptimize(records);
}

void HostCallWithJournal(benchmark::State& state) {
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "vant_bench.journal";
    {
        std::ofstream out(file, std::ios::binary);
        JsonLinesWriter writer(out);
        Journal journal;
        journal.Observe([&writer](const Record& record) { writer(record); });
        Call(state, journal);
    }
    std::filesystem::remove(file);
}

} // namespace

void RegisterHostBenchmarks() {
    benchmark::RegisterBenchmark("host call", HostCall);
    benchmark::RegisterBenchmark("host call, journal", HostCallWithJournal);
}

} // namespace vant::bench
