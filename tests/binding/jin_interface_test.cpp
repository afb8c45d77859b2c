// The natives against a recording stand-in for the virtual machine: what each one fetches and
// releases, in which order and with which mode; that no null array ever reaches a JNI function;
// and that a pass through the natives gives the answers of the C++ API. Strings, and the loading
// of the library, are tested from Java against a real virtual machine.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <list>
#include <new>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "binding/JINInterface.h"
#include "placement/AvoidContainer.h"

namespace {

struct FakeArray {
    std::string name;
    std::vector<jint> ints;
    std::vector<jdouble> doubles;
    std::vector<jlong> longs;
};

// A JNIEnv whose functions log their calls ("length NAME", "get NAME", "release NAME abort" or
// "commit"). Elements are handed out as fresh copies of the array, so a read past the end or a
// copy never released is seen by the address sanitizer, and changes reach the array only through
// a release with mode 0. It has no string functions: a native that asks for a string's bytes
// crashes the test, as one that hands it a null array does.
struct FakeJvm {
    JNIEnv env{};  // first member: a JNIEnv* leads back to its FakeJvm
    JNINativeInterface_ table{};
    std::string calls;  // ", "-separated
    std::deque<FakeArray> arrays;
    bool failFetch = false;
    std::string throwOnLengthOf, thrown;

    FakeJvm() {
        env.functions = &table;
        table.GetArrayLength = [](JNIEnv* e, jarray a) -> jsize {
            Of(e).Call("length " + Of(a).name);
            if (Of(a).name == Of(e).throwOnLengthOf) throw std::bad_alloc();
            return static_cast<jsize>(Of(a).ints.size() + Of(a).doubles.size());
        };
        table.GetIntArrayElements = &Get<jint, jintArray, &FakeArray::ints>;
        table.GetDoubleArrayElements = &Get<jdouble, jdoubleArray, &FakeArray::doubles>;
        table.GetLongArrayElements = &Get<jlong, jlongArray, &FakeArray::longs>;
        table.ReleaseIntArrayElements = &Release<jint, jintArray, &FakeArray::ints>;
        table.ReleaseDoubleArrayElements = &Release<jdouble, jdoubleArray, &FakeArray::doubles>;
        table.ReleaseLongArrayElements = &Release<jlong, jlongArray, &FakeArray::longs>;
        table.NewIntArray = [](JNIEnv* e, jsize n) {
            return Of(e).Ints("new", std::vector<jint>(n, 0));
        };
        table.NewLongArray = [](JNIEnv* e, jsize n) {
            return Of(e).Array<jlongArray>({"new", {}, {}, std::vector<jlong>(n)});
        };
        table.ExceptionCheck = [](JNIEnv*) -> jboolean { return JNI_FALSE; };
        table.FindClass = [](JNIEnv*, const char* n) { return (jclass)(const_cast<char*>(n)); };
        table.ThrowNew = [](JNIEnv* e, jclass type, const char*) -> jint {
            Of(e).thrown = reinterpret_cast<const char*>(type);
            return 0;
        };
    }

    static FakeJvm& Of(JNIEnv* e) { return *reinterpret_cast<FakeJvm*>(e); }
    static FakeArray& Of(jarray a) { return *reinterpret_cast<FakeArray*>(a); }

    template <class A>
    A Array(FakeArray a) {
        arrays.push_back(std::move(a));
        return reinterpret_cast<A>(&arrays.back());
    }
    jintArray Ints(std::string n, std::vector<jint> v) { return Array<jintArray>({n, v, {}, {}}); }
    jdoubleArray Doubles(std::vector<jdouble> v) { return Array<jdoubleArray>({"map", {}, v, {}}); }
    void Call(const std::string& call) { calls += (calls.empty() ? "" : ", ") + call; }
    std::string Log() { return std::exchange(calls, ""); }

    template <class T, class A, auto field>
    static T* JNICALL Get(JNIEnv* e, A a, jboolean*) {
        Of(e).Call("get " + Of(a).name);
        if (Of(e).failFetch) return nullptr;
        const std::vector<T>& v = Of(a).*field;
        return std::copy(v.begin(), v.end(), new T[v.size() + v.empty()]) - v.size();
    }
    template <class T, class A, auto field>
    static void JNICALL Release(JNIEnv* e, A a, T* elements, jint mode) {
        Of(e).Call("release " + Of(a).name + (mode == JNI_ABORT ? " abort" : " commit"));
        if (mode != JNI_ABORT) std::copy_n(elements, (Of(a).*field).size(), (Of(a).*field).begin());
        delete[] elements;
    }
};

#define NATIVE(name) Java_com_tavrint_core_util_index_grid_CAvoidContainerWrap_##name
#define CALL(name, ...) NATIVE(name)(&t.jvm.env, nullptr, __VA_ARGS__)

template <class T = CAvoidObject>
T* At(jlong h) {
    return reinterpret_cast<T*>(static_cast<std::uintptr_t>(h));
}
std::string S(jlong v) { return std::to_string(v); }

// A container on a 100 x 100 canvas with one object handed out, covering the cells (0..9, 0..9),
// destroyed with the fixture.
struct Pass {
    FakeJvm jvm;
    jlong c = NATIVE(CreateAvoidContainer)(&jvm.env, nullptr);
    jlong obj = (FitDeviceRect(*At<CPriorityAvoidContainer>(c)->DT(), 0, 0, 100, 100),
                 NATIVE(CreateAvoidObject)(&jvm.env, nullptr, c));

