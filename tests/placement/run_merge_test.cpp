// Runs against runs by merging rows, against the cell scan it replaces.
#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "reference_placement.h"
#include "test_support.h"

namespace {

// An object at one offset whose runs are given straight.
struct Runs {
    CAvoidObject obj;
    explicit Runs(Location offset) {
        obj.Reset();
        obj.OffsetCollection()[0] = offset;
    }
};

}  // namespace

TEST(RunMerge, CellsOutsideTheRecordedExtentsDoNotCollide) {
    Runs a({0, 0}), b({0, 0});
    a.obj.AddRLE(5, 0, 2);
    a.obj.AddRLE(5, 14, 15);
    a.obj.RecordMaxRLE();
    a.obj.AddRLE(5, 16, 30);  // after the extent: never seen
    b.obj.AddRLE(5, 12, 12);
    b.obj.AddRLE(5, 25, 25);
    b.obj.RecordMaxRLE();
    EXPECT_FALSE(a.obj.IsIntersect(&b.obj));
    EXPECT_FALSE(reference::Intersect(a.obj, b.obj));
    // Shifted onto column 14, b's first cell meets a.
    b.obj.OffsetCollection()[0] = Location(2, 0);
    EXPECT_TRUE(a.obj.IsIntersect(&b.obj));
}

TEST(RunMerge, OffsetsShiftBothGridsBeforeTheyMeet) {
    Runs a({-7, 3}), b({4, -2});
    a.obj.AddRLE(10, 20, 24);
    a.obj.RecordMaxRLE();
    // b's run lands on canvas row 13, columns 14 .. 16: a's cells are columns 13 .. 17.
    b.obj.AddRLE(15, 10, 12);
    b.obj.RecordMaxRLE();
    EXPECT_TRUE(a.obj.IsIntersect(&b.obj));
    b.obj.OffsetCollection()[0] = Location(9, -2);  // columns 19 .. 21: right of a
    EXPECT_FALSE(a.obj.IsIntersect(&b.obj));
    b.obj.OffsetCollection()[0] = Location(4, -1);  // row 14: below a
    EXPECT_FALSE(a.obj.IsIntersect(&b.obj));
}

TEST(RunMerge, AgreesWithTheCellScanOnRandomGrids) {
    const uint32_t seed = 7031;
    std::mt19937 rng(seed);
    auto uniform = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    int hits = 0;
    for (int round = 0; round < 3000; ++round) {
        const bool far = uniform(0, 19) == 0;
        auto offset = [&]() -> Location {
            if (far)
                return {uniform(0, 1) ? INT_MAX - uniform(0, 40) : (1 << 29) + uniform(-3, 3),
                        uniform(-4, 4)};
            return {uniform(-12, 12), uniform(-6, 6)};
        };
        Runs a(offset()), b(offset());
        for (Runs* r : {&a, &b}) {
            const int spans = uniform(1, 25);
            for (int i = 0; i < spans; ++i) {
                const int first = uniform(-10, 40);
                r->obj.AddRLE(uniform(0, 8), first, first + uniform(0, 6));
                if (uniform(0, 9) == 0) r->obj.RecordMaxRLE();
            }
            if (uniform(0, 3) != 0) r->obj.RecordMaxRLE();
        }
        const bool expected = reference::Intersect(a.obj, b.obj);
        hits += expected;
        ASSERT_EQ(a.obj.IsIntersect(&b.obj), expected) << "seed " << seed << ", round " << round;
    }
    // Both answers must occur often for the comparison to mean anything.
    EXPECT_GT(hits, 300);
    EXPECT_LT(hits, 2700);
}
