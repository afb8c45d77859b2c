// Placement of map objects without overlap.
//
// A CAvoidObject is one object that asks for a place on the canvas: a footprint made of boxes and
// of a grid of occupied cells (its own grid level of runs, filled by rasterising lines and rings),
// a list of candidate offsets, an identity and a placed state. A container hands objects out of a
// pool of recycled ones, keeps the pass's transform and the lists of placed and unplaced objects.
// CPriorityAvoidContainer places greedily in the order of adding: each object goes to the first
// of its offsets at which it meets no object placed before it, or is rejected.
//
// Cost of the placement: placed objects of plain runs on the canvas are drawn into a bitmap of
// the canvas, so a candidate of plain runs is tested against all of them at once, a few words per
// row. Other placed objects are kept in a bucket grid keyed by their footprint bounds, so an
// attempt meets only those near it; they then pass the coarse extent test and the footprint
// test, which merges the runs of the rows both grids share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <queue>
#include <unordered_map>
#include <vector>

#include "placement/AvoidObject.h"
#include "placement/PlacedIndex.h"
#include "placement/Transform.h"
#include "stdafx.h"

// Owner of the objects of one placement pass and keeper of its transform.
class KXAC_API CAvoidContainer {
public:
    CAvoidContainer();
    virtual ~CAvoidContainer();
    CAvoidContainer(const CAvoidContainer&) = delete;
    CAvoidContainer& operator=(const CAvoidContainer&) = delete;

    // Places or rejects obj; see the derived class.
    virtual bool Add(CAvoidObject* obj, bool force) = 0;
    virtual void Calculate() = 0;
    // Moves the placed, then the unplaced objects, each list in order, to the back of the pool.
    // States are not changed.
    virtual void Reset();

    // The object recycled earliest, or a new one; reset, with the transform attached. It is in
    // no list and not in the pool: until it is added or recycled the caller owns it.
    CAvoidObject* NewObject();
    // Gives obj back by its state: 0 appends it to the pool (no check that it is there already);
    // 1 and 2 move the first node holding it from the placed or unplaced list to the pool, and
    // do nothing when no node holds it; other states and null do nothing. obj is not touched.
    void Recycle(CAvoidObject* obj);
    // Reset(), then deletes every pooled object, once even when it stands in the pool twice
    // (an object added or recycled twice).
    void Destroy();
    CDT* DT() { return &m_dt; }

    const std::list<CAvoidObject*>& PlacedObjects() const { return m_placed; }
    const std::list<CAvoidObject*>& UnplacedObjects() const { return m_unplaced; }

private:
    std::queue<CAvoidObject*, std::deque<CAvoidObject*>> m_pool;

protected:
    // Called when Recycle takes obj off the placed list, where it stood at position (from 0).
    virtual void Released(CAvoidObject* obj, size_t position) {
        (void)obj;
        (void)position;
    }
    // Appends obj at the back of the placed or the unplaced list in a node that Reset or Recycle
    // freed, so that a pass of a reused container allocates no list nodes. The lists change only
    // through these, Recycle and Reset.
    void AppendPlaced(CAvoidObject* obj);
    void AppendUnplaced(CAvoidObject* obj);
    // Whether some node of a container's placed list still holds obj.
    static bool StillPlaced(const CAvoidObject* obj) { return obj->m_placedNodes > 0; }

private:
    void Append(std::list<CAvoidObject*>& list, CAvoidObject* obj);

    // Each object counts the nodes that hold it: Recycle finds an object held by one node by
    // searching from the back, where the objects added last stand, and only an object held by
    // several nodes costs a search from the front.
    std::list<CAvoidObject*> m_placed;
    std::list<CAvoidObject*> m_unplaced;
    CDT m_dt;
    // Nodes taken off the lists, for Append; their values mean nothing.
    std::list<CAvoidObject*> m_spareNodes;
};

