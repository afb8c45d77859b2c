// Lines and rings on hostile geometry: the drawing shortcuts (polygons skipped over rows that are
// already full, edges no longer walked once the outline can store no cell) against drawing every
// polygon in full, on random inputs over the whole int range.
#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "placement/AvoidContainer.h"
#include "test_support.h"

namespace {

using testing_support::RunsText;

// Two objects on canvases of one size: the first draws with the shortcuts, the second, through a
// transform that draws everything, without. A width of -1 draws a ring.
struct Pair {
    testing_support::CanvasObject fast, full;
    Pair(long long w, long long h) : fast(w, h), full(w, h) {
        full.dt.footprint.drawEverything = true;
    }
    void Draw(std::vector<int> xy, int width) {
        for (CAvoidObject* obj : {&fast.obj, &full.obj})
            width == -1 ? obj->AddRing(xy.data(), int(xy.size()))
                        : obj->AddLine(xy.data(), int(xy.size()), width);
    }
};

// Coordinates of every kind: anywhere in the int range, its ends, millions of cells out, or
// near the canvas (of the given extent).
int Any(testing_support::Random& uniform, int extent) {
    const int kind = uniform(0, 5);
    const int ends[] = {INT_MIN, INT_MIN + 1, -1, 0, INT_MAX - 1, INT_MAX};
    if (kind < 2) return uniform(INT_MIN, INT_MAX);
    if (kind == 2) return ends[uniform(0, 5)];
    return kind == 3 ? uniform(-3000000, 3000000) : uniform(-8, extent + 8);
}
int Width(testing_support::Random& uniform) {
    const int widths[] = {0, 1, 2, 7, -3, 1000, 40000000, INT_MAX, INT_MIN};
    return widths[uniform(0, 8)];
}
}  // namespace

TEST(HostileFootprint, LinesAndRingsGiveTheCellsOfDrawingEverything) {
    testing_support::Random uniform{std::mt19937(2026)};
    for (int round = 0; round < 150; ++round) {
        const int w = uniform(0, 48), h = uniform(0, 48);
        Pair pair(w, h);
        // Several calls on one object: full rows left by earlier calls, then more lines and
        // rings over them.
        for (int call = 0; call < 4; ++call) {
            std::vector<int> xy(static_cast<size_t>(2 * uniform(2, 120)));
            for (size_t i = 0; i < xy.size(); ++i)
                xy[i] = Any(uniform, i % 2 == 0 ? w : h);
            pair.Draw(xy, call % 2 == 0 || round % 3 == 0 ? Width(uniform) : -1);
            ASSERT_EQ(RunsText(pair.fast.obj), RunsText(pair.full.obj))
                << "seed 2026, round " << round << ", call " << call;
        }
    }
}

TEST(HostileFootprint, RingOverFullRowsStillExhaustsTheOutline) {
    // Rows full, then a ring inside them whose outline stores more cells than the outline holds:
    // it adds no cell, yet it must be drawn, since it leaves the outline unable to store the cells
    // of the stroke that follows. The zigzag crosses column 0. The comb (teeth 8,000 rows tall)
    // stores just enough cells to fill the last block: only a close estimate keeps it drawn. The
    // same again drawn in one tile, which the tile's own estimate must keep drawn.
    std::vector<int> zigzag, comb = {0, 0};
    for (int i = 0; i < 20000; ++i)
        zigzag.insert(zigzag.end(), {i % 2 == 0 ? -210 : 210, i % 2 == 0 ? 1 : 9});
    for (int t = 0; t < 262; ++t)
        comb.insert(comb.end(), {2 * t, 8000, 2 * t + 1, 8000, 2 * t + 1, 0, 2 * t + 2, 0});
    for (const auto& [ring, w, rows, tiles] :
         {std::tuple{zigzag, 200, 10, 0}, {comb, 530, 8000, 0}, {comb, 530, 8000, 8100}}) {
        const std::vector<int> fill = {-100, rows / 2, w + 100, rows / 2};
        Pair pair(w, rows + 20);
        pair.fast.dt.footprint.tileCells = pair.full.dt.footprint.tileCells = tiles;
        testing_support::CanvasObject full(w, rows + 20);  // the full rows alone
        testing_support::Draw(full.obj, fill, rows / 2 + 1);
        pair.Draw(fill, rows / 2 + 1);
        pair.Draw(ring, -1);
        pair.Draw({20, rows + 10, 180, rows + 10}, 3);
        // (Runs of 8,000 rows: compared, not printed.)
        EXPECT_TRUE(RunsText(pair.fast.obj) == RunsText(pair.full.obj))
            << "shortcut " << rows << ", tiles " << tiles;
        EXPECT_TRUE(RunsText(pair.full.obj) == RunsText(full.obj))
            << "not exhausted " << rows << ", tiles " << tiles;
    }
    // On a canvas wider than the clip window, strokes past its right edge, before and over rows
    // full across it, in one call.
    Pair wide(40000, 40);
    wide.Draw({32020, 10, 32100, 12, 40100, 10, -100, 10, 32100, 11}, 3);
    EXPECT_EQ(RunsText(wide.fast.obj), RunsText(wide.full.obj));
}
