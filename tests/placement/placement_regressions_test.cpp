// Faults found once, each kept as the test that caught it, and the fast paths of the placement
// against the plain ones they replace.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "placement/AvoidContainer.h"
#include "placement/Occupancy.h"
#include "test_support.h"

namespace {

using testing_support::RunsText;
using testing_support::SetCanvas;

void AddSquare(CAvoidObject* obj, int x, int y, int size) {
    int ring[] = {x, y, x + size, y, x + size, y + size, x, y + size};
    obj->AddRing(ring, 8);
}

// The sequence that once left a freed object in the index of placed objects: a placed object is
// recycled, handed out again and deleted by the caller, then the container is used and destroyed.
TEST(ObjectLifetime, RecycledPlacedObjectHandedOutAndDeletedIsNeverReadAgain) {
    for (const bool addAfter : {true, false}) {
        auto* c = new CPriorityAvoidContainer();
        SetCanvas(*c->DT(), 64, 64);
        CAvoidObject* a = c->NewObject();
        AddSquare(a, 10, 10, 8);
        c->Add(a, false);
        c->Recycle(a);
        ASSERT_EQ(c->NewObject(), a);
        delete a;
        if (addAfter) {
            CAvoidObject* other = c->NewObject();
            AddSquare(other, 12, 12, 8);
            c->Add(other, false);
            EXPECT_EQ(other->PlacedState(), CAvoidObject::kPlaced);  // the deleted one is gone
        }
        delete c;
    }
}

// The objects of a container draw with one rasterizer, but the limit on cell blocks stays each
// object's own: an object whose polygon ran out of blocks draws nothing more, its neighbours do.
TEST(RleRaster, BlockLimitStaysWithTheObjectThatReachedIt) {
    CPriorityAvoidContainer c;
    c.DT()->width = 64;
    c.DT()->height = 32000;
    CAvoidObject* greedy = c.NewObject();
    CAvoidObject* other = c.NewObject();
    // A zigzag whose edges cross every row: more cells than 1024 blocks of 4096 hold.
    std::vector<int> zigzag;
    for (int i = 0; i < 300; ++i)
        zigzag.insert(zigzag.end(), {i % 60, i % 2 == 0 ? 0 : 31999});
    greedy->AddRing(zigzag.data(), static_cast<int>(zigzag.size()));
    int square[] = {10, 10, 20, 10, 20, 20, 10, 20};
    int triangle[] = {10, 10, 30, 10, 10, 30};
    other->AddRing(triangle, 6);
    EXPECT_TRUE(other->Grid().IsExist(12, 12));
    greedy->Reset();
    greedy->AddRing(triangle, 6);
    EXPECT_TRUE(greedy->Grid().IsEmpty());
    other->AddRing(square, 8);
    EXPECT_TRUE(other->Grid().IsExist(19, 19));
    delete greedy;
    delete other;
}

// Rectangles on cell corners (rings in either direction, strokes along an axis with a whole
// half-width) skip the sweep. Their runs must be exactly those of the sweep, also on top of runs
// already there: the same rectangle with an extra corner on two sides goes through the sweep.
// Shapes that are nearly such rectangles must go through the sweep too.
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
        if (uniform(0, 1) == 0) {
            int tri[] = {uniform(-10, 130), uniform(-10, 100), uniform(-10, 130),
                         uniform(-10, 100), uniform(-10, 130), uniform(-10, 100)};
            fast->AddRing(tri, 6);
            model->AddRing(tri, 6);
        }
        const int x0 = uniform(-20, 140), x1 = uniform(-20, 140);
        const int y0 = uniform(-20, 110), y1 = uniform(-20, 110);
        const int mx = x0 + (x1 - x0) / 2, my = y0 + (y1 - y0) / 2;
        const int kind = uniform(0, 5);
        int slow[] = {x0, y0, mx, y0, x1, y0, x1, y1, x0, y1, x0, my};
        // Shapes that only look like rectangles: a pentagon closing on the top side, and a
        // quadrilateral whose second corner takes its row from the first one's column. Their
        // models carry one more corner on a side.
        int penta[] = {x0, y0, x1, y0, x1, y1, x0, y1, mx, y0};
        int penta6[] = {x0, y0, x1, y0, x1, my, x1, y1, x0, y1, mx, y0};
        int quad[] = {x0, y0, x1, x0, x1, y1, x0, y1};
        int quad5[] = {x0, y0, x1, x0, x1, y1, x0, y1, x0, my};
        model->AddRing(kind == 4 ? penta6 : kind == 5 ? quad5 : slow, kind == 5 ? 10 : 12);
        int ring[] = {x0, y0, x1, y0, x1, y1, x0, y1, x0, y0};
        int back[] = {x0, y0, x0, y1, x1, y1, x1, y0};
        int across[] = {x0, my, x1, my}, down[] = {mx, y0, mx, y1};
        // A stroke works only where its centre line meets the canvas.
        const bool inside = std::max(x0, x1) >= 0 && std::min(x0, x1) <= w &&
                            std::max(y0, y1) >= 0 && std::min(y0, y1) <= h;
        if (kind >= 4) {
            fast->AddRing(kind == 4 ? penta : quad, kind == 4 ? 10 : 8);
        } else if (kind == 2 && inside && my >= 0 && my <= h && (y1 - y0) % 2 == 0 && y1 != y0) {
            fast->AddLine(across, 4, std::abs(y1 - y0) / 2);
        } else if (kind == 3 && inside && mx >= 0 && mx <= w && (x1 - x0) % 2 == 0 && x1 != x0) {
            fast->AddLine(down, 4, std::abs(x1 - x0) / 2);
        } else {
            fast->AddRing(kind == 1 ? back : ring, kind == 0 ? 10 : 8);
        }
        ASSERT_EQ(RunsText(*fast), RunsText(*model))
            << x0 << "," << y0 << " " << x1 << "," << y1 << " kind " << kind;
        c.Recycle(fast);
        c.Recycle(model);
    }
}

