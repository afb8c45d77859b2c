// The natives of AvoidNatives against the C++ API: what the Java layer reads of a placed object
// (the offset in force with its y, and its position among the offsets), the rectangle it draws,
// and the null handle. They make no JNI call but on failure, so an environment without functions
// stands in for the virtual machine.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "binding/JINInterface.h"
#include "placement/AvoidContainer.h"

namespace {

#define NATIVE(name) Java_com_tavrint_core_util_index_grid_AvoidNatives_##name

CAvoidObject* At(jlong h) {
    return reinterpret_cast<CAvoidObject*>(static_cast<std::uintptr_t>(h));
}
jlong Handle(const void* p) { return static_cast<jlong>(reinterpret_cast<std::uintptr_t>(p)); }

struct SecondClassNatives : ::testing::Test {
    JNINativeInterface_ none{};
    JNIEnv env{&none};
    CPriorityAvoidContainer c;
    jlong ch = Handle(&c);

    SecondClassNatives() { FitDeviceRect(*c.DT(), 0, 0, 200, 200); }
    jlong Rect(int left, int top, int right, int bottom) {
        const jlong obj = NATIVE(newObject)(&env, nullptr, ch);
        NATIVE(addRect)(&env, nullptr, obj, left, top, right, bottom);
        return obj;
    }
};

// Eight candidates around a point, the first 0 to 7 of them blocked: the state and
// the candidate of each label, and the offset read back with its y and its sign.
TEST_F(SecondClassNatives, CandidateAndOffsetOfEachPlacedLabel) {
    // Right, left, above, below and the diagonals: above and below share their x.
    const Location around[] = {{0, 0},    {-40, 0}, {0, -20},   {0, 20},
                               {40, -20}, {40, 20}, {-40, -20}, {-40, 20}};
    for (int blocked = 0; blocked < 8; ++blocked) {
        SCOPED_TRACE(blocked);
        c.Reset();
        for (int k = 0; k < blocked; ++k) {
            const Location& at = around[k];
            const jlong wall = Rect(100 + at.x, 100 + at.y, 129 + at.x, 109 + at.y);
            EXPECT_EQ(NATIVE(add)(&env, nullptr, ch, wall, JNI_TRUE), 1);
        }
        const jlong label = Rect(100, 100, 129, 109);
        for (int k = 1; k < 8; ++k)
            At(label)->OffsetCollection().push_back(around[k]);
        EXPECT_EQ(NATIVE(add)(&env, nullptr, ch, label, JNI_FALSE), 1);
        const jlong packed = NATIVE(offset)(&env, nullptr, label);
        EXPECT_EQ(NATIVE(candidate)(&env, nullptr, label), blocked);
        EXPECT_EQ(Location(static_cast<int>(packed >> 32), static_cast<int>(packed)),
                  around[blocked]);
    }
}

// Every candidate blocked: state 2, back on the first candidate; the rectangle is the ring on the
// cells' outer corners; a pooled object comes back without its string ID.
TEST_F(SecondClassNatives, RejectedRectangleAndReusedObject) {
    const jlong wall = Rect(10, 20, 19, 24);
    EXPECT_EQ(At(wall)->RLEMaxExtent(), Box(10, 20, 19, 24));
    NATIVE(add)(&env, nullptr, ch, wall, JNI_TRUE);
    const jlong label = Rect(0, 0, 9, 4);
    At(label)->OffsetCollection().push_back(Location(10, 20));
    At(label)->StringID("Lyon");
    EXPECT_EQ(NATIVE(add)(&env, nullptr, ch, label, JNI_FALSE), 1) << "free at (0, 0)";
    const jlong blocked = Rect(19, 24, 30, 30);
    At(blocked)->OffsetCollection().push_back(Location(-19, -24));
    EXPECT_EQ(NATIVE(add)(&env, nullptr, ch, blocked, JNI_FALSE), 2);
    EXPECT_EQ(NATIVE(candidate)(&env, nullptr, blocked), 0);
    EXPECT_EQ(NATIVE(offset)(&env, nullptr, blocked), 0);
    c.Reset();
    std::vector<jlong> again;
    for (int i = 0; i < 3; ++i)
        again.push_back(NATIVE(newObject)(&env, nullptr, ch));
    EXPECT_EQ(again, (std::vector<jlong>{wall, label, blocked})) << "pooled objects reused";
    EXPECT_EQ(At(label)->StringID(), "");
    for (jlong obj : again)
        c.Recycle(At(obj));
}

TEST_F(SecondClassNatives, NullHandlesAndTheLastColumn) {
    NATIVE(addRect)(&env, nullptr, 0, 0, 0, 1, 1);
    EXPECT_EQ(NATIVE(newObject)(&env, nullptr, 0), 0);
    EXPECT_EQ(NATIVE(add)(&env, nullptr, 0, 0, JNI_FALSE), 0);
    EXPECT_EQ(NATIVE(offset)(&env, nullptr, 0), 0);
    EXPECT_EQ(NATIVE(candidate)(&env, nullptr, 0), -1);
    const jlong edge = Rect(5, 5, INT32_MAX, 6);
    EXPECT_FALSE(At(edge)->IsValid()) << "a right edge at INT_MAX has no outer corner: nothing";
    c.Recycle(At(edge));
}

}  // namespace
