// The container of a placement pass and its greedy priority placement.
#include "placement/AvoidContainer.h"

#include <algorithm>
#include <climits>
#include <iterator>
#include <vector>

CAvoidContainer::CAvoidContainer() = default;

CAvoidContainer::~CAvoidContainer() { CAvoidContainer::Destroy(); }

void CAvoidContainer::Reset() {
    for (CAvoidObject* obj : m_placed) {
        --obj->m_placedNodes;
        m_pool.push(obj);
    }
    for (CAvoidObject* obj : m_unplaced) {
        --obj->m_unplacedNodes;
        m_pool.push(obj);
    }
    m_spareNodes.splice(m_spareNodes.end(), m_placed);
    m_spareNodes.splice(m_spareNodes.end(), m_unplaced);
}

void CAvoidContainer::AppendPlaced(CAvoidObject* obj) {
    ++obj->m_placedNodes;
    Append(m_placed, obj);
}

void CAvoidContainer::AppendUnplaced(CAvoidObject* obj) {
    ++obj->m_unplacedNodes;
    Append(m_unplaced, obj);
}

void CAvoidContainer::Append(std::list<CAvoidObject*>& list, CAvoidObject* obj) {
    if (m_spareNodes.empty()) {
        list.push_back(obj);
        return;
    }
    m_spareNodes.front() = obj;
    list.splice(list.end(), m_spareNodes, m_spareNodes.begin());
}

CAvoidObject* CAvoidContainer::NewObject() {
    CAvoidObject* obj;
    if (m_pool.empty()) {
        obj = new CAvoidObject();
    } else {
        obj = m_pool.front();
        m_pool.pop();
    }
    obj->Reset();
    obj->DT(DT());
    return obj;
}

void CAvoidContainer::Recycle(CAvoidObject* obj) {
    if (obj == nullptr) return;
    std::list<CAvoidObject*>* list;
    uint32_t* nodes;
    switch (obj->PlacedState()) {
        case CAvoidObject::kNotAdded:
            m_pool.push(obj);
            return;
        case CAvoidObject::kPlaced:
            list = &m_placed;
            nodes = &obj->m_placedNodes;
            break;
        case CAvoidObject::kNotPlaced:
            list = &m_unplaced;
            nodes = &obj->m_unplacedNodes;
            break;
        default:
            return;
    }
    if (*nodes == 0) return;
    std::list<CAvoidObject*>::iterator it;
    size_t position;
    if (*nodes == 1) {
        // The only node, most often the last one; it may stand in another container.
        const auto last = std::find(list->rbegin(), list->rend(), obj);
        if (last == list->rend()) return;
        it = std::prev(last.base());
        position = list->size() - 1 - static_cast<size_t>(std::distance(list->rbegin(), last));
    } else {
        it = std::find(list->begin(), list->end(), obj);
        if (it == list->end()) return;
        position = static_cast<size_t>(std::distance(list->begin(), it));
    }
    --*nodes;
    m_spareNodes.splice(m_spareNodes.end(), *list, it);
    m_pool.push(obj);
    if (list == &m_placed) Released(obj, position);
}

void CAvoidContainer::Destroy() {
    Reset();
    // An object added or recycled twice stands in the pool twice: it is deleted once.
    std::vector<CAvoidObject*> pooled;
    pooled.reserve(m_pool.size());
    while (!m_pool.empty()) {
        pooled.push_back(m_pool.front());
        m_pool.pop();
    }
    std::sort(pooled.begin(), pooled.end());
    pooled.erase(std::unique(pooled.begin(), pooled.end()), pooled.end());
    for (CAvoidObject* obj : pooled)
        delete obj;
    m_spareNodes.clear();
}

CPriorityAvoidContainer::~CPriorityAvoidContainer() = default;

bool CPriorityAvoidContainer::Add(CAvoidObject* obj, bool force) {
    if (obj == nullptr) return true;
    m_index.Cover(DT()->width, DT()->height);
    SyncIndex();
    if (force) {
        Place(obj);
        return true;
    }
    obj->PlacedState(CAvoidObject::kNotPlaced);
    std::vector<Location>& offsets = obj->OffsetCollection();
    // Placing needs only to know whether some placed object collides: the index finds the few
    // that could, in any order.
    for (auto it = offsets.begin(); it != offsets.end(); ++it) {
        obj->OffsetIterator(it);
        // obj itself may be filed already (added twice): moving it makes the index stale.
        SyncIndex();
        if (!m_index.Collides(obj)) {
            Place(obj);
            return true;
        }
    }
    obj->OffsetIterator(offsets.begin());
    AppendUnplaced(obj);
    m_rejections.push_back({obj, PlacedObjects().size()});
    return true;
}

