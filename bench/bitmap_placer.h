// An occupancy-bitmap label placer, the yardstick of the placement benchmarks: one bit per canvas
// cell in rows of 64-bit words. A label is tried at its candidates in order; a candidate is free
// when none of its cells is set, tested row by row a word at a time, and the first free one wins
// and sets its cells.
//
// A label's cells are those of its box clipped to the canvas, at (0, 0) and shifted by each
// further offset: the cells of a rectangle ring (x0, y0)-(x1, y1) on whole cells are the columns
// x0 .. x1 - 1 of the rows y0 .. y1 - 1. The answers are those of the library's placement of the
// same rings as long as every shifted candidate stays on the canvas; a candidate that leaves it
// is clipped here and counted as inexact.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bench_scene.h"

namespace kxbench {

class OccupancyBitmap {
public:
    OccupancyBitmap(int width, int height);

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    void Clear();
    // The rectangle of cells x0 .. x1 by y0 .. y1 (inclusive, on the canvas, not empty).
    bool IsFree(int x0, int y0, int x1, int y1) const;
    void Set(int x0, int y0, int x1, int y1);

private:
    int m_width;
    int m_height;
    size_t m_stride;  // words per row
    std::vector<uint64_t> m_bits;
};

struct BitmapPass {
    size_t placed = 0;
    size_t inexact = 0;  // labels with a candidate partly or wholly off the canvas
};

// Clears the bitmap and places the scene's labels in order (the scene's obstacles are not
// drawn). When chosen is given, it receives per label the index of the candidate taken (0 the
// box, k the offset k - 1) or -1.
BitmapPass PlaceOnBitmap(OccupancyBitmap& bitmap, const Scene& scene, std::vector<int>* chosen);

}  // namespace kxbench
