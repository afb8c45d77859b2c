// The indexed priority placement against the straightforward one: random scenes dense with
// collisions, and the real map data. Both containers get the same objects in the same order; the
// states, current offsets and both lists must agree after every step.
#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench_scene.h"
#include "reference_placement.h"
#include "test_support.h"

namespace {

// One footprint operation of an object.
struct Op {
    enum Kind { kBox, kLine, kRing, kRun, kRecord } kind = kBox;
    std::vector<int> v;  // box: l, t, r, b; line and ring: points; run: row, first, last
    int width = 0;
};

struct ObjectPlan {
    std::vector<Op> ops;
    std::vector<Location> offsets;  // after the implicit (0, 0)
    bool force = false;
    // Recycles the n-th placed object (counted from the front) before this one is added.
    int recyclePlaced = -1;
    // Changes the n-th placed object before this one is added: the container must notice.
    int changePlaced = -1;
    enum Change { kDraw, kClearOffset, kResetObject, kFirstOffset, kAddAgain } change = kDraw;
    Op drawOnPlaced;
};

using Pass = std::vector<ObjectPlan>;

class SceneMaker {
public:
    explicit SceneMaker(uint32_t seed) : m_rng(seed) {}

    std::vector<Pass> Make() {
        std::vector<Pass> passes(static_cast<size_t>(Uniform(1, 3)));
        for (Pass& p : passes) {
            p.resize(static_cast<size_t>(Uniform(5, 60)));
            for (ObjectPlan& o : p)
                o = Object();
        }
        return passes;
    }

private:
    int Uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(m_rng); }
    bool Chance(int percent) { return Uniform(0, 99) < percent; }

    // Mostly on a small canvas so that objects meet; now and then far away or huge.
    int Coord() {
        if (Chance(2)) {
            static const int kFar[] = {INT_MIN,       INT_MAX,    1 << 29,
                                       (1 << 29) + 1, -(1 << 30), 1 << 30};
            return kFar[Uniform(0, 5)];
        }
        return Uniform(-10, 130);
    }

    std::vector<int> Points(int n) {
        std::vector<int> xy;
        for (int i = 0; i < 2 * n; ++i)
            xy.push_back(Chance(3) ? Coord() : Uniform(-5, 125));
        return xy;
    }

    Location OffsetValue() {
        if (Chance(4)) return {Coord(), Coord()};
        return {Uniform(-30, 30), Uniform(-30, 30)};
    }

    ObjectPlan Object() {
        ObjectPlan o;
        const int ops = Uniform(0, 3);
        for (int i = 0; i < ops; ++i) {
            Op op;
            switch (Uniform(0, 9)) {
                case 0:
                case 1: {
                    op.kind = Op::kBox;
                    const int l = Coord(), t = Coord();
                    // Mostly small and ordered, sometimes inverted.
                    op.v = {l, t, kxac::WrapAdd(l, Uniform(-3, 12)),
                            kxac::WrapAdd(t, Uniform(-3, 8))};
                    if (Chance(10)) op.v = {Coord(), Coord(), Coord(), Coord()};
                    break;
                }
                case 2:
                case 3:
                case 4:
                    op.kind = Op::kLine;
                    op.v = Points(Uniform(2, 5));
                    op.width = Uniform(0, 4);
                    break;
                case 5:
                case 6:
                case 7: {
                    op.kind = Op::kRing;
                    const int x = Uniform(-5, 110), y = Uniform(-5, 110);
                    const int w = Uniform(1, 25), h = Uniform(1, 15);
                    op.v = {x, y, x + w, y, x + w, y + h, x, y + h};
                    // A bow tie or a random polygon now and then.
                    if (Chance(25)) std::swap(op.v[4], op.v[6]);
                    if (Chance(20)) op.v = Points(Uniform(3, 7));
                    break;
                }
                case 8: {
                    // Raw runs, without recording the extent afterwards unless asked to.
                    op.kind = Op::kRun;
                    const int row = Uniform(-5, 120), a = Uniform(-5, 120);
                    op.v = {row, a, a + Uniform(-6, 20)};
                    break;
                }
                default:
                    op.kind = Op::kRecord;
                    break;
            }
            o.ops.push_back(op);
        }
        const int offsets = Uniform(0, 4);
        for (int i = 0; i < offsets; ++i)
            o.offsets.push_back(OffsetValue());
        o.force = Chance(12);
        if (Chance(4)) o.recyclePlaced = Uniform(0, 10);
        if (Chance(4)) {
            o.changePlaced = Uniform(0, 10);
            o.change = static_cast<ObjectPlan::Change>(Uniform(0, 4));
            o.drawOnPlaced = {Op::kBox, {Uniform(0, 110), Uniform(0, 110), 0, 0}, 0};
            o.drawOnPlaced.v[2] = o.drawOnPlaced.v[0] + Uniform(0, 20);
            o.drawOnPlaced.v[3] = o.drawOnPlaced.v[1] + Uniform(0, 20);
            if (Chance(50)) o.drawOnPlaced.kind = Op::kRing, o.drawOnPlaced.v = Points(4);
        }
        return o;
    }

