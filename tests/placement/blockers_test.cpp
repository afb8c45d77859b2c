// Blockers against a straightforward search: for each rejected object, the placed list as it stood
// when the object was rejected is scanned in order at each of its offsets, with the coarse extent
// filter and the cell-by-cell footprint test of the reference placement; the first object that is
// still placed and collides is the expected blocker. Scenes mix rectangles, stroked lines, rings,
// boxes, forced obstacles, offsets and a few offsets far off the canvas.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "reference_placement.h"
#include "test_support.h"

namespace {

using testing_support::Random;

constexpr int kCanvas = 160;
// Lines across a canvas this wide span more extent buckets than a bucket list keeps.
constexpr int kWide = 1500;
// Beyond the reach of the extent buckets, so those objects are met by every query.
constexpr int kFar = (1 << 30) + 500;

class Scene {
public:
    explicit Scene(uint32_t seed) : m_rnd{std::mt19937(seed)} {
        testing_support::SetCanvas(*m_fast.DT(), kWide, kCanvas);
        testing_support::SetCanvas(*m_slow.DT(), kWide, kCanvas);
    }

    // A random footprint with random offsets, added to both containers.
    void AddOne() {
        const bool force = m_rnd(0, 9) == 0;
        const std::mt19937 state = m_rnd.rng;
        CAvoidObject* obj = m_fast.NewObject();
        Footprint(obj);
        m_rnd.rng = state;
        CAvoidObject* same = m_slow.NewObject();
        Footprint(same);
        m_placedAtAdd.push_back(Placed());
        m_fast.Add(obj, force);
        m_slow.Add(same, force);
        m_added.push_back(obj);
    }

    // The expected blockers of obj, the index-th object added.
    std::vector<CAvoidObject*> Expected(size_t index) {
        CAvoidObject* obj = m_added[index];
        std::vector<CAvoidObject*> result;
        if (obj->PlacedState() != CAvoidObject::kNotPlaced) return result;
        const std::vector<CAvoidObject*> now = Placed();
        std::vector<Location>& offsets = obj->OffsetCollection();
        const std::vector<CAvoidObject*>& before = m_placedAtAdd[index];
        for (auto it = offsets.begin(); it != offsets.end(); ++it) {
            obj->OffsetIterator(it);
            const auto first = std::find_if(before.begin(), before.end(), [&](CAvoidObject* p) {
                return std::find(now.begin(), now.end(), p) != now.end() &&
                       obj->MaxExtent().IsIntersect(p->MaxExtent()) &&
                       reference::Intersect(*p, *obj);
            });
            result.push_back(first == before.end() ? nullptr : *first);
        }
        obj->OffsetIterator(offsets.begin());
        return result;
    }

    std::vector<CAvoidObject*> Placed() const {
        return {m_fast.PlacedObjects().begin(), m_fast.PlacedObjects().end()};
    }

