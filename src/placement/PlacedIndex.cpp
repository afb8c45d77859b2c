#include "placement/PlacedIndex.h"

#include <algorithm>
#include <climits>

#include "placement/AvoidObject.h"
#include "placement/RowMerge.h"

namespace {

// Coordinates and offsets within this bound add up without wrapping. The footprint test merges
// runs within the same bound, so an object with bounds meets its conditions on coordinates.
constexpr int kTameLimit = 1 << 29;
// Buckets of 32 x 32 cells.
constexpr int kBucketShift = 5;
// An object spanning more buckets than this is kept apart and tested by every query.
constexpr long long kMaxBuckets = 64;
// The flat array holds at most this many buckets (a canvas of 16384 x 16384 cells); the rest of
// a larger canvas goes to the hash map.
constexpr long long kMaxGridBuckets = 1LL << 18;

bool Tame(int v) { return v >= -kTameLimit && v <= kTameLimit; }
bool Tame(const Box& b) { return Tame(b.left) && Tame(b.top) && Tame(b.right) && Tame(b.bottom); }

Box Normalised(const Box& b) {
    return {std::min(b.left, b.right), std::min(b.top, b.bottom), std::max(b.left, b.right),
            std::max(b.top, b.bottom)};
}

// The bounds of obj's footprint at its current offset; false when some coordinate is too large
// for them to be exact, or the run extent is not a valid box.
bool BoundsOf(const CAvoidObject& obj, Box& out) {
    const Location offset = obj.Offset();
    if (!Tame(offset.x) || !Tame(offset.y)) return false;
    const Box runs = obj.RLEMaxExtent();
    const Box ownRuns = runs.RevOffset(offset);
    if (!ownRuns.IsValid() || !Tame(ownRuns)) return false;
    out = runs;
    for (const Box& b : obj.Boxes()) {
        if (!Tame(b)) return false;
        out.Union(Normalised(b.Offset(offset)));
    }
    return true;
}

// Bucket number of a coordinate: floor(v / 32), from a non-negative shifted value.
long long BucketOf(int v) {
    return ((static_cast<long long>(v) + (1LL << 31)) >> kBucketShift) -
           (1LL << (31 - kBucketShift));
}

uint64_t BucketKey(long long col, long long row) {
    return (static_cast<uint64_t>(static_cast<uint32_t>(col)) << 32) | static_cast<uint32_t>(row);
}

long long BucketCount(const Box& b) {
    return (BucketOf(b.right) - BucketOf(b.left) + 1) * (BucketOf(b.bottom) - BucketOf(b.top) + 1);
}

// Buckets needed to cover n cells from cell 0, none for a canvas without cells.
long long BucketsFor(long long cells) {
    return cells > 0
               ? (std::min<long long>(cells, INT_MAX) + (1 << kBucketShift) - 1) >> kBucketShift
               : 0;
}

const Box kEverywhere(INT_MIN, INT_MIN, INT_MAX, INT_MAX);

}  // namespace

CPlacedIndex::~CPlacedIndex() { Clear(); }

void CPlacedIndex::Clear() {
    // The objects filed so far keep the old signal: what they raise from now on reaches no one.
    if (m_filed) {
        m_signal = std::make_shared<kxac::ChangeSignal>();
    } else {
        m_signal->raised = false;
    }
    m_filed = false;
    m_last = LastInsert();
    m_entries.clear();
    m_runs.clear();
    m_large.clear();
    m_drawn.clear();
    m_occupancy.Clear();
    // Buckets keep their capacity for the next pass.
    for (uint32_t used : m_used)
        m_grid[used].clear();
    m_used.clear();
    m_far.clear();
    ApplyCover();
}

