// The multi-level index: owned grid levels in append order, their level range and the caller's
// metadata.
#include "index/RLEIndex.h"

#include <algorithm>
#include <cstring>

CRLEIndex::CRLEIndex() = default;

CRLEIndex::~CRLEIndex() { Clear(); }

void CRLEIndex::Append(CRLEIndexQuery* level) {
    if (level == nullptr) return;
    Levels::push_back(level);
    m_minLevel = std::min(m_minLevel, level->Level());
    m_maxLevel = std::max(m_maxLevel, level->Level());
}

CRLEIndexQuery* CRLEIndex::LevelIndex(int level) const {
    if (level < m_minLevel || level > m_maxLevel) return nullptr;
    const auto it = std::find_if(Levels::begin(), Levels::end(), CFindLeveIndex(level));
    return it == Levels::end() ? nullptr : *it;
}

bool CRLEIndex::IsExist(int level, int row, int col) const {
    if (level < m_minLevel || level > m_maxLevel) return false;
    return std::any_of(Levels::begin(), Levels::end(),
                       [&](const CRLEIndexQuery* q) { return q->IsExist(level, row, col); });
}

int CRLEIndex::Count() const {
    uint32_t total = 0;
    for (const CRLEIndexQuery* q : *this)
        total += static_cast<uint32_t>(q->Count());
    return static_cast<int>(total);
}

void CRLEIndex::Clear() {
    for (CRLEIndexQuery* q : *this)
        delete q;
    Levels::clear();
    m_minLevel = 999;
    m_maxLevel = -999;
}

void CRLEIndex::Metadata(const unsigned char* data, int length) {
    std::vector<unsigned char> copy;
    if (data != nullptr && length > 0) copy.assign(data, data + length);
    m_metadata.swap(copy);
}

int CRLEIndex::MetaData(unsigned char* out, int capacity) const {
    const int length = static_cast<int>(m_metadata.size());
    if (out != nullptr && capacity >= length && length > 0) {
        std::memcpy(out, m_metadata.data(), m_metadata.size());
    }
    return length;
}
