// The avoid object: identity, state, offsets, extents and the footprint collision tests.
#include <algorithm>
#include <cassert>
#include <cstdint>

#include "placement/AvoidObject.h"
#include "placement/RowMerge.h"

namespace {

// Centres of boxes whose coordinates stay within this bound never wrap in 32 bits, and then
// every centre of every quarter of a box lies between the box's bounds.
constexpr int kNoWrapLimit = 1 << 30;

bool WrapSafe(const Box& b) {
    return std::min({b.left, b.top, b.right, b.bottom}) >= -kNoWrapLimit &&
           std::max({b.left, b.top, b.right, b.bottom}) < kNoWrapLimit;
}

// Whether any occupied cell of g lies in the rectangle between the bounds of b, whatever their
// order.
bool AnyCellBetween(const CRLEIndexQuery& g, const Box& b) {
    if (g.IsEmpty()) return false;
    const long long col0 = std::min(b.left, b.right);
    const long long col1 = std::max(b.left, b.right);
    const long long row0 = std::max<long long>(std::min(b.top, b.bottom), g.StartRow());
    const long long row1 = std::min<long long>(std::max(b.top, b.bottom), g.EndRow());
    for (long long row = row0; row <= row1; ++row) {
        const RLERowRuns* runs = g.RowRuns(static_cast<int>(row));
        if (runs == nullptr) continue;
        // Runs are ordered and disjoint: the first run ending at or after col0 decides.
        const auto it = std::lower_bound(runs->begin(), runs->end(), col0,
                                         [](const RLE& r, long long c) { return r.end < c; });
        if (it != runs->end() && it->start <= col1) return true;
    }
    return false;
}

// The centre-first quartering search over an inverted (or partly inverted) box. A quarter that
// equals the box it was cut from would search that box again without end; it, and a quarter
// equal to an earlier one, count as free. Quarters shrink in at least one dimension, so the
// recursion depth stays within about 70 levels.
bool QuarterSearch(const CRLEIndexQuery& g, const Box& b) {
    const Location c = b.Center();
    if (g.IsExist(c.y, c.x)) return true;
    if (b.Width() == 1 && b.Height() == 1) return false;
    // Every centre probed below lies between the bounds of b.
    if (!AnyCellBetween(g, b)) return false;
    const Box quarters[4] = {Box(b.left, b.top, c.x, c.y), Box(c.x, b.top, b.right, c.y),
                             Box(b.left, c.y, c.x, b.bottom), Box(c.x, c.y, b.right, b.bottom)};
    for (int i = 0; i < 4; ++i) {
        const Box& q = quarters[i];
        if (q == b || std::find(quarters, quarters + i, q) != quarters + i) continue;
        if (QuarterSearch(g, q)) return true;
    }
    return false;
}

// Rows whose room a reset object keeps for its next footprint.
constexpr size_t kMaxKeptRows = 256;

// Offsets and run extents within this bound keep every shifted coordinate of a run test inside
// 32 bits, so canvas and grid cells correspond without wrapping.
constexpr int kTameLimit = 1 << 29;

bool Tame(int v) { return v >= -kTameLimit && v <= kTameLimit; }
bool Tame(const Location& l) { return Tame(l.x) && Tame(l.y); }
bool Tame(const Box& b) { return Tame(b.left) && Tame(b.top) && Tame(b.right) && Tame(b.bottom); }

}  // namespace

CAvoidObject::CAvoidObject() = default;

CAvoidObject::~CAvoidObject() = default;

void CAvoidObject::Reset() {
    Changed();
    ReleaseRows();
    m_boxes.clear();
    m_offsets.clear();
    m_offsets.emplace_back(0, 0);
    m_position = 0;
    m_declaredExtent = Box();
    m_runExtent = Box();
    m_id = 0;
    m_state = kNotAdded;
    m_regularity = Regularity::kUnknown;
}

const std::string& CAvoidObject::StringID() const {
    static const std::string kNone;
    return m_stringId ? *m_stringId : kNone;
}

