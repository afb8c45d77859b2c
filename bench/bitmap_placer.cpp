#include "bitmap_placer.h"

#include <algorithm>

namespace kxbench {
namespace {

struct CellRect {
    int x0, y0, x1, y1;  // inclusive

    bool Empty() const { return x0 > x1 || y0 > y1; }
};

// Shifted by (dx, dy) in 64-bit arithmetic and clipped to the canvas; sets offCanvas when the
// shift takes a cell off it.
CellRect Shifted(const CellRect& r, int dx, int dy, int width, int height, bool& offCanvas) {
    const long long x0 = static_cast<long long>(r.x0) + dx;
    const long long x1 = static_cast<long long>(r.x1) + dx;
    const long long y0 = static_cast<long long>(r.y0) + dy;
    const long long y1 = static_cast<long long>(r.y1) + dy;
    if (x0 < 0 || y0 < 0 || x1 >= width || y1 >= height) offCanvas = true;
    return {static_cast<int>(std::max(x0, 0LL)), static_cast<int>(std::max(y0, 0LL)),
            static_cast<int>(std::min<long long>(x1, width - 1)),
            static_cast<int>(std::min<long long>(y1, height - 1))};
}

}  // namespace

OccupancyBitmap::OccupancyBitmap(int width, int height)
    : m_width(width),
      m_height(height),
      m_stride((static_cast<size_t>(width) + 63) / 64),
      m_bits(m_stride * static_cast<size_t>(height)) {}

void OccupancyBitmap::Clear() { std::fill(m_bits.begin(), m_bits.end(), 0); }

bool OccupancyBitmap::IsFree(int x0, int y0, int x1, int y1) const {
    const size_t w0 = static_cast<size_t>(x0) >> 6;
    const size_t w1 = static_cast<size_t>(x1) >> 6;
    const uint64_t head = ~0ULL << (x0 & 63);
    const uint64_t tail = ~0ULL >> (63 - (x1 & 63));
    const uint64_t* row = m_bits.data() + static_cast<size_t>(y0) * m_stride;
    for (int y = y0; y <= y1; ++y, row += m_stride) {
        if (w0 == w1) {
            if (row[w0] & head & tail) return false;
            continue;
        }
        if (row[w0] & head) return false;
        for (size_t w = w0 + 1; w < w1; ++w)
            if (row[w]) return false;
        if (row[w1] & tail) return false;
    }
    return true;
}

void OccupancyBitmap::Set(int x0, int y0, int x1, int y1) {
    const size_t w0 = static_cast<size_t>(x0) >> 6;
    const size_t w1 = static_cast<size_t>(x1) >> 6;
    const uint64_t head = ~0ULL << (x0 & 63);
    const uint64_t tail = ~0ULL >> (63 - (x1 & 63));
    uint64_t* row = m_bits.data() + static_cast<size_t>(y0) * m_stride;
    for (int y = y0; y <= y1; ++y, row += m_stride) {
        if (w0 == w1) {
            row[w0] |= head & tail;
            continue;
        }
        row[w0] |= head;
        for (size_t w = w0 + 1; w < w1; ++w)
            row[w] = ~0ULL;
        row[w1] |= tail;
    }
}

BitmapPass PlaceOnBitmap(OccupancyBitmap& bitmap, const Scene& scene, std::vector<int>* chosen) {
    bitmap.Clear();
    const int width = bitmap.Width();
    const int height = bitmap.Height();
    if (chosen) chosen->assign(scene.labels.size(), -1);
    BitmapPass pass;
    for (size_t i = 0; i < scene.labels.size(); ++i) {
        const Label& l = scene.labels[i];
        // The ring's right and bottom edges lie one past the box; its cells are the box's.
        bool offCanvas = false;
        const CellRect cells = Shifted({l.box.left, l.box.top, l.box.right, l.box.bottom}, 0, 0,
                                       width, height, offCanvas);
        offCanvas = false;  // cells the ring loses at the canvas edge are simply not there
        int taken = -1;
        if (cells.Empty()) {
            taken = 0;  // nothing to collide with
        } else if (bitmap.IsFree(cells.x0, cells.y0, cells.x1, cells.y1)) {
            bitmap.Set(cells.x0, cells.y0, cells.x1, cells.y1);
            taken = 0;
        } else {
            for (size_t k = 0; k < l.offsets.size(); ++k) {
                const CellRect c =
                    Shifted(cells, l.offsets[k].x, l.offsets[k].y, width, height, offCanvas);
                if (c.Empty()) {  // wholly off the canvas: no cell to collide with
                    taken = static_cast<int>(k) + 1;
                    break;
                }
                if (bitmap.IsFree(c.x0, c.y0, c.x1, c.y1)) {
                    bitmap.Set(c.x0, c.y0, c.x1, c.y1);
                    taken = static_cast<int>(k) + 1;
                    break;
                }
            }
        }
        if (offCanvas) ++pass.inexact;
        if (taken >= 0) ++pass.placed;
        if (chosen) (*chosen)[i] = taken;
    }
    return pass;
}

}  // namespace kxbench
