// The straightforward priority placement, kept as the reference the indexed one must match: every
// attempt filters all placed objects by their coarse extents and runs the footprint test, runs
// against runs cell by cell, on each that passes.
#pragma once

#include "placement/AvoidContainer.h"

namespace reference {

// Footprint overlap of o with the receiver r, both at their current offsets, by the cell scan.
bool Intersect(const CAvoidObject& r, CAvoidObject& o);

class PriorityContainer : public CPriorityAvoidContainer {
public:
    bool Add(CAvoidObject* obj, bool force) override;
};

}  // namespace reference
