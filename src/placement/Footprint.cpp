// Lines and rings of an avoid object, rasterised into its runs.
//
// Every stroke and ring is one polygon in subpixels (256 per cell), swept by the object's own
// rasterizer into its raster target, which clips the spans to the raster and hands them to
// AddRLE. The rasterizer's arithmetic is exact only for cell coordinates within 16 bits and for
// polygons narrower than 32,767 columns. A polygon inside that range is drawn where it is. One
// outside it is drawn in a frame of its own, moved by whole cells so that its bounds start at the
// range's first cell, and its spans are moved back: whole-cell moves are exact, so it gets the
// cells it would get in place, however far out it lies. A polygon too large for any frame is
// drawn in tiles of the raster. A tile's outline takes, of every edge, the pieces that lie in
// the tile's rows, cut where the edge's own walk crosses the row boundaries (the walk computes
// those crossings exactly, so the pieces add exactly the edge's cells); a row's piece that
// leaves the tile's columns is cut at the column boundaries inside them where the row's walk
// changes its y; the cover of its parts left and right of the tile, and of the rows where an
// edge lies wholly beside the tile, is summed into one cell a row on each side, which carries
// what the sweep needs. The tile keeps the cells of its own rows and columns, which are so
// exactly those of the whole polygon; a band of tiles adds its spans joined at the seams, in the
// order of a whole sweep, so the runs are the same too.
//
// The rasterizer draws through the scratch memory of the attached transform, which all objects
// of a container share: an object holds only its runs, however many objects a pool keeps.
//
// Hostile input (a million segments of half-width INT_MAX over the whole int range) would draw
// the whole raster once per segment. A polygon is therefore not drawn when the raster holds none
// of its cells, or when all its rows are already full (one run from column 0 to the raster's
// last column, which adding cells leaves exactly as it is). Whether a polygon is drawn can also
// change what later ones store, through the outline's cell limit: only polygons too small to
// reach the limit are ever skipped.
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
static_assert(kMaxColumns - 1 == kxac::kMaxExactShapeWidth, "the stated limit is the range's");
static_assert(kMaxCell - kMinCell == kxac::kMaxExactShapeHeight, "the stated limit is the range's");
// Tiles of a polygon too large for one frame.
constexpr long long kTileColumns = 32000;
constexpr long long kTileRows = 65000;

double CellOf(double subpixel) { return std::floor(std::trunc(subpixel) / kSubpixels); }

// floor(p / d) and ceil(p / d) for d > 0.
long long FloorDiv(__int128 p, long long d) {
    __int128 q = p / d;
    if (p % d != 0 && p < 0) --q;
    return static_cast<long long>(q);
}
long long CeilDiv(__int128 p, long long d) { return -FloorDiv(-p, d); }

