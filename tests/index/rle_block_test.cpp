// The big-endian block of an index and of its levels: golden bytes, random round trips through
// memory and files, and what the loaders refuse.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "index/RLEIndex.h"

namespace {
using Bytes = std::vector<unsigned char>;

// 32-bit big-endian words, each given as a signed or unsigned value, after the given prefix.
Bytes BE(std::initializer_list<long long> words, Bytes out = {}) {
    for (long long w : words) {
        for (int shift = 24; shift >= 0; shift -= 8)
            out.push_back((w >> shift) & 0xFF);
    }
    return out;
}

Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& p : parts)
        out.insert(out.end(), p.begin(), p.end());
    return out;
}

const Bytes kSignature = {0x52, 0x4C, 0x45, 0x00};
const Bytes kHeader = BE({0}, kSignature);  // no metadata
// Level 2, start row 10: row 10 = [5, 7], row 11 empty.
const Bytes kSmallLevel = BE({36, 0, 2, 10, 2, 1, 5, 7, 0});
// A band reaching past the largest row.
const Bytes kWrappingBand = BE({36, 0, 3, 0x7FFFFFFF, 2, 0, 1, 5, 7});

CRLEIndexCreate* SmallLevel() {
    auto* grid = new CRLEIndexCreate();
    grid->Level(2);
    grid->Add(10, 5, 7);
    grid->Add(11, 0);
    grid->Erase(11, 0);
    return grid;
}

Bytes SaveIndex(const CRLEIndex& index) {
    Bytes block(static_cast<size_t>(index.BlockLength()));
    block.resize(static_cast<size_t>(index.Save(block.data(), static_cast<int>(block.size()))));
    return block;
}

// Loads from a heap copy of exactly length bytes, so that any read past them is caught.
template <class Target>
int LoadExact(Target& target, const Bytes& bytes, size_t length = SIZE_MAX) {
    length = std::min(length, bytes.size());
    std::unique_ptr<unsigned char[]> copy(new unsigned char[length + 1]);
    std::copy(bytes.begin(), bytes.begin() + static_cast<long>(length), copy.get());
    return target.Load(copy.get(), static_cast<int>(length));
}

// Level number, start row, row count, then each row's run count and runs.
std::vector<int> Dump(const CRLEIndexQuery& level) {
    std::vector<int> out = {level.Level(), level.StartRow(), level.RowCount()};
    for (int row = level.StartRow(); row < level.StartRow() + level.RowCount(); ++row) {
        out.push_back(static_cast<int>(level.RowRuns(row)->size()));
        for (const RLE& r : *level.RowRuns(row))
            out.insert(out.end(), {r.start, r.end});
    }
    return out;
}
// The level range, then every level.
std::vector<std::vector<int>> Dump(const CRLEIndex& index) {
    std::vector<std::vector<int>> out = {{index.MinLevel(), index.MaxLevel()}};
    for (int i = 0; i < index.LevelCount(); ++i)
        out.push_back(Dump(*index.LevelAt(i)));
    return out;
}

void FillRandom(CRLEIndex& index, std::mt19937& gen) {
    std::uniform_int_distribution<int> small(-50, 50);
    std::uniform_int_distribution<int> wide(INT32_MIN, INT32_MAX);
    std::uniform_int_distribution<int> count(1, 6);
    for (int l = count(gen); l > 0; --l) {
        auto* grid = new CRLEIndexCreate();
        grid->Level(small(gen));
        const int base = small(gen) * 1000;
        for (int s = count(gen) * 4; s > 0; --s) {
            const bool far = s % 5 == 0;
            grid->Add(base + small(gen) / 5, far ? wide(gen) : small(gen),
                      far ? wide(gen) : small(gen));
        }
        index.Append(grid);
    }
    Bytes meta(static_cast<size_t>(count(gen) - 1));
    for (auto& b : meta)
        b = static_cast<unsigned char>(gen());
    index.Metadata(meta.data(), static_cast<int>(meta.size()));
}

// A file in the temporary directory, removed with the object.
struct TempFile {
    const std::string dir = std::filesystem::temp_directory_path().string();
    const std::string path = dir + "/rleidx-" + std::to_string(getpid());
    ~TempFile() { std::remove(path.c_str()); }
    Bytes Read() const {
        std::ifstream in(path, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(in), {});
    }
    void Write(const Bytes& b) const {
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(b.data()), static_cast<std::streamsize>(b.size()));
    }
};
}  // namespace

