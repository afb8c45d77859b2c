#include <gtest/gtest.h>

#include <climits>
#include <limits>

#include "placement/AvoidContainer.h"

TEST(AvoidObject, ResetLeavesOneZeroOffsetAndNoExtentButTheStringId) {
    CAvoidObject obj;
    EXPECT_EQ(obj.Offset(), Location(0, 0));  // never reset: no offsets at all
    obj.StringID("label-7");
    obj.ID(42);
    obj.PlacedState(1);
    obj.AddRLE(2, 1, 4);
    obj.RecordMaxRLE();
    obj.Reset();
    EXPECT_EQ(obj.OffsetCollection(), std::vector<Location>{Location()});
    EXPECT_EQ(obj.MaxExtent(), Box());
    EXPECT_FALSE(obj.IsValid());
    EXPECT_EQ(obj.PlacedState(), 0);
    EXPECT_EQ(obj.ID(), 0);
    EXPECT_TRUE(obj.Grid().IsEmpty());
    EXPECT_EQ(obj.StringID(), "label-7");
}

TEST(AvoidObject, ExtentsFollowTheRunsAndTheOffset) {
    CAvoidObject obj;
    obj.Reset();
    obj.AddBox(Box(0, 0, 5, 5));
    obj.RecordMaxRLE();  // empty grid: columns from INT_MAX down to INT_MIN
    EXPECT_EQ(obj.RLEMaxExtent().left, INT_MAX);
    EXPECT_FALSE(obj.IsValid());  // boxes take part in no extent
    for (int row = 40; row <= 45; ++row)
        obj.AddRLE(row, 50, 60);
    obj.RecordMaxRLE();
    obj.OffsetCollection().emplace_back(5, 7);
    obj.OffsetIterator(obj.OffsetCollection().begin() + 1);
    EXPECT_EQ(obj.RLEMaxExtent(), Box(55, 47, 65, 52));
    EXPECT_EQ(obj.MaxExtent(), Box(6, 8, 65, 52));
    EXPECT_TRUE(obj.IsValid());
    // Clearing keeps the iterator's slot: past the end it reads (0, 0), refilled it reads again.
    obj.ClearOffset();
    EXPECT_EQ(obj.OffsetCollection(), std::vector<Location>{Location()});
    EXPECT_EQ(obj.Offset(), Location(0, 0));
    obj.OffsetCollection().emplace_back(9, 9);
    EXPECT_EQ(obj.Offset(), Location(9, 9));
}

TEST(AvoidObject, MapPointsTruncateTowardZero) {
    CDT dt;
    dt.width = dt.height = 100;
    dt.minX = 1000;
    dt.maxY = 2000;
    dt.resolution = 2;
    CAvoidObject obj;
    obj.Reset();
    obj.AddBox(Envelope{1, 2, 3, 4});  // no transform: nothing
    EXPECT_TRUE(obj.Boxes().empty());
    obj.DT(&dt);
    // (1003, 1995) is cell (1, 2); (999, 2001) is (-0.5, -0.5), truncated to (0, 0): the corners
    // are not sorted.
    obj.AddBox(Envelope{1003, 1995, 999, 2001});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    obj.AddBox(Envelope{nan, -1e300, 1e300, 1990});
    EXPECT_EQ(obj.Boxes(), (std::vector<Box>{Box(1, 2, 0, 0), Box(INT_MIN, INT_MIN, INT_MIN, 5)}));
}
