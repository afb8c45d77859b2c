#include <gtest/gtest.h>

#include <cmath>
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

void Rect(agg::outline& o, int x0, int y0, int x1, int y1) {
    o.move_to(x0, y0);
    o.line_to(x1, y0);
    o.line_to(x1, y1);
    o.line_to(x0, y1);
}

TEST(Rasterizer, CoverageUnderBothFillRules) {
    struct Row {
        int rule, area;
        unsigned coverage;
    };
    // Even-odd wraps at 512 cells' worth of area; any rule but 1 is non-zero.
    const Row rows[] = {{0, 300 << 9, 255},    {0, -(100 << 9), 100}, {0, 512 << 9, 255},
                        {1, 256 << 9, 255},    {1, 300 << 9, 212},    {1, 512 << 9, 0},
                        {1, -(300 << 9), 212}, {2, 512 << 9, 255}};
    agg::rasterizer ras;
    EXPECT_EQ(ras.fill_rule(), 0);
    for (const Row& r : rows) {
        ras.fill_rule(r.rule);
        EXPECT_EQ(ras.calculate_coverage(r.area), r.coverage) << r.rule << " " << r.area;
    }
}

TEST(Rasterizer, SweepJoinsPartialCellsAndLeavesOutSameWayOverlapUnderEvenOdd) {
    agg::rasterizer ras;
    // A triangle inside one cell is that one cell.
    ras.get_outline().move_to(3 * kCell + 20, 4 * kCell + 20);
    ras.get_outline().line_to(3 * kCell + 230, 4 * kCell + 20);
    ras.get_outline().line_to(3 * kCell + 120, 4 * kCell + 230);
    EXPECT_EQ(Sweep(ras), (Spans{{4, 3, 3}}));
    ras.get_outline().reset();
    Rect(ras.get_outline(), 2 * kCell, kCell, 5 * kCell + 128, 3 * kCell);
    EXPECT_EQ(Sweep(ras), (Spans{{1, 2, 5}, {2, 2, 5}}));
    for (int rule : {0, 1}) {
        ras.fill_rule(rule);
        Rect(ras.get_outline(), 0, 0, 4 * kCell, kCell);
        Rect(ras.get_outline(), 2 * kCell, 0, 6 * kCell, kCell);
        EXPECT_EQ(Sweep(ras), (rule == 1 ? Spans{{0, 0, 1}, {0, 4, 5}} : Spans{{0, 0, 5}}));
    }
}

TEST(Rasterizer, EmitClipsNegativeColumnsTheWidthAndRows) {
    struct Row {
        int x0, x1;
        unsigned width;
        Spans expected;
    };
    const Row rows[] = {{-3, 2, 1000, {{0, 0, 1}}}, {-3, 0, 1000, {}},
                        {8, 13, 10, {{0, 8, 9}}},   {8, 11, 10, {{0, 8, 9}}},
                        {8, 10, 10, {{0, 8, 9}}},   {8, 10, 0, {}}};
    agg::rasterizer ras;
    EXPECT_TRUE(Sweep(ras).empty());
    for (const Row& r : rows) {
        Rect(ras.get_outline(), r.x0 * kCell, 0, r.x1 * kCell, kCell);
        EXPECT_EQ(Sweep(ras, r.width), r.expected) << r.x0 << ".." << r.x1 << " in " << r.width;
    }
    Rect(ras.get_outline(), 0, -2 * kCell, kCell, 3 * kCell);
    EXPECT_EQ(Sweep(ras, 10, 2), (Spans{{0, 0, 0}, {1, 0, 0}}));
}

TEST(Rasterizer, HitTestIncludesTheCellRightOfARun) {
    agg::rasterizer ras;
    EXPECT_FALSE(ras.hit_test(0, 0));
    Rect(ras.get_outline(), 2 * kCell, kCell, 5 * kCell, 2 * kCell);  // cells 2..4 of row 1
    const std::pair<int, int> hits[] = {{3, 1}, {5, 1}}, misses[] = {{6, 1}, {1, 1}, {3, 0}};
    for (auto [x, y] : hits)
        EXPECT_TRUE(ras.hit_test(x, y)) << x << "," << y;
    for (auto [x, y] : misses)
        EXPECT_FALSE(ras.hit_test(x, y)) << x << "," << y;
    // Partly covered cells, either way round.
    for (bool reversed : {false, true}) {
        const int x0 = 2 * kCell + 100, x1 = 2 * kCell + 200;
        Rect(ras.get_outline(), reversed ? x1 : x0, kCell, reversed ? x0 : x1, 2 * kCell);
        EXPECT_TRUE(ras.hit_test(2, 1)) << reversed;
        EXPECT_FALSE(ras.hit_test(3, 1)) << reversed;
    }
}

