// The rules of the container and of the collision tests, one table each. The differential harness
// compares whole passes with the straightforward pass; these pin what both would share.
#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

// Named objects of a 200 x 200 canvas: a square footprint and further candidate offsets.
struct Shape {
    int x, y, size;
    std::vector<Location> offsets;
};
const std::map<char, Shape> kShapes = {
    {'a', {10, 10, 10, {}}},                         // the first one placed
    {'b', {50, 50, 5, {}}},                          // clear of everything
    {'c', {12, 12, 4, {{2, 0}, {30, 0}, {50, 0}}}},  // inside a, free at its third offset
    {'d', {12, 12, 20, {{1, 1}, {-3, 2}}}},          // over a at every offset
    {'e', {25, 25, 2, {}}},                          // inside d only
    {'k', {15, 15, 20, {{100, 100}}}},               // over a, forced
    {'f', {30, 30, 2, {}}},                          // inside k only
    {'g', {10, 10, 150, {}}},                        // many rows
};

// A script of steps, each a command and an object's name:
//   +x  x := NewObject(), drawn as its shape    =x  NewObject() must give x back, drawn again
//   =xy NewObject() must give x back, named y and drawn as y
//   Nx  as +x, and NewObject() must give an object no name holds
//   Px  Add(x, false)   Fx  Add(x, true)   Tx  TakePalce(x, no candidates)   Rx  Recycle(x)
//   Cx  empties x's offsets   Sx  x's state := 7   X.  Reset()   D.  Destroy()
// The outcome: placed list | unplaced list | state and current offset of each named object.
struct Script {
    const char* name;
    const char* steps;
    const char* outcome;
};

const Script kScripts[] = {
    // The pool: first in, first out; recycled objects come back reset.
    {"PoolIsFirstInFirstOut", "+a +b Ra Rb =a =b", "||a0(0,0) b0(0,0)"},
    {"ObjectRecycledTwiceIsHandedOutTwice", "+a Ra Ra =a =a Nb", "||a0(0,0) b0(0,0)"},
    {"ResetPoolsPlacedThenUnplacedInOrder", "+c +a +b +d Pa Pc Pd Pb X. Ra =a =c =b =d",
     "||a0(0,0) b0(0,0) c0(0,0) d0(0,0)"},
    {"ReusedObjectDrawsOnlyItsNewShape", "+g Fg X. =gb Pb", "b||b1(0,0) g1(0,0)"},
    {"RecycleTakesTheFirstNodeByState", "+a +d Pa Fa Pd Rd Ra", "a||a1(0,0) d2(0,0)"},
    {"RecycleOfAnObjectInNoListDoesNothing", "+a Pa Ra Ra =a Nb", "||a0(0,0) b0(0,0)"},
    {"RecycleIgnoresOtherStates", "+a Sa Ra Nb", "||a7(0,0) b0(0,0)"},
    {"DestroyDeletesAnObjectPooledTwiceOnce", "+a +b Ra Ra Pb D. +c", "||c0(0,0)"},
    // Priority placement.
    {"FirstFreeOffset", "+a +c Pa Pc", "ac||a1(0,0) c1(30,0)"},
    {"RejectedBackOnTheFirstOffsetAndNeverBlocking", "+a +d +e Pa Pd Pe",
     "ae|d|a1(0,0) d2(0,0) e1(0,0)"},
    {"ForcedPlacedWithoutSearchAndBlocking", "+a +k +f Pa Fk Pf", "ak|f|a1(0,0) f2(0,0) k1(0,0)"},
    {"EmptyOffsetsAreRejected", "+b Cb Pb", "|b|b2(0,0)"},
    {"RecycledAndResetObjectsNoLongerBlock", "+a +c Pa Ra Pc X. =a Pa", "a||a1(0,0) c1(0,0)"},
    {"TakePalcePlacesAndBlocks", "+a Ta +c Pc", "ac||a1(0,0) c1(30,0)"},
    {"PlacedObjectAddedAgainBlocksItself", "+a Pa Pa", "a|a|a2(0,0)"},
};

