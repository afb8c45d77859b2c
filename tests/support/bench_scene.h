// Scenes for the placement benchmarks: synthetic labels and the real map data, in canvas cells.
//
// A scene is what a renderer hands to one placement pass: forced obstacles (city dots as small
// rings, border and coast pieces as stroked lines) and labels in order of priority, each a
// rectangle rasterised as a ring with candidate offsets behind the implicit (0, 0). Generators
// take fixed seeds so that runs compare.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "placement/AvoidContainer.h"

namespace kxbench {

struct Obstacle {
    std::vector<int> xy;  // x0, y0, x1, y1, ... in cells
    int halfWidth = 0;    // a stroked line when > 0, else a ring
};

struct Label {
    Box box;                        // cells covered at the first candidate
    std::vector<Location> offsets;  // further candidates, tried after (0, 0)
};

struct Scene {
    int width = 0;
    int height = 0;
    std::vector<Obstacle> forced;
    std::vector<Label> labels;
};

// The world data: cities, most populous first, and the border and coastline polylines as
// longitude, latitude pairs. Read once per process.
struct City {
    double lon = 0.0;
    double lat = 0.0;
    int nameLength = 0;  // code points
};
struct MapData {
    std::vector<City> cities;
    std::vector<std::vector<double>> borders;
    std::vector<std::vector<double>> coast;
};
const MapData& WorldData();

// The first `cities` cities of the data (most populous first; all when cities <= 0) on an
// equirectangular world canvas: a dot each, the borders and the coastline as forced pieces, and
// a label each with its width estimated from the name's length.
Scene WorldCities(int cities);

// The classic candidates of a label box that stands right of a point at the given clearance:
// left, above and below, as offsets from the box (the box itself is the first candidate).
std::vector<Location> ClassicOffsets(const Box& rightOfPoint, const Location& point, int clearance);
// A label of the given width, 13 cells high, right of the point (x, y) at a clearance of 4 cells
// and centred on its row, with its classic candidates.
Label LabelRightOf(int x, int y, int width);

// Splits a polyline into pieces at most maxSpan cells across; consecutive pieces share a vertex
// and repeated vertices are dropped. A single longer segment is a piece of its own.
std::vector<std::vector<int>> SplitPolyline(const std::vector<int>& xy, int maxSpan);

// Fits the container's transform to the scene's canvas (map units = cells).
void FitToScene(CAvoidContainer& c, const Scene& s);
// Adds one label with the given numeric ID: its box as a ring, with its candidate offsets behind
// (0, 0).
void AddLabel(CAvoidContainer& c, const Label& l, long long id = 0);

// The synthetic scenes and the whole pass, built into the benchmarks only
// (bench/synthetic_scenes.cpp).

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