void CPlacedIndex::Cover(long long width, long long height) {
    long long columns = BucketsFor(width);
    long long rows = BucketsFor(height);
    if (columns * rows > kMaxGridBuckets) {
        columns = std::min(columns, kMaxGridBuckets);
        rows = std::max(1LL, std::min(rows, kMaxGridBuckets / std::max(1LL, columns)));
    }
    m_wantColumns = columns;
    m_wantRows = rows;
    m_wantCellColumns = std::max(0LL, width);
    m_wantCellRows = std::max(0LL, height);
    if (!m_filed) ApplyCover();
}

void CPlacedIndex::ApplyCover() {
    if (m_wantCellColumns != m_occupancy.Columns() || m_wantCellRows != m_occupancy.Rows()) {
        m_occupancy.Cover(m_wantCellColumns, m_wantCellRows);
    }
    if (m_wantColumns == m_columns && m_wantRows == m_rows) return;
    m_columns = m_wantColumns;
    m_rows = m_wantRows;
    std::vector<Bucket>(static_cast<size_t>(m_columns * m_rows)).swap(m_grid);
    m_used.clear();
}

const CPlacedIndex::Bucket* CPlacedIndex::Find(long long col, long long row) const {
    if (col >= 0 && col < m_columns && row >= 0 && row < m_rows) {
        return &m_grid[static_cast<size_t>(row * m_columns + col)];
    }
    const auto it = m_far.find(BucketKey(col, row));
    return it == m_far.end() ? nullptr : &it->second;
}

CPlacedIndex::Bucket& CPlacedIndex::Make(long long col, long long row) {
    if (col >= 0 && col < m_columns && row >= 0 && row < m_rows) {
        const auto number = static_cast<uint32_t>(row * m_columns + col);
        if (m_grid[number].empty()) m_used.push_back(number);
        return m_grid[number];
    }
    return m_far[BucketKey(col, row)];
}

bool CPlacedIndex::CopyRows(const CAvoidObject& obj, Entry& e) {
    const CRLEIndexQuery& grid = obj.Grid();
    const RLERowRuns* rows = obj.RowData();
    const auto count = static_cast<uint32_t>(grid.RowCount());
    size_t runs = 0;
    for (uint32_t i = 0; i < count; ++i)
        runs += rows[i].size();
    // Row ends are kept as ints.
    if (runs > static_cast<size_t>(INT_MAX)) return false;
    e.startRow = grid.StartRow();
    e.rowCount = count;
    e.firstRun = m_runs.size();
    runs = 0;
    for (uint32_t i = 0; i < count; ++i) {
        runs += rows[i].size();
        m_runs.emplace_back(static_cast<int>(runs), 0);
    }
    for (uint32_t i = 0; i < count; ++i)
        m_runs.insert(m_runs.end(), rows[i].begin(), rows[i].end());
    e.quick = true;
    return true;
}

CPlacedIndex::Bucket& CPlacedIndex::At(long long col, long long row) {
    if (col >= 0 && col < m_columns && row >= 0 && row < m_rows) {
        return m_grid[static_cast<size_t>(row * m_columns + col)];
    }
    return m_far.find(BucketKey(col, row))->second;
}

void CPlacedIndex::Insert(CAvoidObject* obj) {
    obj->Watch(m_signal);
    m_filed = true;
    m_last = LastInsert{obj, false, false, m_runs.size(), m_used.size()};
    m_occupancy.Checkpoint();
    if (!obj->IsValid()) return;
    m_last.filed = true;
    Box bounds;
    if (!BoundsOf(*obj, bounds)) bounds = kEverywhere;
    Entry entry{bounds, obj->MaxExtent(), obj, obj->Offset(), 0, 0, 0, false, false};
    const bool plain = bounds != kEverywhere && obj->Boxes().empty() && obj->RowsRegular();
    const auto number = static_cast<uint32_t>(m_entries.size());
    if (plain && m_occupancy.Covers(bounds.left, bounds.top, bounds.right, bounds.bottom)) {
        entry.drawn = true;
        m_entries.push_back(entry);
        m_drawn.push_back(number);
        Draw(*obj);
        return;
    }
    if (plain) CopyRows(*obj, entry);
    m_entries.push_back(entry);
    if (bounds == kEverywhere || BucketCount(bounds) > kMaxBuckets) {
        m_large.push_back(number);
        m_last.large = true;
        return;
    }
    for (long long row = BucketOf(bounds.top); row <= BucketOf(bounds.bottom); ++row) {
        for (long long col = BucketOf(bounds.left); col <= BucketOf(bounds.right); ++col)
            Make(col, row).push_back({bounds, number});
    }
}