class ContainerRules : public testing::TestWithParam<Script> {};

TEST_P(ContainerRules, Outcome) {
    CPriorityAvoidContainer c;
    testing_support::SetCanvas(*c.DT(), 200, 200);
    std::map<char, CAvoidObject*> named;
    std::set<CAvoidObject*> held;  // handed out and not given back: recycled at the end
    std::istringstream steps(GetParam().steps);
    for (std::string s; steps >> s;) {
        if (s[0] == 'X') c.Reset();
        if (s[0] == 'D') c.Destroy(), named.clear();
        if (s[0] == 'X' || s[0] == 'D') continue;
        CAvoidObject*& obj = named[s.back()];
        if (s[0] == '+' || s[0] == '=' || s[0] == 'N') {
            CAvoidObject* got = c.NewObject();
            ASSERT_TRUE(s[0] != '=' || got == named[s[1]]) << s;
            for (const auto& [name, other] : named)
                ASSERT_TRUE(s[0] != 'N' || got != other) << s << " gave " << name;
            obj = got;
            held.insert(obj);
            ASSERT_EQ(obj->PlacedState(), 0);
            ASSERT_EQ(obj->ID(), 0);
            ASSERT_EQ(obj->DT(), c.DT());
            ASSERT_TRUE(obj->Grid().IsEmpty());
            ASSERT_EQ(obj->OffsetCollection().size(), 1u);
            const Shape& sh = kShapes.at(s.back());
            const int x1 = sh.x + sh.size, y1 = sh.y + sh.size;
            int ring[] = {sh.x, sh.y, x1, sh.y, x1, y1, sh.x, y1};
            obj->AddRing(ring, 8);
            ASSERT_EQ(testing_support::CellsOf(*obj),
                      testing_support::RectCells(sh.x, sh.y, x1, y1));
            ASSERT_EQ(obj->MaxExtent(), Box(1, 1, x1 - 1, y1 - 1));
            obj->OffsetCollection().insert(obj->OffsetCollection().end(), sh.offsets.begin(),
                                           sh.offsets.end());
            obj->ID(s.back());
        } else if (s[0] == 'P' || s[0] == 'F') {
            ASSERT_TRUE(c.Add(obj, s[0] == 'F'));
            held.erase(obj);
        } else if (s[0] == 'T') {
            std::vector<CAvoidObject*> none;
            ASSERT_TRUE(c.TakePalce(obj, none));
            held.erase(obj);
        } else if (s[0] == 'R') {
            if (obj->PlacedState() == 0) held.erase(obj);
            c.Recycle(obj);
        } else if (s[0] == 'C') {
            obj->OffsetCollection().clear();
        } else if (s[0] == 'S') {
            obj->PlacedState(7);
        }
    }
    std::string got;
    for (const auto* list : {&c.PlacedObjects(), &c.UnplacedObjects()}) {
        for (const CAvoidObject* obj : *list)
            got += static_cast<char>(obj->ID());
        got += "|";
    }
    for (const auto& [name, obj] : named) {
        got += std::string(got.back() == '|' ? "" : " ") + name +
               std::to_string(obj->PlacedState()) + "(" + std::to_string(obj->Offset().x) + "," +
               std::to_string(obj->Offset().y) + ")";
    }
    EXPECT_EQ(got, GetParam().outcome);
    for (CAvoidObject* obj : held)
        obj->PlacedState(0), c.Recycle(obj);
    c.Add(nullptr, false);  // ignored
}

INSTANTIATE_TEST_SUITE_P(Scripts, ContainerRules, testing::ValuesIn(kScripts),
                         [](const testing::TestParamInfo<Script>& i) { return i.param.name; });

// Footprints for the collision rules: runs (row, first, last; a row of -1 records the run extent
// so far) and boxes, at an offset.
struct Footprint {
    std::vector<std::vector<int>> runs;
    std::vector<Box> boxes;
    Location at;
};

