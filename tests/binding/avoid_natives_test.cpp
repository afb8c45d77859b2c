// The natives of AvoidNatives against the C++ API: what the Java layer reads of a placed object
// (the offset in force with its y, and its position among the offsets) and the null handle. They
// make no JNI call but on failure, so an environment without functions stands in for the VM.
#include <gtest/gtest.h>

#include <cstdint>

#include "binding/JINInterface.h"
#include "placement/AvoidContainer.h"

#define NATIVE(name) Java_com_tavrint_core_util_index_grid_AvoidNatives_##name

namespace {
CAvoidObject* At(jlong h) {
    return reinterpret_cast<CAvoidObject*>(static_cast<std::uintptr_t>(h));
}
}  // namespace

// Right, left, above, below and the diagonals, the first 0 to 8 of them blocked by walls: the
// label's state, candidate and offset (above and below share their x; a rejected label is back
// on candidate 0).
TEST(SecondClassNatives, CandidateAndOffsetOfEachLabel) {
    const Location around[] = {{0, 0},    {-40, 0}, {0, -20},   {0, 20},
                               {40, -20}, {40, 20}, {-40, -20}, {-40, 20}};
    JNINativeInterface_ none{};
    JNIEnv env{&none};
    CPriorityAvoidContainer c;
    const jlong ch = static_cast<jlong>(reinterpret_cast<std::uintptr_t>(&c));
    FitDeviceRect(*c.DT(), 0, 0, 200, 200);
    auto rect = [&](const Location& at) {
        const jlong obj = NATIVE(newObject)(&env, nullptr, ch);
        NATIVE(addRect)(&env, nullptr, obj, 100 + at.x, 100 + at.y, 129 + at.x, 109 + at.y);
        At(obj)->StringID("Lyon");
        return obj;
    };
    for (int blocked = 0; blocked <= 8; ++blocked) {
        SCOPED_TRACE(blocked);
        c.Reset();
        for (int k = 0; k < blocked; ++k)
            EXPECT_EQ(NATIVE(add)(&env, nullptr, ch, rect(around[k]), JNI_TRUE), 1);
        const jlong label = rect(around[0]);
        for (int k = 1; k < 8; ++k)
            At(label)->OffsetCollection().push_back(around[k]);
        EXPECT_EQ(NATIVE(add)(&env, nullptr, ch, label, JNI_FALSE), blocked < 8 ? 1 : 2);
        const int k = blocked % 8;
        const jlong packed = NATIVE(offset)(&env, nullptr, label);
        EXPECT_EQ(NATIVE(candidate)(&env, nullptr, label), k);
        EXPECT_EQ(Location(static_cast<int>(packed >> 32), static_cast<int>(packed)), around[k]);
    }
    c.Reset();
    CAvoidObject* pooled = At(NATIVE(newObject)(&env, nullptr, ch));
    EXPECT_EQ(pooled->StringID(), "") << "a pooled object comes back without its string ID";
    c.Recycle(pooled);
    // Null handles do nothing; a right edge at INT_MAX has no outer corner and draws nothing.
    const jlong edge = NATIVE(newObject)(&env, nullptr, ch);
    NATIVE(addRect)(&env, nullptr, edge, 5, 5, INT32_MAX, 6);
    NATIVE(addRect)(&env, nullptr, 0, 0, 0, 1, 1);
    EXPECT_FALSE(At(edge)->IsValid());
    EXPECT_EQ(NATIVE(newObject)(&env, nullptr, 0) + NATIVE(add)(&env, nullptr, 0, edge, JNI_FALSE) +
                  NATIVE(offset)(&env, nullptr, 0),
              0);
    EXPECT_EQ(NATIVE(candidate)(&env, nullptr, 0), -1);
    NATIVE(add)(&env, nullptr, ch, edge, JNI_TRUE);
}