    std::mt19937 m_rng;
};

void Draw(CAvoidObject* obj, const Op& op) {
    std::vector<int> v = op.v;
    const int n = static_cast<int>(v.size());
    switch (op.kind) {
        case Op::kBox:
            obj->AddBox(Box(v[0], v[1], v[2], v[3]));
            break;
        case Op::kLine:
            obj->AddLine(v.data(), n, op.width);
            break;
        case Op::kRing:
            obj->AddRing(v.data(), n);
            break;
        case Op::kRun:
            obj->AddRLE(v[0], std::min(v[1], v[2]), std::max(v[1], v[2]));
            break;
        case Op::kRecord:
            obj->RecordMaxRLE();
            break;
    }
}

void Build(CAvoidObject* obj, const ObjectPlan& plan) {
    for (const Op& op : plan.ops)
        Draw(obj, op);
    std::vector<Location>& offsets = obj->OffsetCollection();
    offsets.insert(offsets.end(), plan.offsets.begin(), plan.offsets.end());
}

// Runs one side of the comparison; every object is named by its number in the scene.
class Side {
public:
    explicit Side(CPriorityAvoidContainer& c) : m_c(c) {
        testing_support::SetCanvas(*c.DT(), 120, 120);
    }

    void Add(const ObjectPlan& plan, int number) {
        if (CAvoidObject* placed = NthPlaced(plan.recyclePlaced)) m_c.Recycle(placed);
        if (CAvoidObject* placed = NthPlaced(plan.changePlaced)) {
            switch (plan.change) {
                case ObjectPlan::kDraw:
                    Draw(placed, plan.drawOnPlaced);
                    break;
                case ObjectPlan::kClearOffset:
                    placed->ClearOffset();
                    break;
                case ObjectPlan::kResetObject:
                    placed->Reset();
                    break;
                case ObjectPlan::kFirstOffset:
                    placed->OffsetIterator(placed->OffsetCollection().begin());
                    break;
                case ObjectPlan::kAddAgain:
                    m_c.Add(placed, false);
                    break;
            }
        }
        CAvoidObject* obj = m_c.NewObject();
        Build(obj, plan);
        m_number[obj] = number;
        m_c.Add(obj, plan.force);
        m_last = obj;
    }

    // State, position of the current offset and the offset itself of the last object.
    std::string Last() const {
        CAvoidObject* o = m_last;
        const auto position = o->OffsetIterator() - o->OffsetCollection().begin();
        return std::to_string(o->PlacedState()) + "@" + std::to_string(position) + "(" +
               std::to_string(o->Offset().x) + "," + std::to_string(o->Offset().y) + ")";
    }
    std::vector<int> Listed(const std::list<CAvoidObject*>& list) const {
        std::vector<int> out;
        for (CAvoidObject* o : list)
            out.push_back(m_number.at(o));
        return out;
    }
    std::vector<int> Placed() const { return Listed(m_c.PlacedObjects()); }
    std::vector<int> Unplaced() const { return Listed(m_c.UnplacedObjects()); }

private:
    // The n-th placed object from the front (the last one when there are fewer), or null.
    CAvoidObject* NthPlaced(int n) const {
        if (n < 0 || m_c.PlacedObjects().empty()) return nullptr;
        auto it = m_c.PlacedObjects().begin();
        for (int i = 0; i < n && std::next(it) != m_c.PlacedObjects().end(); ++i)
            ++it;
        return *it;
    }

