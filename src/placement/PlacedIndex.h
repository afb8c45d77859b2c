// The placed objects of a container, filed in a bucket grid by their footprint bounds.
//
// The bounds of an object at its current offset cover its boxes (each taken between its bounds,
// whatever their order) and its run extent. Every footprint test answers from cells inside both
// objects' bounds, so an object can only collide with the objects whose bounds meet its own.
// Objects whose coordinates or offsets reach beyond +-2^29, where shifted coordinates may wrap,
// have no such bounds: they are met by every query, and as a query they meet everything.
//
// Buckets over the canvas lie in one flat array whose bucket vectors keep their capacity from
// pass to pass; buckets off the canvas are kept in a hash map. A bucket holds each object's
// bounds, so most objects are passed over without touching them, and objects of plain runs are
// tested against a copy of their rows kept here, without touching them either.
//
// Objects of plain runs (no boxes, regular rows, exact bounds) that lie wholly on the canvas are
// not kept in buckets at all: their cells are drawn into a bitmap of the canvas, and a query of
// plain runs tests its own cells against the bitmap, a few words per row. Queries of any other
// kind still meet these objects one by one, by their own footprint test.
//
// The last insertion can be taken back (RemoveLast): it keeps how far each store had grown and
// the bitmap words it changed, so taking back the object placed last costs what filing it cost,
// with no refiling of the others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "index/RLEIndex.h"
#include "placement/ChangeSignal.h"
#include "placement/Geometry.h"
#include "placement/Occupancy.h"

class CAvoidObject;

class CPlacedIndex {
public:
    CPlacedIndex() = default;
    CPlacedIndex(const CPlacedIndex&) = delete;
    CPlacedIndex& operator=(const CPlacedIndex&) = delete;
    ~CPlacedIndex();

    // Drops every object without touching it; changes of the objects it held are no longer seen.
    void Clear();
    // The canvas, cells 0 .. width - 1 by 0 .. height - 1, whose buckets lie in the flat array.
    // Takes effect at once while the index is empty, else at the next Clear. Answers do not
    // depend on it.
    void Cover(long long width, long long height);
    // Files a placed object at its current offset; objects that are not valid never collide
    // and are not kept in buckets. Every inserted object raises this index's change signal
    // until Clear() or until RemoveLast takes it back. obj must stay alive until then, or until
    // the index is stale.
    void Insert(CAvoidObject* obj);
    // Takes back the last Insert when it filed obj, no Clear or RemoveLast came since and the
    // index is not stale: the index is then as if obj had never been inserted, and obj no longer
    // raises its signal. The caller must know that obj was inserted only once since the last
    // Clear. False, changing nothing, in every other case.
    bool RemoveLast(CAvoidObject* obj);
    // Whether some filed object meets obj's MaxExtent and, as the receiver, collides with obj at
    // its current offset.
    bool Collides(CAvoidObject* obj);
    // Some inserted object changed its footprint or offset since it was filed, or MarkStale was
    // called: the index must be cleared and refilled before it is asked again.
    bool Stale() const { return m_signal->raised; }
    void MarkStale() { m_signal->raised = true; }

private:
    // A filed object with its bounds and MaxExtent at the time it was filed: the index is
    // rebuilt before it is asked again whenever the object changed since.
    //
    // For an object without boxes, with bounds and with regular rows, the entry also keeps a
    // copy of its rows in m_runs and its offset (quick is true): the footprint test is then the
    // merge of runs, which reads the copy without touching the object. Others are asked
    // IsIntersect.
    struct Entry {
        Box bounds;
        Box extent;
        CAvoidObject* obj;
        Location offset;
        int startRow;
        // The copy: rowCount row ends (in start, counted from the first run), then the runs.
        uint32_t rowCount;
        size_t firstRun;
        bool quick;
        // Drawn in the bitmap instead of filed in buckets.
        bool drawn;
    };
    // What a bucket holds of an entry: enough for the bounds test.
    struct Slot {
        Box bounds;
        uint32_t entry;
    };
    using Bucket = std::vector<Slot>;
    // What a query reads of its own object for the quick test.
    struct Query {
        CAvoidObject* obj;
        Box runs;
        Location offset;
        bool quick;
    };

    // Whether the entry's object, as the receiver, collides with the query's object.
    bool Collide(const Entry& e, const Query& q) const;
    // Draws the cells of obj within its run extent at its offset into the bitmap.
    void Draw(const CAvoidObject& obj);
    // Whether some cell of obj within its run extent at its offset is set in the bitmap.
    bool HitsDrawn(const CAvoidObject& obj) const;
    // Copies obj's rows into m_runs and makes the entry quick; false, copying nothing, for a
    // grid of more runs than an int counts.
    bool CopyRows(const CAvoidObject& obj, Entry& e);
    // The bucket of the given bucket column and row, or null when none was made.
    const Bucket* Find(long long col, long long row) const;
    Bucket& Make(long long col, long long row);
    void ApplyCover();

    // What the last Insert added, for RemoveLast; obj is null when there is nothing to take back.
    struct LastInsert {
        CAvoidObject* obj = nullptr;
        bool filed = false;  // an entry was made (the object was valid)
        bool large = false;  // in m_large rather than in buckets
        size_t runs = 0;     // sizes of m_runs and m_used before
        size_t used = 0;
    };
    // The bucket of the given bucket column and row, which must exist.
    Bucket& At(long long col, long long row);

    LastInsert m_last;
    // Every valid object, once: asked by queries without bounds.
    std::vector<Entry> m_entries;
    // The rows copied for the quick entries.
    std::vector<RLE> m_runs;
    // Entries too large for buckets and entries without bounds.
    std::vector<uint32_t> m_large;
    // Entries drawn in the bitmap.
    std::vector<uint32_t> m_drawn;
    kxac::Occupancy m_occupancy;
    long long m_wantCellColumns = 0;
    long long m_wantCellRows = 0;
    // Buckets of the canvas, row by row, m_columns per row.
    std::vector<Bucket> m_grid;
    long long m_columns = 0;
    long long m_rows = 0;
    long long m_wantColumns = 0;
    long long m_wantRows = 0;
    // The buckets of the array that hold entries.
    std::vector<uint32_t> m_used;
    // Buckets off the canvas: key (column << 32 | row).
    std::unordered_map<uint64_t, Bucket> m_far;
    // Shared with the objects filed since the last Clear; nothing filed while m_filed is false.
    std::shared_ptr<kxac::ChangeSignal> m_signal = std::make_shared<kxac::ChangeSignal>();
    bool m_filed = false;
};