struct Collision {
    const char* rule;
    Footprint a, b;
    bool aMeetsB, bMeetsA;  // a.IsIntersect(&b), b.IsIntersect(&a)
};

const Footprint kSquare = {{{10, 10, 12}, {11, 10, 12}, {12, 10, 12}, {-1}}, {}, {}};
const Collision kCollisions[] = {
    {"BoxesOfTheArgumentMeetTheReceiversRunsOnly",
     kSquare,
     {{{50, 50, 52}, {-1}}, {Box(9, 9, 13, 13)}, {}},
     false,
     true},
    {"BoxesMeetBoxes",
     {{{0, 0, 0}, {-1}}, {Box(5, 5, 6, 6)}, {}},
     {{{90, 90, 90}, {-1}}, {Box(6, 6, 8, 8)}, {}},
     true,
     true},
    {"ObjectsWithoutRunsNeverCollide", {{}, {Box(0, 0, 100, 100)}, {}}, kSquare, false, false},
    {"RunsTouchingInOneCornerCellCollide", kSquare, {kSquare.runs, {}, {2, 2}}, true, true},
    {"RunsOneCellApartDoNot", kSquare, {kSquare.runs, {}, {3, -2}}, false, false},
    {"OffsetsShiftBothGrids",
     {{{10, 20, 24}, {-1}}, {}, {-7, 3}},
     {{{15, 10, 12}, {-1}}, {}, {4, -2}},
     true,
     true},
    {"ShiftedPastTheRightEndTheyMiss",
     {{{10, 20, 24}, {-1}}, {}, {-7, 3}},
     {{{15, 10, 12}, {-1}}, {}, {9, -2}},
     false,
     false},
    {"ShiftedOneRowDownTheyMiss",
     {{{10, 20, 24}, {-1}}, {}, {-7, 3}},
     {{{15, 10, 12}, {-1}}, {}, {4, -1}},
     false,
     false},
    {"RunsAfterTheRecordedExtentAreNotSeen",
     {{{5, 0, 2}, {5, 14, 15}, {-1}, {5, 16, 30}}, {}, {}},
     {{{5, 12, 12}, {5, 25, 25}, {-1}}, {}, {}},
     false,
     false},
    {"RunsInsideTheExtentAreSeen",
     {{{5, 0, 2}, {5, 14, 15}, {-1}, {5, 16, 30}}, {}, {}},
     {{{5, 12, 12}, {5, 25, 25}, {-1}}, {}, {2, 0}},
     true,
     true},
    {"NearTheLargestColumnTheyCollide",
     {{{0, 0, 3}, {-1}}, {}, {INT_MAX - 10, 0}},
     {{{0, 0, 0}, {-1}}, {}, {INT_MAX - 8, 0}},
     true,
     true},
    {"AnExtentShiftedPastTheLimitIsNotValid",
     {{{0, 0, 3}, {-1}}, {}, {INT_MAX - 1, 0}},
     {{{0, 0, 0}, {-1}}, {}, {INT_MIN + 1, 0}},
     false,
     false},
};

void Build(CAvoidObject& obj, const Footprint& f) {
    obj.Reset();
    for (const std::vector<int>& r : f.runs) {
        if (r[0] < 0) obj.RecordMaxRLE();
        if (r[0] >= 0) obj.AddRLE(r[0], r[1], r[2]);
    }
    for (const Box& b : f.boxes)
        obj.AddBox(b);
    obj.OffsetCollection()[0] = f.at;
}

class CollisionRules : public testing::TestWithParam<Collision> {};

TEST_P(CollisionRules, BothWays) {
    CAvoidObject a, b;
    Build(a, GetParam().a);
    Build(b, GetParam().b);
    EXPECT_EQ(a.IsIntersect(&b), GetParam().aMeetsB);
    EXPECT_EQ(b.IsIntersect(&a), GetParam().bMeetsA);
    EXPECT_FALSE(a.IsIntersect(nullptr));
}