// The cover that the parts of edges beside a tile's columns carry into it, row by row: what
// the cells left of the tile add to the running cover of the sweep, and what the cells right of
// it take away again, so that the sweep ends its spans there. Each side becomes one cell a row,
// beside the tile, with its cover and no area.
class SideCover {
public:
    // Over the transform's scratch vectors.
    SideCover(std::vector<long long>& partial, std::vector<long long>& full)
        : m_partial(partial), m_full(full) {}
    // For the rows first .. last.
    void Reset(long long first, long long last) {
        m_first = first;
        const auto rows = static_cast<size_t>(last - first + 1);
        m_partial.assign(2 * rows, 0);
        m_full.assign(2 * (rows + 1), 0);
    }
    // The cover of an edge's part from subpixel row yFrom to yTo (both within the rows) on the
    // given side: each row the part crosses takes its share, full rows through a difference.
    void Add(bool right, long long yFrom, long long yTo) {
        if (yFrom == yTo) return;
        const long long sign = yTo > yFrom ? 1 : -1;
        const long long lo = std::min(yFrom, yTo), hi = std::max(yFrom, yTo);
        const long long r0 = lo >> agg::subpixel_shift, r1 = (hi - 1) >> agg::subpixel_shift;
        const auto at = [&](long long row) {
            return 2 * static_cast<size_t>(row - m_first) + right;
        };
        if (r0 == r1) {
            m_partial[at(r0)] += sign * (hi - lo);
            return;
        }
        m_partial[at(r0)] += sign * (((r0 + 1) << agg::subpixel_shift) - lo);
        m_partial[at(r1)] += sign * (hi - (r1 << agg::subpixel_shift));
        if (r0 + 1 <= r1 - 1) {
            m_full[at(r0 + 1)] += sign * agg::subpixel_scale;
            m_full[at(r1)] -= sign * agg::subpixel_scale;
        }
    }
    // Calls cell(right, row, cover) for each row and side with a cover.
    template <class Cell>
    void ForEach(Cell&& cell) const {
        long long full[2] = {0, 0};
        for (size_t i = 0; i + 1 < m_partial.size(); i += 2) {
            for (int side = 0; side < 2; ++side) {
                full[side] += m_full[i + side];
                const long long cover = full[side] + m_partial[i + side];
                if (cover != 0) cell(side == 1, m_first + static_cast<long long>(i / 2), cover);
            }
        }
    }

private:
    long long m_first = 0;
    std::vector<long long>& m_partial;
    std::vector<long long>& m_full;
};

// The pieces of one row's part of an edge, from (xa, ya) to (xb, yb), that give its cells in
// the columns from subpixel x0 up to x1 (cell boundaries): the part inside as it is when it lies
// wholly inside, else cut at every column boundary it crosses there, where the row's own walk
// crosses them. The parts left of x0 and right of x1 go to the side cover.
template <class Piece>
void RowInWindow(long long xa, long long ya, long long xb, long long yb, long long x0, long long x1,
                 Piece&& piece, SideCover& side) {
    const long long lo = std::min(xa, xb), hi = std::max(xa, xb);
    if (lo >= x0 && hi <= x1) return piece(xa, ya, xb, yb);
    if (hi <= x0) return side.Add(false, ya, yb);
    if (lo >= x1) return side.Add(true, ya, yb);
    const auto yAt = [&](long long x) {
        if (x == xa) return ya;
        if (x == xb) return yb;
        return ya + FloorDiv(static_cast<__int128>(x > xa ? x - xa : xa - x) * (yb - ya), hi - lo);
    };
    const long long step = xa < xb ? agg::subpixel_scale : -agg::subpixel_scale;
    const long long from = xa < xb ? std::max(xa, x0) : std::min(xa, x1);
    const long long to = xa < xb ? std::min(xb, x1) : std::max(xb, x0);
    if (xa < x0) side.Add(false, ya, yAt(x0));
    if (xa > x1) side.Add(true, ya, yAt(x1));
    long long px = from, py = yAt(from);
    // The column boundaries strictly between `from` and `to`, first0 + k * step for k < count,
    // at the distance t0 + 256 k from xa. Between two boundaries where the walk's y is the same
    // a piece adds nothing: only the columns where y changes (at most 257) become pieces, each
    // found from the distance at which the next value of y is reached.
    const long long first0 = xa < xb ? ((from >> agg::subpixel_shift) + 1) << agg::subpixel_shift
                                     : ((from - 1) >> agg::subpixel_shift) << agg::subpixel_shift;
    const long long count = xa < xb ? (to > first0 ? CeilDiv(to - first0, agg::subpixel_scale) : 0)
                                    : (to < first0 ? CeilDiv(first0 - to, agg::subpixel_scale) : 0);
    const long long t0 = xa < xb ? first0 - xa : xa - first0;
    const long long dyp = yb - ya, adx = hi - lo;
    for (long long k = 0; k < count && dyp != 0;) {
        // The least distance at which y passes py, one value further.
        const long long n = py - ya + (dyp > 0 ? 1 : -1);
        const long long t = dyp > 0 ? CeilDiv(n * adx, dyp) : FloorDiv(-(n + 1) * adx, -dyp) + 1;
        const long long at = std::max(k, t > t0 ? CeilDiv(t - t0, agg::subpixel_scale) : 0);
        if (at >= count) break;
        const long long x = first0 + at * step;
        const long long ny = yAt(x);
        piece(at == 0 ? from : x - step, py, x, ny);
        px = x;
        py = ny;
        k = at + 1;
    }
    if (px != to) piece(px, py, to, yAt(to));
    if (xb < x0) side.Add(false, yAt(x0), yb);
    if (xb > x1) side.Add(true, yAt(x1), yb);
}

