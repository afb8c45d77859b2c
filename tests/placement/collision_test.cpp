#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <stdexcept>

#include "placement/AvoidContainer.h"

namespace {

void Fill(CAvoidObject& obj, int row0, int row1, int col0, int col1) {
    for (int row = row0; row <= row1; ++row)
        obj.AddRLE(row, col0, col1);
    obj.RecordMaxRLE();
}

void MoveTo(CAvoidObject& obj, int dx, int dy) {
    obj.OffsetCollection().emplace_back(dx, dy);
    obj.OffsetIterator(obj.OffsetCollection().end() - 1);
}

// The quartering search as first described; throws where it would search a box again from
// inside itself, which it then does without end.
bool LiteralSearch(const CRLEIndexQuery& g, const Box& b) {
    const Location c = b.Center();
    if (g.IsExist(c.y, c.x)) return true;
    if (b.Width() == 1 && b.Height() == 1) return false;
    for (const Box& q : {Box(b.left, b.top, c.x, c.y), Box(c.x, b.top, b.right, c.y),
                         Box(b.left, c.y, c.x, b.bottom), Box(c.x, c.y, b.right, b.bottom)}) {
        if (q == b) throw std::runtime_error("endless");
        if (LiteralSearch(g, q)) return true;
    }
    return false;
}

}  // namespace

TEST(Collision, BoxRuleIsOneSidedAndObjectsWithoutRunsNeverCollide) {
    CAvoidObject placed, candidate, boxes;
    for (CAvoidObject* obj : {&placed, &candidate, &boxes})
        obj->Reset();
    Fill(placed, 10, 12, 10, 12);
    Fill(candidate, 50, 52, 50, 52);
    candidate.AddBox(Box(9, 9, 13, 13));
    EXPECT_FALSE(placed.IsIntersect(&candidate));  // the argument's boxes on the receiver's runs
    EXPECT_TRUE(candidate.IsIntersect(&placed));
    boxes.AddBox(Box(0, 0, 100, 100));
    EXPECT_FALSE(boxes.IsIntersect(&candidate));
    EXPECT_FALSE(candidate.IsIntersect(&boxes));
    Box probe(0, 0, 100, 100);
    EXPECT_FALSE(boxes.IsIntersect(probe));
    EXPECT_TRUE(candidate.IsIntersect(probe));
}

TEST(Collision, RunsTouchingInOneCellCollide) {
    CAvoidObject a, b;
    a.Reset();
    b.Reset();
    Fill(a, 0, 4, 0, 4);
    Fill(b, 0, 4, 0, 4);
    MoveTo(b, 4, 4);
    EXPECT_TRUE(a.IsIntersect(&b));
    EXPECT_TRUE(b.IsIntersect(&a));
    MoveTo(b, 5, -4);
    EXPECT_FALSE(a.IsIntersect(&b));
}

TEST(Collision, CellScanFindsTheLastCellOfTheArea) {
    CAvoidObject a, b;
    a.Reset();
    b.Reset();
    a.AddRLE(1, 2, 2);  // the bottom-right cell of the area (0..2) x (0..1)
    b.AddRLE(1, 2, 2);
    CRLEIndexQuery* other = const_cast<CRLEIndexQuery*>(&b.Grid());
    EXPECT_TRUE(a.IsExistRLE2(other, Box(0, 0, 2, 1), Location()));
    EXPECT_FALSE(a.IsExistRLE2(other, Box(0, 0, 2, 1), Location(1, 0)));  // b's cell at (3, 1)
    EXPECT_FALSE(a.IsExistRLE2(other, Box(2, 1, 0, 1), Location()));      // inverted: nothing
}

TEST(Collision, QuarterSearchEndsOnTwoCellAndInvertedBoxes) {
    CAvoidObject a;
    a.Reset();
    a.AddRLE(0, 1, 1);
    EXPECT_TRUE(a.IsExistRLE(Box(0, 0, 1, 0)));  // centre (0, 0) free, the other cell not
    EXPECT_FALSE(a.IsExistRLE(Box(0, -1, 0, 0)));
    EXPECT_FALSE(a.IsExistRLE(Box(100, 100, 5, 5)));
    a.AddRLE(0, 0, 0);
    EXPECT_TRUE(a.IsExistRLE(Box(100, 100, -100, -100)));  // its centre is (0, 0)
    // Where centres would wrap, the cells between the bounds decide.
    EXPECT_TRUE(a.IsExistRLE(Box(INT_MAX, 0, INT_MIN, 0)));
    EXPECT_FALSE(a.IsExistRLE(Box(INT_MAX, 1, INT_MIN, 1)));
}

TEST(Collision, QuarterSearchAgreesWithTheLiteralSearchWhereItEnds) {
    const unsigned seed = 4242;
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> coord(-12, 12), runs(0, 14);
    int valid = 0, invertedEnded = 0;
    for (int round = 0; round < 3000; ++round) {
        CAvoidObject a;
        a.Reset();
        for (int i = runs(rng); i > 0; --i) {
            const int x = coord(rng);
            a.AddRLE(coord(rng), x, x + runs(rng) % 5);
        }
        const Box box(coord(rng), coord(rng), coord(rng), coord(rng));
        const bool answer = a.IsExistRLE(box);
        if (box.IsValid()) {
            ++valid;
            bool any = false;
            for (int y = box.top; y <= box.bottom; ++y) {
                for (int x = box.left; x <= box.right; ++x)
                    any = any || a.Grid().IsExist(y, x);
            }
            ASSERT_EQ(answer, any) << "round " << round << ", seed " << seed;
        }
        try {
            ASSERT_EQ(answer, LiteralSearch(a.Grid(), box))
                << "round " << round << ", seed " << seed;
            if (!box.IsValid()) ++invertedEnded;
        } catch (const std::runtime_error&) {
        }
    }
    EXPECT_GT(valid, 500) << "seed " << seed;
    EXPECT_GT(invertedEnded, 50) << "seed " << seed;
}
