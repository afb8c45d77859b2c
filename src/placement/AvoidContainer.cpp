// The container of a placement pass and its greedy priority placement.
#include "placement/AvoidContainer.h"

#include <algorithm>
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
    if (*nodes == 1) {
        // The only node, most often the last one; it may stand in another container.
        const auto last = std::find(list->rbegin(), list->rend(), obj);
        if (last == list->rend()) return;
        it = std::prev(last.base());
    } else {
        it = std::find(list->begin(), list->end(), obj);
        if (it == list->end()) return;
    }
    --*nodes;
    m_spareNodes.splice(m_spareNodes.end(), *list, it);
    m_pool.push(obj);
    if (list == &m_placed) Released(obj);
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
    return true;
}

void CPriorityAvoidContainer::Reset() {
    CAvoidContainer::Reset();
    m_index.Clear();
}

void CPriorityAvoidContainer::Released(CAvoidObject* obj) {
    // Still placed through another node: its entry must stay, and only a refiling tells which.
    if (StillPlaced(obj) || !m_index.RemoveLast(obj)) m_index.MarkStale();
}

void CPriorityAvoidContainer::Place(CAvoidObject* obj) {
    obj->PlacedState(CAvoidObject::kPlaced);
    AppendPlaced(obj);
    m_index.Insert(obj);
}

void CPriorityAvoidContainer::SyncIndex() {
    if (!m_index.Stale()) return;
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
