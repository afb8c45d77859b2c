// Faults found once, each kept as the test that caught it, and the fast paths of the placement
// against the plain ones they replace.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "placement/AvoidContainer.h"
#include "placement/Occupancy.h"
#include "test_support.h"

namespace {

using testing_support::Draw;
using testing_support::RunsText;
using testing_support::SetCanvas;

// The cells [x, x + w) x [y, y + h): a ring on cell corners, or its rows as runs.
void AddSquare(CAvoidObject* obj, int x, int y, int w, int h, bool runs = false) {
    for (int row = y; runs && row < y + h; ++row)
        obj->AddRLE(row, x, x + w - 1);
    runs ? obj->RecordMaxRLE() : testing_support::AddCellBox(*obj, Box(x, y, x + w - 1, y + h - 1));
}

// The sequence that once left a freed object in the index of placed objects: a placed object is
// recycled, handed out again and deleted by the caller, then the container is used and destroyed.
TEST(ObjectLifetime, RecycledPlacedObjectHandedOutAndDeletedIsNeverReadAgain) {
    for (const bool addAfter : {true, false}) {
        CPriorityAvoidContainer c;  // destroyed at the end of the round
        SetCanvas(*c.DT(), 64, 64);
        CAvoidObject* a = c.NewObject();
        AddSquare(a, 10, 10, 8, 8);
        c.Add(a, false);
        c.Recycle(a);
        ASSERT_EQ(c.NewObject(), a);
        delete a;
        if (addAfter) {
            CAvoidObject* other = c.NewObject();
            AddSquare(other, 12, 12, 8, 8);
            c.Add(other, false);
            EXPECT_EQ(other->PlacedState(), CAvoidObject::kPlaced);  // the deleted one is gone
        }
    }
}

// Rectangles on cell corners (rings in either direction, strokes along an axis with a whole
// half-width) skip the sweep. Their runs must be exactly those of the sweep, also on top of runs
// already there: the same rectangle with an extra corner on two sides goes through the sweep.
// Shapes that are nearly such rectangles must go through the sweep too.
TEST(CellRectangle, RingsAndAxisStrokesGiveTheRunsOfTheSweep) {
    testing_support::Random uniform{std::mt19937(11)};
    CPriorityAvoidContainer c;
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const int w = uniform(1, 120), h = uniform(1, 90);
        SetCanvas(*c.DT(), w, h);
        CAvoidObject* fast = c.NewObject();
        CAvoidObject* model = c.NewObject();
        if (uniform(0, 1) == 0) {
            int tri[] = {uniform(-10, 130), uniform(-10, 100), uniform(-10, 130),
                         uniform(-10, 100), uniform(-10, 130), uniform(-10, 100)};
            fast->AddRing(tri, 6);
            model->AddRing(tri, 6);
        }
        const int x0 = uniform(-20, 140), x1 = uniform(-20, 140);
        const int y0 = uniform(-20, 110), y1 = uniform(-20, 110);
        const int mx = x0 + (x1 - x0) / 2, my = y0 + (y1 - y0) / 2;
        const int kind = uniform(0, 7);
        int slow[] = {x0, y0, mx, y0, x1, y0, x1, y1, x0, y1, x0, my};
        // Shapes that only look like rectangles: a pentagon closing on the top side, and
        // quadrilaterals whose second corner takes its row from the first one's column, whose
        // third takes its column from the first one's row, or whose last stands off the first one's
        // column. Their models carry one more corner.
        int penta[] = {x0, y0, x1, y0, x1, y1, x0, y1, mx, y0};
        int penta6[] = {x0, y0, x1, y0, x1, my, x1, y1, x0, y1, mx, y0};
        int quad[] = {x0, y0, x1, x0, x1, y1, x0, y1}, down4[] = {x0, y0, x0, y1, y0, y1, x1, y0};
        int quad5[] = {x0, y0, x1, x0, x1, y1, x0, y1, x0, my};
        int down5[] = {x0, y0, x0, my, x0, y1, y0, y1, x1, y0};
        int trap[] = {x0, y0, x1, y0, x1, y1, mx, y1}, back[] = {x0, y0, x0, y1, x1, y1, x1, y0};
        int trap5[] = {x0, y0, x1, y0, x1, my, x1, y1, mx, y1}, down[] = {mx, y0, mx, y1};
        int* const models[] = {slow, slow, slow, slow, penta6, quad5, down5, trap5};
        model->AddRing(models[kind], kind >= 5 ? 10 : 12);
        int ring[] = {x0, y0, x1, y0, x1, y1, x0, y1, x0, y0}, across[] = {x0, my, x1, my};
        // A stroke works only where its centre line meets the canvas.
        const bool inside = std::max(x0, x1) >= 0 && std::min(x0, x1) <= w &&
                            std::max(y0, y1) >= 0 && std::min(y0, y1) <= h;
        if (kind >= 4) {
            int* const shapes[] = {penta, quad, down4, trap};
            fast->AddRing(shapes[kind - 4], kind == 4 ? 10 : 8);
        } else if (kind == 2 && inside && my >= 0 && my <= h && (y1 - y0) % 2 == 0 && y1 != y0) {
            fast->AddLine(across, 4, std::abs(y1 - y0) / 2);
        } else if (kind == 3 && inside && mx >= 0 && mx <= w && (x1 - x0) % 2 == 0 && x1 != x0) {
            fast->AddLine(down, 4, std::abs(x1 - x0) / 2);
        } else {
            fast->AddRing(kind == 1 ? back : ring, kind == 0 ? 10 : 8);
        }
        ASSERT_EQ(RunsText(*fast), RunsText(*model))
            << x0 << "," << y0 << " " << x1 << "," << y1 << " kind " << kind;
        c.Recycle(fast);
        c.Recycle(model);
    }
}

