#include <gtest/gtest.h>

#include <vector>

#include "index/RLEIndex.h"

namespace {
CRLEIndexCreate* MakeLevel(int level, int row, int col0, int col1) {
    auto* grid = new CRLEIndexCreate();
    grid->Level(level);
    grid->Add(row, col0, col1);
    return grid;
}

// Counts its own destruction, so that ownership can be observed.
class CountedLevel : public CRLEIndexCreate {
public:
    explicit CountedLevel(int* destroyed) : m_destroyed(destroyed) {}
    ~CountedLevel() override { ++*m_destroyed; }

private:
    int* m_destroyed;
};
}  // namespace

TEST(RleIndex, AppendWidensLevelRangeKeepsDuplicatesAndClearEmpties) {
    CRLEIndex index;
    CRLEIndexCreate* first = MakeLevel(5, 0, 0, 2);
    CRLEIndexCreate* second = MakeLevel(2, 0, 10, 12);
    index.Append(first);
    index.Append(second);
    index.Append(MakeLevel(5, 1, 4, 4));
    index.Append(nullptr);  // ignored
    EXPECT_EQ(index.MinLevel(), 2);
    EXPECT_EQ(index.MaxLevel(), 5);
    EXPECT_EQ(index.LevelCount(), 3);
    EXPECT_EQ(index.LevelIndex(5), first);
    EXPECT_EQ(index.LevelIndex(2), second);
    EXPECT_EQ(index.LevelIndex(3), nullptr);
    // Any level of the asked number may hold the cell; other numbers never answer.
    EXPECT_TRUE(index.IsExist(5, 1, 4));
    EXPECT_TRUE(index.IsExist(2, 0, 11));
    EXPECT_FALSE(index.IsExist(2, 0, 1));
    EXPECT_FALSE(index.IsExist(3, 0, 1));
    EXPECT_EQ(index.Count(), 7);
    index.Clear();
    EXPECT_EQ(index.MinLevel(), 999);
    EXPECT_EQ(index.MaxLevel(), -999);
    EXPECT_EQ(index.LevelIndex(5), nullptr);
    EXPECT_FALSE(index.IsExist(5, 0, 0));
    EXPECT_EQ(index.Count(), 0);
}

TEST(RleIndex, ClearAndDestructorDestroyOwnedLevels) {
    int destroyed = 0;
    {
        CRLEIndex index;
        index.Append(new CountedLevel(&destroyed));
        index.Append(new CountedLevel(&destroyed));
        index.Clear();
        EXPECT_EQ(destroyed, 2);
        index.Append(new CountedLevel(&destroyed));
    }
    EXPECT_EQ(destroyed, 3);
}

TEST(RleIndex, MetadataCopiesOnlyIntoLargeEnoughBufferAndSurvivesClear) {
    CRLEIndex index;
    const std::vector<unsigned char> data = {9, 8, 7, 6};
    index.Metadata(data.data(), 4);
    index.Clear();
    std::vector<unsigned char> out(4, 0);
    EXPECT_EQ(index.MetaData(out.data(), 3), 4);
    EXPECT_EQ(out, std::vector<unsigned char>(4, 0));
    EXPECT_EQ(index.MetaData(out.data(), 4), 4);
    EXPECT_EQ(out, data);
    index.Metadata(data.data(), -5);
    EXPECT_EQ(index.MetaData(nullptr, 0), 0);
}
