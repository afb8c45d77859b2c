// Helpers shared by the placement tests.
#pragma once

#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

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

// The run extent, then every stored row with its runs as written ("row: first-last ..."), all
// moved back by (dx, dy), but for the extent of no runs, which stays where it is.
inline std::string RunsText(const CAvoidObject& obj, long long dx = 0, long long dy = 0) {
    std::ostringstream out;
    const Box& e = obj.RLEMaxExtent();
    const long long ex = e.IsValid() ? dx : 0, ey = e.IsValid() ? dy : 0;
    out << "extent " << e.left - ex << ',' << e.top - ey << ',' << e.right - ex << ','
        << e.bottom - ey;
    const CRLEIndexQuery& grid = obj.Grid();
    for (int row = grid.StartRow(); !grid.IsEmpty() && row <= grid.EndRow(); ++row) {
        out << "\n" << row - dy << ':';
        for (const RLE& run : *grid.RowRuns(row))
            out << ' ' << run.start - dx << '-' << run.end - dx;
    }
    return out.str();
}

// The placed list, then the unplaced one: "id:state@x,y " for each object at its current offset,
// the string ID when it has one, else the number.
inline std::string ListsText(const CAvoidContainer& c) {
    std::ostringstream out;
    for (const auto* list : {&c.PlacedObjects(), &c.UnplacedObjects()}) {
        for (const CAvoidObject* o : *list) {
            if (o->StringID().empty()) out << o->ID();
            out << o->StringID() << ':' << o->PlacedState() << '@' << o->Offset().x << ','
                << o->Offset().y << ' ';
        }
        out << '\n';
    }
    return out.str();
}

// An object on a w x h canvas of its own.
struct CanvasObject {
    CDT dt;
    CAvoidObject obj;
    CanvasObject(long long w, long long h) {
        SetCanvas(dt, w, h);
        obj.Reset();
        obj.DT(&dt);
    }
};

// Draws the points (x, y, ... in cells) as a ring when width is 0 or less, else as a line of that
// half-width.
inline void Draw(CAvoidObject& obj, std::vector<int> xy, int width) {
    const int n = static_cast<int>(xy.size());
    width > 0 ? obj.AddLine(xy.data(), n, width) : obj.AddRing(xy.data(), n);
}

// Adds the cells of the box as the ring around them.
inline void AddCellBox(CAvoidObject& obj, const Box& b) {
    Draw(obj, {b.left, b.top, b.right + 1, b.top, b.right + 1, b.bottom + 1, b.left, b.bottom + 1},
         0);
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
