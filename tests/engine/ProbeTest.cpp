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

TEST_F(Probe, SameFileTwice_says_the_same) {
    const std::string path = mediaPath("h264-bframes.mp4");
    ASSERT_EQ(probeOf(path), 0);
    const std::int64_t durationUs = engine().durationUs;
    spoilResults();
    ASSERT_EQ(probeOf(path), 0);
    EXPECT_EQ(engine().durationUs, durationUs);
    EXPECT_EQ(engine().sourceWidth, 320);
}

TEST_F(Probe, ThirtyThousandPicturesPerSecond_are_29_with_denominator_1001) {
    ASSERT_EQ(probeOf(mediaPath("rate-30000.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 29.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 30000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
}

TEST_F(Probe, OneThousandPicturesPerSecond_stay_so) {
    ASSERT_EQ(probeOf(mediaPath("rate-1000.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 1000.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 1000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1);
}

TEST_F(Probe, NtscRates_are_whole_numbers_beside_their_fraction) {
    ASSERT_EQ(probeOf(mediaPath("h264-2997.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 29.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 30000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
    ASSERT_EQ(probeOf(mediaPath("h264-23976.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 23.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 24000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
}

TEST_F(Probe, AudioOnlyFile_gives_zero_size_and_keeps_the_old_rate) {
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

TEST_F(Probe, VideoOnlyFile_gives_zeros_for_the_sound) {
    ASSERT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    ASSERT_EQ(probeOf(mediaPath("video-only.mp4")), 0);
    EXPECT_EQ(engine().audioStreamIndex, -1);
    EXPECT_EQ(engine().audioCodecId, 0);
    EXPECT_EQ(engine().audioChannels, 0);
    EXPECT_EQ(engine().audioSampleRate, 0);
    EXPECT_EQ(engine().audioBitRate, 0);
    EXPECT_EQ(engine().streamCount, 1);
}

TEST_F(Probe, SeveralStreamsOfAType_last_of_each_counts) {
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

TEST_F(Probe, Cover_is_no_video_but_counts_as_a_stream) {
    for (const char* name : {"cover.mp3", "cover.m4a"}) {
        ASSERT_EQ(probeOf(mediaPath(name)), 0) << name;
        EXPECT_EQ(engine().streamCount, 2) << name;
        EXPECT_EQ(engine().videoStreamIndex, -1) << name;
        EXPECT_EQ(engine().sourceWidth, 0) << name;
        EXPECT_EQ(engine().videoCodecId, 0) << name;
    }
}

TEST_F(Probe, CoverAfterTheVideo_video_counts) {
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

TEST_F(Probe, UnknownDuration_gives_negative_seconds) {
    for (const char* name : {"raw.h264", "raw.m4v", "piped.mkv", "pixel.png"}) {
        ASSERT_EQ(probeOf(mediaPath(name)), 0) << name;
        EXPECT_EQ(engine().durationUs, AV_NOPTS_VALUE) << name;
        EXPECT_LT(engine().durationSeconds, 0) << name;
        EXPECT_EQ(engine().durationFloor, 0) << name;
    }
}

TEST_F(Probe, DurationWithFraction_seconds_are_truncated) {
    ASSERT_EQ(probeOf(mediaPath("mpeg4.avi")), 0);
    EXPECT_EQ(engine().durationUs, 4'048'980);
    EXPECT_EQ(engine().durationSeconds, 4);
    ASSERT_EQ(probeOf(mediaPath("rate-30000.mp4")), 0);
    EXPECT_EQ(engine().durationUs, 10'000);
    EXPECT_EQ(engine().durationSeconds, 0);
}

TEST_F(Probe, OddSize_is_told_as_it_is) {
    ASSERT_EQ(probeOf(mediaPath("odd-size.avi")), 0);
    EXPECT_EQ(engine().sourceWidth, 321);
    EXPECT_EQ(engine().sourceHeight, 241);
    ASSERT_EQ(probeOf(mediaPath("odd-size.mp4")), 0);
    EXPECT_EQ(engine().sourceWidth, 175);
    EXPECT_EQ(engine().sourceHeight, 99);
}

TEST_F(Probe, RotatedPictures_size_is_that_of_the_coded_ones) {
    ASSERT_EQ(probeOf(mediaPath("tagged-rotated.mp4")), 0);
    EXPECT_EQ(engine().sourceWidth, 320);
    EXPECT_EQ(engine().sourceHeight, 180);
}

// Cancelling a run does not reach the main thread's probe.
TEST_F(Probe, StopRequested_does_not_end_it) {
    engine().stopRequested = 1;
    EXPECT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    EXPECT_EQ(engine().stopRequested, 1);
}

TEST_F(Probe, JobTable_is_left_alone) {
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