    CPriorityAvoidContainer& m_c;
    std::map<CAvoidObject*, int> m_number;
    CAvoidObject* m_last = nullptr;
};

}  // namespace

TEST(IndexedPlacement, RandomDenseScenesMatchTheStraightforwardPass) {
    for (uint32_t seed = 1; seed <= 300; ++seed) {
        const std::vector<Pass> passes = SceneMaker(seed).Make();
        CPriorityAvoidContainer fast;
        reference::PriorityContainer slow;
        Side a(fast), b(slow);
        int number = 0;
        for (size_t p = 0; p < passes.size(); ++p) {
            for (const ObjectPlan& plan : passes[p]) {
                a.Add(plan, number);
                b.Add(plan, number);
                ASSERT_EQ(a.Last(), b.Last())
                    << "seed " << seed << ", pass " << p << ", object " << number;
                ++number;
            }
            ASSERT_EQ(a.Placed(), b.Placed()) << "seed " << seed << ", pass " << p;
            ASSERT_EQ(a.Unplaced(), b.Unplaced()) << "seed " << seed << ", pass " << p;
            fast.Reset();
            slow.Reset();
        }
    }
}

TEST(IndexedPlacement, ScenesPlaceSomeAndRejectSome) {
    // The scenes above are only a test if they collide: most passes must reject something.
    int passesWithRejects = 0, passes = 0;
    for (uint32_t seed = 1; seed <= 50; ++seed) {
        for (const Pass& pass : SceneMaker(seed).Make()) {
            CPriorityAvoidContainer c;
            Side side(c);
            for (const ObjectPlan& plan : pass)
                side.Add(plan, 0);
            ++passes;
            if (!c.UnplacedObjects().empty() && !c.PlacedObjects().empty()) ++passesWithRejects;
        }
    }
    EXPECT_GT(passesWithRejects * 2, passes);
}

TEST(IndexedPlacement, WorldCitiesMatchTheStraightforwardPass) {
    kxbench::Scene scene = kxbench::WorldCities(2000);
    CPriorityAvoidContainer fast;
    reference::PriorityContainer slow;
    std::vector<std::vector<int>> placedOffsets(2);
    std::vector<size_t> placed(2), unplaced(2);
    CPriorityAvoidContainer* sides[] = {&fast, &slow};
    for (int s = 0; s < 2; ++s) {
        CPriorityAvoidContainer& c = *sides[s];
        kxbench::FitToScene(c, scene);
        std::map<CAvoidObject*, int> number;
        for (kxbench::Obstacle& o : scene.forced) {
            CAvoidObject* obj = c.NewObject();
            if (o.halfWidth > 0) {
                obj->AddLine(o.xy.data(), static_cast<int>(o.xy.size()), o.halfWidth);
            } else {
                obj->AddRing(o.xy.data(), static_cast<int>(o.xy.size()));
            }
            c.Add(obj, true);
        }
        for (size_t i = 0; i < scene.labels.size(); ++i) {
            const Box& b = scene.labels[i].box;
            CAvoidObject* obj = c.NewObject();
            int ring[] = {b.left,      b.top,        b.right + 1, b.top,
                          b.right + 1, b.bottom + 1, b.left,      b.bottom + 1};
            obj->AddRing(ring, 8);
            auto& offsets = obj->OffsetCollection();
            offsets.insert(offsets.end(), scene.labels[i].offsets.begin(),
                           scene.labels[i].offsets.end());
            number[obj] = static_cast<int>(i);
            c.Add(obj, false);
            // The label's number and the position of its offset, or -1 when rejected.
            placedOffsets[s].push_back(
                obj->PlacedState() == CAvoidObject::kPlaced
                    ? static_cast<int>(obj->OffsetIterator() - offsets.begin())
                    : -1);
        }
        placed[s] = c.PlacedObjects().size();
        unplaced[s] = c.UnplacedObjects().size();
    }
    EXPECT_EQ(placedOffsets[0], placedOffsets[1]);
    EXPECT_EQ(placed[0], placed[1]);
    EXPECT_EQ(unplaced[0], unplaced[1]);
    // Real data collides: a good share of the labels is rejected, and most find a place.
    EXPECT_GT(unplaced[1], scene.labels.size() / 20);
    EXPECT_GT(placed[1], scene.forced.size() + scene.labels.size() / 4);
}