// The canvas bitmap against a plain array of cells: spans across word boundaries, at the last
// column of a row whose width is no multiple of 64, and clearing of the rows drawn in.
// Rectangles on cell corners, either way round and as axis strokes, never reach the rasterizer:
// the container's outline keeps what it held. Other shapes are swept.
TEST(CellRectangle, RectanglesOnCellCornersSkipTheSweep) {
    CPriorityAvoidContainer c;
    testing_support::SetCanvas(*c.DT(), 100, 100);
    const agg::outline& outline = c.DT()->raster.get_outline();
    CAvoidObject* obj = c.NewObject();
    int horizontalFirst[] = {10, 10, 30, 10, 30, 20, 10, 20};
    int verticalFirst[] = {40, 10, 40, 20, 60, 20, 60, 10, 40, 10};
    int stroke[] = {10, 50, 60, 50};
    obj->AddRing(horizontalFirst, 8);
    obj->AddRing(verticalFirst, 10);
    obj->AddLine(stroke, 4, 3);
    EXPECT_EQ(outline.cell_count(), 0u);
    EXPECT_EQ(testing_support::CellsOf(*obj).size(), 20u * 10 + 20 * 10 + 50 * 6);
    int triangle[] = {10, 70, 30, 70, 10, 90};
    obj->AddRing(triangle, 6);
    EXPECT_GT(outline.cell_count(), 0u);
    c.Recycle(obj);
}

TEST(Occupancy, SpansMatchAnArrayOfCellsAcrossWordsAndClears) {
    std::mt19937 rng(7);
    for (const long long columns : {1LL, 63LL, 64LL, 65LL, 200LL}) {
        const long long rows = 5;
        kxac::Occupancy bits;
        bits.Cover(columns, rows);
        ASSERT_EQ(std::make_pair(bits.Columns(), bits.Rows()), std::make_pair(columns, rows));
        std::vector<bool> cells(static_cast<size_t>(columns * rows));
        const auto pick = [&](long long n) {
            return std::uniform_int_distribution<long long>(0, n - 1)(rng);
        };
        for (int round = 0; round < 300; ++round) {
            const long long row = pick(rows);
            long long a = pick(columns), b = pick(columns);
            if (a > b) std::swap(a, b);
            bool expected = false;
            for (long long x = a; x <= b; ++x)
                expected = expected || cells[static_cast<size_t>(row * columns + x)];
            ASSERT_EQ(bits.Any(row, a, b), expected)
                << columns << " " << row << " " << a << " " << b;
            for (long long x = a; round % 3 == 0 && x <= b; ++x)
                cells[static_cast<size_t>(row * columns + x)] = true;
            if (round % 3 == 0) bits.Set(row, a, b);
        }
        bits.Clear();
        for (long long row = 0; row < rows; ++row)
            EXPECT_FALSE(bits.Any(row, 0, columns - 1));
    }
}

TEST(Occupancy, LargeCanvasesAreCoveredOnlyInPart) {
    kxac::Occupancy bits;
    bits.Cover(40000, 40000);
    EXPECT_LE(static_cast<size_t>((bits.Columns() + 63) / 64 * bits.Rows()),
              kxac::Occupancy::kMaxWords);
    EXPECT_EQ(
        std::make_pair(bits.Covers(0, 0, 39999, 39999), bits.Covers(0, 0, 39999, bits.Rows() - 1)),
        std::make_pair(false, true));
    bits.Cover(0, 100);
    EXPECT_FALSE(bits.Covers(0, 0, 0, 0));
}

}  // namespace