// The occupancy against a list of the rectangles drawn, on a canvas whose blocks have a flat
// directory and on one that finds them by hash, near block edges and the far corner.
TEST(Occupancy, AnswersAsTheRectanglesDrawnOnAnyCanvas) {
    testing_support::Random any{std::mt19937(5)};
    for (const long long side : {1000LL, 1LL << 30}) {
        kxac::Occupancy bits;
        bits.Cover(side, side - 7);
        ASSERT_TRUE(bits.Covers(0, 0, side - 1, side - 8) && !bits.Covers(0, 0, side, 0));
        std::vector<Box> drawn;
        // Corners near the origin and near the far corner of the canvas.
        const auto at = [&](long long limit) {
            return static_cast<int>(any(0, 1) == 0 ? any(0, 200) : limit - 1 - any(0, 200));
        };
        for (int round = 0; round < 3; ++round) {
            for (int i = 0; i < 400; ++i) {
                const int x = at(side - 70), y = at(side - 30);
                const Box b(x, y, x + any(0, 69), y + any(0, 20));
                const bool hit = std::any_of(drawn.begin(), drawn.end(),
                                             [&](const Box& d) { return d.IsIntersect(b); });
                ASSERT_EQ(bits.Any(b.top, b.bottom, b.left, b.right), hit) << side << " " << i;
                if (any(0, 2) == 0) bits.Set(b.top, b.bottom, b.left, b.right), drawn.push_back(b);
            }
            // Blocks only where something was drawn; none after clearing.
            EXPECT_LE(bits.Blocks(), drawn.size() * 9);
            bits.Clear(), drawn.clear();
            EXPECT_EQ(bits.Blocks(), 0u);
        }
    }
}

