#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "index/RLEIndex.h"

namespace {
using Runs = std::vector<std::pair<int, int>>;

Runs RowOf(const CRLEIndexQuery& grid, int row) {
    Runs out;
    if (const RLERowRuns* runs = grid.RowRuns(row)) {
        for (const RLE& r : *runs)
            out.emplace_back(r.start, r.end);
    }
    return out;
}

// Range's answer followed by its four outputs.
std::vector<int> RangeOf(const CRLEIndexQuery& grid) {
    int r0 = 0, c0 = 0, r1 = 0, c1 = 0;
    const bool stored = grid.Range(r0, c0, r1, c1);
    return {stored, r0, c0, r1, c1};
}
}  // namespace

TEST(RleGrid, EmptyGridGrowsBandBothWaysOnlyWhenAsked) {
    CRLEIndexQuery grid;
    EXPECT_EQ(grid.StartCol(), INT_MAX);
    EXPECT_EQ(grid.EndCol(), INT_MIN);
    EXPECT_EQ(grid.EndRow(), -1);
    EXPECT_EQ(grid.Count(), 0);
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{0, 99999, 99999, -99999, -99999}));
    EXPECT_FALSE(grid.Add(1, 1));  // a query grid accepts no cells
    EXPECT_EQ(grid.Row(10, false), grid.EmptyRow());
    EXPECT_TRUE(grid.IsEmpty());
    grid.Row(5, true);
    grid.Row(8, true);
    EXPECT_EQ(grid.RowCount(), 4);
    const auto first = grid.Row(2, true);
    EXPECT_EQ(grid.StartRow(), 2);
    EXPECT_EQ(grid.EndRow(), 8);
    EXPECT_EQ(grid.Row(2, false), first);
    EXPECT_EQ(grid.Row(9, false), grid.EmptyRow());
    EXPECT_EQ(grid.Row(1, false), grid.EmptyRow());
    EXPECT_EQ(grid.RowCount(), 7);
    for (int outside : {INT_MIN, 1, 9, INT_MAX})
        EXPECT_EQ(grid.RowRuns(outside), nullptr) << outside;
    EXPECT_NE(grid.RowRuns(8), nullptr);
    // A grid of empty rows is stored: Range succeeds but keeps the column sentinels.
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{1, 2, 99999, 9, -99999}));
}

TEST(RleGrid, ExtentsOfSparseGrid) {
    CRLEIndexCreate grid;
    EXPECT_TRUE(grid.Add(2, 3, 4));
    grid.Add(5, 9, 1);
    EXPECT_EQ(grid.StartCol(), 1);
    EXPECT_EQ(grid.EndCol(), 9);
    EXPECT_EQ(grid.Count(), 11);
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{1, 2, 1, 6, 9}));
    CRLEIndexCreate far;
    far.Add(-7, 200000, 100000);
    far.Add(-3, -150000);
    EXPECT_EQ(RangeOf(far), (std::vector<int>{1, -7, -150000, -2, 200000}));
    far.Add(-2, 0, INT_MAX);
    EXPECT_EQ(far.Count(), static_cast<int>(0x80000000u + 100001u + 1u));  // wraps
    grid.Add(0, 0, 2);
    grid.Add(0, 10, 12);
    EXPECT_TRUE(grid.Add(0, 5, 25));  // the row itself reports false here
    EXPECT_EQ(grid.StartRow(), 0);
}

TEST(RleGrid, IsExistAnswersOnlyForOwnLevel) {
    CRLEIndexCreate grid;
    grid.Level(3);
    grid.Add(1, 0, 5);
    EXPECT_TRUE(grid.IsExist(1, 2));
    EXPECT_TRUE(grid.IsExist(3, 1, 2));
    EXPECT_FALSE(grid.IsExist(7, 1, 2));
    EXPECT_FALSE(grid.IsExist(0, 2));
}

TEST(RleGrid, EraseNeverGrowsNorShrinksBand) {
    CRLEIndexCreate grid;
    grid.Add(0, 1);
    grid.Add(3, 7, 9);
    EXPECT_FALSE(grid.Erase(4, 1));
    EXPECT_FALSE(grid.Erase(-1, 0, 5));
    EXPECT_TRUE(grid.Erase(3, 8));
    EXPECT_EQ(RowOf(grid, 3), (Runs{{7, 7}, {9, 9}}));
    EXPECT_TRUE(grid.Erase(3, 0, 100));
    ASSERT_NE(grid.RowRuns(3), nullptr);
    EXPECT_TRUE(grid.RowRuns(3)->empty());
    EXPECT_EQ(grid.RowCount(), 4);
}

TEST(RleGrid, OffsetMovesRowsAndColumns) {
    CRLEIndexCreate grid;
    grid.Add(3, 4, 6);
    grid.Add(4, -2);
    grid.Offset(-1, 10);
    EXPECT_EQ(grid.StartRow(), 2);
    EXPECT_EQ(RowOf(grid, 2), (Runs{{14, 16}}));
    EXPECT_EQ(RowOf(grid, 3), (Runs{{8, 8}}));
}

TEST(RleGrid, ClearKeepsLevelAndStartRowUntilNextRow) {
    CRLEIndexCreate grid;
    grid.Level(4);
    grid.Add(6, 1, 2);
    grid.Clear();
    EXPECT_TRUE(grid.IsEmpty());
    EXPECT_EQ(grid.Level(), 4);
    EXPECT_EQ(grid.StartRow(), 6);
    grid.Add(-2, 5);
    EXPECT_EQ(grid.StartRow(), -2);
    EXPECT_EQ(grid.Count(), 1);
}

TEST(RleGrid, RandomCellsMatchSetOfCells) {
    const unsigned seed = 19;
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> coord(-12, 12);
    std::bernoulli_distribution add(0.7);
    CRLEIndexCreate grid;
    std::set<std::pair<int, int>> model;
    for (int step = 0; step < 4000; ++step) {
        const std::pair<int, int> c(coord(gen), coord(gen));
        if (add(gen)) {
            grid.Add(c.first, c.second);
            model.insert(c);
        } else {
            grid.Erase(c.first, c.second);
            model.erase(c);
        }
    }
    int minCol = INT_MAX, maxCol = INT_MIN;
    for (const auto& c : model) {
        minCol = std::min(minCol, c.second);
        maxCol = std::max(maxCol, c.second);
    }
    ASSERT_EQ(grid.Count(), static_cast<int>(model.size())) << "seed " << seed;
    EXPECT_EQ(grid.StartCol(), minCol) << "seed " << seed;
    EXPECT_EQ(grid.EndCol(), maxCol) << "seed " << seed;
    for (int row = -13; row <= 13; ++row) {
        for (int col = -13; col <= 13; ++col) {
            ASSERT_EQ(grid.IsExist(row, col), model.count({row, col}) == 1)
                << "seed " << seed << " cell " << row << "," << col;
        }
    }
}