void CPriorityAvoidContainer::Reset() {
    CAvoidContainer::Reset();
    m_index.Clear();
    m_rejections.clear();
    ++m_placedChanges;
}

void CPriorityAvoidContainer::Released(CAvoidObject* obj, size_t position) {
    // Still placed through another node: its entry must stay, and only a refiling tells which.
    if (StillPlaced(obj) || !m_index.RemoveLast(obj)) m_index.MarkStale();
    // Those rejected after it no longer count it among the objects placed before them. The
    // counts never decrease along the rejections, so those are the last ones: recycling the
    // object placed last touches only the rejections since.
    for (auto r = m_rejections.rbegin(); r != m_rejections.rend() && r->placedBefore > position;
         ++r) {
        --r->placedBefore;
    }
    ++m_placedChanges;
}

void CPriorityAvoidContainer::Place(CAvoidObject* obj) {
    obj->PlacedState(CAvoidObject::kPlaced);
    AppendPlaced(obj);
    m_index.Insert(obj);
}

void CPriorityAvoidContainer::SyncIndex() {
    if (!m_index.Stale()) return;
    ++m_placedChanges;
    m_index.Clear();
    for (CAvoidObject* placed : PlacedObjects())
        m_index.Insert(placed);
}

void CPriorityAvoidContainer::IntersectBox(CAvoidObject* obj,
                                           std::vector<CAvoidObject*>& candidates) {
    const Box extent = obj->MaxExtent();
    for (CAvoidObject* placed : PlacedObjects()) {
        if (extent.IsIntersect(placed->MaxExtent())) candidates.push_back(placed);
    }
}

bool CPriorityAvoidContainer::TakePalce(CAvoidObject* obj, std::vector<CAvoidObject*>& candidates) {
    for (CAvoidObject* placed : candidates) {
        if (placed->IsIntersect(obj)) return false;
    }
    Place(obj);
    return true;
}

namespace {

// Blockers files footprint bounds in buckets of 32 x 32 cells; bounds that span more than 32
// buckets in either direction, and objects without bounds, go to a list that every query reads.
constexpr int kBucketShift = 5;
constexpr int kBucketSpan = 32;
// The bounds of objects that have none: met by every query.
const Box kEverywhere(INT_MIN, INT_MIN, INT_MAX, INT_MAX);

// Coordinates and offsets within this bound add up without wrapping.
constexpr int kTameLimit = 1 << 29;

bool Tame(int v) { return v >= -kTameLimit && v <= kTameLimit; }

// The bounds of obj's footprint at its current offset: its run extent and its boxes, each taken
// between its bounds. Every footprint test answers from cells inside both objects' bounds, as
// the placed index relies on too. False when obj has no runs, or some coordinate or offset
// reaches beyond +-2^29.
bool FootprintBounds(const CAvoidObject& obj, Box& out) {
    const Location offset = obj.Offset();
    if (!Tame(offset.x) || !Tame(offset.y)) return false;
    const Box own = obj.RLEMaxExtent().RevOffset(offset);
    if (!own.IsValid() || !Tame(own.left) || !Tame(own.top) || !Tame(own.right) ||
        !Tame(own.bottom)) {
        return false;
    }
    out = obj.RLEMaxExtent();
    for (const Box& b : obj.Boxes()) {
        if (!Tame(b.left) || !Tame(b.top) || !Tame(b.right) || !Tame(b.bottom)) return false;
        const Box at = b.Offset(offset);
        out.Union(Box(std::min(at.left, at.right), std::min(at.top, at.bottom),
                      std::max(at.left, at.right), std::max(at.top, at.bottom)));
    }
    return true;
}

// Bounds lie within +-2^30: shifting them is exact.
bool Bucketable(const Box& b) {
    return (b.right >> kBucketShift) - (b.left >> kBucketShift) < kBucketSpan &&
           (b.bottom >> kBucketShift) - (b.top >> kBucketShift) < kBucketSpan;
}

uint64_t BucketKey(int col, int row) {
    return (static_cast<uint64_t>(static_cast<uint32_t>(col)) << 32) | static_cast<uint32_t>(row);
}

}  // namespace

