// Run-length grid index.
//
// A grid level is a band of consecutive rows; each row is a sorted vector of runs of occupied
// cells (RLE). Levels are filled span by span (CRLEIndexCreate), queried cell by cell
// (CRLEIndexQuery), gathered into a multi-level index (CRLEIndex) that is saved and loaded as one
// big-endian block, and enumerated by cursors. Every cell operation takes the row first, then the
// column or columns; spans are inclusive at both ends and may be given in either order.
//
// The row operations keep some deliberate irregularities that callers rely on: a span added to a
// row may leave two runs abutting, and in some gap cases does not add all of its cells; erasing a
// span may leave repeated runs at the tail of the row. Every reader works with such rows.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "stdafx.h"

// One run of occupied cells of a row, [start, end], both inclusive. Valid when end >= start.
// Comparisons are exact over the whole 32-bit range; Length() wraps in 32 bits.
struct KXAC_API RLE {
    int start = 0;
    int end = 0;

    RLE() = default;
    explicit RLE(int v) : start(v), end(v) {}
    RLE(int s, int e) : start(s), end(e) {}
    // Bit copy of a packed pair: the low 32 bits become start, the high 32 bits end.
    explicit RLE(long long v)
        : start(static_cast<int>(static_cast<uint32_t>(static_cast<unsigned long long>(v)))),
          end(static_cast<int>(static_cast<uint32_t>(static_cast<unsigned long long>(v) >> 32))) {}

    bool IsValid() const { return end >= start; }
    bool IsIn(int x) const { return start <= x && x <= end; }
    // x - start when x is before the run (negative), x - end when after it (positive), 0 inside.
    // A distance beyond the 32-bit range saturates, keeping its sign.
    int Compare(int x) const {
        if (x < start) return Narrow(static_cast<long long>(x) - start);
        if (x > end) return Narrow(static_cast<long long>(x) - end);
        return 0;
    }
    // Grows the run by the one cell x when x lies just before or just after it.
    void Union(int x) {
        if (x == static_cast<long long>(start) - 1) {
            start = x;
        } else if (x == static_cast<long long>(end) + 1) {
            end = x;
        }
    }
    // The smallest run holding both; the runs need not meet.
    void Union(const RLE& o) {
        if (o.start < start) start = o.start;
        if (o.end > end) end = o.end;
    }
    // x is inside the run or next to it.
    bool IsConnect(int x) const {
        return static_cast<long long>(start) - 1 <= x && x <= static_cast<long long>(end) + 1;
    }
    // The runs abut exactly, with no shared cell; overlapping runs are not connected.
    bool IsConnect(const RLE& o) const {
        return end == static_cast<long long>(o.start) - 1 ||
               static_cast<long long>(o.end) + 1 == start;
    }
    bool IsTouch(int x) const { return IsConnect(x); }
    // Judged by o's end cells only: a run reaching past this one on both sides does not touch it.
    bool IsTouch(const RLE& o) const { return IsTouch(o.start) || IsTouch(o.end); }
    int Length() const { return kxac::WrapAdd(kxac::WrapSub(end, start), 1); }

    bool operator==(int x) const { return IsIn(x); }
    // Not a field comparison: true when this run holds o's start or o's end.
    bool operator==(const RLE& o) const { return IsIn(o.start) || IsIn(o.end); }
    bool operator<(int x) const { return Compare(x) > 0; }
    bool operator>(int x) const { return Compare(x) < 0; }
    bool operator<(const RLE& o) const { return Compare(o.start) > 0; }
    bool operator>(const RLE& o) const { return Compare(o.end) < 0; }

private:
    static int Narrow(long long d) {
        if (d < INT32_MIN) return INT32_MIN;
        if (d > INT32_MAX) return INT32_MAX;
        return static_cast<int>(d);
    }
};

// The runs of one row, in a vector that holds a single run without allocating: most rows of
// footprints and of index levels have one run, and a row then costs 16 bytes and no block of its
// own. The operations are those of std::vector that rows need; positions are plain pointers,
// invalidated as std::vector's are.
class KXAC_API RLERowRuns {
public:
    using value_type = RLE;
    using size_type = size_t;
    using iterator = RLE*;
    using const_iterator = const RLE*;

