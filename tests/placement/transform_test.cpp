#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "placement/Transform.h"

namespace {

std::vector<double> Extent(const CDT& dt) {
    return {dt.resolution, dt.minX, dt.minY, dt.maxX, dt.maxY};
}

TEST(Transform, FitsExtentToTheDeviceProportionsAndRefitsOnANewRect) {
    CDT dt;
    FitDeviceRect(dt, 10, 20, 110, 70);
    FitMapExtent(dt, 0, 0, 1000, 1000);
    EXPECT_EQ(Extent(dt), (std::vector<double>{20, -500, 0, 1500, 1000}));
    FitDeviceRect(dt, 0, 0, 200, 50);  // refits the held extent -500..1500 x 0..1000
    EXPECT_EQ(dt.originX, 0);
    EXPECT_EQ(dt.width, 200);
    EXPECT_EQ(Extent(dt), (std::vector<double>{20, -1500, 0, 2500, 1000}));
}

TEST(Transform, ZeroAndWrappedSizesStoreWhatTheArithmeticGives) {
    CDT fresh;
    FitDeviceRect(fresh, 0, 0, 100, 50);
    EXPECT_EQ(Extent(fresh), (std::vector<double>{0, 0, 0, 0, 0}));
    CDT empty;
    FitDeviceRect(empty, 5, 5, 5, 5);
    EXPECT_TRUE(std::isnan(empty.resolution));
    FitMapExtent(empty, 0, 0, 10, 10);
    EXPECT_TRUE(std::isinf(empty.resolution));
    EXPECT_TRUE(std::isnan(empty.minX));
    CDT dt;  // sizes are 32-bit differences
    FitDeviceRect(dt, INT32_MIN, 0, INT32_MAX, -7);
    EXPECT_EQ(dt.originX, INT32_MIN);
    EXPECT_EQ(dt.width, -1);
    EXPECT_EQ(dt.height, -7);
}

TEST(Transform, MapToCellTruncatesTowardZero) {
    CDT dt;
    dt.minX = 1000;
    dt.maxY = 2000;
    dt.resolution = 2;
    EXPECT_EQ(MapToCellX(dt, 1003), 1);
    EXPECT_EQ(MapToCellY(dt, 1995), 2);
    EXPECT_EQ(MapToCellX(dt, 999), 0);
    EXPECT_EQ(MapToCellY(dt, 2001), 0);
    EXPECT_EQ(MapToCellX(dt, 997), -1);
    dt.originX = 5;
    EXPECT_EQ(MapToCellX(dt, 1003), 6);
    // NaN and values outside 32 bits give the most negative int.
    const std::pair<double, int> rows[] = {
        {2147483647.9, INT32_MAX}, {-2147483648.9, INT32_MIN}, {-7.9, -7},
        {2147483648.0, INT32_MIN}, {-1e300, INT32_MIN},        {NAN, INT32_MIN}};
    for (auto [v, cell] : rows)
        EXPECT_EQ(kxac::TruncToInt(v), cell) << v;
    CDT zero;  // resolution 0: infinities and NaN
    EXPECT_EQ(MapToCellX(zero, 5), INT32_MIN);
    EXPECT_EQ(MapToCellX(zero, 0), INT32_MIN);
}

TEST(GrowBuffer, GrowsToExactlyTheLargestSizeKeepingTheBytes) {
    CGrowBuffer b;
    EXPECT_EQ(b.data, nullptr);
    EXPECT_EQ(std::make_pair(b.size, b.capacity), std::make_pair(0u, 0u));
    ASSERT_TRUE(b.SetSize(1));
    EXPECT_NE(b.data, nullptr);
    ASSERT_TRUE(b.SetSize(40));
    std::memset(b.data, 0x5A, 40);
    unsigned char* const held = b.data;
    ASSERT_TRUE(b.SetSize(8));
    EXPECT_EQ(b.data, held);
    EXPECT_EQ(std::make_pair(b.size, b.capacity), std::make_pair(8u, 40u));
    ASSERT_TRUE(b.SetSize(100));
    EXPECT_EQ(std::make_pair(b.size, b.capacity), std::make_pair(100u, 100u));
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(b.data[i], 0x5A) << i;
    ASSERT_TRUE(b.SetSize(0));
    EXPECT_EQ(std::make_pair(b.size, b.capacity), std::make_pair(0u, 100u));
}

}  // namespace
