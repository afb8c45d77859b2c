// Footprint rasterisation: stroked polylines and rings turned into runs of an avoid object.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "placement/AvoidContainer.h"

namespace {

constexpr int kCanvas = 4096;
constexpr uint32_t kSeed = 7;

// A random walk of n segments of 4 to 40 cells, kept inside the canvas.
std::vector<int> RandomWalk(int segments, uint32_t seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> turn(-0.6, 0.6);
    std::uniform_real_distribution<double> step(4.0, 40.0);
    std::vector<int> xy;
    double x = kCanvas / 2.0, y = kCanvas / 2.0, heading = 0.0;
    xy.push_back(static_cast<int>(x));
    xy.push_back(static_cast<int>(y));
    while (static_cast<int>(xy.size()) < 2 * (segments + 1)) {
        heading += turn(rng);
        double nx = x + std::cos(heading) * step(rng);
        double ny = y + std::sin(heading) * step(rng);
        if (nx < 0 || ny < 0 || nx >= kCanvas || ny >= kCanvas) {
            heading += 3.0;
            continue;
        }
        if (static_cast<int>(nx) == xy[xy.size() - 2] && static_cast<int>(ny) == xy.back())
            continue;
        x = nx;
        y = ny;
        xy.push_back(static_cast<int>(x));
        xy.push_back(static_cast<int>(y));
    }
    return xy;
}

// A regular polygon of n vertices and the given radius around the canvas centre.
std::vector<int> RegularRing(int vertices, double radius) {
    std::vector<int> xy;
    for (int i = 0; i < vertices; ++i) {
        double a = 2.0 * M_PI * i / vertices;
        xy.push_back(static_cast<int>(kCanvas / 2 + radius * std::cos(a)));
        xy.push_back(static_cast<int>(kCanvas / 2 + radius * std::sin(a)));
    }
    return xy;
}

CPriorityAvoidContainer& Canvas(CPriorityAvoidContainer& c) {
    FitDeviceRect(*c.DT(), 0, 0, kCanvas, kCanvas);
    return c;
}

void BM_RasterLine(benchmark::State& state) {
    CPriorityAvoidContainer c;
    CAvoidObject* obj = Canvas(c).NewObject();
    std::vector<int> xy = RandomWalk(static_cast<int>(state.range(0)), kSeed);
    int halfWidth = static_cast<int>(state.range(1));
    for (auto _ : state) {
        obj->Reset();
        obj->AddLine(xy.data(), static_cast<int>(xy.size()), halfWidth);
        benchmark::DoNotOptimize(obj->RLEMaxExtent());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    c.Recycle(obj);
}

void BM_RasterRing(benchmark::State& state) {
    CPriorityAvoidContainer c;
    CAvoidObject* obj = Canvas(c).NewObject();
    std::vector<int> xy =
        RegularRing(static_cast<int>(state.range(0)), static_cast<double>(state.range(1)));
    for (auto _ : state) {
        obj->Reset();
        obj->AddRing(xy.data(), static_cast<int>(xy.size()));
        benchmark::DoNotOptimize(obj->RLEMaxExtent());
    }
    // Rows of the ring's extent: the sweep's work grows with them as much as with the vertices.
    state.counters["rows"] = static_cast<double>(obj->RLEMaxExtent().Height());
    state.SetItemsProcessed(state.iterations() * state.range(0));
    c.Recycle(obj);
}

// Label-sized rectangles, the commonest footprint of a pass.
void BM_RasterLabelBox(benchmark::State& state) {
    CPriorityAvoidContainer c;
    CAvoidObject* obj = Canvas(c).NewObject();
    int ring[] = {100, 100, 180, 100, 180, 113, 100, 113};
    for (auto _ : state) {
        obj->Reset();
        obj->AddRing(ring, 8);
        benchmark::DoNotOptimize(obj->RLEMaxExtent());
    }
    state.SetItemsProcessed(state.iterations());
    c.Recycle(obj);
}

BENCHMARK(BM_RasterLine)->Args({16, 1})->Args({256, 1})->Args({256, 4})->Args({4096, 1});
BENCHMARK(BM_RasterRing)->Args({8, 8})->Args({64, 200})->Args({1024, 200})->Args({64, 1500});
BENCHMARK(BM_RasterLabelBox);

}  // namespace
