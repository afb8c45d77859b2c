#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "raster/agg.h"

namespace {

constexpr int kCell = agg::subpixel_scale;

std::vector<agg::cell> SortedCells(agg::outline& o) {
    std::vector<agg::cell> out;
    for (const agg::cell* const* list = o.cells(); list != nullptr && *list != nullptr; ++list)
        out.push_back(**list);
    return out;
}

// The cells handed out, checked: each stored cell once, in key order.
std::vector<agg::cell> CheckedCells(agg::outline& o) {
    std::vector<const agg::cell*> list;
    for (const agg::cell* const* p = o.cells(); p != nullptr && *p != nullptr; ++p)
        list.push_back(*p);
    EXPECT_EQ(list.size(), o.cell_count());
    EXPECT_EQ(std::set<const agg::cell*>(list.begin(), list.end()).size(), list.size())
        << "a cell handed out twice";
    std::vector<agg::cell> out;
    for (const agg::cell* c : list)
        out.push_back(*c);
    EXPECT_TRUE(std::is_sorted(out.begin(), out.end(),
                               [](const auto& a, const auto& b) { return a.packed < b.packed; }));
    return out;
}

// Rectangle from (x0, y0) to (x1, y1) in subpixels, clockwise on screen.
void Rect(agg::outline& o, int x0, int y0, int x1, int y1) {
    o.move_to(x0, y0);
    o.line_to(x1, y0);
    o.line_to(x1, y1);
    o.line_to(x0, y1);
}

// Steep strokes over 60,000 rows, each leaving at least one cell per row: all 1024 blocks.
void FillAllBlocks(agg::outline& o) {
    o.move_to(0, -30000 * kCell);
    for (int i = 1; i <= 80; ++i)
        o.line_to(i * kCell + 128, (i % 2 == 1 ? 30000 : -30000) * kCell);
    ASSERT_EQ(o.cell_count(), 1024u * 4096u);
}

void ExpectSameCells(agg::outline& a, agg::outline& b) {
    const std::vector<agg::cell> ca = SortedCells(a), cb = SortedCells(b);
    ASSERT_EQ(ca.size(), cb.size());
    ASSERT_FALSE(ca.empty());
    for (size_t i = 0; i < ca.size(); ++i) {
        EXPECT_EQ(ca[i].packed, cb[i].packed) << i;
        EXPECT_EQ(ca[i].cover, cb[i].cover) << i;
        EXPECT_EQ(ca[i].area, cb[i].area) << i;
    }
}

TEST(Outline, VerticalEdgeCoversWholeRowsAndHorizontalOnlyMovesBounds) {
    agg::outline o;
    o.move_to(500, 700);
    o.line_to(500, 700);  // a line to the pen adds nothing
    EXPECT_EQ(o.min_x(), 0x7FFFFFFF);
    EXPECT_EQ(o.max_y(), -0x7FFFFFFF);
    o.move_to(1024, 2 * kCell);
    o.line_to(1024, 6 * kCell);
    std::vector<agg::cell> cells = SortedCells(o);
    // The edge down and the closing edge up: one cell of each per row. The small sort is an
    // insertion sort, so each row keeps storage order: down (+256) before up (-256).
    ASSERT_EQ(cells.size(), 8u);
    for (size_t i = 0; i < cells.size(); ++i) {
        EXPECT_EQ(cells[i].y, 2 + static_cast<int>(i / 2));
        EXPECT_EQ(cells[i].packed, cells[i].y * 65536 + 4);
        EXPECT_EQ(cells[i].cover, i % 2 == 0 ? 256 : -256);
        EXPECT_EQ(cells[i].area, 0);
    }
    // The walk ends on the boundary of row 6, which still counts as touched.
    EXPECT_EQ(std::vector<int>({o.min_x(), o.min_y(), o.max_x(), o.max_y()}),
              std::vector<int>({4, 2, 5, 7}));

    agg::outline h;
    h.move_to(2 * kCell + 10, 3 * kCell + 100);
    h.line_to(7 * kCell + 20, 3 * kCell + 100);
    EXPECT_EQ(h.cells(), nullptr);
    EXPECT_EQ(std::vector<int>({h.min_x(), h.min_y(), h.max_x(), h.max_y()}),
              std::vector<int>({2, 3, 8, 4}));
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
        for (int64_t b = (CellOf(y1) + 1) * kCell; b <= CellOf(y2) * kCell; b += kCell)
            path.emplace_back(x1 + FloorDiv((b - y1) * dx, ady), b);
    } else {
        for (int64_t b = CellOf(y1) * kCell; b > CellOf(y2) * kCell; b -= kCell)
            path.emplace_back(x1 + FloorDiv((y1 - b) * dx, ady), b);
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
        // Small ones stay inside few cells; wide ones reach the widest edges drawn uncut.
        const bool wide = round % 100 == 1;
        const int spanX = (wide ? 16000 : round % 3 == 0 ? 3 : 60) * kCell;
        const int spanY = (wide || round % 3 == 0 ? 3 : 60) * kCell;
        std::vector<std::pair<int, int>> pts;
        agg::outline o;
        for (int i = 0; i < n; ++i) {
            pts.emplace_back(static_cast<int>(rng() % (2 * spanX)) - spanX,
                             static_cast<int>(rng() % (2 * spanY)) - spanY);
            i == 0 ? o.move_to(pts[0].first, pts[0].second)
                   : o.line_to(pts[i].first, pts[i].second);
        }
        CellSums expected, actual;
        for (int i = 0; i < n; ++i) {
            const auto& a = pts[i];
            const auto& b = pts[(i + 1) % n];
            ModelEdge(expected, a.first, a.second, b.first, b.second);
        }
        const std::vector<agg::cell> cells = CheckedCells(o);
        for (const agg::cell& c : cells) {
            auto& [cover, area] = actual[{c.x, c.y}];
            cover += c.cover;
            area += c.area;
        }
        for (CellSums* m : {&expected, &actual}) {
            for (auto it = m->begin(); it != m->end();)
                it = it->second == std::make_pair<int64_t, int64_t>(0, 0) ? m->erase(it) : ++it;
        }
        ASSERT_EQ(actual, expected);
    }
}