TEST(Rasterizer, GammaTablesDefaultAndPowerLaw) {
    const unsigned char* g = agg::rasterizer::s_default_gamma;
    const std::pair<int, int> entries[] = {{0, 0},     {2, 1},    {7, 4},     {31, 18},
                                           {64, 39},   {128, 85}, {224, 202}, {240, 229},
                                           {250, 246}, {255, 255}};
    for (auto [i, v] : entries)
        EXPECT_EQ(g[i], v) << i;
    for (int i = 1; i < 256; ++i)
        EXPECT_LE(g[i - 1], g[i]) << i;
    // Between the fixed entries (0-31, every sixteenth, the last sixteen): linear, truncated.
    for (int i = 32; i < 240; ++i) {
        const int lo = i - i % 16, hi = lo + 16;
        EXPECT_EQ(g[i], g[lo] + (g[hi] - g[lo]) * (i - lo) / 16) << i;
    }
    agg::rasterizer ras;
    EXPECT_EQ(std::string(ras.gamma_table(), ras.gamma_table() + 256), std::string(g, g + 256));
    unsigned char reversed[256];
    for (int i = 0; i < 256; ++i)
        reversed[i] = static_cast<unsigned char>(255 - i);
    ras.gamma(reversed);
    EXPECT_EQ(std::string(ras.gamma_table(), ras.gamma_table() + 256),
              std::string(reversed, reversed + 256));
    ras.gamma(1.3);  // truncated
    EXPECT_EQ(ras.gamma_table()[1], 0);
    EXPECT_EQ(ras.gamma_table()[128], 104);
    ras.gamma(-2.0);  // infinities and values beyond 64 bits must not trap
    EXPECT_EQ(ras.gamma_table()[0], 0);
    EXPECT_EQ(ras.gamma_table()[255], 255);
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

TEST(Rasterizer, RunsMatchPointInPolygonAwayFromEdges) {
    const unsigned seed = 20240611;
    std::mt19937 rng(seed);
    agg::rasterizer ras;  // reused: arrays carry over between polygons
    for (int round = 0; round < 300; ++round) {
        const int rule = round % 2;
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
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
                const auto [w, distance] = WindingAndDistance(pts, x + 0.5, y + 0.5);
                if (distance < 0.75) continue;
                const bool inside = rule == 1 ? (w % 2 != 0) : (w != 0);
                const bool in_target = x >= 0 && x < 30 && y >= 0 && y < 30;
                EXPECT_EQ(occupied.count({y, x}) == 1, inside && in_target)
                    << "cell " << x << "," << y << " winding " << w;
            }
        }
    }
}

// hit_test against the sweep: every emitted cell is hit, and a hit cell that is not emitted lies
// just right of one that is (the cell ending a covered row segment).
TEST(Rasterizer, HitTestAgreesWithTheSweep) {
    const unsigned seed = 29;
    std::mt19937 rng(seed);
    agg::rasterizer ras;
    size_t checked = 0;
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        ras.fill_rule(round % 2);
        const int n = 3 + static_cast<int>(rng() % 6);
        for (int i = 0; i < n; ++i) {
            const int x = static_cast<int>(rng() % (30 * kCell));
            const int y = static_cast<int>(rng() % (30 * kCell));
            i == 0 ? ras.get_outline().move_to(x, y) : ras.get_outline().line_to(x, y);
        }
        std::set<std::pair<int, int>> emitted;
        for (const auto& [row, first, last] : Sweep(ras)) {
            for (int x = first; x <= last; ++x)
                emitted.insert({x, row});
        }
        checked += emitted.size();
        for (int y = -1; y <= 31; ++y) {
            for (int x = -1; x <= 31; ++x) {
                const bool hit = ras.hit_test(x, y);
                if (emitted.count({x, y})) {
                    EXPECT_TRUE(hit) << "cell " << x << "," << y;
                } else if (hit) {
                    EXPECT_EQ(emitted.count({x - 1, y}), 1u) << "cell " << x << "," << y;
                }
            }
        }
    }
    EXPECT_GT(checked, 10000u);
}

