// Uses the installed library as a native user would: the grid index saved to the file named by
// the first argument and loaded back, a small placement pass, and the version.
// Exit status 0 when everything matches.
#include <KXAvoidContainer/KXAvoidContainer.h>
#include <KXAvoidContainer/index/RLEIndex.h>
#include <KXAvoidContainer/placement/AvoidContainer.h>

#include <cstdio>
#include <cstring>

namespace {
int Fail(const char* what) {
    std::fprintf(stderr, "consumer: %s failed\n", what);
    return 1;
}

// Nine cells of level -2 with three bytes of metadata, saved to the file and loaded back.
bool IndexRoundTrips(const char* path) {
    CRLEIndex index, loaded;
    auto* level = new CRLEIndexCreate();
    level->Level(-2);
    level->Add(-5, 10, 3);
    level->Add(7, -1);
    index.Append(level);
    index.Metadata(reinterpret_cast<const unsigned char*>("map"), 3);
    index.Save(path);  // false whatever happens: the load tells
    const bool read = loaded.Load(path);
    std::remove(path);
    CRLEIndexCursor cursor(&loaded);
    int cells = 0, l = 0, r = 0, c = 0;
    while (cursor.Next(&l, &r, &c))
        ++cells;
    return read && cells == 9 && loaded.IsExist(-2, 7, -1) && loaded.MetaData(nullptr, 0) == 3;
}

// A forced 10 x 10 square, then a square over it that can move 20 cells right: placed there.
bool SquarePlacedBeside() {
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
    return pass.PlacedObjects().size() == 2 && label->Offset() == Location(20, 0);
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return Fail("usage: kxac_consumer <index file>");
    if (std::strcmp(KXAvoidContainerVersion(), KXAC_PACKAGE_VERSION) != 0) return Fail("version");
    if (!IndexRoundTrips(argv[1])) return Fail("index");
    if (!SquarePlacedBeside()) return Fail("placement");
    std::printf("consumer: index, placement and version %s\n", KXAvoidContainerVersion());
    return 0;
}
