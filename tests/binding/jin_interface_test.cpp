// The JNI discipline of the natives and their holders, checked against a recording stand-in for
// the virtual machine: which arrays are pinned, with which release mode and in which order, and
// that no null array or string ever reaches a JNI function. Behaviour seen from Java is covered by
// the JUnit suite of the Java module.
#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "binding/JINInterface.h"
#include "placement/AvoidContainer.h"

namespace {

struct FakeArray {
    std::string name;
    std::vector<jint> ints;
    std::vector<jdouble> doubles;
    std::vector<jlong> longs;
    std::size_t Size() const { return ints.size() + doubles.size() + longs.size(); }
};

// The member of a FakeArray that holds elements of type T.
template <class T>
using ArrayField = std::vector<T> FakeArray::*;

struct FakeString {
    std::string utf;
};

// A JNIEnv whose functions record their calls. Elements are handed out as fresh copies of exactly
// the array's length, so a read past the end is seen by the address sanitizer and changes reach
// the array only through a release with mode 0.
struct FakeJvm {
    JNIEnv env{};  // first member: a JNIEnv* leads back to its FakeJvm
    JNINativeInterface_ table{};
    std::vector<std::string> calls;
    std::deque<FakeArray> arrays;
    std::deque<FakeString> strings;
    int pinned = 0;
    bool failFetch = false;
    std::string throwOnLengthOf;
    std::string thrown;

    FakeJvm() {
        env.functions = &table;
        table.GetArrayLength = &GetArrayLength;
        table.GetIntArrayElements = &GetElements<jint, jintArray, &FakeArray::ints>;
        table.GetDoubleArrayElements = &GetElements<jdouble, jdoubleArray, &FakeArray::doubles>;
        table.GetLongArrayElements = &GetElements<jlong, jlongArray, &FakeArray::longs>;
        table.ReleaseIntArrayElements = &ReleaseElements<jint, jintArray, &FakeArray::ints>;
        table.ReleaseDoubleArrayElements =
            &ReleaseElements<jdouble, jdoubleArray, &FakeArray::doubles>;
        table.ReleaseLongArrayElements = &ReleaseElements<jlong, jlongArray, &FakeArray::longs>;
        table.NewIntArray = &NewArray<jintArray, &FakeArray::ints>;
        table.NewLongArray = &NewArray<jlongArray, &FakeArray::longs>;
        table.GetStringUTFChars = &GetStringUTFChars;
        table.ReleaseStringUTFChars = &ReleaseStringUTFChars;
        table.ExceptionCheck = [](JNIEnv* e) -> jboolean {
            return Of(e).thrown.empty() ? JNI_FALSE : JNI_TRUE;
        };
        table.FindClass = [](JNIEnv*, const char* name) {
            return reinterpret_cast<jclass>(const_cast<char*>(name));
        };
        table.ThrowNew = [](JNIEnv* e, jclass type, const char*) -> jint {
            Of(e).thrown = reinterpret_cast<const char*>(type);
            return 0;
        };
    }
    FakeJvm(const FakeJvm&) = delete;
    FakeJvm& operator=(const FakeJvm&) = delete;

    static FakeJvm& Of(JNIEnv* e) { return *reinterpret_cast<FakeJvm*>(e); }
    static FakeArray& Of(jarray a) { return *reinterpret_cast<FakeArray*>(a); }

    template <class A>
    A Array(FakeArray a) {
        arrays.push_back(std::move(a));
        return reinterpret_cast<A>(&arrays.back());
    }
    jintArray Ints(const std::string& name, std::vector<jint> v) {
        return Array<jintArray>({name, std::move(v), {}, {}});
    }
    jdoubleArray Doubles(const std::string& name, std::vector<jdouble> v) {
        return Array<jdoubleArray>({name, {}, std::move(v), {}});
    }
    jstring String(const std::string& utf) {
        strings.push_back({utf});
        return reinterpret_cast<jstring>(&strings.back());
    }

