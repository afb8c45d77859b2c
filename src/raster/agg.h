// Cell-based polygon scanline rasterizer.
//
// A polygon is given as contours of straight edges in subpixel units (256 per cell). The outline
// cuts every edge at cell boundaries and accumulates, per cell, the signed vertical extent the
// edges cover there (cover) and where across the cell they pass (area). The sorted cells are then
// swept once, row by row, into spans of covered cells, which go to a target reached through the
// virtual operations of rendering_buffer.
//
// Supported range: cell coordinates within 16 bits and polygons narrower than 32,767 columns.
// Inside it every cell, cover, area and run is exact. Outside it the rasterizer stays memory
// safe, terminates and allocates a bounded amount, but what it produces is not meaningful; each
// place where this matters says what happens.
#pragma once

#include <algorithm>
#include <cstdint>

namespace agg {

enum : int {
    subpixel_shift = 8,
    subpixel_scale = 1 << subpixel_shift,
    subpixel_mask = subpixel_scale - 1,
};

enum : int {
    coverage_shift = subpixel_shift + 1,
    coverage_full = 256,
    coverage_mask = 255,
    even_odd_mask = 511,
};

// One accumulated cell. x and y are kept truncated to 16 bits; packed (the sort key) is computed
// from the full-width column and row: y * 65536 + x, wrapping in 32 bits.
struct cell {
    int16_t x;
    int16_t y;
    int32_t packed;
    int32_t cover;
    int32_t area;
};

// Memory for the cells of one polygon at a time: blocks of 4096 cells that never move, and the
// sorted array of cell pointers.
class cell_storage {
public:
    cell_storage() = default;
    ~cell_storage();
    cell_storage(const cell_storage&) = delete;
    cell_storage& operator=(const cell_storage&) = delete;

    // Block i, allocated when it is the first block not held yet; i never exceeds the count
    // of blocks held.
    cell* block(unsigned i);
    // Block i of those held.
    const cell* held(unsigned i) const { return blocks_[i]; }
    // An array of at least n pointers; its contents are not kept when it grows.
    const cell** sorted(unsigned n);
    // An array of at least n counters for the sort; its contents are not kept when it grows.
    uint32_t* counts(unsigned n);
    // Frees every block, the sorted array and the counters.
    void release();

private:
    enum : unsigned { block_pool = 256 };

    cell** blocks_ = nullptr;
    unsigned held_ = 0;
    unsigned capacity_ = 0;
    const cell** sorted_ = nullptr;
    unsigned sorted_capacity_ = 0;
    uint32_t* counts_ = nullptr;
    unsigned counts_capacity_ = 0;
};

// The coverage cells of one polygon. Cells are stored in blocks of 4096 that never move and are
// kept across reset(), so a reused outline allocates nothing until it needs more cells than
// before. At most 1024 blocks are ever allocated; a flush that must begin a block when all 1024
// exist drops its cell. Since every polygon begins a block with its first cell, once an outline
// has held 4,194,304 cells no later polygon stores any.
//
// The blocks live in the outline's cell_storage; the count of blocks allocated, which the limit
// reads, is kept apart from it (blocks_counted), so that releasing the storage after a polygon,
// or lending the outline to several owners that each bring their own count, stores exactly the
// cells an outline that kept its blocks would store.
//
// Cost: a polygon of n edges costs O(n) plus the cells it stores, and no more than 4,194,304
// cells are ever stored. Within a row, a run of columns that an edge crosses without adding
// cover or area is passed in one step (those cells would be empty and are never stored), so a
// shallow edge costs the cells it covers, not the columns it spans. Once the limit drops a cell,
// no later cell of the polygon is stored either: the edge being walked stops at its next row and
// every later edge only widens the bounds.
class outline {
public:
    enum : unsigned {
        block_shift = 12,
        block_cells = 1u << block_shift,
        block_mask = block_cells - 1,
        block_limit = 1024,
        insertion_threshold = 9,
    };

    outline();
    ~outline();
    outline(const outline&) = delete;
    outline& operator=(const outline&) = delete;