    Pass() { At(obj)->AddRing(std::vector<int>{0, 0, 10, 0, 10, 10, 0, 10}.data(), 8); }
    ~Pass() {
        NATIVE(DestroyAvoidObject)(&jvm.env, nullptr, obj);  // handed out, never added: not owned
        EXPECT_TRUE(NATIVE(DestroyAvoidContainer)(&jvm.env, nullptr, c));
    }

    std::string Extent() const {
        const Box e = At(obj)->RLEMaxExtent();
        return S(e.left) + " " + S(e.top) + " " + S(e.right) + " " + S(e.bottom);
    }
    std::string Canvas() const {
        const CDT& dt = *At<CPriorityAvoidContainer>(c)->DT();
        return S(dt.width) + "x" + S(dt.height) + " at " + std::to_string(dt.resolution) +
               " from " + std::to_string(dt.minX);
    }
};

struct Case {
    const char* what;
    std::string (*call)(Pass&);
    std::string result, log;
};
#define ROW(what, result, log, ...)                              \
    Case {                                                       \
        what, [](Pass& t) { return (__VA_ARGS__); }, result, log \
    }

}  // namespace

// Each native on a null handle, and those that take arrays or strings on null ones: each returns
// its null result (0, false or a null array) and makes no JNI call.
TEST(Natives, NullHandlesAndNullArraysReachNoJniFunction) {
    Pass t;
    CALL(AvoidContainerExtent, 0, t.jvm.Ints("rect", {0, 0, 9, 9}), nullptr);
    CALL(AvoidContainerExtent, t.c, nullptr, nullptr);
    CALL(ResetAvoidContainer, 0), CALL(DestroyAvoidObject, 0);
    CALL(RecycleAvoidObject, 0, t.obj), CALL(RecycleAvoidObject, t.c, 0);
    CALL(AvoidObject_1Reset, 0), CALL(AvoidObject_1SetID, 0, 5), CALL(AvoidObject_1ClearOffset, 0);
    CALL(AvoidObject_1SetStringID, 0, nullptr), CALL(AvoidObject_1SetStringID, t.obj, nullptr);
    CALL(AvoidObject_1AddBox, 0, 0, 0, 9, 9), CALL(AvoidObject_1AddOffset, 0, 1, 1);
    CALL(AvoidObject_1AddLines, 0, t.jvm.Ints("line", {0, 0, 9, 9}), 1);
    CALL(AvoidObject_1AddLines, t.obj, nullptr, 1), CALL(AvoidObject_1AddRing, t.obj, nullptr);
    CALL(AvoidObject_1AddRing, 0, t.jvm.Ints("ring", {0, 0, 9, 0, 9, 9}));
    EXPECT_FALSE(CALL(DestroyAvoidContainer, 0) || CALL(CreateAvoidObject, 0) ||
                 CALL(AddAvoidObject, 0, t.obj) || CALL(AddAvoidObject, t.c, 0) ||
                 CALL(AddAvoidObjectForce, 0, t.obj) || CALL(AddAvoidObjectForce, t.c, 0) ||
                 CALL(AvoidObject_1PlacedState, 0) || CALL(AvoidObject_1GetID, 0) ||
                 CALL(AllPlacedObject, 0) || CALL(AllPlacedObject, t.c) ||
                 CALL(AllUnPlacedObject, 0) || CALL(AvoidObject_1GetStringID, 0) ||
                 CALL(AvoidObject_1Offset, 0));
    EXPECT_EQ(t.jvm.Log(), "") << "no JNI call";
}

