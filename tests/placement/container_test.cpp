#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <vector>

#include "placement/AvoidContainer.h"
#include "test_support.h"

using testing_support::Cell;
using testing_support::CellSet;
using testing_support::CellsOf;

namespace {

using Objects = std::vector<CAvoidObject*>;

Objects Listed(const std::list<CAvoidObject*>& list) { return {list.begin(), list.end()}; }

// A container over a 200 x 200 canvas.
struct Pass {
    CPriorityAvoidContainer c;
    Pass() { testing_support::SetCanvas(*c.DT(), 200, 200); }
    // A fresh object whose footprint is the filled square [x, x + size) x [y, y + size), with
    // further candidate offsets.
    CAvoidObject* Square(int x, int y, int size, const std::vector<Location>& more = {}) {
        CAvoidObject* obj = c.NewObject();
        int ring[] = {x, y, x + size, y, x + size, y + size, x, y + size};
        obj->AddRing(ring, 8);
        obj->OffsetCollection().insert(obj->OffsetCollection().end(), more.begin(), more.end());
        return obj;
    }
};

}  // namespace

TEST(AvoidContainer, PoolIsFirstInFirstOutAndReusedObjectsAreReset) {
    Pass p;
    CAvoidObject* a = p.Square(10, 10, 5, {{3, 3}});
    CAvoidObject* b = p.c.NewObject();
    EXPECT_EQ(a->DT(), p.c.DT());
    a->ID(9);
    p.c.Recycle(a);
    p.c.Recycle(b);
    EXPECT_EQ(p.c.NewObject(), a);
    EXPECT_EQ(a->ID(), 0);
    EXPECT_TRUE(a->Grid().IsEmpty());
    EXPECT_EQ(a->OffsetCollection().size(), 1u);
    EXPECT_EQ(p.c.NewObject(), b);
    // A state-0 object recycled twice is handed out twice.
    p.c.Recycle(b);
    p.c.Recycle(b);
    EXPECT_EQ(p.c.NewObject(), b);
    EXPECT_EQ(p.c.NewObject(), b);
    p.c.Recycle(a);
    p.c.Recycle(b);
}

TEST(AvoidContainer, ResetPoolsPlacedThenUnplacedInOrder) {
    Pass p;
    CAvoidObject* p1 = p.Square(10, 10, 5);
    CAvoidObject* p2 = p.Square(50, 50, 5);
    CAvoidObject* u1 = p.Square(11, 11, 2);
    for (CAvoidObject* obj : {p1, p2, u1})
        p.c.Add(obj, false);
    ASSERT_EQ(Listed(p.c.PlacedObjects()), (Objects{p1, p2}));
    ASSERT_EQ(Listed(p.c.UnplacedObjects()), (Objects{u1}));
    p.c.Reset();
    EXPECT_TRUE(p.c.PlacedObjects().empty() && p.c.UnplacedObjects().empty());
    EXPECT_EQ(p1->PlacedState(), 1);
    p.c.Recycle(p1);  // already pooled by Reset: nothing happens
    EXPECT_EQ((Objects{p.c.NewObject(), p.c.NewObject(), p.c.NewObject()}), (Objects{p1, p2, u1}));
    for (CAvoidObject* obj : {p1, p2, u1})
        p.c.Recycle(obj);
}

TEST(AvoidContainer, RecycleMovesTheFirstListedNodeByState) {
    Pass p;
    CAvoidObject* placed = p.Square(10, 10, 5);
    CAvoidObject* unplaced = p.Square(10, 10, 5);
    p.c.Add(placed, false);
    p.c.Add(placed, true);  // listed twice
    p.c.Add(unplaced, false);
    p.c.Recycle(unplaced);
    EXPECT_TRUE(p.c.UnplacedObjects().empty());
    p.c.Recycle(placed);
    EXPECT_EQ(p.c.PlacedObjects().size(), 1u);
    p.c.Recycle(placed);
    p.c.Recycle(placed);  // in no list any more: nothing happens
    EXPECT_EQ((Objects{p.c.NewObject(), p.c.NewObject(), p.c.NewObject()}),
              (Objects{unplaced, placed, placed}));
    CAvoidObject* fresh = p.c.NewObject();
    EXPECT_TRUE(fresh != placed && fresh != unplaced);
    fresh->PlacedState(7);
    p.c.Recycle(fresh);  // unknown state: ignored
    CAvoidObject* other = p.c.NewObject();
    EXPECT_NE(other, fresh);
    fresh->PlacedState(0);
    for (CAvoidObject* obj : {placed, unplaced, fresh, other})
        p.c.Recycle(obj);
}

