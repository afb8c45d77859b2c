#include "reference_placement.h"

#include <algorithm>
#include <vector>

namespace reference {

bool Intersect(const CAvoidObject& r, CAvoidObject& o) {
    if (!r.IsValid() || !o.IsValid()) return false;
    const Location here = r.Offset();
    const Location there = o.Offset();
    for (const Box& a : r.Boxes()) {
        for (const Box& b : o.Boxes()) {
            if (a.Offset(here).IsIntersect(b.Offset(there))) return true;
        }
    }
    for (const Box& a : r.Boxes()) {
        if (o.IsIntersectRLE(a.Offset(here))) return true;
    }
    auto* grid = const_cast<CRLEIndexQuery*>(&o.Grid());
    return r.IsIntersectRLE(grid, o.RLEMaxExtent(), there);
}

bool PriorityContainer::Add(CAvoidObject* obj, bool force) {
    if (obj == nullptr) return true;
    if (!force) obj->PlacedState(CAvoidObject::kNotPlaced);
    // Forced objects are placed at their current offset without a search.
    bool free = force;
    std::vector<Location>& offsets = obj->OffsetCollection();
    std::vector<CAvoidObject*> candidates;
    for (auto it = offsets.begin(); it != offsets.end() && !free; ++it) {
        obj->OffsetIterator(it);
        candidates.clear();
        IntersectBox(obj, candidates);
        free = std::none_of(candidates.begin(), candidates.end(),
                            [&](CAvoidObject* placed) { return Intersect(*placed, *obj); });
    }
    if (!free) obj->OffsetIterator(offsets.begin());
    free ? AppendPlaced(obj) : AppendUnplaced(obj);
    if (free) obj->PlacedState(CAvoidObject::kPlaced);
    return true;
}

}  // namespace reference