void CAvoidObject::StringID(const std::string& id) {
    if (id.empty()) {
        m_stringId.reset();
    } else if (m_stringId) {
        *m_stringId = id;
    } else {
        m_stringId = std::make_unique<std::string>(id);
    }
}

std::vector<Location>::iterator CAvoidObject::OffsetIterator() {
    return m_offsets.begin() + static_cast<std::ptrdiff_t>(std::min(m_position, m_offsets.size()));
}

void CAvoidObject::OffsetIterator(std::vector<Location>::iterator position) {
    assert(position >= m_offsets.begin() && position <= m_offsets.end());
    Changed();
    m_position = static_cast<size_t>(position - m_offsets.begin());
}

void CAvoidObject::ClearOffset() {
    Changed();
    m_offsets.clear();
    m_offsets.emplace_back(0, 0);
}

void CAvoidObject::AddBox(const Box& box) {
    Changed();
    m_boxes.push_back(box);
}

void CAvoidObject::AddBox(const Envelope& envelope) {
    const CDT* dt = CRLERaster::DT();
    if (dt == nullptr) return;
    AddBox(Box(MapToCellX(*dt, envelope.x1), MapToCellY(*dt, envelope.y1),
               MapToCellX(*dt, envelope.x2), MapToCellY(*dt, envelope.y2)));
}

void CAvoidObject::ReleaseRows() {
    RLERows& rows = *this;
    // A pooled object keeps room for the rows of a label, not for those of its largest footprint.
    if (rows.capacity() > kMaxKeptRows) {
        RLERows().swap(rows);
    } else {
        rows.clear();
    }
    m_rectangleTop = 1;
    m_rectangleBottom = 0;
}

void CAvoidObject::Expand() const {
    if (!HoldsRectangle()) return;
    // The grid is logically part of the footprint, which this does not change; a const object
    // never holds a rectangle, as only drawing makes one.
    auto& self = const_cast<CAvoidObject&>(*this);
    self.RLERows::reserve(static_cast<size_t>(m_rectangleBottom - m_rectangleTop) + 1);
    for (long long row = m_rectangleTop; row <= m_rectangleBottom; ++row) {
        self.CRLEIndexCreate::Add(static_cast<int>(row), m_rectangleRun.start, m_rectangleRun.end);
    }
    self.m_rectangleTop = 1;
    self.m_rectangleBottom = 0;
}

std::pair<const RLE*, const RLE*> CAvoidObject::Runs(int row) const {
    if (HoldsRectangle()) {
        if (row < m_rectangleTop || row > m_rectangleBottom) return {nullptr, nullptr};
        return {&m_rectangleRun, &m_rectangleRun + 1};
    }
    const RLERowRuns* runs = RowRuns(row);
    if (runs == nullptr) return {nullptr, nullptr};
    return {runs->begin(), runs->end()};
}

void CAvoidObject::AddRLE(int row, int first, int last) {
    Expand();
    Changed();
    Add(row, first, last);
    m_regularity = Regularity::kUnknown;
}

void CAvoidObject::RecordMaxRLE() {
    Changed();
    Box held;
    m_runExtent = HeldRectangle(held) ? held : Box(StartCol(), StartRow(), EndCol(), EndRow());
}

CDT* CAvoidObject::DT() { return CRLERaster::DT(); }

void CAvoidObject::DT(CDT* dt) { CRLERaster::DT(dt); }

void CAvoidObject::OnResizeConvas() { CRLERaster::OnResizeConvas(); }

bool CAvoidObject::IsIntersect(CAvoidObject* o) const {
    if (o == nullptr || !IsValid() || !o->IsValid()) return false;
    if (!m_boxes.empty()) {
        const Location here = Offset();
        const Location there = o->Offset();
        for (const Box& a : m_boxes) {
            const Box shifted = a.Offset(here);
            for (const Box& b : o->m_boxes) {
                if (shifted.IsIntersect(b.Offset(there))) return true;
            }
        }
        for (const Box& a : m_boxes) {
            if (o->IsIntersectRLE(a.Offset(here))) return true;
        }
    }
    return RunsMeet(o);
}

