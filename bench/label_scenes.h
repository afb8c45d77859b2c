// Label scenes with up to eight candidates per label around a point, and the workloads of the
// Java pass benchmark rebuilt cell for cell, so that a C++ pass and a pass through JNI run on the
// same objects.
//
// Every candidate of these labels lies wholly inside the canvas: candidates that would not fit
// are left out when the label is made, as the Java demo does.
#pragma once

#include <cstdint>
#include <string>

#include "bench_scene.h"

namespace kxbench {

constexpr int kCandidateLabelHeight = 13;
constexpr int kCandidateClearance = 4;

// The candidates of a label of width x height cells around the point (px, py) at the given
// clearance, in the order they are tried: right, left, above, below, upper right, lower right,
// upper left, lower left. A candidate that does not fit the canvas is dropped. Returns false when
// none fits; otherwise the label's box is the first candidate and its offsets lead to the others.
bool LabelAround(double px, double py, int width, int height, double clearance, int canvasWidth,
                 int canvasHeight, Label& label);

// The labels of every city of the data (most populous first) around their points on an
// equirectangular world canvas of 8192 x 4096 cells, width seven cells per character of the
// name plus two; with the borders and the coastline as forced stroked pieces when withLines.
Scene WorldCandidateLabels(bool withLines);

// n labels at random points of a width x height canvas, widths 24 to 96 cells, with their
// candidates around the point; no obstacles.
Scene UniformCandidateLabels(int n, int width, int height, uint32_t seed);

// The Java benchmark's uniform workload of n labels: its random points and widths (from the same
// generator and seed), the candidates right of the point, left, above and below that fit the
// canvas (the first one's box, the others as offsets; a label with none is left out), on the
// square canvas that keeps the label density constant.
Scene JavaUniformLabels(int n, int64_t seed);

// Number of cities in the data, as the Java benchmark names its world workload.
size_t WorldCityCount();

}  // namespace kxbench