// What Save writes, byte by byte. Reading these bytes back is held to the same layout by the
// random round trips below and by the index load test, which loads this level's bytes.
TEST(RleBlock, GoldenIndexAndLevelBytes) {
    CRLEIndex index;
    const Bytes meta = {0xAB, 0x00, 0x7F};
    index.Metadata(meta.data(), 3);
    const Bytes header = Cat({BE({3}, kSignature), meta});
    EXPECT_EQ(index.BlockLength(), 11);
    EXPECT_EQ(SaveIndex(index), header);
    std::unique_ptr<CRLEIndexCreate> level(SmallLevel());
    Bytes block(static_cast<size_t>(level->BlockLength()));
    EXPECT_EQ(level->Save(block.data(), 36), 36);
    EXPECT_EQ(block, kSmallLevel);
}

TEST(RleBlock, LevelsWithoutRowsOrRoomAreSkippedAndShortCapacitiesWriteNothing) {
    CRLEIndex index;
    index.Append(new CRLEIndexCreate());
    EXPECT_EQ(index.LevelAt(0)->BlockLength(), 20);
    EXPECT_EQ(index.BlockLength(), 28);
    EXPECT_EQ(SaveIndex(index), kHeader);
    // A level too long for the room left is skipped and the next one tried.
    auto* big = new CRLEIndexCreate();
    big->Add(0, 0, 1);
    big->Add(1, 5, 6);
    index.Append(big);
    index.Append(SmallLevel());
    Bytes block(8 + 36);
    EXPECT_EQ(index.Save(block.data(), 8 + 36), 8 + 36);
    EXPECT_EQ(block, Cat({kHeader, kSmallLevel}));
    // No room for the header or a level, or no buffer: nothing written, an empty level included.
    std::unique_ptr<CRLEIndexCreate> level(SmallLevel());
    CRLEIndex withMeta;
    withMeta.Metadata(block.data(), 3);
    const Bytes untouched = block = Bytes(64, 0xEE);
    for (int capacity : {-1, INT32_MIN, 7}) {
        EXPECT_EQ(index.Save(block.data(), capacity), 0) << capacity;
        EXPECT_EQ(level->Save(block.data(), capacity), 0) << capacity;
    }
    EXPECT_EQ(withMeta.Save(block.data(), 10), 0);
    EXPECT_EQ(level->Save(block.data(), 35), 0);
    EXPECT_EQ(level->Save(nullptr, 64), 0);
    EXPECT_EQ(index.LevelAt(0)->Save(block.data(), 64), 0);
    EXPECT_EQ(block, untouched);
}

TEST(RleBlock, RandomIndexesRoundTripThroughMemoryAndFiles) {
    std::mt19937 gen(13);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        CRLEIndex index;
        FillRandom(index, gen);
        const Bytes block = SaveIndex(index);
        CRLEIndex loaded;
        ASSERT_EQ(LoadExact(loaded, block), index.BlockLength());
        EXPECT_EQ(Dump(loaded), Dump(index));
        EXPECT_EQ(SaveIndex(loaded), block);
        // Cut anywhere, a block keeps its header and the whole levels before the cut.
        const size_t cut = gen() % (block.size() + 1);
        size_t end = 8 + static_cast<size_t>(index.MetaData(nullptr, 0)), levels = 0;  // header
        for (size_t next = end; cut >= end && static_cast<int>(levels) < loaded.LevelCount() &&
                                (next += loaded.LevelAt(levels)->BlockLength()) <= cut;)
            end = next, ++levels;
        CRLEIndex part;
        EXPECT_EQ(LoadExact(part, block, cut), cut < end ? 0 : static_cast<int>(end)) << cut;
        EXPECT_EQ(part.LevelCount(), static_cast<int>(levels)) << cut;
        if (round % 10 != 0) continue;
        TempFile file;
        EXPECT_FALSE(index.Save(file.path.c_str()));  // never reports success
        EXPECT_EQ(file.Read(), block);
        CRLEIndex fromFile;
        EXPECT_TRUE(fromFile.Load(file.path.c_str()));
        EXPECT_EQ(Dump(fromFile), Dump(index));
    }
}