    RLERowRuns() noexcept : m_inline() {}
    RLERowRuns(std::initializer_list<RLE> runs);
    RLERowRuns(const RLERowRuns& o);
    RLERowRuns(RLERowRuns&& o) noexcept;
    RLERowRuns& operator=(const RLERowRuns& o);
    RLERowRuns& operator=(RLERowRuns&& o) noexcept;
    ~RLERowRuns() { Free(); }

    RLE* data() { return Heap() ? m_heap : &m_inline; }
    const RLE* data() const { return Heap() ? m_heap : &m_inline; }
    size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    size_t capacity() const { return m_capacity; }
    iterator begin() { return data(); }
    iterator end() { return data() + m_size; }
    const_iterator begin() const { return data(); }
    const_iterator end() const { return data() + m_size; }
    RLE& operator[](size_t i) {
        assert(i < m_size);
        return data()[i];
    }
    const RLE& operator[](size_t i) const {
        assert(i < m_size);
        return data()[i];
    }
    RLE& front() { return (*this)[0]; }
    const RLE& front() const { return (*this)[0]; }
    RLE& back() { return (*this)[m_size - 1]; }
    const RLE& back() const { return (*this)[m_size - 1]; }

    // Throws std::length_error("vector::reserve") beyond the largest count a row holds.
    void reserve(size_t n);
    void clear() { m_size = 0; }
    void pop_back() {
        assert(m_size > 0);
        --m_size;
    }
    void swap(RLERowRuns& o) noexcept;
    void push_back(const RLE& run) { insert(end(), run); }
    template <typename... Args>
    void emplace_back(Args&&... args) {
        push_back(RLE(std::forward<Args>(args)...));
    }
    void assign(size_t n, const RLE& run);
    iterator insert(const_iterator position, const RLE& run);
    iterator erase(const_iterator position) { return erase(position, position + 1); }
    iterator erase(const_iterator first, const_iterator last);

private:
    bool Heap() const { return m_capacity > 1; }
    void Free();

    union {
        RLE m_inline;
        RLE* m_heap;
    };
    uint32_t m_size = 0;
    uint32_t m_capacity = 1;
};

using RLERows = std::vector<RLERowRuns>;

// True for a run q when r holds q's start or q's end.
struct KXAC_API CFindRLE {
    RLE r;
    explicit CFindRLE(const RLE& run) : r(run) {}
    bool operator()(const RLE& q) const { return r.IsIn(q.start) || r.IsIn(q.end); }
};

// Handle over one row of a grid level. Owns nothing; stays usable while the level's vector of
// rows is not resized. The second position (the rows' end) marks an absent row for the holder.
class KXAC_API CRLERow {
public:
    using RowPos = RLERows::iterator;
    using RunPos = RLERowRuns::iterator;

    CRLERow(const RowPos& row, const RowPos& rowsEnd) : m_row(row), m_rowsEnd(rowsEnd) {}

    // The run in [first, last] that holds x or lies next to it, else the run after the gap
    // holding x (first when x is before first, last when x is after last). Never an empty range.
    static RunPos FindRLE(const RunPos& first, const RunPos& last, int x);
    // Always false; kept for its exact result.
    static bool Insert(const RunPos& first, const RunPos& last, int x);

    bool IsExist(int x) const;
    bool Add(int x);
    bool Add(int a, int b);
    bool Erase(int x);
    bool Erase(int a, int b);

    RowPos Row() const { return m_row; }
    RowPos RowsEnd() const { return m_rowsEnd; }

private:
    RowPos m_row;
    RowPos m_rowsEnd;
};

class CRLECursor;

// One grid level, read-only through its public interface: rows from a start row, and a level
// number. Rows are stored densely from the start row to the last row; a row may be empty.
class KXAC_API CRLEIndexQuery : protected RLERows {
public:
    CRLEIndexQuery() = default;
    CRLEIndexQuery(const CRLEIndexQuery&) = default;
    CRLEIndexQuery& operator=(const CRLEIndexQuery&) = default;
    virtual ~CRLEIndexQuery();

