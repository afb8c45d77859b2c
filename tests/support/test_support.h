// Helpers shared by the placement tests.
#pragma once

#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>

#include "placement/AvoidContainer.h"

namespace testing_support {

using Cell = std::pair<int, int>;  // (x, y)
using CellSet = std::set<Cell>;

// Uniform ints from lo to hi, both included, from a seeded generator.
struct Random {
    std::mt19937 rng;
    int operator()(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }
};

// A canvas of w x h cells at the origin showing the map extent (0, 0)-(w, h).
inline void SetCanvas(CDT& dt, long long w, long long h) {
    dt.width = w;
    dt.height = h;
    dt.maxX = static_cast<double>(w);
    dt.maxY = static_cast<double>(h);
    dt.resolution = 1.0;
}

inline CellSet CellsOf(const CAvoidObject& obj) {
    CellSet cells;
    const CRLEIndexQuery& grid = obj.Grid();
    for (int row = grid.StartRow(); !grid.IsEmpty() && row <= grid.EndRow(); ++row) {
        for (const RLE& run : *grid.RowRuns(row)) {
            for (int x = run.start; x <= run.end; ++x)
                cells.insert({x, row});
        }
    }
    return cells;
}

// The run extent, then every stored row with its runs as written ("row: first-last ...").
inline std::string RunsText(const CAvoidObject& obj) {
    std::ostringstream out;
    const Box& e = obj.RLEMaxExtent();
    out << "extent " << e.left << ',' << e.top << ',' << e.right << ',' << e.bottom;
    const CRLEIndexQuery& grid = obj.Grid();
    for (int row = grid.StartRow(); !grid.IsEmpty() && row <= grid.EndRow(); ++row) {
        out << "\n" << row << ':';
        for (const RLE& run : *grid.RowRuns(row))
            out << ' ' << run.start << '-' << run.end;
    }
    return out.str();
}

// The cells of [x0, x1) x [y0, y1).
inline CellSet RectCells(int x0, int y0, int x1, int y1) {
    CellSet cells;
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x)
            cells.insert({x, y});
    }
    return cells;
}

}  // namespace testing_support
