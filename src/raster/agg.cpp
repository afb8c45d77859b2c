#include "raster/agg.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "stdafx.h"

namespace agg {

namespace {

using kxac::WrapAdd;

// 32-bit products that wrap instead of overflowing.
inline int32_t wrap_mul(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
inline int32_t packed_key(int ex, int ey) {
    return static_cast<int32_t>(static_cast<uint32_t>(ey) * 65536u + static_cast<uint32_t>(ex));
}

// Floor division: quotient rounded toward minus infinity and a remainder in [0, d) for d > 0.
struct floor_div {
    int32_t quot;
    int32_t rem;
    floor_div(int32_t p, int32_t d) {
        int32_t q = p / d;
        int32_t r = p - q * d;
        if (r < 0) {
            --q;
            r += d;
        }
        quot = q;
        rem = r;
    }
};

// render_line keeps every product of its walk inside 32 bits (exact, no wrap) when an edge spans
// fewer than 2^23 subpixels across (32,768 columns) and fewer than 2^31 down. Longer edges exist
// only beyond the supported range; they are cut into pieces within these spans, which keeps the
// walk finite and memory safe but gives cells that differ from an uncut edge's by rounding.
constexpr int64_t piece_dx = int64_t{1} << 22;
constexpr int64_t piece_dy = int64_t{1} << 30;
constexpr int64_t max_edge_dx = (int64_t{1} << 23) - 1;
constexpr int64_t max_edge_dy = INT32_MAX;

// The scanline never holds more indexes than a 16-bit column can take, plus the two of its size
// formula; wider polygons lie beyond the supported range.
constexpr uint32_t max_scanline_cells = 65536 + 2;

}  // namespace

outline::outline()
    : current_{0x7FFF, 0x7FFF, 0x7FFF7FFF, 0, 0},
      min_x_(0x7FFFFFFF),
      min_y_(0x7FFFFFFF),
      max_x_(-0x7FFFFFFF),
      max_y_(-0x7FFFFFFF) {}

//------------------------------------------------------------------------------------------------
// cell_storage

cell_storage::~cell_storage() {
    release();
    delete[] blocks_;
}

cell* cell_storage::block(unsigned i) {
    if (i < held_) return blocks_[i];
    if (held_ >= capacity_) {
        cell** grown = new cell*[capacity_ + block_pool];
        if (blocks_ != nullptr) std::memcpy(grown, blocks_, capacity_ * sizeof(cell*));
        delete[] blocks_;
        blocks_ = grown;
        capacity_ += block_pool;
    }
    blocks_[held_] = new cell[outline::block_cells];
    return blocks_[held_++];
}

const cell** cell_storage::sorted(unsigned n) {
    if (n > sorted_capacity_) {
        delete[] sorted_;
        sorted_ = nullptr;
        sorted_ = new const cell*[n];
        sorted_capacity_ = n;
    }
    return sorted_;
}

uint32_t* cell_storage::counts(unsigned n) {
    if (n > counts_capacity_) {
        delete[] counts_;
        counts_ = nullptr;
        counts_ = new uint32_t[n];
        counts_capacity_ = n;
    }
    return counts_;
}

void cell_storage::release() {
    delete[] sorted_;
    sorted_ = nullptr;
    sorted_capacity_ = 0;
    delete[] counts_;
    counts_ = nullptr;
    counts_capacity_ = 0;
    while (held_ != 0)
        delete[] blocks_[--held_];
}

//------------------------------------------------------------------------------------------------
// outline

outline::~outline() = default;

void outline::release() {
    reset();
    own_.release();
}

void outline::reset() {
    cell_count_ = 0;
    next_block_ = 0;
    current_ = {0x7FFF, 0x7FFF, 0x7FFF7FFF, 0, 0};
    min_x_ = min_y_ = 0x7FFFFFFF;
    max_x_ = max_y_ = -0x7FFFFFFF;
    flags_ = (flags_ & ~contour_open) | sort_pending;
}

void outline::move_to(int x, int y) {
    if ((flags_ & sort_pending) == 0) reset();
    if (flags_ & contour_open) line_to(start_x_, start_y_);
    set_cell(x >> subpixel_shift, y >> subpixel_shift);
    pen_x_ = start_x_ = x;
    pen_y_ = start_y_ = y;
}

void outline::line_to(int x, int y) {
    if ((flags_ & sort_pending) == 0 || (x == pen_x_ && y == pen_y_)) return;
    for (int c : {pen_x_ >> subpixel_shift, x >> subpixel_shift}) {
        if (c < min_x_) min_x_ = c;
        if (c + 1 > max_x_) max_x_ = c + 1;
    }
    render_line(pen_x_, pen_y_, x, y);
    pen_x_ = x;
    pen_y_ = y;
    flags_ |= contour_open;
}

void outline::edge(int x1, int y1, int x2, int y2) {
    if ((flags_ & sort_pending) == 0 || (x1 == x2 && y1 == y2)) return;
    for (int c : {x1 >> subpixel_shift, x2 >> subpixel_shift}) {
        if (c < min_x_) min_x_ = c;
        if (c + 1 > max_x_) max_x_ = c + 1;
    }
    set_cell(x1 >> subpixel_shift, y1 >> subpixel_shift);
    render_line(x1, y1, x2, y2);
}

void outline::cover(int x, int y, int cover) {
    if ((flags_ & sort_pending) == 0) return;
    if (x < min_x_) min_x_ = x;
    if (x + 1 > max_x_) max_x_ = x + 1;
    if (y < min_y_) min_y_ = y;
    if (y + 1 > max_y_) max_y_ = y + 1;
    set_cell(x, y);
    current_.cover = WrapAdd(current_.cover, cover);
}

const cell* const* outline::cells() {
    if (flags_ & contour_open) {
        line_to(start_x_, start_y_);
        flags_ &= ~contour_open;
    }
    if (flags_ & sort_pending) {
        flush_cell();
        if (cell_count_ == 0) return nullptr;
        sort_cells();
        flags_ &= ~sort_pending;
    }
    return sorted_;
}

void outline::set_cell(int ex, int ey) {
    const int32_t key = packed_key(ex, ey);
    if (current_.packed == key) return;
    flush_cell();
    current_ = {static_cast<int16_t>(ex), static_cast<int16_t>(ey), key, 0, 0};
}

void outline::flush_cell() {
    if (current_.cover == 0 && current_.area == 0) return;
    if ((cell_count_ & block_mask) == 0) {
        if (block_count_ >= block_limit) return;
        allocate_block();
    }
    *write_ptr_++ = current_;
    ++cell_count_;
}

// The one place that allocates cell storage.
void outline::allocate_block() {
    if (next_block_ >= block_count_) ++block_count_;
    write_ptr_ = own_.block(next_block_++);
}

void outline::render_line(int x1, int y1, int x2, int y2) {
    if (exhausted()) {
        // Only the bounds can still change; pieces of a cut edge would widen them no further.
        for (int ey : {y1 >> subpixel_shift, y2 >> subpixel_shift}) {
            if (ey < min_y_) min_y_ = ey;
            if (ey + 1 > max_y_) max_y_ = ey + 1;
        }
        return;
    }
    const int64_t wide_dx = int64_t{x2} - x1;
    const int64_t wide_dy = int64_t{y2} - y1;
    if (wide_dx > max_edge_dx || wide_dx < -max_edge_dx || wide_dy > max_edge_dy ||
        wide_dy < -max_edge_dy) {
        const int64_t ax = wide_dx < 0 ? -wide_dx : wide_dx;
        const int64_t ay = wide_dy < 0 ? -wide_dy : wide_dy;
        const int64_t n = std::max(ax / piece_dx, ay / piece_dy) + 1;
        int px = x1, py = y1;
        for (int64_t i = 1; i <= n; ++i) {
            const int qx = static_cast<int>(x1 + wide_dx * i / n);
            const int qy = static_cast<int>(y1 + wide_dy * i / n);
            render_line(px, py, qx, qy);
            px = qx;
            py = qy;
        }
        return;
    }

    int ey1 = y1 >> subpixel_shift;
    const int ey2 = y2 >> subpixel_shift;
    const int fy1 = y1 & subpixel_mask;
    const int fy2 = y2 & subpixel_mask;
    for (int ey : {ey1, ey2}) {
        if (ey < min_y_) min_y_ = ey;
        if (ey + 1 > max_y_) max_y_ = ey + 1;
    }
    const int dx = x2 - x1;
    int dy = y2 - y1;

    if (ey1 == ey2) {
        render_row(ey1, x1, fy1, x2, fy2);
        return;
    }

    if (dx == 0) {
        const int ex = x1 >> subpixel_shift;
        const int two_fx = (x1 & subpixel_mask) << 1;
        const int first = dy < 0 ? 0 : subpixel_scale;
        const int incr = dy < 0 ? -1 : 1;
        int d = first - fy1;
        current_.cover = WrapAdd(current_.cover, d);
        current_.area = WrapAdd(current_.area, two_fx * d);
        ey1 += incr;
        set_cell(ex, ey1);
        d = first + first - subpixel_scale;
        const int area = two_fx * d;
        while (ey1 != ey2) {
            current_.cover = d;
            current_.area = area;
            ey1 += incr;
            set_cell(ex, ey1);
            if (exhausted()) return;
        }
        d = fy2 - subpixel_scale + first;
        current_.cover = WrapAdd(current_.cover, d);
        current_.area = WrapAdd(current_.area, two_fx * d);
        return;
    }

    int p = (subpixel_scale - fy1) * dx;
    int first = subpixel_scale;
    int incr = 1;
    if (dy < 0) {
        p = fy1 * dx;
        first = 0;
        incr = -1;
        dy = -dy;
    }
    const floor_div start(p, dy);
    int mod = start.rem;
    int x_from = x1 + start.quot;
    render_row(ey1, x1, fy1, x_from, first);
    ey1 += incr;
    set_cell(x_from >> subpixel_shift, ey1);
    if (ey1 != ey2) {
        const floor_div step(subpixel_scale * dx, dy);
        mod -= dy;
        while (ey1 != ey2) {
            int delta = step.quot;
            mod += step.rem;
            if (mod >= 0) {
                mod -= dy;
                ++delta;
            }
            const int x_to = x_from + delta;
            render_row(ey1, x_from, subpixel_scale - first, x_to, first);
            x_from = x_to;
            ey1 += incr;
            set_cell(x_from >> subpixel_shift, ey1);
            if (exhausted()) return;
        }
    }
    render_row(ey1, x_from, subpixel_scale - first, x2, fy2);
}

// One piece of an edge inside row ey; y1 and y2 are fractions 0..256 within the row.
void outline::render_row(int ey, int x1, int y1, int x2, int y2) {
    int ex1 = x1 >> subpixel_shift;
    const int ex2 = x2 >> subpixel_shift;
    const int fx1 = x1 & subpixel_mask;
    const int fx2 = x2 & subpixel_mask;

    if (y1 == y2) {
        set_cell(ex2, ey);
        return;
    }
    if (ex1 == ex2) {
        const int d = y2 - y1;
        current_.cover = WrapAdd(current_.cover, d);
        current_.area = WrapAdd(current_.area, (fx1 + fx2) * d);
        return;
    }

    int p = (subpixel_scale - fx1) * (y2 - y1);
    int first = subpixel_scale;
    int incr = 1;
    int dx = x2 - x1;
    if (dx < 0) {
        p = fx1 * (y2 - y1);
        first = 0;
        incr = -1;
        dx = -dx;
    }
    const floor_div start(p, dx);
    int delta = start.quot;
    int mod = start.rem;
    current_.cover = WrapAdd(current_.cover, delta);
    current_.area = WrapAdd(current_.area, (fx1 + first) * delta);
    ex1 += incr;
    set_cell(ex1, ey);
    y1 += delta;
    if (ex1 != ex2) {
        const floor_div step(subpixel_scale * (y2 - y1 + delta), dx);
        mod -= dx;
        while (ex1 != ex2) {
            // A run of steps that add nothing (delta 0: no carry when the quotient is 0, a carry
            // when it is -1) only moves the current cell; its zero cells are never stored. The
            // run is taken in one move, so a shallow edge costs its covered cells, not its
            // columns. mod stays in [-dx, 0) between steps.
            if (!walk_always_ && (step.quot == 0 || step.quot == -1)) {
                int64_t zeros = 0;
                if (step.quot == 0) {
                    if (mod + step.rem < 0)
                        zeros = step.rem == 0 ? INT32_MAX : (-int64_t{mod} - 1) / step.rem;
                } else if (mod + step.rem >= 0) {
                    zeros = 1 + (int64_t{mod} + step.rem) / (dx - step.rem);
                }
                zeros = std::min<int64_t>(zeros, int64_t{ex2 - ex1} * incr);
                if (zeros > 1) {
                    const int64_t carry = step.quot == 0 ? 0 : dx;
                    mod = static_cast<int>(mod + zeros * (step.rem - carry));
                    ex1 += static_cast<int>(zeros) * incr;
                    set_cell(ex1, ey);
                    continue;
                }
            }
            delta = step.quot;
            mod += step.rem;
            if (mod >= 0) {
                mod -= dx;
                ++delta;
            }
            current_.cover = WrapAdd(current_.cover, delta);
            current_.area = WrapAdd(current_.area, wrap_mul(subpixel_scale, delta));
            y1 += delta;
            ex1 += incr;
            set_cell(ex1, ey);
        }
    }
    const int d = y2 - y1;
    current_.cover = WrapAdd(current_.cover, d);
    current_.area = WrapAdd(current_.area, (fx2 + subpixel_scale - first) * d);
}

void outline::sort_cells() {
    if (cell_count_ == 0) return;
    sorted_ = own_.sorted(cell_count_ + 1);
    sorted_[cell_count_] = nullptr;
    if (bucket_sort_cells()) return;
    const cell** out = sorted_;
    const unsigned full_blocks = cell_count_ >> block_shift;
    for (unsigned b = 0; b < full_blocks; ++b) {
        const cell* block = own_.held(b);
        for (unsigned i = 0; i < block_cells; ++i)
            *out++ = block + i;
    }
    const unsigned rest = cell_count_ & block_mask;
    for (unsigned i = 0; i < rest; ++i)
        *out++ = own_.held(full_blocks) + i;
    *out = nullptr;
    qsort_cells(sorted_, cell_count_);
}

// Counting sort on the high half of (key - smallest key), which is the row for cells of the
// 16-bit range, then each bucket by key. Taken only when every cell's key is the packed key of its
// own stored x and y: equal keys then mean equal cells, so the order among them, the one thing
// this sort may choose differently from qsort_cells, changes nothing that reads the cells.
// False, sorting nothing, otherwise or when there are far more buckets than cells.
bool outline::bucket_sort_cells() {
    const unsigned full_blocks = cell_count_ >> block_shift;
    const unsigned rest = cell_count_ & block_mask;
    auto for_each_cell = [&](auto&& visit) {
        for (unsigned b = 0; b <= full_blocks; ++b) {
            const unsigned n = b < full_blocks ? block_cells : rest;
            if (n == 0) break;
            const cell* block = own_.held(b);
            for (unsigned i = 0; i < n; ++i)
                visit(block + i);
        }
    };
    int32_t min_key = INT32_MAX;
    int32_t max_key = INT32_MIN;
    bool exact = true;
    for_each_cell([&](const cell* c) {
        exact &= c->packed == packed_key(c->x, c->y);
        min_key = std::min(min_key, c->packed);
        max_key = std::max(max_key, c->packed);
    });
    if (!exact) return false;
    auto bucket_of = [min_key](const cell* c) {
        return (static_cast<uint32_t>(c->packed) - static_cast<uint32_t>(min_key)) >> 16;
    };
    const uint32_t buckets =
        ((static_cast<uint32_t>(max_key) - static_cast<uint32_t>(min_key)) >> 16) + 1;
    if (buckets > cell_count_ + 16) return false;
    uint32_t* starts = own_.counts(buckets + 1);
    std::fill(starts, starts + buckets + 1, 0u);
    for_each_cell([&](const cell* c) { ++starts[bucket_of(c) + 1]; });
    for (uint32_t b = 1; b <= buckets; ++b)
        starts[b] += starts[b - 1];
    // starts[b] runs from the start of bucket b to its end while the cells are placed.
    for_each_cell([&](const cell* c) { sorted_[starts[bucket_of(c)]++] = c; });
    uint32_t begin = 0;
    for (uint32_t b = 0; b < buckets; ++b) {
        if (starts[b] - begin > 1) qsort_cells(sorted_ + begin, starts[b] - begin);
        begin = starts[b];
    }
    return true;
}

// Iterative quicksort by packed key. The larger part is always pushed, so the stack holds at most
// log2(num) pending parts, well inside its 40.
void outline::qsort_cells(const cell** start, unsigned num) {
    const cell** stack[80];
    const cell*** top = stack;
    const cell** base = start;
    const cell** limit = start + num;
    auto key = [](const cell** p) { return (*p)->packed; };

    for (;;) {
        const auto len = limit - base;
        if (len > insertion_threshold) {
            std::swap(*base, base[len / 2]);
            const cell** i = base + 1;
            const cell** j = limit - 1;
            if (key(j) < key(i)) std::swap(*i, *j);
            if (key(base) < key(i)) std::swap(*base, *i);
            if (key(j) < key(base)) std::swap(*base, *j);
            // key(i) <= key(base) <= key(j): both scans below stop inside [base + 1, limit - 1].
            for (;;) {
                const int32_t pivot = key(base);
                while (key(++i) < pivot) {
                }
                while (pivot < key(--j)) {
                }
                if (i > j) break;
                std::swap(*i, *j);
            }
            std::swap(*base, *j);
            if (j - base > limit - i) {
                top[0] = base;
                top[1] = j;
                base = i;
            } else {
                top[0] = i;
                top[1] = limit;
                limit = j;
            }
            top += 2;
        } else {
            for (const cell** i = base + 1; i < limit; ++i) {
                for (const cell** j = i; j > base && key(j) < key(j - 1); --j) {
                    std::swap(*j, *(j - 1));
                }
            }
            if (top == stack) break;
            top -= 2;
            base = top[0];
            limit = top[1];
        }
    }
}

//------------------------------------------------------------------------------------------------
// scanline

scanline::~scanline() { release(); }

void scanline::release() {
    delete[] span_lengths_;
    delete[] span_starts_;
    delete[] covers_;
    span_lengths_ = nullptr;
    span_starts_ = nullptr;
    covers_ = nullptr;
    capacity_ = 0;
    clear();
}

void scanline::reset(int min_x, int max_x, int dx, int dy) {
    uint32_t len = static_cast<uint32_t>(max_x) - static_cast<uint32_t>(min_x) + 2u;
    if (len > max_scanline_cells) len = max_scanline_cells;
    if (len < 2) len = 2;  // max_x < min_x - 1: never from a sweep
    if (len > capacity_) {
        delete[] span_lengths_;
        delete[] span_starts_;
        delete[] covers_;
        span_lengths_ = nullptr;
        span_starts_ = nullptr;
        covers_ = new unsigned char[len];
        span_starts_ = new unsigned char*[len];
        span_lengths_ = new uint16_t[len];
        capacity_ = len;
        // Slot 0 is never emitted, but a first cell taken as adjacent to the empty state grows it.
        span_lengths_[0] = 0;
    }
    origin_x_ = min_x;
    offset_x_ = dx;
    offset_y_ = dy;
    clear();
}

void scanline::clear() {
    last_x_ = last_y_ = 0x7FFF;
    cur_start_ = span_starts_;
    cur_length_ = span_lengths_;
    span_count_ = 0;
}

void scanline::add_span(int x, int y, unsigned num, unsigned cover) {
    const int64_t i = int64_t{x} - origin_x_;
    if (i < 0 || i >= capacity_ || num > capacity_ - i) return;
    std::memset(covers_ + i, static_cast<int>(cover & 0xFF), num);
    if (i == int64_t{last_x_} + 1) {
        *cur_length_ = static_cast<uint16_t>(*cur_length_ + num);
    } else {
        if (span_count_ + 2 > capacity_) return;
        ++cur_start_;
        ++cur_length_;
        *cur_length_ = static_cast<uint16_t>(num);
        *cur_start_ = covers_ + i;
        ++span_count_;
    }
    last_x_ = static_cast<int>(i + num - 1);
    last_y_ = y;
}

//------------------------------------------------------------------------------------------------
// rendering_buffer

rendering_buffer::rendering_buffer(unsigned char* buf, unsigned width, unsigned height,
                                   int stride) {
    attach(buf, width, height, stride);
}

rendering_buffer::~rendering_buffer() { delete[] rows_; }

void rendering_buffer::attach(unsigned char* buf, unsigned width, unsigned height, int stride) {
    width_ = width;
    height_ = height;
    stride_ = stride;
    if (height > max_height_) {
        delete[] rows_;
        rows_ = nullptr;
        rows_ = new unsigned char*[height];
        max_height_ = height;
    }
    // Addresses are formed as integers: the caller's block need not be an array this code can
    // see, and buf may be null.
    uintptr_t p = reinterpret_cast<uintptr_t>(buf);
    if (stride < 0) p -= static_cast<uintptr_t>((int64_t{height} - 1) * stride);
    for (unsigned i = 0; i < height; ++i) {
        rows_[i] = reinterpret_cast<unsigned char*>(p);
        p += static_cast<uintptr_t>(static_cast<intptr_t>(stride));
    }
}

//------------------------------------------------------------------------------------------------
// rasterizer

// Non-decreasing from 0 to 255. Entries 0-31, every sixteenth entry and the last sixteen are
// fixed; the others are interpolated linearly between fixed neighbours and truncated.
const unsigned char rasterizer::s_default_gamma[256] = {
    0,   0,   1,   1,   2,   2,   3,   4,   4,   5,   5,   6,   7,   7,   8,   8,   9,   10,  10,
    11,  11,  12,  13,  13,  14,  14,  15,  16,  16,  17,  18,  18,  19,  19,  20,  20,  21,  22,
    22,  23,  24,  24,  25,  25,  26,  27,  27,  28,  29,  29,  30,  30,  31,  32,  32,  33,  34,
    34,  35,  35,  36,  37,  37,  38,  39,  39,  40,  40,  41,  42,  42,  43,  44,  44,  45,  45,
    46,  47,  47,  48,  49,  49,  50,  51,  51,  52,  53,  53,  54,  55,  55,  56,  57,  57,  58,
    59,  60,  60,  61,  62,  63,  63,  64,  65,  66,  66,  67,  68,  69,  69,  70,  71,  72,  72,
    73,  74,  75,  76,  76,  77,  78,  79,  80,  80,  81,  82,  83,  84,  85,  85,  86,  87,  88,
    89,  90,  91,  92,  93,  94,  95,  96,  97,  98,  99,  100, 101, 102, 103, 104, 105, 106, 107,
    108, 109, 110, 111, 112, 113, 114, 115, 116, 117, 118, 119, 120, 121, 122, 123, 125, 126, 127,
    128, 129, 130, 131, 132, 134, 135, 136, 137, 139, 140, 141, 142, 144, 145, 146, 147, 149, 150,
    151, 152, 154, 155, 156, 158, 159, 161, 162, 164, 165, 166, 168, 169, 171, 172, 174, 175, 177,
    178, 180, 181, 183, 184, 186, 187, 189, 191, 192, 194, 195, 197, 198, 200, 202, 203, 205, 207,
    208, 210, 212, 213, 215, 217, 218, 220, 222, 223, 225, 227, 229, 230, 232, 234, 236, 237, 239,
    241, 242, 244, 246, 248, 249, 251, 253, 255};

rasterizer::rasterizer() { gamma(s_default_gamma); }

void rasterizer::gamma(double g) {
    for (int i = 0; i < 256; ++i) {
        const double v = std::pow(i / 255.0, g) * 255.0;
        // Truncated toward zero through 64 bits, low byte kept; NaN, infinities and values
        // beyond 64 bits (only for negative g) give 0.
        const bool convertible = v >= 0.0 && v < 9223372036854775808.0;
        gamma_table_[i] = convertible ? static_cast<unsigned char>(static_cast<uint64_t>(v)) : 0;
    }
}

void rasterizer::gamma(const unsigned char* table) { std::memcpy(gamma_table_, table, 256); }

unsigned rasterizer::calculate_coverage(int value) const {
    int c = value >> coverage_shift;  // at least -2^22: the negation cannot overflow
    if (c < 0) c = -c;
    if (fill_rule_ == 1) {
        c &= even_odd_mask;
        if (c > coverage_full) c = even_odd_mask + 1 - c;
    }
    if (c > coverage_mask) c = coverage_mask;
    return static_cast<unsigned>(c);
}

bool rasterizer::hit_test(int tx, int ty) {
    const cell* const* list = outline_.cells();
    if (list == nullptr || outline_.cell_count() == 0) return false;
    uint32_t cover = 0;
    const cell* c = *list;
    for (;;) {
        const int32_t key = c->packed;
        int x = c->x;
        const int y = c->y;
        if (y > ty) return false;
        uint32_t area = static_cast<uint32_t>(c->area);
        cover += static_cast<uint32_t>(c->cover);
        while ((c = *++list) != nullptr && c->packed == key) {
            area += static_cast<uint32_t>(c->area);
            cover += static_cast<uint32_t>(c->cover);
        }
        if (area != 0) {
            if (calculate_coverage(static_cast<int32_t>((cover << coverage_shift) - area)) != 0 &&
                tx == x && ty == y) {
                return true;
            }
            ++x;
        }
        if (c == nullptr) return false;
        if (c->x > x && calculate_coverage(static_cast<int32_t>(cover << coverage_shift)) != 0) {
            if (ty == y && x <= tx && tx <= c->x) return true;
        }
    }
}

}  // namespace agg
