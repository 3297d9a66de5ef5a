#include "PathParts.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(PathParts, extension_isWhatFollowsTheLastDot) {
    EXPECT_EQ(pathExtension("/a/clip.tar.MP4"), "MP4");
    EXPECT_EQ(pathExtension("clip.mp4"), "mp4");
    EXPECT_EQ(pathExtension("/a/.hidden"), "hidden");
}

TEST(PathParts, extension_nameWithoutOne_isEmpty) {
    EXPECT_EQ(pathExtension("/a.b/clip"), "");
    EXPECT_EQ(pathExtension("/a/clip."), "");
    EXPECT_EQ(pathExtension(""), "");
}

TEST(PathParts, name_losesItsLastExtensionOnly) {
    EXPECT_EQ(fileNameWithoutExtension("/a/clip.tar.mp4"), "clip.tar");
    EXPECT_EQ(fileNameWithoutExtension("/a.b/clip"), "clip");
    EXPECT_EQ(fileNameWithoutExtension("/a/.hidden"), "");
    EXPECT_EQ(fileNameWithoutExtension("/a/clip."), "clip.");
    EXPECT_EQ(fileNameWithoutExtension("/a/日本.mov"), "日本");
}

} // namespace
} // namespace velmora::test
