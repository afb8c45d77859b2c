// Lines and rings on hostile geometry: the drawing shortcuts (polygons skipped over rows that are
// already full, edges no longer walked once the outline can store no cell) against drawing every
// polygon in full, on random inputs over the whole int range.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "placement/AvoidContainer.h"
#include "test_support.h"

namespace {

// Two objects on canvases of one size: the first draws with the shortcuts, the second, through a
// transform that draws everything, without.
struct Pair {
    CDT dt, fullDt;
    CAvoidObject fast, full;
    Pair(long long w, long long h) {
        testing_support::SetCanvas(dt, w, h);
        testing_support::SetCanvas(fullDt, w, h);
        fullDt.footprint.drawEverything = true;
        fast.Reset();
        fast.DT(&dt);
        full.Reset();
        full.DT(&fullDt);
    }
    void Line(std::vector<int>& xy, int width) {
        fast.AddLine(xy.data(), static_cast<int>(xy.size()), width);
        full.AddLine(xy.data(), static_cast<int>(xy.size()), width);
    }
    void Ring(std::vector<int>& xy) {
        fast.AddRing(xy.data(), static_cast<int>(xy.size()));
        full.AddRing(xy.data(), static_cast<int>(xy.size()));
    }
};

// The rows and runs of the grid, as stored, and the run extent.
std::string Dump(const CAvoidObject& obj) {
    std::ostringstream out;
    const CRLEIndexQuery& grid = obj.Grid();
    out << "extent " << obj.RLEMaxExtent().left << ',' << obj.RLEMaxExtent().top << ','
        << obj.RLEMaxExtent().right << ',' << obj.RLEMaxExtent().bottom;
    if (grid.IsEmpty()) return out.str();
    for (int row = grid.StartRow(); row <= grid.EndRow(); ++row) {
        out << "\n" << row << ':';
        for (const RLE& run : *grid.RowRuns(row))
            out << ' ' << run.start << '-' << run.end;
    }
    return out.str();
}

// The cells of row y of a 200-column canvas.
testing_support::CellSet RowCells(int y) { return testing_support::RectCells(0, y, 200, y + 1); }

// Coordinates of every kind: anywhere in the int range, its ends, millions of cells out, or
// near the canvas.
struct Coordinates {
    std::mt19937 rng;
    explicit Coordinates(uint32_t seed) : rng(seed) {}
    int Any(int extent) {
        switch (std::uniform_int_distribution<int>(0, 5)(rng)) {
            case 0:
            case 1:
                return std::uniform_int_distribution<int>(INT_MIN, INT_MAX)(rng);
            case 2: {
                const int ends[] = {INT_MIN, INT_MIN + 1, -1, 0, INT_MAX - 1, INT_MAX};
                return ends[std::uniform_int_distribution<int>(0, 5)(rng)];
            }
            case 3:
                return std::uniform_int_distribution<int>(-3000000, 3000000)(rng);
            default:
                return std::uniform_int_distribution<int>(-8, extent + 8)(rng);
        }
    }
    int Width() {
        const int widths[] = {0, 1, 2, 7, -3, 1000, 40000000, INT_MAX, INT_MIN};
        return widths[std::uniform_int_distribution<int>(0, 8)(rng)];
    }
    std::vector<int> Points(int points, int w, int h) {
        std::vector<int> xy;
        for (int i = 0; i < points; ++i) {
            xy.push_back(Any(w));
            xy.push_back(Any(h));
        }
        return xy;
    }
    // Points over the whole int range only: after clipping, mostly edges along the window's sides.
    std::vector<int> Wild(int points) {
        std::vector<int> xy(2 * static_cast<size_t>(points));
        for (int& v : xy)
            v = std::uniform_int_distribution<int>(INT_MIN, INT_MAX)(rng);
        return xy;
    }
};

}  // namespace

TEST(HostileFootprint, LinesAndRingsGiveTheCellsOfDrawingEverything) {
    const uint32_t seed = 2026;
    Coordinates any(seed);
    for (int round = 0; round < 150; ++round) {
        const int w = std::uniform_int_distribution<int>(0, 48)(any.rng);
        const int h = std::uniform_int_distribution<int>(0, 48)(any.rng);
        Pair pair(w, h);
        // Several calls on one object: full rows left by earlier calls, then more lines and
        // rings over them.
        for (int call = 0; call < 4; ++call) {
            const int points = std::uniform_int_distribution<int>(2, 120)(any.rng);
            std::vector<int> xy = any.Points(points, w, h);
            if (call % 2 == 0 || round % 3 == 0) {
                pair.Line(xy, any.Width());
            } else {
                pair.Ring(xy);
            }
            ASSERT_EQ(Dump(pair.fast), Dump(pair.full))
                << "seed " << seed << ", round " << round << ", call " << call << ", canvas " << w
                << " x " << h;
        }
    }
}

