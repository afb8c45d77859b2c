#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "raster/agg.h"

namespace {

constexpr int kCell = agg::subpixel_scale;

std::vector<agg::cell> SortedCells(agg::outline& o) {
    std::vector<agg::cell> out;
    const agg::cell* const* list = o.cells();
    if (list == nullptr) return out;
    for (; *list != nullptr; ++list)
        out.push_back(**list);
    return out;
}

// Rectangle from (x0, y0) to (x1, y1) in subpixels, clockwise on screen.
void Rect(agg::outline& o, int x0, int y0, int x1, int y1) {
    o.move_to(x0, y0);
    o.line_to(x1, y0);
    o.line_to(x1, y1);
    o.line_to(x0, y1);
}

TEST(Outline, StartsWithEmptyBoundsAndIgnoresLineToThePen) {
    agg::outline o;
    o.move_to(500, 700);
    o.line_to(500, 700);
    EXPECT_EQ(o.min_x(), 0x7FFFFFFF);
    EXPECT_EQ(o.min_y(), 0x7FFFFFFF);
    EXPECT_EQ(o.max_x(), -0x7FFFFFFF);
    EXPECT_EQ(o.max_y(), -0x7FFFFFFF);
    EXPECT_EQ(o.cells(), nullptr);
}

TEST(Outline, VerticalEdgeCoversWholeRows) {
    agg::outline o;
    o.move_to(1024, 2 * kCell);
    o.line_to(1024, 6 * kCell);
    std::vector<agg::cell> cells = SortedCells(o);
    // The edge down and the closing edge up: one cell of each per row. The small sort is an
    // insertion sort, so each row keeps storage order: down (+256) before up (-256).
    ASSERT_EQ(cells.size(), 8u);
    for (size_t i = 0; i < cells.size(); ++i) {
        EXPECT_EQ(cells[i].x, 4);
        EXPECT_EQ(cells[i].y, 2 + static_cast<int>(i / 2));
        EXPECT_EQ(cells[i].packed, cells[i].y * 65536 + 4);
        EXPECT_EQ(cells[i].cover, i % 2 == 0 ? 256 : -256);
        EXPECT_EQ(cells[i].area, 0);
    }
    // The walk ends on the boundary of row 6, which still counts as touched.
    EXPECT_EQ(o.min_x(), 4);
    EXPECT_EQ(o.max_x(), 5);
    EXPECT_EQ(o.min_y(), 2);
    EXPECT_EQ(o.max_y(), 7);
}

TEST(Outline, HorizontalEdgeMovesOnlyTheBounds) {
    agg::outline o;
    o.move_to(2 * kCell + 10, 3 * kCell + 100);
    o.line_to(7 * kCell + 20, 3 * kCell + 100);
    EXPECT_EQ(o.cells(), nullptr);
    EXPECT_EQ(o.cell_count(), 0u);
    EXPECT_EQ(o.min_x(), 2);
    EXPECT_EQ(o.max_x(), 8);
    EXPECT_EQ(o.min_y(), 3);
    EXPECT_EQ(o.max_y(), 4);
}

// |(row cover up to and including a stored cell) * 512 - area|: for a simple polygon, twice the
// covered area of the cell in square subpixels.
std::map<std::pair<int, int>, int> CellValues(const std::vector<agg::cell>& cells) {
    std::map<std::pair<int, int>, int> values;
    int cover = 0;
    for (size_t i = 0; i < cells.size();) {
        int area = 0;
        const size_t start = i;
        for (; i < cells.size() && cells[i].packed == cells[start].packed; ++i) {
            cover += cells[i].cover;
            area += cells[i].area;
        }
        values[{cells[start].x, cells[start].y}] = std::abs(cover * 512 - area);
    }
    return values;
}

TEST(Outline, UnitSquareCellsHoldTheirCoveredArea) {
    const unsigned seed = 11;
    std::mt19937 rng(seed);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const int x0 = static_cast<int>(rng() % 2048) - 1024;
        const int y0 = static_cast<int>(rng() % 2048) - 1024;
        const int w = 1 + static_cast<int>(rng() % 700);
        const int h = 1 + static_cast<int>(rng() % 700);
        agg::outline o;
        Rect(o, x0, y0, x0 + w, y0 + h);
        const std::vector<agg::cell> cells = SortedCells(o);
        int cover_sum = 0;
        for (const agg::cell& c : cells)
            cover_sum += c.cover;
        EXPECT_EQ(cover_sum, 0);
        for (const auto& [pos, value] : CellValues(cells)) {
            const int cx = pos.first * kCell, cy = pos.second * kCell;
            const int ox = std::max(0, std::min(cx + kCell, x0 + w) - std::max(cx, x0));
            const int oy = std::max(0, std::min(cy + kCell, y0 + h) - std::max(cy, y0));
            EXPECT_EQ(value, 2 * ox * oy) << "cell " << pos.first << "," << pos.second;
        }
    }
}

