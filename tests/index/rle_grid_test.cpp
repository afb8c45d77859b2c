// Grid levels, their cursors and the multi-level index.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "index/RLEIndex.h"

namespace {
using Runs = std::vector<std::pair<int, int>>;
using Cells = std::vector<std::vector<int>>;

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

Cells Drain(CRLECursor& cursor) {
    Cells out;
    for (int row = 0, col = 0; cursor.Next(&row, &col);)
        out.push_back({row, col});
    return out;
}

Cells Drain(CRLEIndexCursor& cursor) {
    Cells out;
    for (int level = 0, row = 0, col = 0; cursor.Next(&level, &row, &col);)
        out.push_back({level, row, col});
    return out;
}

CRLEIndexCreate* NewLevel(int level, const Cells& spans) {
    auto* grid = new CRLEIndexCreate();
    grid->Level(level);
    for (const auto& s : spans)
        grid->Add(s[0], s[1], s[2]);
    return grid;
}

// Counts its own destruction, so that ownership can be observed.
class CountedLevel : public CRLEIndexCreate {
public:
    explicit CountedLevel(int* destroyed) : m_destroyed(destroyed) {}
    ~CountedLevel() override { ++*m_destroyed; }

private:
    int* m_destroyed;
};
}  // namespace

TEST(RleGrid, EmptyGridGrowsBandBothWaysOnlyWhenAsked) {
    CRLEIndexQuery grid;
    EXPECT_EQ((std::vector<int>{grid.StartCol(), grid.EndCol(), grid.EndRow(), grid.Count()}),
              (std::vector<int>{INT_MAX, INT_MIN, -1, 0}));
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{0, 99999, 99999, -99999, -99999}));
    EXPECT_FALSE(grid.Add(1, 1));  // a query grid accepts no cells
    EXPECT_EQ(grid.Row(10, false), grid.EmptyRow());
    EXPECT_TRUE(grid.IsEmpty());
    grid.Row(5, true);
    grid.Row(8, true);
    EXPECT_EQ(grid.RowCount(), 4);
    const auto first = grid.Row(2, true);
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

TEST(RleGrid, SpansExtentsLevelEraseOffsetAndClear) {
    CRLEIndexCreate grid;
    grid.Level(3);
    EXPECT_TRUE(grid.Add(2, 3, 4));
    grid.Add(5, 9, 1);
    EXPECT_EQ(grid.Count(), 11);
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{1, 2, 1, 6, 9}));
    EXPECT_TRUE(grid.IsExist(3, 5, 2));
    EXPECT_FALSE(grid.IsExist(7, 5, 2));  // another level's number
    EXPECT_FALSE(grid.IsExist(2, 2));
    // Erasing never grows nor shrinks the band.
    EXPECT_FALSE(grid.Erase(6, 1));
    EXPECT_FALSE(grid.Erase(1, 0, 5));
    EXPECT_TRUE(grid.Erase(5, 5));
    EXPECT_EQ(RowOf(grid, 5), (Runs{{1, 4}, {6, 9}}));
    EXPECT_TRUE(grid.Erase(5, 0, 100));
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{1, 2, 3, 6, 4}));
    grid.Add(0, 0, 2);
    grid.Add(0, 10, 12);
    EXPECT_TRUE(grid.Add(0, 5, 25));  // the row itself reports false here
    grid.Offset(-1, 10);
    EXPECT_EQ(grid.StartRow(), -1);
    EXPECT_EQ(RowOf(grid, 1), (Runs{{13, 14}}));
    EXPECT_EQ(grid.RowCount(), 6);
    grid.Clear();  // keeps the level and the start row until the next row
    EXPECT_TRUE(grid.IsEmpty());
    EXPECT_EQ(grid.Level(), 3);
    EXPECT_EQ(grid.StartRow(), -1);
    grid.Add(-4, 5);
    EXPECT_EQ(grid.StartRow(), -4);
    EXPECT_EQ(grid.Count(), 1);
    CRLEIndexCreate far;
    far.Add(-7, 200000, 100000);
    far.Add(-3, -150000);
    EXPECT_EQ(RangeOf(far), (std::vector<int>{1, -7, -150000, -2, 200000}));
    far.Add(-2, 0, INT_MAX);
    EXPECT_EQ(far.Count(), static_cast<int>(0x80000000u + 100001u + 1u));  // wraps
}

