// Sources whose streams lack what one can usually count on, and fields that a run leaves alone.

#include "FaultyMedia.h"
#include "ReencodeSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

/// One second of 25 pictures with sound.
class OddSources : public Reencode {
protected:
    /// Gives every video stream a rate that nothing can be divided by.
    static void takeRateAway(AVFormatContext& input) {
        for (unsigned i = 0; i < input.nb_streams; ++i) {
            AVStream& stream = *input.streams[i];
            if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
                stream.r_frame_rate = {25, 0};
            }
        }
    }
    static FaultyMedia::Decisions withSoundOf(AVCodecID codec) {
        return {.describe = [codec](AVFormatContext& input) {
            for (unsigned i = 0; i < input.nb_streams; ++i) {
                AVCodecParameters& parameters = *input.streams[i]->codecpar;
                if (parameters.codec_type == AVMEDIA_TYPE_AUDIO) {
                    parameters.codec_id = codec;
                    parameters.extradata_size = 0;
                }
            }
        }};
    }
    int probe() {
        engine_.probePath = source_;
        return engine_.probe();
    }
    std::size_t packets(const char* stream) const { return packetsOf(output_, stream).size(); }

    const std::string source_ =
        mediaMadeBy("-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 -f lavfi -i "
                    "sine=f=440:d=1:sample_rate=48000 -c:v mpeg4 -c:a flac -ac 2",
                    "odd.mkv");
    const std::string output_ = folder_ / "out.mkv";
};

TEST_F(OddSources, rateWithoutDenominator_probeKeepsTheRateBefore) {
    engine_.sourceFrameRate = 12;
    const FaultyMedia faults({.describe = takeRateAway});

    EXPECT_EQ(probe(), 0);

    EXPECT_EQ(engine_.sourceFrameRate, 12);
    EXPECT_EQ(engine_.sourceFrameRateNum, 25);
    EXPECT_EQ(engine_.sourceFrameRateDen, 0);
}

TEST_F(OddSources, rateWithoutDenominator_copyFailsAndLeavesNoFile) {
    const FaultyMedia faults({.describe = takeRateAway});

    const JobResult result = JobTest::cut(source_, 0, 1000, output_);

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(result.index, 1);
    EXPECT_FALSE(std::filesystem::exists(output_));
}

TEST_F(OddSources, rateWithoutDenominator_reencodingAtTheSourcesRateFails) {
    const FaultyMedia faults({.describe = takeRateAway});
    engine_.videoFrameRate = 0;

    const JobResult result = cut(source_, 0, 1000, output_);

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(result.index, 1);
    EXPECT_FALSE(std::filesystem::exists(output_));
}

TEST_F(OddSources, rateWithoutDenominator_reencodingAtAChosenRateWorks) {
    const FaultyMedia faults({.describe = takeRateAway});
    engine_.videoFrameRate = 25;

    EXPECT_EQ(cut(source_, 0, 2000, output_).states, std::vector{1});
    EXPECT_GT(packets("v:0"), 20U);
}

TEST_F(OddSources, soundWithoutDecoder_isProbedByWhatTheContainerSays) {
    const FaultyMedia faults(withSoundOf(AV_CODEC_ID_NONE));

    EXPECT_EQ(probe(), 0);

    EXPECT_EQ(engine_.audioStreamIndex, 1);
    EXPECT_EQ(engine_.audioCodecId, AV_CODEC_ID_NONE);
    EXPECT_EQ(engine_.audioSampleRate, 48'000);
    EXPECT_EQ(engine_.audioChannels, 2);
    EXPECT_EQ(engine_.durationSeconds, 1);
}

TEST_F(OddSources, soundWhoseDecoderDoesNotOpen_isProbedByWhatTheContainerSays) {
    const FaultyMedia faults(withSoundOf(AV_CODEC_ID_ALAC)); // which needs its extradata

    EXPECT_EQ(probe(), 0);

    EXPECT_EQ(engine_.audioCodecId, AV_CODEC_ID_ALAC);
    EXPECT_EQ(engine_.audioSampleRate, 48'000);
    EXPECT_EQ(engine_.audioChannels, 2);
    EXPECT_EQ(engine_.sourceWidth, 64);
}

TEST_F(OddSources, soundPacketThatCannotBeWritten_isMissingFromACopyThatIsDone) {
    ASSERT_EQ(JobTest::cut(source_, 0, 2000, output_).states, std::vector{1});
    const std::size_t sounds = packets("a:0");
    int calls = 0;
    const FaultyMedia faults({.write = [&](const AVPacket& packet) {
        return packet.stream_index == 1 && ++calls == 5;
    }});

    EXPECT_EQ(JobTest::cut(source_, 0, 2000, output_).states, std::vector{1});

    EXPECT_EQ(packets("a:0"), sounds - 1);
    EXPECT_EQ(packets("v:0"), 25U);
}

TEST_F(OddSources, endTimes_areNothingToARun) {
    for (const double end : {-1.0, 0.0, 0.2, std::numeric_limits<double>::infinity()}) {
        fillCut(source_, 0, 500, output_);
        engine_.endTimes[0] = end;
        EXPECT_EQ(run().states, std::vector{1}) << end;
        EXPECT_EQ(packets("v:0"), 13U) << end;
        EXPECT_EQ(engine_.endTimes[0], end);
    }
}

} // namespace
} // namespace velmora::test