// Each block is loaded into level 9 holding the cell (9, 9): what is consumed, and the level
// number, start row, rows and cells left; a negative count throws instead.
TEST(RleBlock, LevelLoadRefusesBadLengthsCountsAndBands) {
    struct Refusal {
        Bytes bytes;
        int consumed, level, startRow, rows, cells;
        bool throws;
    };
    const Refusal cases[] = {
        {BE({20, 0, 1, 0, 0, 0}), 0, 9, 9, 1, 1, false},            // length of 20
        {BE({20, 0, 1, 0, 0}), 0, 9, 9, 1, 1, false},               // 20 bytes: the header alone
        {BE({37, 0, 2, 10, 2, 1, 5, 7, 0}), 0, 9, 9, 1, 1, false},  // length past the bytes
        {BE({28, 0, 4, 3, 2, 0, 1, 4, 6}), 0, 4, 3, 2, 3, false},   // row 2 ends past length
        {BE({24, 0, 5, 0, 0x7FFFFFFF, 0}), 0, 5, 0, 1, 0, false},   // rows beyond the bytes
        {BE({36, 0, 0, 7, 2, 1, 3, 3, 0x10000000}), 0, 0, 7, 1, 1, false},  // runs beyond the bytes
        {Cat({BE({21, 0, 1, 4, 0}), {0}}), 21, 1, 4, 0, 0, false},          // no rows: all consumed
        // Two runs in the 14 bytes left: refused before any is read.
        {Cat({BE({38, 0, 1, 4, 1, 2, 5, 7, 9}), {0, 0}}), 0, 1, 4, 0, 0, false},
        // A band reaching past the largest row is refused; one ending on it is the largest there
        // is.
        {kWrappingBand, 0, 9, 9, 1, 1, false},
        {BE({36, 0, 3, 0x7FFFFFFE, 2, 0, 1, 5, 7}), 36, 3, 0x7FFFFFFE, 2, 3, false},
        {BE({24, 0, 0, 0, -1, 0}), 0, 0, 0, 0, 0, true},
        {BE({24, 0, 0, 0, 1, -1}), 0, 0, 0, 0, 0, true},
    };
    for (const Refusal& c : cases) {
        SCOPED_TRACE("case " + std::to_string(&c - cases));
        CRLEIndexCreate level;
        level.Level(9);
        level.Add(9, 9);
        try {
            EXPECT_EQ((std::vector<int>{LoadExact(level, c.bytes), level.Level(), level.StartRow(),
                                        level.RowCount(), level.Count()}),
                      (std::vector<int>{c.consumed, c.level, c.startRow, c.rows, c.cells}));
            EXPECT_FALSE(c.throws);
        } catch (const std::length_error& e) {
            EXPECT_TRUE(c.throws);
            EXPECT_STREQ(e.what(), "vector::reserve");
        }
    }
}

TEST(RleBlock, IndexLoadStopsAtRefusedLevelAndKeepsMetadataOnBadHeader) {
    // A refused level ends the load after the levels before it.
    CRLEIndex index;
    EXPECT_EQ(LoadExact(index, Cat({kHeader, BE({37}), kSmallLevel})), 8);
    EXPECT_EQ(index.LevelCount(), 0);
    EXPECT_EQ(LoadExact(index, kHeader), 8);  // the header alone is a whole block
    unsigned char none[1];
    EXPECT_EQ(index.MetaData(none, 1), 0);  // and holds no metadata to copy
    EXPECT_EQ(LoadExact(index, Cat({kHeader, kSmallLevel, BE({28, 0, 4, 3, 2, 0, 1, 4, 6})})), 44);
    EXPECT_EQ(Dump(index), (std::vector<std::vector<int>>{{2, 2}, {2, 10, 2, 1, 5, 7, 0}}));
    EXPECT_EQ(LoadExact(index, Cat({kHeader, kSmallLevel, kWrappingBand})), 44);
    // A wrong signature, or a metadata length the block cannot hold: nothing read.
    const Bytes meta = {5, 6};
    index.Metadata(meta.data(), 2);
    Bytes below = SaveIndex(index), above = below;
    below[2] = 0x44, above[2] = 0x46;  // either side of the signature's byte
    EXPECT_EQ(std::make_pair(LoadExact(index, below), LoadExact(index, above)),
              std::make_pair(0, 0));
    EXPECT_EQ(Dump(index), (std::vector<std::vector<int>>{{999, -999}}));
    EXPECT_EQ(index.MetaData(nullptr, 0), 2);
    for (long long m : {-1LL, -8LL, -2147483648LL, 3LL, 2147483647LL}) {
        EXPECT_EQ(LoadExact(index, BE({m, 0}, kSignature), 10), 0) << "M " << m;
        EXPECT_EQ(index.MetaData(nullptr, 0), 2) << "M " << m;
    }
    // Files too short to hold a level are not read; missing files and folders give false.
    index.Append(SmallLevel());
    TempFile file;
    file.Write(Bytes(19, 0));
    EXPECT_FALSE(index.Load(file.path.c_str()));
    EXPECT_EQ(index.LevelCount(), 1);
    file.Write(Cat({kHeader, BE({0, 0, 0})}));
    EXPECT_FALSE(index.Load(file.path.c_str()));
    EXPECT_EQ(index.LevelCount(), 0);
    EXPECT_FALSE(index.Load((file.dir + "/rleidx-missing").c_str()));
}
