// Boxes, the avoid object's offsets and extents, and the transform from map to cells.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "placement/AvoidContainer.h"

namespace {

TEST(Box, EmptyBoxCentreIntersectAndUnion) {
    EXPECT_EQ(Box(), Box(1, 1, -1, -1));
    EXPECT_EQ(std::make_pair(Box(5, 5, 5, 7).Width(), Box(5, 5, 5, 7).Height()),
              std::make_pair(1, 3));
    const Envelope none;
    EXPECT_EQ((std::vector<double>{none.x1, none.y1, none.x2, none.y2}), std::vector<double>(4));
    // Centres truncate toward zero.
    EXPECT_EQ(std::make_pair(Box(-3, -3, 0, 0).Center(), Box(0, 0, 3, 3).Center()),
              std::make_pair(Location(-1, -1), Location(1, 1)));
    // A shared edge cell overlaps; an inverted box meets what no comparison separates it from;
    // operations ignore validity.
    const Box a(0, 0, 9, 9);
    EXPECT_EQ((std::vector<bool>{a.IsIntersect(Box(9, 9, 20, 20)), a.IsIntersect(Box(0, 10, 9, 20)),
                                 a.IsIntersect(Box(8, 8, 2, 2))}),
              (std::vector<bool>{true, false, true}));
    EXPECT_EQ(a.Intersect(Box(20, 20, 30, 30)), Box(20, 20, 9, 9));
    Box b(10, 10, 20, 20), empty;
    b.Union(Box());
    empty.Union(Box(10, 10, 20, 20));
    EXPECT_EQ(std::make_pair(b, empty), std::make_pair(Box(1, 1, 20, 20), Box(1, 1, 20, 20)));
    EXPECT_EQ(Box(11, 22, 13, 24).RevOffset(Location(10, 20)), Box(1, 2, 3, 4));
    EXPECT_EQ(Location(3, 4).RevOffset(Location(1, 1)).Offset(2, -5), Location(4, -2));
    EXPECT_TRUE(Location(4, -1) != Location(4, -2) && Box(0, 0, 5, 5) != Box(0, 1, 5, 5));
}

TEST(AvoidObject, ResetOffsetsAndExtents) {
    CAvoidObject obj;
    // Never reset: no offsets at all, nor cells.
    EXPECT_EQ(std::make_pair(obj.Offset(), obj.HasRuns()), std::make_pair(Location(0, 0), false));
    obj.StringID("label-7"), obj.ID(42), obj.PlacedState(1);
    obj.AddRLE(2, 1, 4);
    obj.RecordMaxRLE();
    obj.Reset();  // as a pooled object is handed out again, which the container rules check
    EXPECT_EQ(std::make_tuple(obj.MaxExtent(), obj.IsValid(), obj.StringID()),
              std::make_tuple(Box(), false, std::string("label-7")));
    obj.AddBox(Box(0, 0, 5, 5));
    obj.RecordMaxRLE();  // empty grid: columns from INT_MAX down; boxes take part in no extent
    EXPECT_EQ(std::make_pair(obj.RLEMaxExtent().left, obj.IsValid()),
              std::make_pair(INT_MAX, false));
    for (int row = 40; row <= 45; ++row)
        obj.AddRLE(row, 50, 60);
    obj.RecordMaxRLE();
    obj.OffsetCollection().emplace_back(5, 7);
    obj.OffsetIterator(obj.OffsetCollection().begin() + 1);
    EXPECT_EQ(std::make_pair(obj.RLEMaxExtent(), obj.MaxExtent()),
              std::make_pair(Box(55, 47, 65, 52), Box(6, 8, 65, 52)));
    // Clearing keeps the iterator's slot: past the end it reads (0, 0), refilled it reads again.
    obj.ClearOffset();
    EXPECT_EQ(std::make_pair(obj.Offset(), obj.OffsetCollection()),
              std::make_pair(Location(0, 0), std::vector<Location>(1)));
    obj.OffsetCollection().emplace_back(9, 9);
    EXPECT_EQ(obj.Offset(), Location(9, 9));
}

// The map extent is fitted to the device rect, from its corner, and refitted when the rect
// changes. Map points and boxes (left unsorted) truncate toward zero; NaN, infinities and values
// past 32 bits give the most negative int.
TEST(Transform, FitsExtentToTheDeviceAndMapsTowardZero) {
    CDT dt;
    FitDeviceRect(dt, 10, 20, 110, 70);
    FitMapExtent(dt, 0, 0, 1000, 1000);
    EXPECT_EQ((std::vector<double>{dt.resolution, dt.minX, dt.maxX, dt.minY, dt.maxY}),
              (std::vector<double>{20, -500, 1500, 0, 1000}));
    EXPECT_EQ(std::make_pair(MapToCellX(dt, 0), MapToCellY(dt, 1000)), std::make_pair(35, 20));
    FitDeviceRect(dt, 0, 0, 200, 50);  // refits the held extent -500..1500 x 0..1000
    EXPECT_EQ(std::make_pair(dt.minX, dt.maxX), std::make_pair(-1500.0, 2500.0));
    CAvoidObject obj;
    obj.AddBox(Envelope{1, 2, 3, 4});  // no transform: nothing
    obj.DT(&dt);
    obj.AddBox(Envelope{-1470, 990, -1530, 1010});  // (1.5, 0.5) to (-1.5, -0.5)
    obj.AddBox(Envelope{std::nan(""), -1e300, 1e300, 990});
    EXPECT_EQ(obj.Boxes(), (std::vector<Box>{Box(1, 0, -1, 0), Box(INT_MIN, INT_MIN, INT_MIN, 0)}));
    EXPECT_EQ((std::vector<int>{kxac::TruncToInt(2147483647.9), kxac::TruncToInt(-2147483648.9),
                                kxac::TruncToInt(2147483648.0)}),
              (std::vector<int>{INT_MAX, INT_MIN, INT_MIN}));
}

// The scratch buffer keeps its bytes as it grows, shrinks without reallocating, and frees what it
// holds, a single byte included (the sanitized build reports a leak).
TEST(GrowBuffer, GrowsKeepingItsBytesAndFreesEveryBlock) {
    CGrowBuffer one, grown;
    ASSERT_TRUE(one.SetSize(1) && grown.SetSize(2));
    one.data[0] = grown.data[0] = 42;
    ASSERT_TRUE(grown.SetSize(300) && grown.SetSize(7));
    EXPECT_EQ(
        std::make_tuple(+one.data[0], one.capacity, +grown.data[0], grown.size, grown.capacity),
        std::make_tuple(42, 1u, 42, 7u, 300u));
}

}  // namespace
