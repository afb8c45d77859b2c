#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "placement/AvoidContainer.h"
#include "test_support.h"

using testing_support::CellSet;
using testing_support::CellsOf;
using testing_support::RectCells;

namespace {

using Canvas = testing_support::CanvasObject;

CellSet Union(CellSet a, const CellSet& b) {
    a.insert(b.begin(), b.end());
    return a;
}

}  // namespace

// Shapes drawn on a fresh object of a 100 x 60 canvas, and the cells they give: lines (width > 0)
// or rings (width 0) of int cells.
TEST(Footprint, LinesAndRingsGiveTheirCells) {
    // The points, the width, the cells.
    const std::tuple<std::vector<int>, int, CellSet> cases[] = {
        // A horizontal segment covers the rows on both sides.
        {{0, 5, 10, 5}, 1, RectCells(0, 4, 10, 6)},
        // No caps or joins: the outer corner cell (20, 9) belongs to neither stroke; a segment of
        // length 0 and a trailing odd value draw nothing.
        {{10, 10, 10, 10, 20, 10, 20, 20, 99},
         1,
         Union(RectCells(10, 9, 20, 11), RectCells(19, 10, 21, 20))},
        // Segments along the canvas's edges keep the cells inside; those outside it are skipped,
        // even where they would reach in; one running into it is clipped.
        {{30, 0, 0, 0, 0, 60}, 1, Union(RectCells(0, 0, 30, 1), RectCells(0, 0, 1, 60))},
        {{40, -3, -3, -3, -3, 63, 40, 63}, 5, {}},
        {{-1000000, 60, 3000000, 60}, 3, RectCells(0, 57, 100, 60)},
        // A ring fills what it encloses (the raster tests compare the even-odd rule with a model).
        {{10, 20, 30, 20, 30, 25, 10, 25}, 0, RectCells(10, 20, 30, 25)},
    };
    for (const auto& [xy, width, cells] : cases) {
        Canvas c((int64_t{1} << 32) + 100, 60);  // the raster takes the low 32 bits: 100 columns
        testing_support::Draw(c.obj, xy, width);
        EXPECT_EQ(CellsOf(c.obj), cells) << "points " << testing::PrintToString(xy);
    }
    Canvas c(100, 60);
    int line[] = {0, 5, 10, 5, INT_MIN, INT_MIN, INT_MAX, INT_MAX};
    c.obj.AddLine(line, 4, 1);
    EXPECT_EQ(c.obj.RLEMaxExtent(), Box(0, 4, 9, 5));
    c.obj.AddLine(line + 4, 4, 3);
    c.obj.AddRing(line + 2, 6);
    c.obj.AddLine(static_cast<int*>(nullptr), 4, 1);  // no points: nothing drawn
    c.obj.AddLine(static_cast<double*>(nullptr), 4, 1);
    for (const auto& [x, y] : CellsOf(c.obj))
        EXPECT_TRUE(x >= 0 && x < 100 && y >= 0 && y < 60) << x << "," << y;
    // A ring is skipped by the canvas at its origin, then clipped to rows and columns from 0: on
    // a canvas at (-40, 50) only the ring below row 50 and left of column 60 adds its cells.
    Canvas shifted(100, 60);
    shifted.dt.originX = -40, shifted.dt.originY = 50;
    int above[] = {10, 10, 20, 10, 20, 20, 10, 20}, below[] = {10, 55, 20, 55, 20, 58, 10, 58};
    int right[] = {70, 55, 80, 55, 80, 58, 70, 58};
    for (int* ring : {above, below, right})
        shifted.obj.AddRing(ring, 8);
    EXPECT_EQ(CellsOf(shifted.obj), RectCells(10, 55, 20, 58));
}

