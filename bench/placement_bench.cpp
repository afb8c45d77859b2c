// Whole placement passes: every footprint built, obstacles forced, labels placed in order, the
// result lists read, the container reset.
//
// The placement meets only the placed objects near each attempt, so a pass costs time close to
// linear in its size. kxac_placement_compare sets it beside the straightforward placement.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "synthetic_scenes.h"

namespace {

constexpr uint32_t kSeed = 20240601;

void RunScene(benchmark::State& state, kxbench::Scene& scene) {
    CPriorityAvoidContainer container;
    kxbench::FitToScene(container, scene);
    const size_t labels = scene.labels.size();
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

// A pass in the demo's manner over the first n cities: the lines forced, then each city's dot
// tried, its name tried when the dot found room, and the dot recycled when the name did not.
// Recycling takes back the object placed last, so the pass stays close to linear in n.
void BM_PassRecyclingDots(benchmark::State& state) {
    kxbench::Scene scene = kxbench::WorldCities(static_cast<int>(state.range(0)));
    const size_t cities = scene.labels.size();
    CPriorityAvoidContainer c;
    kxbench::FitToScene(c, scene);
    size_t placed = 0, recycled = 0;
    for (auto _ : state) {
        placed = recycled = 0;
        // The first forced pieces are the cities' dots, in the order of the labels.
        for (size_t i = cities; i < scene.forced.size(); ++i) {
            kxbench::Obstacle& o = scene.forced[i];
            CAvoidObject* line = c.NewObject();
            line->AddLine(o.xy.data(), static_cast<int>(o.xy.size()), o.halfWidth);
            c.Add(line, true);
        }
        for (size_t i = 0; i < cities; ++i) {
            kxbench::Obstacle& o = scene.forced[i];
            CAvoidObject* dot = c.NewObject();
            dot->AddRing(o.xy.data(), static_cast<int>(o.xy.size()));
            c.Add(dot, false);
            if (dot->PlacedState() != CAvoidObject::kPlaced) continue;
            kxbench::AddLabel(c, scene.labels[i]);
            // A name that found room stands behind its dot.
            if (c.PlacedObjects().back() != dot) {
                ++placed;
                continue;
            }
            c.Recycle(dot);
            ++recycled;
        }
        benchmark::DoNotOptimize(c.PlacedObjects().size());
        c.Reset();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * cities));
    state.counters["cities"] = static_cast<double>(cities);
    state.counters["named"] = static_cast<double>(placed);
    state.counters["recycled"] = static_cast<double>(recycled);
}

// Blockers of every label a pass left out, asked after the pass; the rate is of rejected labels.
// The first query of each pass files the placed objects, so its cost is spread over the others.
void RunBlockers(benchmark::State& state, kxbench::Scene& scene) {
    CPriorityAvoidContainer container;
    kxbench::FitToScene(container, scene);
    size_t rejected = 0, blocked = 0;
    for (auto _ : state) {
        state.PauseTiming();
        container.Reset();
        for (kxbench::Obstacle& o : scene.forced) {
            CAvoidObject* obj = container.NewObject();
            const int count = static_cast<int>(o.xy.size());
            if (o.halfWidth > 0) {
                obj->AddLine(o.xy.data(), count, o.halfWidth);
            } else {
                obj->AddRing(o.xy.data(), count);
            }
            container.Add(obj, true);
        }
        for (const kxbench::Label& label : scene.labels)
            kxbench::AddLabel(container, label);
        state.ResumeTiming();
        rejected = 0, blocked = 0;
        for (CAvoidObject* obj : container.UnplacedObjects()) {
            const std::vector<CAvoidObject*> blockers = container.Blockers(obj);
            blocked += blockers.empty() || blockers.front() == nullptr ? 0 : 1;
            ++rejected;
        }
        benchmark::DoNotOptimize(blocked);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * rejected));
    state.counters["rejected"] = static_cast<double>(rejected);
    state.counters["blocked"] = static_cast<double>(blocked);
}

void BM_BlockersUniform(benchmark::State& state) {
    kxbench::Scene scene = kxbench::UniformLabels(static_cast<int>(state.range(0)), kSeed);
    RunBlockers(state, scene);
}

void BM_BlockersWorldCities(benchmark::State& state) {
    kxbench::Scene scene = kxbench::WorldCities(static_cast<int>(state.range(0)));
    RunBlockers(state, scene);
}

BENCHMARK(BM_PassUniform)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PassClustered)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PassWorldCities)->Arg(5000)->Arg(20000)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PassRecyclingDots)->Arg(20000)->Arg(80000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlockersUniform)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlockersWorldCities)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