    // Always false: a query grid accepts no cells.
    virtual bool Add(int row, int col);

    int StartRow() const { return m_startRow; }
    // Moves the whole band without touching the rows.
    void StartRow(int row) { m_startRow = row; }
    // The last row number, inclusive; start row - 1 when no row is stored.
    int EndRow() const;
    int Level() const { return m_level; }
    void Level(int level) { m_level = level; }
    // Smallest run start over the non-empty rows; 0x7fffffff when there is none.
    int StartCol() const;
    // Largest run end over the non-empty rows; -0x80000000 when there is none.
    int EndCol() const;
    // row0, col0 = 99999 and row1, col1 = -99999, then the stored band: row1 is one past the last
    // row. False, with the sentinels, when no row is stored.
    bool Range(int& row0, int& col0, int& row1, int& col1) const;
    // Total number of cells, wrapping in 32 bits; repeated runs count as stored.
    int Count() const;
    // True only when no row is stored: a grid of empty rows is not empty.
    bool IsEmpty() const { return RLERows::empty(); }
    // Number of stored rows.
    int RowCount() const { return static_cast<int>(RLERows::size()); }

    // The mark of an absent row: the end of the row vector.
    RLERows::iterator EmptyRow() { return RLERows::end(); }
    // Position of the stored row; with create, grows the band by empty rows as far as needed
    // (invalidating earlier positions). Without create, EmptyRow() for a row outside the band.
    RLERows::iterator Row(int row, bool create);
    // Runs of a stored row, or null for a row outside the band.
    const RLERowRuns* RowRuns(int row) const {
        const long long offset = static_cast<long long>(row) - m_startRow;
        if (offset < 0 || offset >= static_cast<long long>(RLERows::size())) return nullptr;
        return &RLERows::operator[](static_cast<size_t>(offset));
    }

    bool IsExist(int row, int col) const;
    // False when level is not this grid's level.
    bool IsExist(int level, int row, int col) const;

    // Length L of the serialised level block: 20-byte header, then a row record per stored row
    // (4 bytes of run count, 8 bytes per run), wrapping in 32 bits.
    int BlockLength() const;
    // L on success; 0, writing nothing, when no row is stored or L > capacity.
    int Save(unsigned char* buf, int capacity) const;
    // L on success, 0 on refusal. Refused, leaving the level unchanged: L <= 20 or L > length,
    // or a band whose last row (start row + row count - 1) lies past 2147483647.
    // Otherwise the level number and start row are taken and the stored rows released; rows are
    // then read one by one, and loading stops with 0 (the rows read so far staying) once a
    // complete row ends past L, or when a row's count or runs would run past length. A negative
    // row or run count throws std::length_error("vector::reserve"). Never reads past length and
    // never allocates more than the bytes it is given can describe.
    int Load(const unsigned char* buf, int length);

protected:
    friend class CRLECursor;

    int m_startRow = 0;
    int m_level = 0;
};

// The writable grid level: cells and spans are added and erased row by row.
class KXAC_API CRLEIndexCreate : public CRLEIndexQuery {
public:
    CRLEIndexCreate() = default;
    ~CRLEIndexCreate() override;

    // Grows the band as needed and adds the cell; true.
    bool Add(int row, int col) override;
    // Grows the band as needed and adds the span (either order, inclusive); true.
    virtual bool Add(int row, int col0, int col1);
    // False when the row is absent, else the row's answer. Erasing never grows the band.
    virtual bool Erase(int row, int col);
    virtual bool Erase(int row, int col0, int col1);

    // start row += rowDelta; colDelta is added to the start and the end of every run.
    void Offset(int rowDelta, int colDelta);
    // Releases every row; the start row and the level keep their values.
    void Clear();
};

// Several grid levels, owned, each marked by its level number, with caller metadata.
class KXAC_API CRLEIndex : private std::vector<CRLEIndexQuery*> {
public:
    using Levels = std::vector<CRLEIndexQuery*>;

