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

const Bytes kHeader = {0x52, 0x4C, 0x45, 0x00, 0, 0, 0, 0};  // signature, no metadata
// Level 2, start row 10: row 10 = [5, 7], row 11 empty.
const Bytes kSmallLevel = {0, 0, 0, 0x24, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0x0A, 0, 0,
                           0, 2, 0, 0,    0, 1, 0, 0, 0, 5, 0, 0, 0, 7, 0, 0,    0, 0};

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
std::vector<std::vector<int>> Dump(const CRLEIndex& index) {
    std::vector<std::vector<int>> out;
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
    const std::string path =
        (std::filesystem::temp_directory_path() / ("rleidx-" + std::to_string(getpid()))).string();
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

TEST(RleBlock, GoldenIndexAndLevelBytesBothWays) {
    CRLEIndex index;
    const Bytes meta = {0xAB, 0x00, 0x7F};
    index.Metadata(meta.data(), 3);
    const Bytes header = Cat({BE({3}, {0x52, 0x4C, 0x45, 0x00}), meta});
    EXPECT_EQ(index.BlockLength(), 11);
    EXPECT_EQ(SaveIndex(index), header);
    Bytes out(3);
    EXPECT_EQ(index.Save(out.data(), 10), 0);  // no room for the metadata: nothing written
    CRLEIndex loaded;
    EXPECT_EQ(LoadExact(loaded, header), 11);
    EXPECT_EQ(loaded.MetaData(out.data(), 3), 3);
    EXPECT_EQ(out, meta);

    std::unique_ptr<CRLEIndexCreate> level(SmallLevel());
    EXPECT_EQ(level->BlockLength(), 36);
    Bytes block(36);
    EXPECT_EQ(level->Save(block.data(), 35), 0);
    EXPECT_EQ(level->Save(block.data(), 36), 36);
    EXPECT_EQ(block, kSmallLevel);
    CRLEIndexCreate back;
    EXPECT_EQ(LoadExact(back, kSmallLevel), 36);
    EXPECT_EQ(Dump(back), Dump(*level));
    back.Clear();
    back.Level(-3);
    back.Add(-2, -7, -5);
    EXPECT_EQ(back.Save(block.data(), 32), 32);
    block.resize(32);
    EXPECT_EQ(block, BE({32, 0, -3, -2, 1, 1, -7, -5}));
}

TEST(RleBlock, LevelsWithoutRowsOrRoomAreSkipped) {
    CRLEIndexCreate empty;
    EXPECT_EQ(empty.BlockLength(), 20);
    Bytes block(64, 0xEE);
    EXPECT_EQ(empty.Save(block.data(), 64), 0);
    EXPECT_EQ(block, Bytes(64, 0xEE));
    CRLEIndex index;
    index.Append(new CRLEIndexCreate());
    EXPECT_EQ(index.BlockLength(), 28);
    EXPECT_EQ(SaveIndex(index), kHeader);
    // A level too long for the room left is skipped and the next one tried.
    auto* big = new CRLEIndexCreate();
    big->Add(0, 0, 1);
    big->Add(1, 5, 6);
    index.Append(big);
    index.Append(SmallLevel());
    block.resize(8 + 36);
    EXPECT_EQ(index.Save(block.data(), 8 + 36), 8 + 36);
    EXPECT_EQ(block, Cat({kHeader, kSmallLevel}));
}

TEST(RleBlock, NegativeCapacityWritesNothing) {
    CRLEIndex index;
    index.Append(SmallLevel());
    std::unique_ptr<CRLEIndexCreate> level(SmallLevel());
    Bytes block(64, 0xEE);
    for (int capacity : {-1, INT32_MIN}) {
        EXPECT_EQ(index.Save(block.data(), capacity), 0);
        EXPECT_EQ(level->Save(block.data(), capacity), 0);
    }
    EXPECT_EQ(block, Bytes(64, 0xEE));
}

TEST(RleBlock, RandomIndexesRoundTripThroughMemoryAndFiles) {
    const unsigned seed = 13;
    std::mt19937 gen(seed);
    for (int round = 0; round < 200; ++round) {
        CRLEIndex index;
        FillRandom(index, gen);
        const Bytes block = SaveIndex(index);
        ASSERT_EQ(static_cast<int>(block.size()), index.BlockLength()) << "seed " << seed;
        CRLEIndex loaded;
        ASSERT_EQ(LoadExact(loaded, block), index.BlockLength()) << "seed " << seed;
        EXPECT_EQ(Dump(loaded), Dump(index)) << "seed " << seed;
        EXPECT_EQ(loaded.MinLevel(), index.MinLevel()) << "seed " << seed;
        EXPECT_EQ(loaded.MaxLevel(), index.MaxLevel()) << "seed " << seed;
        EXPECT_EQ(SaveIndex(loaded), block) << "seed " << seed;
        if (round % 10 != 0) continue;
        TempFile file;
        EXPECT_FALSE(index.Save(file.path.c_str()));  // never reports success
        EXPECT_EQ(file.Read(), block) << "seed " << seed;
        CRLEIndex fromFile;
        EXPECT_TRUE(fromFile.Load(file.path.c_str())) << "seed " << seed;
        EXPECT_EQ(Dump(fromFile), Dump(index)) << "seed " << seed;
    }
}

TEST(RleBlock, TruncatedBlocksKeepWholeLevelsOnly) {
    CRLEIndex index;
    const Bytes meta = {1, 2};
    index.Metadata(meta.data(), 2);
    index.Append(SmallLevel());
    auto* second = new CRLEIndexCreate();
    second->Add(-5, 3, 9);
    index.Append(second);
    const Bytes block = SaveIndex(index);
    ASSERT_EQ(block.size(), 10u + 36u + 32u);
    for (size_t length = 0; length <= block.size(); ++length) {
        CRLEIndex loaded;
        const int levels = length < 46 ? 0 : length < block.size() ? 1 : 2;
        const int expected = length < 10 ? 0 : levels == 0 ? 10 : levels == 1 ? 46 : 78;
        EXPECT_EQ(LoadExact(loaded, block, length), expected) << "length " << length;
        EXPECT_EQ(loaded.LevelCount(), levels) << "length " << length;
    }
    for (size_t length = 0; length < kSmallLevel.size(); ++length) {
        CRLEIndexCreate level;
        level.Add(1, 1);
        EXPECT_EQ(LoadExact(level, kSmallLevel, length), 0) << "length " << length;
        EXPECT_EQ(Dump(level), (std::vector<int>{0, 1, 1, 1, 1, 1}));
    }
}

TEST(RleBlock, LevelLoadRefusesBadLengthsAndCounts) {
    Bytes longer = kSmallLevel;
    longer[3] = 0x25;
    // Level number and rows after the load: a refused length leaves level 9 with its one row.
    struct Refusal {
        Bytes bytes;
        int consumed, level, rows;
    };
    const Refusal cases[] = {
        {BE({20, 0, 1, 0, 0, 0}), 0, 9, 1},                    // length of 20
        {longer, 0, 9, 1},                                     // length past the bytes
        {BE({28, 0, 4, 3, 2, 0, 1, 4, 6}), 0, 4, 2},           // row 2 ends past the length
        {BE({24, 0, 5, 0, 0x7FFFFFFF, 0}), 0, 5, 1},           // rows beyond the bytes
        {BE({36, 0, 0, 7, 2, 1, 3, 3, 0x10000000}), 0, 0, 1},  // runs beyond the bytes
        {Cat({BE({21, 0, 1, 4, 0}), {0}}), 21, 1, 0},          // no rows: whole length consumed
    };
    for (const Refusal& c : cases) {
        const int line = static_cast<int>(&c - cases);
        CRLEIndexCreate level;
        level.Level(9);
        level.Add(9, 9);
        EXPECT_EQ(LoadExact(level, c.bytes), c.consumed) << "case " << line;
        EXPECT_EQ(level.Level(), c.level) << "case " << line;
        EXPECT_EQ(level.RowCount(), c.rows) << "case " << line;
    }
    CRLEIndexCreate level;
    LoadExact(level, cases[2].bytes);
    EXPECT_TRUE(level.IsExist(4, 5));
    LoadExact(level, cases[5].bytes);
    EXPECT_EQ(level.StartRow(), 4);
    // Within an index a refused level ends the load after the levels before it.
    CRLEIndex index;
    EXPECT_EQ(LoadExact(index, Cat({kHeader, longer})), 8);
    EXPECT_EQ(index.LevelCount(), 0);
    EXPECT_EQ(LoadExact(index, Cat({kHeader, kSmallLevel, cases[2].bytes})), 44);
    EXPECT_EQ(index.LevelCount(), 1);
    EXPECT_EQ(index.MinLevel(), 2);
    EXPECT_EQ(index.MaxLevel(), 2);
}

TEST(RleBlock, NegativeCountsThrowLengthError) {
    for (const Bytes& bad : {BE({24, 0, 0, 0, -1, 0}), BE({24, 0, 0, 0, 1, -2})}) {
        CRLEIndexCreate level;
        try {
            LoadExact(level, bad);
            ADD_FAILURE() << "negative count accepted";
        } catch (const std::length_error& e) {
            EXPECT_STREQ(e.what(), "vector::reserve");
        }
    }
}

TEST(RleBlock, WrongSignatureOrImpossibleMetadataKeepsMetadata) {
    CRLEIndex index;
    const Bytes meta = {5, 6};
    index.Metadata(meta.data(), 2);
    index.Append(SmallLevel());
    Bytes block = SaveIndex(index);
    block[2] = 0x46;
    EXPECT_EQ(LoadExact(index, block), 0);
    EXPECT_EQ(index.LevelCount(), 0);
    EXPECT_EQ(index.MinLevel(), 999);
    EXPECT_EQ(index.MetaData(nullptr, 0), 2);
    for (long long m : {-1LL, -8LL, -2147483648LL, 3LL, 2147483647LL}) {
        EXPECT_EQ(LoadExact(index, BE({m, 0}, {0x52, 0x4C, 0x45, 0x00}), 10), 0) << "M " << m;
        EXPECT_EQ(index.MetaData(nullptr, 0), 2) << "M " << m;
    }
}

TEST(RleBlock, ShortOrMissingFilesGiveFalse) {
    CRLEIndex index;
    index.Append(SmallLevel());
    TempFile file;
    file.Write(Bytes(19, 0));
    EXPECT_FALSE(index.Load(file.path.c_str()));
    EXPECT_EQ(index.LevelCount(), 1);  // not read at all
    file.Write(Cat({kHeader, BE({0, 0, 0})}));
    EXPECT_FALSE(index.Load(file.path.c_str()));
    EXPECT_EQ(index.LevelCount(), 0);
    const std::string dir = std::filesystem::temp_directory_path().string();
    EXPECT_FALSE(index.Load((dir + "/rleidx-missing").c_str()));
    EXPECT_FALSE(index.Save((dir + "/rleidx-missing/x").c_str()));
}

// A band reaching past the largest row once loaded: its cursor listed cells that IsExist denied,
// and a later Add asked for tens of gigabytes.
TEST(RleBlock, LevelWhoseBandWrapsPastTheLargestRowIsRefused) {
    CRLEIndexCreate level;
    level.Level(9);
    level.Add(9, 9);
    EXPECT_EQ(LoadExact(level, BE({36, 0, 3, 0x7FFFFFFF, 2, 0, 1, 5, 7})), 0);
    EXPECT_EQ(level.Level(), 9);
    EXPECT_EQ(level.RowCount(), 1);
    EXPECT_EQ(LoadExact(level, BE({36, 0, 3, 0x7FFFFFFE, 2, 0, 1, 5, 7})), 36);
    EXPECT_EQ(level.EndRow(), 0x7FFFFFFF);
    EXPECT_TRUE(level.IsExist(0x7FFFFFFF, 6));
    CRLEIndex index;
    EXPECT_EQ(
        LoadExact(index, Cat({kHeader, kSmallLevel, BE({36, 0, 3, 0x7FFFFFFF, 2, 0, 1, 5, 7})})),
        44);
    EXPECT_EQ(index.LevelCount(), 1);
}
