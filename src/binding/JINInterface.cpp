// The natives of CAvoidContainerWrap. Each one checks its handles, converts its arguments through
// the holders of JINInterface.h, calls one operation of a container or an object and converts the
// result. A C++ exception never unwinds into the virtual machine: it becomes a pending Java error
// (OutOfMemoryError for an allocation failure) and the native returns its null-handle result.
#include "binding/JINInterface.h"

#include <cstdint>
#include <exception>
#include <list>
#include <new>
#include <string>
#include <vector>

#include "binding/NativeCall.h"
#include "placement/AvoidContainer.h"

namespace {

using kxac::binding::AsContainer;
using kxac::binding::AsObject;
using kxac::binding::Guarded;
using kxac::binding::GuardedVoid;
using kxac::binding::HandleOf;

// The objects of a result list as a new long[], front to back; null for an empty list, and null
// (with the virtual machine's error pending) when the array cannot be made.
jlongArray HandleArray(JNIEnv* env, const std::list<CAvoidObject*>& objects) {
    if (objects.empty() || objects.size() > static_cast<std::size_t>(INT32_MAX)) return nullptr;
    jlongArray result = env->NewLongArray(static_cast<jsize>(objects.size()));
    if (result == nullptr) return nullptr;
    CJavaArray<long long> handles(env, result, true);
    long long* out = handles.Elements();
    if (out == nullptr) return nullptr;
    for (const CAvoidObject* obj : objects)
        *out++ = HandleOf(obj);
    return result;
}

// Coordinates are read in (x, y) pairs: an odd trailing element is left out, so the geometry
// never reads past the array. Without elements the shape is called with none.
struct CoordinateRun {
    int* xy;
    int count;
};

CoordinateRun Coordinates(CJavaArray<int>& coords) {
    const jsize length = coords.Length();
    if (length <= 0) return {nullptr, 0};
    int* xy = coords.Elements();
    if (xy == nullptr) return {nullptr, 0};
    return {xy, length - (length & 1)};
}

}  // namespace