TEST(HostileFootprint, CanvasWiderThanTheClipWindowKeepsItsCells) {
    // Clipped polygons reach column 32,003 at most; strokes inside the rasterizer's range reach
    // further, so rows full up to the window are not full for them.
    const uint32_t seed = 31;
    Coordinates any(seed);
    for (int round = 0; round < 12; ++round) {
        Pair pair(33000, 6);
        for (int call = 0; call < 3; ++call) {
            std::vector<int> xy = any.Points(40, 33000, 6);
            for (size_t i = 0; i < xy.size(); i += 8)
                xy[i] = std::uniform_int_distribution<int>(31990, 33010)(any.rng);
            pair.Line(xy, round % 2 == 0 ? INT_MAX : 3);
            ASSERT_EQ(Dump(pair.fast), Dump(pair.full))
                << "seed " << seed << ", round " << round << ", call " << call;
        }
    }
}

TEST(HostileFootprint, RingsThatExhaustTheOutlineKeepTheSameCells) {
    // On a 200 x 200 canvas a full-height edge along the window's side is 208 cells: a ring of
    // 150,000 points over the int range stores more than the outline's 4,194,304 cells, which
    // drops the rest of the ring and every later polygon of the object.
    const uint32_t seed = 99;
    Coordinates any(seed);
    Pair pair(200, 200);
    std::vector<int> before = any.Points(30, 200, 200);
    pair.Line(before, 2);
    std::vector<int> ring = any.Wild(150000);
    pair.Ring(ring);
    ASSERT_EQ(Dump(pair.fast), Dump(pair.full)) << "seed " << seed;
    // The ring left the outline exhausted: a stroke over a row that is not full adds nothing.
    const std::string exhausted = Dump(pair.full);
    const testing_support::CellSet held = testing_support::CellsOf(pair.full);
    int gap = 0;
    for (; gap < 200; ++gap) {
        const testing_support::CellSet row = RowCells(gap);
        if (!std::includes(held.begin(), held.end(), row.begin(), row.end())) break;
    }
    ASSERT_LT(gap, 200) << "the ring filled the canvas";
    std::vector<int> probe = {-10, gap, 210, gap};
    pair.Line(probe, 1);
    EXPECT_EQ(Dump(pair.full), exhausted);
    std::vector<int> after = any.Points(30, 200, 200);
    pair.Line(after, 1);
    pair.Ring(after);
    EXPECT_EQ(Dump(pair.fast), Dump(pair.full)) << "seed " << seed;
}

TEST(HostileFootprint, RingOverFullRowsStillExhaustsTheOutline) {
    // Rows 0 .. 9 full, then a ring inside them whose clipped outline stores more cells than the
    // outline holds: it adds no cell, yet it must be drawn, since it leaves the outline unable to
    // store the cells of the stroke that follows.
    Pair pair(200, 200);
    std::vector<int> band = {-100, 5, 300, 5};
    pair.Line(band, 5);
    std::vector<int> zigzag;
    for (int i = 0; i < 20000; ++i) {
        zigzag.push_back(i % 2 == 0 ? -10 : 210);
        zigzag.push_back(i % 2 == 0 ? 1 : 9);
    }
    pair.Ring(zigzag);
    std::vector<int> later = {20, 100, 180, 100};
    pair.Line(later, 3);
    EXPECT_EQ(Dump(pair.fast), Dump(pair.full));
    EXPECT_EQ(testing_support::CellsOf(pair.full), testing_support::RectCells(0, 0, 200, 10));
}

TEST(HostileFootprint, OutlinePassingEmptyCellsStoresTheSameCells) {
    // Shallow edges (many columns, a few subpixels of height) in both directions, steep ones and
    // horizontal ones, drawn with and without passing runs of empty cells in one step.
    const uint32_t seed = 5;
    std::mt19937 rng(seed);
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
        const int span = std::uniform_int_distribution<int>(1, 30000 * 256)(rng);
        const int rise = std::uniform_int_distribution<int>(0, round % 2 == 0 ? 40 : 2000)(rng);
        std::uniform_int_distribution<int> x(-span / 2, span / 2), y(-rise, rise);
        fast.reset();
        full.reset();
        const int x0 = x(rng), y0 = y(rng);
        fast.move_to(x0, y0);
        full.move_to(x0, y0);
        for (int i = 0; i < 12; ++i) {
            const int px = x(rng), py = y(rng);
            fast.line_to(px, py);
            full.line_to(px, py);
        }
        ASSERT_EQ(cells(fast), cells(full)) << "seed " << seed << ", round " << round;
    }
}