// A footprint held as one rectangle answers every collision test as the same cells stored row by
// row, whichever side of the test it stands on, near the canvas and at far offsets.
TEST(HeldRectangle, AnswersAsItsRowsStoredOneByOne) {
    testing_support::Random any{std::mt19937(11)};
    // Now and then far out, beyond 2^29.
    const auto anyOffset = [&] {
        const int far = any(0, 4) == 0 ? (1 << 29) + any(0, 4) : 0;
        return Location{any(-8, 8) + far, any(-8, 8) - far};
    };
    CPriorityAvoidContainer c;
    SetCanvas(*c.DT(), 64, 64);
    int meetings = 0;
    for (int i = 0; i < 3000; ++i) {
        SCOPED_TRACE("case " + std::to_string(i));
        const int x = any(0, 40), y = any(0, 40);
        const Box r(x, y, x + any(0, 20), y + any(0, 20));
        const Location at = anyOffset();
        // The other side: a stroke with a box, a triangle, or a triangle with a box.
        CAvoidObject* other = c.NewObject();
        const int kind = any(0, 2);
        int line[] = {any(0, 40), any(0, 40), any(0, 40), any(0, 40), any(0, 40), any(0, 40)};
        if (kind == 0) other->AddLine(line, 6, any(1, 3));
        int tri[] = {any(0, 20), any(0, 20), any(21, 40), any(0, 20), any(21, 40), any(21, 40)};
        if (kind != 0) other->AddRing(tri, 6);
        if (kind != 1) other->AddBox(Box(any(0, 40), any(0, 40), any(0, 40), any(0, 40)));
        other->OffsetCollection().push_back(anyOffset());
        other->OffsetIterator(other->OffsetCollection().end() - 1);
        const Box probe(any(-10, 70), any(-10, 70), any(-10, 70), any(-10, 70));
        std::string answers[2];
        testing_support::CellSet cells[2];
        for (bool held : {true, false}) {
            CAvoidObject* objs[4];
            for (CAvoidObject*& obj : objs) {
                obj = c.NewObject();
                // The ring of the rectangle's cells, or its rows one by one.
                AddSquare(obj, r.left, r.top, r.Width(), r.Height(), !held);
                obj->OffsetCollection().push_back(at);
                obj->OffsetIterator(obj->OffsetCollection().end() - 1);
            }
            Box shifted = probe.Offset(at);
            answers[held] = std::to_string(objs[0]->IsIntersect(other)) +
                            std::to_string(other->IsIntersect(objs[1])) +
                            std::to_string(objs[2]->IsIntersect(shifted)) +
                            std::to_string(objs[3]->IsExistRLE(probe)) +
                            std::to_string(objs[0]->MaxExtent().left + objs[0]->MaxExtent().bottom);
            cells[held] = testing_support::CellsOf(*objs[0]);
            // Reset keeps the grid's start row: an empty grid recorded afterwards ends a row
            // above it, whether the rows were stored or held.
            objs[1]->Reset();
            objs[1]->AddLine(line, 2, 1);
            answers[held] += " " + RunsText(*objs[1]);
            for (CAvoidObject* o : objs)
                c.Recycle(o);
        }
        EXPECT_EQ(std::make_pair(answers[0], cells[0]), std::make_pair(answers[1], cells[1]));
        meetings += answers[1][0] == '1';
        c.Recycle(other);
    }
    // The objects meet often enough for the comparison to mean something.
    EXPECT_GT(meetings, 300);
}

}  // namespace

// A label whose row holds runs ending out of order (the row rules leave them so when a span
// widens the first run past the second) meets the plain rings kept in the canvas bitmap.
TEST(PlacedIndex, IrregularRowsMeetTheRingsDrawnInTheBitmap) {
    CPriorityAvoidContainer c;
    SetCanvas(*c.DT(), 64, 64);
    CAvoidObject* ring = c.NewObject();
    AddSquare(ring, 10, 10, 8, 8);
    ASSERT_TRUE(c.Add(ring, false));
    CAvoidObject* label = c.NewObject();
    label->AddRLE(14, 10, 12);
    label->AddRLE(14, 14, 16);
    for (int last = 13; last <= 17; ++last)
        label->AddRLE(14, 11, last);  // runs 10-17, then 14-16
    label->RecordMaxRLE();
    ASSERT_FALSE(label->RowsRegular());
    label->OffsetCollection().emplace_back(0, 30);
    c.Add(label, false);
    EXPECT_EQ(label->Offset(), Location(0, 30));
}
