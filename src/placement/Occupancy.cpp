#include "placement/Occupancy.h"

#include <algorithm>
#include <cassert>

namespace kxac {
namespace {

// The bits first .. last (0 .. 63) of a word.
uint64_t Mask(long long first, long long last) {
    const uint64_t upTo = last == 63 ? ~uint64_t{0} : (uint64_t{1} << (last + 1)) - 1;
    return upTo & ~((uint64_t{1} << first) - 1);
}

}  // namespace

void Occupancy::Cover(long long columns, long long rows) {
    columns = std::max(0LL, std::min<long long>(columns, kMaxWords * 64));
    rows = std::max(0LL, rows);
    const size_t stride = static_cast<size_t>((columns + 63) / 64);
    if (stride > 0) rows = std::min<long long>(rows, static_cast<long long>(kMaxWords / stride));
    if (stride == 0) rows = 0;
    m_columns = columns;
    m_rows = rows;
    m_stride = stride;
    std::vector<uint64_t>(stride * static_cast<size_t>(rows)).swap(m_bits);
    m_firstDrawn = 0;
    m_lastDrawn = -1;
}

void Occupancy::Set(long long row, long long first, long long last) {
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
    if (m_firstDrawn > m_lastDrawn) {
        m_firstDrawn = m_lastDrawn = row;
    } else {
        m_firstDrawn = std::min(m_firstDrawn, row);
        m_lastDrawn = std::max(m_lastDrawn, row);
    }
}

bool Occupancy::Any(long long row, long long first, long long last) const {
    assert(Covers(first, row, last, row));
    const uint64_t* words = Row(row);
    const long long w0 = first >> 6, w1 = last >> 6;
    if (w0 == w1) return (words[w0] & Mask(first & 63, last & 63)) != 0;
    if ((words[w0] & Mask(first & 63, 63)) != 0) return true;
    for (long long w = w0 + 1; w < w1; ++w) {
        if (words[w] != 0) return true;
    }
    return (words[w1] & Mask(0, last & 63)) != 0;
}

void Occupancy::Clear() {
    if (m_firstDrawn > m_lastDrawn) return;
    std::fill(Row(m_firstDrawn), Row(m_lastDrawn + 1), uint64_t{0});
    m_firstDrawn = 0;
    m_lastDrawn = -1;
}

}  // namespace kxac