// Closed-form model of the cells of one edge: the path through the exact crossings of every row
// boundary, and inside each row of every column boundary, each rounded down to a subpixel.
using CellSums = std::map<std::pair<int64_t, int64_t>, std::pair<int64_t, int64_t>>;

int64_t FloorDiv(int64_t a, int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }
int64_t CellOf(int64_t v) { return FloorDiv(v, kCell); }

void AddPiece(CellSums& m, int64_t ex, int64_t ey, int64_t fx1, int64_t fy1, int64_t fx2,
              int64_t fy2) {
    auto& [cover, area] = m[{ex, ey}];
    cover += fy2 - fy1;
    area += (fx1 + fx2) * (fy2 - fy1);
}

void ModelRow(CellSums& m, int64_t row, int64_t xa, int64_t fa, int64_t xb, int64_t fb) {
    if (fa == fb) return;
    const int64_t exa = CellOf(xa), exb = CellOf(xb);
    const int64_t fxa = xa - exa * kCell, fxb = xb - exb * kCell;
    if (exa == exb) return AddPiece(m, exa, row, fxa, fa, fxb, fb);
    const bool right = xb > xa;
    const int64_t w = right ? xb - xa : xa - xb;
    const int64_t columns = right ? exb - exa : exa - exb;
    int64_t ex = exa, fx = fxa, fy = fa;
    for (int64_t j = 1; j <= columns; ++j) {
        const int64_t boundary = right ? (exa + j) * kCell : (exa - j + 1) * kCell;
        const int64_t v = fa + FloorDiv((right ? boundary - xa : xa - boundary) * (fb - fa), w);
        AddPiece(m, ex, row, fx, fy, right ? kCell : 0, v);
        ex += right ? 1 : -1;
        fx = right ? 0 : kCell;
        fy = v;
    }
    AddPiece(m, exb, row, fx, fy, fxb, fb);
}

void ModelEdge(CellSums& m, int64_t x1, int64_t y1, int64_t x2, int64_t y2) {
    if (y1 == y2) return;
    const int64_t dx = x2 - x1, ady = y2 > y1 ? y2 - y1 : y1 - y2;
    std::vector<std::pair<int64_t, int64_t>> path = {{x1, y1}};
    if (y2 > y1) {
        for (int64_t b = (CellOf(y1) + 1) * kCell; b <= CellOf(y2) * kCell; b += kCell) {
            path.emplace_back(x1 + FloorDiv((b - y1) * dx, ady), b);
        }
    } else {
        for (int64_t b = CellOf(y1) * kCell; b > CellOf(y2) * kCell; b -= kCell) {
            path.emplace_back(x1 + FloorDiv((y1 - b) * dx, ady), b);
        }
    }
    path.emplace_back(x2, y2);
    for (size_t i = 1; i < path.size(); ++i) {
        const auto [xa, ya] = path[i - 1];
        const auto [xb, yb] = path[i];
        const int64_t row = CellOf(std::min(ya, yb));
        ModelRow(m, row, xa, ya - row * kCell, xb, yb - row * kCell);
    }
}

