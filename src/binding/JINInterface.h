// The Java face of the library: the native methods of the Java class
// com.tavrint.core.util.index.grid.CAvoidContainerWrap, and the two scoped holders through which
// they touch Java strings and primitive arrays.
//
// Handles are the addresses of native objects passed to Java as jlong; 0 is the null handle and is
// the only one that is checked. A container handle points to a CPriorityAvoidContainer, an object
// handle to a CAvoidObject. The natives keep no state of their own.
//
// A null Java array or string is treated as absent: the holders never hand it to a JNI function,
// report a length of 0 and no elements or bytes.
#pragma once

#include <jni.h>

#include <type_traits>

// The modified UTF-8 bytes of a Java string, fetched at construction and released at destruction.
class CJavaUTFString {
public:
    CJavaUTFString(JNIEnv* env, jstring string) : env_(env), string_(string) {
        if (env_ != nullptr && string_ != nullptr) {
            jboolean isCopy = JNI_FALSE;  // asked for by the call, never read
            bytes_ = env_->GetStringUTFChars(string_, &isCopy);
        }
    }
    // Releases only what was obtained: bytes, string and environment all non-null.
    virtual ~CJavaUTFString() {
        if (bytes_ != nullptr && string_ != nullptr && env_ != nullptr) {
            env_->ReleaseStringUTFChars(string_, bytes_);
        }
    }
    CJavaUTFString(const CJavaUTFString&) = delete;
    CJavaUTFString& operator=(const CJavaUTFString&) = delete;

    // Zero-terminated bytes, or null when the string is null or could not be fetched.
    const char* Bytes() const { return bytes_; }

private:
    JNIEnv* env_;
    jstring string_;
    const char* bytes_ = nullptr;
};

// The JNI array type and element functions that belong to one C++ element type.
template <class T>
struct CJavaArrayTraits;

// jint is int on Linux and macOS and long on Windows; both are 32-bit signed integers.
template <>
struct CJavaArrayTraits<int> {
    using Array = jintArray;
    static_assert(sizeof(jint) == sizeof(int) && std::is_signed<jint>::value &&
                      std::is_integral<jint>::value,
                  "jint must be a 32-bit signed integer");
    static int* Get(JNIEnv* env, jintArray a) {
        return reinterpret_cast<int*>(env->GetIntArrayElements(a, nullptr));
    }
    static void Release(JNIEnv* env, jintArray a, int* e, jint mode) {
        env->ReleaseIntArrayElements(a, reinterpret_cast<jint*>(e), mode);
    }
};

template <>
struct CJavaArrayTraits<double> {
    using Array = jdoubleArray;
    static_assert(std::is_same<jdouble, double>::value, "jdouble must be double");
    static double* Get(JNIEnv* env, jdoubleArray a) {
        return env->GetDoubleArrayElements(a, nullptr);
    }
    static void Release(JNIEnv* env, jdoubleArray a, double* e, jint mode) {
        env->ReleaseDoubleArrayElements(a, e, mode);
    }
};

// jlong is long on LP64 Linux and long long elsewhere; both are 64 bits wide.
template <>
struct CJavaArrayTraits<long long> {
    using Array = jlongArray;
    static_assert(sizeof(jlong) == sizeof(long long), "jlong must be 64 bits wide");
    static long long* Get(JNIEnv* env, jlongArray a) {
        return reinterpret_cast<long long*>(env->GetLongArrayElements(a, nullptr));
    }
    static void Release(JNIEnv* env, jlongArray a, long long* e, jint mode) {
        env->ReleaseLongArrayElements(a, reinterpret_cast<jlong*>(e), mode);
    }
};

// The elements of a Java primitive array, fetched on first request and released at destruction:
// with mode 0 (copy back) when commit is set, with JNI_ABORT (changes dropped) otherwise. An array
// whose elements are never requested is never pinned and its destructor makes no JNI call.
template <class T>
class CJavaArray {
public:
    using Traits = CJavaArrayTraits<T>;
    using Array = typename Traits::Array;

    CJavaArray(JNIEnv* env, Array array, bool commit) : env_(env), array_(array), commit_(commit) {}
    virtual ~CJavaArray() {
        if (elements_ != nullptr) Traits::Release(env_, array_, elements_, commit_ ? 0 : JNI_ABORT);
    }
    CJavaArray(const CJavaArray&) = delete;
    CJavaArray& operator=(const CJavaArray&) = delete;

    // Number of elements; 0 for a null array.
    jsize Length() const { return array_ != nullptr ? env_->GetArrayLength(array_) : 0; }

