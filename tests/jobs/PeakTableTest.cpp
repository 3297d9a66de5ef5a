// What is kept of a file's sound, and what of it is read next.

#include "PeakTable.h"
#include "PeakPlan.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace velmora::test {
namespace {

std::vector<SoundPeak> silentBut(std::size_t place, SoundPeak peak) {
    std::vector<SoundPeak> peaks(kPeaksPerBlock);
    peaks.at(place) = peak;
    return peaks;
}

TEST(PeakTable, extremes_areOfAllKnownPeaksInRange) {
    PeakTable table;
    table.put(1, silentBut(5, {-9, 0}));
    table.put(2, silentBut(0, {0, 7}));
    EXPECT_EQ(table.extremes(kPeaksPerBlock, 3 * kPeaksPerBlock), (SoundPeak{-9, 7}));
    EXPECT_EQ(table.extremes(kPeaksPerBlock + 5, kPeaksPerBlock + 6), (SoundPeak{-9, 0}));
    EXPECT_EQ(table.extremes(kPeaksPerBlock + 6, 2 * kPeaksPerBlock), SoundPeak());
    EXPECT_EQ(table.extremes(2 * kPeaksPerBlock - 1, 2 * kPeaksPerBlock + 1), (SoundPeak{0, 7}));
    EXPECT_EQ(table.extremes(0, 3 * kPeaksPerBlock), (SoundPeak{-9, 7})); // as far as it is known
}

TEST(PeakTable, unknown_hasNone) {
    PeakTable table;
    table.put(1, {});
    EXPECT_FALSE(table.extremes(0, kPeaksPerBlock).has_value());
    EXPECT_FALSE(table.extremes(2 * kPeaksPerBlock, 2 * kPeaksPerBlock + 1).has_value());
    EXPECT_FALSE(table.isKnown(0));
    EXPECT_TRUE(table.isKnown(1));
}

TEST(PeakTable, afterTheEnd_isSilent) {
    PeakTable table;
    table.endAt(3);
    EXPECT_TRUE(table.isKnown(3));
    EXPECT_FALSE(table.isKnown(2));
    EXPECT_EQ(table.extremes(3 * kPeaksPerBlock, 4 * kPeaksPerBlock), SoundPeak());
    table.endAt(5); // the first end counts
    EXPECT_TRUE(table.isKnown(3));
}

TEST(PeakTable, twoHours_takeLessThanTwoMebibytes) {
    PeakTable table;
    constexpr std::int64_t kTwoHours = std::int64_t{7200} * 1'000'000 / kPeakBlockUs + 1;
    for (std::int64_t block = 0; block < kTwoHours; ++block) {
        table.put(block, {});
    }
    EXPECT_LT(table.bytes(), std::size_t{2} << 20);
    EXPECT_GT(table.bytes(), std::size_t{1} << 20);
}

/// The blocks that are still to be read, and in which order they are.
class PeakPlanTest : public ::testing::Test {
protected:
    std::optional<PeakBlocks> next(PeakBlocks visible) {
        const auto found = nextToRead({0, 20}, visible, [this](std::int64_t block) {
            EXPECT_GE(block, 0);
            EXPECT_LT(block, 20);
            return !read_.contains(block);
        });
        for (std::int64_t i = 0; found && i < found->count; ++i) {
            EXPECT_TRUE(read_.insert(found->first + i).second);
        }
        return found;
    }

    std::set<std::int64_t> read_;
};

TEST_F(PeakPlanTest, wholeFileVisible_isReadFromItsBeginning) {
    EXPECT_EQ(next({0, 20}), (PeakBlocks{0, 6}));
    EXPECT_EQ(next({0, 20}), (PeakBlocks{6, 6}));
    EXPECT_EQ(next({0, 20}), (PeakBlocks{12, 6}));
    EXPECT_EQ(next({0, 20}), (PeakBlocks{18, 2}));
    EXPECT_FALSE(next({0, 20}).has_value());
}

TEST_F(PeakPlanTest, visiblePart_comesFirstThenOutwards) {
    const PeakBlocks visible{9, 2};
    EXPECT_EQ(next(visible), (PeakBlocks{9, 2}));
    EXPECT_EQ(next(visible), (PeakBlocks{11, 6}));
    EXPECT_EQ(next(visible), (PeakBlocks{3, 6}));
    EXPECT_EQ(next(visible), (PeakBlocks{17, 3}));
    EXPECT_EQ(next(visible), (PeakBlocks{0, 3}));
    EXPECT_FALSE(next(visible).has_value());
}

TEST_F(PeakPlanTest, whatIsRead_isLeftOut) {
    read_ = {0, 1, 2, 5};
    EXPECT_EQ(next({0, 20}), (PeakBlocks{3, 2}));
    EXPECT_EQ(next({0, 20}), (PeakBlocks{6, 6}));
}

TEST_F(PeakPlanTest, visiblePartOutside_readsTheNearest) {
    EXPECT_EQ(next({1000, 5}), (PeakBlocks{14, 6}));
    EXPECT_EQ(next({-50, 5}), (PeakBlocks{0, 6}));
}

TEST_F(PeakPlanTest, nothingToRead_isNothing) {
    EXPECT_FALSE(nextToRead({0, 0}, {0, 0}, [](std::int64_t) { return true; }).has_value());
}

} // namespace
} // namespace velmora::test