// Rows or columns beyond 16 bits give keys that differ from the stored, truncated coordinates;
// a tall thin polygon has far more rows than cells per row. Either way cells come in key order.
TEST(Outline, CellsComeSortedBeyondSixteenBitsAndForTallPolygons) {
    const int boxes[][4] = {{100, 32700, 160, 32800}, {32700, 100, 32800, 160}};
    for (uint32_t seed = 1; seed <= 50; ++seed) {
        std::mt19937 rng(seed);
        for (const auto& b : boxes) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " box at " + std::to_string(b[0]));
            std::uniform_int_distribution<int> x(b[0] * kCell, b[2] * kCell);
            std::uniform_int_distribution<int> y(b[1] * kCell, b[3] * kCell);
            agg::outline o;
            for (int i = 0; i < 5; ++i) {
                const int vx = x(rng), vy = y(rng);
                i == 0 ? o.move_to(vx, vy) : o.line_to(vx, vy);
            }
            EXPECT_FALSE(CheckedCells(o).empty());
        }
    }
    agg::outline tall;
    tall.move_to(5 * kCell + 10, 0);
    tall.line_to(5 * kCell + 200, 3000 * kCell);
    tall.line_to(4 * kCell + 30, 3000 * kCell);
    const std::vector<agg::cell> cells = CheckedCells(tall);
    ASSERT_FALSE(cells.empty());
    EXPECT_EQ(cells.front().y, 0);
    EXPECT_EQ(cells.back().y, 2999);
}

