#include "placement/Geometry.h"

#include <gtest/gtest.h>

#include <array>

TEST(Box, DefaultIsTheEmptyBoxAndCenterTruncatesTowardZero) {
    EXPECT_EQ(Box(), Box(1, 1, -1, -1));
    EXPECT_FALSE(Box().IsValid());
    EXPECT_EQ(Box().Width(), -1);
    EXPECT_EQ(Box().Height(), -1);
    EXPECT_TRUE(Box(5, 5, 5, 5).IsValid());
    EXPECT_EQ(Box(5, 5, 5, 5).Width(), 1);
    EXPECT_EQ(Box(5, 5, 5, 5).Center(), Location(5, 5));
    EXPECT_EQ(Box(-3, -3, 0, 0).Center(), Location(-1, -1));
    EXPECT_EQ(Box(0, 0, 3, 3).Center(), Location(1, 1));
    const Envelope e;
    EXPECT_EQ((std::array<double, 4>{e.x1, e.y1, e.x2, e.y2}), (std::array<double, 4>{}));
}

TEST(Box, IntersectTestsAndOperationsIgnoreValidity) {
    const Box a(0, 0, 9, 9);
    EXPECT_TRUE(a.IsIntersect(Box(9, 9, 20, 20)));  // a shared edge cell overlaps
    EXPECT_FALSE(a.IsIntersect(Box(10, 0, 20, 9)));
    EXPECT_FALSE(a.IsIntersect(Box(0, 10, 9, 20)));
    // An inverted box meets what no comparison separates it from.
    EXPECT_TRUE(a.IsIntersect(Box(8, 8, 2, 2)));
    EXPECT_TRUE(a.IsDisjoin(Box()));
    EXPECT_EQ(a.Intersect(Box(20, 20, 30, 30)), Box(20, 20, 9, 9));
    Box empty;
    empty.Union(Box(10, 10, 20, 20));
    EXPECT_EQ(empty, Box(1, 1, 20, 20));
    Box b(10, 10, 20, 20);
    b.Union(Box());
    EXPECT_EQ(b, Box(1, 1, 20, 20));
}

TEST(Box, OffsetAndRevOffsetAreInverse) {
    EXPECT_EQ(Box(1, 2, 3, 4).Offset(10, 20), Box(11, 22, 13, 24));
    EXPECT_EQ(Box(11, 22, 13, 24).RevOffset(Location(10, 20)), Box(1, 2, 3, 4));
    EXPECT_EQ(Location(3, 4).RevOffset(Location(1, 1)), Location(2, 3));
    EXPECT_EQ(Location(3, 4).Offset(2, -5), Location(5, -1));
}