// The pieces of the edge (x1, y1)-(x2, y2), in subpixels of the canvas, that give its cells in
// the window's columns and rows: the edge itself when it lies inside, else the part of each row of
// the window, cut where the edge's own walk crosses the row boundaries, then by RowInWindow. The
// rows where the edge lies wholly beside the window, found by bisection, go to the side cover at
// once.
template <class Piece>
void EdgeInWindow(long long x1, long long y1, long long x2, long long y2, const agg::emit_window& w,
                  Piece&& piece, SideCover& side) {
    // An edge within a row adds no cover or area.
    if (y1 == y2) return;
    const long long ey1 = y1 >> agg::subpixel_shift, ey2 = y2 >> agg::subpixel_shift;
    const long long x0 = w.x0 * agg::subpixel_scale;
    const long long xEnd = (w.x1 + 1) * agg::subpixel_scale;
    long long rowLo = std::max<long long>(std::min(ey1, ey2), w.y0);
    long long rowHi = std::min<long long>(std::max(ey1, ey2), w.y1);
    if (rowLo > rowHi) return;
    if (std::min(x1, x2) >= x0 && std::max(x1, x2) <= xEnd && std::min(ey1, ey2) >= w.y0 &&
        std::max(ey1, ey2) <= w.y1 + 1) {
        return piece(x1, y1, x2, y2);
    }
    const bool down = y2 > y1;
    const long long dy = down ? y2 - y1 : y1 - y2;
    // Where the edge's walk crosses the row boundary y: x1 + floor(|y - y1| dx / |dy|).
    const auto xAt = [&](long long y) {
        if (y == y1) return x1;
        if (y == y2) return x2;
        return x1 + FloorDiv(static_cast<__int128>(down ? y - y1 : y1 - y) * (x2 - x1), dy);
    };
    // The edge's part in a row, from ya to yb in the edge's direction.
    const auto part = [&](long long row, long long& ya, long long& yb) {
        const long long top = row * agg::subpixel_scale, bottom = top + agg::subpixel_scale;
        ya = down ? std::max(y1, top) : std::min(y1, bottom);
        yb = down ? std::min(y2, bottom) : std::max(y2, top);
    };
    long long ya = 0, yb = 0;
    // Rows without a part (an end on a row boundary) only at the ends.
    for (part(rowLo, ya, yb); ya == yb && rowLo < rowHi; part(++rowLo, ya, yb)) {
    }
    for (part(rowHi, ya, yb); ya == yb && rowLo < rowHi; part(--rowHi, ya, yb)) {
    }
    if (ya == yb) return;
    // Rows lie wholly left of the window, or right of it, in a run at one end of the rows: as
    // the row grows, the edge's parts move right when it runs down to the right or up to the
    // left, else left.
    const bool rightward = (x2 > x1) == down;
    const auto beside = [&](long long row, bool right) {
        part(row, ya, yb);
        return right ? std::min(xAt(ya), xAt(yb)) >= xEnd : std::max(xAt(ya), xAt(yb)) <= x0;
    };
    // The rows at the low end for which beside(row, right) holds, given that it holds for a run
    // of rows starting there: the first row after that run.
    const auto runEnd = [&](bool right) {
        long long lo = rowLo, hi = rowHi + 1;
        while (lo < hi) {
            const long long mid = lo + (hi - lo) / 2;
            beside(mid, right) ? lo = mid + 1 : hi = mid;
        }
        return lo;
    };
    const auto runStart = [&](bool right) {
        long long lo = rowLo, hi = rowHi + 1;
        while (lo < hi) {
            const long long mid = lo + (hi - lo) / 2;
            beside(mid, right) ? hi = mid : lo = mid + 1;
        }
        return lo;
    };
    // Left rows at the low end when the parts move right with the row, else at the high end;
    // right rows at the other end.
    long long first = rowLo, last = rowHi;
    const auto carry = [&](bool right, long long from, long long to) {
        if (from > to) return;
        long long a0 = 0, b0 = 0, a1 = 0, b1 = 0;
        part(from, a0, b0);
        part(to, a1, b1);
        side.Add(right, down ? a0 : a1, down ? b1 : b0);
    };
    // The low end's side (left when the parts move right), then the other side at the high end.
    const bool lowSide = !rightward;
    const long long lowEnd = runEnd(lowSide);
    carry(lowSide, rowLo, lowEnd - 1);
    first = lowEnd;
    const long long highStart = std::max(runStart(!lowSide), first);
    carry(!lowSide, highStart, rowHi);
    last = highStart - 1;
    for (long long row = first; row <= last; ++row) {
        part(row, ya, yb);
        if (ya != yb) RowInWindow(xAt(ya), ya, xAt(yb), yb, x0, xEnd, piece, side);
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
template <typename T>
bool CellsAtMost(const std::vector<T>& xy, double limit) {
    const auto cell = [](T v) { return std::floor(static_cast<double>(v) / kSubpixels); };
    const size_t n = xy.size() / 2;
    double cells = 1;
    for (size_t i = 0; i < n; ++i) {
        const size_t j = i + 1 < n ? i + 1 : 0;
        cells += std::fabs(cell(xy[2 * j]) - cell(xy[2 * i])) +
                 std::fabs(cell(xy[2 * j + 1]) - cell(xy[2 * i + 1])) + 2;
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
template <typename T>
bool IsCellRectangle(const std::vector<T>& p) {
    size_t n = p.size() / 2;
    if (n == 5 && p[8] == p[0] && p[9] == p[1]) n = 4;
    if (n != 4) return false;
    // Called on polygons within the rasterizer's range, where every value fits a long long.
    for (size_t i = 0; i < 8; ++i) {
        const auto v = static_cast<long long>(p[i]);
        if (static_cast<T>(v) != p[i] || v % agg::subpixel_scale != 0) return false;
    }
    const bool horizontalFirst = p[1] == p[3] && p[2] == p[4] && p[5] == p[7] && p[6] == p[0];
    const bool verticalFirst = p[0] == p[2] && p[3] == p[5] && p[4] == p[6] && p[7] == p[1];
    return horizontalFirst || verticalFirst;
}

struct Bounds {
    double minX, minY, maxX, maxY;
};

// The bounds of a polygon of at least one point (x, y pairs); false when a coordinate is not
// finite.
bool BoundsOf(const std::vector<double>& p, Bounds& b) {
    b = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
         -std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (size_t i = 0; i + 1 < p.size(); i += 2) {
        if (!std::isfinite(p[i]) || !std::isfinite(p[i + 1])) return false;
        b.minX = std::min(b.minX, p[i]);
        b.maxX = std::max(b.maxX, p[i]);
        b.minY = std::min(b.minY, p[i + 1]);
        b.maxY = std::max(b.maxY, p[i + 1]);
    }
    return true;
}

// Whether the polygon can be drawn where it lies.
bool InRange(const Bounds& b) {
    return CellOf(b.minX) >= kMinCell && CellOf(b.maxX) <= kMaxCell && CellOf(b.minY) >= kMinCell &&
           CellOf(b.maxY) <= kMaxCell && CellOf(b.maxX) - CellOf(b.minX) < kMaxColumns;
}

// Whether the polygon, of whole subpixels, fits the range once moved by whole cells.
bool FitsFrame(const Bounds& b) {
    return CellOf(b.maxX) - CellOf(b.minX) < kMaxColumns &&
           CellOf(b.maxY) - CellOf(b.minY) <= kMaxCell - kMinCell;
}

// Whether the pieces of the polygon's edges in the tile of columns c0 .. c1 and rows r0 .. r1
// store at most limit cells in an outline. An edge's row pieces store the cells of its columns
// there, one more a row where they meet, and at most five more a row: a cell at each end, one
// begun by a piece cut at a column boundary, a cell beside the tile on each side.
bool TileCellsAtMost(const std::vector<double>& p, long long c0, long long r0, long long c1,
                     long long r1, double limit) {
    const size_t n = p.size() / 2;
    const double columns = static_cast<double>(c1 - c0 + 3);
    double cells = 1;
    for (size_t i = 0; i < n; ++i) {
        const size_t j = i + 1 < n ? i + 1 : 0;
        const double top =
            std::max(std::min(CellOf(p[2 * i + 1]), CellOf(p[2 * j + 1])), static_cast<double>(r0));
        const double bottom = std::min(std::max(CellOf(p[2 * i + 1]), CellOf(p[2 * j + 1])),
                                       static_cast<double>(r1 + 1));
        if (top > bottom) continue;
        cells += std::min(std::fabs(CellOf(p[2 * j]) - CellOf(p[2 * i])), columns) +
                 6 * (bottom - top + 1) + 2;
        if (cells > limit) return false;
    }
    return true;
}

// A target of the raster's size that gathers the spans of a sweep.
class SpanCollector : public agg::rendering_buffer, public CRLECreate {
public:
    SpanCollector(unsigned width, unsigned height, std::vector<kxac::FootprintScratch::Span>& spans)
        : agg::rendering_buffer(nullptr, 0, 0, 0), m_spans(spans) {
        set_size(width, height);
    }
    unsigned char* row(unsigned y) override {
        m_record = {y, this};
        return reinterpret_cast<unsigned char*>(&m_record);
    }
    void AddRLE(int row, int first, int last) override { m_spans.push_back({row, first, last}); }

private:
    std::vector<kxac::FootprintScratch::Span>& m_spans;
    agg::run_row<CRLECreate> m_record{0, nullptr};
};

}  // namespace

// The sweep gives a rectangle on cell corners the cells of its columns and rows, clipped to the
// raster, one span a row from the top: the same spans are added here directly.
void CAvoidObject::DrawCellRectangle(long long left, long long top, long long right,
                                     long long bottom) {
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

long long CAvoidObject::FullWidth() { return width(); }

agg::emit_window CAvoidObject::RasterWindow() {
    agg::emit_window w;
    w.x1 = std::min<long long>(width() - 1LL, INT_MAX);
    w.y1 = std::min<long long>(height() - 1LL, INT_MAX);
    return w;
}

bool CAvoidObject::NoteFullRows(int firstRow, int lastRow, bool untilGap) {
    kxac::FootprintScratch& s = Scratch();
    const long long lastColumn = FullWidth() - 1;
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

void CAvoidObject::DrawPolygon() {
    kxac::FootprintScratch& s = Scratch();
    Bounds b;
    if (s.polygon.size() < 2 || !BoundsOf(s.polygon, b)) return;
    if (!InRange(b) || s.tileCells > 0) return DrawFar(0, 0);
    const bool rectangle = IsCellRectangle(s.polygon);
    s.subpixels.resize(s.polygon.size() & ~size_t{1});
    for (size_t i = 0; i < s.subpixels.size(); ++i)
        s.subpixels[i] = kxac::TruncToInt(s.polygon[i]);
    DrawFramed(RasterWindow(), rectangle);
}

void CAvoidObject::DrawFar(long long originX, long long originY) {
    kxac::FootprintScratch& s = Scratch();
    // Each vertex to a whole subpixel of the canvas, truncated toward zero as in place. The
    // fraction is taken before the origin is added, at the magnitude of the shape rather than of
    // its position, so that a shape moved by whole cells keeps its subpixels; the results are
    // integers well below 2^53.
    const double shift[2] = {static_cast<double>(originX) * kSubpixels,
                             static_cast<double>(originY) * kSubpixels};
    for (size_t i = 0; i < s.polygon.size(); ++i) {
        const double v = s.polygon[i];
        if (!std::isfinite(v)) return;
        s.polygon[i] = (v >= -shift[i % 2] ? std::floor(v) : std::ceil(v)) + shift[i % 2];
    }
    Bounds b;
    if (!BoundsOf(s.polygon, b)) return;
    if (FitsFrame(b) && s.tileCells == 0) return DrawInFrame(b.minX, b.minY, RasterWindow());
    const agg::emit_window raster = RasterWindow();
    const long long row0 = std::max(0LL, static_cast<long long>(CellOf(b.minY)));
    const long long row1 = std::min<long long>(raster.y1, static_cast<long long>(CellOf(b.maxY)));
    const long long col0 = std::max(0LL, static_cast<long long>(CellOf(b.minX)));
    const long long col1 = std::min<long long>(raster.x1, static_cast<long long>(CellOf(b.maxX)));
    if (row0 > row1 || col0 > col1) {
        ++s.counts.skipped;
        return;
    }
    if (IsCellRectangle(s.polygon)) {
        // Its cells, cut to the raster, as in a frame.
        const long long right =
            std::min<long long>(col1, static_cast<long long>(b.maxX / kSubpixels) - 1);
        const long long bottom =
            std::min<long long>(row1, static_cast<long long>(b.maxY / kSubpixels) - 1);
        if (!s.drawEverything &&
            NoteFullRows(static_cast<int>(row0), static_cast<int>(bottom), true)) {
            ++s.counts.skipped;
            return;
        }
        ++s.counts.rectangles;
        if (!Exhausted()) DrawCellRectangle(col0, row0, right, bottom);
        if (!s.drawEverything && col0 == 0 && right >= FullWidth() - 1 && row0 <= bottom)
            NoteFullRows(static_cast<int>(row0), static_cast<int>(bottom), false);
        return;
    }
    // The tiles of the raster that the polygon reaches, in bands of rows.
    const long long columns =
        s.tileCells > 0 ? std::min<long long>(s.tileCells, kTileColumns) : kTileColumns;
    const long long rows =
        s.tileCells > 0 ? std::min<long long>(s.tileCells, kTileRows) : kTileRows;
    const long long firstColumn = col0 - col0 % columns;
    // A whole sweep adds a row's spans at once, left to right: the spans of a band of several
    // tiles are gathered, joined where they meet at a seam, and added so.
    SpanCollector collector(width(), height(), s.spans);
    for (long long y = row0 - row0 % rows; y <= row1; y += rows) {
        const int top = static_cast<int>(std::max(y, row0));
        const int bottom = static_cast<int>(std::min<long long>({y + rows - 1, row1, raster.y1}));
        if (!s.drawEverything) {
            bool skippable = true;
            for (long long x = firstColumn; skippable && x <= col1; x += columns) {
                skippable = TileCellsAtMost(
                    s.polygon, x, y, std::min<long long>(x + columns - 1, raster.x1),
                    std::min<long long>(y + rows - 1, raster.y1), kSkippableCells);
            }
            if (skippable && NoteFullRows(top, bottom, true)) {
                ++s.counts.skipped;
                continue;
            }
        }
        const bool gather = firstColumn + columns <= col1;
        s.spans.clear();
        for (long long x = firstColumn; x <= col1; x += columns) {
            agg::emit_window tile = raster;
            tile.x0 = x;
            tile.y0 = y;
            tile.x1 = std::min<long long>(raster.x1, x + columns - 1);
            tile.y1 = std::min<long long>(raster.y1, y + rows - 1);
            DrawTile(tile, gather ? &collector : nullptr);
        }
        if (gather) AddSpans(s.spans);
        if (!s.drawEverything) NoteFullRows(top, bottom, false);
    }
}

void CAvoidObject::AddSpans(std::vector<kxac::FootprintScratch::Span>& spans) {
    std::sort(spans.begin(), spans.end(), [](const auto& a, const auto& b) {
        return a.row != b.row ? a.row < b.row : a.first < b.first;
    });
    for (size_t i = 0; i < spans.size();) {
        const int row = spans[i].row, first = spans[i].first;
        int last = spans[i].last;
        for (++i; i < spans.size() && spans[i].row == row && spans[i].first == last + 1; ++i)
            last = spans[i].last;
        AddRLE(row, first, last);
    }
}

void CAvoidObject::DrawTile(agg::emit_window tile, agg::rendering_buffer* target) {
    kxac::FootprintScratch& s = Scratch();
    // The frame: the column left of the tile, which takes the cover of everything left of it,
    // and the tile's first row go to the range's first cell.
    tile.dx = tile.x0 - 1 - static_cast<long long>(kMinCell);
    tile.dy = tile.y0 - static_cast<long long>(kMinCell);
    const long long fx = tile.dx * agg::subpixel_scale, fy = tile.dy * agg::subpixel_scale;
    agg::outline& outline = Rasterizer().get_outline();
    outline.reset();
    outline.walk_always(s.drawEverything);
    ++s.counts.tiles;
    SideCover sides(s.sidePartial, s.sideFull);
    sides.Reset(tile.y0, tile.y1);
    const size_t n = s.polygon.size() / 2;
    for (size_t i = 0; i < n; ++i) {
        const size_t j = i + 1 < n ? i + 1 : 0;
        EdgeInWindow(
            static_cast<long long>(s.polygon[2 * i]), static_cast<long long>(s.polygon[2 * i + 1]),
            static_cast<long long>(s.polygon[2 * j]), static_cast<long long>(s.polygon[2 * j + 1]),
            tile,
            [&](long long x1, long long y1, long long x2, long long y2) {
                ++s.counts.pieces;
                outline.edge(static_cast<int>(x1 - fx), static_cast<int>(y1 - fy),
                             static_cast<int>(x2 - fx), static_cast<int>(y2 - fy));
            },
            sides);
    }
    // The cover from beside the tile, in the columns beside it; sums wrap in 32 bits as the
    // sweep's own do.
    sides.ForEach([&](bool right, long long row, long long cover) {
        const long long column = right ? tile.x1 + 1 : tile.x0 - 1;
        outline.cover(static_cast<int>(column - tile.dx), static_cast<int>(row - tile.dy),
                      static_cast<int>(static_cast<uint32_t>(cover)));
    });
    target != nullptr ? Sweep(*target, tile) : Sweep(tile);
}

void CAvoidObject::DrawInFrame(double minX, double minY, agg::emit_window window) {
    kxac::FootprintScratch& s = Scratch();
    // The polygon's first cell goes to the first cell of the range.
    window.dx = static_cast<long long>(CellOf(minX)) - static_cast<long long>(kMinCell);
    window.dy = static_cast<long long>(CellOf(minY)) - static_cast<long long>(kMinCell);
    const double fx = static_cast<double>(window.dx) * kSubpixels;
    const double fy = static_cast<double>(window.dy) * kSubpixels;
    s.subpixels.resize(s.polygon.size() & ~size_t{1});
    for (size_t i = 0; i < s.subpixels.size(); i += 2) {
        s.subpixels[i] = static_cast<int>(s.polygon[i] - fx);
        s.subpixels[i + 1] = static_cast<int>(s.polygon[i + 1] - fy);
    }
    DrawFramed(window, IsCellRectangle(s.subpixels));
}

void CAvoidObject::DrawFramed(const agg::emit_window& window, bool rectangle) {
    kxac::FootprintScratch& s = Scratch();
    if (s.subpixels.empty()) return;
    int x0 = INT_MAX, y0 = INT_MAX, x1 = INT_MIN, y1 = INT_MIN;
    for (size_t i = 0; i + 1 < s.subpixels.size(); i += 2) {
        x0 = std::min(x0, s.subpixels[i]);
        x1 = std::max(x1, s.subpixels[i]);
        y0 = std::min(y0, s.subpixels[i + 1]);
        y1 = std::max(y1, s.subpixels[i + 1]);
    }
    // The cells the sweep can emit lie in the rows and columns the vertices span (a cell needs
    // part of the polygon strictly inside it), moved out of the frame and cut to the window.
    const long long top = std::max<long long>(window.y0, FloorCell(y0) + window.dy);
    const long long bottom = std::min<long long>(window.y1, CeilCell(y1) - 1 + window.dy);
    const long long left = std::max<long long>(window.x0, FloorCell(x0) + window.dx);
    const long long right = std::min<long long>(window.x1, CeilCell(x1) - 1 + window.dx);
    // A polygon adds nothing when the window holds none of its cells, or when its cells lie in
    // rows that are one run across the raster. Skipping one that cannot exhaust the outline's
    // blocks leaves every later polygon's cells as they would have been.
    if (!s.drawEverything && CellsAtMost(s.subpixels, kSkippableCells) &&
        (top > bottom || left > right ||
         NoteFullRows(static_cast<int>(top), static_cast<int>(bottom), true))) {
        ++s.counts.skipped;
        return;
    }
    if (rectangle) {
        ++s.counts.rectangles;
        // An exhausted raster stores no cell of any polygon.
        if (!Exhausted()) DrawCellRectangle(left, top, right, bottom);
        // The notes of full rows only save work: worth taking for a rectangle across the raster.
        if (left > 0 || right < FullWidth() - 1) return;
    } else {
        ++s.counts.swept;
        agg::outline& outline = Rasterizer().get_outline();
        outline.reset();
        outline.walk_always(s.drawEverything);
        outline.move_to(s.subpixels[0], s.subpixels[1]);
        for (size_t i = 2; i + 1 < s.subpixels.size(); i += 2)
            outline.line_to(s.subpixels[i], s.subpixels[i + 1]);
        outline.line_to(s.subpixels[0], s.subpixels[1]);
        Sweep(window);
    }
    if (!s.drawEverything && top <= bottom) {
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
    std::vector<double>& polygon = Scratch().polygon;
    polygon.assign({(x0 - ox) * kSubpixels, (y0 + oy) * kSubpixels, (x1 - ox) * kSubpixels,
                    (y1 + oy) * kSubpixels, (x1 + ox) * kSubpixels, (y1 - oy) * kSubpixels,
                    (x0 + ox) * kSubpixels, (y0 - oy) * kSubpixels});
    Bounds b;
    if (!BoundsOf(polygon, b) || InRange(b)) return DrawPolygon();
    // Out of the range: the corners from the first point, so that they are rounded as a stroke
    // near the origin would be.
    const double ex = static_cast<double>(static_cast<long long>(x1) - x0);
    const double ey = static_cast<double>(static_cast<long long>(y1) - y0);
    polygon.assign({-ox * kSubpixels, oy * kSubpixels, (ex - ox) * kSubpixels,
                    (ey + oy) * kSubpixels, (ex + ox) * kSubpixels, (ey - oy) * kSubpixels,
                    ox * kSubpixels, -oy * kSubpixels});
    DrawFar(x0, y0);
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