    static jsize JNICALL GetArrayLength(JNIEnv* e, jarray a) {
        EXPECT_NE(a, nullptr) << "GetArrayLength on a null array";
        FakeJvm& jvm = Of(e);
        jvm.calls.push_back("length " + Of(a).name);
        if (Of(a).name == jvm.throwOnLengthOf) throw std::bad_alloc();
        return static_cast<jsize>(Of(a).Size());
    }
    template <class T, class A, ArrayField<T> field>
    static T* JNICALL GetElements(JNIEnv* e, A a, jboolean*) {
        EXPECT_NE(a, nullptr) << "elements of a null array";
        FakeJvm& jvm = Of(e);
        jvm.calls.push_back("get " + Of(a).name);
        if (jvm.failFetch) return nullptr;
        const std::vector<T>& v = Of(a).*field;
        T* copy = new T[v.size() + (v.empty() ? 1 : 0)];
        std::copy(v.begin(), v.end(), copy);
        ++jvm.pinned;
        return copy;
    }
    template <class T, class A, ArrayField<T> field>
    static void JNICALL ReleaseElements(JNIEnv* e, A a, T* elements, jint mode) {
        EXPECT_NE(a, nullptr) << "release of a null array";
        FakeJvm& jvm = Of(e);
        jvm.calls.push_back("release " + Of(a).name + (mode == JNI_ABORT ? " abort" : " commit"));
        std::vector<T>& v = Of(a).*field;
        if (mode != JNI_ABORT) std::copy(elements, elements + v.size(), v.begin());
        if (mode != JNI_COMMIT) {
            delete[] elements;
            --jvm.pinned;
        }
    }
    template <class A, auto field>
    static A JNICALL NewArray(JNIEnv* e, jsize n) {
        FakeArray a{"new", {}, {}, {}};
        (a.*field).resize(static_cast<std::size_t>(n));
        return Of(e).Array<A>(std::move(a));
    }
    static const char* JNICALL GetStringUTFChars(JNIEnv* e, jstring s, jboolean*) {
        EXPECT_NE(s, nullptr) << "bytes of a null string";
        FakeJvm& jvm = Of(e);
        jvm.calls.push_back("get string");
        if (jvm.failFetch) return nullptr;
        ++jvm.pinned;
        const std::string& utf = reinterpret_cast<FakeString*>(s)->utf;
        char* copy = new char[utf.size() + 1];
        std::copy(utf.c_str(), utf.c_str() + utf.size() + 1, copy);
        return copy;
    }
    static void JNICALL ReleaseStringUTFChars(JNIEnv* e, jstring s, const char* bytes) {
        EXPECT_NE(s, nullptr) << "release of a null string";
        Of(e).calls.push_back("release string");
        --Of(e).pinned;
        delete[] bytes;
    }
};

#define NATIVE(name) Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_##name

CAvoidContainer* Container(jlong handle) {
    return reinterpret_cast<CPriorityAvoidContainer*>(static_cast<std::uintptr_t>(handle));
}
CAvoidObject* Object(jlong handle) {
    return reinterpret_cast<CAvoidObject*>(static_cast<std::uintptr_t>(handle));
}

// A container on a 100 x 100 canvas at the origin, destroyed with the fixture.
class NativesTest : public ::testing::Test {
protected:
    void SetUp() override {
        c = NATIVE(CreateAvoidContainer)(&jvm.env, nullptr);
        ASSERT_NE(c, 0);
        NATIVE(AvoidContainerExtent)
        (&jvm.env, nullptr, c, jvm.Ints("rect", {0, 0, 100, 100}), nullptr);
        jvm.calls.clear();
    }
    void TearDown() override {
        EXPECT_TRUE(NATIVE(DestroyAvoidContainer)(&jvm.env, nullptr, c));
        EXPECT_EQ(jvm.pinned, 0) << "elements left pinned";
    }

    FakeJvm jvm;
    jlong c = 0;
};

using Calls = std::vector<std::string>;

}  // namespace

TEST(JavaArray, CommitCopiesChangesBackAndAbortDropsThem) {
    FakeJvm jvm;
    jintArray kept = jvm.Ints("kept", {1, 2});
    jintArray dropped = jvm.Ints("dropped", {1, 2});
    {
        CJavaArray<int> unused(&jvm.env, jvm.Ints("unused", {1}), true);
        CJavaArray<double> none(&jvm.env, nullptr, false);
        EXPECT_EQ(none.Length(), 0);
        EXPECT_EQ(none.Elements(), nullptr);
        CJavaArray<int> commit(&jvm.env, kept, true);
        CJavaArray<int> abort(&jvm.env, dropped, false);
        commit.Elements()[0] = 7;
        abort.Elements()[0] = 7;
        EXPECT_EQ(commit.Elements(), commit.Elements()) << "elements are fetched once";
    }
    EXPECT_EQ(FakeJvm::Of(kept).ints, (std::vector<jint>{7, 2}));
    EXPECT_EQ(FakeJvm::Of(dropped).ints, (std::vector<jint>{1, 2}));
    EXPECT_EQ(jvm.calls,
              (Calls{"get kept", "get dropped", "release dropped abort", "release kept commit"}));
}

