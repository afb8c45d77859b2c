// Saves a small index to memory and to the file named by the first argument, loads both back and
// checks the cells: exit status 0 when everything matches.
#include <cstdio>
#include <vector>

#include "index/RLEIndex.h"

namespace {
int Fail(const char* what) {
    std::fprintf(stderr, "consumer: %s\n", what);
    return 1;
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return Fail("usage: kxac_consumer <index file>");
    CRLEIndex index;
    auto* level = new CRLEIndexCreate();
    level->Level(-2);
    level->Add(-5, 10, 3);
    level->Add(7, -1);
    index.Append(level);
    const unsigned char meta[] = {'m', 'a', 'p'};
    index.Metadata(meta, 3);

    std::vector<unsigned char> block(static_cast<size_t>(index.BlockLength()));
    const int written = index.Save(block.data(), static_cast<int>(block.size()));
    if (written != static_cast<int>(block.size())) return Fail("memory save");
    CRLEIndex fromMemory;
    if (fromMemory.Load(block.data(), written) != written) return Fail("memory load");

    index.Save(argv[1]);
    CRLEIndex fromFile;
    if (!fromFile.Load(argv[1])) return Fail("file load");
    std::remove(argv[1]);

    for (const CRLEIndex* loaded : {&fromMemory, &fromFile}) {
        if (loaded->Count() != 9) return Fail("cell count");
        if (!loaded->IsExist(-2, -5, 3) || !loaded->IsExist(-2, 7, -1)) return Fail("cells");
        if (loaded->IsExist(-2, -5, 11) || loaded->MetaData(nullptr, 0) != 3) return Fail("extra");
    }
    CRLEIndexCursor cursor(&fromFile);
    int cells = 0, l = 0, r = 0, c = 0;
    while (cursor.Next(&l, &r, &c))
        ++cells;
    if (cells != 9) return Fail("cursor");
    std::printf("consumer: index of %d cells saved and loaded\n", cells);
    return 0;
}
