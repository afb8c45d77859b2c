// Lines and rings on hostile geometry: the drawing shortcuts (polygons skipped over rows that are
// already full, edges no longer walked once the outline can store no cell) against drawing every
// polygon in full, on random inputs over the whole int range.
#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "placement/AvoidContainer.h"
#include "test_support.h"

namespace {

using testing_support::RunsText;

// Two objects on canvases of one size: the first draws with the shortcuts, the second, through a
// transform that draws everything, without. A width of -1 draws a ring.
struct Pair {
    CDT dt, fullDt;
    CAvoidObject fast, full;
    Pair(long long w, long long h) {
        testing_support::SetCanvas(dt, w, h);
        testing_support::SetCanvas(fullDt, w, h);
        fullDt.footprint.drawEverything = true;
        for (auto [obj, t] : {std::pair(&fast, &dt), std::pair(&full, &fullDt)})
            obj->Reset(), obj->DT(t);
    }
    void Draw(std::vector<int> xy, int width) {
        for (CAvoidObject* obj : {&fast, &full})
            width == -1 ? obj->AddRing(xy.data(), int(xy.size()))
                        : obj->AddLine(xy.data(), int(xy.size()), width);
    }
};

int Uniform(std::mt19937& rng, int lo, int hi) {
    return std::uniform_int_distribution<int>(lo, hi)(rng);
}

// Coordinates of every kind: anywhere in the int range, its ends, millions of cells out, or
// near the canvas (of the given extent).
int Any(std::mt19937& rng, int extent) {
    const int kind = Uniform(rng, 0, 5);
    const int ends[] = {INT_MIN, INT_MIN + 1, -1, 0, INT_MAX - 1, INT_MAX};
    if (kind < 2) return Uniform(rng, INT_MIN, INT_MAX);
    if (kind == 2) return ends[Uniform(rng, 0, 5)];
    return kind == 3 ? Uniform(rng, -3000000, 3000000) : Uniform(rng, -8, extent + 8);
}
int Width(std::mt19937& rng) {
    const int widths[] = {0, 1, 2, 7, -3, 1000, 40000000, INT_MAX, INT_MIN};
    return widths[Uniform(rng, 0, 8)];
}
// Points of Any(); with a negative extent, over the whole int range only: after clipping, mostly
// edges along the window's sides.
std::vector<int> Points(std::mt19937& rng, int points, int w, int h) {
    std::vector<int> xy;
    for (int i = 0; i < points; ++i) {
        for (int extent : {w, h})
            xy.push_back(extent < 0 ? Uniform(rng, INT_MIN, INT_MAX) : Any(rng, extent));
    }
    return xy;
}

}  // namespace

TEST(HostileFootprint, LinesAndRingsGiveTheCellsOfDrawingEverything) {
    std::mt19937 rng(2026);
    for (int round = 0; round < 150; ++round) {
        const int w = Uniform(rng, 0, 48), h = Uniform(rng, 0, 48);
        Pair pair(w, h);
        // Several calls on one object: full rows left by earlier calls, then more lines and
        // rings over them.
        for (int call = 0; call < 4; ++call) {
            std::vector<int> xy = Points(rng, Uniform(rng, 2, 120), w, h);
            pair.Draw(xy, call % 2 == 0 || round % 3 == 0 ? Width(rng) : -1);
            ASSERT_EQ(RunsText(pair.fast), RunsText(pair.full))
                << "seed 2026, round " << round << ", call " << call;
        }
    }
}

TEST(HostileFootprint, CanvasWiderThanTheClipWindowKeepsItsCells) {
    // Clipped polygons reach column 32,003 at most; strokes inside the rasterizer's range reach
    // further, so rows full up to the window are not full for them.
    std::mt19937 rng(31);
    for (int round = 0; round < 12; ++round) {
        Pair pair(33000, 6);
        for (int call = 0; call < 3; ++call) {
            std::vector<int> xy = Points(rng, 40, 33000, 6);
            for (size_t i = 0; i < xy.size(); i += 8)
                xy[i] = Uniform(rng, 31990, 33010);
            pair.Draw(xy, round % 2 == 0 ? INT_MAX : 3);
            ASSERT_EQ(RunsText(pair.fast), RunsText(pair.full))
                << "seed 31, round " << round << ", call " << call;
        }
    }
}

