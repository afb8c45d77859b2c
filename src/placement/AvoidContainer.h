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

#include <deque>
#include <list>
#include <queue>
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
    // Called when Recycle takes obj off the placed list.
    virtual void Released(CAvoidObject* obj) { (void)obj; }
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

protected:
    void Released(CAvoidObject* obj) override;

private:
    // Refiles the placed objects when the index is stale.
    void SyncIndex();
    void Place(CAvoidObject* obj);

    CPlacedIndex m_index;
};