    CRLEIndex();
    CRLEIndex(const CRLEIndex&) = delete;
    CRLEIndex& operator=(const CRLEIndex&) = delete;
    virtual ~CRLEIndex();

    // Appends and takes ownership (no duplicate check); widens the level range. A null level is
    // ignored.
    void Append(CRLEIndexQuery* level);
    int MinLevel() const { return m_minLevel; }
    int MaxLevel() const { return m_maxLevel; }
    // Number of held levels, and the held level at a position in append order.
    int LevelCount() const { return static_cast<int>(Levels::size()); }
    CRLEIndexQuery* LevelAt(int position) const { return Levels::at(position); }
    // The first held level with this number, or null.
    CRLEIndexQuery* LevelIndex(int level) const;
    bool IsExist(int level, int row, int col) const;
    // Sum of the levels' counts, wrapping in 32 bits.
    int Count() const;
    // Destroys every level; min level 999, max level -999; the metadata stays.
    void Clear();

    // Replaces the metadata with a copy of length bytes; a null data or a length <= 0 stores none.
    void Metadata(const unsigned char* data, int length);
    // The metadata length; copies into out only when out is not null and capacity >= length.
    int MetaData(unsigned char* out, int capacity) const;

    // 8 + metadata length + the BlockLength() of every level, empty levels included.
    int BlockLength() const;
    // Bytes written: signature, metadata length, metadata, then the block of every level that
    // has rows and fits in what is left of capacity. 0, writing nothing, when capacity cannot
    // hold the signature, the length and the metadata.
    int Save(unsigned char* buf, int capacity) const;
    // Clears the index, then reads it back: bytes consumed. 0 when the signature does not match;
    // the metadata is then kept. A block too short for its 8-byte header, or whose metadata
    // length is negative or larger than the bytes after the header, is refused the same way.
    // Level blocks are read back to back until one is refused; the levels read before it stay
    // and only their bytes are counted. Never reads past length.
    int Load(const unsigned char* buf, int length);
    // Writes the index block to a file; returns false in every case (callers check the file).
    bool Save(const char* path) const;
    // True when at least one level was loaded. A file of 19 bytes or less, or one too large
    // for a 32-bit length, is not read and gives false.
    bool Load(const char* path);

private:
    friend class CRLEIndexCursor;

    int m_minLevel = 999;
    int m_maxLevel = -999;
    uint32_t m_signature = 0x524C4500u;     // "RLE" and a zero byte
    std::vector<unsigned char> m_metadata;  // its size is the metadata length
};

// True for a grid level whose level number is the given one.
struct KXAC_API CFindLeveIndex {
    int level;
    explicit CFindLeveIndex(int l) : level(l) {}
    bool operator()(const CRLEIndexQuery* q) const { return q->Level() == level; }
};

// Enumerates every occupied cell of one grid level: rows ascending, columns ascending.
class KXAC_API CRLECursor {
public:
    CRLECursor() = default;
    explicit CRLECursor(CRLEIndexQuery* grid);

    void Attach(CRLEIndexQuery* grid);
    void Reset();
    // Moves to the first occupied cell at or after the current row.
    void SearchNextCol();
    // False when detached or exhausted; otherwise stores the current cell and advances.
    bool Next(int* row, int* col);

private:
    CRLEIndexQuery* m_grid = nullptr;
    RLERows::iterator m_row{};
    RLERowRuns::iterator m_run{};
    int m_col = 0;
};

// Enumerates every occupied cell of every level of an index, level by level in append order.
// A null index behaves as an index without levels.
class KXAC_API CRLEIndexCursor {
public:
    explicit CRLEIndexCursor(CRLEIndex* index);

    void Reset();
    // False when every level is exhausted (at once for an index without levels).
    bool Next(int* level, int* row, int* col);

private:
    CRLEIndex* m_index = nullptr;
    CRLEIndex::Levels::iterator m_level{};
    CRLECursor m_cursor;
};
