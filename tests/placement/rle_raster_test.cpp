#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

#include "placement/AvoidContainer.h"
#include "placement/RLERaster.h"

namespace {

constexpr int kCell = agg::subpixel_scale;
using Runs = std::vector<std::tuple<int, int, int>>;

// The part of an avoid object a raster needs: a sink for runs and a count of resizes.
class RecordingRaster : public CRLERaster {
public:
    void AddRLE(int row, int first, int last) override { runs.emplace_back(row, first, last); }
    void OnResizeConvas() override {
        ++resizes;
        CRLERaster::OnResizeConvas();
    }
    unsigned Width() const { return width(); }
    unsigned Height() const { return height(); }
    agg::rasterizer& Ras() { return Rasterizer(); }

    // The cell rectangle (x0, y0)-(x1, y1), corners on cell boundaries.
    Runs Draw(int x0, int y0, int x1, int y1) {
        agg::outline& o = Rasterizer().get_outline();
        o.reset();
        o.move_to(x0 * kCell, y0 * kCell);
        o.line_to(x1 * kCell, y0 * kCell);
        o.line_to(x1 * kCell, y1 * kCell);
        o.line_to(x0 * kCell, y1 * kCell);
        runs.clear();
        Sweep();
        return runs;
    }

    Runs runs;
    int resizes = 0;
};

TEST(RleRaster, EvenOddWithGammaAndACanvasThatFollowsTheTransform) {
    RecordingRaster r;
    EXPECT_EQ(r.DT(), nullptr);
    CDT dt;
    r.DT(&dt);
    // The transform's rasterizer, set for the raster whatever it held before.
    dt.raster.fill_rule(0);
    dt.raster.gamma(1.0);
    EXPECT_EQ(r.Ras().fill_rule(), 1);
    EXPECT_EQ(r.Ras().gamma_table()[128], 104);
    EXPECT_TRUE(r.Draw(1, 1, 3, 3).empty());  // a zero canvas clips everything
    dt.width = 100;
    dt.height = 50;
    r.DT(&dt);
    EXPECT_EQ(r.resizes, 2);
    EXPECT_EQ(std::make_pair(r.Width(), r.Height()), std::make_pair(100u, 50u));
    dt.width = (int64_t{1} << 32) + 7;
    dt.height = -1;
    CRLERaster& base = r;
    base.OnResizeConvas();
    EXPECT_EQ(std::make_pair(r.Width(), r.Height()), std::make_pair(7u, 0xFFFFFFFFu));
    base.DT(nullptr);
    EXPECT_EQ(r.resizes, 4);
    EXPECT_EQ(std::make_pair(r.Width(), r.Height()), std::make_pair(0x7FFFFFFFu, 0x7FFFFFFFu));
}

TEST(RleRaster, RowRecordNamesTheRowAndTheSink) {
    RecordingRaster r;
    const unsigned char* five = r.row(5);
    const unsigned char* seven = r.row(7);
    EXPECT_EQ(five, seven);
    const auto* rec = reinterpret_cast<const agg::run_row<CRLECreate>*>(seven);
    EXPECT_EQ(rec->row_index, 7u);
    EXPECT_EQ(rec->row_sink, static_cast<CRLECreate*>(&r));
}

TEST(RleRaster, SweepSendsClippedRunsToAddRle) {
    RecordingRaster r;
    CDT dt;
    dt.width = 10;
    dt.height = 4;
    r.DT(&dt);
    EXPECT_EQ(r.Draw(-2, 2, 12, 6), (Runs{{2, 0, 9}, {3, 0, 9}}));
    EXPECT_EQ(r.Draw(3, 1, 5, 2), (Runs{{1, 3, 4}}));
    EXPECT_TRUE(r.Draw(11, 1, 15, 2).empty());
}

}  // namespace
