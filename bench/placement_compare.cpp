// The straightforward and the indexed placement side by side on the same scenes: objects per
// second of each, their ratio, and the peak memory of each pass.
//
// Every pass runs in a child process of its own, so that its peak resident size (scene included)
// is its own; the child writes its time to a pipe. The straightforward pass is quadratic: once it
// has spent the budget it stops adding labels, the table says after how many, and its rate is
// that of the prefix (an upper bound for the whole pass).
//
// Usage: kxac_placement_compare [budget seconds, default 120]

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "child_process.h"
#include "reference_placement.h"
#include "synthetic_scenes.h"

namespace {

struct Case {
    std::string name;
    std::function<kxbench::Scene()> make;
};

struct Outcome {
    double seconds = 0.0;
    size_t objects = 0;
    size_t labels = 0;
    size_t placed = 0;
    long peakKiB = 0;
    bool ok = false;
};

// RunPass with a time budget: the obstacles, then labels until the budget is spent.
kxbench::PassCounts TimedPass(CAvoidContainer& c, kxbench::Scene& s, double budget,
                              size_t& labels) {
    const auto start = std::chrono::steady_clock::now();
    for (kxbench::Obstacle& o : s.forced) {
        CAvoidObject* obj = c.NewObject();
        const int count = static_cast<int>(o.xy.size());
        if (o.halfWidth > 0) {
            obj->AddLine(o.xy.data(), count, o.halfWidth);
        } else {
            obj->AddRing(o.xy.data(), count);
        }
        c.Add(obj, true);
    }
    labels = 0;
    for (const kxbench::Label& l : s.labels) {
        if (labels % 64 == 0) {
            const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
            if (spent.count() > budget) break;
        }
        kxbench::AddLabel(c, l);
        ++labels;
    }
    kxbench::PassCounts counts{c.PlacedObjects().size(), c.UnplacedObjects().size()};
    c.Reset();
    return counts;
}

// Runs one pass in a child process.
Outcome RunInChild(const Case& c, bool fast, double budget) {
    Outcome out;
    long peakKiB = 0;
    const auto pass = [&] {
        kxbench::Scene scene = c.make();
        CPriorityAvoidContainer indexed;
        reference::PriorityContainer straightforward;
        CPriorityAvoidContainer& container = fast ? indexed : straightforward;
        kxbench::FitToScene(container, scene);
        Outcome r;
        const auto start = std::chrono::steady_clock::now();
        const kxbench::PassCounts counts = TimedPass(container, scene, budget, r.labels);
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        r.seconds = spent.count();
        r.objects = scene.forced.size() + r.labels;
        r.placed = counts.placed;
        r.ok = true;
        return r;
    };
    if (kxbench::InChild(pass, out, &peakKiB)) out.peakKiB = peakKiB;
    return out;
}

std::string Mib(long kib) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.0f MiB", static_cast<double>(kib) / 1024.0);
    return buf;
}

}  // namespace

int main(int argc, char** argv) {
    const double budget = argc > 1 ? std::atof(argv[1]) : 120.0;
    const uint32_t seed = 20240601;
    const std::vector<Case> cases = {
        {"world, 5000 cities", [] { return kxbench::WorldCities(5000); }},
        {"world, 20000 cities", [] { return kxbench::WorldCities(20000); }},
        {"world, all cities", [] { return kxbench::WorldCities(0); }},
        {"uniform, 1k labels", [=] { return kxbench::UniformLabels(1000, seed); }},
        {"uniform, 10k labels", [=] { return kxbench::UniformLabels(10000, seed); }},
        {"uniform, 100k labels", [=] { return kxbench::UniformLabels(100000, seed); }},
    };
    std::printf(
        "| scene | objects | straightforward obj/s | peak | indexed obj/s | peak | ratio |\n");
    std::printf("|---|---:|---:|---:|---:|---:|---:|\n");
    for (const Case& c : cases) {
        const Outcome fast = RunInChild(c, true, 1e30);
        const Outcome slow = RunInChild(c, false, budget);
        if (!fast.ok || !slow.ok) {
            std::printf("| %s | failed | | | | | |\n", c.name.c_str());
            continue;
        }
        const double fastRate = static_cast<double>(fast.objects) / fast.seconds;
        const double slowRate = static_cast<double>(slow.objects) / slow.seconds;
        std::string slowNote;
        if (slow.labels < fast.labels) {
            slowNote = " (first " + std::to_string(slow.labels) + " labels)";
        } else if (slow.placed != fast.placed) {
            slowNote = " (placed count differs!)";
        }
        std::printf("| %s | %zu | %.0f%s | %s | %.0f | %s | %.1f |\n", c.name.c_str(), fast.objects,
                    slowRate, slowNote.c_str(), Mib(slow.peakKiB).c_str(), fastRate,
                    Mib(fast.peakKiB).c_str(), fastRate / slowRate);
        std::fflush(stdout);
    }
    return 0;
}
