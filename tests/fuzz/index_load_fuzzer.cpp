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
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 20) return 0;
    CRLEIndex index;
    try {
        index.Load(data, static_cast<int>(size));
    } catch (const std::length_error&) {
        return 0;  // a negative row or run count: refused with the standard length error
    }
    const std::vector<unsigned char> saved = SaveAll(index);
    CRLEIndex again;
    if (again.Load(saved.data(), static_cast<int>(saved.size())) != static_cast<int>(saved.size()))
        std::abort();
    if (SaveAll(again) != saved) std::abort();
    CRLEIndexCursor cursor(&index);
    int level = 0, row = 0, col = 0;
    for (int steps = 0; steps < 4096 && cursor.Next(&level, &row, &col); ++steps)
        if (index.LevelIndex(level) == nullptr) std::abort();
    // Spans taken from each level's first row, inside its band so that the band does not grow.
    for (int i = 0; i < index.LevelCount(); ++i) {
        auto* grid = dynamic_cast<CRLEIndexCreate*>(index.LevelAt(i));
        if (grid == nullptr || grid->IsEmpty()) continue;
        const int r = grid->StartRow();
        const RLERowRuns* runs = grid->RowRuns(r);
        const int a = runs->empty() ? 0 : runs->front().start,
                  b = runs->empty() ? 0 : runs->back().end;
        grid->Add(r, a, b);
        grid->Erase(r, b);
        grid->Add(r, a);
        grid->Erase(r, a, b);
        grid->Add(r, b, a);
        grid->IsExist(r, a);
        grid->Count();
        grid->StartCol();
        grid->EndCol();
    }
    return 0;
}