INSTANTIATE_TEST_SUITE_P(Pairs, CollisionRules, testing::ValuesIn(kCollisions),
                         [](const testing::TestParamInfo<Collision>& i) { return i.param.rule; });

// Probes of an object with cells (1, 0), (9, 9) and, when `centre`, (0, 0), and the box
// (5, 5)-(6, 6): the quarter search on its own cells, and the box test, where the coarse extent
// (0, 0)-(9, 9) decides first. Then the column scan against a cell of another grid.
TEST(CollisionProbes, QuarterSearchBoxTestAndCellScan) {
    struct Probe {
        bool centre;
        Box box;
        bool exist, intersect;
    };
    const Probe probes[] = {
        {false, Box(0, 0, 1, 0), true, true},  // centre (0, 0) free, the other cell not
        {false, Box(0, -1, 0, 0), false, false},
        {false, Box(6, 6, 5, 5), false, true},  // inverted: the box rule still meets
        {false, Box(6, 6, 9, 9), true, true},
        {true, Box(100, 100, -100, -100), true, false},    // its centre is (0, 0); off the extent
        {true, Box(INT_MAX, 0, INT_MIN, 0), true, false},  // wrapping centres: the cells between
        {true, Box(INT_MAX, 1, INT_MIN, 1), false, false},
    };
    for (const Probe& p : probes) {
        CAvoidObject a;
        a.Reset();
        a.AddRLE(0, 1, 1);
        a.AddRLE(9, 9, 9);
        if (p.centre) a.AddRLE(0, 0, 0);
        a.RecordMaxRLE();
        a.AddBox(Box(5, 5, 6, 6));
        Box box = p.box;
        EXPECT_EQ(a.IsExistRLE(p.box), p.exist) << p.box.left << "," << p.box.top;
        EXPECT_EQ(a.IsIntersect(box), p.intersect) << p.box.left << "," << p.box.top;
    }
    CAvoidObject a, b;
    a.Reset();
    b.Reset();
    a.AddRLE(1, 2, 2);
    b.AddRLE(1, 2, 2);
    auto* other = const_cast<CRLEIndexQuery*>(&b.Grid());
    EXPECT_TRUE(a.IsExistRLE2(other, Box(0, 0, 2, 1), Location()));  // the last cell scanned
    EXPECT_TRUE(a.IsExistRLE(other, Box(0, 0, 2, 1), Location()));
    EXPECT_FALSE(a.IsExistRLE2(other, Box(0, 0, 2, 1), Location(1, 0)));
    EXPECT_FALSE(a.IsExistRLE2(other, Box(2, 1, 0, 1), Location()));  // inverted: nothing
}

// The quartering search as first described; throws where it would search a box again from inside
// itself, which it then does without end.
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

// On random grids: a valid box asks whether any of its cells is occupied; an inverted one gets
// the answer of the literal search wherever that search ends.
TEST(CollisionProbes, QuarterSearchAgreesWithTheCellsAndTheLiteralSearch) {
    std::mt19937 rng(4242);
    std::uniform_int_distribution<int> coord(-12, 12), runs(0, 14);
    int inverted = 0;
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE("seed 4242, round " + std::to_string(round));
        CAvoidObject a;
        a.Reset();
        for (int i = runs(rng), x = 0; i > 0; --i)
            x = coord(rng), a.AddRLE(coord(rng), x, x + runs(rng) % 5);
        const Box box(coord(rng), coord(rng), coord(rng), coord(rng));
        bool any = false;
        for (int y = box.top; y <= box.bottom; ++y) {
            for (int x = box.left; x <= box.right; ++x)
                any = any || a.Grid().IsExist(y, x);
        }
        try {
            ASSERT_EQ(a.IsExistRLE(box), box.IsValid() ? any : LiteralSearch(a.Grid(), box));
            inverted += !box.IsValid();
        } catch (const std::runtime_error&) {
        }
    }
    EXPECT_GT(inverted, 50);
}

}  // namespace