TEST(JavaArray, FailedFetchIsNotReleased) {
    FakeJvm jvm;
    jvm.failFetch = true;
    {
        CJavaArray<int> held(&jvm.env, jvm.Ints("a", {1}), true);
        EXPECT_EQ(held.Elements(), nullptr);
    }
    EXPECT_EQ(jvm.calls, (Calls{"get a"}));
}

TEST(JavaUTFString, FetchesAtOnceAndReleasesOnlyWhatWasFetched) {
    FakeJvm jvm;
    {
        CJavaUTFString held(&jvm.env, jvm.String("ab"));
        EXPECT_STREQ(held.Bytes(), "ab");
        CJavaUTFString none(&jvm.env, nullptr);
    }
    EXPECT_EQ(jvm.calls, (Calls{"get string", "release string"}));
    jvm.failFetch = true;
    {
        CJavaUTFString failed(&jvm.env, jvm.String("x"));
        EXPECT_EQ(failed.Bytes(), nullptr);
    }
    EXPECT_EQ(jvm.calls.back(), "get string");
    EXPECT_EQ(jvm.calls.size(), 3u);
}

TEST_F(NativesTest, CreatedContainerStartsAtResolutionZero) {
    FakeJvm other;
    const jlong fresh = NATIVE(CreateAvoidContainer)(&other.env, nullptr);
    ASSERT_NE(fresh, 0);
    EXPECT_EQ(Container(fresh)->DT()->resolution, 0.0);
    EXPECT_TRUE(NATIVE(DestroyAvoidContainer)(&other.env, nullptr, fresh));
}

TEST_F(NativesTest, ExtentReleasesMapExtentBeforeDeviceRect) {
    NATIVE(AvoidContainerExtent)
    (&jvm.env, nullptr, c, jvm.Ints("rect", {0, 0, 100, 50, 99}),
     jvm.Doubles("extent", {0, 0, 1000, 1000}));
    EXPECT_EQ(jvm.calls, (Calls{"length rect", "get rect", "length extent", "get extent",
                                "release extent abort", "release rect abort"}));
    const CDT& dt = *Container(c)->DT();
    EXPECT_EQ(dt.width, 100);
    EXPECT_EQ(dt.height, 50);
    EXPECT_EQ(dt.resolution, 20.0);
    EXPECT_EQ(dt.minX, -500.0);
    EXPECT_EQ(dt.maxX, 1500.0);
}

TEST_F(NativesTest, ExtentSkipsShortAndNullArraysWithoutFetching) {
    NATIVE(AvoidContainerExtent)
    (&jvm.env, nullptr, c, jvm.Ints("rect", {0, 0, 10}), jvm.Doubles("extent", {0, 0, 200, 100}));
    EXPECT_EQ(jvm.calls,
              (Calls{"length rect", "length extent", "get extent", "release extent abort"}));
    EXPECT_EQ(Container(c)->DT()->width, 100) << "a short rect leaves the device rectangle";
    EXPECT_EQ(Container(c)->DT()->resolution, 2.0);

    jvm.calls.clear();
    NATIVE(AvoidContainerExtent)(&jvm.env, nullptr, c, nullptr, nullptr);
    NATIVE(AvoidContainerExtent)(&jvm.env, nullptr, 0, jvm.Ints("rect", {1, 2, 3, 4}), nullptr);
    EXPECT_TRUE(jvm.calls.empty());
}

TEST_F(NativesTest, ExceptionBecomesJavaErrorAndHeldArraysAreReleased) {
    jvm.throwOnLengthOf = "extent";
    NATIVE(AvoidContainerExtent)
    (&jvm.env, nullptr, c, jvm.Ints("rect", {0, 0, 100, 100}), jvm.Doubles("extent", {0, 0, 1, 1}));
    EXPECT_EQ(jvm.thrown, "java/lang/OutOfMemoryError");
    EXPECT_EQ(jvm.calls.back(), "release rect abort");
}

