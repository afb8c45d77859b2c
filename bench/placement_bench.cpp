// Whole placement passes: every footprint built, obstacles forced, labels placed in order, the
// result lists read, the container reset.
//
// The placement compares each attempt with every object placed so far, so a pass costs time
// quadratic in its size: from some 30 ns per pair of a label and an object placed before it in
// small passes to some 300 ns in large ones, whose objects no longer fit the caches. A case whose
// labels would make more than kPairBudget such pairs (10000 labels alone make as many) would take
// minutes per pass; it adds every obstacle but only as many labels as the budget allows, and says
// so in its label.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "bench_scene.h"

namespace {

constexpr double kPairBudget = 5.0e7;
constexpr uint32_t kSeed = 20240601;

void RunScene(benchmark::State& state, kxbench::Scene& scene) {
    CPriorityAvoidContainer container;
    kxbench::FitToScene(container, scene);
    // The largest n with n * (forced + n / 2) <= budget.
    double forced = static_cast<double>(scene.forced.size());
    double cap = std::sqrt(forced * forced + 2.0 * kPairBudget) - forced;
    size_t labels = std::min(scene.labels.size(), static_cast<size_t>(cap));
    kxbench::PassCounts counts;
    for (auto _ : state) {
        counts = kxbench::RunPass(container, scene, labels);
        benchmark::DoNotOptimize(counts);
    }
    size_t objects = scene.forced.size() + labels;
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * objects));
    state.counters["objects"] = static_cast<double>(objects);
    state.counters["labels"] = static_cast<double>(labels);
    state.counters["placed"] = static_cast<double>(counts.placed - scene.forced.size());
    if (labels < scene.labels.size()) {
        state.SetLabel("capped: first " + std::to_string(labels) + " of " +
                       std::to_string(scene.labels.size()) + " labels (quadratic placement)");
    }
}

void BM_PassUniform(benchmark::State& state) {
    kxbench::Scene scene = kxbench::UniformLabels(static_cast<int>(state.range(0)), kSeed);
    RunScene(state, scene);
}

void BM_PassClustered(benchmark::State& state) {
    kxbench::Scene scene = kxbench::ClusteredLabels(static_cast<int>(state.range(0)), kSeed);
    RunScene(state, scene);
}

// Argument 0 takes every city of the data.
void BM_PassWorldCities(benchmark::State& state) {
    kxbench::Scene scene = kxbench::WorldCities(static_cast<int>(state.range(0)));
    RunScene(state, scene);
}

BENCHMARK(BM_PassUniform)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PassClustered)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PassWorldCities)->Arg(5000)->Arg(20000)->Arg(0)->Unit(benchmark::kMillisecond);

}  // namespace
