// The natives of AvoidNatives, the Java layer's own entry points beside CAvoidContainerWrap's.
// Each one does what a few of the raw natives would do in as many calls (hand out and clear the
// string ID, add and read the state), or reads what those do not report (the offset's y, the
// candidate's position). Thin like the others: cast the handles, call, convert the result.
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "binding/JINInterface.h"
#include "binding/NativeCall.h"
#include "placement/AvoidContainer.h"

using kxac::binding::AsContainer;
using kxac::binding::AsObject;
using kxac::binding::Guarded;
using kxac::binding::GuardedVoid;
using kxac::binding::HandleOf;

extern "C" {

JNIEXPORT jlong JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_newObject(JNIEnv* env,
                                                                                     jclass,
                                                                                     jlong c) {
    if (c == 0) return 0;
    return Guarded(env, jlong{0}, [c] {
        CAvoidObject* obj = AsContainer(c)->NewObject();
        if (!obj->StringID().empty()) obj->StringID(std::string());
        return HandleOf(obj);
    });
}

// Cell (x, y) is the unit square from corner (x, y) to (x + 1, y + 1). The Java layer keeps
// right and bottom below INT_MAX, so the outer corners fit an int.
JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_addRect(
    JNIEnv* env, jclass, jlong obj, jint left, jint top, jint right, jint bottom) {
    if (obj == 0 || right >= INT_MAX || bottom >= INT_MAX) return;
    GuardedVoid(env, [&] {
        int ring[] = {left, top, right + 1, top, right + 1, bottom + 1, left, bottom + 1};
        AsObject(obj)->AddRing(ring, 8);
    });
}

JNIEXPORT jint JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_add(JNIEnv* env, jclass,
                                                                              jlong c, jlong obj,
                                                                              jboolean force) {
    if (c == 0 || obj == 0) return 0;
    return Guarded(env, jint{0}, [&] {
        CAvoidObject* o = AsObject(obj);
        AsContainer(c)->Add(o, force == JNI_TRUE);
        return static_cast<jint>(o->PlacedState());
    });
}

JNIEXPORT jlong JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_offset(JNIEnv*, jclass,
                                                                                  jlong obj) {
    if (obj == 0) return 0;
    const Location at = AsObject(obj)->Offset();
    const std::uint64_t x = static_cast<std::uint32_t>(at.x);
    const std::uint64_t y = static_cast<std::uint32_t>(at.y);
    return static_cast<jlong>((x << 32) | y);
}

JNIEXPORT jint JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_candidate(JNIEnv*, jclass,
                                                                                    jlong obj) {
    if (obj == 0) return -1;
    CAvoidObject* o = AsObject(obj);
    const std::vector<Location>::const_iterator current = o->OffsetIterator();
    const std::ptrdiff_t position = current - o->Offsets().begin();
    return position > INT_MAX ? INT_MAX : static_cast<jint>(position);
}

JNIEXPORT jstring JNICALL
Java_com_tavrint_core_util_index_grid_AvoidNatives_libraryVersion(JNIEnv* env, jclass) {
    return env->NewStringUTF(KXAC_VERSION_STRING);
}

}  // extern "C"
