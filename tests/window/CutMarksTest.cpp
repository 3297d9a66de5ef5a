#include "CutMarks.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

/// The marks at the ends of a video of 4 s.
class CutMarksTest : public ::testing::Test {
protected:
    static constexpr float kDuration = 4.0F;

    void expectMarks(std::int64_t startMs, std::int64_t endMs) const {
        EXPECT_EQ(marks_.mStartValMs, startMs);
        EXPECT_EQ(marks_.mEndValMs, endMs);
    }

    CutMarks marks_{0, 4000};
};

TEST_F(CutMarksTest, start_beforeTheEnd_leavesTheEnd) {
    marks_.markEnd(3.0F);
    EXPECT_FALSE(marks_.markStart(1.25F, kDuration));
    expectMarks(1250, 3000);
    EXPECT_EQ(marks_.lengthMs(), 1750);
}

TEST_F(CutMarksTest, start_atTheEnd_movesTheEndToTheDuration) {
    marks_.markEnd(2.0F);
    EXPECT_TRUE(marks_.markStart(2.0F, kDuration));
    expectMarks(2000, 4000);
}

TEST_F(CutMarksTest, start_pastTheEnd_movesTheEndToTheDuration) {
    marks_.markEnd(2.0F);
    EXPECT_TRUE(marks_.markStart(3.0F, kDuration));
    expectMarks(3000, 4000);
}

TEST_F(CutMarksTest, end_afterTheStart_leavesTheStart) {
    marks_.markStart(1.0F, kDuration);
    EXPECT_FALSE(marks_.markEnd(1.001F));
    EXPECT_EQ(marks_.mStartValMs, 1000);
}

TEST_F(CutMarksTest, end_atTheStart_movesTheStartTo0) {
    marks_.markStart(2.0F, kDuration);
    EXPECT_TRUE(marks_.markEnd(2.0F));
    expectMarks(0, 2000);
}

TEST_F(CutMarksTest, end_beforeTheStart_movesTheStartTo0) {
    marks_.markStart(3.0F, kDuration);
    EXPECT_TRUE(marks_.markEnd(2.0F));
    expectMarks(0, 2000);
}

TEST_F(CutMarksTest, partOfAMillisecond_isCutOff) {
    marks_.markStart(0.0019F, kDuration);
    marks_.markEnd(1.356F); // a little less, in single precision
    expectMarks(1, 1355);
}

} // namespace
} // namespace velmora::test
