#include <gtest/gtest.h>

#include "raster/agg.h"

namespace {

TEST(RenderingBuffer, NegativeStrideStartsAtTheLastRow) {
    unsigned char block[300];
    agg::rendering_buffer rb(nullptr, 0, 0, 0);
    rb.attach(block, 100, 3, -100);
    EXPECT_EQ(rb.row(0), block + 200);
    EXPECT_EQ(rb.row(1), block + 100);
    EXPECT_EQ(rb.row(2), block);
    const agg::rendering_buffer& cref = rb;
    EXPECT_EQ(cref.row(1), block + 100);
}

TEST(RenderingBuffer, SmallerAttachReusesRows) {
    unsigned char a[400], b[400];
    agg::rendering_buffer rb(a, 10, 4, 100);
    EXPECT_EQ(rb.row(3), a + 300);
    rb.attach(b, 10, 2, 50);
    EXPECT_EQ(rb.width(), 10u);
    EXPECT_EQ(rb.stride(), 50);
    EXPECT_EQ(rb.row(0), b);
    EXPECT_EQ(rb.row(1), b + 50);
    EXPECT_EQ(rb.row(3), a + 300);  // beyond height: the earlier row is still there
    // Height 0 sets nothing.
    rb.attach(nullptr, 0, 0, 0);
    EXPECT_EQ(rb.height(), 0u);
    EXPECT_EQ(rb.row(0), b);
}

}  // namespace