    void reset();
    // reset(), then frees the own storage. The block limit goes on counting the blocks
    // allocated before.
    void release();
    // Draws through storage from now on (the own storage again for null). The caller keeps it
    // alive while the outline uses it, and calls reset() before the next polygon.
    void move_to(int x, int y);
    // Walks every edge cell by cell, empty cells and cells that can no longer be stored
    // included. Off by default; the cells stored and the bounds are the same either way.
    void walk_always(bool on) { walk_always_ = on; }
    // An edge 32,768 or more columns wide (beyond the supported range) is first cut into
    // shorter pieces, which keeps the walk's arithmetic inside 32 bits.
    void line_to(int x, int y);
    // One edge on its own, in no contour: it adds to the cells what it adds as an edge of a
    // contour whose pen stands at (x1, y1), and neither moves the pen nor closes anything. An
    // edge's cells can so be added piece by piece: pieces that end where the edge crosses row
    // boundaries, and within a row column boundaries, at the subpixels where the edge's own walk
    // crosses them, add exactly the edge's cells. Ignored once the cells are sorted.
    void edge(int x1, int y1, int x2, int y2);
    // Adds cover and no area to cell (x, y), as edges at the cell's left boundary whose heights
    // sum to cover would. Ignored once the cells are sorted.
    void cover(int x, int y, int cover);

    // Closes the open contour, stores the current cell and sorts (once per polygon). Returns the
    // null-terminated array of cell pointers in (row, column) order, or null with no cells.
    const cell* const* cells();

    unsigned cell_count() const { return cell_count_; }
    // The blocks counted against the limit. An outline lent to several owners in turn carries
    // each owner's count while it draws for it.
    unsigned blocks_counted() const { return block_count_; }
    void blocks_counted(unsigned count) { block_count_ = count; }
    int min_x() const { return min_x_; }
    int min_y() const { return min_y_; }
    // One past the largest column and row touched.
    int max_x() const { return max_x_; }
    int max_y() const { return max_y_; }

private:
    enum : unsigned { contour_open = 1, sort_pending = 2 };

    // No further cell of the current polygon can be stored: the next flush would need a block
    // beyond the limit, and a dropped flush leaves the count where it is.
    bool exhausted() const {
        return (cell_count_ & block_mask) == 0 && block_count_ >= block_limit && !walk_always_;
    }
    void render_line(int x1, int y1, int x2, int y2);
    void render_row(int ey, int x1, int y1, int x2, int y2);
    void set_cell(int ex, int ey);
    void flush_cell();
    void allocate_block();
    void sort_cells();
    bool bucket_sort_cells();
    static void qsort_cells(const cell** start, unsigned num);

    // Blocks allocated so far: what the limit counts, whichever storage holds them.
    unsigned block_count_ = 0;
    unsigned next_block_ = 0;
    unsigned cell_count_ = 0;
    cell_storage own_;
    cell* write_ptr_ = nullptr;
    const cell** sorted_ = nullptr;
    cell current_;
    int pen_x_ = 0;
    int pen_y_ = 0;
    int start_x_ = 0;
    int start_y_ = 0;
    int min_x_;
    int min_y_;
    int max_x_;
    int max_y_;
    unsigned flags_ = sort_pending;
    bool walk_always_ = false;
};

// The spans of one row, as indexes into a coverage array that starts at column origin_x().
// Slot 0 of the span arrays is never a span: spans are slots 1 to span_count().
class scanline {
public:
    scanline() = default;
    ~scanline();
    scanline(const scanline&) = delete;
    scanline& operator=(const scanline&) = delete;

    // Prepares for cells in columns min_x to max_x, emitted with offsets (dx, dy). The arrays
    // only grow; a range wider than 65,536 columns (beyond what the scanline supports) is
    // capped there, and cells falling outside the arrays are then dropped by add_span.
    void reset(int min_x, int max_x, int dx, int dy);

    // Adds num cells from column x of row y, each with coverage byte cover. Cells that touch the
    // last span by column extend it (the row is not compared; clear() between rows). Cells whose
    // index lies outside the arrays are dropped, and a new span with no slot left is dropped
    // too; a span length wraps in 16 bits. Neither happens in the supported range.
    void add_span(int x, int y, unsigned num, unsigned cover);
    void add_cell(int x, int y, unsigned cover) { add_span(x, y, 1, cover); }