void CPriorityAvoidContainer::FileForBlockers() {
    // A placed object that moved or changed its footprint makes the index stale.
    SyncIndex();
    // Recycle takes rejected objects off the unplaced list without telling; a rejection adds one.
    const Filing now{m_placedChanges, PlacedObjects().size(), UnplacedObjects().size(),
                     m_rejections.size()};
    if (m_blockersFiled == now) return;
    m_blockersFiled = now;
    m_blockersOrder.assign(PlacedObjects().begin(), PlacedObjects().end());
    m_blockersLimit.clear();
    for (const CAvoidObject* unplaced : UnplacedObjects())
        m_blockersLimit.emplace(unplaced, 0);
    for (const Rejection& r : m_rejections) {
        const auto it = m_blockersLimit.find(r.obj);
        if (it != m_blockersLimit.end()) it->second = r.placedBefore;
    }
    m_blockersBuckets.clear();
    m_blockersLarge.clear();
    m_blockersBounds.assign(m_blockersOrder.size(), kEverywhere);
    for (size_t rank = 0; rank < m_blockersOrder.size(); ++rank) {
        const CAvoidObject* placed = m_blockersOrder[rank];
        // An object that is not valid collides with nothing.
        if (!placed->IsValid()) continue;
        Box b;
        const bool bounded = FootprintBounds(*placed, b);
        if (bounded) m_blockersBounds[rank] = b;
        if (!bounded || !Bucketable(b)) {
            m_blockersLarge.push_back(rank);
            continue;
        }
        for (int row = b.top >> kBucketShift; row <= b.bottom >> kBucketShift; ++row) {
            for (int col = b.left >> kBucketShift; col <= b.right >> kBucketShift; ++col)
                m_blockersBuckets[BucketKey(col, row)].push_back(rank);
        }
    }
}

std::vector<CAvoidObject*> CPriorityAvoidContainer::Blockers(CAvoidObject* obj) {
    std::vector<CAvoidObject*> blockers;
    if (obj == nullptr || obj->PlacedState() != CAvoidObject::kNotPlaced) return blockers;
    FileForBlockers();
    const auto found = m_blockersLimit.find(obj);
    if (found == m_blockersLimit.end()) return blockers;
    const size_t limit = std::min(found->second, m_blockersOrder.size());

    std::vector<Location>& offsets = obj->OffsetCollection();
    blockers.assign(offsets.size(), nullptr);
    std::vector<size_t> near;
    for (size_t i = 0; i < offsets.size(); ++i) {
        obj->OffsetIterator(offsets.begin() + static_cast<std::ptrdiff_t>(i));
        if (!obj->IsValid()) continue;
        const Box e = obj->MaxExtent();
        near.clear();
        Box b;
        if (FootprintBounds(*obj, b) && Bucketable(b)) {
            // Footprints whose bounds miss obj's cannot collide with it. Ranks are filed in
            // ascending order.
            const auto gather = [&](const std::vector<size_t>& ranks) {
                for (size_t rank : ranks) {
                    if (rank >= limit) break;
                    if (m_blockersBounds[rank].IsIntersect(b)) near.push_back(rank);
                }
            };
            gather(m_blockersLarge);
            for (int row = b.top >> kBucketShift; row <= b.bottom >> kBucketShift; ++row) {
                for (int col = b.left >> kBucketShift; col <= b.right >> kBucketShift; ++col) {
                    const auto bucket = m_blockersBuckets.find(BucketKey(col, row));
                    if (bucket != m_blockersBuckets.end()) gather(bucket->second);
                }
            }
            std::sort(near.begin(), near.end());
            near.erase(std::unique(near.begin(), near.end()), near.end());
        } else {
            for (size_t rank = 0; rank < limit; ++rank)
                near.push_back(rank);
        }
        // The placement's own test, in placement order: the coarse extents, then the footprints.
        for (size_t rank : near) {
            CAvoidObject* placed = m_blockersOrder[rank];
            if (e.IsIntersect(placed->MaxExtent()) && placed->IsIntersect(obj)) {
                blockers[i] = placed;
                break;
            }
        }
    }
    obj->OffsetIterator(offsets.begin());
    return blockers;
}
