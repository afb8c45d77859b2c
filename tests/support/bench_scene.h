// Scenes of the placement tests and benchmarks, in canvas cells: the real map data here, the
// synthetic labels in bench/synthetic_scenes.h.
//
// A scene is what a renderer hands to one placement pass: forced obstacles (city dots as small
// rings, border and coast pieces as stroked lines) and labels in order of priority, each a
// rectangle rasterised as a ring with candidate offsets behind the implicit (0, 0).
#pragma once

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

// A label of the given width, 13 cells high, right of the point (x, y) at a clearance of 4 cells
// and centred on its row, with the classic candidates as offsets from the box: left of the point,
// above it and below it, both centred.
Label LabelRightOf(int x, int y, int width);

// Splits a polyline into pieces at most maxSpan cells across; consecutive pieces share a vertex
// and repeated vertices are dropped. A single longer segment is a piece of its own.
std::vector<std::vector<int>> SplitPolyline(const std::vector<int>& xy, int maxSpan);

// Fits the container's transform to the scene's canvas (map units = cells).
void FitToScene(CAvoidContainer& c, const Scene& s);
// Adds one label with the given numeric ID: its box as a ring, with its candidate offsets behind
// (0, 0).
void AddLabel(CAvoidContainer& c, const Label& l, long long id = 0);

}  // namespace kxbench
