// The rules of the container and of the collision tests, one table each. The differential harness
// compares whole passes with the straightforward pass; these pin what both would share.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <tuple>

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
    {"RecycleTakesTheFirstNodeByState", "+a +b +d Pa Pb Fa Pd Rd Ra",
     "ba||a1(0,0) b1(0,0) d2(0,0)"},
    // k placed twice and recycled once is still filed and watched: reused as b, it blocks as b.
    {"ObjectPlacedTwiceRecycledOnceStaysWatched", "+k Fk Fk Rk =kb +f Pf",
     "bf||b0(0,0) f1(0,0) k0(0,0)"},
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
            held.insert(obj = got);
            // Handed out reset: state 0, no ID, the container's transform, no cells, one offset.
            ASSERT_EQ(std::make_tuple(obj->PlacedState(), obj->ID(), obj->DT(),
                                      obj->Grid().IsEmpty(), obj->OffsetCollection().size()),
                      std::make_tuple(0, 0LL, c.DT(), true, size_t{1}))
                << s;
            const Shape& sh = kShapes.at(s.back());
            testing_support::AddCellBox(*obj,
                                        Box(sh.x, sh.y, sh.x + sh.size - 1, sh.y + sh.size - 1));
            obj->OffsetCollection().insert(obj->OffsetCollection().end(), sh.offsets.begin(),
                                           sh.offsets.end());
            obj->ID(s.back());
        }
        std::vector<CAvoidObject*> none;
        const bool added = s[0] == 'T'                  ? c.TakePalce(obj, none)
                           : s[0] == 'P' || s[0] == 'F' ? c.Add(obj, s[0] == 'F')
                                                        : true;
        EXPECT_TRUE(added) << s;
        if (s[0] == 'P' || s[0] == 'F' || s[0] == 'T' || (s[0] == 'R' && obj->PlacedState() == 0))
            held.erase(obj);
        if (s[0] == 'R') c.Recycle(obj);
        if (s[0] == 'C') obj->OffsetCollection().clear();
        if (s[0] == 'S') obj->PlacedState(7);
    }
    std::ostringstream got;
    for (const auto* list : {&c.PlacedObjects(), &c.UnplacedObjects()}) {
        for (const CAvoidObject* obj : *list)
            got << static_cast<char>(obj->ID());
        got << '|';
    }
    for (const auto& [name, obj] : named) {
        got << (name == named.begin()->first ? "" : " ") << name << obj->PlacedState() << '('
            << obj->Offset().x << ',' << obj->Offset().y << ')';
    }
    EXPECT_EQ(got.str(), GetParam().outcome);
    for (CAvoidObject* obj : held)
        obj->PlacedState(0), c.Recycle(obj);
    c.Add(nullptr, false);  // ignored
}

INSTANTIATE_TEST_SUITE_P(Scripts, ContainerRules, testing::ValuesIn(kScripts),
                         [](const testing::TestParamInfo<Script>& i) { return i.param.name; });

// Footprints for the collision rules, one token each: "row:first-last" a run, "!" records the
// run extent so far, "bL,T,R,B" a box, "@x,y" the offset.
void Build(CAvoidObject& obj, const std::string& footprint) {
    obj.Reset();
    std::istringstream in(footprint);
    for (std::string t; in >> t;) {
        int a = 0, b = 0, c = 0, d = 0;
        if (t == "!") obj.RecordMaxRLE();
        if (std::sscanf(t.c_str(), "b%d,%d,%d,%d", &a, &b, &c, &d) == 4)
            obj.AddBox(Box(a, b, c, d));
        if (std::sscanf(t.c_str(), "@%d,%d", &a, &b) == 2)
            obj.OffsetCollection()[0] = Location(a, b);
        if (std::sscanf(t.c_str(), "%d:%d-%d", &a, &b, &c) == 3) obj.AddRLE(a, b, c);
    }
}