TEST(AddLine, NaNAndInfiniteMapCoordinatesActAsTheMostNegativeCell) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    // Canvas 64 x 64 showing map (0, 0)-(64, 64): column = x, row = 64 - y.
    double map[] = {nan, 10, 30, 10, 30, inf, -inf, 30, 20, 20, 40, 20};
    int cells[] = {INT_MIN, 54, 30, 54, 30, INT_MIN, INT_MIN, 34, 20, 44, 40, 44};
    Canvas line(64, 64), lineCells(64, 64);
    line.obj.AddLine(map, 12, 1);
    lineCells.obj.AddLine(cells, 12, 1);
    line.obj.AddRing(map, 12);
    lineCells.obj.AddRing(cells, 12);
    EXPECT_EQ(CellsOf(line.obj), CellsOf(lineCells.obj));
    EXPECT_EQ(CellsOf(lineCells.obj).count({30, 5}), 1u);  // up column 30 from row 54
}

// Each shape takes the cheapest exact way: a rectangle of cells is added without a sweep, a
// polygon within the rasterizer's range is swept where it lies or in a frame of its own, one too
// wide for a frame in tiles (a shallow edge cut only where it climbs), and one over full rows not
// at all. Drawn one after another: a width (0: a ring) and the points, then the counts so far of
// polygons swept, tiles, rectangles and polygons skipped.
TEST(Footprint, EachShapeTakesTheCheapestExactWay) {
    const std::pair<std::vector<int>, std::vector<uint64_t>> steps[] = {
        {{0, 10, 30, 30, 30, 30, 40, 10, 40}, {0, 0, 1, 0}},          // rectangles one way round,
        {{0, 40, 30, 40, 40, 60, 40, 60, 30, 40, 30}, {0, 0, 2, 0}},  // the other, closed,
        {{3, 10, 50, 60, 50}, {0, 0, 3, 0}},                          // along an axis
        {{0, 10, 20, 30, 20, 10, 40}, {1, 0, 3, 0}},                  // a triangle
        {{0, 60000, 10, 60100, 10, 60000, 40}, {2, 0, 3, 0}},         // in a frame
        // Too wide for a frame: in three tiles, each edge crossing a seam in a direction of its
        // own; in one, where the raster holds a row and 3,001 columns of it.
        {{0, 0, 58, 40000, 57, 80000, 58, 80000, 59, 40000, 60, 0, 59}, {2, 3, 3, 0}},
        {{0, -30000, 59, 3000, 59, -30000, 70}, {2, 4, 3, 0}},
        {{0, -10, 10, 100010, 10, 100010, 20, -10, 20}, {2, 4, 4, 0}},  // rows 10-19 full
        // Above and below those rows; in them, in tiles and down to their last row, in a frame
        // past the canvas's right edge, and left of the canvas touching it.
        {{0, 5, 2, 20, 2, 5, 6}, {3, 4, 4, 0}},
        {{0, 5, 30, 20, 30, 5, 40}, {4, 4, 4, 0}},
        {{0, 0, 12, 40000, 12, 0, 19}, {4, 4, 4, 1}},
        {{0, 99990, 12, 100050, 12, 99990, 20}, {4, 4, 4, 2}},
        {{0, -2, 50, 0, 50, -2, 52}, {4, 4, 4, 3}},
    };
    Canvas c(100000, 60);
    const kxac::FootprintScratch::Counts& n = c.dt.footprint.counts;
    for (const auto& [d, after] : steps) {
        testing_support::Draw(c.obj, {d.begin() + 1, d.end()}, d[0]);
        EXPECT_EQ((std::vector<uint64_t>{n.swept, n.tiles, n.rectangles, n.skipped}), after)
            << testing::PrintToString(d);
    }
    // The tiles' edges climb one row over 40,000 columns: pieces where y changes, not one a
    // column. In tiles of 8 cells, a triangle of 20 by 19 cells takes 3 x 3 of them.
    EXPECT_LT(n.pieces, 2000u);
    c.dt.footprint.tileCells = 8;
    testing_support::Draw(c.obj, {10, 40, 30, 40, 10, 59}, 0);
    EXPECT_EQ(n.tiles, 4u + 9u);
}