bool CPlacedIndex::RemoveLast(CAvoidObject* obj) {
    if (obj == nullptr || obj != m_last.obj || Stale()) return false;
    const LastInsert last = m_last;
    m_last = LastInsert();
    obj->Unwatch(*m_signal);
    if (!last.filed) return true;
    const Entry e = m_entries.back();
    m_entries.pop_back();
    if (e.drawn) {
        m_drawn.pop_back();
        m_occupancy.Rollback();
        return true;
    }
    m_runs.resize(last.runs);
    if (last.large) {
        m_large.pop_back();
        return true;
    }
    // The entry's slot is the last of each of its buckets.
    for (long long row = BucketOf(e.bounds.top); row <= BucketOf(e.bounds.bottom); ++row) {
        for (long long col = BucketOf(e.bounds.left); col <= BucketOf(e.bounds.right); ++col) {
            Bucket& bucket = At(col, row);
            bucket.pop_back();
            const bool onGrid = col >= 0 && col < m_columns && row >= 0 && row < m_rows;
            if (!onGrid && bucket.empty()) m_far.erase(BucketKey(col, row));
        }
    }
    // The buckets of the array that this entry made used are the last ones listed.
    m_used.resize(last.used);
    return true;
}

bool CPlacedIndex::Collide(const Entry& e, const Query& q) const {
    if (!e.quick || !q.quick) return e.obj->IsIntersect(q.obj);
    // Both objects are valid, have no boxes on the receiver's side, coordinates within bounds
    // and regular rows: IsIntersect is the merge of runs over the rows the run extents share.
    // Without boxes the entry's bounds are its run extent at its offset.
    if (e.bounds.IsDisjoin(q.runs)) return false;
    const Box area = e.bounds.Intersect(q.runs);
    const RLE* ends = m_runs.data() + e.firstRun;
    const RLE* runs = ends + e.rowCount;
    for (int y = area.top; y <= area.bottom; ++y) {
        const long long row = static_cast<long long>(y) - e.offset.y - e.startRow;
        if (row < 0 || row >= e.rowCount) continue;
        const auto other = q.obj->Runs(y - q.offset.y);
        if (other.first == other.second) continue;
        const kxac::RowSpan own(runs + (row == 0 ? 0 : ends[row - 1].start),
                                runs + ends[row].start);
        if (kxac::RowsMeet(own, e.offset.x, {other.first, other.second}, q.offset.x, area.left,
                           area.right)) {
            return true;
        }
    }
    return false;
}

namespace {

// The occupied cells of obj's rows within its run extent r at its offset, clipped to the
// columns [left, right] and rows [top, bottom]: calls visit(row, first, last) for each interval
// until it returns true. A footprint held as one rectangle goes to visitRows(top, bottom, first,
// last) at once, with the same cells in every row.
template <typename Visit, typename VisitRows>
bool ForEachCell(const CAvoidObject& obj, long long left, long long top, long long right,
                 long long bottom, Visit visit, VisitRows visitRows) {
    const Box r = obj.RLEMaxExtent();
    const Location offset = obj.Offset();
    left = std::max<long long>(left, r.left);
    right = std::min<long long>(right, r.right);
    top = std::max<long long>(top, r.top);
    bottom = std::min<long long>(bottom, r.bottom);
    if (left > right) return false;
    Box cells;
    if (obj.HeldRectangle(cells)) {
        left = std::max<long long>(left, static_cast<long long>(cells.left) + offset.x);
        right = std::min<long long>(right, static_cast<long long>(cells.right) + offset.x);
        top = std::max<long long>(top, static_cast<long long>(cells.top) + offset.y);
        bottom = std::min<long long>(bottom, static_cast<long long>(cells.bottom) + offset.y);
        return left <= right && top <= bottom && visitRows(top, bottom, left, right);
    }
    for (long long y = top; y <= bottom; ++y) {
        const auto runs = obj.Runs(static_cast<int>(y - offset.y));
        if (runs.first == runs.second) continue;
        kxac::RowCells cells({runs.first, runs.second}, offset.x, left);
        long long lo = 0, hi = 0;
        while (cells.Next(lo, hi) && lo <= right) {
            lo = std::max(lo, left);
            hi = std::min(hi, right);
            if (lo <= hi && visit(y, lo, hi)) return true;
        }
    }
    return false;
}

}  // namespace

