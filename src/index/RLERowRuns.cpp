// The run vector of a row, with room for one run inside it.
#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "index/RLEIndex.h"

namespace {
// The most runs a row holds: counts are 32-bit.
constexpr size_t kMaxRuns = 0xFFFFFFFFu;
}  // namespace

RLERowRuns::RLERowRuns(std::initializer_list<RLE> runs) : RLERowRuns() {
    reserve(runs.size());
    std::copy(runs.begin(), runs.end(), data());
    m_size = static_cast<uint32_t>(runs.size());
}

RLERowRuns::RLERowRuns(const RLERowRuns& o) : RLERowRuns() {
    reserve(o.m_size);
    std::copy(o.begin(), o.end(), data());
    m_size = o.m_size;
}

RLERowRuns::RLERowRuns(RLERowRuns&& o) noexcept : RLERowRuns() { swap(o); }

RLERowRuns& RLERowRuns::operator=(const RLERowRuns& o) {
    if (this != &o) {
        RLERowRuns copy(o);
        swap(copy);
    }
    return *this;
}

RLERowRuns& RLERowRuns::operator=(RLERowRuns&& o) noexcept {
    RLERowRuns taken(std::move(o));
    swap(taken);
    return *this;
}

void RLERowRuns::Free() {
    if (Heap()) delete[] m_heap;
}

void RLERowRuns::swap(RLERowRuns& o) noexcept {
    // The union is copied as bytes: it holds either the inline run or the block's address.
    unsigned char mine[sizeof(RLE*) > sizeof(RLE) ? sizeof(RLE*) : sizeof(RLE)];
    std::memcpy(mine, &m_inline, sizeof mine);
    std::memcpy(&m_inline, &o.m_inline, sizeof mine);
    std::memcpy(&o.m_inline, mine, sizeof mine);
    std::swap(m_size, o.m_size);
    std::swap(m_capacity, o.m_capacity);
}

void RLERowRuns::reserve(size_t n) {
    if (n <= m_capacity) return;
    if (n > kMaxRuns) throw std::length_error("vector::reserve");
    RLE* block = new RLE[n];
    std::copy(begin(), end(), block);
    Free();
    m_heap = block;
    m_capacity = static_cast<uint32_t>(n);
}

void RLERowRuns::assign(size_t n, const RLE& run) {
    clear();
    reserve(n);
    std::fill_n(data(), n, run);
    m_size = static_cast<uint32_t>(n);
}

RLERowRuns::iterator RLERowRuns::insert(const_iterator position, const RLE& run) {
    const size_t at = static_cast<size_t>(position - begin());
    // The run may lie in this vector: copied before anything moves.
    const RLE value = run;
    if (m_size == m_capacity) reserve(std::max<size_t>(2 * static_cast<size_t>(m_capacity), 2));
    RLE* p = data() + at;
    std::copy_backward(p, end(), end() + 1);
    *p = value;
    ++m_size;
    return p;
}

RLERowRuns::iterator RLERowRuns::erase(const_iterator first, const_iterator last) {
    RLE* from = begin() + (first - begin());
    const RLE* to = begin() + (last - begin());
    std::copy(to, static_cast<const RLE*>(end()), from);
    m_size -= static_cast<uint32_t>(to - from);
    return from;
}
