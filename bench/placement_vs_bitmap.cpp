// The library's placement beside an occupancy-bitmap placer on the same labels, and the library's
// C++ pass beside the same pass through JNI.
//
// First table: per scene, one library pass (every label: NewObject, ID, its ring, its offsets,
// Add; then both result lists read and the container reset) and one bitmap pass, each repeated
// and reported by its median in CPU time of the pass's thread; their answers are compared label by
// label (placed or not, and at which candidate). Each scene runs in a child process of its own, so
// that its peak resident size is its own: the table gives the process peak after the library passes
// and, in brackets, the size of the process with the scene built before any pass.
//
// Second table (when the Java benchmark's JSON is given): the Java workloads rebuilt here and
// run through the C++ API with the same steps and the same repetition rule (a warm-up pass, then
// passes until three and two seconds) and timed, as there, in wall time, beside the JNI figures
// of the JSON: the raw natives and the handle-free Java layer. The passes of one row do not run at
// the same moment: on a loaded machine the ratio carries the load of both moments.
//
// Usage: kxac_placement_vs_bitmap [--java out/bench/java.json] [--quick] [--no-bitmap]
//   --quick      runs the uniform scenes up to 100k labels only, and fewer repetitions
//   --no-bitmap  leaves out the first table
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "bench_scene.h"
#include "bitmap_placer.h"
#include "child_process.h"
#include "label_scenes.h"

