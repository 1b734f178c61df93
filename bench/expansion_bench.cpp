// The cost of one reference in a text of many.

#include "framework/ReferenceExpansion.h"

#include <benchmark/benchmark.h>

namespace vant::bench {

namespace {

/// A text of `range` references, every one replaced by a short value.
void ExpansionItems(benchmark::State& state) {
    std::wstring text;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        text += L"n = $p(101000) rpm; ";
    const CComBSTR value(L"1450");
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(
            ExpandReferences(text, L"$p(", [&value](std::wstring_view) { return value; }));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ExpansionItems)->Name("PerItem/Expansion")->RangeMultiplier(10)->Range(10, 100'000);

} // namespace

} // namespace vant::bench
