// The placed objects of a container, filed in a bucket grid by their footprint bounds.
//
// The bounds of an object at its current offset cover its boxes (each taken between its bounds,
// whatever their order) and its run extent. Every footprint test answers from cells inside both
// objects' bounds, so an object can only collide with the objects whose bounds meet its own.
// Objects whose coordinates or offsets reach beyond +-2^29, where shifted coordinates may wrap,
// have no such bounds: they are met by every query, and as a query they meet everything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "placement/Geometry.h"

class CAvoidObject;

class CPlacedIndex {
public:
    CPlacedIndex() = default;
    CPlacedIndex(const CPlacedIndex&) = delete;
    CPlacedIndex& operator=(const CPlacedIndex&) = delete;
    ~CPlacedIndex();

    // Drops every object; the objects stop reporting their changes to this index.
    void Clear();
    // Files a placed object at its current offset; objects that are not valid never collide
    // and are not kept in buckets. Every inserted object reports its changes until Clear().
    void Insert(CAvoidObject* obj);
    // Whether some filed object meets obj's MaxExtent and, as the receiver, collides with obj at
    // its current offset.
    bool Collides(CAvoidObject* obj);
    // The number of Insert calls since the last Clear.
    size_t Inserted() const { return m_watched.size(); }
    // Some inserted object changed its footprint or offset since it was filed.
    bool Stale() const { return m_stale; }
    void MarkStale() { m_stale = true; }

private:
    struct Entry {
        CAvoidObject* obj;
        Box bounds;
        uint64_t stamp;
    };

    // Whether the entry has not been met yet by this query and passes both tests.
    bool Meets(Entry& e, const Box& bounds, const Box& extent, CAvoidObject* obj);

    std::vector<Entry> m_entries;
    // Bucket key (column << 32 | row) to entry numbers.
    std::unordered_map<uint64_t, std::vector<uint32_t>> m_buckets;
    // Entries too large for buckets and entries without bounds.
    std::vector<uint32_t> m_large;
    uint64_t m_stamp = 0;
    // Every object inserted since the last Clear, valid or not.
    std::vector<CAvoidObject*> m_watched;
    bool m_stale = false;
};
