// Occupancy of the canvas: one bit per cell, 64 cells to a word, in blocks of 64 columns by 16
// rows that exist only where something was drawn.
//
// The placed objects whose footprint is plain runs lying wholly on the canvas are drawn here, so
// that testing a candidate against all of them costs a few word tests per row of the candidate,
// however many objects are placed. Memory follows the area drawn in, not the canvas: a block is
// 128 bytes, and the directory that finds blocks costs 4 bytes per block of the canvas up to
// kMaxFlatBlocks blocks (a canvas of 65,536 x 65,536 cells), beyond which it is a hash map of the
// blocks in use. Clearing touches only the blocks in use, and keeps their memory for the next
// pass.
//
// The words that Set changes since the last Checkpoint are kept with their former values, so the
// last object drawn can be taken out again exactly, even where it overlaps others.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace kxac {

class Occupancy {
public:
    // Covers cells 0 .. columns - 1 by 0 .. rows - 1, all free.
    void Cover(long long columns, long long rows);
    long long Columns() const { return m_columns; }
    long long Rows() const { return m_rows; }
    // Whether the cell rectangle lies wholly inside the covered cells.
    bool Covers(long long left, long long top, long long right, long long bottom) const {
        return left >= 0 && top >= 0 && right < m_columns && bottom < m_rows && left <= right &&
               top <= bottom;
    }

    // Cells first .. last of a covered row; the span must lie inside the covered columns.
    void Set(long long row, long long first, long long last) { Set(row, row, first, last); }
    // The same in every row of top .. bottom.
    void Set(long long top, long long bottom, long long first, long long last);
    // Whether any cell first .. last of a covered row is set.
    bool Any(long long row, long long first, long long last) const {
        return Any(row, row, first, last);
    }
    // Whether any cell of columns first .. last in rows top .. bottom is set; the rectangle must
    // lie inside the covered cells.
    bool Any(long long top, long long bottom, long long first, long long last) const;
    // Frees every cell.
    void Clear();
    // Forgets the changes made so far: Rollback undoes only those made from now on.
    void Checkpoint() { m_changes.clear(); }
    // Gives every word changed since the last Checkpoint (or Clear) its value from then. Blocks
    // made since stay in use, empty.
    void Rollback();
    // Blocks in use.
    size_t Blocks() const { return m_keys.size(); }

    static constexpr int kBlockShift = 4;
    static constexpr int kBlockRows = 1 << kBlockShift;
    static constexpr long long kMaxFlatBlocks = 1LL << 22;

private:
    static constexpr int kChunkShift = 12;  // blocks per chunk of storage
    // The block of a word column and a block row: its place in the flat directory, or its key
    // in the hash map.
    uint64_t Key(long long wordColumn, long long blockRow) const {
        const long long columns = m_flat ? m_wordColumns : kKeyColumns;
        return static_cast<uint64_t>(blockRow) * static_cast<uint64_t>(columns) +
               static_cast<uint64_t>(wordColumn);
    }
    // The bits first .. last (0 .. 63) of a word.
    static uint64_t Mask(long long first, long long last) {
        return (~uint64_t{0} >> (63 - last)) & (~uint64_t{0} << first);
    }
    uint64_t* At(uint32_t index) const {
        const uint32_t inChunk = index & ((1u << kChunkShift) - 1);
        return m_chunks[index >> kChunkShift].get() + inChunk * kBlockRows;
    }
    // The block's words, or null when nothing was drawn in it.
    const uint64_t* Find(uint64_t key) const;
    uint64_t* Make(uint64_t key);

    // Word columns of the largest canvas: keys of blocks never collide.
    static constexpr long long kKeyColumns = (1LL << 31) / 64 + 1;

    long long m_columns = 0;
    long long m_rows = 0;
    long long m_wordColumns = 0;
    // Flat: the block index + 1 of every block of the canvas, 0 for none.
    bool m_flat = true;
    std::vector<uint32_t> m_directory;
    std::unordered_map<uint64_t, uint32_t> m_far;
    // Block storage in chunks that never move; blocks 0 .. m_keys.size() - 1 are in use.
    std::vector<std::unique_ptr<uint64_t[]>> m_chunks;
    std::vector<uint64_t> m_keys;
    // The words changed since the last Checkpoint, each with its value before the change.
    struct Change {
        uint64_t* word;
        uint64_t was;
    };
    std::vector<Change> m_changes;
};

}  // namespace kxac