TEST(Outline, CellsMatchTheRoundedEdgeModel) {
    const unsigned seed = 77;
    std::mt19937 rng(seed);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        const int n = 3 + static_cast<int>(rng() % 5);
        const int span = (round % 3 == 0 ? 3 : 60) * kCell;  // small ones stay inside few cells
        std::vector<std::pair<int, int>> pts;
        for (int i = 0; i < n; ++i) {
            pts.emplace_back(static_cast<int>(rng() % (2 * span)) - span,
                             static_cast<int>(rng() % (2 * span)) - span);
        }
        agg::outline o;
        o.move_to(pts[0].first, pts[0].second);
        for (int i = 1; i < n; ++i)
            o.line_to(pts[i].first, pts[i].second);
        CellSums expected;
        for (int i = 0; i < n; ++i) {
            const auto& a = pts[i];
            const auto& b = pts[(i + 1) % n];
            ModelEdge(expected, a.first, a.second, b.first, b.second);
        }
        const std::vector<agg::cell> cells = SortedCells(o);
        ASSERT_TRUE(std::is_sorted(cells.begin(), cells.end(), [](const auto& a, const auto& b) {
            return a.packed < b.packed;
        }));
        CellSums actual;
        for (const agg::cell& c : cells) {
            auto& [cover, area] = actual[{c.x, c.y}];
            cover += c.cover;
            area += c.area;
        }
        for (CellSums* m : {&expected, &actual}) {
            for (auto it = m->begin(); it != m->end();) {
                it = it->second == std::make_pair<int64_t, int64_t>(0, 0) ? m->erase(it) : ++it;
            }
        }
        ASSERT_EQ(actual, expected);
    }
}

TEST(Outline, NegativeColumnSortsBeforeColumnZero) {
    agg::outline o;
    Rect(o, -kCell + 50, 4 * kCell + 10, 100, 6 * kCell + 200);
    const std::vector<agg::cell> cells = SortedCells(o);
    // Column -1 of row 5 sorts directly before column 0 of row 5.
    auto at = [&](int x, int y) {
        return std::find_if(cells.begin(), cells.end(),
                            [&](const agg::cell& c) { return c.x == x && c.y == y; });
    };
    ASSERT_NE(at(-1, 5), cells.end());
    EXPECT_EQ(at(-1, 5)->packed, 5 * 65536 - 1);
    EXPECT_EQ(at(-1, 5) + 1, at(0, 5));
}

TEST(Outline, EdgesAfterCellsAreIgnoredUntilMoveTo) {
    agg::outline o;
    Rect(o, 0, 0, 3 * kCell + 5, 2 * kCell + 7);
    const agg::cell* const* first = o.cells();
    const unsigned count = o.cell_count();
    o.line_to(90 * kCell, 90 * kCell);
    EXPECT_EQ(o.cells(), first);
    EXPECT_EQ(o.cell_count(), count);
    EXPECT_EQ(o.max_x(), 4);
    // A move after cells() starts a new polygon.
    o.move_to(10 * kCell, 10 * kCell);
    o.line_to(10 * kCell, 11 * kCell);
    ASSERT_NE(o.cells(), nullptr);
    EXPECT_EQ(o.cell_count(), 2u);
    EXPECT_EQ(o.min_y(), 10);
}

TEST(Outline, ResetRefillsTheBlocksItHas) {
    agg::outline o;
    // More polygons than the block limit, each needing a block: only a reuse of the first
    // block lets the last one still store its cells.
    for (int i = 0; i < 1100; ++i) {
        o.reset();
        Rect(o, 0, 0, 3 * kCell + 9, 2 * kCell + 9);
        ASSERT_NE(o.cells(), nullptr) << "polygon " << i;
    }
}

