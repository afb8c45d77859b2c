// Lines and rings of an avoid object, rasterised into its runs.
//
// Every stroke and ring is one polygon in subpixels (256 per cell), swept by the object's own
// rasterizer into its raster target, which clips the spans to the raster and hands them to
// AddRLE. The rasterizer's arithmetic is exact only for cell coordinates within 16 bits and for
// polygons narrower than 32,767 columns; a polygon outside that range is clipped beforehand to a
// window slightly larger than the raster (Sutherland-Hodgman against each side in turn, which
// keeps the winding of every point inside the window, so the filling rule gives the same cells).
// The rasterizer draws through the scratch memory of the attached transform, which all objects
// of a container share: an object holds only its runs, however many objects a pool keeps.
//
// Hostile input (a million segments of half-width INT_MAX over the whole int range) would draw
// the whole window once per segment. A polygon is therefore not drawn when the raster holds none
// of its cells, or when all its rows are already full (one run from column 0 to at least the
// window's right edge, which adding cells inside it leaves exactly as it is) and it lies within
// those columns. Whether a polygon is drawn can also change what later ones store, through the
// outline's cell limit: only polygons too small to reach the limit are ever skipped.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

#include "placement/AvoidObject.h"

namespace {

constexpr double kSubpixels = agg::subpixel_scale;
// Cells whose coordinates the rasterizer handles exactly, and the most columns a polygon spans.
constexpr double kMinCell = -32767;
constexpr double kMaxCell = 32766;
constexpr double kMaxColumns = 32766;
// The clip window: the raster, at most this far, plus a margin on every side.
constexpr unsigned kWindowCells = 32000;
constexpr double kMargin = 4;

double CellOf(double subpixel) { return std::floor(std::trunc(subpixel) / kSubpixels); }

// Sutherland-Hodgman step: keeps the part of the closed polygon `in` (x, y pairs) where
// side * (coordinate axis - limit) <= 0; crossing points lie exactly on the limit.
void ClipSide(const std::vector<double>& in, std::vector<double>& out, int axis, double limit,
              double side) {
    out.clear();
    const size_t n = in.size() / 2;
    for (size_t i = 0; i < n; ++i) {
        const double* a = &in[2 * ((i + n - 1) % n)];
        const double* b = &in[2 * i];
        const bool aIn = side * (a[axis] - limit) <= 0;
        const bool bIn = side * (b[axis] - limit) <= 0;
        if (aIn != bIn) {
            const double t = (limit - a[axis]) / (b[axis] - a[axis]);
            const int other = 1 - axis;
            double p[2];
            p[axis] = limit;
            p[other] = a[other] + t * (b[other] - a[other]);
            out.insert(out.end(), p, p + 2);
        }
        if (bIn) out.insert(out.end(), b, b + 2);
    }
}

long long FloorCell(int subpixel) { return subpixel >> agg::subpixel_shift; }
long long CeilCell(int subpixel) {
    return (static_cast<long long>(subpixel) + agg::subpixel_mask) >> agg::subpixel_shift;
}

// Polygons of fewer cells than this never fill the outline's last block, so drawing one or not
// cannot change which cells later polygons keep.
constexpr double kSkippableCells = (agg::outline::block_limit - 1.0) * agg::outline::block_cells;

// Whether the outline of the closed polygon xy (subpixels) stores at most limit cells: each edge
// starts a new cell at most once per row and per column it crosses, and twice more at its ends.
bool CellsAtMost(const std::vector<int>& xy, double limit) {
    const size_t n = xy.size() / 2;
    double cells = 1;
    for (size_t i = 0; i < n; ++i) {
        const size_t j = i + 1 < n ? i + 1 : 0;
        cells +=
            std::fabs(static_cast<double>(FloorCell(xy[2 * j]) - FloorCell(xy[2 * i]))) +
            std::fabs(static_cast<double>(FloorCell(xy[2 * j + 1]) - FloorCell(xy[2 * i + 1]))) + 2;
        if (cells > limit) return false;
    }
    return true;
}

// The cells of a map point sequence in the transform's scratch buffer; null when there is
// nothing to convert or the buffer cannot hold it. A trailing odd value is not converted.
int* ToCells(CDT* dt, const double* xy, int count) {
    if (dt == nullptr || xy == nullptr || count < 1) return nullptr;
    const uint64_t bytes = static_cast<uint64_t>(count) * sizeof(int);
    if (bytes > std::numeric_limits<uint32_t>::max()) return nullptr;
    if (!dt->scratch.SetSize(static_cast<uint32_t>(bytes)) || dt->scratch.data == nullptr) {
        return nullptr;
    }
    int* cells = reinterpret_cast<int*>(dt->scratch.data);
    for (int k = 0; k + 1 < count; k += 2) {
        cells[k] = MapToCellX(*dt, xy[k]);
        cells[k + 1] = MapToCellY(*dt, xy[k + 1]);
    }
    return cells;
}

// Whether the closed polygon (x, y pairs in subpixels; a last point repeating the first is
// allowed) is a rectangle with sides along the axes and corners on cell corners.
bool IsCellRectangle(const std::vector<double>& p) {
    size_t n = p.size() / 2;
    if (n == 5 && p[8] == p[0] && p[9] == p[1]) n = 4;
    if (n != 4) return false;
    // Called on polygons within the rasterizer's range, where every value fits a long long.
    for (size_t i = 0; i < 8; ++i) {
        const auto v = static_cast<long long>(p[i]);
        if (static_cast<double>(v) != p[i] || v % agg::subpixel_scale != 0) return false;
    }
    const bool horizontalFirst = p[1] == p[3] && p[2] == p[4] && p[5] == p[7] && p[6] == p[0];
    const bool verticalFirst = p[0] == p[2] && p[3] == p[5] && p[4] == p[6] && p[7] == p[1];
    return horizontalFirst || verticalFirst;
}

}  // namespace