// Short, odd-length and unreadable arguments: what is fetched and released, in which order and
// mode, and what the native made of them. A C++ exception becomes a pending Java error, with the
// arrays held so far released.
TEST(Natives, ShortOddAndUnreadableArguments) {
    const Case kCases[] = {
        ROW("short rect", "100x100 at 2.000000 from 0.000000",
            "length rect, length map, get map, release map abort",
            CALL(AvoidContainerExtent, t.c, t.jvm.Ints("rect", {0, 0, 10}),
                 t.jvm.Doubles({0, 0, 200, 100})),
            t.Canvas()),
        ROW("map extent released first", "100x50 at 20.000000 from -500.000000",
            "length rect, get rect, length map, get map, release map abort, release rect abort",
            CALL(AvoidContainerExtent, t.c, t.jvm.Ints("rect", {0, 0, 100, 50, 9}),
                 t.jvm.Doubles({0, 0, 1000, 1000})),
            t.Canvas()),
        ROW("odd line", "0 0 29 9", "length line, get line, release line abort",
            CALL(AvoidObject_1AddLines, t.obj, t.jvm.Ints("line", {20, 5, 30, 5, 77}), 1),
            t.Extent()),
        ROW("unreadable ring", "0 0 9 9", "length ring, get ring", t.jvm.failFetch = true,
            CALL(AvoidObject_1AddRing, t.obj, t.jvm.Ints("ring", {20, 20, 30, 20, 30, 30})),
            t.Extent()),
        ROW("exception", "java/lang/OutOfMemoryError",
            "length rect, get rect, length map, release rect abort", t.jvm.throwOnLengthOf = "map",
            CALL(AvoidContainerExtent, t.c, t.jvm.Ints("rect", {0, 0, 9, 9}), t.jvm.Doubles({})),
            t.jvm.thrown),
    };
    for (const Case& k : kCases) {
        SCOPED_TRACE(k.what);
        Pass t;
        EXPECT_EQ(k.call(t), k.result);
        EXPECT_EQ(t.jvm.Log(), k.log);
    }
}

// A seeded pass of triangles and L-shaped lines with offsets, some forced, through the natives
// and through the C++ API side by side: the same result lists, each object with the same state
// and offset (whose x the natives report twice).
TEST(Natives, PassGivesTheAnswersOfTheCppApi) {
    Pass t;
    CPriorityAvoidContainer ref;
    FitDeviceRect(*ref.DT(), 0, 0, 100, 100);
    std::mt19937 rng(13);
    auto r = [&rng](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
    for (int i = 1; i <= 300; ++i) {
        const jlong obj = CALL(CreateAvoidObject, t.c);
        CAvoidObject* o = ref.NewObject();
        CALL(AvoidObject_1SetID, obj, i), o->ID(i);
        const int x = r(95), y = r(95), s = 1 + r(15), width = r(4);  // width 0: a ring
        std::vector<int> p = {x, y, x + s, y, x + s, y + s};
        const std::vector<jint> jp(p.begin(), p.end());  // jint is long on Windows
        width ? (CALL(AvoidObject_1AddLines, obj, t.jvm.Ints("p", jp), width),
                 o->AddLine(&p[0], 6, width))
              : (CALL(AvoidObject_1AddRing, obj, t.jvm.Ints("p", jp)), o->AddRing(&p[0], 6));
        for (int k = r(4); k > 0; --k) {
            const Location at(r(41) - 20, r(41) - 20);
            CALL(AvoidObject_1AddOffset, obj, at.x, at.y), o->OffsetCollection().push_back(at);
        }
        if (r(10) == 0) CALL(AvoidObject_1ClearOffset, obj), o->ClearOffset();
        const bool force = r(10) == 0;
        const auto add = force ? NATIVE(AddAvoidObjectForce) : NATIVE(AddAvoidObject);
        EXPECT_EQ(add(&t.jvm.env, nullptr, t.c, obj), ref.Add(o, force));
    }
    auto same = [&t](jlongArray handles, const std::list<CAvoidObject*>& list) {
        ASSERT_EQ(FakeJvm::Of(handles).longs.size(), list.size());
        auto o = list.begin();
        for (jlong h : FakeJvm::Of(handles).longs) {
            const std::vector<jint> at = FakeJvm::Of(CALL(AvoidObject_1Offset, h)).ints;
            const CAvoidObject& r = **o++;
            // The offset native answers the x twice: its second element is not the y.
            EXPECT_EQ(std::vector<jlong>({CALL(AvoidObject_1GetID, h),
                                          CALL(AvoidObject_1PlacedState, h), at[0], at[1]}),
                      std::vector<jlong>({r.ID(), r.PlacedState(), r.Offset().x, r.Offset().x}));
        }
    };
    same(CALL(AllPlacedObject, t.c), ref.PlacedObjects());
    same(CALL(AllUnPlacedObject, t.c), ref.UnplacedObjects());
    EXPECT_GT(std::min(ref.PlacedObjects().size(), ref.UnplacedObjects().size()), 20u);
    EXPECT_EQ(t.jvm.Log().find("p commit"), std::string::npos) << "coordinates released unchanged";
}
