#include <gtest/gtest.h>

#include "raster/agg.h"

namespace {

TEST(RenderingBuffer, NegativeStrideStartsAtTheLastRowAndSmallerAttachKeepsRows) {
    unsigned char a[400], b[300];
    agg::rendering_buffer rb(a, 10, 4, 100);
    EXPECT_EQ(rb.row(3), a + 300);
    rb.attach(b, 100, 3, -100);
    EXPECT_EQ(rb.stride(), -100);
    EXPECT_EQ(rb.row(0), b + 200);
    EXPECT_EQ(rb.row(1), b + 100);
    EXPECT_EQ(static_cast<const agg::rendering_buffer&>(rb).row(2), b);
    EXPECT_EQ(rb.row(3), a + 300);  // beyond height: the earlier row is still there
    rb.attach(nullptr, 0, 0, 0);    // height 0 sets nothing
    EXPECT_EQ(rb.height(), 0u);
    EXPECT_EQ(rb.row(0), b + 200);
}

}  // namespace
