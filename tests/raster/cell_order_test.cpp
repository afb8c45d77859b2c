// The order in which an outline hands out its cells: by packed key, each stored cell once, for
// polygons of the 16-bit range (sorted row by row) and for wider ones (sorted as one array).
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "raster/agg.h"

namespace {

constexpr int kCell = agg::subpixel_scale;

using CellTuple = std::tuple<int, int, int, int>;  // x, y, cover, area

// n random subpixel vertices inside the given box of cells.
std::vector<std::pair<int, int>> RandomVertices(std::mt19937& rng, int x0, int y0, int x1, int y1,
                                                int n) {
    std::uniform_int_distribution<int> x(x0 * kCell, x1 * kCell), y(y0 * kCell, y1 * kCell);
    std::vector<std::pair<int, int>> v;
    for (int i = 0; i < n; ++i) {
        const int vx = x(rng);
        v.emplace_back(vx, y(rng));
    }
    return v;
}

// The closed polygon through the vertices, moved by (dx, dy) cells.
void Draw(agg::outline& o, const std::vector<std::pair<int, int>>& v, int dx = 0, int dy = 0) {
    o.reset();
    o.move_to(v[0].first + dx * kCell, v[0].second + dy * kCell);
    for (size_t i = 1; i < v.size(); ++i)
        o.line_to(v[i].first + dx * kCell, v[i].second + dy * kCell);
}

// The cells in the order handed out; fails the test when the order or the count is wrong.
std::vector<const agg::cell*> CheckedCells(agg::outline& o, uint32_t seed) {
    std::vector<const agg::cell*> cells;
    for (const agg::cell* const* list = o.cells(); list != nullptr && *list != nullptr; ++list)
        cells.push_back(*list);
    EXPECT_EQ(cells.size(), o.cell_count()) << "seed " << seed;
    for (size_t i = 1; i < cells.size(); ++i) {
        EXPECT_LE(cells[i - 1]->packed, cells[i]->packed) << "seed " << seed << ", cell " << i;
    }
    EXPECT_EQ(std::set<const agg::cell*>(cells.begin(), cells.end()).size(), cells.size())
        << "seed " << seed << ": a cell handed out twice";
    return cells;
}

std::multiset<CellTuple> Shifted(const std::vector<const agg::cell*>& cells, int dx, int dy) {
    std::multiset<CellTuple> out;
    for (const agg::cell* c : cells)
        out.insert({c->x + dx, c->y + dy, c->cover, c->area});
    return out;
}

}  // namespace

TEST(CellOrder, SmallPolygonsComeSortedAndWhole) {
    for (uint32_t seed = 1; seed <= 200; ++seed) {
        std::mt19937 rng(seed);
        agg::outline o;
        Draw(o, RandomVertices(rng, -40, -40, 60, 30, 3 + static_cast<int>(seed % 9)));
        const auto cells = CheckedCells(o, seed);
        // A closed polygon's covers cancel: every edge that enters a row leaves it.
        long long cover = 0;
        for (const agg::cell* c : cells)
            cover += c->cover;
        EXPECT_EQ(cover, 0) << "seed " << seed;
    }
}

TEST(CellOrder, ShiftedPolygonKeepsItsCells) {
    // Buckets start at the smallest key: the same shape elsewhere must give the same cells.
    for (uint32_t seed = 1; seed <= 100; ++seed) {
        std::mt19937 rng(seed);
        const auto vertices = RandomVertices(rng, 0, 0, 50, 40, 6);
        const int dx = 1000 + static_cast<int>(seed), dy = -2000 - static_cast<int>(seed) * 3;
        agg::outline a, b;
        Draw(a, vertices);
        Draw(b, vertices, dx, dy);
        const auto cellsA = CheckedCells(a, seed);
        const auto cellsB = CheckedCells(b, seed);
        EXPECT_EQ(Shifted(cellsA, dx, dy), Shifted(cellsB, 0, 0)) << "seed " << seed;
    }
}

TEST(CellOrder, PolygonsBeyondSixteenBitsComeSorted) {
    // Cells beyond 32,767 store truncated coordinates; columns there give keys that differ
    // from those of the stored coordinates. Either way the outline sorts by key.
    for (uint32_t seed = 1; seed <= 50; ++seed) {
        std::mt19937 rng(seed);
        agg::outline rows, columns;
        Draw(rows, RandomVertices(rng, 100, 32700, 160, 32800, 5));
        CheckedCells(rows, seed);
        Draw(columns, RandomVertices(rng, 32700, 100, 32800, 160, 5));
        CheckedCells(columns, seed);
    }
}

TEST(CellOrder, TallThinPolygonWithFewCellsPerRow) {
    // Many rows with one or two cells each: more buckets than a row-less sort would need.
    agg::outline o;
    o.move_to(5 * kCell + 10, 0);
    o.line_to(5 * kCell + 200, 3000 * kCell);
    o.line_to(4 * kCell + 30, 3000 * kCell);
    const auto cells = CheckedCells(o, 0);
    ASSERT_FALSE(cells.empty());
    EXPECT_EQ(cells.front()->y, 0);
    EXPECT_EQ(cells.back()->y, 2999);
}
