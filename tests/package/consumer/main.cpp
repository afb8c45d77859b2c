// Uses the installed library as a native user would: the grid index saved to memory and to the
// file named by the first argument and loaded back, a small placement pass, and the version.
// Exit status 0 when everything matches.
#include <KXAvoidContainer/KXAvoidContainer.h>
#include <KXAvoidContainer/index/RLEIndex.h>
#include <KXAvoidContainer/placement/AvoidContainer.h>

#include <cstdio>
#include <cstring>
#include <vector>

namespace {
int Fail(const char* what) {
    std::fprintf(stderr, "consumer: %s\n", what);
    return 1;
}

int CheckIndex(const char* path) {
    CRLEIndex index, fromMemory, fromFile;
    auto* level = new CRLEIndexCreate();
    level->Level(-2);
    level->Add(-5, 10, 3);
    level->Add(7, -1);
    index.Append(level);
    index.Metadata(reinterpret_cast<const unsigned char*>("map"), 3);
    std::vector<unsigned char> block(static_cast<size_t>(index.BlockLength()));
    const int written = index.Save(block.data(), static_cast<int>(block.size()));
    if (written != static_cast<int>(block.size()) ||
        fromMemory.Load(block.data(), written) != written)
        return Fail("memory save and load");
    index.Save(path);
    const bool read = fromFile.Load(path);
    std::remove(path);
    if (!read) return Fail("file load");
    for (CRLEIndex* loaded : {&fromMemory, &fromFile}) {
        CRLEIndexCursor cursor(loaded);
        int cells = 0, l = 0, r = 0, c = 0;
        while (cursor.Next(&l, &r, &c))
            ++cells;
        if (loaded->Count() != 9 || cells != 9 || !loaded->IsExist(-2, 7, -1) ||
            loaded->IsExist(-2, -5, 11) || loaded->MetaData(nullptr, 0) != 3)
            return Fail("cells");
    }
    return 0;
}

// A forced 10 x 10 square, then a square over it that can move 20 cells right: placed there.
int CheckPlacement() {
    CPriorityAvoidContainer pass;
    FitDeviceRect(*pass.DT(), 0, 0, 100, 100);
    FitMapExtent(*pass.DT(), 0, 0, 100, 100);
    int square[] = {10, 10, 20, 10, 20, 20, 10, 20};
    CAvoidObject* label = nullptr;
    for (bool forced : {true, false}) {
        label = pass.NewObject();
        label->AddRing(square, 8);
        if (!forced) label->OffsetCollection().push_back(Location(20, 0));
        pass.Add(label, forced);
    }
    if (pass.PlacedObjects().size() != 2 || label->PlacedState() != CAvoidObject::kPlaced ||
        label->Offset() != Location(20, 0))
        return Fail("placement");
    return 0;
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return Fail("usage: kxac_consumer <index file>");
    if (std::strcmp(KXAvoidContainerVersion(), KXAC_PACKAGE_VERSION) != 0) return Fail("version");
    if (CheckIndex(argv[1]) != 0 || CheckPlacement() != 0) return 1;
    std::printf("consumer: index, placement and version %s\n", KXAvoidContainerVersion());
    return 0;
}
