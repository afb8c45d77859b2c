#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <vector>

#include "placement/AvoidContainer.h"
#include "test_support.h"

using testing_support::Cell;
using testing_support::CellSet;

namespace {

using Objects = std::vector<CAvoidObject*>;

Objects Listed(const std::list<CAvoidObject*>& list) { return {list.begin(), list.end()}; }

// A container over a 200 x 200 canvas.
struct Pass {
    CPriorityAvoidContainer c;
    Pass() { testing_support::SetCanvas(*c.DT(), 200, 200); }
    // A fresh object covering [x, x + size) x [y, y + size), with further candidate offsets.
    CAvoidObject* Square(int x, int y, int size, const std::vector<Location>& more = {}) {
        CAvoidObject* obj = c.NewObject();
        int ring[] = {x, y, x + size, y, x + size, y + size, x, y + size};
        obj->AddRing(ring, 8);
        obj->OffsetCollection().insert(obj->OffsetCollection().end(), more.begin(), more.end());
        return obj;
    }
    Objects Take(int n) {
        Objects out;
        while (n-- > 0)
            out.push_back(c.NewObject());
        return out;
    }
    void Recycle(const Objects& objects) {
        for (CAvoidObject* obj : objects)
            c.Recycle(obj);
    }
};

TEST(AvoidContainer, PoolIsFirstInFirstOutAndReusedObjectsAreReset) {
    Pass p;
    CAvoidObject* a = p.Square(10, 10, 5, {{3, 3}});
    CAvoidObject* b = p.c.NewObject();
    EXPECT_EQ(a->DT(), p.c.DT());
    a->ID(9);
    p.Recycle({a, b});
    EXPECT_EQ(p.c.NewObject(), a);
    EXPECT_EQ(a->ID(), 0);
    EXPECT_TRUE(a->Grid().IsEmpty());
    EXPECT_EQ(a->OffsetCollection().size(), 1u);
    EXPECT_EQ(p.c.NewObject(), b);
    p.Recycle({b, b});  // a state-0 object recycled twice is handed out twice
    EXPECT_EQ(p.Take(2), (Objects{b, b}));
    p.Recycle({a, b});
}

TEST(AvoidContainer, ResetPoolsPlacedThenUnplacedInOrder) {
    Pass p;
    const Objects all = {p.Square(10, 10, 5), p.Square(50, 50, 5), p.Square(11, 11, 2)};
    for (CAvoidObject* obj : all)
        p.c.Add(obj, false);
    ASSERT_EQ(Listed(p.c.UnplacedObjects()), (Objects{all[2]}));
    p.c.Reset();
    EXPECT_TRUE(p.c.PlacedObjects().empty() && p.c.UnplacedObjects().empty());
    EXPECT_EQ(all[0]->PlacedState(), 1);
    p.c.Recycle(all[0]);  // already pooled by Reset: nothing happens
    EXPECT_EQ(p.Take(3), all);
    p.Recycle(all);
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
    p.Recycle({placed, placed});  // the second finds it in no list: nothing happens
    EXPECT_EQ(p.Take(3), (Objects{unplaced, placed, placed}));
    CAvoidObject* fresh = p.c.NewObject();
    fresh->PlacedState(7);
    p.c.Recycle(fresh);  // unknown state: ignored
    CAvoidObject* other = p.c.NewObject();
    EXPECT_TRUE(other != fresh && fresh != placed && fresh != unplaced);
    fresh->PlacedState(0);
    p.Recycle({placed, unplaced, fresh, other});
}

TEST(PriorityPlacement, PlacedAtTheFirstFreeOffsetOrRejectedBackOnTheFirst) {
    Pass p;
    CAvoidObject* first = p.Square(10, 10, 10);
    p.c.Add(first, false);
    CAvoidObject* obj = p.Square(12, 12, 4, {{2, 0}, {30, 0}, {50, 0}});
    EXPECT_TRUE(p.c.Add(obj, false));
    EXPECT_EQ(obj->PlacedState(), 1);
    EXPECT_EQ(obj->Offset(), Location(30, 0));
    EXPECT_EQ(Listed(p.c.PlacedObjects()), (Objects{first, obj}));
    CAvoidObject* rejected = p.Square(12, 12, 20, {{1, 1}, {-3, 2}});
    EXPECT_TRUE(p.c.Add(rejected, false));
    EXPECT_EQ(rejected->PlacedState(), 2);
    EXPECT_EQ(rejected->Offset(), Location(0, 0));
    EXPECT_EQ(Listed(p.c.UnplacedObjects()), Objects{rejected});
    CAvoidObject* later = p.Square(25, 25, 2);  // inside the rejected one only: it never blocks
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

TEST(PriorityPlacement, RandomPassesMatchTheModel) {
    const unsigned seed = 90210;
    std::mt19937 rng(seed);
    CPriorityAvoidContainer c;
    testing_support::SetCanvas(*c.DT(), 100, 100);
    size_t placed = 0, unplaced = 0;
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
            ASSERT_EQ(testing_support::CellsOf(*obj), m.cells) << where.str();
            c.Add(obj, m.forced);
            objects.push_back(obj);
        }
        std::vector<int> order;
        const std::vector<int> chosen = RunModel(models, order);
        Objects expectPlaced, expectUnplaced;
        for (int i : order)
            expectPlaced.push_back(objects[i]);
        for (size_t i = 0; i < objects.size(); ++i) {
            ASSERT_EQ(objects[i]->Offset(), models[i].offsets[std::max(chosen[i], 0)])
                << where.str() << ", " << i;
            ASSERT_EQ(objects[i]->PlacedState(), chosen[i] < 0 ? 2 : 1) << where.str();
            if (chosen[i] < 0) expectUnplaced.push_back(objects[i]);
        }
        ASSERT_EQ(Listed(c.PlacedObjects()), expectPlaced) << where.str();
        ASSERT_EQ(Listed(c.UnplacedObjects()), expectUnplaced) << where.str();
        placed += expectPlaced.size();
        unplaced += expectUnplaced.size();
        c.Reset();
    }
    // Both outcomes must be common for the comparison to mean anything.
    EXPECT_GT(placed, 200u) << "seed " << seed;
    EXPECT_GT(unplaced, 200u) << "seed " << seed;
}

}  // namespace
