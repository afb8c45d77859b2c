// The merge of two rows of runs at their offsets: whether they share an occupied canvas column.
// Shared by the footprint test of an avoid object and by the index of placed objects, which runs
// it on the rows it keeps a view of.
#pragma once

#include <algorithm>
#include <climits>
#include <iterator>

#include "index/RLEIndex.h"

namespace kxac {

// The runs of one row, wherever they are stored.
struct RowSpan {
    const RLE* begin;
    const RLE* end;
    explicit RowSpan(const RLERowRuns& runs) : begin(runs.data()), end(runs.data() + runs.size()) {}
    RowSpan(const RLE* first, const RLE* last) : begin(first), end(last) {}
};

// The occupied cells of a row whose run ends are non-decreasing, shifted by a column offset, as
// ordered disjoint intervals. A cell is occupied when the first run ending at or after it starts
// at or before it, so run i holds the cells after the end of run i - 1 up to its own end.
class RowCells {
public:
    // Starts at the first interval that can reach column `from`.
    RowCells(RowSpan runs, int shift, long long from) : m_end(runs.end), m_shift(shift) {
        m_run = std::lower_bound(runs.begin, runs.end, from - shift,
                                 [](const RLE& r, long long c) { return r.end < c; });
        m_prevEnd = m_run == runs.begin ? LLONG_MIN / 2 : std::prev(m_run)->end;
    }
    // The next non-empty interval [lo, hi] in canvas columns; false at the end of the row.
    bool Next(long long& lo, long long& hi) {
        while (m_run != m_end) {
            const long long first = std::max<long long>(m_run->start, m_prevEnd + 1);
            const long long last = m_run->end;
            m_prevEnd = last;
            ++m_run;
            if (first <= last) {
                lo = first + m_shift;
                hi = last + m_shift;
                return true;
            }
        }
        return false;
    }

private:
    const RLE* m_run;
    const RLE* m_end;
    long long m_prevEnd;
    long long m_shift;
};

// Whether the two rows share an occupied canvas column in [left, right].
inline bool RowsMeet(RowSpan a, int shiftA, RowSpan b, int shiftB, long long left,
                     long long right) {
    RowCells cellsA(a, shiftA, left);
    RowCells cellsB(b, shiftB, left);
    long long loA = 0, hiA = 0, loB = 0, hiB = 0;
    bool moreA = cellsA.Next(loA, hiA);
    bool moreB = cellsB.Next(loB, hiB);
    while (moreA && moreB) {
        if (loA > right || loB > right) return false;
        if (std::max({loA, loB, left}) <= std::min({hiA, hiB, right})) return true;
        if (hiA < hiB) {
            moreA = cellsA.Next(loA, hiA);
        } else {
            moreB = cellsB.Next(loB, hiB);
        }
    }
    return false;
}

}  // namespace kxac