// Greedy placement in the order of adding: an earlier object always wins.
//
// Placed objects are filed in an index by where their footprints stand. The index never outlives
// its view of an object: Reset empties it; a placed object taken back by Recycle is taken out of
// it when it was the last filed and stands in the placed list once (a pass that recycles the dot
// of a name that found no room); any other placed object taken back, or one whose footprint or
// offset changes through its own operations, makes it stale, so that it is rebuilt from the
// placed list before it is next asked. Answers are those of a scan over the placed list in every
// case.
class KXAC_API CPriorityAvoidContainer : public CAvoidContainer {
public:
    ~CPriorityAvoidContainer() override;

    // Forced: placed at its current offset without a test. Otherwise each offset is tried in
    // order; the object is placed at the first at which no placed object collides with it, or
    // listed as unplaced with its first offset current. Always true; null is ignored.
    bool Add(CAvoidObject* obj, bool force) override;
    void Reset() override;
    // Placements are final at once: nothing to do.
    void Calculate() override {}
    // Appends the placed objects whose MaxExtent meets obj's, in placement order.
    void IntersectBox(CAvoidObject* obj, std::vector<CAvoidObject*>& candidates);
    // Places obj unless a candidate, as the receiver, collides with it.
    bool TakePalce(CAvoidObject* obj, std::vector<CAvoidObject*>& candidates);

    // Why obj was left out: for each of its offsets in order, the first object placed before obj
    // was rejected (in placement order, among those still placed) that, as the receiver, collides
    // with obj there; null where none does. Empty unless obj is in the unplaced list of this pass
    // (state 2; for an object rejected twice, its last rejection counts). Answers are those of
    // the placement's own test; obj's offset is back on its first when it returns.
    //
    // Computed on demand: the pass only notes, per rejection, how many objects were placed then.
    // The first call after the placed list changed files the placed objects by their footprint
    // bounds (linear in their number); each call then meets only the placed objects whose bounds
    // share a bucket with obj's at each offset, and those without bounds.
    std::vector<CAvoidObject*> Blockers(CAvoidObject* obj);

protected:
    void Released(CAvoidObject* obj, size_t position) override;

private:
    // Refiles the placed objects when the index is stale.
    void SyncIndex();
    void Place(CAvoidObject* obj);
    // Files the placed objects for Blockers, unless they are filed as they stand.
    void FileForBlockers();

    CPlacedIndex m_index;

    // A rejection: obj, and the number of objects that were placed before it.
    struct Rejection {
        CAvoidObject* obj;
        size_t placedBefore;
    };
    std::vector<Rejection> m_rejections;
    // Counts the changes of the placed list other than placements (recycling, resets) and the
    // refilings of the index. Between two of them the placed list only grows, so this count and
    // the list's size tell whether it changed.
    uint64_t m_placedChanges = 0;
    // What Blockers' files were made from: the count above, the sizes of the placed and unplaced
    // lists and of the rejections.
    struct Filing {
        uint64_t placedChanges;
        size_t placed;
        size_t unplaced;
        size_t rejections;
        bool operator==(const Filing& o) const {
            return placedChanges == o.placedChanges && placed == o.placed &&
                   unplaced == o.unplaced && rejections == o.rejections;
        }
    };
    Filing m_blockersFiled{~uint64_t{0}, 0, 0, 0};
    // Blockers' files: the placed objects in order, the last rejection of each rejected object,
    // and the placement ranks of the valid placed objects by buckets of their footprint bounds
    // (those too large for buckets, or without bounds, in m_blockersLarge).
    std::vector<CAvoidObject*> m_blockersOrder;
    std::unordered_map<const CAvoidObject*, size_t> m_blockersLimit;
    std::unordered_map<uint64_t, std::vector<size_t>> m_blockersBuckets;
    std::vector<size_t> m_blockersLarge;
    // The footprint bounds of each placed object, by rank; everywhere for those without.
    std::vector<Box> m_blockersBounds;
};