void CPlacedIndex::Draw(const CAvoidObject& obj) {
    ForEachCell(
        obj, LLONG_MIN, LLONG_MIN, LLONG_MAX, LLONG_MAX,
        [this](long long y, long long lo, long long hi) {
            m_occupancy.Set(y, lo, hi);
            return false;
        },
        [this](long long top, long long bottom, long long lo, long long hi) {
            m_occupancy.Set(top, bottom, lo, hi);
            return false;
        });
}

bool CPlacedIndex::HitsDrawn(const CAvoidObject& obj) const {
    return ForEachCell(
        obj, 0, 0, m_occupancy.Columns() - 1, m_occupancy.Rows() - 1,
        [this](long long y, long long lo, long long hi) { return m_occupancy.Any(y, lo, hi); },
        [this](long long top, long long bottom, long long lo, long long hi) {
            return m_occupancy.Any(top, bottom, lo, hi);
        });
}

bool CPlacedIndex::Collides(CAvoidObject* obj) {
    if (!obj->IsValid() || m_entries.empty()) return false;
    const Box extent = obj->MaxExtent();
    Box bounds;
    const bool bounded = BoundsOf(*obj, bounds);
    const Query query{obj, obj->RLEMaxExtent(), obj->Offset(), bounded && obj->RowsRegular()};
    // Drawn entries are met through the bitmap by plain queries, one by one by the others.
    if (query.quick && !m_drawn.empty() && HitsDrawn(*obj)) return true;
    const auto meets = [&](const Entry& e) {
        return !(e.drawn && query.quick) && e.bounds.IsIntersect(bounds) &&
               extent.IsIntersect(e.extent) && Collide(e, query);
    };
    if (!bounded || BucketCount(bounds) > kMaxBuckets) {
        if (!bounded) bounds = kEverywhere;
        return std::any_of(m_entries.begin(), m_entries.end(), meets);
    }
    for (uint32_t number : m_large) {
        if (meets(m_entries[number])) return true;
    }
    if (!query.quick) {
        for (uint32_t number : m_drawn) {
            if (meets(m_entries[number])) return true;
        }
    }
    if (m_drawn.size() == m_entries.size()) return false;
    const long long col0 = BucketOf(bounds.left);
    const long long row0 = BucketOf(bounds.top);
    const long long col1 = BucketOf(bounds.right);
    const long long row1 = BucketOf(bounds.bottom);
    for (long long row = row0; row <= row1; ++row) {
        for (long long col = col0; col <= col1; ++col) {
            const Bucket* bucket = Find(col, row);
            if (bucket == nullptr) continue;
            for (const Slot& slot : *bucket) {
                if (!slot.bounds.IsIntersect(bounds)) continue;
                // An entry met in several buckets of this query is tested in the first of them
                // only: the one at the top left corner of the two bounds' shared buckets.
                if (col != std::max(col0, BucketOf(slot.bounds.left)) ||
                    row != std::max(row0, BucketOf(slot.bounds.top))) {
                    continue;
                }
                const Entry& e = m_entries[slot.entry];
                if (extent.IsIntersect(e.extent) && Collide(e, query)) return true;
            }
        }
    }
    return false;
}