    void clear();
    // Frees the arrays; the next reset() allocates them again.
    void release();
    // The spans held belong to a row before y and must be emitted first.
    bool ready(int y) const { return span_count_ != 0 && y != last_y_; }

    unsigned span_count() const { return span_count_; }
    int last_y() const { return last_y_; }
    int origin_x() const { return origin_x_; }
    int offset_x() const { return offset_x_; }
    int offset_y() const { return offset_y_; }
    unsigned capacity() const { return capacity_; }
    // Index in covers() of span k (1 to span_count()) and its length.
    unsigned span_index(unsigned k) const {
        return static_cast<unsigned>(span_starts_[k] - covers_);
    }
    unsigned span_length(unsigned k) const { return span_lengths_[k]; }
    const unsigned char* covers() const { return covers_; }

private:
    int origin_x_ = 0;
    unsigned capacity_ = 0;
    int offset_x_ = 0;
    int offset_y_ = 0;
    int last_x_ = 0x7FFF;
    int last_y_ = 0x7FFF;
    unsigned char* covers_ = nullptr;
    unsigned char** span_starts_ = nullptr;
    uint16_t* span_lengths_ = nullptr;
    unsigned span_count_ = 0;
    unsigned char** cur_start_ = nullptr;
    uint16_t* cur_length_ = nullptr;
};

// Rows of bytes over caller-owned memory. The rows array is owned and only grows. No virtual
// destructor: derived targets are never deleted through this class.
class rendering_buffer {
public:
    rendering_buffer(unsigned char* buf, unsigned width, unsigned height, int stride);
    ~rendering_buffer();
    rendering_buffer(const rendering_buffer&) = delete;
    rendering_buffer& operator=(const rendering_buffer&) = delete;

    // A negative stride lays the rows out bottom-up: row 0 is the last row in memory.
    void attach(unsigned char* buf, unsigned width, unsigned height, int stride);

    virtual unsigned width() const { return width_; }
    virtual unsigned height() const { return height_; }
    virtual int stride() const { return stride_; }
    // No bounds check on y.
    virtual unsigned char* row(unsigned y) { return rows_[y]; }
    virtual const unsigned char* row(unsigned y) const { return rows_[y]; }

protected:
    // For targets that own no rows: changes the size only (the clip bounds of a sweep); such a
    // target overrides row().
    void set_size(unsigned width, unsigned height) {
        width_ = width;
        height_ = height;
    }

private:
    unsigned char** rows_ = nullptr;
    unsigned width_ = 0;
    unsigned height_ = 0;
    int stride_ = 0;
    unsigned max_height_ = 0;
};

// What row(y) of a run target points to: the row number, then the sink whose
// AddRLE(row, first, last) receives the row's runs.
template <class Sink>
struct run_row {
    uint32_t row_index;
    Sink* row_sink;
};

// Where a sweep's spans go: each cell (x, y) of the outline is emitted as (x + dx, y + dy), and
// only the cells of columns x0 .. x1 and rows y0 .. y1 of the target (within its width and
// height) are kept. Whole-cell shifts are exact, so an outline drawn in a frame of its own gives
// the cells of the same polygon drawn in place.
struct emit_window {
    int64_t dx = 0;
    int64_t dy = 0;
    int64_t x0 = 0;
    int64_t y0 = 0;
    int64_t x1 = INT64_MAX;
    int64_t y1 = INT64_MAX;
};

class rasterizer {
public:
    static const unsigned char s_default_gamma[256];

    rasterizer();
    rasterizer(const rasterizer&) = delete;
    rasterizer& operator=(const rasterizer&) = delete;

    outline& get_outline() { return outline_; }
    const outline& get_outline() const { return outline_; }
    // 1 is even-odd; any other value is non-zero winding.
    int fill_rule() const { return fill_rule_; }
    void fill_rule(int rule) { fill_rule_ = rule; }

    // pow(i / 255, g) * 255, truncated toward zero.
    void gamma(double g);
    void gamma(const unsigned char* table);
    const unsigned char* gamma_table() const { return gamma_table_; }

    // Coverage 0..255 of an accumulated value (cover << 9) - area under the fill rule.
    unsigned calculate_coverage(int value) const;

    // Whether cell (tx, ty) is covered. Right of a covered run, the cell that ends the run's row
    // segment (the next stored cell's column) also answers true.
    bool hit_test(int tx, int ty);

