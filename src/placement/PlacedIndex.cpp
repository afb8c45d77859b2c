#include "placement/PlacedIndex.h"

#include <algorithm>
#include <climits>

#include "placement/AvoidContainer.h"

namespace {

// Coordinates and offsets within this bound add up without wrapping.
constexpr int kTameLimit = 1 << 29;
// Buckets of 64 x 64 cells.
constexpr int kBucketShift = 5;
// An object spanning more buckets than this is kept apart and tested by every query.
constexpr long long kMaxBuckets = 64;

bool Tame(int v) { return v >= -kTameLimit && v <= kTameLimit; }
bool Tame(const Box& b) { return Tame(b.left) && Tame(b.top) && Tame(b.right) && Tame(b.bottom); }

Box Normalised(const Box& b) {
    return {std::min(b.left, b.right), std::min(b.top, b.bottom), std::max(b.left, b.right),
            std::max(b.top, b.bottom)};
}

// The bounds of obj's footprint at its current offset; false when some coordinate is too large
// for them to be exact, or the run extent is not a valid box.
bool BoundsOf(CAvoidObject& obj, Box& out) {
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

// Bucket number of a coordinate: floor(v / 64), from a non-negative shifted value.
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

const Box kEverywhere(INT_MIN, INT_MIN, INT_MAX, INT_MAX);

}  // namespace

CPlacedIndex::~CPlacedIndex() { Clear(); }

void CPlacedIndex::Clear() {
    for (CAvoidObject* obj : m_watched) {
        if (obj->m_watcher == this) obj->m_watcher = nullptr;
    }
    m_watched.clear();
    m_entries.clear();
    m_buckets.clear();
    m_large.clear();
    m_stale = false;
}

void CPlacedIndex::Insert(CAvoidObject* obj) {
    obj->m_watcher = this;
    m_watched.push_back(obj);
    if (!obj->IsValid()) return;
    Box bounds;
    if (!BoundsOf(*obj, bounds)) bounds = kEverywhere;
    const auto number = static_cast<uint32_t>(m_entries.size());
    m_entries.push_back({obj, bounds, 0});
    if (bounds == kEverywhere || BucketCount(bounds) > kMaxBuckets) {
        m_large.push_back(number);
        return;
    }
    for (long long col = BucketOf(bounds.left); col <= BucketOf(bounds.right); ++col) {
        for (long long row = BucketOf(bounds.top); row <= BucketOf(bounds.bottom); ++row)
            m_buckets[BucketKey(col, row)].push_back(number);
    }
}

bool CPlacedIndex::Meets(Entry& e, const Box& bounds, const Box& extent, CAvoidObject* obj) {
    if (e.stamp == m_stamp) return false;
    e.stamp = m_stamp;
    return e.bounds.IsIntersect(bounds) && extent.IsIntersect(e.obj->MaxExtent()) &&
           e.obj->IsIntersect(obj);
}

bool CPlacedIndex::Collides(CAvoidObject* obj) {
    if (!obj->IsValid() || m_entries.empty()) return false;
    ++m_stamp;
    const Box extent = obj->MaxExtent();
    Box bounds;
    const bool bounded = BoundsOf(*obj, bounds);
    if (!bounded || BucketCount(bounds) > kMaxBuckets) {
        if (!bounded) bounds = kEverywhere;
        for (Entry& e : m_entries) {
            if (Meets(e, bounds, extent, obj)) return true;
        }
        return false;
    }
    for (uint32_t number : m_large) {
        if (Meets(m_entries[number], bounds, extent, obj)) return true;
    }
    for (long long col = BucketOf(bounds.left); col <= BucketOf(bounds.right); ++col) {
        for (long long row = BucketOf(bounds.top); row <= BucketOf(bounds.bottom); ++row) {
            const auto it = m_buckets.find(BucketKey(col, row));
            if (it == m_buckets.end()) continue;
            for (uint32_t number : it->second) {
                if (Meets(m_entries[number], bounds, extent, obj)) return true;
            }
        }
    }
    return false;
}
