// The indexed priority placement against the straightforward pass (reference::PriorityContainer),
// in lockstep: each scene generator drives both containers through the same legal call sequence
// and every answer must agree exactly (states, positions of the current offsets, list order).
// Run under the address sanitizer, an object read after it left the container's hands crashes.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "bench_scene.h"
#include "reference_placement.h"
#include "test_support.h"

namespace {

// A scene generator: the weights of the steps of a walk and the shapes of its footprints.
struct Generator {
    const char* name;
    int canvas;     // largest canvas side in cells; the size changes when resizes > 0
    int far;        // percent of coordinates and offsets far away (beyond 2^29, up to INT_MAX)
    int runs;       // percent of footprint parts that are raw runs (extent not always recorded)
    int resizes;    // percent of steps that change the canvas, also while objects are placed
    int lifetime;   // percent of steps that recycle, delete, change placed objects
    int passSteps;  // steps between two Resets of the pass
    int undo;       // percent of adds after which the object placed last is recycled
};

const Generator kGenerators[] = {
    {"DenseMixed", 120, 0, 10, 0, 0, 60, 0},   {"FarAndRawRuns", 60, 15, 60, 0, 0, 40, 0},
    {"CanvasChanges", 200, 1, 5, 4, 6, 60, 0}, {"Lifetime", 96, 1, 10, 0, 45, 120, 0},
    {"Everything", 150, 3, 25, 3, 30, 80, 0},  {"RecycleLastPlaced", 120, 2, 20, 2, 0, 150, 35},
};

struct Pair {
    CAvoidObject* fast;
    CAvoidObject* slow;
};

class Walk {
public:
    Walk(const Generator& g, uint32_t seed) : m_g(g), m_rng(seed) { Canvas(); }
    // Held objects go back to the pools; the containers delete each pooled object once.
    ~Walk() {
        for (const Pair& p : m_held)
            Both(p);
    }

    void Step(int step) {
        if (step % m_g.passSteps == m_g.passSteps - 1) return Reset();
        if (Chance(m_g.resizes)) Canvas();
        if (!Chance(m_g.lifetime)) return Chance(45) ? New() : Add();
        const int kind = Uniform(0, 5);
        if (kind == 0) return Recycle(m_held, nullptr);
        if (kind == 1) return Recycle(m_listed, &m_pooledListed);
        // Pooled already: Recycle finds the object in no list.
        if (kind == 2 && !m_pooledListed.empty()) Both(m_pooledListed[Pick(m_pooledListed)]);
        if (kind == 3 && !m_held.empty()) {
            const Pair p = Take(m_held);
            delete p.fast, delete p.slow;
        }
        if (kind >= 4) ChangePlaced();
    }

    void Check() {
        ASSERT_EQ(testing_support::ListsText(m_fast), testing_support::ListsText(m_slow));
    }
    int placed = 0, rejected = 0;

private:
    int Uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(m_rng); }
    bool Chance(int percent) { return Uniform(0, 99) < percent; }
    size_t Pick(const std::vector<Pair>& v) {
        return static_cast<size_t>(Uniform(0, int(v.size()) - 1));
    }
    Pair Take(std::vector<Pair>& v) {
        const size_t i = Pick(v);
        const Pair p = v[i];
        v.erase(v.begin() + static_cast<std::ptrdiff_t>(i));
        return p;
    }

    int Coord(int lo, int hi) {
        static const int kFar[] = {INT_MIN, INT_MAX, 1 << 29, (1 << 29) + 1, -(1 << 30), 1 << 30};
        if (!Chance(m_g.far)) return Uniform(lo, hi);
        return Chance(50) ? kFar[Uniform(0, 5)] : INT_MAX - Uniform(0, 40);
    }
    void Canvas() {
        const int w = Uniform(m_g.canvas / 3, m_g.canvas), h = Uniform(m_g.canvas / 3, m_g.canvas);
        m_extent = std::max(w, h);
        testing_support::SetCanvas(*m_fast.DT(), w, h);
        testing_support::SetCanvas(*m_slow.DT(), w, h);
    }

