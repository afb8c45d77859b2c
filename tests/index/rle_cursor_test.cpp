#include <gtest/gtest.h>

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

CRLEIndexCreate* NewLevel(int level, std::initializer_list<std::tuple<int, int, int>> spans) {
    auto* grid = new CRLEIndexCreate();
    grid->Level(level);
    for (const auto& s : spans)
        grid->Add(std::get<0>(s), std::get<1>(s), std::get<2>(s));
    return grid;
}
}  // namespace

TEST(RleCursor, WalksRowsThenColumnsSkippingEmptyRowsAndRepeatedTails) {
    CRLEIndexCreate grid;
    grid.Add(4, 9);
    grid.Add(5, 2, 3);
    grid.Add(7, 0);
    grid.Add(7, 5);
    grid.Add(8, 1);
    grid.Erase(4, 9);
    grid.Erase(8, 1);
    CRLECursor cursor(&grid);
    const std::vector<Cell> cells = {{5, 2}, {5, 3}, {7, 0}, {7, 5}};
    EXPECT_EQ(Drain(cursor), cells);
    cursor.Reset();
    EXPECT_EQ(Drain(cursor), cells);
    // A span erase leaves a repeated tail run, which is walked again.
    grid.Add(9, 0, 2);
    grid.Add(9, 4, 5);
    grid.Add(9, 7, 8);
    grid.Add(9, 10, 11);
    grid.Erase(9, 3, 9);
    grid.Erase(5, 0, 9);
    grid.Erase(7, 0, 9);
    cursor.Attach(&grid);
    EXPECT_EQ(Drain(cursor),
              (std::vector<Cell>{{9, 0}, {9, 1}, {9, 2}, {9, 10}, {9, 11}, {9, 10}, {9, 11}}));
    CRLECursor detached;
    detached.Reset();
    EXPECT_TRUE(Drain(detached).empty());
}

TEST(RleCursor, RandomGridYieldsEveryCellInOrder) {
    const unsigned seed = 17;
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> coord(-20, 20);
    CRLEIndexCreate grid;
    std::set<Cell> model;
    for (int i = 0; i < 600; ++i) {
        const Cell c(coord(gen), coord(gen));
        grid.Add(c.first, c.second);
        model.insert(c);
    }
    // A copied grid holds exactly its rows, so the sanitized build sees any read past them.
    CRLEIndexQuery exact(grid);
    CRLECursor cursor(&exact);
    EXPECT_EQ(Drain(cursor), std::vector<Cell>(model.begin(), model.end())) << "seed " << seed;
    int row = 0, col = 0;
    EXPECT_FALSE(cursor.Next(&row, &col));
}

TEST(RleIndexCursor, VisitsLevelsInAppendOrderSkippingEmptyOnes) {
    CRLEIndex index;
    index.Append(NewLevel(3, {{9, 1, 2}}));
    index.Append(NewLevel(7, {}));
    index.Append(NewLevel(1, {{-4, 7, 7}, {5, 2, 3}}));
    CRLEIndexCursor cursor(&index);
    const std::vector<LevelCell> cells = {{3, 9, 1}, {3, 9, 2}, {1, -4, 7}, {1, 5, 2}, {1, 5, 3}};
    EXPECT_EQ(Drain(cursor), cells);
    cursor.Reset();
    EXPECT_EQ(Drain(cursor), cells);
    CRLEIndex none;
    CRLEIndexCursor empty(&none);
    CRLEIndexCursor detached(nullptr);
    EXPECT_TRUE(Drain(empty).empty());
    EXPECT_TRUE(Drain(detached).empty());
}
