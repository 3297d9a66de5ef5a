#include "ProbeSupport.h"
#include "TestMedia.h"

extern "C" {
#include <libavcodec/codec_id.h>
#include <libavutil/avutil.h>
}

#include <cstdint>
#include <string>

namespace velmora::test {
namespace {

TEST_F(Probe, sameFileTwice_saysTheSame) {
    const std::string path = mediaPath("h264-bframes.mp4");
    ASSERT_EQ(probeOf(path), 0);
    const std::int64_t durationUs = engine().durationUs;
    spoilResults();
    ASSERT_EQ(probeOf(path), 0);
    EXPECT_EQ(engine().durationUs, durationUs);
    EXPECT_EQ(engine().sourceWidth, 320);
}

TEST_F(Probe, thirtyThousandPicturesPerSecond_are29WithDenominator1001) {
    ASSERT_EQ(probeOf(mediaPath("rate-30000.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 29.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 30000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
}

TEST_F(Probe, oneThousandPicturesPerSecond_staySo) {
    ASSERT_EQ(probeOf(mediaPath("rate-1000.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 1000.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 1000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1);
}

TEST_F(Probe, ntscRates_areWholeNumbersBesideTheirFraction) {
    ASSERT_EQ(probeOf(mediaPath("h264-2997.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 29.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 30000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
    ASSERT_EQ(probeOf(mediaPath("h264-23976.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 23.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 24000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
}

TEST_F(Probe, audioOnlyFile_givesZeroSizeAndKeepsTheOldRate) {
    ASSERT_EQ(probeOf(mediaPath("h264-2997.mp4")), 0);
    ASSERT_EQ(probeOf(mediaPath("audio-only.m4a")), 0);
    EXPECT_EQ(engine().sourceWidth, 0);
    EXPECT_EQ(engine().sourceHeight, 0);
    EXPECT_EQ(engine().videoCodecId, 0);
    EXPECT_EQ(engine().videoBitRate, 0);
    EXPECT_EQ(engine().sourceFrameRate, 29.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 30000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
    EXPECT_EQ(engine().audioCodecId, AV_CODEC_ID_AAC);
}

TEST_F(Probe, videoOnlyFile_givesZerosForTheSound) {
    ASSERT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    ASSERT_EQ(probeOf(mediaPath("video-only.mp4")), 0);
    EXPECT_EQ(engine().audioStreamIndex, -1);
    EXPECT_EQ(engine().audioCodecId, 0);
    EXPECT_EQ(engine().audioChannels, 0);
    EXPECT_EQ(engine().audioSampleRate, 0);
    EXPECT_EQ(engine().audioBitRate, 0);
    EXPECT_EQ(engine().streamCount, 1);
}

TEST_F(Probe, severalStreamsOfAType_lastOfEachCounts) {
    ASSERT_EQ(probeOf(mediaPath("two-streams.mkv")), 0);
    EXPECT_EQ(engine().streamCount, 4);
    EXPECT_EQ(engine().videoStreamIndex, 2);
    EXPECT_EQ(engine().audioStreamIndex, 3);
    EXPECT_EQ(engine().videoCodecId, AV_CODEC_ID_MPEG4);
    EXPECT_EQ(engine().sourceWidth, 160);
    EXPECT_EQ(engine().sourceHeight, 120);
    EXPECT_EQ(engine().sourceFrameRate, 25.0);
    EXPECT_EQ(engine().audioCodecId, AV_CODEC_ID_MP3);
    EXPECT_EQ(engine().audioSampleRate, 48000);
}

TEST_F(Probe, cover_isNoVideoButCountsAsAStream) {
    for (const char* name : {"cover.mp3", "cover.m4a"}) {
        ASSERT_EQ(probeOf(mediaPath(name)), 0) << name;
        EXPECT_EQ(engine().streamCount, 2) << name;
        EXPECT_EQ(engine().videoStreamIndex, -1) << name;
        EXPECT_EQ(engine().sourceWidth, 0) << name;
        EXPECT_EQ(engine().videoCodecId, 0) << name;
    }
}

TEST_F(Probe, coverAfterTheVideo_videoCounts) {
    for (const char* name : {"cover.mp4", "cover.mkv"}) {
        ASSERT_EQ(probeOf(mediaPath(name)), 0) << name;
        EXPECT_EQ(engine().streamCount, 3) << name;
        EXPECT_EQ(engine().videoStreamIndex, 0) << name;
        EXPECT_EQ(engine().sourceWidth, 320) << name;
        EXPECT_EQ(engine().sourceHeight, 180) << name;
        EXPECT_EQ(engine().videoCodecId, AV_CODEC_ID_H264) << name;
        EXPECT_EQ(engine().sourceFrameRate, 30.0) << name;
    }
}

TEST_F(Probe, unknownDuration_givesNegativeSeconds) {
    for (const char* name : {"raw.h264", "raw.m4v", "piped.mkv", "pixel.png"}) {
        ASSERT_EQ(probeOf(mediaPath(name)), 0) << name;
        EXPECT_EQ(engine().durationUs, AV_NOPTS_VALUE) << name;
        EXPECT_LT(engine().durationSeconds, 0) << name;
        EXPECT_EQ(engine().durationFloor, 0) << name;
    }
}

TEST_F(Probe, durationWithFraction_secondsAreTruncated) {
    ASSERT_EQ(probeOf(mediaPath("mpeg4.avi")), 0);
    EXPECT_EQ(engine().durationUs, 4'048'980);
    EXPECT_EQ(engine().durationSeconds, 4);
    ASSERT_EQ(probeOf(mediaPath("rate-30000.mp4")), 0);
    EXPECT_EQ(engine().durationUs, 10'000);
    EXPECT_EQ(engine().durationSeconds, 0);
}

TEST_F(Probe, oddSize_isToldAsItIs) {
    ASSERT_EQ(probeOf(mediaPath("odd-size.avi")), 0);
    EXPECT_EQ(engine().sourceWidth, 321);
    EXPECT_EQ(engine().sourceHeight, 241);
    ASSERT_EQ(probeOf(mediaPath("odd-size.mp4")), 0);
    EXPECT_EQ(engine().sourceWidth, 175);
    EXPECT_EQ(engine().sourceHeight, 99);
}

TEST_F(Probe, rotatedPictures_sizeIsThatOfTheCodedOnes) {
    ASSERT_EQ(probeOf(mediaPath("tagged-rotated.mp4")), 0);
    EXPECT_EQ(engine().sourceWidth, 320);
    EXPECT_EQ(engine().sourceHeight, 180);
}

// Cancelling a run does not reach the main thread's probe.
TEST_F(Probe, stopRequested_doesNotEndIt) {
    engine().stopRequested = 1;
    EXPECT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    EXPECT_EQ(engine().stopRequested, 1);
}

TEST_F(Probe, jobTable_isLeftAlone) {
    engine().currentIndex = 3;
    engine().currentPercent = 44;
    engine().startTimes[3] = 1.25;
    engine().fileStates[3] = 9;
    engine().videoWidth = 640;
    engine().videoFrameRate = 12.0;
    EXPECT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    EXPECT_EQ(engine().currentIndex, 3);
    EXPECT_EQ(engine().currentPercent, 44);
    EXPECT_EQ(engine().startTimes[3], 1.25);
    EXPECT_EQ(engine().fileStates[3], 9);
    EXPECT_EQ(engine().videoWidth, 640);
    EXPECT_EQ(engine().videoFrameRate, 12.0);
}

} // namespace
} // namespace velmora::test
