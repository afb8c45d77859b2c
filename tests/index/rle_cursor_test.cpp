#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "index/RLEIndex.h"

namespace {
using Cell = std::pair<int, int>;
using LevelCell = std::tuple<int, int, int>;

std::vector<Cell> Drain(CRLECursor& cursor) {
    std::vector<Cell> out;
    int row = 0, col = 0;
    while (cursor.Next(&row, &col))
        out.emplace_back(row, col);
    return out;
}

std::vector<LevelCell> Drain(CRLEIndexCursor& cursor) {
    std::vector<LevelCell> out;
    int level = 0, row = 0, col = 0;
    while (cursor.Next(&level, &row, &col))
        out.emplace_back(level, row, col);
    return out;
}

// Rows 4..8: empty, [2,3], empty, [0,0] [5,5], empty.
CRLEIndexCreate* SparseLevel(int level) {
    auto* grid = new CRLEIndexCreate();
    grid->Level(level);
    grid->Add(4, 9);
    grid->Add(5, 2, 3);
    grid->Add(7, 0);
    grid->Add(7, 5);
    grid->Add(8, 1);
    grid->Erase(4, 9);
    grid->Erase(8, 1);
    return grid;
}
}  // namespace

TEST(RleCursor, WalksRowsThenColumnsSkippingEmptyRows) {
    std::unique_ptr<CRLEIndexCreate> grid(SparseLevel(0));
    CRLECursor cursor(grid.get());
    EXPECT_EQ(Drain(cursor), (std::vector<Cell>{{5, 2}, {5, 3}, {7, 0}, {7, 5}}));
    int row = 0, col = 0;
    EXPECT_FALSE(cursor.Next(&row, &col));
    cursor.Reset();
    EXPECT_EQ(Drain(cursor).size(), 4u);
}

TEST(RleCursor, DetachedOrEmptyGridsYieldNothing) {
    CRLECursor cursor;
    cursor.Reset();
    EXPECT_TRUE(Drain(cursor).empty());
    CRLEIndexCreate blank;
    blank.Add(2, 1, 3);
    blank.Add(6, 1, 3);
    blank.Erase(2, 0, 10);
    blank.Erase(6, 0, 10);
    cursor.Attach(&blank);
    EXPECT_TRUE(Drain(cursor).empty());
}

TEST(RleCursor, RepeatedTailRunsAreWalkedAgain) {
    CRLEIndexCreate grid;
    grid.Add(0, 0, 2);
    grid.Add(0, 4, 5);
    grid.Add(0, 7, 8);
    grid.Add(0, 10, 11);
    grid.Erase(0, 3, 9);
    CRLECursor cursor(&grid);
    EXPECT_EQ(Drain(cursor),
              (std::vector<Cell>{{0, 0}, {0, 1}, {0, 2}, {0, 10}, {0, 11}, {0, 10}, {0, 11}}));
}

TEST(RleCursor, RandomGridYieldsEveryCellInOrder) {
    const unsigned seed = std::random_device{}();
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> coord(-20, 20);
    CRLEIndexCreate grid;
    std::set<Cell> model;
    for (int i = 0; i < 600; ++i) {
        const Cell c(coord(gen), coord(gen));
        grid.Add(c.first, c.second);
        model.insert(c);
    }
    CRLECursor cursor(&grid);
    EXPECT_EQ(Drain(cursor), std::vector<Cell>(model.begin(), model.end())) << "seed " << seed;
}

TEST(RleIndexCursor, VisitsLevelsInAppendOrderSkippingEmptyOnes) {
    CRLEIndex index;
    auto* three = new CRLEIndexCreate();
    three->Level(3);
    three->Add(9, 1, 2);
    auto* empty = new CRLEIndexCreate();
    empty->Level(7);
    auto* one = new CRLEIndexCreate();
    one->Level(1);
    one->Add(-4, 7);
    index.Append(three);
    index.Append(empty);
    index.Append(one);
    index.Append(SparseLevel(1));
    CRLEIndexCursor cursor(&index);
    EXPECT_EQ(Drain(cursor),
              (std::vector<LevelCell>{
                  {3, 9, 1}, {3, 9, 2}, {1, -4, 7}, {1, 5, 2}, {1, 5, 3}, {1, 7, 0}, {1, 7, 5}}));
    int level = 0, row = 0, col = 0;
    EXPECT_FALSE(cursor.Next(&level, &row, &col));
    cursor.Reset();
    EXPECT_EQ(Drain(cursor).size(), 7u);
}

TEST(RleIndexCursor, IndexWithoutLevelsEndsAtOnce) {
    CRLEIndex index;
    CRLEIndexCursor cursor(&index);
    CRLEIndexCursor detached(nullptr);
    EXPECT_TRUE(Drain(cursor).empty());
    EXPECT_TRUE(Drain(detached).empty());
}