TEST(Outline, BlockLimitDropsCellsForever) {
    agg::outline o;
    // Steep strokes over 60,000 rows, each leaving at least one cell per row: 4.8 million cells.
    o.move_to(0, -30000 * kCell);
    for (int i = 1; i <= 80; ++i)
        o.line_to(i * kCell + 128, (i % 2 == 1 ? 30000 : -30000) * kCell);
    EXPECT_EQ(o.cell_count(), 1024u * 4096u);
    // All 1024 blocks exist now: a new polygon cannot begin its first block.
    o.reset();
    Rect(o, 0, 0, 5 * kCell + 3, 5 * kCell + 3);
    EXPECT_EQ(o.cells(), nullptr);
    EXPECT_EQ(o.cell_count(), 0u);
}

TEST(Outline, ReleasedOutlineStoresTheSameCellsAsAKeptOne) {
    agg::outline kept;
    agg::outline released;
    for (agg::outline* o : {&kept, &released}) {
        o->reset();
        // A first polygon of two blocks, then a smaller one.
        o->move_to(0, -3000 * kCell);
        for (int i = 1; i <= 4; ++i)
            o->line_to(i * kCell + 77, (i % 2 == 1 ? 3000 : -3000) * kCell);
        ASSERT_NE(o->cells(), nullptr);
        if (o == &released) o->release();
        o->reset();
        Rect(*o, 3 * kCell + 5, kCell, 9 * kCell + 200, 6 * kCell + 1);
    }
    const std::vector<agg::cell> a = SortedCells(kept);
    const std::vector<agg::cell> b = SortedCells(released);
    ASSERT_EQ(a.size(), b.size());
    ASSERT_FALSE(a.empty());
    for (size_t i = 0; i < a.size(); ++i) {
        EXPECT_EQ(a[i].packed, b[i].packed) << i;
        EXPECT_EQ(a[i].cover, b[i].cover) << i;
        EXPECT_EQ(a[i].area, b[i].area) << i;
    }
}

TEST(Outline, ReleaseKeepsCountingTowardTheBlockLimit) {
    agg::outline o;
    o.move_to(0, -30000 * kCell);
    for (int i = 1; i <= 80; ++i)
        o.line_to(i * kCell + 128, (i % 2 == 1 ? 30000 : -30000) * kCell);
    EXPECT_EQ(o.cell_count(), 1024u * 4096u);
    // The storage is gone, but the blocks were allocated once: the limit still holds.
    o.release();
    Rect(o, 0, 0, 5 * kCell + 3, 5 * kCell + 3);
    EXPECT_EQ(o.cells(), nullptr);
}

TEST(Outline, ReleasedOutlineDrawsAgainBelowTheLimit) {
    agg::outline o;
    for (int i = 0; i < 1100; ++i) {
        // Each polygon allocates its block afresh, but as a reuse of the first: never counted.
        Rect(o, 0, 0, 3 * kCell + 9, 2 * kCell + 9);
        ASSERT_NE(o.cells(), nullptr) << "polygon " << i;
        o.release();
    }
}

TEST(Outline, SharedStorageKeepsEachOutlinesCellsAndLimit) {
    agg::cell_storage shared;
    agg::outline full, small, alone;
    full.share(&shared);
    small.share(&shared);
    // One outline reaches the block limit through the shared storage...
    full.move_to(0, -30000 * kCell);
    for (int i = 1; i <= 80; ++i)
        full.line_to(i * kCell + 128, (i % 2 == 1 ? 30000 : -30000) * kCell);
    EXPECT_EQ(full.cell_count(), 1024u * 4096u);
    // ...the other still draws, and gets the cells an outline of its own gets.
    for (agg::outline* o : {&small, &alone})
        Rect(*o, 3 * kCell + 5, kCell, 9 * kCell + 200, 6 * kCell + 1);
    const std::vector<agg::cell> a = SortedCells(small);
    const std::vector<agg::cell> b = SortedCells(alone);
    ASSERT_EQ(a.size(), b.size());
    ASSERT_FALSE(a.empty());
    for (size_t i = 0; i < a.size(); ++i)
        EXPECT_EQ(a[i].packed, b[i].packed) << i;
    full.reset();
    Rect(full, 0, 0, 5 * kCell + 3, 5 * kCell + 3);
    EXPECT_EQ(full.cells(), nullptr);
}

}  // namespace