// Each case: footprints a and b, then whether a.IsIntersect(&b) and b.IsIntersect(&a).
TEST(CollisionRules, BothWays) {
    const std::string sq = "10:10-12 11:10-12 12:10-12 ! ";  // a square with its extent
    const std::string cases[][3] = {
        // Boxes of the argument meet the receiver's runs only; boxes meet boxes.
        {sq, "50:50-52 ! b9,9,13,13", "01"},
        {"0:0-0 ! b5,5,6,6", "90:90-90 ! b6,6,8,8", "11"},
        {"b0,0,100,100", sq, "00"},  // objects without runs never collide
        {sq, sq + "@2,2", "11"},     // runs touching in one corner cell collide
        {sq, sq + "@3,-2", "00"},    // runs one cell apart do not
        // Offsets shift both grids; shifted past the right end or one row down they miss.
        {"10:20-24 ! @-7,3", "15:10-12 ! @4,-2", "11"},
        {"10:20-24 ! @-7,3", "15:10-12 ! @9,-2", "00"},
        {"10:20-24 ! @-7,3", "15:10-12 ! @4,-1", "00"},
        // Runs after the recorded extent are not seen, runs inside it are.
        {"5:0-2 5:14-15 ! 5:16-30", "5:12-12 5:25-25 !", "00"},
        {"5:0-2 5:14-15 ! 5:16-30", "5:12-12 5:25-25 ! @2,0", "11"},
        // Near the largest column they collide; an extent shifted past the limit is not valid.
        {"0:0-3 ! @2147483637,0", "0:0-0 ! @2147483639,0", "11"},
        {"0:0-3 ! @2147483646,0", "0:0-0 ! @-2147483647,0", "00"},
    };
    for (const auto& [fa, fb, expected] : cases) {
        CAvoidObject a, b;
        Build(a, fa);
        Build(b, fb);
        const char got[] = {a.IsIntersect(&b) ? '1' : '0', b.IsIntersect(&a) ? '1' : '0', 0};
        EXPECT_EQ(got, expected) << "a: " << fa << ", b: " << fb;
        EXPECT_FALSE(a.IsIntersect(nullptr));
    }
    // A first run widened past the next leaves ends out of order (0-30, 2-3, 40-50): the row's
    // lookup finds cell 10 free, and so must the footprint test from either side.
    CAvoidObject a, b;
    Build(a, "5:0-0 5:2-3 5:40-50");
    ASSERT_TRUE(a.RowsRegular());  // found regular, then changed
    for (int end = 1; end <= 30; ++end)
        a.AddRLE(5, 0, end);
    a.RecordMaxRLE();
    Build(b, "5:10-10 6:0-0 !");
    EXPECT_EQ(
        (std::vector<bool>{a.IsExistRLE(Box(10, 5, 10, 5)), a.IsIntersect(&b), b.IsIntersect(&a)}),
        (std::vector<bool>{false, false, false}));
}

// Probes of an object with cells (1, 0), (9, 9) and, when `centre`, (0, 0), and the box
// (5, 5)-(6, 6): the quarter search on its own cells, and the box test, where the coarse extent
// (0, 0)-(9, 9) decides first.
TEST(CollisionProbes, QuarterSearchAndBoxTest) {
    // Whether (0, 0) is a cell, the probe, then what IsExistRLE and IsIntersect answer.
    const std::tuple<bool, Box, bool, bool> probes[] = {
        {false, Box(0, 0, 1, 0), true, true},              // centre (0, 0) free, the other cell not
        {false, Box(6, 6, 5, 5), false, true},             // inverted: the box rule still meets
        {true, Box(100, 100, -100, -100), true, false},    // its centre is (0, 0); off the extent
        {true, Box(INT_MAX, 0, INT_MIN, 0), true, false},  // wrapping centres: the cells between
        {true, Box(INT_MAX, 1, INT_MIN, 1), false, false},
    };
    for (auto [centre, box, exist, intersect] : probes) {
        CAvoidObject a;
        Build(a, centre ? "0:1-1 9:9-9 0:0-0 ! b5,5,6,6" : "0:1-1 9:9-9 ! b5,5,6,6");
        EXPECT_EQ(a.IsExistRLE(box), exist) << box.left << "," << box.top;
        EXPECT_EQ(a.IsIntersect(box), intersect) << box.left << "," << box.top;
    }
}

// The quartering search, plainly: the centre, then the four quarters, where a quarter equal to
// the box it was cut from (which the first description would search again without end) counts
// as free. endless says that such a quarter was met.
bool LiteralSearch(const CRLEIndexQuery& g, const Box& b, bool& endless) {
    const Location c = b.Center();
    if (g.IsExist(c.y, c.x)) return true;
    if (b.Width() == 1 && b.Height() == 1) return false;
    for (const Box& q : {Box(b.left, b.top, c.x, c.y), Box(c.x, b.top, b.right, c.y),
                         Box(b.left, c.y, c.x, b.bottom), Box(c.x, c.y, b.right, b.bottom)}) {
        endless = endless || q == b;
        if (q != b && LiteralSearch(g, q, endless)) return true;
    }
    return false;
}

// On random grids: a valid box asks whether any of its cells is occupied; an inverted one gets
// the answer of the literal search, also where the first description never ends.
TEST(CollisionProbes, QuarterSearchAgreesWithTheCellsAndTheLiteralSearch) {
    std::mt19937 rng(4242);
    std::uniform_int_distribution<int> coord(-12, 12), runs(0, 14);
    int inverted = 0, endless = 0;
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE("seed 4242, round " + std::to_string(round));
        CAvoidObject a;
        a.Reset();
        for (int i = runs(rng), x = 0; i > 0; --i)
            x = coord(rng), a.AddRLE(coord(rng), x, x + runs(rng) % 5);
        const Box box(coord(rng), coord(rng), coord(rng), coord(rng));
        bool any = false, again = false;
        for (int y = box.top; y <= box.bottom; ++y) {
            for (int x = box.left; x <= box.right; ++x)
                any = any || a.Grid().IsExist(y, x);
        }
        ASSERT_EQ(a.IsExistRLE(box), box.IsValid() ? any : LiteralSearch(a.Grid(), box, again));
        inverted += !box.IsValid();
        endless += again;
    }
    EXPECT_GT(std::min(inverted, endless), 50);
}

}  // namespace