    // One part of a footprint and a few more offsets, drawn the same way into both objects.
    void Draw(const Pair& p) {
        const int e = m_extent, kind = Chance(m_g.runs) ? 0 : Uniform(1, 6);
        const int x = Uniform(-10, e), y = Uniform(-10, e), w = Uniform(1, e / 5),
                  h = Uniform(1, 12);
        std::vector<int> v = {x, y, x + w, y, x + w, y + h, x, y + h};
        if (kind == 4) std::swap(v[4], v[6]);      // a bow tie
        for (int i = 0; kind == 0 && i < 24; ++i)  // runs, often out of order within a row
            v.push_back(Uniform(0, 40));
        if (kind == 0) v.erase(v.begin(), v.begin() + 8 + 3 * Uniform(0, 7));  // 1 to 8 runs
        if (kind == 2 || kind == 5) {  // random points, now and then far away
            v.resize(static_cast<size_t>(2 * Uniform(kind == 2 ? 2 : 3, 6)));
            for (int& c : v)
                c = Coord(-5, e);
            if (kind == 2 && Chance(30)) v[3] = v[1];  // along an axis
        }
        std::vector<double> d(v.begin(), v.end());
        const int left = Coord(-10, e), top = Coord(-10, e), width = Uniform(0, 4),
                  stale = Chance(40);
        const Box box(left, top, kxac::WrapAdd(left, Uniform(-3, 12)),
                      kxac::WrapAdd(top, Uniform(-3, 8)));
        std::vector<Location> more(static_cast<size_t>(Uniform(0, 3)));
        for (Location& o : more)
            o = Location(Coord(-30, 30), Coord(-30, 30));
        for (CAvoidObject* obj : {p.fast, p.slow}) {
            for (size_t i = 0; kind == 0 && i + 2 < v.size(); i += 3)
                obj->AddRLE(y + v[i] % 4, x + v[i + 1], x + v[i + 1] + v[i + 2] % 7);
            if (kind == 0 && !stale) obj->RecordMaxRLE();
            if (kind == 1) obj->AddBox(box);
            if (kind == 2) obj->AddLine(v.data(), static_cast<int>(v.size()), width);
            if (kind == 3) obj->AddRing(d.data(), 8);
            if (kind >= 4) obj->AddRing(v.data(), static_cast<int>(v.size()));
            obj->OffsetCollection().insert(obj->OffsetCollection().end(), more.begin(), more.end());
        }
    }

    void New() {
        const Pair p{m_fast.NewObject(), m_slow.NewObject()};
        // Both pools have seen the same history: the same object comes back on both sides.
        ASSERT_EQ(p.fast->StringID(), p.slow->StringID());
        ASSERT_EQ(p.fast->DT(), m_fast.DT());
        if (p.fast->StringID().empty()) {
            p.fast->StringID(std::to_string(m_tags));
            p.slow->StringID(std::to_string(m_tags++));
        }
        m_pooledListed.erase(std::remove_if(m_pooledListed.begin(), m_pooledListed.end(),
                                            [&](const Pair& q) { return q.fast == p.fast; }),
                             m_pooledListed.end());
        for (int parts = Uniform(1, 3); parts > 0; --parts) {
            Draw(p);
            // The reference expands held rectangles into rows: a reused object must not tell.
            ASSERT_EQ(p.fast->RLEMaxExtent(), p.slow->RLEMaxExtent());
        }
        m_held.push_back(p);
    }

    void Add() {
        // Without deletes, a listed object may be added again: it then stands in a list twice.
        const bool again = m_g.lifetime == 0 && !m_listed.empty() && Chance(3);
        if (m_held.empty() && !again) return;
        const Pair p = again ? m_listed[Pick(m_listed)] : Take(m_held);
        const bool force = Chance(10);
        m_fast.Add(p.fast, force);
        m_slow.Add(p.slow, force);
        ASSERT_EQ(p.fast->PlacedState(), p.slow->PlacedState()) << p.fast->StringID();
        ASSERT_EQ(p.fast->OffsetIterator() - p.fast->OffsetCollection().begin(),
                  p.slow->OffsetIterator() - p.slow->OffsetCollection().begin());
        ASSERT_EQ(p.fast->Offset(), p.slow->Offset());
        (p.fast->PlacedState() == CAvoidObject::kPlaced ? placed : rejected)++;
        m_listed.push_back(p);
        if (p.fast->PlacedState() == CAvoidObject::kPlaced) m_lastPlaced = p;
        if (Chance(m_g.undo)) UndoLastPlaced();
    }