    // The elements, fetched once; null for a null array or when the fetch failed.
    T* Elements() {
        if (elements_ == nullptr && array_ != nullptr) elements_ = Traits::Get(env_, array_);
        return elements_;
    }

private:
    JNIEnv* env_;
    Array array_;
    T* elements_ = nullptr;
    bool commit_;
};

// The natives, under the names the Java virtual machine binds them by. They are static methods
// of the Java class, so the second argument is the class; no native uses it.
extern "C" {
JNIEXPORT jlong JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_CreateAvoidContainer(JNIEnv*, jclass);
JNIEXPORT jboolean JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_DestroyAvoidContainer(JNIEnv*, jclass,
                                                                                jlong c);
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidContainerExtent(JNIEnv*, jclass,
                                                                               jlong c,
                                                                               jintArray rect,
                                                                               jdoubleArray extent);
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_ResetAvoidContainer(JNIEnv*, jclass,
                                                                              jlong c);
JNIEXPORT jlong JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_CreateAvoidObject(
    JNIEnv*, jclass, jlong c);
JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_DestroyAvoidObject(
    JNIEnv*, jclass, jlong obj);
JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_RecycleAvoidObject(
    JNIEnv*, jclass, jlong c, jlong obj);
JNIEXPORT jboolean JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AddAvoidObject(
    JNIEnv*, jclass, jlong c, jlong obj);
JNIEXPORT jboolean JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AddAvoidObjectForce(JNIEnv*, jclass,
                                                                              jlong c, jlong obj);
JNIEXPORT jlongArray JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AllPlacedObject(JNIEnv*, jclass, jlong c);
JNIEXPORT jlongArray JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AllUnPlacedObject(JNIEnv*, jclass,
                                                                            jlong c);
JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1Reset(
    JNIEnv*, jclass, jlong obj);
JNIEXPORT jint JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1PlacedState(JNIEnv*, jclass,
                                                                                   jlong obj);
JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1SetID(
    JNIEnv*, jclass, jlong obj, jlong id);
JNIEXPORT jlong JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1GetID(JNIEnv*, jclass,
                                                                             jlong obj);
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1SetStringID(JNIEnv*, jclass,
                                                                                   jlong obj,
                                                                                   jstring id);
JNIEXPORT jstring JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1GetStringID(JNIEnv*, jclass,
                                                                                   jlong obj);
JNIEXPORT jintArray JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1Offset(JNIEnv*, jclass,
                                                                              jlong obj);
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1ClearOffset(JNIEnv*, jclass,
                                                                                   jlong obj);
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1AddBox(JNIEnv*, jclass,
                                                                              jlong obj, jint left,
                                                                              jint top, jint right,
                                                                              jint bottom);
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1AddLines(JNIEnv*, jclass,
                                                                                jlong obj,
                                                                                jintArray coords,
                                                                                jint width);
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1AddRing(JNIEnv*, jclass,
                                                                               jlong obj,
                                                                               jintArray coords);
JNIEXPORT void JNICALL
Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_AvoidObject_1AddOffset(JNIEnv*, jclass,
                                                                                 jlong obj, jint x,
                                                                                 jint y);
}

// The natives of the package-private Java class com.tavrint.core.util.index.grid.AvoidNatives:
// what the handle-free Java layer needs beyond the natives above, each one call into the library.
extern "C" {
// Hands out an object as CreateAvoidObject does, with its string ID emptied (a pooled object
// keeps the one of its previous use). 0 for the null handle.
JNIEXPORT jlong JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_newObject(JNIEnv*,
                                                                                     jclass,
                                                                                     jlong c);
// Adds the cells left..right by top..bottom (inclusive) as the ring on their outer corners.
JNIEXPORT void JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_addRect(
    JNIEnv*, jclass, jlong obj, jint left, jint top, jint right, jint bottom);
// Adds the object (placed or rejected, or forced) and returns its placed state; 0 for a null
// handle.
JNIEXPORT jint JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_add(JNIEnv*, jclass,
                                                                              jlong c, jlong obj,
                                                                              jboolean force);
// The current offset, x in the high 32 bits and y in the low 32 bits; 0 for the null handle.
JNIEXPORT jlong JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_offset(JNIEnv*, jclass,
                                                                                  jlong obj);
// The position of the current offset among the object's offsets, 0 for the (0, 0) it starts
// with; the number of offsets when the position lies past them; -1 for the null handle.
JNIEXPORT jint JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_candidate(JNIEnv*, jclass,
                                                                                    jlong obj);
// The library's version, "major.minor.patch".
JNIEXPORT jstring JNICALL Java_com_tavrint_core_util_index_grid_AvoidNatives_libraryVersion(JNIEnv*,
                                                                                            jclass);
}
