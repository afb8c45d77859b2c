#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "raster/agg.h"

namespace {

constexpr int kCell = agg::subpixel_scale;

struct Span {
    int row, first, last;
    bool operator==(const Span& o) const {
        return row == o.row && first == o.first && last == o.last;
    }
};
std::ostream& operator<<(std::ostream& os, const Span& r) {
    return os << "(" << r.row << ": " << r.first << ".." << r.last << ")";
}

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
    void AddRLE(int row, int first, int last) { runs.push_back({row, first, last}); }

    std::vector<Span> runs;

private:
    agg::run_row<RunCapture> record{0, nullptr};
};

std::vector<Span> Sweep(agg::rasterizer& ras, unsigned width = 1000, unsigned height = 1000) {
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
    agg::rasterizer ras;
    EXPECT_EQ(ras.fill_rule(), 0);
    EXPECT_EQ(ras.calculate_coverage(300 << 9), 255u);
    EXPECT_EQ(ras.calculate_coverage(-(100 << 9)), 100u);
    EXPECT_EQ(ras.calculate_coverage(512 << 9), 255u);
    ras.fill_rule(1);
    EXPECT_EQ(ras.calculate_coverage(256 << 9), 255u);
    EXPECT_EQ(ras.calculate_coverage(300 << 9), 212u);
    EXPECT_EQ(ras.calculate_coverage(512 << 9), 0u);
    EXPECT_EQ(ras.calculate_coverage(-(300 << 9)), 212u);
    ras.fill_rule(2);  // anything but 1 is non-zero
    EXPECT_EQ(ras.calculate_coverage(512 << 9), 255u);
}

TEST(Rasterizer, SameWayOverlapIsLeftOutUnderEvenOdd) {
    for (int rule : {0, 1}) {
        agg::rasterizer ras;
        ras.fill_rule(rule);
        Rect(ras.get_outline(), 0, 0, 4 * kCell, kCell);
        Rect(ras.get_outline(), 2 * kCell, 0, 6 * kCell, kCell);
        const std::vector<Span> runs = Sweep(ras);
        if (rule == 1) {
            EXPECT_EQ(runs, (std::vector<Span>{{0, 0, 1}, {0, 4, 5}}));
        } else {
            EXPECT_EQ(runs, (std::vector<Span>{{0, 0, 5}}));
        }
    }
}

TEST(Rasterizer, PartialCellMergesWithAdjacentRun) {
    agg::rasterizer ras;
    Rect(ras.get_outline(), 2 * kCell, kCell, 5 * kCell + 128, 3 * kCell);
    EXPECT_EQ(Sweep(ras), (std::vector<Span>{{1, 2, 5}, {2, 2, 5}}));
}

TEST(Rasterizer, EmitClipsNegativeColumnsAndTheWidth) {
    agg::rasterizer ras;
    Rect(ras.get_outline(), -3 * kCell, 0, 2 * kCell, kCell);
    EXPECT_EQ(Sweep(ras), (std::vector<Span>{{0, 0, 1}}));
    Rect(ras.get_outline(), -3 * kCell, 0, 0, kCell);
    EXPECT_TRUE(Sweep(ras).empty());
    Rect(ras.get_outline(), 8 * kCell, 0, 13 * kCell, kCell);
    EXPECT_EQ(Sweep(ras, 10), (std::vector<Span>{{0, 8, 9}}));
    Rect(ras.get_outline(), 8 * kCell, 0, 11 * kCell, kCell);
    EXPECT_EQ(Sweep(ras, 10), (std::vector<Span>{{0, 8, 9}}));
    Rect(ras.get_outline(), 8 * kCell, 0, 10 * kCell, kCell);
    EXPECT_EQ(Sweep(ras, 10), (std::vector<Span>{{0, 8, 9}}));
    EXPECT_TRUE(Sweep(ras, 0).empty());
}

TEST(Rasterizer, RowsOutsideTheTargetAreDropped) {
    agg::rasterizer ras;
    EXPECT_TRUE(Sweep(ras).empty());
    Rect(ras.get_outline(), 0, -2 * kCell, kCell, 3 * kCell);
    EXPECT_EQ(Sweep(ras, 10, 2), (std::vector<Span>{{0, 0, 0}, {1, 0, 0}}));
}

TEST(Rasterizer, HitTestIncludesTheCellRightOfARun) {
    agg::rasterizer ras;
    EXPECT_FALSE(ras.hit_test(0, 0));
    Rect(ras.get_outline(), 2 * kCell, kCell, 5 * kCell, 2 * kCell);  // cells 2..4 of row 1
    EXPECT_TRUE(ras.hit_test(3, 1));
    EXPECT_TRUE(ras.hit_test(5, 1));
    EXPECT_FALSE(ras.hit_test(6, 1));
    EXPECT_FALSE(ras.hit_test(1, 1));
    EXPECT_FALSE(ras.hit_test(3, 0));
    EXPECT_FALSE(ras.hit_test(3, 2));
    // Partly covered cells, either way round.
    for (bool reversed : {false, true}) {
        const int x0 = 2 * kCell + 100, x1 = 2 * kCell + 200;
        Rect(ras.get_outline(), reversed ? x1 : x0, kCell, reversed ? x0 : x1, 2 * kCell);
        EXPECT_TRUE(ras.hit_test(2, 1)) << reversed;
        EXPECT_FALSE(ras.hit_test(3, 1)) << reversed;
    }
}

