#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "index/RLEIndex.h"

namespace {
using Runs = std::vector<std::pair<int, int>>;
enum class Op { AddCell, AddSpan, EraseCell, EraseSpan };

struct Edited {
    Runs runs;
    bool result;
};

// Applies one row operation to a row held in its own vector of rows, as a grid level holds it.
Edited Apply(const Runs& before, Op op, int a, int b = 0) {
    RLERows rows(1);
    for (const auto& r : before)
        rows[0].emplace_back(r.first, r.second);
    CRLERow row(rows.begin(), rows.end());
    bool result = false;
    switch (op) {
        case Op::AddCell:
            result = row.Add(a);
            break;
        case Op::AddSpan:
            result = row.Add(a, b);
            break;
        case Op::EraseCell:
            result = row.Erase(a);
            break;
        case Op::EraseSpan:
            result = row.Erase(a, b);
            break;
    }
    Edited out{{}, result};
    for (const RLE& r : rows[0])
        out.runs.emplace_back(r.start, r.end);
    return out;
}

Runs RunsOf(const std::set<int>& cells) {
    Runs out;
    for (int c : cells) {
        if (!out.empty() && out.back().second + 1LL == c) {
            out.back().second = c;
        } else {
            out.emplace_back(c, c);
        }
    }
    return out;
}

// Erasing [lo, hi] from the maximal runs of cells: cut at lo and hi, compact away the runs with
// an end inside the span, then drop the one run just past the kept ones (so k matched runs leave
// k - 1 copies of the old tail, and none matched loses the last run).
Runs ExpectedSpanErase(const std::set<int>& cells, int lo, int hi) {
    const Runs before = RunsOf(cells);
    if (before.empty() || (before.front().first >= lo && before.back().second <= hi)) return {};
    std::set<int> cut = cells;
    cut.erase(lo);
    cut.erase(hi);
    const Runs runs = RunsOf(cut);
    if (runs.empty() || runs.front().first > hi || runs.back().second < lo) return runs;
    Runs kept;
    long matched = 0;
    for (const auto& r : runs) {
        const bool in = (lo <= r.first && r.first <= hi) || (lo <= r.second && r.second <= hi);
        if (in) {
            ++matched;
        } else {
            kept.push_back(r);
        }
    }
    if (matched == 0) {
        kept.pop_back();
    } else {
        kept.insert(kept.end(), runs.end() - (matched - 1), runs.end());
    }
    return kept;
}

const Runs kFour = {{0, 2}, {10, 12}, {20, 22}, {30, 32}};
}  // namespace

TEST(RleRow, FindRunReturnsRunAtOrNextToCellElseRunAfterGap) {
    RLERowRuns v;
    for (const auto& r : kFour)
        v.emplace_back(r.first, r.second);
    const int expected[][2] = {{-5, 0}, {3, 0}, {5, 1}, {9, 1}, {13, 1}, {15, 2}, {25, 3}, {99, 3}};
    for (const auto& e : expected) {
        EXPECT_EQ(CRLERow::FindRLE(v.begin(), v.end() - 1, e[0]) - v.begin(), e[1]) << e[0];
    }
    EXPECT_FALSE(CRLERow::Insert(v.begin(), v.end() - 1, 11));
    EXPECT_FALSE(CRLERow::Insert(v.begin(), v.end() - 1, 15));
}

TEST(RleRow, AddCellMergesOneGapOrInserts) {
    EXPECT_EQ(Apply({{0, 2}, {4, 6}}, Op::AddCell, 3).runs, (Runs{{0, 6}}));
    EXPECT_EQ(Apply({{5, 6}, {10, 12}}, Op::AddCell, 8).runs, (Runs{{5, 6}, {8, 8}, {10, 12}}));
    EXPECT_EQ(Apply({{5, 6}, {10, 12}}, Op::AddCell, 13).runs, (Runs{{5, 6}, {10, 13}}));
    EXPECT_EQ(Apply({{5, 6}}, Op::AddCell, 0).runs, (Runs{{0, 0}, {5, 6}}));
    EXPECT_EQ(Apply({}, Op::AddCell, 4).runs, (Runs{{4, 4}}));
}

TEST(RleRow, AddSpanKeepsAbuttingRuns) {
    EXPECT_EQ(Apply({{0, 2}, {4, 6}}, Op::AddSpan, 1, 3).runs, (Runs{{0, 3}, {4, 6}}));
    EXPECT_EQ(Apply({{0, 2}, {4, 6}}, Op::AddSpan, 7, 3).runs, (Runs{{0, 2}, {3, 7}}));
    EXPECT_EQ(Apply({{0, 5}, {10, 12}}, Op::AddSpan, 6, 8).runs, (Runs{{0, 8}, {10, 12}}));
}

TEST(RleRow, AddSpanFromGapPastNextRunLosesCells) {
    const Edited e = Apply(kFour, Op::AddSpan, 25, 5);
    EXPECT_TRUE(e.result);
    EXPECT_EQ(e.runs, (Runs{{0, 2}, {10, 12}, {30, 32}}));
    // r reaches [30, 32], which keeps its bounds.
    EXPECT_EQ(Apply(kFour, Op::AddSpan, 5, 29).runs, (Runs{{0, 2}, {10, 12}, {30, 32}}));
}