    // Sweeps the outline into target: every covered span, clipped to columns 0 .. width() - 1
    // and dropped unless its row lies in 0 .. height() - 1, goes to
    // run_row<Sink>::row_sink->AddRLE(row, first, last) of the record that target.row(row)
    // returns. The target is reached only through rendering_buffer's virtual operations.
    template <class Sink>
    void render(rendering_buffer& target) {
        render<Sink>(target, emit_window());
    }
    // The same, shifted and cut to the window.
    template <class Sink>
    void render(rendering_buffer& target, const emit_window& window);

private:
    // Walks the sorted, non-empty list once; emit(x, y, n, coverage) receives every covered run
    // (a partly covered cell is a run of 1), in order.
    template <class Emit>
    void sweep(const cell* const* list, Emit&& emit);
    template <class Sink>
    void emit_scanline(rendering_buffer& target, const emit_window& window);

    outline outline_;
    scanline scanline_;
    int fill_rule_ = 0;
    unsigned char gamma_table_[256];
};

template <class Emit>
void rasterizer::sweep(const cell* const* list, Emit&& emit) {
    // Running sums wrap in 32 bits; closed polygons bring cover back to 0 at the end of a row.
    uint32_t cover = 0;
    const cell* c = *list;
    for (;;) {
        const int32_t key = c->packed;
        int x = c->x;
        const int y = c->y;
        uint32_t area = static_cast<uint32_t>(c->area);
        cover += static_cast<uint32_t>(c->cover);
        while ((c = *++list) != nullptr && c->packed == key) {
            area += static_cast<uint32_t>(c->area);
            cover += static_cast<uint32_t>(c->cover);
        }
        if (area != 0) {
            const unsigned a =
                calculate_coverage(static_cast<int32_t>((cover << coverage_shift) - area));
            if (a != 0) emit(x, y, 1u, a);
            ++x;
        }
        if (c == nullptr) break;
        if (c->x > x) {
            const unsigned a = calculate_coverage(static_cast<int32_t>(cover << coverage_shift));
            if (a != 0) emit(x, y, static_cast<unsigned>(c->x - x), a);
        }
    }
}

template <class Sink>
void rasterizer::render(rendering_buffer& target, const emit_window& window) {
    const cell* const* list = outline_.cells();
    if (list == nullptr || outline_.cell_count() == 0) return;
    scanline_.reset(outline_.min_x(), outline_.max_x(), 0, 0);
    sweep(list, [&](int x, int y, unsigned n, unsigned a) {
        if (scanline_.ready(y)) {
            emit_scanline<Sink>(target, window);
            scanline_.clear();
        }
        scanline_.add_span(x, y, n, gamma_table_[a]);
    });
    if (scanline_.span_count() != 0) emit_scanline<Sink>(target, window);
}

template <class Sink>
void rasterizer::emit_scanline(rendering_buffer& target, const emit_window& window) {
    // 64-bit sums: offsets and indexes may be anything outside the supported range.
    const int64_t r = static_cast<int64_t>(scanline_.last_y()) + scanline_.offset_y() + window.dy;
    const int64_t bottom = std::min<int64_t>(window.y1, int64_t{target.height()} - 1);
    if (r < 0 || r < window.y0 || r > bottom) return;
    const auto* rec = reinterpret_cast<const run_row<Sink>*>(target.row(static_cast<unsigned>(r)));
    const int64_t base =
        static_cast<int64_t>(scanline_.origin_x()) + scanline_.offset_x() + window.dx;
    const int64_t left = std::max<int64_t>(window.x0, 0);
    const int64_t right = std::min<int64_t>(window.x1, int64_t{target.width()} - 1);
    for (unsigned k = 1; k <= scanline_.span_count(); ++k) {
        int64_t x = base + scanline_.span_index(k);
        int64_t n = scanline_.span_length(k);
        if (x < left) {
            n -= left - x;
            if (n < 1) continue;
            x = left;
        }
        if (x + n - 1 > right) {
            n = right - x + 1;
            if (n < 1) continue;
        }
        rec->row_sink->AddRLE(static_cast<int>(rec->row_index), static_cast<int>(x),
                              static_cast<int>(x + n - 1));
    }
}

}  // namespace agg
