#include "placement/Occupancy.h"

#include <algorithm>
#include <cstring>

namespace kxac {

void Occupancy::Cover(long long columns, long long rows) {
    Clear();
    m_columns = std::max(0LL, std::min(columns, 1LL << 31));
    m_rows = std::max(0LL, std::min(rows, 1LL << 31));
    m_wordColumns = (m_columns + 63) / 64;
    const long long blockRows = (m_rows + kBlockRows - 1) / kBlockRows;
    m_flat = m_wordColumns * blockRows <= kMaxFlatBlocks;
    std::vector<uint32_t>(m_flat ? static_cast<size_t>(m_wordColumns * blockRows) : 0)
        .swap(m_directory);
    m_far.clear();
}

const uint64_t* Occupancy::Find(uint64_t key) const {
    if (m_flat) {
        const uint32_t i = m_directory[key];
        return i == 0 ? nullptr : At(i - 1);
    }
    const auto it = m_far.find(key);
    return it == m_far.end() ? nullptr : At(it->second);
}

uint64_t* Occupancy::Make(uint64_t key) {
    uint32_t* slot = nullptr;
    if (m_flat) {
        if (m_directory[key] != 0) return At(m_directory[key] - 1);
        slot = &m_directory[key];
    } else {
        const auto it = m_far.find(key);
        if (it != m_far.end()) return At(it->second);
    }
    const auto index = static_cast<uint32_t>(m_keys.size());
    if ((index >> kChunkShift) == m_chunks.size()) {
        m_chunks.emplace_back(new uint64_t[size_t{kBlockRows} << kChunkShift]);
    }
    m_keys.push_back(key);
    if (slot != nullptr) {
        *slot = index + 1;
    } else {
        m_far.emplace(key, index);
    }
    uint64_t* block = At(index);
    std::memset(block, 0, sizeof(uint64_t) * kBlockRows);
    return block;
}

void Occupancy::Set(long long top, long long bottom, long long first, long long last) {
    assert(Covers(first, top, last, bottom));
    const long long w0 = first >> 6, w1 = last >> 6;
    for (long long br = top >> kBlockShift; br <= bottom >> kBlockShift; ++br) {
        const long long r0 = std::max(top, br << kBlockShift) & (kBlockRows - 1);
        const long long r1 = std::min(bottom, ((br + 1) << kBlockShift) - 1) & (kBlockRows - 1);
        for (long long w = w0; w <= w1; ++w) {
            const uint64_t mask = Mask(w == w0 ? first & 63 : 0, w == w1 ? last & 63 : 63);
            uint64_t* block = Make(Key(w, br));
            for (long long r = r0; r <= r1; ++r) {
                if ((block[r] | mask) == block[r]) continue;
                m_changes.push_back({&block[r], block[r]});
                block[r] |= mask;
            }
        }
    }
}

bool Occupancy::Any(long long top, long long bottom, long long first, long long last) const {
    assert(Covers(first, top, last, bottom));
    if (m_keys.empty()) return false;
    const long long w0 = first >> 6, w1 = last >> 6;
    for (long long br = top >> kBlockShift; br <= bottom >> kBlockShift; ++br) {
        const long long r0 = std::max(top, br << kBlockShift) & (kBlockRows - 1);
        const long long r1 = std::min(bottom, ((br + 1) << kBlockShift) - 1) & (kBlockRows - 1);
        for (long long w = w0; w <= w1; ++w) {
            const uint64_t* block = Find(Key(w, br));
            if (block == nullptr) continue;
            const uint64_t mask = Mask(w == w0 ? first & 63 : 0, w == w1 ? last & 63 : 63);
            for (long long r = r0; r <= r1; ++r) {
                if ((block[r] & mask) != 0) return true;
            }
        }
    }
    return false;
}

void Occupancy::Rollback() {
    // Latest first: a word changed twice gets its first value back.
    for (auto it = m_changes.rbegin(); it != m_changes.rend(); ++it)
        *it->word = it->was;
    m_changes.clear();
}

void Occupancy::Clear() {
    m_changes.clear();
    if (m_flat) {
        for (uint64_t key : m_keys)
            m_directory[key] = 0;
    } else {
        m_far.clear();
    }
    m_keys.clear();
}

}  // namespace kxac