TEST(PriorityPlacement, PlacedAtTheFirstFreeOffset) {
    Pass p;
    CAvoidObject* first = p.Square(10, 10, 10);
    p.c.Add(first, false);
    EXPECT_EQ(first->PlacedState(), 1);
    CAvoidObject* obj = p.Square(12, 12, 4, {{2, 0}, {30, 0}, {50, 0}});
    EXPECT_TRUE(p.c.Add(obj, false));
    EXPECT_EQ(obj->PlacedState(), 1);
    EXPECT_EQ(obj->Offset(), Location(30, 0));
    EXPECT_EQ(Listed(p.c.PlacedObjects()), (Objects{first, obj}));
}

TEST(PriorityPlacement, RejectedObjectReturnsToItsFirstOffsetAndNeverBlocks) {
    Pass p;
    p.c.Add(p.Square(10, 10, 10), false);
    CAvoidObject* rejected = p.Square(12, 12, 20, {{1, 1}, {-3, 2}});
    EXPECT_TRUE(p.c.Add(rejected, false));
    EXPECT_EQ(rejected->PlacedState(), 2);
    EXPECT_EQ(rejected->Offset(), Location(0, 0));
    EXPECT_EQ(Listed(p.c.UnplacedObjects()), Objects{rejected});
    CAvoidObject* later = p.Square(25, 25, 2);  // inside the rejected one only
    p.c.Add(later, false);
    EXPECT_EQ(later->PlacedState(), 1);
}

TEST(PriorityPlacement, ForcedObjectIsPlacedAndBlocksLaterOnes) {
    Pass p;
    p.c.Add(p.Square(10, 10, 10), false);
    CAvoidObject* forced = p.Square(15, 15, 20, {{100, 100}});
    EXPECT_TRUE(p.c.Add(forced, true));
    EXPECT_EQ(forced->PlacedState(), 1);
    EXPECT_EQ(forced->Offset(), Location(0, 0));  // no search
    CAvoidObject* later = p.Square(30, 30, 2);    // clear of the first, inside the forced one
    p.c.Add(later, false);
    EXPECT_EQ(later->PlacedState(), 2);
}

