// Runs, rows and their edits (the merge and erase rules by example, random edits against a set
// of cells, the row's run vector against std::vector), grid levels, cursors and the index.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "index/RLEIndex.h"

namespace {
using Runs = std::vector<std::pair<int, int>>;

template <class Row>
Runs RunsOf(const Row& row) {
    Runs out;
    for (const RLE& r : row)
        out.emplace_back(r.start, r.end);
    return out;
}

struct RowCase {
    RLERowRuns before;
    bool add;
    int a, b;
    Runs after;
};

const RLERowRuns kFour = {{0, 2}, {10, 12}, {20, 22}, {30, 32}};
const RLERowRuns kFive = {{0, 2}, {10, 12}, {20, 22}, {30, 32}, {40, 42}};

// Each row is edited in a vector of rows of its own, as a grid level holds it.
const RowCase kRowCases[] = {
    // A span widens the run it starts in; abutting runs stay apart.
    {{{0, 2}, {4, 6}}, true, 1, 3, {{0, 3}, {4, 6}}},
    {{{0, 2}, {4, 6}}, true, 7, 3, {{0, 2}, {3, 7}}},
    {{{0, 5}, {10, 12}}, true, 6, 8, {{0, 8}, {10, 12}}},
    // A span ending next to the first run, or starting next to the last, joins it.
    {{{10, 12}, {20, 22}}, true, 5, 9, {{5, 12}, {20, 22}}},
    {{{10, 12}, {20, 22}}, true, 30, 23, {{10, 12}, {20, 30}}},
    {{{0, 2}, {10, 12}}, true, 5, 9, {{0, 2}, {5, 12}}},  // the last run too
    // From a gap past the next run, cells between are lost; the reached run keeps its bounds.
    {kFour, true, 25, 5, {{0, 2}, {10, 12}, {30, 32}}},
    // The low run is widened, never the high one.
    {{{0, 2}, {10, 12}, {30, 32}}, true, 5, 11, {{0, 2}, {5, 12}, {30, 32}}},
    {kFive, true, 11, 31, {{0, 2}, {10, 32}, {40, 42}}},
    {kFive, true, 11, 35, {{0, 2}, {10, 35}, {40, 42}}},
    // In a gap or beyond the edges a span is inserted.
    {kFour, true, 5, 7, {{0, 2}, {5, 7}, {10, 12}, {20, 22}, {30, 32}}},
    {{{10, 12}}, true, 0, 5, {{0, 5}, {10, 12}}},
    {{{10, 12}}, true, 30, 40, {{10, 12}, {30, 40}}},
    {kFour, true, -1, 50, {{-1, 50}}},
    // Cells at the integer limits are erased without overflow (a span of one cell is a cell).
    {{{INT_MAX - 1, INT_MAX}}, false, INT_MAX, INT_MAX, {{INT_MAX - 1, INT_MAX - 1}}},
    {{{INT_MAX, INT_MAX}}, false, INT_MAX, INT_MAX, {}},
    {{{INT_MIN, INT_MIN}}, false, INT_MIN, INT_MIN, {}},
    {{{0, 10}}, false, 11, 11, {{0, 10}}},  // a cell next to a run: nothing to free, still true
    // A span erase cuts at both ends, compacts away the runs ending inside, then drops exactly
    // one run past the kept ones: k matched runs leave k - 1 copies of the tail.
    {{{0, 2}, {8, 10}}, false, 4, 6, {{0, 2}}},
    {{{10, 12}, {20, 22}}, false, 1, 5, {{10, 12}, {20, 22}}},    // before or after every run:
    {{{10, 12}, {20, 22}}, false, 30, 25, {{10, 12}, {20, 22}}},  // nothing is dropped
    {{{0, 2}, {4, 5}, {7, 8}, {10, 12}}, false, 3, 9, {{0, 2}, {10, 12}, {10, 12}}},
    {{{0, 10}, {20, 30}}, false, 25, 5, {{0, 4}, {26, 30}, {26, 30}}},
    {{{0, 2}, {4, 5}, {90, 100}}, false, 0, 100, {}},
};
using Cells = std::vector<std::vector<int>>;

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
struct CountedLevel : CRLEIndexCreate {
    explicit CountedLevel(int* count) : destroyed(count) {}
    ~CountedLevel() override { ++*destroyed; }
    int* destroyed;
};
}  // namespace

TEST(RleRow, EditsFollowTheMergeAndEraseRules) {
    for (const RowCase& c : kRowCases) {
        SCOPED_TRACE("case " + std::to_string(&c - kRowCases));
        RLERows rows = {c.before};
        CRLERow row(rows.begin(), rows.end());
        EXPECT_TRUE(c.add ? row.Add(c.a, c.b) : row.Erase(c.a, c.b));
        EXPECT_EQ(RunsOf(rows[0]), c.after);
    }
}