// The sweep gives such a rectangle the cells left .. right - 1 of the rows top .. bottom - 1,
// clipped to the raster, one span a row from the top: the same spans are added here directly.
void CAvoidObject::DrawCellRectangle(double minX, double minY, double maxX, double maxY) {
    const long long left = std::max<long long>(static_cast<long long>(minX / kSubpixels), 0);
    const long long right =
        std::min<long long>(static_cast<long long>(maxX / kSubpixels) - 1, width() - 1LL);
    const long long top = std::max<long long>(static_cast<long long>(minY / kSubpixels), 0);
    const long long bottom =
        std::min<long long>(static_cast<long long>(maxY / kSubpixels) - 1, height() - 1LL);
    if (left > right || top > bottom) return;
    if (!HasRuns()) {
        // A fresh footprint holds the rectangle as it is, with the start row that storing its
        // rows would have set: Reset keeps it.
        Changed();
        StartRow(static_cast<int>(top));
        m_rectangleRun = RLE(static_cast<int>(left), static_cast<int>(right));
        m_rectangleTop = static_cast<int>(top);
        m_rectangleBottom = static_cast<int>(bottom);
        m_regularity = Regularity::kUnknown;
        return;
    }
    for (long long row = top; row <= bottom; ++row) {
        AddRLE(static_cast<int>(row), static_cast<int>(left), static_cast<int>(right));
    }
}

bool CAvoidObject::OutsideCanvas(double minX, double minY, double maxX, double maxY) {
    const CDT* dt = CRLERaster::DT();
    const double x0 = static_cast<double>(dt->originX);
    const double y0 = static_cast<double>(dt->originY);
    return x0 + static_cast<double>(dt->width) < minX ||
           y0 + static_cast<double>(dt->height) < minY || x0 > maxX || y0 > maxY;
}

int CAvoidObject::FullWidth() {
    return static_cast<int>(std::min<unsigned>(width(), kWindowCells + kMargin));
}

