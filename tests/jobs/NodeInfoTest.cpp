#include "NodeInfo.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(NodeInfoTest, newItem_isReady) {
    EXPECT_EQ(stateText(NodeInfo().converteState), "Ready");
}

TEST(NodeInfoTest, stateText_namesTheResultsOfARun) {
    EXPECT_EQ(stateText(Completed), "Completed");
    EXPECT_EQ(stateText(Failure), "Failure");
}

TEST(NodeInfoTest, stateText_ofWhatIsNoResult_isNull) {
    for (const int other : {-1, 3, 255}) {
        EXPECT_TRUE(stateText(other).isNull()) << other;
    }
}

} // namespace
} // namespace velmora::test