TEST(RleRun, LengthPackingAndComparisonsStayExactAtIntegerLimits) {
    const RLE packed(static_cast<long long>((7ULL << 32) | 2ULL));
    RLE low(INT_MIN, 0);
    low.Union(INT_MAX);
    EXPECT_EQ((std::vector<int>{RLE(5, 3).Length(), RLE(INT_MIN, INT_MAX).Length(), RLE().start,
                                RLE().end, packed.start, packed.end, low.end,
                                RLE(INT_MAX, INT_MAX).Compare(INT_MIN),
                                RLE(INT_MIN, INT_MIN).Compare(INT_MAX)}),
              (std::vector<int>{-1, 0, 0, 0, 2, 7, 0, INT_MIN, INT_MAX}));
    // Validity, contact at the limits, and a run compared with a run, which is judged by that
    // run's end cells only.
    RLERowRuns v = kFour;
    EXPECT_EQ(
        (std::vector<bool>{RLE().IsValid(), RLE(5, 3).IsValid(), RLE(5, 6).IsValid(),
                           RLE(INT_MIN, INT_MIN).IsConnect(INT_MAX),
                           RLE(INT_MIN, 0).IsConnect(RLE(5, INT_MAX)), RLE(3, 6) == RLE(0, 10),
                           CFindRLE(RLE(3, 9))(RLE(0, 20)), RLE(5, 6) < 7, RLE(5, 6) < 6,
                           RLE(5, 6) > 4, RLE(5, 6) > 5, RLE(5, 6) < RLE(7, 9),
                           RLE(5, 6) > RLE(1, 4), CRLERow::Insert(v.begin(), v.end() - 1, 11),
                           CRLERow::Insert(v.begin(), v.end() - 1, 15)}),
        (std::vector<bool>{true, false, true, false, false, false, false, true, false, true, false,
                           true, true, false, false}));
}

// The row's run vector keeps one run inside itself and moves to a block beyond that: random
// edits against std::vector, across that boundary and back, with copies, moves and swaps.
TEST(RleRowRuns, RandomEditsMatchStdVector) {
    std::mt19937 rng(3);
    const auto uniform = [&](int lo, int hi) {
        return std::uniform_int_distribution<int>(lo, hi)(rng);
    };
    RLERowRuns runs, other;
    std::vector<RLE> model, otherModel;
    for (int step = 0; step < 20000; ++step) {
        const RLE run(uniform(-50, 50), uniform(-50, 50));
        const int n = static_cast<int>(model.size());
        const int i = uniform(0, n), j = uniform(0, n), last = std::max(0, std::min(i, n - 1));
        const auto both = [&](auto edit) {
            edit(runs);
            edit(model);
        };
        const int op = uniform(0, 9);
        if (op <= 1) both([&](auto& v) { v.insert(v.begin() + i, run); });
        // An element of the vector itself, inserted into it.
        if (op == 2 && n > 0) both([&](auto& v) { v.insert(v.begin() + i, v[last]); });
        if (op == 3 || op == 4)
            both([&](auto& v) { v.erase(v.begin() + std::min(i, j), v.begin() + std::max(i, j)); });
        if (op == 5) both([&](auto& v) { v.push_back(run); });
        if (op == 6) both([&](auto& v) { i == 0 ? v.clear() : v.assign(1, run); });
        if (op == 7) runs.swap(other), model.swap(otherModel);
        if (op == 8) {  // exchanged through a copy and a move
            RLERowRuns copy(runs);
            RLERowRuns moved(std::move(other));
            other = copy;
            runs = std::move(moved);
            std::swap(model, otherModel);
        }
        if (op == 9 && n > 0) both([&](auto& v) { v.erase(v.begin() + last); });
        ASSERT_EQ(RunsOf(runs), RunsOf(model)) << "step " << step;
        ASSERT_EQ(RunsOf(other), RunsOf(otherModel)) << "step " << step;
        ASSERT_GE(runs.capacity(), runs.size());
    }
    EXPECT_THROW(runs.reserve(SIZE_MAX), std::length_error);
    EXPECT_EQ(RunsOf(RLERowRuns{RLE(1, 2), RLE(5, 6)}), (Runs{{1, 2}, {5, 6}}));
}

TEST(RleGrid, EmptyGridGrowsBandBothWaysOnlyWhenAsked) {
    CRLEIndexQuery grid;
    EXPECT_EQ((std::vector<int>{grid.StartCol(), grid.EndCol(), grid.EndRow(), grid.Count()}),
              (std::vector<int>{INT_MAX, INT_MIN, -1, 0}));
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{0, 99999, 99999, -99999, -99999}));
    EXPECT_FALSE(grid.Add(1, 1));  // a query grid accepts no cells
    EXPECT_EQ(grid.Row(10, false), grid.EmptyRow());
    grid.Row(5, true);
    grid.Row(8, true);
    const auto first = grid.Row(2, true);
    EXPECT_EQ(grid.Row(2, false), first);
    EXPECT_EQ(grid.Row(9, false), grid.EmptyRow());
    EXPECT_EQ(grid.RowCount(), 7);
    for (int outside : {INT_MIN, 1, 9, INT_MAX})
        EXPECT_EQ(grid.RowRuns(outside), nullptr) << outside;
    // A grid of empty rows is stored: Range succeeds but keeps the column sentinels.
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{1, 2, 99999, 9, -99999}));
}