TEST(HostileFootprint, RingsThatExhaustTheOutlineKeepTheSameCells) {
    // On a 200 x 200 canvas a full-height edge along the window's side is 208 cells: a ring of
    // 150,000 points over the int range stores more than the outline's 4,194,304 cells, which
    // drops the rest of the ring and every later polygon of the object.
    std::mt19937 rng(99);
    Pair pair(200, 200);
    pair.Draw(Points(rng, 30, 200, 200), 2);
    pair.Draw(Points(rng, 150000, -1, -1), -1);
    ASSERT_EQ(RunsText(pair.fast), RunsText(pair.full)) << "seed 99";
    // The ring left the outline exhausted: a stroke over a row that is not full adds nothing.
    const std::string exhausted = RunsText(pair.full);
    std::map<int, int> perRow;
    for (const auto& cell : testing_support::CellsOf(pair.full))
        ++perRow[cell.second];
    int gap = 0;
    while (gap < 200 && perRow[gap] == 200)
        ++gap;
    ASSERT_LT(gap, 200) << "the ring filled the canvas";
    pair.Draw({-10, gap, 210, gap}, 1);
    EXPECT_EQ(RunsText(pair.full), exhausted);
    const std::vector<int> after = Points(rng, 30, 200, 200);
    pair.Draw(after, 1);
    pair.Draw(after, -1);
    EXPECT_EQ(RunsText(pair.fast), RunsText(pair.full)) << "seed 99";
}

TEST(HostileFootprint, RingOverFullRowsStillExhaustsTheOutline) {
    // Rows 0 .. 9 full, then a ring inside them whose clipped outline stores more cells than the
    // outline holds: it adds no cell, yet it must be drawn, since it leaves the outline unable to
    // store the cells of the stroke that follows.
    Pair pair(200, 200);
    pair.Draw({-100, 5, 300, 5}, 5);
    std::vector<int> zigzag;
    for (int i = 0; i < 20000; ++i)
        zigzag.insert(zigzag.end(), {i % 2 == 0 ? -10 : 210, i % 2 == 0 ? 1 : 9});
    pair.Draw(zigzag, -1);
    pair.Draw({20, 100, 180, 100}, 3);
    EXPECT_EQ(RunsText(pair.fast), RunsText(pair.full));
    EXPECT_EQ(testing_support::CellsOf(pair.full), testing_support::RectCells(0, 0, 200, 10));
}

TEST(HostileFootprint, OutlinePassingEmptyCellsStoresTheSameCells) {
    // Shallow edges (many columns, a few subpixels of height) in both directions, steep ones and
    // horizontal ones, drawn with and without passing runs of empty cells in one step.
    std::mt19937 rng(5);
    auto cells = [](agg::outline& o) {
        std::vector<std::vector<int>> out;
        for (const agg::cell* const* c = o.cells(); c != nullptr && *c != nullptr; ++c)
            out.push_back({(*c)->x, (*c)->y, (*c)->cover, (*c)->area});
        out.push_back({o.min_x(), o.min_y(), o.max_x(), o.max_y()});
        return out;
    };
    agg::outline fast, full;
    full.walk_always(true);
    for (int round = 0; round < 100; ++round) {
        const int span = Uniform(rng, 1, 30000 * 256);
        const int rise = Uniform(rng, 0, round % 2 == 0 ? 40 : 2000);
        std::uniform_int_distribution<int> x(-span / 2, span / 2), y(-rise, rise);
        int xy[26];
        for (int i = 0; i < 26; ++i)
            xy[i] = i % 2 == 0 ? x(rng) : y(rng);
        for (agg::outline* o : {&fast, &full}) {
            o->reset();
            o->move_to(xy[0], xy[1]);
            for (int i = 2; i < 26; i += 2)
                o->line_to(xy[i], xy[i + 1]);
        }
        ASSERT_EQ(cells(fast), cells(full)) << "seed 5, round " << round;
    }
}