TEST(RleGrid, RandomCellsMatchSetOfCellsAndCursorYieldsThemInOrder) {
    const unsigned seed = 19;
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> coord(-12, 12);
    std::bernoulli_distribution add(0.7);
    CRLEIndexCreate grid;
    std::set<std::vector<int>> model;
    for (int step = 0; step < 4000; ++step) {
        const int row = coord(gen), col = coord(gen);
        if (add(gen)) {
            grid.Add(row, col);
            model.insert({row, col});
        } else {
            grid.Erase(row, col);
            model.erase({row, col});
        }
    }
    int minCol = INT_MAX, maxCol = INT_MIN;
    for (const auto& c : model) {
        minCol = std::min(minCol, c[1]);
        maxCol = std::max(maxCol, c[1]);
    }
    SCOPED_TRACE("seed " + std::to_string(seed));
    ASSERT_EQ(grid.Count(), static_cast<int>(model.size()));
    EXPECT_EQ(grid.StartCol(), minCol);
    EXPECT_EQ(grid.EndCol(), maxCol);
    for (int row = -13; row <= 13; ++row) {
        for (int col = -13; col <= 13; ++col)
            ASSERT_EQ(grid.IsExist(row, col), model.count({row, col}) == 1) << row << "," << col;
    }
    // A copied grid holds exactly its rows, so the sanitized build sees any read past them.
    CRLEIndexQuery exact(grid);
    CRLECursor cursor(&exact);
    EXPECT_EQ(Drain(cursor), Cells(model.begin(), model.end()));
    int row = 0, col = 0;
    EXPECT_FALSE(cursor.Next(&row, &col));
}

TEST(RleCursor, WalksRowsThenColumnsSkippingEmptyRowsAndRepeatingTails) {
    CRLEIndexCreate grid;
    grid.Add(4, 9);
    grid.Add(5, 2, 3);
    for (int col : {0, 2, 4, 5, 7, 8, 10, 11})
        grid.Add(9, col);
    grid.Add(11, 1);
    grid.Erase(4, 9);
    grid.Erase(11, 1);
    grid.Erase(9, 3, 9);  // leaves a repeated tail run, which is walked again
    CRLECursor cursor;
    EXPECT_TRUE(Drain(cursor).empty());  // detached
    cursor.Attach(&grid);
    const Cells cells = {{5, 2}, {5, 3}, {9, 0}, {9, 2}, {9, 10}, {9, 11}, {9, 10}, {9, 11}};
    EXPECT_EQ(Drain(cursor), cells);
    cursor.Reset();
    EXPECT_EQ(Drain(cursor), cells);
}

TEST(RleIndex, LevelsAppendedOwnedQueriedWalkedAndCleared) {
    int destroyed = 0;
    {
        CRLEIndex index;
        CRLEIndexCreate* first = NewLevel(5, {{0, 0, 2}});
        CRLEIndexCreate* second = NewLevel(2, {{0, 10, 12}, {-4, 7, 7}});
        index.Append(first);
        index.Append(second);
        index.Append(NewLevel(7, {}));
        index.Append(NewLevel(5, {{1, 4, 4}}));
        index.Append(nullptr);  // ignored
        EXPECT_EQ((std::vector<int>{index.MinLevel(), index.MaxLevel(), index.LevelCount()}),
                  (std::vector<int>{2, 7, 4}));
        EXPECT_EQ(index.LevelIndex(5), first);
        EXPECT_EQ(index.LevelIndex(2), second);
        EXPECT_EQ(index.LevelIndex(3), nullptr);
        // Any level of the asked number may hold the cell; other numbers never answer.
        EXPECT_TRUE(index.IsExist(5, 1, 4));
        EXPECT_TRUE(index.IsExist(2, 0, 11));
        EXPECT_FALSE(index.IsExist(2, 0, 1));
        EXPECT_FALSE(index.IsExist(3, 0, 1));
        EXPECT_EQ(index.Count(), 8);
        // Level by level in append order, empty levels skipped.
        CRLEIndexCursor cursor(&index);
        const Cells cells = {{5, 0, 0},  {5, 0, 1},  {5, 0, 2},  {2, -4, 7},
                             {2, 0, 10}, {2, 0, 11}, {2, 0, 12}, {5, 1, 4}};
        EXPECT_EQ(Drain(cursor), cells);
        cursor.Reset();
        EXPECT_EQ(Drain(cursor), cells);
        const std::vector<unsigned char> data = {9, 8, 7, 6};
        index.Metadata(data.data(), 4);
        index.Clear();
        EXPECT_EQ((std::vector<int>{index.MinLevel(), index.MaxLevel(), index.Count()}),
                  (std::vector<int>{999, -999, 0}));
        EXPECT_EQ(index.LevelIndex(5), nullptr);
        EXPECT_FALSE(index.IsExist(5, 0, 0));
        EXPECT_EQ(Drain(cursor = CRLEIndexCursor(&index)), Cells{});
        // The metadata survives Clear and is copied only into a large enough buffer.
        std::vector<unsigned char> out(4, 0);
        EXPECT_EQ(index.MetaData(out.data(), 3), 4);
        EXPECT_EQ(out, std::vector<unsigned char>(4, 0));
        EXPECT_EQ(index.MetaData(out.data(), 4), 4);
        EXPECT_EQ(out, data);
        index.Metadata(data.data(), -5);
        EXPECT_EQ(index.MetaData(nullptr, 0), 0);
        index.Append(new CountedLevel(&destroyed));
        index.Append(new CountedLevel(&destroyed));
        index.Clear();
        EXPECT_EQ(destroyed, 2);
        index.Append(new CountedLevel(&destroyed));
    }
    EXPECT_EQ(destroyed, 3);
    CRLEIndexCursor detached(nullptr);
    EXPECT_TRUE(Drain(detached).empty());
}
