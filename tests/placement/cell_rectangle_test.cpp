// Rectangles on cell corners are added without the sweep. Their runs must be exactly those of the
// sweep, also on top of runs already there (a row merge depends on the spans it is given): the
// same rectangle with an extra corner on two of its sides goes through the sweep and is the model.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

using testing_support::SetCanvas;

// The runs of every stored row, as written.
std::vector<std::vector<std::pair<int, int>>> Runs(const CAvoidObject& obj) {
    std::vector<std::vector<std::pair<int, int>>> rows;
    const CRLEIndexQuery& grid = obj.Grid();
    for (int row = grid.StartRow(); !grid.IsEmpty() && row <= grid.EndRow(); ++row) {
        rows.emplace_back();
        for (const RLE& run : *grid.RowRuns(row))
            rows.back().emplace_back(run.start, run.end);
    }
    return rows;
}

TEST(CellRectangle, RingsAndAxisStrokesGiveTheRunsOfTheSweep) {
    std::mt19937 rng(11);
    const auto uniform = [&](int lo, int hi) {
        return std::uniform_int_distribution<int>(lo, hi)(rng);
    };
    CPriorityAvoidContainer c;
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const int w = uniform(1, 120), h = uniform(1, 90);
        SetCanvas(*c.DT(), w, h);
        CAvoidObject* fast = c.NewObject();
        CAvoidObject* model = c.NewObject();
        // Runs already there, the same in both.
        if (uniform(0, 1) == 0) {
            int tri[] = {uniform(-10, 130), uniform(-10, 100), uniform(-10, 130),
                         uniform(-10, 100), uniform(-10, 130), uniform(-10, 100)};
            fast->AddRing(tri, 6);
            model->AddRing(tri, 6);
        }
        const int x0 = uniform(-20, 140), x1 = uniform(-20, 140);
        const int y0 = uniform(-20, 110), y1 = uniform(-20, 110);
        const int mx = x0 + (x1 - x0) / 2, my = y0 + (y1 - y0) / 2;
        // The model: corners in the middle of two sides keep it off the rectangle path.
        int slow[] = {x0, y0, mx, y0, x1, y0, x1, y1, x0, y1, x0, my};
        model->AddRing(slow, 12);
        switch (uniform(0, 3)) {
            case 0: {
                int ring[] = {x0, y0, x1, y0, x1, y1, x0, y1};
                fast->AddRing(ring, 8);
                break;
            }
            case 1: {
                int ring[] = {x0, y0, x0, y1, x1, y1, x1, y0, x0, y0};
                fast->AddRing(ring, 10);
                break;
            }
            default: {
                // A stroke along an axis through the middle of the rectangle, when its half
                // width is a whole number of cells.
                // A stroke whose centre line misses the canvas is skipped as a whole.
                const bool horizontal = uniform(0, 1) == 0;
                const int cx = x0 + (x1 - x0) / 2, cy = y0 + (y1 - y0) / 2;
                const bool across = std::max(x0, x1) >= 0 && std::min(x0, x1) <= w &&
                                    std::max(y0, y1) >= 0 && std::min(y0, y1) <= h;
                if (!across) {
                    int ring[] = {x1, y1, x0, y1, x0, y0, x1, y0};
                    fast->AddRing(ring, 8);
                } else if (horizontal && cy >= 0 && cy <= h && (y1 - y0) % 2 == 0 && y1 != y0) {
                    int line[] = {x0, y0 + (y1 - y0) / 2, x1, y0 + (y1 - y0) / 2};
                    fast->AddLine(line, 4, std::abs(y1 - y0) / 2);
                } else if (!horizontal && cx >= 0 && cx <= w && (x1 - x0) % 2 == 0 && x1 != x0) {
                    int line[] = {x0 + (x1 - x0) / 2, y0, x0 + (x1 - x0) / 2, y1};
                    fast->AddLine(line, 4, std::abs(x1 - x0) / 2);
                } else {
                    int ring[] = {x1, y1, x0, y1, x0, y0, x1, y0};
                    fast->AddRing(ring, 8);
                }
                break;
            }
        }
        ASSERT_EQ(Runs(*fast), Runs(*model)) << x0 << "," << y0 << " " << x1 << "," << y1;
        ASSERT_EQ(fast->RLEMaxExtent(), model->RLEMaxExtent());
        c.Recycle(fast);
        c.Recycle(model);
    }
}

}  // namespace