    CPriorityAvoidContainer m_fast;
    reference::PriorityContainer m_slow;
    std::vector<CAvoidObject*> m_added;
    // The placed list just before each object was added.
    std::vector<std::vector<CAvoidObject*>> m_placedAtAdd;
    Random m_rnd;

private:
    void Footprint(CAvoidObject* obj) {
        Random& r = m_rnd;
        const int x = r(-10, kCanvas), y = r(-10, kCanvas);
        if (r(0, 30) == 0) testing_support::Draw(*obj, {-10, y, kWide, y + r(-3, 3)}, 1);
        const int kind = r(0, 3), width = kind == 1 ? r(1, 3) : 0;
        std::vector<int> xy;
        // A rectangle of cells; a stroked polyline of one or two segments; a ring, maybe
        // self-crossing; boxes beside a small ring, one-sided as an obstacle.
        if (kind == 0) xy = {x, y, x + r(1, 30), y, x + r(1, 30), y + r(1, 12), x, y + r(1, 12)};
        if (kind == 1) xy = {x, y, x + r(-40, 40), y + r(-40, 40), x + r(-40, 40), y + r(-40, 40)};
        if (kind == 1 && r(0, 1) == 0) xy.resize(4);
        if (kind == 2) {
            const int x1 = x + r(5, 25), y1 = y + r(-5, 5), x2 = x + r(0, 25), y2 = y + r(5, 25);
            xy = {x, y, x1, y1, x2, y2, x + r(-10, 5), y + r(0, 20)};
        }
        if (kind == 3) xy = {x, y, x + 4, y, x + 4, y + 4, x, y + 4};
        testing_support::Draw(*obj, xy, width);
        if (kind == 3) obj->AddBox(Box(x - r(0, 20), y - r(0, 8), x + r(0, 20), y + r(0, 8)));
        for (int n = r(0, 4); n > 0; --n)
            obj->OffsetCollection().push_back(r(0, 14) == 0 ? Location{kFar, r(0, 3)}
                                                            : Location{r(-25, 25), r(-25, 25)});
    }
};

// Compares the blockers of every object added; the number of objects that have some.
size_t CheckBlockers(Scene& scene) {
    size_t rejected = 0;
    for (size_t i = 0; i < scene.m_added.size(); ++i) {
        CAvoidObject* obj = scene.m_added[i];
        const std::vector<CAvoidObject*> expected = scene.Expected(i);
        const auto position = obj->OffsetIterator();
        const std::vector<CAvoidObject*> got = scene.m_fast.Blockers(obj);
        EXPECT_EQ(got, expected) << "object " << i;
        EXPECT_EQ(obj->OffsetIterator(), position) << "object " << i;
        rejected += got.empty() ? 0 : 1;
    }
    return rejected;
}

// On a quarter of the seeds the blockers are also asked for every few adds: asking mid-pass
// changes no placement of the pass.
TEST(Blockers, FirstCollidingObjectPlacedBeforeEachOffset) {
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Scene scene(seed);
        for (int i = 0; i < 150; ++i) {
            scene.AddOne();
            if (seed % 4 == 0 && i % 17 == 16) CheckBlockers(scene);
        }
        EXPECT_GE(CheckBlockers(scene), 10u);
        ASSERT_EQ(testing_support::ListsText(scene.m_fast),
                  testing_support::ListsText(scene.m_slow));
        // Nothing but a placed object rejects an offset: in a plain pass every entry is set.
        for (CAvoidObject* obj : scene.m_fast.UnplacedObjects()) {
            const std::vector<CAvoidObject*> got = scene.m_fast.Blockers(obj);
            ASSERT_EQ(got.size(), obj->OffsetCollection().size());
            ASSERT_EQ(std::count(got.begin(), got.end(), nullptr), 0);
        }
    }
}

// Placed objects taken back no longer block; rejected ones taken back, placed objects (a rejected
// one added again included) and objects never added have no blockers; a reset forgets the pass.
TEST(Blockers, FollowsRecycleAndReset) {
    for (uint32_t seed = 200; seed <= 215; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Scene scene(seed);
        for (int i = 0; i < 150; ++i) {
            scene.AddOne();
            if (i % 23 == 22) scene.m_fast.Blockers(scene.m_added[size_t(i) - 1]);
        }
        // Most of them, so that offsets remain where every blocker placed before is gone.
        for (size_t n = scene.Placed().size() * 2 / 3; n > 0; --n) {
            const std::vector<CAvoidObject*> placed = scene.Placed();
            scene.m_fast.Recycle(placed[size_t(scene.m_rnd(0, int(placed.size()) - 1))]);
        }
        EXPECT_GE(CheckBlockers(scene), 10u);
        CAvoidObject* rejected = scene.m_fast.UnplacedObjects().back();
        scene.m_fast.Add(rejected, true);  // placed, and still listed as rejected
        EXPECT_TRUE(scene.m_fast.Blockers(rejected).empty());
        rejected = scene.m_fast.UnplacedObjects().front();
        EXPECT_FALSE(scene.m_fast.Blockers(rejected).empty());
        scene.m_fast.Recycle(rejected);  // the placed list as it was
        EXPECT_TRUE(scene.m_fast.Blockers(rejected).empty());
        EXPECT_TRUE(scene.m_fast.Blockers(scene.Placed().front()).empty());
        CAvoidObject* fresh = scene.m_fast.NewObject();
        EXPECT_TRUE(scene.m_fast.Blockers(fresh).empty());
        scene.m_fast.Recycle(fresh);
        rejected = scene.m_fast.UnplacedObjects().front();
        scene.m_fast.Reset();
        EXPECT_TRUE(scene.m_fast.Blockers(rejected).empty());
    }
}

}  // namespace
