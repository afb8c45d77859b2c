// The transform of a placement pass: the device rectangle (a canvas of cells, one per pixel), the
// map extent it shows, fitted to the rectangle's proportions, and the resolution in map units per
// cell. It also carries the scratch buffer in which map coordinates are converted to cells.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "raster/agg.h"
#include "stdafx.h"

namespace kxac {
// double to int32 with truncation toward zero; NaN and values outside the 32-bit range give
// -2147483648, as the x86 conversion instruction does.
inline int TruncToInt(double v) {
    if (v > -2147483649.0 && v < 2147483648.0) return static_cast<int>(v);
    return INT32_MIN;
}
}  // namespace kxac

// Growable byte buffer over malloc/realloc/free. It grows to exactly the largest size asked for
// and never shrinks.
class CGrowBuffer {
public:
    unsigned char* data = nullptr;
    uint32_t size = 0;
    uint32_t capacity = 0;

    CGrowBuffer() = default;
    virtual ~CGrowBuffer();
    CGrowBuffer(const CGrowBuffer&) = delete;
    CGrowBuffer& operator=(const CGrowBuffer&) = delete;

    // Makes n bytes available at data. On allocation failure the block held before is freed and
    // the buffer left empty (data null, size and capacity 0). Returns whether data holds n bytes.
    bool SetSize(uint32_t n);
};

namespace kxac {
// What lines and rings are drawn through: the polygon being drawn, its vertices in subpixels,
// the spans of its tiles, and the bands of rows (first -> last) known, during one line or ring
// call, to be full across the raster. Reused from call to call; the vectors only grow.
struct FootprintScratch {
    // A span of cells first .. last of a row.
    struct Span {
        int row;
        int first;
        int last;
    };
    std::vector<double> polygon;
    // The spans of a band of tiles, gathered to be added in the order a whole sweep adds them.
    std::vector<Span> spans;
    // The cover carried into a tile from beside it, row by row.
    std::vector<long long> sidePartial;
    std::vector<long long> sideFull;
    std::vector<int> subpixels;
    std::map<int, int> fullRows;
    // On: every polygon is rasterised in full, with no shortcut (for comparisons).
    bool drawEverything = false;
    // Above 0: every polygon is drawn in tiles of this many cells a side, as those too large for
    // the rasterizer's range are (for comparisons).
    int tileCells = 0;
    // The work done since the transform was made, as tests read it: polygons swept whole
    // (where they lie or in a frame of their own), tiles swept, rectangles of cells taken without
    // a sweep, polygons (or bands of tiles) passed over because the raster holds none of their
    // cells or all their rows are full, and the edge pieces given to tiles.
    struct Counts {
        uint64_t swept = 0;
        uint64_t tiles = 0;
        uint64_t rectangles = 0;
        uint64_t skipped = 0;
        uint64_t pieces = 0;
    } counts;
};
}  // namespace kxac

// Held by value in a container and shared by the objects it hands out, which also draw with its
// rasterizer, one polygon at a time.
struct KXAC_API CDT {
    long long originX = 0;
    long long originY = 0;
    long long width = 0;
    long long height = 0;
    double minX = 0.0;
    double minY = 0.0;
    double maxX = 0.0;
    double maxY = 0.0;
    double resolution = 0.0;
    CGrowBuffer scratch;
    // The rasterizer every object of the container draws with, one polygon at a time.
    agg::rasterizer raster;
    kxac::FootprintScratch footprint;
};

// Sets the device rectangle (differences taken in 32 bits) and refits the map extent held to it.
KXAC_API void FitDeviceRect(CDT& dt, int left, int top, int right, int bottom);

// Fits the map extent (x1, y1)-(x2, y2) to the device rectangle held: one resolution for both
// axes, the extent widened about its centre along the axis with room to spare. A zero width or
// height stores infinities or NaNs.
KXAC_API void FitMapExtent(CDT& dt, double x1, double y1, double x2, double y2);

// Map point to cell: trunc((mx - minX) / resolution + originX), trunc((maxY - my) / resolution +
// originY), with TruncToInt's result for NaN and out-of-range values.
KXAC_API int MapToCellX(const CDT& dt, double mx);
KXAC_API int MapToCellY(const CDT& dt, double my);