bool CAvoidObject::RowsRegular() const {
    if (m_regularity == Regularity::kUnknown) {
        m_regularity = Regularity::kRegular;
        for (int row = StartRow(); !IsEmpty() && row <= EndRow(); ++row) {
            const RLERowRuns& runs = *RowRuns(row);
            const auto descent = std::adjacent_find(
                runs.begin(), runs.end(), [](const RLE& a, const RLE& b) { return b.end < a.end; });
            if (descent != runs.end()) {
                m_regularity = Regularity::kIrregular;
                break;
            }
        }
    }
    return m_regularity == Regularity::kRegular;
}

bool CAvoidObject::RunsMeet(CAvoidObject* o) const {
    const Location here = Offset();
    const Location there = o->Offset();
    // Far coordinates wrap and irregular rows answer by bisection: the cell scan covers both.
    if (!Tame(here) || !Tame(there) || !Tame(m_runExtent) || !Tame(o->m_runExtent) ||
        !RowsRegular() || !o->RowsRegular()) {
        o->Expand();
        return IsIntersectRLE(o, o->RLEMaxExtent(), there);
    }
    const Box r = RLEMaxExtent();
    const Box e = o->RLEMaxExtent();
    if (r.IsDisjoin(e)) return false;
    const Box area = r.Intersect(e);
    for (int y = area.top; y <= area.bottom; ++y) {
        const auto a = Runs(y - here.y);
        const auto b = o->Runs(y - there.y);
        if (a.first == a.second || b.first == b.second) continue;
        if (kxac::RowsMeet({a.first, a.second}, here.x, {b.first, b.second}, there.x, area.left,
                           area.right))
            return true;
    }
    return false;
}

bool CAvoidObject::IsIntersect(Box& b) const {
    const Box extent = MaxExtent();
    if (!extent.IsValid() || extent.IsDisjoin(b)) return false;
    const Box local = b.RevOffset(Offset());
    for (const Box& box : m_boxes) {
        if (box.IsIntersect(local)) return true;
    }
    return IsIntersectRLE(b);
}

bool CAvoidObject::IsIntersectRLE(const Box& b) const {
    if (!HasRuns()) return false;
    const Box local = b.RevOffset(Offset());
    if (m_runExtent.IsDisjoin(local)) return false;
    return IsExistRLE(m_runExtent.Intersect(local));
}

bool CAvoidObject::IsIntersectRLE(CRLEIndexQuery* g, const Box& e, const Location& go) const {
    const Box r = RLEMaxExtent();
    if (r.IsDisjoin(e)) return false;
    return IsExistRLE(g, r.Intersect(e), go);
}

bool CAvoidObject::IsExistRLE(CRLEIndexQuery* g, const Box& area, const Location& go) const {
    return IsExistRLE2(g, area, go);
}

bool CAvoidObject::IsExistRLE2(CRLEIndexQuery* g, const Box& area, const Location& go) const {
    if (g == nullptr) return false;
    Expand();
    const Location here = Offset();
    // 64-bit counters: an area reaching the largest column or row must still end.
    for (long long x = area.left; x <= area.right; ++x) {
        for (long long y = area.top; y <= area.bottom; ++y) {
            const Location p(static_cast<int>(x), static_cast<int>(y));
            const Location a = p.RevOffset(here);
            if (!CRLEIndexQuery::IsExist(a.y, a.x)) continue;
            const Location q = p.RevOffset(go);
            if (g->IsExist(q.y, q.x)) return true;
        }
    }
    return false;
}

bool CAvoidObject::IsExistRLE(const Box& b) const {
    Expand();
    if (b.IsValid() || !WrapSafe(b)) return AnyCellBetween(*this, b);
    return QuarterSearch(*this, b);
}
