// Objects move between the caller, the lists and the pool, and the caller may delete the objects
// it holds. Whatever the order, the container must never read an object after it left its hands,
// and its answers must stay those of the straightforward pass. Run under the address sanitizer,
// a stale pointer anywhere in the container is a crash here.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "reference_placement.h"
#include "test_support.h"

namespace {

using testing_support::SetCanvas;

void AddSquare(CAvoidObject* obj, int x, int y, int size) {
    int ring[] = {x, y, x + size, y, x + size, y + size, x, y + size};
    obj->AddRing(ring, 8);
}

// The sequence that once left a freed object in the index of placed objects: a placed object is
// recycled, handed out again and deleted by the caller, then the container is used and destroyed.
TEST(ObjectLifetime, RecycledPlacedObjectHandedOutAndDeletedIsNeverReadAgain) {
    for (const bool addAfter : {true, false}) {
        auto* c = new CPriorityAvoidContainer();
        SetCanvas(*c->DT(), 64, 64);
        CAvoidObject* a = c->NewObject();
        AddSquare(a, 10, 10, 8);
        c->Add(a, false);
        ASSERT_EQ(a->PlacedState(), CAvoidObject::kPlaced);
        c->Recycle(a);
        CAvoidObject* b = c->NewObject();
        ASSERT_EQ(b, a);
        delete b;
        if (addAfter) {
            CAvoidObject* other = c->NewObject();
            AddSquare(other, 12, 12, 8);
            c->Add(other, false);
            // The deleted object no longer blocks: the square is placed where it stood.
            EXPECT_EQ(other->PlacedState(), CAvoidObject::kPlaced);
        }
        delete c;
    }
}

// One object of the walk, held in both containers.
struct Pair {
    CAvoidObject* indexed;
    CAvoidObject* reference;
};

// Random legal call sequences on the indexed container and the straightforward one in lockstep:
// objects handed out, filled, added (forced or not), recycled from any place the rules allow,
// changed while placed, deleted by the caller, the pass reset; then the containers destroyed.
class LifetimeWalk {
public:
    explicit LifetimeWalk(uint32_t seed) : m_rng(seed) {
        for (CAvoidContainer* c : {static_cast<CAvoidContainer*>(&m_indexed),
                                   static_cast<CAvoidContainer*>(&m_reference)})
            SetCanvas(*c->DT(), 96, 96);
    }

    ~LifetimeWalk() {
        for (const Pair& p : m_caller) {
            delete p.indexed;
            delete p.reference;
        }
    }

    void Step() {
        switch (Uniform(0, 9)) {
            case 0:
            case 1:
                New();
                break;
            case 2:
            case 3:
                Add();
                break;
            case 4:
                Recycle(m_caller);
                break;
            case 5:
                Recycle(m_listed);
                break;
            case 6:
                // A pooled object already taken off its list: Recycle finds no node for it.
                if (!m_pooledListed.empty()) {
                    const Pair p = m_pooledListed[Pick(m_pooledListed)];
                    m_indexed.Recycle(p.indexed);
                    m_reference.Recycle(p.reference);
                }
                break;
            case 7:
                DeleteHeld();
                break;
            case 8:
                ChangePlaced();
                break;
            default:
                if (Uniform(0, 3) == 0) Reset();
                break;
        }
    }

    void CheckLists() const {
        ASSERT_EQ(m_indexed.PlacedObjects().size(), m_reference.PlacedObjects().size());
        ASSERT_EQ(m_indexed.UnplacedObjects().size(), m_reference.UnplacedObjects().size());
        auto a = m_indexed.PlacedObjects().begin();
        auto b = m_reference.PlacedObjects().begin();
        for (; a != m_indexed.PlacedObjects().end(); ++a, ++b) {
            ASSERT_EQ((*a)->StringID(), (*b)->StringID());
            ASSERT_EQ((*a)->Offset(), (*b)->Offset());
        }
    }

private:
    int Uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(m_rng); }
    size_t Pick(const std::vector<Pair>& v) {
        return static_cast<size_t>(Uniform(0, static_cast<int>(v.size()) - 1));
    }

