#include <gtest/gtest.h>

#include <climits>

#include "index/RLEIndex.h"

TEST(RleRun, LengthWrapsAndPackingPutsStartLow) {
    EXPECT_EQ(RLE(5, 3).Length(), -1);
    EXPECT_EQ(RLE(INT_MIN, INT_MAX).Length(), 0);
    const RLE packed(static_cast<long long>((7ULL << 32) | 2ULL));
    EXPECT_EQ(packed.start, 2);
    EXPECT_EQ(packed.end, 7);
}

TEST(RleRun, CompareConnectAndTouchStayExactAtIntegerLimits) {
    const RLE r(3, 6);
    const int expected[][2] = {{1, -2}, {2, -1}, {4, 0}, {7, 1}, {9, 3}};
    for (const auto& e : expected)
        EXPECT_EQ(r.Compare(e[0]), e[1]) << "x " << e[0];
    EXPECT_LT(RLE(INT_MAX, INT_MAX).Compare(INT_MIN), 0);
    EXPECT_GT(RLE(INT_MIN, INT_MIN).Compare(INT_MAX), 0);
    EXPECT_FALSE(RLE(INT_MIN, INT_MIN).IsConnect(INT_MAX));
    EXPECT_FALSE(RLE(INT_MIN, 0).IsConnect(RLE(5, INT_MAX)));
    EXPECT_TRUE(r.IsConnect(RLE(7, 9)));
    EXPECT_FALSE(r.IsConnect(RLE(6, 9)));
    EXPECT_FALSE(r.IsTouch(RLE(0, 10)));
    EXPECT_TRUE(r.IsTouch(RLE(0, 4)));
    EXPECT_FALSE(r == RLE(0, 10));
    EXPECT_FALSE(CFindRLE(RLE(3, 9))(RLE(0, 20)));
    EXPECT_TRUE(CFindRLE(RLE(3, 9))(RLE(9, 20)));
    RLE low(INT_MIN, 0);
    low.Union(INT_MAX);
    EXPECT_EQ(low.end, 0);
}