TEST_F(NativesTest, ResultListsReachJavaThroughCommittedRelease) {
    EXPECT_EQ(NATIVE(AllPlacedObject)(&jvm.env, nullptr, c), nullptr);
    std::vector<jlong> added;
    for (int i = 0; i < 3; ++i) {
        added.push_back(NATIVE(CreateAvoidObject)(&jvm.env, nullptr, c));
        NATIVE(AddAvoidObjectForce)(&jvm.env, nullptr, c, added.back());
    }
    jlongArray placed = NATIVE(AllPlacedObject)(&jvm.env, nullptr, c);
    ASSERT_NE(placed, nullptr);
    EXPECT_EQ(FakeJvm::Of(placed).longs, added);
    EXPECT_EQ(jvm.calls.back(), "release new commit");
    EXPECT_EQ(NATIVE(AllUnPlacedObject)(&jvm.env, nullptr, c), nullptr);
}

TEST_F(NativesTest, NullCoordinatesOnlyRecordTheRunExtent) {
    const jlong obj = NATIVE(CreateAvoidObject)(&jvm.env, nullptr, c);
    NATIVE(AvoidObject_1AddLines)(&jvm.env, nullptr, obj, jvm.Ints("line", {0, 5, 10, 5}), 1);
    jvm.calls.clear();
    NATIVE(AvoidObject_1AddLines)(&jvm.env, nullptr, obj, nullptr, 1);
    NATIVE(AvoidObject_1AddRing)(&jvm.env, nullptr, obj, nullptr);
    EXPECT_TRUE(jvm.calls.empty());
    EXPECT_EQ(Object(obj)->RLEMaxExtent(), Box(0, 4, 9, 5));
    NATIVE(DestroyAvoidObject)(&jvm.env, nullptr, obj);
}

TEST_F(NativesTest, StringIdFromNullOrUnreadableStringIsEmpty) {
    const jlong obj = NATIVE(CreateAvoidObject)(&jvm.env, nullptr, c);
    NATIVE(AvoidObject_1SetStringID)(&jvm.env, nullptr, obj, jvm.String("ab"));
    EXPECT_EQ(Object(obj)->StringID(), "ab");
    NATIVE(AvoidObject_1SetStringID)(&jvm.env, nullptr, obj, nullptr);
    EXPECT_EQ(Object(obj)->StringID(), "");
    NATIVE(AvoidObject_1SetStringID)(&jvm.env, nullptr, obj, jvm.String("ab"));
    jvm.failFetch = true;
    NATIVE(AvoidObject_1SetStringID)(&jvm.env, nullptr, obj, jvm.String("cd"));
    EXPECT_EQ(Object(obj)->StringID(), "");
    EXPECT_EQ(jvm.calls, (Calls{"get string", "release string", "get string", "release string",
                                "get string"}));
    NATIVE(DestroyAvoidObject)(&jvm.env, nullptr, obj);
}

// A virtual machine that offers environments up to a given JNI version.
struct FakeVm {
    JavaVM vm{};  // first member: a JavaVM* leads back to its FakeVm
    JNIInvokeInterface_ table{};
    FakeJvm jvm;
    jint supported = JNI_VERSION_1_8;

    FakeVm() {
        vm.functions = &table;
        table.GetEnv = [](JavaVM* v, void** env, jint version) -> jint {
            FakeVm& self = *reinterpret_cast<FakeVm*>(v);
            if (version > self.supported) return JNI_EVERSION;
            *env = &self.jvm.env;
            return JNI_OK;
        };
    }
};

TEST(JniOnLoad, NamesJni12AndRefusesAnOlderMachine) {
    FakeVm vm;
    EXPECT_EQ(JNI_OnLoad(&vm.vm, nullptr), JNI_VERSION_1_2);
    vm.supported = JNI_VERSION_1_2;
    EXPECT_EQ(JNI_OnLoad(&vm.vm, nullptr), JNI_VERSION_1_2);
    vm.supported = JNI_VERSION_1_1;
    EXPECT_EQ(JNI_OnLoad(&vm.vm, nullptr), JNI_ERR);
    EXPECT_EQ(JNI_OnLoad(nullptr, nullptr), JNI_ERR);
}
