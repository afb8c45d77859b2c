#include "placement/Occupancy.h"

#include <algorithm>

namespace kxac {

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
    m_firstDrawn = LLONG_MAX;
    m_lastDrawn = -1;
}

void Occupancy::Clear() {
    if (m_firstDrawn > m_lastDrawn) return;
    std::fill(Row(m_firstDrawn), Row(m_lastDrawn + 1), uint64_t{0});
    m_firstDrawn = LLONG_MAX;
    m_lastDrawn = -1;
}

}  // namespace kxac