namespace {

// A container over a 2000 x 200 canvas and square footprints on it.
struct Canvas {
    CPriorityAvoidContainer c;
    Canvas() { testing_support::SetCanvas(*c.DT(), 2000, 200); }
    CAvoidObject* Square(int x, int y, int size) {
        CAvoidObject* obj = c.NewObject();
        int ring[] = {x, y, x + size, y, x + size, y + size, x, y + size};
        obj->AddRing(ring, 8);
        return obj;
    }
};

}  // namespace

TEST(IndexedPlacement, RecycledOrResetObjectsNoLongerBlock) {
    Canvas p;
    CAvoidObject* a = p.Square(10, 10, 8);
    p.c.Add(a, false);
    p.c.Recycle(a);
    CAvoidObject* b = p.Square(12, 12, 4);
    p.c.Add(b, false);
    EXPECT_EQ(b->PlacedState(), CAvoidObject::kPlaced);
    p.c.Reset();
    CAvoidObject* c = p.Square(12, 12, 4);
    p.c.Add(c, false);
    EXPECT_EQ(c->PlacedState(), CAvoidObject::kPlaced);
}

TEST(IndexedPlacement, ObjectsPlacedByTakePalceBlockLaterOnes) {
    Canvas p;
    CAvoidObject* a = p.Square(10, 10, 8);
    std::vector<CAvoidObject*> none;
    ASSERT_TRUE(p.c.TakePalce(a, none));
    CAvoidObject* b = p.Square(12, 12, 4);
    p.c.Add(b, false);
    EXPECT_EQ(b->PlacedState(), CAvoidObject::kNotPlaced);
}

TEST(IndexedPlacement, LongLinesAndFarObjectsBlockWhereTheyLie) {
    Canvas p;
    // A line across the whole canvas, far beyond one bucket.
    CAvoidObject* line = p.c.NewObject();
    int xy[] = {0, 100, 1990, 104};
    line->AddLine(xy, 4, 2);
    p.c.Add(line, true);
    // A square drawn far off and brought back by a huge offset pair: (2^30 + 500) - 2^30.
    CAvoidObject* far = p.Square(500, 20, 6);
    far->OffsetCollection()[0] = Location(1 << 30, 0);
    p.c.Add(far, true);
    CAvoidObject* onLine = p.Square(1500, 101, 3);
    onLine->OffsetCollection().push_back(Location(0, -60));
    p.c.Add(onLine, false);
    EXPECT_EQ(onLine->PlacedState(), CAvoidObject::kPlaced);
    EXPECT_EQ(onLine->Offset(), Location(0, -60));
    CAvoidObject* farOne = p.Square(500, 20, 6);
    farOne->OffsetCollection()[0] = Location(1 << 30, 0);
    farOne->OffsetCollection().push_back(Location((1 << 30) + 7, 0));
    p.c.Add(farOne, false);
    EXPECT_EQ(farOne->PlacedState(), CAvoidObject::kPlaced);
    EXPECT_EQ(farOne->Offset(), Location((1 << 30) + 7, 0));
}
