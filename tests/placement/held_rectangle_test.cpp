// A footprint held as one rectangle answers every collision test as the same cells stored row by
// row, whichever side of the test it stands on, near the canvas and at far offsets.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "test_support.h"

namespace {

struct Scene {
    std::mt19937 rng;
    CPriorityAvoidContainer c;

    int Any(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }
    Location AnyOffset() {
        const int far = Any(0, 4) == 0 ? (1 << 29) + Any(0, 4) : 0;
        return {Any(-8, 8) + far, Any(-8, 8) - far};
    }
    // The rectangle cells [x0, x1] x [y0, y1] of the ring, held (from the ring) or stored (run by
    // run), at an offset.
    CAvoidObject* Rectangle(const Box& r, bool held, const Location& offset) {
        CAvoidObject* obj = c.NewObject();
        int ring[] = {r.left,      r.top,        r.right + 1, r.top,
                      r.right + 1, r.bottom + 1, r.left,      r.bottom + 1};
        if (held) {
            obj->AddRing(ring, 8);
        } else {
            for (int y = r.top; y <= r.bottom; ++y)
                obj->AddRLE(y, r.left, r.right);
            obj->RecordMaxRLE();
        }
        obj->OffsetCollection().push_back(offset);
        obj->OffsetIterator(obj->OffsetCollection().end() - 1);
        return obj;
    }
    // A stroke, a rectangle or a box-only object.
    CAvoidObject* Other() {
        CAvoidObject* obj = c.NewObject();
        const int kind = Any(0, 2);
        if (kind == 0) {
            int line[] = {Any(0, 40), Any(0, 40), Any(0, 40), Any(0, 40), Any(0, 40), Any(0, 40)};
            obj->AddLine(line, 6, Any(1, 3));
        } else {
            int ring[] = {Any(0, 20), Any(0, 20),  Any(21, 40),
                          Any(0, 20), Any(21, 40), Any(21, 40)};
            obj->AddRing(ring, 6);
        }
        if (kind != 1) obj->AddBox(Box(Any(0, 40), Any(0, 40), Any(0, 40), Any(0, 40)));
        obj->OffsetCollection().push_back(AnyOffset());
        obj->OffsetIterator(obj->OffsetCollection().end() - 1);
        return obj;
    }
};

TEST(HeldRectangle, AnswersAsItsRowsStoredOneByOne) {
    Scene s{std::mt19937(11), {}};
    testing_support::SetCanvas(*s.c.DT(), 64, 64);
    int meetings = 0;
    for (int i = 0; i < 3000; ++i) {
        SCOPED_TRACE("case " + std::to_string(i));
        const int x = s.Any(0, 40), y = s.Any(0, 40);
        const Box r(x, y, x + s.Any(0, 20), y + s.Any(0, 20));
        const Location at = s.AnyOffset();
        CAvoidObject* other = s.Other();
        const Box probe(s.Any(-10, 70), s.Any(-10, 70), s.Any(-10, 70), s.Any(-10, 70));
        std::string answers[2];
        testing_support::CellSet cells[2];
        for (bool held : {false, true}) {
            CAvoidObject* a = s.Rectangle(r, held, at);
            CAvoidObject* b = s.Rectangle(r, held, at);
            CAvoidObject* d = s.Rectangle(r, held, at);
            CAvoidObject* e = s.Rectangle(r, held, at);
            Box shifted = probe.Offset(at);
            answers[held] =
                std::to_string(a->IsIntersect(other)) + std::to_string(other->IsIntersect(b)) +
                std::to_string(d->IsIntersect(shifted)) + std::to_string(e->IsExistRLE(probe)) +
                std::to_string(a->MaxExtent().left + a->MaxExtent().bottom);
            cells[held] = testing_support::CellsOf(*a);
            for (CAvoidObject* o : {a, b, d, e})
                s.c.Recycle(o);
        }
        EXPECT_EQ(answers[0], answers[1]);
        EXPECT_EQ(cells[0], cells[1]);
        meetings += answers[1][0] == '1';
        s.c.Recycle(other);
    }
    // The objects meet often enough for the comparison to mean something.
    EXPECT_GT(meetings, 300);
}

}  // namespace
