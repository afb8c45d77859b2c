// Forward enumeration of the occupied cells of a grid level and of a multi-level index.
#include "index/RLEIndex.h"

CRLECursor::CRLECursor(CRLEIndexQuery* grid) { Attach(grid); }

void CRLECursor::Attach(CRLEIndexQuery* grid) {
    m_grid = grid;
    Reset();
}

void CRLECursor::Reset() {
    if (m_grid == nullptr) return;
    m_row = m_grid->RLERows::begin();
    SearchNextCol();
}

void CRLECursor::SearchNextCol() {
    const RLERows::iterator end = m_grid->EmptyRow();
    while (m_row != end && m_row->empty())
        ++m_row;
    if (m_row == end) return;
    m_run = m_row->begin();
    m_col = m_run->start;
}

bool CRLECursor::Next(int* row, int* col) {
    if (m_grid == nullptr || m_row == m_grid->EmptyRow()) return false;
    const long long index = m_row - m_grid->RLERows::begin();
    *row =
        static_cast<int>(static_cast<uint32_t>(m_grid->StartRow()) + static_cast<uint32_t>(index));
    *col = m_col;
    if (m_col < m_run->end) {
        ++m_col;
        return true;
    }
    ++m_run;
    if (m_run == m_row->end()) {
        ++m_row;
        SearchNextCol();
    } else {
        m_col = m_run->start;
    }
    return true;
}

CRLEIndexCursor::CRLEIndexCursor(CRLEIndex* index) : m_index(index) { Reset(); }

void CRLEIndexCursor::Reset() {
    if (m_index == nullptr) {
        m_cursor = CRLECursor();
        return;
    }
    m_level = m_index->CRLEIndex::Levels::begin();
    if (m_level == m_index->CRLEIndex::Levels::end()) {
        m_cursor = CRLECursor();
    } else {
        m_cursor.Attach(*m_level);
    }
}

bool CRLEIndexCursor::Next(int* level, int* row, int* col) {
    if (m_index == nullptr) return false;
    const CRLEIndex::Levels::iterator end = m_index->CRLEIndex::Levels::end();
    if (m_level == end) return false;
    while (!m_cursor.Next(row, col)) {
        if (++m_level == end) return false;
        m_cursor.Attach(*m_level);
    }
    *level = (*m_level)->Level();
    return true;
}
