// What every native of the binding shares: handles turned back into pointers, and the guard that
// keeps a C++ exception from unwinding into the virtual machine (it becomes a pending Java error:
// OutOfMemoryError for an allocation failure, RuntimeException otherwise, and the native returns
// its null-handle result). Private to the binding; not installed.
#pragma once

#include <jni.h>

#include <cstdint>
#include <exception>
#include <new>

#include "placement/AvoidContainer.h"

namespace kxac::binding {

inline CPriorityAvoidContainer* AsContainer(jlong handle) {
    return reinterpret_cast<CPriorityAvoidContainer*>(static_cast<std::uintptr_t>(handle));
}

inline CAvoidObject* AsObject(jlong handle) {
    return reinterpret_cast<CAvoidObject*>(static_cast<std::uintptr_t>(handle));
}

inline jlong HandleOf(const void* p) {
    return static_cast<jlong>(reinterpret_cast<std::uintptr_t>(p));
}

// Raises a Java error unless one is already pending (a failed JNI call leaves its own).
inline void ThrowJava(JNIEnv* env, const char* className, const char* message) {
    if (env->ExceptionCheck()) return;
    jclass type = env->FindClass(className);
    if (type != nullptr) env->ThrowNew(type, message);
}

template <class R, class Body>
R Guarded(JNIEnv* env, R failed, Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        ThrowJava(env, "java/lang/OutOfMemoryError", "libKXAvoidContainer: out of native memory");
    } catch (const std::exception& e) {
        ThrowJava(env, "java/lang/RuntimeException", e.what());
    } catch (...) {
        ThrowJava(env, "java/lang/RuntimeException", "libKXAvoidContainer: native failure");
    }
    return failed;
}

template <class Body>
void GuardedVoid(JNIEnv* env, Body&& body) noexcept {
    Guarded(env, 0, [&] {
        body();
        return 0;
    });
}

}  // namespace kxac::binding
