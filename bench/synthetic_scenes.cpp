// The synthetic scenes and the whole pass of the benchmarks.
#include <algorithm>
#include <cmath>
#include <random>

#include "synthetic_scenes.h"

namespace kxbench {
namespace {

// Cells per label on the synthetic canvases: about three times a label's own area, a density at
// which roughly half of the labels find a place.
constexpr double kCellsPerLabel = 2400.0;

Scene SyntheticCanvas(int n) {
    Scene s;
    int side = static_cast<int>(std::ceil(std::sqrt(n * kCellsPerLabel)));
    s.width = side;
    s.height = side;
    s.labels.reserve(n);
    return s;
}

}  // namespace

Scene UniformLabels(int n, uint32_t seed) {
    Scene s = SyntheticCanvas(n);
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> x(0, s.width - 1), y(0, s.height - 1), w(24, 96);
    for (int i = 0; i < n; ++i) {
        int px = x(rng), py = y(rng), width = w(rng);
        s.labels.push_back(LabelRightOf(px, py, width));
    }
    return s;
}

Scene ClusteredLabels(int n, uint32_t seed) {
    Scene s = SyntheticCanvas(n);
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> x(0, s.width - 1), y(0, s.height - 1), w(24, 96);
    std::vector<Location> centres(static_cast<size_t>(std::max(1, n / 100)));
    for (auto& c : centres)
        c = Location(x(rng), y(rng));
    std::uniform_int_distribution<size_t> pick(0, centres.size() - 1);
    std::normal_distribution<double> spread(0.0, 60.0);
    for (int i = 0; i < n; ++i) {
        const Location& c = centres[pick(rng)];
        int px = std::clamp(c.x + static_cast<int>(spread(rng)), 0, s.width - 1);
        int py = std::clamp(c.y + static_cast<int>(spread(rng)), 0, s.height - 1);
        s.labels.push_back(LabelRightOf(px, py, w(rng)));
    }
    return s;
}

PassCounts RunPass(CAvoidContainer& c, Scene& s, size_t maxLabels) {
    for (Obstacle& o : s.forced) {
        CAvoidObject* obj = c.NewObject();
        int count = static_cast<int>(o.xy.size());
        if (o.halfWidth > 0) {
            obj->AddLine(o.xy.data(), count, o.halfWidth);
        } else {
            obj->AddRing(o.xy.data(), count);
        }
        c.Add(obj, true);
    }
    size_t n = std::min(maxLabels, s.labels.size());
    for (size_t i = 0; i < n; ++i) {
        AddLabel(c, s.labels[i]);
    }
    PassCounts counts{c.PlacedObjects().size(), c.UnplacedObjects().size()};
    c.Reset();
    return counts;
}

}  // namespace kxbench