    void New() {
        Pair p{m_indexed.NewObject(), m_reference.NewObject()};
        // Pools of both containers have seen the same history: the objects must correspond.
        ASSERT_EQ(p.indexed->StringID(), p.reference->StringID());
        if (p.indexed->StringID().empty()) {
            const std::string tag = std::to_string(m_nextTag++);
            p.indexed->StringID(tag);
            p.reference->StringID(tag);
        }
        // A reused object may come back from the pool while the walk still lists it as pooled.
        Forget(m_pooledListed, p);
        Fill(p);
        m_caller.push_back(p);
    }

    void Fill(const Pair& p) {
        const int x = Uniform(-8, 96), y = Uniform(-8, 96), size = Uniform(1, 24);
        const int dx = Uniform(-30, 30), dy = Uniform(-30, 30);
        const bool line = Uniform(0, 3) == 0;
        for (CAvoidObject* obj : {p.indexed, p.reference}) {
            if (line) {
                int xy[] = {x, y, x + size, y + size / 2};
                obj->AddLine(xy, 4, 1);
            } else {
                AddSquare(obj, x, y, size);
            }
            obj->OffsetCollection().emplace_back(dx, dy);
        }
    }

    void Add() {
        if (m_caller.empty()) return;
        const size_t i = Pick(m_caller);
        const Pair p = m_caller[i];
        m_caller.erase(m_caller.begin() + static_cast<std::ptrdiff_t>(i));
        const bool force = Uniform(0, 6) == 0;
        m_indexed.Add(p.indexed, force);
        m_reference.Add(p.reference, force);
        ASSERT_EQ(p.indexed->PlacedState(), p.reference->PlacedState());
        ASSERT_EQ(p.indexed->Offset(), p.reference->Offset());
        m_listed.push_back(p);
    }

    void Recycle(std::vector<Pair>& from) {
        if (from.empty()) return;
        const size_t i = Pick(from);
        const Pair p = from[i];
        from.erase(from.begin() + static_cast<std::ptrdiff_t>(i));
        m_indexed.Recycle(p.indexed);
        m_reference.Recycle(p.reference);
        if (&from == &m_listed) m_pooledListed.push_back(p);
    }

    void DeleteHeld() {
        if (m_caller.empty()) return;
        const size_t i = Pick(m_caller);
        delete m_caller[i].indexed;
        delete m_caller[i].reference;
        m_caller.erase(m_caller.begin() + static_cast<std::ptrdiff_t>(i));
    }

    // Placed objects stay the caller's to change: the container must see the change.
    void ChangePlaced() {
        if (m_listed.empty()) return;
        Fill(m_listed[Pick(m_listed)]);
    }

    void Reset() {
        m_indexed.Reset();
        m_reference.Reset();
        m_pooledListed.insert(m_pooledListed.end(), m_listed.begin(), m_listed.end());
        m_listed.clear();
    }

    static void Forget(std::vector<Pair>& v, const Pair& p) {
        v.erase(std::remove_if(v.begin(), v.end(),
                               [&](const Pair& q) { return q.indexed == p.indexed; }),
                v.end());
    }

    std::mt19937 m_rng;
    CPriorityAvoidContainer m_indexed;
    reference::PriorityContainer m_reference;
    // Objects the caller holds (handed out, not added or recycled), objects in a list, and
    // objects that a list gave back to the pool (their state still says where they were).
    std::vector<Pair> m_caller;
    std::vector<Pair> m_listed;
    std::vector<Pair> m_pooledListed;
    int m_nextTag = 0;
};

TEST(ObjectLifetime, RandomLegalSequencesNeverTouchFreedObjectsAndMatchTheModel) {
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        LifetimeWalk walk(seed);
        for (int step = 0; step < 400; ++step) {
            walk.Step();
            if (HasFatalFailure()) return;
        }
        walk.CheckLists();
        if (HasFatalFailure()) return;
    }
}

}  // namespace