// Erasing never grows nor shrinks the band; an offset moves every run; Clear keeps the level and
// the start row until the next row.
TEST(RleGrid, EraseOffsetAndClear) {
    CRLEIndexCreate grid;
    grid.Level(3);
    grid.Add(2, 3, 4);
    grid.Add(5, 9, 1);
    EXPECT_FALSE(grid.Erase(6, 1));
    EXPECT_TRUE(grid.Erase(5, 0, 100));
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{1, 2, 3, 6, 4}));
    grid.Offset(-1, 10);
    EXPECT_EQ(RangeOf(grid), (std::vector<int>{1, 1, 13, 5, 14}));
    grid.Clear();
    EXPECT_EQ((std::vector<int>{grid.IsEmpty(), grid.Level(), grid.StartRow()}),
              (std::vector<int>{1, 3, 1}));
}

TEST(RleGrid, RandomCellsMatchSetOfCellsAndCursorYieldsThemInOrder) {
    std::mt19937 gen(19);
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
    const auto [lo, hi] = std::minmax_element(model.begin(), model.end(),
                                              [](auto& a, auto& b) { return a[1] < b[1]; });
    EXPECT_EQ((std::vector<int>{grid.Count(), grid.StartCol(), grid.EndCol()}),
              (std::vector<int>{static_cast<int>(model.size()), (*lo)[1], (*hi)[1]}));
    for (int row = -13; row <= 13; ++row) {
        for (int col = -13; col <= 13; ++col)
            ASSERT_EQ(grid.IsExist(row, col), model.count({row, col}) == 1) << row << "," << col;
    }
    // A copied grid holds exactly its rows, so the sanitized build sees any read past them.
    CRLEIndexQuery exact(grid);
    CRLECursor cursor(&exact), detached;
    EXPECT_EQ(Drain(cursor), Cells(model.begin(), model.end()));
    detached.Reset();
    EXPECT_TRUE(Drain(detached).empty());
}

TEST(RleIndex, LevelsAppendedOwnedQueriedWalkedAndCleared) {
    int destroyed = 0;
    {
        CRLEIndex index;
        index.Append(NewLevel(5, {{0, 0, 2}}));
        index.Append(NewLevel(2, {{0, 10, 12}, {-4, 7, 7}}));
        index.Append(NewLevel(-1, {{3, 5, 5}}));  // the lowest level, of negative number
        index.Append(NewLevel(3, {}));
        // The last row holds two runs in a block of two: the sanitized build sees a read past it.
        index.Append(NewLevel(5, {{1, 4, 4}, {1, 6, 6}}));
        index.Append(nullptr);  // ignored
        // Any level of the asked number may hold the cell; other numbers never answer.
        EXPECT_EQ((std::vector<int>{index.MinLevel(), index.MaxLevel(), index.LevelCount(),
                                    index.Count(), index.IsExist(5, 1, 4), index.IsExist(2, 0, 1),
                                    index.IsExist(-1, 3, 5)}),
                  (std::vector<int>{-1, 5, 5, 10, 1, 0, 1}));
        EXPECT_EQ(
            (std::vector<CRLEIndexQuery*>{index.LevelIndex(5), index.LevelIndex(4),
                                          index.LevelIndex(-1), index.LevelIndex(-2)}),
            (std::vector<CRLEIndexQuery*>{index.LevelAt(0), nullptr, index.LevelAt(2), nullptr}));
        // Level by level in append order, empty levels skipped.
        CRLEIndexCursor cursor(&index);
        const Cells cells = {{5, 0, 0},  {5, 0, 1},  {5, 0, 2},  {2, -4, 7}, {2, 0, 10},
                             {2, 0, 11}, {2, 0, 12}, {-1, 3, 5}, {5, 1, 4},  {5, 1, 6}};
        EXPECT_EQ(Drain(cursor), cells);
        const std::vector<unsigned char> data = {9, 8, 7, 6};
        index.Metadata(data.data(), 4);
        index.Clear();
        EXPECT_EQ((std::vector<int>{index.MinLevel(), index.MaxLevel(), index.Count()}),
                  (std::vector<int>{999, -999, 0}));
        EXPECT_EQ(Drain(cursor = CRLEIndexCursor(&index)), Cells{});
        // The metadata survives Clear and is copied only into a large enough buffer.
        std::vector<unsigned char> out(4, 0);
        EXPECT_EQ(index.MetaData(out.data(), 3), 4);
        EXPECT_EQ(out, std::vector<unsigned char>(4, 0));
        EXPECT_EQ(index.MetaData(out.data(), 4), 4);
        EXPECT_EQ(out, data);
        index.Metadata(&data[3], 1);  // a single byte is copied too
        EXPECT_TRUE(index.MetaData(out.data(), 1) == 1 && out[0] == 6);
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