    // As a pass recycles a dot whose name was rejected: the object placed last goes back to the
    // pool, forced or not, added once or twice, though objects added or rejected may follow it.
    void UndoLastPlaced() {
        const auto last = std::find_if(m_listed.rbegin(), m_listed.rend(),
                                       [&](const Pair& q) { return q.fast == m_lastPlaced.fast; });
        if (last == m_listed.rend()) return;
        Both(*last);
        m_pooledListed.push_back(*last);
        m_listed.erase(std::prev(last.base()));
        m_lastPlaced = Pair{};
    }

    void Both(const Pair& p) {
        m_fast.Recycle(p.fast);
        m_slow.Recycle(p.slow);
    }
    void Recycle(std::vector<Pair>& from, std::vector<Pair>* pooled) {
        if (from.empty()) return;
        const Pair p = Take(from);
        Both(p);
        if (pooled) pooled->push_back(p);
    }

    // Placed objects stay the caller's to change: the container must notice.
    void ChangePlaced() {
        if (m_listed.empty()) return;
        const size_t i = Pick(m_listed);
        const Pair p = m_listed[i];
        const int change = Uniform(0, 4);
        for (CAvoidObject* obj : {p.fast, p.slow}) {
            if (change == 1) obj->ClearOffset();
            if (change == 2) obj->OffsetIterator(obj->OffsetCollection().end() - 1);
            if (change == 3) obj->Reset();
        }
        if (change == 0 || change == 4) Draw(p);
        // A reset object says state 0 while still listed: only the pass's Reset may pool it.
        if (change == 3) m_listed.erase(m_listed.begin() + static_cast<std::ptrdiff_t>(i));
    }

    void Reset() {
        m_lastPlaced = Pair{};
        m_fast.Reset();
        m_slow.Reset();
        m_pooledListed.insert(m_pooledListed.end(), m_listed.begin(), m_listed.end());
        m_listed.clear();
    }

    const Generator m_g;
    std::mt19937 m_rng;
    int m_extent = 0;
    int m_tags = 0;
    CPriorityAvoidContainer m_fast;
    reference::PriorityContainer m_slow;
    // Held by the caller; in a list; given back to the pool from a list (state still 1 or 2).
    std::vector<Pair> m_held, m_listed, m_pooledListed;
    // The object placed last, while it may still be listed.
    Pair m_lastPlaced{};
};

class PlacementDifferential : public testing::TestWithParam<Generator> {};

TEST_P(PlacementDifferential, MatchesTheStraightforwardPass) {
    int placed = 0, rejected = 0;
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(std::string(GetParam().name) + " seed " + std::to_string(seed));
        Walk walk(GetParam(), seed);
        for (int step = 0; step < 300 && !HasFatalFailure(); ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            walk.Step(step);
            if (step % 10 == 9 && !HasFatalFailure()) walk.Check();
        }
        if (HasFatalFailure()) return;
        placed += walk.placed, rejected += walk.rejected;
    }
    // The scenes collide: both answers must be common for the comparison to mean anything.
    EXPECT_GT(placed, 1000);
    EXPECT_GT(rejected, 200);
}

INSTANTIATE_TEST_SUITE_P(Scenes, PlacementDifferential, testing::ValuesIn(kGenerators),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace

TEST(IndexedPlacement, WorldCitiesMatchTheStraightforwardPass) {
    kxbench::Scene scene = kxbench::WorldCities(2000);
    CPriorityAvoidContainer fast;
    reference::PriorityContainer slow;
    // Per container: how many are placed after each label; then the lists with the offsets.
    std::vector<int> chosen[2];
    for (CPriorityAvoidContainer* c : {&fast, static_cast<CPriorityAvoidContainer*>(&slow)}) {
        std::vector<int>& out = chosen[c == &fast ? 0 : 1];
        kxbench::FitToScene(*c, scene);
        for (kxbench::Obstacle& o : scene.forced) {
            CAvoidObject* obj = c->NewObject();
            testing_support::Draw(*obj, o.xy, o.halfWidth);
            c->Add(obj, true);
        }
        for (const kxbench::Label& l : scene.labels) {
            kxbench::AddLabel(*c, l);
            out.push_back(static_cast<int>(c->PlacedObjects().size()));
        }
    }
    EXPECT_EQ(chosen[0], chosen[1]);
    EXPECT_EQ(testing_support::ListsText(fast), testing_support::ListsText(slow));
    // Real data collides: a good share of the labels is rejected, and most find a place.
    EXPECT_GT(slow.UnplacedObjects().size(), scene.labels.size() / 20);
    EXPECT_GT(slow.PlacedObjects().size(), scene.forced.size() + scene.labels.size() / 4);
}
