// A container and its objects reused over many passes: pooled objects, list nodes and the bucket
// grid carry memory from one pass to the next, and none of it may change an answer.
#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <random>
#include <vector>

#include "reference_placement.h"
#include "test_support.h"

namespace {

using testing_support::CellsOf;
using testing_support::SetCanvas;

CAvoidObject* Rect(CAvoidContainer& c, int x, int y, int w, int h) {
    CAvoidObject* obj = c.NewObject();
    int ring[] = {x, y, x + w, y, x + w, y + h, x, y + h};
    obj->AddRing(ring, 8);
    return obj;
}

std::vector<long long> Ids(const std::list<CAvoidObject*>& list) {
    std::vector<long long> ids;
    for (const CAvoidObject* obj : list)
        ids.push_back(obj->ID());
    return ids;
}

// Random rectangles and lines around a canvas whose size changes now and then, also while
// objects are placed, added to the indexed container and to the straightforward one alike.
class Driver {
public:
    explicit Driver(uint32_t seed) : m_rng(seed) {}

    void Canvas(CAvoidContainer& a, CAvoidContainer& b) {
        m_width = Uniform(40, 400);
        m_height = Uniform(40, 300);
        SetCanvas(*a.DT(), m_width, m_height);
        SetCanvas(*b.DT(), m_width, m_height);
    }

    // One object, built the same way in both containers.
    void Add(CAvoidContainer& a, CAvoidContainer& b, long long id) {
        const bool line = Uniform(0, 4) == 0;
        // Mostly on the canvas, some across its edges.
        const int x = Uniform(-20, m_width + 20), y = Uniform(-20, m_height + 20);
        const int w = Uniform(1, Uniform(0, 9) == 0 ? 300 : 40), h = Uniform(1, 20);
        const int width = Uniform(1, 3);
        std::vector<Location> offsets(static_cast<size_t>(Uniform(0, 4)));
        for (Location& o : offsets)
            o = Location(Uniform(-50, 50), Uniform(-50, 50));
        const bool force = Uniform(0, 5) == 0;
        for (CAvoidContainer* c : {&a, &b}) {
            CAvoidObject* obj = c->NewObject();
            if (line) {
                int xy[] = {x, y, x + w, y + h};
                obj->AddLine(xy, 4, width);
            } else {
                int ring[] = {x, y, x + w, y, x + w, y + h, x, y + h};
                obj->AddRing(ring, 8);
            }
            obj->ID(id);
            auto& all = obj->OffsetCollection();
            all.insert(all.end(), offsets.begin(), offsets.end());
            c->Add(obj, force);
            m_last[c] = obj;
        }
    }

    const CAvoidObject& Last(CAvoidContainer& c) { return *m_last[&c]; }
    int Uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(m_rng); }

private:
    std::mt19937 m_rng;
    int m_width = 0;
    int m_height = 0;
    std::map<CAvoidContainer*, CAvoidObject*> m_last;
};

}  // namespace

TEST(PassReuse, ReusedObjectDrawsTheCellsOfANewOne) {
    CPriorityAvoidContainer c;
    SetCanvas(*c.DT(), 500, 500);
    // A tall ring leaves many rows behind, then the object goes back to the pool.
    CAvoidObject* big = Rect(c, 10, 10, 200, 400);
    c.Add(big, true);
    c.Reset();
    CAvoidObject* reused = c.NewObject();
    ASSERT_EQ(reused, big);
    EXPECT_TRUE(reused->Grid().IsEmpty());
    EXPECT_EQ(reused->Grid().RowCount(), 0);
    int ring[] = {300, 20, 330, 20, 330, 27, 300, 27};
    reused->AddRing(ring, 8);
    CPriorityAvoidContainer fresh;
    SetCanvas(*fresh.DT(), 500, 500);
    CAvoidObject* other = Rect(fresh, 300, 20, 30, 7);
    EXPECT_EQ(CellsOf(*reused), CellsOf(*other));
    EXPECT_EQ(CellsOf(*reused), testing_support::RectCells(300, 20, 330, 27));
    EXPECT_EQ(reused->Grid().StartRow(), 20);
    EXPECT_EQ(reused->Grid().EndRow(), 26);
    EXPECT_EQ(reused->MaxExtent(), Box(1, 1, 329, 26));
    c.Add(reused, true);
    fresh.Add(other, true);
}

TEST(PassReuse, RepeatedPassesListObjectsInTheSameOrder) {
    CPriorityAvoidContainer c;
    SetCanvas(*c.DT(), 300, 100);
    std::vector<std::vector<long long>> placed, unplaced;
    for (int pass = 0; pass < 3; ++pass) {
        for (int i = 0; i < 40; ++i) {
            // Each rectangle overlaps its predecessor.
            CAvoidObject* obj = Rect(c, (i * 7) % 280, (i * 3) % 90, 20, 8);
            obj->ID(i);
            c.Add(obj, false);
        }
        // A recycled object leaves its list; its node must not carry it into a later list.
        CAvoidObject* second = *std::next(c.PlacedObjects().begin());
        c.Recycle(second);
        placed.push_back(Ids(c.PlacedObjects()));
        unplaced.push_back(Ids(c.UnplacedObjects()));
        c.Reset();
        EXPECT_TRUE(c.PlacedObjects().empty());
        EXPECT_TRUE(c.UnplacedObjects().empty());
    }
    ASSERT_FALSE(placed[0].empty());
    ASSERT_FALSE(unplaced[0].empty());
    EXPECT_EQ(placed[0].size() + unplaced[0].size(), 39u);
    EXPECT_EQ(placed[1], placed[0]);
    EXPECT_EQ(placed[2], placed[0]);
    EXPECT_EQ(unplaced[1], unplaced[0]);
    EXPECT_EQ(unplaced[2], unplaced[0]);
}

TEST(PassReuse, CanvasChangesKeepTheStraightforwardAnswers) {
    for (uint32_t seed = 1; seed <= 60; ++seed) {
        Driver d(seed);
        CPriorityAvoidContainer fast;
        reference::PriorityContainer slow;
        d.Canvas(fast, slow);
        long long id = 0;
        int rejected = 0;
        for (int pass = 0; pass < 4; ++pass) {
            const int objects = d.Uniform(20, 120);
            for (int i = 0; i < objects; ++i, ++id) {
                if (d.Uniform(0, 24) == 0) d.Canvas(fast, slow);
                d.Add(fast, slow, id);
                const CAvoidObject& a = d.Last(fast);
                const CAvoidObject& b = d.Last(slow);
                ASSERT_EQ(a.PlacedState(), b.PlacedState()) << "seed " << seed << ", id " << id;
                ASSERT_EQ(a.Offset(), b.Offset()) << "seed " << seed << ", id " << id;
                rejected += a.PlacedState() == CAvoidObject::kNotPlaced;
            }
            ASSERT_EQ(Ids(fast.PlacedObjects()), Ids(slow.PlacedObjects())) << "seed " << seed;
            ASSERT_EQ(Ids(fast.UnplacedObjects()), Ids(slow.UnplacedObjects())) << "seed " << seed;
            fast.Reset();
            slow.Reset();
            if (d.Uniform(0, 1) == 0) d.Canvas(fast, slow);
        }
        // The scenes collide: otherwise they would test nothing.
        EXPECT_GT(rejected, 0) << "seed " << seed;
    }
}