bool CAvoidObject::NoteFullRows(int firstRow, int lastRow, bool untilGap) {
    kxac::FootprintScratch& s = Scratch();
    const int lastColumn = FullWidth() - 1;
    bool all = true;
    for (int row = firstRow; row <= lastRow; ++row) {
        auto next = s.fullRows.upper_bound(row);
        if (next != s.fullRows.begin() && std::prev(next)->second >= row) {
            row = std::prev(next)->second;  // the rest of a known band
            continue;
        }
        const auto runs = Runs(row);
        if (runs.second - runs.first != 1 || runs.first->start > 0 ||
            runs.first->end < lastColumn) {
            all = false;
            if (untilGap) break;
            continue;
        }
        // Join the band ending just above and the one starting just below, if any.
        int last = row;
        if (next != s.fullRows.end() && next->first == row + 1) {
            last = next->second;
            next = s.fullRows.erase(next);
        }
        if (next != s.fullRows.begin() && std::prev(next)->second == row - 1) {
            std::prev(next)->second = last;
        } else {
            s.fullRows.emplace_hint(next, row, last);
        }
    }
    return all;
}

void CAvoidObject::ForgetFullRows(int firstRow, int lastRow) {
    kxac::FootprintScratch& s = Scratch();
    auto band = s.fullRows.upper_bound(firstRow);
    if (band != s.fullRows.begin() && std::prev(band)->second >= firstRow) --band;
    while (band != s.fullRows.end() && band->first <= lastRow) {
        const int first = band->first, last = band->second;
        band = s.fullRows.erase(band);
        if (first < firstRow) s.fullRows.emplace(first, firstRow - 1);
        if (last > lastRow) s.fullRows.emplace(lastRow + 1, last);
    }
}

void CAvoidObject::DrawPolygon() {
    kxac::FootprintScratch& s = Scratch();
    const size_t n = s.polygon.size() / 2;
    if (n == 0) return;
    double minX = std::numeric_limits<double>::infinity(), maxX = -minX;
    double minY = minX, maxY = -minX;
    for (size_t i = 0; i < n; ++i) {
        const double x = s.polygon[2 * i];
        const double y = s.polygon[2 * i + 1];
        if (!std::isfinite(x) || !std::isfinite(y)) return;
        minX = std::min(minX, x);
        maxX = std::max(maxX, x);
        minY = std::min(minY, y);
        maxY = std::max(maxY, y);
    }
    const bool inRange = CellOf(minX) >= kMinCell && CellOf(maxX) <= kMaxCell &&
                         CellOf(minY) >= kMinCell && CellOf(maxY) <= kMaxCell &&
                         CellOf(maxX) - CellOf(minX) < kMaxColumns;
    const bool rectangle = inRange && IsCellRectangle(s.polygon);
    if (!inRange) {
        const double left = -kMargin * kSubpixels;
        const double right = (std::min(width(), kWindowCells) + kMargin) * kSubpixels;
        const double bottom = (std::min(height(), kWindowCells) + kMargin) * kSubpixels;
        ClipSide(s.polygon, s.clipped, 0, left, -1.0);
        ClipSide(s.clipped, s.polygon, 0, right, 1.0);
        ClipSide(s.polygon, s.clipped, 1, left, -1.0);
        ClipSide(s.clipped, s.polygon, 1, bottom, 1.0);
        if (s.polygon.size() < 6) return;
    }
    // The vertices as the outline takes them (subpixels inside the rasterizer's range) and
    // their bounds.
    const size_t vertices = s.polygon.size() / 2;
    s.subpixels.resize(2 * vertices);
    int x0 = INT_MAX, y0 = INT_MAX, x1 = INT_MIN, y1 = INT_MIN;
    for (size_t i = 0; i < 2 * vertices; i += 2) {
        const int x = s.subpixels[i] = kxac::TruncToInt(s.polygon[i]);
        const int y = s.subpixels[i + 1] = kxac::TruncToInt(s.polygon[i + 1]);
        x0 = std::min(x0, x);
        x1 = std::max(x1, x);
        y0 = std::min(y0, y);
        y1 = std::max(y1, y);
    }
    // The cells the sweep can emit lie in the rows and columns the vertices span (a cell needs
    // part of the polygon strictly inside it), cut to the raster.
    const long long top = std::max(0LL, FloorCell(y0));
    const long long bottom = std::min(height() - 1LL, CeilCell(y1) - 1);
    const long long left = std::max(0LL, FloorCell(x0));
    const long long right = std::min(width() - 1LL, CeilCell(x1) - 1);
    // A polygon adds nothing when the raster holds none of its cells, or when its cells lie in
    // rows that are one run from column 0 to at least its right end. Skipping one that cannot
    // exhaust the outline's blocks leaves every later polygon's cells as they would have been.
    if (!s.drawEverything && CellsAtMost(s.subpixels, kSkippableCells)) {
        if (top > bottom || left > right) return;
        if (right < FullWidth() &&
            NoteFullRows(static_cast<int>(top), static_cast<int>(bottom), true)) {
            return;
        }
    }
    if (rectangle) {
        // An exhausted raster stores no cell of any polygon.
        if (!Exhausted()) DrawCellRectangle(minX, minY, maxX, maxY);
        // The notes of full rows only save work: worth taking for a rectangle across the raster.
        if (left > 0 || right < FullWidth() - 1) return;
    } else {
        agg::outline& outline = Rasterizer().get_outline();
        outline.reset();
        outline.walk_always(s.drawEverything);
        outline.move_to(s.subpixels[0], s.subpixels[1]);
        for (size_t i = 2; i + 1 < s.subpixels.size(); i += 2)
            outline.line_to(s.subpixels[i], s.subpixels[i + 1]);
        outline.line_to(s.subpixels[0], s.subpixels[1]);
        Sweep();
    }
    if (!s.drawEverything && top <= bottom) {
        // Spans right of FullWidth() can add a second run to a full row: such rows are checked
        // again.
        if (right >= FullWidth()) ForgetFullRows(static_cast<int>(top), static_cast<int>(bottom));
        NoteFullRows(static_cast<int>(top), static_cast<int>(bottom), false);
    }
}

