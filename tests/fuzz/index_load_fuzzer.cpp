// Feeds arbitrary bytes to CRLEIndex::Load, then checks that what was loaded saves and loads back
// to the same bytes, walks it with a cursor and edits its rows. Sanitizers report any read past
// the input, any undefined arithmetic and any oversized allocation.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "index/RLEIndex.h"

namespace {
std::vector<unsigned char> SaveAll(const CRLEIndex& index) {
    const int length = index.BlockLength();
    std::vector<unsigned char> block(length > 0 ? static_cast<size_t>(length) : 0);
    const int written = index.Save(block.data(), length);
    if (written < 0 || written > length) std::abort();
    block.resize(static_cast<size_t>(written));
    return block;
}

// Spans taken from each level's own runs, applied to rows inside its band so that the band
// does not grow.
void EditLevels(CRLEIndex& index) {
    for (int i = 0; i < index.LevelCount(); ++i) {
        auto* level = dynamic_cast<CRLEIndexCreate*>(index.LevelAt(i));
        if (level == nullptr || level->IsEmpty()) continue;
        const int row = level->StartRow();
        const RLERowRuns* runs = level->RowRuns(row);
        const int a = runs->empty() ? 0 : runs->front().start;
        const int b = runs->empty() ? 0 : runs->back().end;
        level->Add(row, a, b);
        level->Erase(row, b);
        level->Add(row, a);
        level->Erase(row, a, b);
        level->Add(row, b, a);
        level->IsExist(row, a);
        level->Count();
        level->StartCol();
        level->EndCol();
    }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 20) return 0;
    CRLEIndex index;
    try {
        index.Load(data, static_cast<int>(size));
    } catch (const std::length_error&) {
        // A negative row or run count: refused with the standard length error.
        return 0;
    }
    const std::vector<unsigned char> saved = SaveAll(index);
    CRLEIndex again;
    if (again.Load(saved.data(), static_cast<int>(saved.size())) !=
        static_cast<int>(saved.size())) {
        std::abort();
    }
    if (SaveAll(again) != saved) std::abort();

    CRLEIndexCursor cursor(&index);
    int level = 0, row = 0, col = 0;
    for (int steps = 0; steps < 4096 && cursor.Next(&level, &row, &col); ++steps) {
        if (index.LevelIndex(level) == nullptr) std::abort();
    }
    EditLevels(index);
    return 0;
}
