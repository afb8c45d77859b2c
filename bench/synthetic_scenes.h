// The synthetic scenes and the whole pass, built into the benchmarks only. Generators take fixed
// seeds so that runs compare.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bench_scene.h"

namespace kxbench {

// n labels of random sizes, spread evenly over a square canvas that keeps the density constant.
Scene UniformLabels(int n, uint32_t seed);
// n labels gathered around n / 100 centres (at least one), normally distributed: dense towns.
Scene ClusteredLabels(int n, uint32_t seed);

struct PassCounts {
    size_t placed = 0;
    size_t unplaced = 0;
};

// One whole pass: builds every footprint, adds the forced obstacles and then the first
// maxLabels labels, reads the counts, and resets the container. The scene is not changed; the
// library's footprint calls take their vertices through non-const pointers.
PassCounts RunPass(CAvoidContainer& c, Scene& s, size_t maxLabels);

}  // namespace kxbench