// Whole passes against a model that holds every footprint as a set of cells and states the
// placement rules as plain loops.
namespace {

struct Model {
    CellSet cells;  // unshifted
    std::vector<Box> boxes;
    std::vector<Location> offsets{Location()};
    bool forced = false;
};

bool Meet(const Box& a, const Box& b) {
    return a.left <= b.right && b.left <= a.right && a.top <= b.bottom && b.top <= a.bottom;
}

Box Shift(const Box& b, const Location& at) {
    return Box(b.left + at.x, b.top + at.y, b.right + at.x, b.bottom + at.y);
}

// The cells' bounds widened to take in cell (1, 1), shifted.
Box Coarse(const Model& m, const Location& at) {
    Box e(1, 1, -1, -1);
    for (const Cell& c : m.cells) {
        e = Box(std::min(e.left, c.first), std::min(e.top, c.second), std::max(e.right, c.first),
                std::max(e.bottom, c.second));
    }
    return Shift(e, at);
}

// Placed p at pa against candidate c at ca: p's boxes against c's boxes and cells, cells
// against cells; c's boxes never against p's cells.
bool Collides(const Model& p, const Location& pa, const Model& c, const Location& ca) {
    if (p.cells.empty() || c.cells.empty()) return false;
    for (const Cell& cell : c.cells) {
        const Box at(cell.first + ca.x, cell.second + ca.y, cell.first + ca.x, cell.second + ca.y);
        if (p.cells.count({at.left - pa.x, at.top - pa.y})) return true;
        for (const Box& b : p.boxes) {
            if (Meet(Shift(b, pa), at)) return true;
        }
    }
    for (const Box& b : p.boxes) {
        for (const Box& o : c.boxes) {
            if (Meet(Shift(b, pa), Shift(o, ca))) return true;
        }
    }
    return false;
}

// Each object's chosen offset index, or -1 when unplaced; and the placement order.
std::vector<int> RunModel(const std::vector<Model>& models, std::vector<int>& order) {
    std::vector<int> chosen(models.size(), -1);
    for (size_t i = 0; i < models.size(); ++i) {
        const Model& m = models[i];
        for (size_t k = 0; k < m.offsets.size() && chosen[i] < 0; ++k) {
            bool free = true;
            for (int q : order) {
                const Location& qa = models[q].offsets[chosen[q]];
                free = free && !(Meet(Coarse(m, m.offsets[k]), Coarse(models[q], qa)) &&
                                 Collides(models[q], qa, m, m.offsets[k]));
            }
            if (free || m.forced) chosen[i] = static_cast<int>(k);
        }
        if (chosen[i] >= 0) order.push_back(static_cast<int>(i));
    }
    return chosen;
}

Model RandomModel(std::mt19937& rng) {
    std::uniform_int_distribution<int> pos(0, 50), len(1, 6), few(0, 3), off(-12, 12), pct(0, 99);
    Model m;
    const int x0 = pos(rng), y0 = pos(rng);
    for (int rows = pct(rng) < 85 ? len(rng) : 0, r = 0; r < rows; ++r) {
        for (int x = x0 + off(rng) / 3, k = few(rng); k >= 0; --k, x += len(rng) + 1) {
            for (int n = len(rng); n > 0; --n, ++x)
                m.cells.insert({x, y0 + r});
        }
    }
    for (int k = few(rng) - 1; k > 0; --k) {
        const int x = pos(rng), y = pos(rng);
        m.boxes.emplace_back(x, y, x + len(rng), y + len(rng));
    }
    for (int k = few(rng); k > 0; --k)
        m.offsets.emplace_back(off(rng), off(rng));
    m.forced = pct(rng) < 8;
    return m;
}

}  // namespace

TEST(PriorityPlacement, RandomPassesMatchTheModel) {
    const unsigned seed = 90210;
    std::mt19937 rng(seed);
    CPriorityAvoidContainer c;
    testing_support::SetCanvas(*c.DT(), 100, 100);
    int placed = 0, unplaced = 0;
    for (int pass = 0; pass < 150; ++pass) {
        std::ostringstream where;
        where << "seed " << seed << ", pass " << pass;
        std::vector<Model> models(1 + rng() % 25);
        Objects objects;
        for (Model& m : models) {
            m = RandomModel(rng);
            CAvoidObject* obj = c.NewObject();
            for (const Cell& cell : m.cells)
                obj->AddRLE(cell.second, cell.first, cell.first);
            obj->RecordMaxRLE();
            for (const Box& b : m.boxes)
                obj->AddBox(b);
            obj->OffsetCollection() = m.offsets;
            ASSERT_EQ(CellsOf(*obj), m.cells) << where.str();
            objects.push_back(obj);
        }
        for (size_t i = 0; i < objects.size(); ++i)
            c.Add(objects[i], models[i].forced);
        std::vector<int> order;
        const std::vector<int> chosen = RunModel(models, order);
        Objects expectPlaced, expectUnplaced;
        for (int i : order)
            expectPlaced.push_back(objects[i]);
        for (size_t i = 0; i < objects.size(); ++i) {
            const int k = std::max(chosen[i], 0);
            ASSERT_EQ(objects[i]->Offset(), models[i].offsets[k]) << where.str() << ", " << i;
            ASSERT_EQ(objects[i]->PlacedState(), chosen[i] < 0 ? 2 : 1) << where.str();
            if (chosen[i] < 0) expectUnplaced.push_back(objects[i]);
        }
        ASSERT_EQ(Listed(c.PlacedObjects()), expectPlaced) << where.str();
        ASSERT_EQ(Listed(c.UnplacedObjects()), expectUnplaced) << where.str();
        placed += static_cast<int>(expectPlaced.size());
        unplaced += static_cast<int>(expectUnplaced.size());
        c.Reset();
    }
    // Both outcomes must be common for the comparison to mean anything.
    EXPECT_GT(placed, 200) << "seed " << seed;
    EXPECT_GT(unplaced, 200) << "seed " << seed;
}
