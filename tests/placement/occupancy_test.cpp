// The canvas bitmap against a plain array of cells: spans across word boundaries, at the last
// column of a row whose width is no multiple of 64, and clearing of the rows drawn in.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "placement/Occupancy.h"

TEST(Occupancy, SpansMatchAnArrayOfCellsAcrossWordsAndClears) {
    std::mt19937 rng(7);
    for (const long long columns : {1LL, 63LL, 64LL, 65LL, 200LL}) {
        const long long rows = 5;
        kxac::Occupancy bits;
        bits.Cover(columns, rows);
        ASSERT_EQ(bits.Columns(), columns);
        ASSERT_EQ(bits.Rows(), rows);
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
            if (round % 3 == 0) {
                bits.Set(row, a, b);
                for (long long x = a; x <= b; ++x)
                    cells[static_cast<size_t>(row * columns + x)] = true;
            }
        }
        bits.Clear();
        for (long long row = 0; row < rows; ++row)
            EXPECT_FALSE(bits.Any(row, 0, columns - 1));
    }
}

TEST(Occupancy, LargeCanvasesAreCoveredOnlyInPart) {
    kxac::Occupancy bits;
    bits.Cover(40000, 40000);
    EXPECT_EQ(bits.Columns(), 40000);
    EXPECT_LE(static_cast<size_t>((bits.Columns() + 63) / 64 * bits.Rows()),
              kxac::Occupancy::kMaxWords);
    EXPECT_GT(bits.Rows(), 0);
    EXPECT_FALSE(bits.Covers(0, 0, 39999, 39999));
    EXPECT_TRUE(bits.Covers(0, 0, 39999, bits.Rows() - 1));
    bits.Cover(0, 100);
    EXPECT_FALSE(bits.Covers(0, 0, 0, 0));
}
