// The natives of AvoidNatives, the Java layer's own entry points beside CAvoidContainerWrap's.
#include <jni.h>

#include <cstdint>
#include <vector>

#include "placement/AvoidContainer.h"

extern "C" {

// The blockers of a rejected object as handles, 0 where none; an empty array for an object that
// is not rejected, null for a null handle or when the array cannot be made.
JNIEXPORT jlongArray JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_blockers(
    JNIEnv* env, jclass, jlong c, jlong obj) {
    if (c == 0 || obj == 0) return nullptr;
    auto* container = reinterpret_cast<CPriorityAvoidContainer*>(static_cast<std::uintptr_t>(c));
    auto* object = reinterpret_cast<CAvoidObject*>(static_cast<std::uintptr_t>(obj));
    const std::vector<CAvoidObject*> blockers = container->Blockers(object);
    jlongArray out = env->NewLongArray(static_cast<jsize>(blockers.size()));
    if (out == nullptr || blockers.empty()) return out;
    jlong* handles = env->GetLongArrayElements(out, nullptr);
    if (handles == nullptr) return nullptr;
    for (size_t i = 0; i < blockers.size(); ++i)
        handles[i] = static_cast<jlong>(reinterpret_cast<std::uintptr_t>(blockers[i]));
    env->ReleaseLongArrayElements(out, handles, 0);
    return out;
}

}  // extern "C"
