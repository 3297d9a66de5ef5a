#include "ConverterThread.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace velmora::test {
namespace {

TEST(ConverterThreadParsingTest, firstWords_areTakenAsNumbers) {
    EXPECT_EQ(ConverterThread::getChannel("2 (Stereo)"), 2);
    EXPECT_EQ(ConverterThread::getChannel(" 2"), 0);
    EXPECT_EQ(ConverterThread::getBitRate("128 kbps"), 128000);
    EXPECT_EQ(ConverterThread::getBitRate("kbps 128"), 0);
    EXPECT_EQ(ConverterThread::getSamplerate("44100Hz"), 44100);
    EXPECT_EQ(ConverterThread::getSamplerate("-1"), -1);
    EXPECT_EQ(ConverterThread::getFrameRate("29.97 fps"), 29.97);
    EXPECT_EQ(ConverterThread::getFrameRate("+24fps"), 24.0);
    EXPECT_EQ(ConverterThread::getFrameRate("fast"), 0.0);
}

TEST(ConverterThreadParsingTest, resolutions_areSplitAtTheX) {
    EXPECT_EQ(ConverterThread::getWidthFromResolution("640x480"), 640);
    EXPECT_EQ(ConverterThread::getHeightFromResolution("640x480"), 480);
    EXPECT_EQ(ConverterThread::getHeightFromResolution("1280x720 HD"), 720);
    EXPECT_EQ(ConverterThread::getHeightFromResolution("1x2x3"), 2);
    EXPECT_EQ(ConverterThread::getWidthFromResolution("640"), 640);
    EXPECT_EQ(ConverterThread::getHeightFromResolution("640"), 0);
}

TEST(ConverterThreadParsingTest, getExt_labels_giveTheirExtension) {
    EXPECT_EQ(ConverterThread::getExt("MPEG-4 (*.mp4)"), "mp4");
    EXPECT_EQ(ConverterThread::getExt("H.264 (*.a*.b)"), "a*.b");
    EXPECT_EQ(ConverterThread::getExt("*."), "");
    EXPECT_THROW(ConverterThread::getExt("MPEG-4 (mp4)"), std::invalid_argument);
}

TEST(ConverterThreadParsingTest, getFileNameExceptExtensiton_paths_giveTheNameToItsFirstDot) {
    EXPECT_EQ(ConverterThread::getFileNameExceptExtensiton("/folder.x/a.b.mp4"), "a");
    EXPECT_EQ(ConverterThread::getFileNameExceptExtensiton("name"), "name");
    EXPECT_EQ(ConverterThread::getFileNameExceptExtensiton("/x/.hidden"), "");
}

} // namespace
} // namespace velmora::test