// Far beyond the supported range nothing need be meaningful, but the sweep must stay inside its
// arrays, end, and clip what it emits. (Each polygon gets a fresh rasterizer: one that has filled
// all its cell blocks stores nothing more.)
TEST(Rasterizer, FarOutOfRangePolygonsStaySafe) {
    const std::vector<std::vector<std::pair<int, int>>> polygons = {
        {{INT32_MIN, 0}, {INT32_MAX, 0}, {INT32_MAX, 2 * kCell}, {INT32_MIN, 2 * kCell}},
        {{-40000 * kCell, 5 * kCell}, {40000 * kCell, 6 * kCell}, {0, 9 * kCell}},
        {{0, 0}, {1000000 * kCell, 0}, {1000000 * kCell, kCell}},
    };
    for (size_t k = 0; k < polygons.size(); ++k) {
        agg::rasterizer ras;
        for (size_t i = 0; i < polygons[k].size(); ++i) {
            const auto [x, y] = polygons[k][i];
            i == 0 ? ras.get_outline().move_to(x, y) : ras.get_outline().line_to(x, y);
        }
        for (const auto& [row, first, last] : Sweep(ras, 5000, 5000)) {
            ASSERT_TRUE(row >= 0 && row < 5000 && first >= 0 && first <= last && last < 5000)
                << "polygon " << k << " row " << row << ": " << first << ".." << last;
        }
    }
}

// The sweep's row buffer and the rows of a rendering buffer.
TEST(Scanline, FirstSpanGoesToSlotOneAndSpansJoinByColumnOnly) {
    agg::scanline sl;
    sl.reset(-10, 20, 0, 0);
    EXPECT_EQ(sl.capacity(), 32u);
    sl.add_span(-8, 3, 4, 77);
    ASSERT_EQ(sl.span_count(), 1u);
    EXPECT_EQ(sl.span_index(1), 2u);
    for (unsigned i = 2; i < 6; ++i)
        EXPECT_EQ(sl.covers()[i], 77);
    EXPECT_FALSE(sl.ready(3));
    EXPECT_TRUE(sl.ready(4));
    sl.clear();
    EXPECT_EQ(sl.last_y(), 0x7FFF);
    sl.reset(0, 50, 0, 0);
    sl.add_span(5, 1, 3, 10);   // 5..7
    sl.add_cell(8, 1, 20);      // touches: same span
    sl.add_span(12, 1, 2, 30);  // gap: new span
    sl.add_cell(14, 2, 40);     // touches by column although the row differs
    ASSERT_EQ(sl.span_count(), 2u);
    EXPECT_EQ(sl.span_index(1), 5u);
    EXPECT_EQ(sl.span_length(1), 4u);
    EXPECT_EQ(sl.span_index(2), 12u);
    EXPECT_EQ(sl.span_length(2), 3u);
    EXPECT_EQ(sl.last_y(), 2);
    sl.reset(0, 10, 3, 4);  // arrays only grow
    EXPECT_EQ(sl.capacity(), 52u);
}

TEST(Scanline, CellsOutsideTheArraysAreDropped) {
    agg::scanline sl;
    sl.reset(0, 40000, 0, 0);
    sl.add_cell(32768, 0, 1);  // grows the unused slot 0
    sl.add_cell(100, 0, 1);
    EXPECT_EQ(sl.span_count(), 1u);
    agg::scanline small;
    small.reset(0, 10, 0, 0);
    small.add_span(-1, 0, 3, 1);
    small.add_span(12, 0, 1, 1);
    small.add_span(5, 0, 10, 1);
    EXPECT_EQ(small.span_count(), 0u);
    // A width beyond what a 16-bit column can take is capped.
    sl.reset(-2000000, 2000000, 0, 0);
    EXPECT_LE(sl.capacity(), 65538u);
    sl.add_span(1000000, 0, 1, 1);
    EXPECT_EQ(sl.span_count(), 0u);
}

TEST(RenderingBuffer, NegativeStrideStartsAtTheLastRowAndSmallerAttachKeepsRows) {
    unsigned char a[400], b[300];
    agg::rendering_buffer rb(a, 10, 4, 100);
    EXPECT_EQ(rb.row(3), a + 300);
    rb.attach(b, 100, 3, -100);
    EXPECT_EQ(rb.stride(), -100);
    EXPECT_EQ(rb.row(0), b + 200);
    EXPECT_EQ(rb.row(1), b + 100);
    EXPECT_EQ(static_cast<const agg::rendering_buffer&>(rb).row(2), b);
    EXPECT_EQ(rb.row(3), a + 300);  // beyond height: the earlier row is still there
    rb.attach(nullptr, 0, 0, 0);    // height 0 sets nothing
    EXPECT_EQ(rb.height(), 0u);
    EXPECT_EQ(rb.row(0), b + 200);
}

}  // namespace
