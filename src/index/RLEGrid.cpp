// Grid levels: a dense band of rows from a start row, read through CRLEIndexQuery and edited
// through CRLEIndexCreate. The band only grows (by Row with create) until Clear().
#include <algorithm>

#include "index/RLEIndex.h"

using kxac::WrapAdd;

CRLEIndexQuery::~CRLEIndexQuery() = default;

bool CRLEIndexQuery::Add(int, int) { return false; }

int CRLEIndexQuery::EndRow() const {
    return WrapAdd(m_startRow, static_cast<long long>(RLERows::size()) - 1);
}

int CRLEIndexQuery::StartCol() const {
    int col = INT32_MAX;
    for (const RLERowRuns& runs : *this) {
        if (!runs.empty()) col = std::min(col, runs.front().start);
    }
    return col;
}

int CRLEIndexQuery::EndCol() const {
    int col = INT32_MIN;
    for (const RLERowRuns& runs : *this) {
        if (!runs.empty()) col = std::max(col, runs.back().end);
    }
    return col;
}

bool CRLEIndexQuery::Range(int& row0, int& col0, int& row1, int& col1) const {
    row0 = col0 = 99999;
    row1 = col1 = -99999;
    if (RLERows::empty()) return false;
    for (const RLERowRuns& runs : *this) {
        if (runs.empty()) continue;
        col0 = std::min(col0, runs.front().start);
        col1 = std::max(col1, runs.back().end);
    }
    row0 = m_startRow;
    row1 = WrapAdd(m_startRow, static_cast<long long>(RLERows::size()));
    return true;
}

int CRLEIndexQuery::Count() const {
    uint32_t total = 0;
    for (const RLERowRuns& runs : *this) {
        for (const RLE& run : runs)
            total += static_cast<uint32_t>(run.Length());
    }
    return static_cast<int>(total);
}

RLERows::iterator CRLEIndexQuery::Row(int row, bool create) {
    const long long offset = static_cast<long long>(row) - m_startRow;
    const long long count = static_cast<long long>(RLERows::size());
    if (offset >= 0 && offset < count) return RLERows::begin() + offset;
    if (!create) return EmptyRow();
    if (count == 0) {
        m_startRow = row;
        RLERows::emplace_back();
        return RLERows::begin();
    }
    if (offset >= count) {
        RLERows::resize(static_cast<size_t>(offset + 1));
        return RLERows::begin() + offset;
    }
    RLERows::insert(RLERows::begin(), static_cast<size_t>(-offset), RLERowRuns());
    m_startRow = row;
    return RLERows::begin();
}

bool CRLEIndexQuery::IsExist(int row, int col) const {
    if (RLERows::empty()) return false;
    // The row handle needs mutable positions; nothing is changed through it here.
    auto& rows = const_cast<CRLEIndexQuery&>(*this);
    const RLERows::iterator p = rows.Row(row, false);
    if (p == rows.EmptyRow()) return false;
    return CRLERow(p, rows.EmptyRow()).IsExist(col);
}

bool CRLEIndexQuery::IsExist(int level, int row, int col) const {
    return level == m_level && IsExist(row, col);
}

CRLEIndexCreate::~CRLEIndexCreate() = default;

bool CRLEIndexCreate::Add(int row, int col) {
    const RLERows::iterator p = Row(row, true);
    CRLERow(p, EmptyRow()).Add(col);
    return true;
}

bool CRLEIndexCreate::Add(int row, int col0, int col1) {
    const RLERows::iterator p = Row(row, true);
    CRLERow(p, EmptyRow()).Add(col0, col1);
    return true;
}

bool CRLEIndexCreate::Erase(int row, int col) {
    const RLERows::iterator p = Row(row, false);
    if (p == EmptyRow()) return false;
    return CRLERow(p, EmptyRow()).Erase(col);
}

bool CRLEIndexCreate::Erase(int row, int col0, int col1) {
    const RLERows::iterator p = Row(row, false);
    if (p == EmptyRow()) return false;
    return CRLERow(p, EmptyRow()).Erase(col0, col1);
}

void CRLEIndexCreate::Offset(int rowDelta, int colDelta) {
    m_startRow = WrapAdd(m_startRow, rowDelta);
    for (RLERowRuns& runs : *this) {
        for (RLE& run : runs) {
            run.start = WrapAdd(run.start, colDelta);
            run.end = WrapAdd(run.end, colDelta);
        }
    }
}

void CRLEIndexCreate::Clear() { RLERows().swap(*this); }
