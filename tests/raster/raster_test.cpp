// The outline's cells against a closed-form model of each edge, the sweep's runs against
// point-in-polygon, and the fixed rules of clipping, hit tests, gamma and cell storage.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "raster/agg.h"

namespace {

constexpr int kCell = agg::subpixel_scale;
using Spans = std::vector<std::tuple<int, int, int>>;  // row, first, last
using Points = std::vector<std::pair<int, int>>;

// A target that owns no pixels and records every run of a sweep.
class RunCapture : public agg::rendering_buffer {
public:
    RunCapture(unsigned width, unsigned height) : agg::rendering_buffer(nullptr, 0, 0, 0) {
        set_size(width, height);
    }
    unsigned char* row(unsigned y) override {
        record = {y, this};
        return reinterpret_cast<unsigned char*>(&record);
    }
    void AddRLE(int row, int first, int last) { runs.emplace_back(row, first, last); }
    Spans runs;

private:
    agg::run_row<RunCapture> record{0, nullptr};
};

Spans Sweep(agg::rasterizer& ras, unsigned width = 1000, unsigned height = 1000) {
    RunCapture target(width, height);
    ras.render<RunCapture>(target);
    return target.runs;
}

void Polygon(agg::outline& o, const Points& pts) {
    for (size_t i = 0; i < pts.size(); ++i)
        i == 0 ? o.move_to(pts[i].first, pts[i].second) : o.line_to(pts[i].first, pts[i].second);
}

// Rectangle from (x0, y0) to (x1, y1) in subpixels, clockwise on screen.
void Rect(agg::outline& o, int x0, int y0, int x1, int y1) {
    Polygon(o, {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
}

// The cells handed out, checked: each stored cell once, in key order.
std::vector<agg::cell> CheckedCells(agg::outline& o) {
    std::set<const agg::cell*> seen;
    std::vector<agg::cell> out;
    for (const agg::cell* const* p = o.cells(); p != nullptr && *p != nullptr; ++p) {
        EXPECT_TRUE(seen.insert(*p).second) << "a cell handed out twice";
        out.push_back(**p);
    }
    EXPECT_EQ(out.size(), o.cell_count());
    EXPECT_TRUE(std::is_sorted(out.begin(), out.end(),
                               [](const auto& a, const auto& b) { return a.packed < b.packed; }));
    return out;
}

// Column, row, key, cover and area of every cell, in order.
std::vector<std::vector<int>> Sums(agg::outline& o) {
    std::vector<std::vector<int>> out;
    for (const agg::cell& c : CheckedCells(o))
        out.push_back({c.x, c.y, c.packed, c.cover, c.area});
    return out;
}

// Steep strokes over 60,000 rows, each leaving at least one cell per row: all 1024 blocks.
void FillAllBlocks(agg::outline& o) {
    o.move_to(0, -30000 * kCell);
    for (int i = 1; i <= 80; ++i)
        o.line_to(i * kCell + 128, (i % 2 == 1 ? 30000 : -30000) * kCell);
    ASSERT_EQ(o.cell_count(), 1024u * 4096u);
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

// One row's part of an edge, from (xa, fa) to (xb, fb), fa and fb inside the row: a piece per
// column it passes, cut where it crosses a column boundary.
void ModelRow(CellSums& m, int64_t row, int64_t xa, int64_t fa, int64_t xb, int64_t fb) {
    if (fa == fb) return;
    const int64_t step = xb > xa ? 1 : -1, leave = xb > xa ? kCell : 0;
    int64_t ex = CellOf(xa), fx = xa - ex * kCell, fy = fa;
    for (; ex != CellOf(xb); ex += step, fx = kCell - leave) {
        const int64_t boundary = ex * kCell + leave;
        const int64_t v = fa + FloorDiv(std::abs(boundary - xa) * (fb - fa), std::abs(xb - xa));
        AddPiece(m, ex, row, fx, fy, leave, v);
        fy = v;
    }
    AddPiece(m, ex, row, fx, fy, xb - ex * kCell, fb);
}

// Each crossing of a row boundary is measured from the edge's start, in the edge's direction.
void ModelEdge(CellSums& m, int64_t x1, int64_t y1, int64_t x2, int64_t y2) {
    const int64_t lo = std::min(y1, y2), hi = std::max(y1, y2);
    std::vector<std::pair<int64_t, int64_t>> path;
    for (int64_t b = (CellOf(lo) + 1) * kCell; b <= hi; b += kCell)
        path.emplace_back(x1 + FloorDiv(std::abs(b - y1) * (x2 - x1), hi - lo), b);
    if (y2 < y1) std::reverse(path.begin(), path.end());
    path.insert(path.begin(), {x1, y1});
    path.emplace_back(x2, y2);
    for (size_t i = 1; i < path.size(); ++i) {
        const auto [xa, ya] = path[i - 1];
        const auto [xb, yb] = path[i];
        const int64_t row = CellOf(std::min(ya, yb));
        ModelRow(m, row, xa, ya - row * kCell, xb, yb - row * kCell);
    }
}

TEST(Outline, CellsMatchTheRoundedEdgeModel) {
    std::mt19937 rng(77);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const int n = 3 + static_cast<int>(rng() % 5);
        // Small ones stay inside few cells; shallow ones climb a subpixel or two a column; wide
        // ones reach the widest edges drawn uncut.
        const bool wide = round % 100 == 1, shallow = round % 7 == 5;
        const int spanX = (wide ? 16000 : shallow ? 300 : round % 3 == 0 ? 3 : 60) * kCell;
        const int spanY = (wide || shallow || round % 3 == 0 ? 3 : 60) * kCell;
        Points pts;
        for (int i = 0; i < n; ++i)
            pts.emplace_back(int(rng() % (2 * spanX)) - spanX, int(rng() % (2 * spanY)) - spanY);
        if (round % 4 == 3) pts[1].first = pts[0].first;  // a vertical edge
        agg::outline o;
        Polygon(o, pts);
        CellSums expected, actual;
        for (int i = 0; i < n; ++i)
            ModelEdge(expected, pts[i].first, pts[i].second, pts[(i + 1) % n].first,
                      pts[(i + 1) % n].second);
        for (const agg::cell& c : CheckedCells(o)) {
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

TEST(RenderingBuffer, NegativeStrideStartsAtTheLastRowAndSmallerAttachKeepsRows) {
    unsigned char a[400], b[300];
    agg::rendering_buffer one(a, 10, 1, 10);  // one row needs a row table too
    EXPECT_EQ(std::make_tuple(one.row(0), one.width(), one.height()), std::make_tuple(a, 10u, 1u));
    agg::rendering_buffer rb(a, 10, 4, 100);
    rb.attach(b, 100, 3, -100);
    EXPECT_EQ((std::vector<unsigned char*>{rb.row(0), rb.row(1), rb.row(2), rb.row(3)}),
              (std::vector<unsigned char*>{b + 200, b + 100, b, a + 300}));
    EXPECT_EQ(std::make_pair(rb.stride(), rb.width()), std::make_pair(-100, 100u));
}

TEST(Outline, BoundsCountTouchedRowsAndColumns) {
    agg::outline o;
    o.move_to(500, 700);
    o.line_to(500, 700);  // a line to the pen adds nothing
    const auto bounds = [](const agg::outline& x) {
        return std::vector<int>{x.min_x(), x.min_y(), x.max_x(), x.max_y()};
    };
    EXPECT_EQ(bounds(o), (std::vector<int>{0x7FFFFFFF, 0x7FFFFFFF, -0x7FFFFFFF, -0x7FFFFFFF}));
    Polygon(o, {{1024, 2 * kCell}, {1024, 6 * kCell}});
    // The walk ends on the boundary of row 6, which still counts as touched.
    EXPECT_EQ(bounds(o), (std::vector<int>{4, 2, 5, 7}));
    agg::outline h;
    Polygon(h, {{2 * kCell + 10, 3 * kCell + 100}, {7 * kCell + 20, 3 * kCell + 100}});
    EXPECT_EQ(std::make_pair(h.cells() == nullptr, bounds(h)),
              std::make_pair(true, std::vector<int>{2, 3, 8, 4}));
    agg::outline next;  // columns next to each other
    Polygon(next, {{4 * kCell, 0}, {5 * kCell + 1, kCell}});
    EXPECT_EQ(bounds(next), (std::vector<int>{4, 0, 6, 2}));
    next.cover(-3, 9, 256);  // a cover carried in from beside a tile touches its cell
    EXPECT_EQ(bounds(next), (std::vector<int>{-3, 0, 6, 10}));
}

TEST(Outline, EdgesAfterCellsAreIgnoredUntilMoveToAndResetDropsTheOpenContour) {
    agg::outline o;
    Rect(o, 0, 0, 3 * kCell + 5, 2 * kCell + 7);
    const agg::cell* const* first = o.cells();
    o.line_to(90 * kCell, 90 * kCell);
    EXPECT_EQ(std::make_pair(o.cells(), o.max_x()), std::make_pair(first, 4));
    Polygon(o, {{10 * kCell, 10 * kCell}, {10 * kCell, 11 * kCell}});  // a new polygon
    ASSERT_NE(o.cells(), nullptr);
    EXPECT_EQ(std::make_pair(o.cell_count(), o.min_y()), std::make_pair(2u, 10));
    Polygon(o, {{kCell / 2, 0}, {40 * kCell, 17 * kCell}});  // left open
    // Cover first in cell (32767, 32767), whose key the empty current cell carries, then in
    // (32767, 4095), each after reset().
    const int m = 32767 * kCell;
    for (const int n : {m, 4095 * kCell}) {
        o.reset();
        agg::outline fresh;
        for (agg::outline* p : {&o, &fresh})
            Polygon(*p, {{m + 200, n + 100}, {m - 1500, n - 1200}, {m + 9, n - 900}});
        EXPECT_EQ(Sums(o), Sums(fresh)) << n / kCell;
    }
}

TEST(Outline, BlockLimitDropsCellsForeverEvenAfterReleaseButPerLender) {
    for (bool release : {false, true}) {
        agg::outline o;
        FillAllBlocks(o);
        // The blocks were allocated once: a new polygon cannot begin its first block.
        release ? o.release() : o.reset();
        Rect(o, 0, 5 * kCell, 5 * kCell + 3, 6 * kCell + 3);
        EXPECT_EQ(std::make_pair(o.cells() == nullptr, o.cell_count()), std::make_pair(true, 0u))
            << release;
        // The bounds still follow the edges, row by row.
        EXPECT_EQ(std::make_pair(o.min_y(), o.max_y()), std::make_pair(5, 7)) << release;
    }
    // One outline lent to two owners in turn, each bringing its own count of blocks: after the
    // first reached the limit the second still draws, and the first stays at its limit.
    agg::outline lent, alone;
    FillAllBlocks(lent);
    const unsigned full = lent.blocks_counted();
    lent.blocks_counted(0);
    lent.reset();
    for (agg::outline* o : {&lent, &alone})
        Rect(*o, 3 * kCell + 5, kCell, 9 * kCell + 200, 6 * kCell + 1);
    EXPECT_EQ(Sums(lent), Sums(alone));
    ASSERT_FALSE(Sums(alone).empty());
    lent.blocks_counted(full);
    lent.reset();
    Rect(lent, 0, 0, 5 * kCell + 3, 5 * kCell + 3);
    EXPECT_EQ(lent.cells(), nullptr);
}

TEST(Rasterizer, HitTestIncludesTheCellRightOfARun) {
    agg::rasterizer ras;
    EXPECT_TRUE(ras.fill_rule() == 0 && !ras.hit_test(0, 0));         // non-zero winding by default
    Rect(ras.get_outline(), 2 * kCell, kCell, 5 * kCell, 2 * kCell);  // cells 2..4 of row 1
    EXPECT_EQ((std::vector<bool>{ras.hit_test(3, 1), ras.hit_test(5, 1), ras.hit_test(6, 1),
                                 ras.hit_test(1, 1), ras.hit_test(3, 0)}),
              (std::vector<bool>{true, true, false, false, false}));
    // Coverage is rounded toward minus infinity: a sliver of 200 of a cell's 65,536 subpixels
    // covers it one way round and not the other.
    Polygon(ras.get_outline(), {{0, 0}, {0, 20}, {20, 0}});
    const bool counterclockwise = ras.hit_test(0, 0);
    Polygon(ras.get_outline(), {{0, 0}, {20, 0}, {0, 20}});
    EXPECT_EQ(std::make_pair(counterclockwise, ras.hit_test(0, 0)), std::make_pair(false, true));
    EXPECT_EQ(Sweep(ras), (Spans{{0, 0, 0}}));  // an outline of one cell is swept too
    // Coverage of (cover << 9) - area: wrapped every 512 under even-odd, clipped to 255.
    const std::tuple<int, int, unsigned> kCoverage[] = {
        {1, 300, 212}, {1, -300, 212}, {1, 256, 255}, {1, 512, 0}, {1, 1023, 1}, {0, 300, 255}};
    for (const auto& [rule, value, coverage] : kCoverage) {
        ras.fill_rule(rule);
        EXPECT_EQ(ras.calculate_coverage(value * 512), coverage) << rule << " " << value;
    }
}

TEST(Rasterizer, DefaultAndPowerLawGammaTables) {
    // Fixed: entries 0-31, every sixteenth and the last sixteen; between them linear, truncated.
    const int first[32] = {0, 0,  1,  1,  2,  2,  3,  4,  4,  5,  5,  6,  7,  7,  8,  8,
                           9, 10, 10, 11, 11, 12, 13, 13, 14, 14, 15, 16, 16, 17, 18, 18};
    const int sixteenth[16] = {0, 9, 19, 29, 39, 49, 60, 72, 85, 100, 116, 134, 154, 177, 202, 229};
    const int last[16] = {229, 230, 232, 234, 236, 237, 239, 241,
                          242, 244, 246, 248, 249, 251, 253, 255};
    std::vector<int> table(first, first + 32);
    for (int i = 32, k = 2; i < 240; k = ++i / 16)
        table.push_back(sixteenth[k] + (sixteenth[k + 1] - sixteenth[k]) * (i % 16) / 16);
    table.insert(table.end(), last, last + 16);
    agg::rasterizer ras;  // a copy of the default table
    EXPECT_EQ(std::vector<int>(ras.gamma_table(), ras.gamma_table() + 256), table);
    ras.gamma(1.3);  // truncated
    EXPECT_EQ(std::make_pair(+ras.gamma_table()[1], +ras.gamma_table()[128]),
              std::make_pair(0, 104));
    ras.gamma(-2.0);  // infinities and values beyond 64 bits must not trap
    EXPECT_EQ(std::make_pair(+ras.gamma_table()[0], +ras.gamma_table()[255]),
              std::make_pair(0, 255));
}

// Winding number of (px, py) for the closed polygon pts, and its distance to the nearest edge.
std::pair<int, double> WindingAndDistance(const std::vector<std::pair<double, double>>& pts,
                                          double px, double py) {
    int w = 0;
    double best = 1e300;
    for (size_t i = 0; i < pts.size(); ++i) {
        const auto [x1, y1] = pts[i];
        const auto [x2, y2] = pts[(i + 1) % pts.size()];
        if ((y1 <= py) != (y2 <= py) && x1 + (py - y1) * (x2 - x1) / (y2 - y1) > px)
            w += y2 > y1 ? 1 : -1;
        const double dx = x2 - x1, dy = y2 - y1, len2 = dx * dx + dy * dy;
        const double t =
            std::fmax(0.0, std::fmin(1.0, len2 > 0 ? ((px - x1) * dx + (py - y1) * dy) / len2 : 0));
        best = std::fmin(best, std::hypot(px - (x1 + t * dx), py - (y1 + t * dy)));
    }
    return {w, best};
}

// The runs against the winding number away from edges; hit_test against the runs: every
// emitted cell is hit, and a hit cell that is not emitted lies just right of one that is (the
// cell ending a covered row segment).
TEST(Rasterizer, RunsMatchPointInPolygonAwayFromEdgesAndHitTestAgrees) {
    std::mt19937 rng(20240611);
    agg::rasterizer ras;  // reused: arrays carry over between polygons
    size_t hitChecked = 0;
    for (int round = 0; round < 300; ++round) {
        const int rule = round % 2;
        SCOPED_TRACE("round " + std::to_string(round));
        ras.fill_rule(rule);
        std::vector<std::pair<double, double>> pts;
        const int n = 3 + static_cast<int>(rng() % 6);
        for (int i = 0; i < n; ++i) {
            const int x = static_cast<int>(rng() % (40 * kCell)) - 5 * kCell;
            const int y = static_cast<int>(rng() % (40 * kCell)) - 5 * kCell;
            pts.emplace_back(x / double(kCell), y / double(kCell));
            i == 0 ? ras.get_outline().move_to(x, y) : ras.get_outline().line_to(x, y);
        }
        std::set<std::pair<int, int>> occupied;
        for (const auto& [row, first, last] : Sweep(ras, 30, 30)) {
            ASSERT_LE(first, last);
            for (int x = first; x <= last; ++x)
                ASSERT_TRUE(occupied.insert({row, x}).second) << "cell emitted twice";
        }
        for (int y = -1; y <= 31; ++y) {
            for (int x = -1; x <= 31; ++x) {
                const bool emitted = occupied.count({y, x}) == 1;
                const bool inTarget = x >= 0 && x < 30 && y >= 0 && y < 30;
                if (x >= 1 && inTarget) {
                    hitChecked += emitted;
                    EXPECT_TRUE(ras.hit_test(x, y) ? emitted || occupied.count({y, x - 1})
                                                   : !emitted)
                        << "hit_test " << x << "," << y;
                }
                const auto [w, distance] = WindingAndDistance(pts, x + 0.5, y + 0.5);
                if (distance < 0.75) continue;
                EXPECT_EQ(emitted, (rule == 1 ? w % 2 != 0 : w != 0) && inTarget)
                    << "cell " << x << "," << y << " winding " << w;
            }
        }
    }
    EXPECT_GT(hitChecked, 10000u);
}

// Far beyond the supported range nothing need be meaningful, but the sweep must stay inside its
// arrays, end, and clip what it emits. (Each polygon gets a fresh rasterizer: one that has filled
// all its cell blocks stores nothing more.)
TEST(Rasterizer, FarOutOfRangePolygonsStaySafe) {
    const std::vector<Points> polygons = {
        {{INT32_MIN, 0}, {INT32_MAX, 0}, {INT32_MAX, 2 * kCell}, {INT32_MIN, 2 * kCell}},
        {{-40000 * kCell, 5 * kCell}, {40000 * kCell, 6 * kCell}, {0, 9 * kCell}},
        {{0, 0}, {1000000 * kCell, 0}, {1000000 * kCell, kCell}},
        {{0, 0}, {1 << 23, 3 * kCell}, {0, 3 * kCell}},  // the narrowest edge that is cut
    };
    for (size_t k = 0; k < polygons.size(); ++k) {
        agg::rasterizer ras;
        Polygon(ras.get_outline(), polygons[k]);
        for (const auto& [row, first, last] : Sweep(ras, 5000, 5000)) {
            ASSERT_TRUE(row >= 0 && row < 5000 && first >= 0 && first <= last && last < 5000)
                << "polygon " << k << " row " << row << ": " << first << ".." << last;
        }
        // Cut or not, the edges of a closed polygon climb as far as they descend.
        long long cover = 0;
        for (const agg::cell& c : CheckedCells(ras.get_outline()))
            cover += c.cover;
        EXPECT_EQ(cover, 0) << "polygon " << k;
    }
}

// Cells outside the row's columns are dropped, and a width beyond a 16-bit column is capped.
TEST(Scanline, OutsideCellsAreDroppedAndWidthIsCapped) {
    agg::scanline sl;
    sl.reset(0, 10, 0, 0);
    for (const auto& [x, n] : {std::pair{-1, 3u}, {12, 1u}, {5, 10u}})
        sl.add_span(x, 0, n, 1);
    EXPECT_EQ(sl.span_count(), 0u);
    sl.reset(0, 40000, 0, 0);
    sl.add_cell(32768, 0, 1);  // grows the unused slot 0
    sl.add_cell(100, 0, 1);
    EXPECT_EQ(sl.span_count(), 1u);
    sl.reset(-2000000, 2000000, 0, 0);
    EXPECT_LE(sl.capacity(), 65538u);
    sl.add_span(1000000, 0, 1, 1);
    EXPECT_EQ(sl.span_count(), 0u);
    // The 16-bit cell range in one row: its last cell lies 65,535 columns right of its first.
    agg::rasterizer wide;
    Rect(wide.get_outline(), -32768 * kCell, 0, -32758 * kCell, kCell);
    Rect(wide.get_outline(), 32762 * kCell, 0, 32767 * kCell + 128, kCell);
    EXPECT_EQ(Sweep(wide, 40000, 1), (Spans{{0, 32762, 32767}}));
}

}  // namespace
