// Occupancy of the canvas: one bit per cell, 64 cells to a word, row by row.
//
// The placed objects whose footprint is plain runs lying wholly on the canvas are drawn here, so
// that testing a candidate against all of them costs a few word tests per row of the candidate,
// however many objects are placed. Clearing touches only the rows that were drawn in.
#pragma once

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kxac {

class Occupancy {
public:
    // Covers cells 0 .. columns - 1 by 0 .. rows - 1, all free. Columns and rows are capped so
    // that the bitmap stays within kMaxWords words; what lies beyond is not covered.
    void Cover(long long columns, long long rows);
    long long Columns() const { return m_columns; }
    long long Rows() const { return m_rows; }
    // Whether the cell rectangle lies wholly inside the covered cells.
    bool Covers(long long left, long long top, long long right, long long bottom) const {
        return left >= 0 && top >= 0 && right < m_columns && bottom < m_rows && left <= right &&
               top <= bottom;
    }

    // Cells first .. last of a covered row; the span must lie inside the covered columns.
    void Set(long long row, long long first, long long last) {
        assert(Covers(first, row, last, row));
        uint64_t* words = Row(row);
        const long long w0 = first >> 6, w1 = last >> 6;
        if (w0 == w1) {
            words[w0] |= Mask(first & 63, last & 63);
        } else {
            words[w0] |= Mask(first & 63, 63);
            for (long long w = w0 + 1; w < w1; ++w)
                words[w] = ~uint64_t{0};
            words[w1] |= Mask(0, last & 63);
        }
        m_firstDrawn = std::min(m_firstDrawn, row);
        m_lastDrawn = std::max(m_lastDrawn, row);
    }
    // Whether any cell first .. last of a covered row is set.
    bool Any(long long row, long long first, long long last) const {
        return Any(row, row, first, last);
    }
    // Whether any cell of columns first .. last in rows top .. bottom is set; the rectangle must
    // lie inside the covered cells.
    bool Any(long long top, long long bottom, long long first, long long last) const {
        assert(Covers(first, top, last, bottom));
        const long long w0 = first >> 6, w1 = last >> 6;
        const uint64_t head = Mask(first & 63, w0 == w1 ? last & 63 : 63);
        const uint64_t tail = Mask(0, last & 63);
        const uint64_t* words = Row(top);
        for (long long row = top; row <= bottom; ++row, words += m_stride) {
            if ((words[w0] & head) != 0) return true;
            if (w0 == w1) continue;
            for (long long w = w0 + 1; w < w1; ++w) {
                if (words[w] != 0) return true;
            }
            if ((words[w1] & tail) != 0) return true;
        }
        return false;
    }
    // Frees every cell.
    void Clear();

    static constexpr size_t kMaxWords = size_t{1} << 22;

private:
    // The bits first .. last (0 .. 63) of a word.
    static uint64_t Mask(long long first, long long last) {
        return (~uint64_t{0} >> (63 - last)) & (~uint64_t{0} << first);
    }
    uint64_t* Row(long long row) { return m_bits.data() + static_cast<size_t>(row) * m_stride; }
    const uint64_t* Row(long long row) const {
        return m_bits.data() + static_cast<size_t>(row) * m_stride;
    }

    std::vector<uint64_t> m_bits;
    size_t m_stride = 0;
    long long m_columns = 0;
    long long m_rows = 0;
    // The rows drawn in since the last Clear: firstDrawn > lastDrawn when none.
    long long m_firstDrawn = LLONG_MAX;
    long long m_lastDrawn = -1;
};

}  // namespace kxac
