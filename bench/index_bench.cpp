// Grid rows and the multi-level index: adding spans, probing cells, saving and loading.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <vector>

#include "index/RLEIndex.h"

namespace {

constexpr uint32_t kSeed = 99;

struct Span {
    int row;
    int first;
    int last;
};

// Spans of 1 to 32 cells at random columns of the given width, on rows 0 .. rows - 1.
std::vector<Span> RandomSpans(int count, int rows, int width, uint32_t seed) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> row(0, rows - 1), col(0, width - 1), len(0, 31);
    std::vector<Span> spans(static_cast<size_t>(count));
    for (auto& s : spans) {
        s.row = row(rng);
        s.first = col(rng);
        s.last = s.first + len(rng);
    }
    return spans;
}

// Spans added to one row: the row's runs are kept sorted and merged as they come.
void BM_RowAddSpans(benchmark::State& state) {
    std::vector<Span> spans = RandomSpans(static_cast<int>(state.range(0)), 1, 1 << 20, kSeed);
    for (auto _ : state) {
        CRLEIndexCreate grid;
        for (const Span& s : spans)
            grid.Add(s.row, s.first, s.last);
        benchmark::DoNotOptimize(grid.RowCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Cell probes on a row holding about range(0) runs, half of the probes on occupied cells.
void BM_RowIsExist(benchmark::State& state) {
    int runs = static_cast<int>(state.range(0));
    CRLEIndexCreate grid;
    for (int i = 0; i < runs; ++i)
        grid.Add(0, 4 * i, 4 * i + 1);
    std::mt19937 rng(kSeed);
    std::uniform_int_distribution<int> col(0, 4 * runs);
    std::vector<int> probes(4096);
    for (int& p : probes)
        p = col(rng);
    size_t hits = 0;
    for (auto _ : state) {
        for (int p : probes)
            hits += grid.IsExist(0, p) ? 1 : 0;
    }
    benchmark::DoNotOptimize(hits);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * probes.size()));
}

void BM_RowEraseSpans(benchmark::State& state) {
    std::vector<Span> spans = RandomSpans(static_cast<int>(state.range(0)), 1, 1 << 16, kSeed);
    CRLEIndexCreate full;
    full.Add(0, 0, (1 << 16) + 64);
    for (auto _ : state) {
        state.PauseTiming();
        CRLEIndexCreate grid(full);
        state.ResumeTiming();
        for (const Span& s : spans)
            grid.Erase(s.row, s.first, s.last);
        benchmark::DoNotOptimize(grid.Count());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// An index of four levels of 1024 rows, each with range(0) random spans.
std::unique_ptr<CRLEIndex> SampleIndex(int spansPerLevel) {
    auto index = std::make_unique<CRLEIndex>();
    for (int level = 0; level < 4; ++level) {
        auto* grid = new CRLEIndexCreate();
        grid->Level(level);
        for (const Span& s : RandomSpans(spansPerLevel, 1024, 4096, kSeed + level)) {
            grid->Add(s.row, s.first, s.last);
        }
        index->Append(grid);
    }
    return index;
}

void BM_IndexSave(benchmark::State& state) {
    auto index = SampleIndex(static_cast<int>(state.range(0)));
    std::vector<unsigned char> buf(static_cast<size_t>(index->BlockLength()));
    int written = 0;
    for (auto _ : state) {
        written = index->Save(buf.data(), static_cast<int>(buf.size()));
        benchmark::DoNotOptimize(buf.data());
    }
    if (written != static_cast<int>(buf.size())) state.SkipWithError("index not saved whole");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * buf.size()));
}

void BM_IndexLoad(benchmark::State& state) {
    auto index = SampleIndex(static_cast<int>(state.range(0)));
    std::vector<unsigned char> buf(static_cast<size_t>(index->BlockLength()));
    index->Save(buf.data(), static_cast<int>(buf.size()));
    int consumed = 0;
    for (auto _ : state) {
        CRLEIndex loaded;
        consumed = loaded.Load(buf.data(), static_cast<int>(buf.size()));
        benchmark::DoNotOptimize(loaded.LevelCount());
    }
    if (consumed != static_cast<int>(buf.size())) state.SkipWithError("index not loaded whole");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * buf.size()));
}

BENCHMARK(BM_RowAddSpans)->Arg(256)->Arg(4096)->Arg(65536);
BENCHMARK(BM_RowIsExist)->Arg(16)->Arg(1024)->Arg(65536);
BENCHMARK(BM_RowEraseSpans)->Arg(256)->Arg(4096);
BENCHMARK(BM_IndexSave)->Arg(1000)->Arg(100000);
BENCHMARK(BM_IndexLoad)->Arg(1000)->Arg(100000);

}  // namespace