TEST(Outline, NegativeColumnSortsBeforeColumnZero) {
    agg::outline o;
    Rect(o, -kCell + 50, 4 * kCell + 10, 100, 6 * kCell + 200);
    const std::vector<agg::cell> cells = SortedCells(o);
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
    o.line_to(90 * kCell, 90 * kCell);
    EXPECT_EQ(o.cells(), first);
    EXPECT_EQ(o.max_x(), 4);
    o.move_to(10 * kCell, 10 * kCell);  // starts a new polygon
    o.line_to(10 * kCell, 11 * kCell);
    ASSERT_NE(o.cells(), nullptr);
    EXPECT_EQ(o.cell_count(), 2u);
    EXPECT_EQ(o.min_y(), 10);
}

TEST(Outline, ResetDropsTheOpenContour) {
    agg::outline reused, fresh;
    reused.move_to(kCell / 2, 0);
    reused.line_to(40 * kCell, 17 * kCell);  // left open
    reused.reset();
    for (agg::outline* o : {&reused, &fresh})
        Rect(*o, 3 * kCell + 5, kCell, 9 * kCell + 200, 6 * kCell + 1);
    ExpectSameCells(reused, fresh);
    EXPECT_EQ(std::vector<int>({reused.min_x(), reused.min_y(), reused.max_x(), reused.max_y()}),
              std::vector<int>({fresh.min_x(), fresh.min_y(), fresh.max_x(), fresh.max_y()}));
}

TEST(Outline, ResetAndReleaseReuseTheBlocksBelowTheLimit) {
    // More polygons than the block limit, each needing two blocks: only a reuse of the blocks in
    // order (kept by reset, or allocated afresh after release) lets the last one store its cells.
    for (bool release : {false, true}) {
        agg::outline o;
        unsigned first = 0;
        for (int i = 0; i < 1100; ++i) {
            release ? o.release() : o.reset();
            o.move_to(kCell / 2, 0);
            o.line_to(kCell / 2 + 300, 2500 * kCell);
            o.line_to(kCell / 2 + 100, 2500 * kCell);
            ASSERT_NE(o.cells(), nullptr) << "polygon " << i << " release " << release;
            if (i == 0) first = o.cell_count();
            ASSERT_EQ(o.cell_count(), first) << "polygon " << i << " release " << release;
        }
        EXPECT_GT(first, static_cast<unsigned>(agg::outline::block_cells));
    }
}

TEST(Outline, BlockLimitDropsCellsForeverEvenAfterRelease) {
    for (bool release : {false, true}) {
        agg::outline o;
        FillAllBlocks(o);
        // The blocks were allocated once: a new polygon cannot begin its first block.
        release ? o.release() : o.reset();
        Rect(o, 0, 0, 5 * kCell + 3, 5 * kCell + 3);
        EXPECT_EQ(o.cells(), nullptr) << release;
        EXPECT_EQ(o.cell_count(), 0u) << release;
    }
}

TEST(Outline, ReleasedOrLentOutlineStoresTheCellsOfAnOwnOutline) {
    agg::outline kept, released;
    for (agg::outline* o : {&kept, &released}) {
        // A first polygon of two blocks, then a smaller one.
        o->move_to(0, -3000 * kCell);
        for (int i = 1; i <= 4; ++i)
            o->line_to(i * kCell + 77, (i % 2 == 1 ? 3000 : -3000) * kCell);
        ASSERT_NE(o->cells(), nullptr);
        if (o == &released) o->release();
        o->reset();
        Rect(*o, 3 * kCell + 5, kCell, 9 * kCell + 200, 6 * kCell + 1);
    }
    ExpectSameCells(kept, released);

    // One outline lent to two owners in turn, each bringing its own count of blocks: after the
    // first reached the limit the second still draws, and the first stays at its limit.
    agg::outline lent, alone;
    FillAllBlocks(lent);
    const unsigned full = lent.blocks_counted();
    lent.blocks_counted(0);
    lent.reset();
    for (agg::outline* o : {&lent, &alone})
        Rect(*o, 3 * kCell + 5, kCell, 9 * kCell + 200, 6 * kCell + 1);
    ExpectSameCells(lent, alone);
    lent.blocks_counted(full);
    lent.reset();
    Rect(lent, 0, 0, 5 * kCell + 3, 5 * kCell + 3);
    EXPECT_EQ(lent.cells(), nullptr);
}

}  // namespace