namespace {

constexpr uint32_t kSeed = 20240601;
constexpr int64_t kJavaSeed = 20240601;
// Results of timed passes land here, so that the passes cannot be left out.
volatile size_t g_sink = 0;

double WallNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// CPU time of the calling thread: on a machine shared with other work it leaves out the time the
// pass waits for a core, which wall time counts.
double CpuNow() {
    timespec t = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

long PeakKiB() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

struct Repeat {
    int minPasses;
    double minSeconds;
    int maxPasses;
};

// Runs pass() until the rule is met (in the clock's time); returns the median time of one pass.
double Median(const Repeat& rule, double (*now)(), const std::function<void()>& pass, int& passes) {
    std::vector<double> times;
    double total = 0.0;
    while (static_cast<int>(times.size()) < rule.maxPasses &&
           (static_cast<int>(times.size()) < rule.minPasses || total < rule.minSeconds)) {
        const double t0 = now();
        pass();
        const double t = now() - t0;
        times.push_back(t);
        total += t;
    }
    passes = static_cast<int>(times.size());
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

struct LibraryOutcome {
    size_t placedObjects = 0;  // forced ones included
    size_t placedLabels = 0;
    long long checksum = 0;  // IDs and x offsets of both lists, as the Java benchmark sums them
};

// One whole pass through the C++ API: the forced obstacles (IDs -1, -2, ...), then each label
// with its index as ID; both result lists read with every object's ID and offset; the reset.
// When placedAt is given it receives per label the offset it was placed at, or nothing.
LibraryOutcome LibraryPass(CAvoidContainer& c, kxbench::Scene& s,
                           std::vector<std::pair<bool, Location>>* placedAt) {
    long long id = -1;
    for (kxbench::Obstacle& o : s.forced) {
        CAvoidObject* obj = c.NewObject();
        obj->ID(id--);
        const int count = static_cast<int>(o.xy.size());
        if (o.halfWidth > 0) {
            obj->AddLine(o.xy.data(), count, o.halfWidth);
        } else {
            obj->AddRing(o.xy.data(), count);
        }
        c.Add(obj, true);
    }
    for (size_t i = 0; i < s.labels.size(); ++i)
        kxbench::AddLabel(c, s.labels[i], static_cast<long long>(i));
    LibraryOutcome out;
    if (placedAt) placedAt->assign(s.labels.size(), {false, Location()});
    for (const CAvoidObject* obj : c.PlacedObjects()) {
        out.checksum += obj->ID() + obj->Offset().x;
        ++out.placedObjects;
        if (obj->ID() >= 0) {
            ++out.placedLabels;
            if (placedAt) (*placedAt)[static_cast<size_t>(obj->ID())] = {true, obj->Offset()};
        }
    }
    for (const CAvoidObject* obj : c.UnplacedObjects())
        out.checksum += obj->ID() + obj->Offset().x;
    c.Reset();
    return out;
}

// What a child process sends back.
struct SceneResult {
    bool ok = false;
    size_t labels = 0;
    size_t objects = 0;
    int width = 0;
    int height = 0;
    size_t placedLibrary = 0;
    size_t placedBitmap = 0;
    size_t differing = 0;  // labels placed by one and not the other, or at another candidate
    size_t inexact = 0;
    double librarySeconds = 0.0;
    int libraryPasses = 0;
    double bitmapSeconds = 0.0;
    int bitmapPasses = 0;
    long sceneKiB = 0;
    long peakKiB = 0;
};

// Runs work() in a child process and returns what it wrote, or a result that is not ok.
SceneResult Isolated(const std::function<SceneResult()>& work) {
    SceneResult r;
    kxbench::InChild(work, r);
    return r;
}

SceneResult LibraryAgainstBitmap(const std::function<kxbench::Scene()>& make, bool quick) {
    kxbench::Scene scene = make();
    SceneResult r;
    r.labels = scene.labels.size();
    r.objects = scene.forced.size() + scene.labels.size();
    r.width = scene.width;
    r.height = scene.height;
    r.sceneKiB = PeakKiB();

    CPriorityAvoidContainer container;
    kxbench::FitToScene(container, scene);
    std::vector<std::pair<bool, Location>> placedAt;
    r.placedLibrary = LibraryPass(container, scene, &placedAt).placedLabels;  // also the warm-up
    const Repeat libraryRule = quick ? Repeat{1, 0.0, 1} : Repeat{3, 2.0, 15};
    r.librarySeconds = Median(
        libraryRule, CpuNow, [&] { LibraryPass(container, scene, nullptr); }, r.libraryPasses);
    r.peakKiB = PeakKiB();

    kxbench::OccupancyBitmap bitmap(scene.width, scene.height);
    std::vector<int> chosen;
    const kxbench::BitmapPass checked = kxbench::PlaceOnBitmap(bitmap, scene, &chosen);
    r.placedBitmap = checked.placed;
    r.inexact = checked.inexact;
    for (size_t i = 0; i < scene.labels.size(); ++i) {
        const bool placed = chosen[i] >= 0;
        if (placed != placedAt[i].first) {
            ++r.differing;
        } else if (placed) {
            const Location at =
                chosen[i] == 0 ? Location() : scene.labels[i].offsets[chosen[i] - 1];
            if (at != placedAt[i].second) ++r.differing;
        }
    }
    const Repeat bitmapRule = quick ? Repeat{3, 0.0, 3} : Repeat{5, 0.5, 1000};
    r.bitmapSeconds = Median(
        bitmapRule, CpuNow,
        [&] { g_sink = g_sink + kxbench::PlaceOnBitmap(bitmap, scene, nullptr).placed; },
        r.bitmapPasses);
    r.ok = true;
    return r;
}

// The workload as the Java benchmark runs it, through the C++ API.
SceneResult CppPass(const std::function<kxbench::Scene()>& make) {
    kxbench::Scene scene = make();
    SceneResult r;
    r.labels = scene.labels.size();
    r.objects = scene.forced.size() + scene.labels.size();
    r.sceneKiB = PeakKiB();
    CPriorityAvoidContainer container;
    kxbench::FitToScene(container, scene);
    const LibraryOutcome first = LibraryPass(container, scene, nullptr);
    r.placedLibrary = first.placedLabels;
    bool agree = true;
    r.librarySeconds = Median(
        Repeat{3, 2.0, 50}, WallNow,
        [&] { agree = agree && LibraryPass(container, scene, nullptr).checksum == first.checksum; },
        r.libraryPasses);
    r.peakKiB = PeakKiB();
    r.ok = agree;
    return r;
}

std::string Rate(double perSecond) {
    char buf[32];
    if (perSecond >= 1e6) {
        std::snprintf(buf, sizeof buf, "%.2f M", perSecond / 1e6);
    } else {
        std::snprintf(buf, sizeof buf, "%.0f k", perSecond / 1e3);
    }
    return buf;
}

std::string Mib(long kib) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.0f MiB", static_cast<double>(kib) / 1024.0);
    return buf;
}

// The benchmark rows of the Java benchmark's JSON, one object per line as it writes them.
struct JavaRow {
    std::string name;
    size_t objects = 0;
    size_t placed = 0;
    int passes = 0;
    double medianSeconds = 0.0;
    int layerPasses = 0;
    double layerMedianSeconds = 0.0;  // the handle-free layer; 0 when not measured
};

double NumberAfter(const std::string& line, const char* key) {
    const std::string k = std::string("\"") + key + "\":";
    const size_t at = line.find(k);
    return at == std::string::npos ? -1.0 : std::strtod(line.c_str() + at + k.size(), nullptr);
}

std::vector<JavaRow> ReadJavaJson(const char* path) {
    std::vector<JavaRow> rows;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        const std::string key = "\"name\": \"";
        const size_t at = line.find(key);
        if (at == std::string::npos) continue;
        const size_t end = line.find('"', at + key.size());
        if (end == std::string::npos) continue;
        JavaRow r;
        r.name = line.substr(at + key.size(), end - at - key.size());
        r.objects = static_cast<size_t>(NumberAfter(line, "objects"));
        r.placed = static_cast<size_t>(NumberAfter(line, "placed"));
        r.passes = static_cast<int>(NumberAfter(line, "passes"));
        r.medianSeconds = NumberAfter(line, "median_seconds");
        r.layerPasses = static_cast<int>(NumberAfter(line, "layer_passes"));
        r.layerMedianSeconds = NumberAfter(line, "layer_median_seconds");
        if (r.medianSeconds > 0.0) rows.push_back(r);
    }
    return rows;
}

void PrintMachine() {
    std::ifstream load("/proc/loadavg");
    std::string avg;
    std::getline(load, avg);
    std::printf(
        "Machine: %ld online cores, load average %s (shared machine: figures are noisy).\n\n",
        sysconf(_SC_NPROCESSORS_ONLN), avg.c_str());
}

void LibraryAgainstBitmapTable(bool quick, bool skip) {
    if (skip) return;
    struct Case {
        std::string name;
        std::function<kxbench::Scene()> make;
    };
    std::vector<Case> cases = {
        {"world cities, up to 8 candidates", [] { return kxbench::WorldCandidateLabels(false); }},
        {"uniform 10k", [] { return kxbench::UniformCandidateLabels(10000, 4096, 4096, kSeed); }},
        {"uniform 100k", [] { return kxbench::UniformCandidateLabels(100000, 4096, 4096, kSeed); }},
    };
    if (!quick) {
        cases.push_back({"uniform 1M", [] {
                             return kxbench::UniformCandidateLabels(1000000, 4096, 4096, kSeed);
                         }});
    }
    std::printf(
        "Library (C++ API, whole pass) beside an occupancy bitmap, same labels; median thread "
        "CPU time\n\n");
    std::printf(
        "| scene | canvas | labels | placed | same answers | library labels/s | bitmap "
        "labels/s | ratio | library µs/label | library peak RSS (scene alone) | passes lib/bmp "
        "|\n");
    std::printf("|---|---|---:|---:|---|---:|---:|---:|---:|---:|---:|\n");
    double usFirst = 0.0, usLast = 0.0;
    std::string nameFirst, nameLast;
    for (const Case& c : cases) {
        const SceneResult r = Isolated([&] { return LibraryAgainstBitmap(c.make, quick); });
        if (!r.ok) {
            std::printf("| %s | failed | | | | | | | | | |\n", c.name.c_str());
            continue;
        }
        const double lib = static_cast<double>(r.labels) / r.librarySeconds;
        const double bmp = static_cast<double>(r.labels) / r.bitmapSeconds;
        std::string same = "yes";
        if (r.differing != 0 || r.placedBitmap != r.placedLibrary) {
            same = "NO: " + std::to_string(r.differing) + " labels differ";
        }
        if (r.inexact != 0) same += " (" + std::to_string(r.inexact) + " off-canvas candidates)";
        const double us = r.librarySeconds / static_cast<double>(r.labels) * 1e6;
        std::printf("| %s | %d x %d | %zu | %zu | %s | %s | %s | %.1f | %.2f | %s (%s) | %d/%d |\n",
                    c.name.c_str(), r.width, r.height, r.labels, r.placedLibrary, same.c_str(),
                    Rate(lib).c_str(), Rate(bmp).c_str(), bmp / lib, us, Mib(r.peakKiB).c_str(),
                    Mib(r.sceneKiB).c_str(), r.libraryPasses, r.bitmapPasses);
        if (c.name.rfind("uniform", 0) == 0) {
            if (nameFirst.empty()) {
                nameFirst = c.name;
                usFirst = us;
            }
            nameLast = c.name;
            usLast = us;
        }
    }
    if (!nameFirst.empty() && nameLast != nameFirst) {
        std::printf("\nLibrary time per label, %s against %s: %.2f times.\n", nameLast.c_str(),
                    nameFirst.c_str(), usLast / usFirst);
    }
}

struct JniLine {
    JavaRow java;
    SceneResult cpp;
};

// Runs the C++ passes of the Java workloads that this program knows.
std::vector<JniLine> MeasureJavaWorkloads(const char* javaJson) {
    std::vector<JniLine> lines;
    for (const JavaRow& j : ReadJavaJson(javaJson)) {
        std::function<kxbench::Scene()> make;
        const std::string uniform = "java_pass_uniform/";
        if (j.name.rfind(uniform, 0) == 0) {
            const int n = std::atoi(j.name.c_str() + uniform.size());
            make = [n] { return kxbench::JavaUniformLabels(n, kJavaSeed); };
        } else if (j.name.rfind("java_pass_world/", 0) == 0) {
            make = [] { return kxbench::WorldCandidateLabels(true); };
        } else {
            continue;
        }
        lines.push_back({j, Isolated([&] { return CppPass(make); })});
    }
    return lines;
}

void JniTable(const char* javaJson, const std::vector<JniLine>& lines) {
    std::printf(
        "\nC++ pass beside the JNI pass (%s), same workloads and steps; median wall time\n\n",
        javaJson);
    if (lines.empty()) {
        std::printf("No JNI figures: %s is missing or holds no benchmark rows.\n", javaJson);
        return;
    }
    std::printf(
        "| workload | objects | placed C++ / JNI | C++ objects/s | JNI raw objects/s | JNI layer "
        "objects/s | raw / C++ time | layer / raw time | passes C++/raw/layer |\n");
    std::printf("|---|---:|---:|---:|---:|---:|---:|---:|---:|\n");
    for (const JniLine& line : lines) {
        const JavaRow& j = line.java;
        const SceneResult& r = line.cpp;
        if (!r.ok) {
            std::printf("| %s | failed | | | | | | | |\n", j.name.c_str());
            continue;
        }
        std::string placed = std::to_string(r.placedLibrary) + " / " + std::to_string(j.placed);
        if (r.placedLibrary != j.placed || r.objects != j.objects) {
            placed += " (workloads differ: " + std::to_string(r.objects) + " objects here)";
        }
        const double cpp = static_cast<double>(r.objects) / r.librarySeconds;
        const double jni = static_cast<double>(j.objects) / j.medianSeconds;
        std::string layer = "-", ratio = "-";
        if (j.layerMedianSeconds > 0.0) {
            layer = Rate(static_cast<double>(j.objects) / j.layerMedianSeconds);
            char buf[32];
            std::snprintf(buf, sizeof buf, "%.3f", j.layerMedianSeconds / j.medianSeconds);
            ratio = buf;
        }
        std::printf("| %s | %zu | %s | %s | %s | %s | %.2f | %s | %d/%d/%d |\n", j.name.c_str(),
                    j.objects, placed.c_str(), Rate(cpp).c_str(), Rate(jni).c_str(), layer.c_str(),
                    j.medianSeconds / r.librarySeconds, ratio.c_str(), r.libraryPasses, j.passes,
                    j.layerPasses);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const char* javaJson = nullptr;
    bool quick = false;
    bool skipBitmap = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--java") == 0 && i + 1 < argc) {
            javaJson = argv[++i];
        } else if (std::strcmp(argv[i], "--quick") == 0) {
            quick = true;
        } else if (std::strcmp(argv[i], "--no-bitmap") == 0) {
            skipBitmap = true;
        } else {
            std::fprintf(stderr, "usage: %s [--java JSON] [--quick] [--no-bitmap]\n", argv[0]);
            return 2;
        }
    }
    PrintMachine();
    // The C++ passes of the Java workloads run first, closest in time to the Java benchmark.
    std::vector<JniLine> jni;
    if (javaJson) jni = MeasureJavaWorkloads(javaJson);
    LibraryAgainstBitmapTable(quick, skipBitmap);
    if (javaJson) JniTable(javaJson, jni);
    return 0;
}