void CAvoidObject::DrawSegment(int x0, int y0, int x1, int y1, int width) {
    if (OutsideCanvas(std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1))) {
        return;
    }
    // Differences wrap in 32 bits, as the stroke's direction is defined by them.
    const double dx = kxac::WrapSub(x1, x0);
    const double dy = kxac::WrapSub(y1, y0);
    if (dx == 0 && dy == 0) return;
    const double len = std::sqrt(dx * dx + dy * dy);
    const double ox = static_cast<double>(width) * dy / len;
    const double oy = static_cast<double>(width) * dx / len;
    Scratch().polygon.assign({(x0 - ox) * kSubpixels, (y0 + oy) * kSubpixels,
                              (x1 - ox) * kSubpixels, (y1 + oy) * kSubpixels,
                              (x1 + ox) * kSubpixels, (y1 - oy) * kSubpixels,
                              (x0 + ox) * kSubpixels, (y0 - oy) * kSubpixels});
    DrawPolygon();
}

void CAvoidObject::AddLine(int* xy, int count, int width) {
    if (xy != nullptr && CRLERaster::DT() != nullptr) {
        Scratch().fullRows.clear();
        const int points = count / 2;
        for (int k = 0; k + 1 < points; ++k) {
            DrawSegment(xy[2 * k], xy[2 * k + 1], xy[2 * k + 2], xy[2 * k + 3], width);
        }
    }
    RecordMaxRLE();
}

void CAvoidObject::AddRing(int* xy, int count) {
    const int points = count > 0 ? count / 2 : 0;
    if (xy != nullptr && points > 0 && CRLERaster::DT() != nullptr) {
        kxac::FootprintScratch& s = Scratch();
        s.fullRows.clear();
        double minX = std::numeric_limits<double>::max(), maxX = -minX;
        double minY = minX, maxY = -minX;
        for (int k = 0; k < points; ++k) {
            minX = std::min<double>(minX, xy[2 * k]);
            maxX = std::max<double>(maxX, xy[2 * k]);
            minY = std::min<double>(minY, xy[2 * k + 1]);
            maxY = std::max<double>(maxY, xy[2 * k + 1]);
        }
        if (!OutsideCanvas(minX, minY, maxX, maxY)) {
            s.polygon.resize(2 * static_cast<size_t>(points));
            for (size_t i = 0; i < s.polygon.size(); ++i)
                s.polygon[i] = xy[i] * kSubpixels;
            DrawPolygon();
        }
    }
    RecordMaxRLE();
}

void CAvoidObject::AddLine(double* xy, int count, int width) {
    AddLine(ToCells(CRLERaster::DT(), xy, count), count, width);
}

void CAvoidObject::AddRing(double* xy, int count) {
    AddRing(ToCells(CRLERaster::DT(), xy, count), count);
}