TEST(Rasterizer, DefaultGammaHoldsItsFixedEntries) {
    const unsigned char first[32] = {0, 0,  1,  1,  2,  2,  3,  4,  4,  5,  5,  6,  7,  7,  8,  8,
                                     9, 10, 10, 11, 11, 12, 13, 13, 14, 14, 15, 16, 16, 17, 18, 18};
    const unsigned char sixteenth[16] = {0,  9,   19,  29,  39,  49,  60,  72,
                                         85, 100, 116, 134, 154, 177, 202, 229};
    const unsigned char last[16] = {229, 230, 232, 234, 236, 237, 239, 241,
                                    242, 244, 246, 248, 249, 251, 253, 255};
    const unsigned char* g = agg::rasterizer::s_default_gamma;
    for (int i = 0; i < 32; ++i)
        EXPECT_EQ(g[i], first[i]) << i;
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(g[16 * i], sixteenth[i]) << 16 * i;
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(g[240 + i], last[i]) << 240 + i;
    for (int i = 1; i < 256; ++i)
        EXPECT_LE(g[i - 1], g[i]) << i;
    agg::rasterizer ras;
    EXPECT_EQ(std::string(ras.gamma_table(), ras.gamma_table() + 256), std::string(g, g + 256));
}

TEST(Rasterizer, GammaPowerLawTruncates) {
    agg::rasterizer ras;
    ras.gamma(1.3);
    EXPECT_EQ(ras.gamma_table()[1], 0);
    EXPECT_EQ(ras.gamma_table()[128], 104);
    EXPECT_EQ(ras.gamma_table()[255], 255);
    ras.gamma(-2.0);  // infinities and values beyond 64 bits must not trap
    EXPECT_EQ(ras.gamma_table()[0], 0);
    EXPECT_EQ(ras.gamma_table()[255], 255);
}

// Winding number of point (px, py) for the closed polygon pts (in cells).
int Winding(const std::vector<std::pair<double, double>>& pts, double px, double py) {
    int w = 0;
    for (size_t i = 0; i < pts.size(); ++i) {
        const auto [x1, y1] = pts[i];
        const auto [x2, y2] = pts[(i + 1) % pts.size()];
        if ((y1 <= py) != (y2 <= py)) {
            const double x = x1 + (py - y1) * (x2 - x1) / (y2 - y1);
            if (x > px) w += y2 > y1 ? 1 : -1;
        }
    }
    return w;
}

double EdgeDistance(const std::vector<std::pair<double, double>>& pts, double px, double py) {
    double best = 1e300;
    for (size_t i = 0; i < pts.size(); ++i) {
        const auto [x1, y1] = pts[i];
        const auto [x2, y2] = pts[(i + 1) % pts.size()];
        const double dx = x2 - x1, dy = y2 - y1;
        const double len2 = dx * dx + dy * dy;
        double t = len2 > 0 ? ((px - x1) * dx + (py - y1) * dy) / len2 : 0;
        t = std::fmax(0.0, std::fmin(1.0, t));
        best = std::fmin(best, std::hypot(px - (x1 + t * dx), py - (y1 + t * dy)));
    }
    return best;
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
            if (i == 0) {
                ras.get_outline().move_to(x, y);
            } else {
                ras.get_outline().line_to(x, y);
            }
        }
        std::set<std::pair<int, int>> occupied;
        for (const Span& r : Sweep(ras, 30, 30)) {
            ASSERT_LE(r.first, r.last);
            for (int x = r.first; x <= r.last; ++x) {
                ASSERT_TRUE(occupied.insert({r.row, x}).second) << "cell emitted twice";
            }
        }
        for (int y = -1; y <= 31; ++y) {
            for (int x = -1; x <= 31; ++x) {
                const double cx = x + 0.5, cy = y + 0.5;
                if (EdgeDistance(pts, cx, cy) < 0.75) continue;
                const int w = Winding(pts, cx, cy);
                const bool inside = rule == 1 ? (w % 2 != 0) : (w != 0);
                const bool in_target = x >= 0 && x < 30 && y >= 0 && y < 30;
                EXPECT_EQ(occupied.count({y, x}) == 1, inside && in_target)
                    << "cell " << x << "," << y << " winding " << w;
            }
        }
    }
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
        SCOPED_TRACE("polygon " + std::to_string(k));
        agg::rasterizer ras;
        ras.get_outline().move_to(polygons[k][0].first, polygons[k][0].second);
        for (size_t i = 1; i < polygons[k].size(); ++i) {
            ras.get_outline().line_to(polygons[k][i].first, polygons[k][i].second);
        }
        for (const Span& r : Sweep(ras, 5000, 5000)) {
            ASSERT_GE(r.row, 0);
            ASSERT_LT(r.row, 5000);
            ASSERT_GE(r.first, 0);
            ASSERT_LE(r.first, r.last);
            ASSERT_LT(r.last, 5000);
        }
    }
}

}  // namespace
