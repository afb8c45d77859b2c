#include <gtest/gtest.h>

#include "raster/agg.h"

namespace {

TEST(Scanline, FirstSpanGoesToSlotOneAndSpansJoinByColumnOnly) {
    agg::scanline sl;
    sl.reset(-10, 20, 0, 0);
    EXPECT_EQ(sl.capacity(), 32u);
    sl.add_span(-8, 3, 4, 77);
    ASSERT_EQ(sl.span_count(), 1u);
    EXPECT_EQ(sl.span_index(1), 2u);
    for (unsigned i = 2; i < 6; ++i)
        EXPECT_EQ(sl.covers()[i], 77);
    EXPECT_FALSE(sl.ready(3));
    EXPECT_TRUE(sl.ready(4));
    sl.clear();
    EXPECT_EQ(sl.last_y(), 0x7FFF);
    sl.reset(0, 50, 0, 0);
    sl.add_span(5, 1, 3, 10);   // 5..7
    sl.add_cell(8, 1, 20);      // touches: same span
    sl.add_span(12, 1, 2, 30);  // gap: new span
    sl.add_cell(14, 2, 40);     // touches by column although the row differs
    ASSERT_EQ(sl.span_count(), 2u);
    EXPECT_EQ(sl.span_index(1), 5u);
    EXPECT_EQ(sl.span_length(1), 4u);
    EXPECT_EQ(sl.span_index(2), 12u);
    EXPECT_EQ(sl.span_length(2), 3u);
    EXPECT_EQ(sl.last_y(), 2);
    sl.reset(0, 10, 3, 4);  // arrays only grow
    EXPECT_EQ(sl.capacity(), 52u);
}

TEST(Scanline, CellsOutsideTheArraysAreDropped) {
    agg::scanline sl;
    sl.reset(0, 40000, 0, 0);
    sl.add_cell(32768, 0, 1);  // grows the unused slot 0
    sl.add_cell(100, 0, 1);
    EXPECT_EQ(sl.span_count(), 1u);
    agg::scanline small;
    small.reset(0, 10, 0, 0);
    small.add_span(-1, 0, 3, 1);
    small.add_span(12, 0, 1, 1);
    small.add_span(5, 0, 10, 1);
    EXPECT_EQ(small.span_count(), 0u);
    // A width beyond what a 16-bit column can take is capped.
    sl.reset(-2000000, 2000000, 0, 0);
    EXPECT_LE(sl.capacity(), 65538u);
    sl.add_span(1000000, 0, 1, 1);
    EXPECT_EQ(sl.span_count(), 0u);
}

}  // namespace