extern "C" {

// Value-initialised: the object is zero-filled before its constructors run, so every field they
// leave alone (the transform's resolution among them) starts at zero.
JNIEXPORT jlong JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_CreateAvoidContainer(JNIEnv* env,
                                                                               jclass) {
    return Guarded(env, jlong{0}, [] { return HandleOf(new CPriorityAvoidContainer()); });
}

JNIEXPORT jboolean JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_DestroyAvoidContainer(JNIEnv* env, jclass,
                                                                                jlong c) {
    if (c == 0) return JNI_FALSE;
    return Guarded(env, jboolean{JNI_FALSE}, [c] {
        CAvoidContainer* container = AsContainer(c);
        delete container;
        return jboolean{JNI_TRUE};
    });
}

// The extent is released right after use, the device rectangle last; an array of fewer than four
// elements is skipped without being fetched.
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidContainerExtent(
    JNIEnv* env, jclass, jlong c, jintArray rect, jdoubleArray extent) {
    if (c == 0) return;
    GuardedVoid(env, [&] {
        CDT& dt = *AsContainer(c)->DT();
        CJavaArray<int> device(env, rect, false);
        if (device.Length() > 3) {
            if (const int* r = device.Elements()) FitDeviceRect(dt, r[0], r[1], r[2], r[3]);
        }
        CJavaArray<double> map(env, extent, false);
        if (map.Length() > 3) {
            if (const double* e = map.Elements()) FitMapExtent(dt, e[0], e[1], e[2], e[3]);
        }
    });
}

JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_ResetAvoidContainer(JNIEnv* env, jclass,
                                                                              jlong c) {
    if (c == 0) return;
    GuardedVoid(env, [c] { AsContainer(c)->Reset(); });
}

JNIEXPORT jlong JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_CreateAvoidObject(
    JNIEnv* env, jclass, jlong c) {
    if (c == 0) return 0;
    return Guarded(env, jlong{0}, [c] { return HandleOf(AsContainer(c)->NewObject()); });
}

JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_DestroyAvoidObject(
    JNIEnv* env, jclass, jlong obj) {
    if (obj == 0) return;
    GuardedVoid(env, [obj] { delete AsObject(obj); });
}

JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_RecycleAvoidObject(
    JNIEnv* env, jclass, jlong c, jlong obj) {
    if (c == 0 || obj == 0) return;
    GuardedVoid(env, [c, obj] { AsContainer(c)->Recycle(AsObject(obj)); });
}

JNIEXPORT jboolean JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AddAvoidObject(
    JNIEnv* env, jclass, jlong c, jlong obj) {
    if (c == 0 || obj == 0) return JNI_FALSE;
    return Guarded(env, jboolean{JNI_FALSE}, [c, obj] {
        CAvoidContainer* container = AsContainer(c);
        return static_cast<jboolean>(container->Add(AsObject(obj), false) ? JNI_TRUE : JNI_FALSE);
    });
}

JNIEXPORT jboolean JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AddAvoidObjectForce(JNIEnv* env, jclass,
                                                                              jlong c, jlong obj) {
    if (c == 0 || obj == 0) return JNI_FALSE;
    return Guarded(env, jboolean{JNI_FALSE}, [c, obj] {
        CAvoidContainer* container = AsContainer(c);
        return static_cast<jboolean>(container->Add(AsObject(obj), true) ? JNI_TRUE : JNI_FALSE);
    });
}

JNIEXPORT jlongArray JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AllPlacedObject(JNIEnv* env, jclass,
                                                                          jlong c) {
    if (c == 0) return nullptr;
    return Guarded(env, jlongArray{nullptr},
                   [env, c] { return HandleArray(env, AsContainer(c)->PlacedObjects()); });
}

JNIEXPORT jlongArray JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AllUnPlacedObject(JNIEnv* env, jclass,
                                                                            jlong c) {
    if (c == 0) return nullptr;
    return Guarded(env, jlongArray{nullptr},
                   [env, c] { return HandleArray(env, AsContainer(c)->UnplacedObjects()); });
}

JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1Reset(
    JNIEnv* env, jclass, jlong obj) {
    if (obj == 0) return;
    GuardedVoid(env, [obj] { AsObject(obj)->Reset(); });
}

JNIEXPORT jint JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1PlacedState(JNIEnv*, jclass,
                                                                                   jlong obj) {
    return obj == 0 ? 0 : AsObject(obj)->PlacedState();
}

JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1SetID(
    JNIEnv*, jclass, jlong obj, jlong id) {
    if (obj != 0) AsObject(obj)->ID(id);
}

JNIEXPORT jlong JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1GetID(JNIEnv*, jclass,
                                                                             jlong obj) {
    return obj == 0 ? 0 : AsObject(obj)->ID();
}

// A null string, or one whose bytes cannot be fetched, stores the empty string.
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1SetStringID(JNIEnv* env,
                                                                                   jclass,
                                                                                   jlong obj,
                                                                                   jstring id) {
    if (obj == 0) return;
    GuardedVoid(env, [&] {
        CJavaUTFString bytes(env, id);
        AsObject(obj)->StringID(bytes.Bytes() != nullptr ? std::string(bytes.Bytes())
                                                         : std::string());
    });
}

// The empty string ID reads back as null.
JNIEXPORT jstring JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1GetStringID(JNIEnv* env,
                                                                                   jclass,
                                                                                   jlong obj) {
    if (obj == 0) return nullptr;
    return Guarded(env, jstring{nullptr}, [env, obj]() -> jstring {
        const std::string id = AsObject(obj)->StringID();
        return id.empty() ? nullptr : env->NewStringUTF(id.c_str());
    });
}

// Reports the current offset as {x, x}: the y component is never reported, by design of the
// Java interface.
JNIEXPORT jintArray JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1Offset(JNIEnv* env, jclass,
                                                                              jlong obj) {
    if (obj == 0) return nullptr;
    return Guarded(env, jintArray{nullptr}, [env, obj]() -> jintArray {
        jintArray result = env->NewIntArray(2);
        if (result == nullptr) return nullptr;
        const Location offset = AsObject(obj)->Offset();
        CJavaArray<int> out(env, result, true);
        int* e = out.Elements();
        if (e == nullptr) return nullptr;
        e[0] = offset.x;
        e[1] = offset.x;
        return result;
    });
}

JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1ClearOffset(JNIEnv* env,
                                                                                   jclass,
                                                                                   jlong obj) {
    if (obj == 0) return;
    GuardedVoid(env, [obj] { AsObject(obj)->ClearOffset(); });
}

JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1AddBox(JNIEnv* env, jclass,
                                                                              jlong obj, jint left,
                                                                              jint top, jint right,
                                                                              jint bottom) {
    if (obj == 0) return;
    GuardedVoid(env, [&] { AsObject(obj)->AddBox(Box(left, top, right, bottom)); });
}

JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1AddLines(JNIEnv* env, jclass,
                                                                                jlong obj,
                                                                                jintArray coords,
                                                                                jint width) {
    if (obj == 0) return;
    GuardedVoid(env, [&] {
        CJavaArray<int> array(env, coords, false);
        const CoordinateRun run = Coordinates(array);
        AsObject(obj)->AddLine(run.xy, run.count, width);
    });
}

JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1AddRing(JNIEnv* env, jclass,
                                                                               jlong obj,
                                                                               jintArray coords) {
    if (obj == 0) return;
    GuardedVoid(env, [&] {
        CJavaArray<int> array(env, coords, false);
        const CoordinateRun run = Coordinates(array);
        AsObject(obj)->AddRing(run.xy, run.count);
    });
}

// The object keeps its current offset as a position index, so appending never invalidates it.
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1AddOffset(JNIEnv* env,
                                                                                 jclass, jlong obj,
                                                                                 jint x, jint y) {
    if (obj == 0) return;
    GuardedVoid(env, [&] { AsObject(obj)->OffsetCollection().push_back(Location(x, y)); });
}

}  // extern "C"