TEST(RleRow, AddSpanWidensLowRunNeverHighRun) {
    EXPECT_EQ(Apply({{0, 2}, {10, 12}, {30, 32}}, Op::AddSpan, 5, 11).runs,
              (Runs{{0, 2}, {5, 12}, {30, 32}}));
    const Runs five = {{0, 2}, {10, 12}, {20, 22}, {30, 32}, {40, 42}};
    EXPECT_EQ(Apply(five, Op::AddSpan, 11, 31).runs, (Runs{{0, 2}, {10, 32}, {40, 42}}));
    EXPECT_EQ(Apply(five, Op::AddSpan, 11, 35).runs, (Runs{{0, 2}, {10, 35}, {40, 42}}));
}

TEST(RleRow, AddSpanInGapOrBeyondEdgesInserts) {
    EXPECT_EQ(Apply(kFour, Op::AddSpan, 5, 7).runs,
              (Runs{{0, 2}, {5, 7}, {10, 12}, {20, 22}, {30, 32}}));
    EXPECT_EQ(Apply(kFour, Op::AddSpan, 16, 15).runs,
              (Runs{{0, 2}, {10, 12}, {15, 16}, {20, 22}, {30, 32}}));
    EXPECT_EQ(Apply({{10, 12}}, Op::AddSpan, 0, 5).runs, (Runs{{0, 5}, {10, 12}}));
    EXPECT_EQ(Apply({{10, 12}}, Op::AddSpan, 30, 40).runs, (Runs{{10, 12}, {30, 40}}));
    EXPECT_EQ(Apply({{10, 12}, {30, 40}}, Op::AddSpan, 41, 45).runs, (Runs{{10, 12}, {30, 45}}));
    EXPECT_EQ(Apply(kFour, Op::AddSpan, -1, 50).runs, (Runs{{-1, 50}}));
}

TEST(RleRow, EraseCellSplitsTrimsOrRemoves) {
    EXPECT_EQ(Apply({{0, 10}}, Op::EraseCell, 4).runs, (Runs{{0, 3}, {5, 10}}));
    EXPECT_TRUE(Apply({{0, 0}}, Op::EraseCell, 0).runs.empty());
    const Edited beside = Apply({{0, 10}}, Op::EraseCell, 11);
    EXPECT_TRUE(beside.result);
    EXPECT_EQ(beside.runs, (Runs{{0, 10}}));
    EXPECT_FALSE(Apply({{0, 10}}, Op::EraseCell, 20).result);
    EXPECT_TRUE(Apply({}, Op::EraseCell, 20).result);
    EXPECT_EQ(Apply({{INT_MAX - 1, INT_MAX}}, Op::EraseCell, INT_MAX).runs,
              (Runs{{INT_MAX - 1, INT_MAX - 1}}));
    EXPECT_TRUE(Apply({{INT_MAX, INT_MAX}}, Op::EraseCell, INT_MAX).runs.empty());
    EXPECT_TRUE(Apply({{INT_MIN, INT_MIN}}, Op::EraseCell, INT_MIN).runs.empty());
}

TEST(RleRow, EraseSpanRemovesExactlyOneRunAfterCompaction) {
    EXPECT_EQ(Apply({{0, 2}, {8, 10}}, Op::EraseSpan, 4, 6).runs, (Runs{{0, 2}}));
    EXPECT_EQ(Apply({{0, 2}, {4, 5}, {7, 8}, {10, 12}}, Op::EraseSpan, 3, 9).runs,
              (Runs{{0, 2}, {10, 12}, {10, 12}}));
    EXPECT_EQ(Apply({{0, 10}, {20, 30}}, Op::EraseSpan, 25, 5).runs,
              (Runs{{0, 4}, {26, 30}, {26, 30}}));
    EXPECT_TRUE(Apply({{0, 2}, {4, 5}, {90, 100}}, Op::EraseSpan, 0, 100).runs.empty());
}

TEST(RleRow, RandomCellEditsMatchSetOfCells) {
    const unsigned seed = std::random_device{}();
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> cell(-40, 40);
    std::bernoulli_distribution add(0.6);
    for (int round = 0; round < 200; ++round) {
        RLERows rows(1);
        CRLERow row(rows.begin(), rows.end());
        std::set<int> model;
        for (int step = 0; step < 150; ++step) {
            const int x = cell(gen);
            if (add(gen)) {
                ASSERT_TRUE(row.Add(x)) << "seed " << seed;
                model.insert(x);
            } else {
                const bool near = model.count(x - 1) || model.count(x) || model.count(x + 1);
                ASSERT_EQ(row.Erase(x), near || model.empty()) << "seed " << seed << " x " << x;
                model.erase(x);
            }
            Runs runs;
            for (const RLE& r : rows[0])
                runs.emplace_back(r.start, r.end);
            ASSERT_EQ(runs, RunsOf(model)) << "seed " << seed << " round " << round;
        }
        for (int x = -42; x <= 42; ++x) {
            ASSERT_EQ(row.IsExist(x), model.count(x) == 1) << "seed " << seed << " x " << x;
        }
    }
}

TEST(RleRow, RandomSpanEraseFollowsCompactionRule) {
    const unsigned seed = std::random_device{}();
    std::mt19937 gen(seed);
    std::uniform_int_distribution<int> cell(-30, 30);
    for (int round = 0; round < 3000; ++round) {
        std::set<int> cells;
        for (int i = cell(gen) + 30; i > 0; --i)
            cells.insert(cell(gen));
        const int lo = cell(gen);
        const int hi = cell(gen);
        if (lo >= hi) continue;
        const Edited e = Apply(RunsOf(cells), Op::EraseSpan, hi, lo);
        ASSERT_TRUE(e.result) << "seed " << seed;
        ASSERT_EQ(e.runs, ExpectedSpanErase(cells, lo, hi))
            << "seed " << seed << " round " << round << " span " << lo << ".." << hi;
    }
}
