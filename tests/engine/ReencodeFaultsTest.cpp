// What becomes of an input when memory, an encoder or the output fails in mid-run.

#include "FaultyMedia.h"
#include "ReencodeSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

constexpr int kVideo = 0; // index in the output
constexpr int kAudio = 1;

/// One second: 25 pictures, of which the encoder keeps none, and 48,000 samples that have to be
/// resampled, four frames of sound in each packet.
class ReencodeFaults : public Reencode {
protected:
    ReencodeFaults() {
        engine_.videoWidth = 64;
        engine_.videoHeight = 48;
        choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC);
    }

    JobResult cutWith(FaultyMedia::Decisions decisions) {
        const FaultyMedia faults(std::move(decisions));
        return cut(source_, 0, 2000, output_); // to its end
    }
    std::size_t pictures() const { return packetsOf(output_, "v:0").size(); }
    std::size_t sounds() const { return packetsOf(output_, "a:0").size(); }

    const std::string source_ = mediaMadeBy(
        "-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 -f lavfi -i "
        "sine=f=440:d=1:sample_rate=48000:samples_per_frame=4096 -c:v mpeg4 -c:a flac -ac 2",
        "faults.mkv");
    const std::string output_ = folder_ / "out.mkv";
    static constexpr std::size_t kPictures = 25;
    static constexpr std::size_t kSounds = 45;
    std::atomic<int> calls_{0};
};

TEST_F(ReencodeFaults, withoutAny_allIsWritten) {
    EXPECT_EQ(cutWith({}).states, std::vector{1});

    EXPECT_EQ(pictures(), kPictures);
    EXPECT_EQ(sounds(), kSounds);
}

TEST_F(ReencodeFaults, pictureThatCannotBeWritten_endsTheInputAndFailsIt) {
    const auto result = cutWith({.write = [this](const AVPacket& packet) {
        return packet.stream_index == kVideo && ++calls_ == 10;
    }});

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(pictures(), 9U);
    EXPECT_LT(sounds(), kSounds);
}

TEST_F(ReencodeFaults, soundThatCannotBeWritten_failsTheInputWhichGoesOn) {
    for (const int failing : {1, 10, static_cast<int>(kSounds)}) { // the last one is of the drain
        calls_ = 0;
        const auto result = cutWith({.write = [&](const AVPacket& packet) {
            return packet.stream_index == kAudio && ++calls_ == failing;
        }});

        EXPECT_EQ(result.states, std::vector{2}) << failing;
        EXPECT_EQ(pictures(), kPictures) << failing;
        EXPECT_EQ(sounds(), kSounds - 1) << failing;
    }
}

// This encoder holds several packets back.
TEST_F(ReencodeFaults, soundOfTheDrainThatCannotBeWritten_takesNoOtherWithIt) {
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_VORBIS);
    EXPECT_EQ(cutWith({}).states, std::vector{1});
    const auto all = static_cast<int>(sounds());
    for (int failing = all - 4; failing <= all; ++failing) {
        calls_ = 0;
        const auto result = cutWith({.write = [&](const AVPacket& packet) {
            return packet.stream_index == kAudio && ++calls_ == failing;
        }});

        EXPECT_EQ(result.states, std::vector{2}) << failing;
        EXPECT_EQ(calls_, all) << failing;
    }
}

TEST_F(ReencodeFaults, noSoundThatCanBeWritten_leavesThePictures) {
    const auto result =
        cutWith({.write = [](const AVPacket& packet) { return packet.stream_index == kAudio; }});

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(pictures(), kPictures);
    EXPECT_EQ(sounds(), 0U);
}

// The decoder holds two pictures when the clock has reached the end: the second is tried all the
// same.
TEST_F(ReencodeFaults, pictureOfTheDrainThatCannotBeWritten_failsTheInput) {
    const std::string source = mediaPath("h264-bframes.mp4");
    ASSERT_EQ(fieldsOf(source, "v:0").at("has_b_frames"), 2);
    const FaultyMedia faults({.write = [this](const AVPacket& packet) {
        return packet.stream_index == kVideo && ++calls_ == 31;
    }});

    EXPECT_EQ(cut(source, 0, 1000, output_).states, std::vector{2});

    EXPECT_EQ(pictures(), 31U);
}

TEST_F(ReencodeFaults, chunkThatCannotBeEncoded_failsTheInputWhichGoesOn) {
    const auto result = cutWith({.encode = [this](const AVCodecContext& encoder, const AVFrame*) {
        return encoder.codec_type == AVMEDIA_TYPE_AUDIO && ++calls_ == 10;
    }});

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(pictures(), kPictures);
    EXPECT_EQ(sounds(), kSounds - 1);
}

TEST_F(ReencodeFaults, soundThatCannotBeDrained_failsTheInput) {
    const auto result = cutWith({.encode = [](const AVCodecContext& encoder, const AVFrame* frame) {
        return encoder.codec_type == AVMEDIA_TYPE_AUDIO && frame == nullptr;
    }});

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(pictures(), kPictures);
    EXPECT_EQ(sounds(), kSounds - 2); // which the encoder still held
}

TEST_F(ReencodeFaults, pictureThatCannotBeEncoded_isLeftOut) {
    const auto result = cutWith({.encode = [this](const AVCodecContext& encoder, const AVFrame*) {
        return encoder.codec_type == AVMEDIA_TYPE_VIDEO && ++calls_ == 10;
    }});

    EXPECT_EQ(result.states, std::vector{1});
    EXPECT_EQ(pictures(), kPictures - 1);
}

bool isResampled(const AVFrame& frame) {
    constexpr int chunk = 1024;
    return frame.nb_samples > 0 && frame.nb_samples != chunk;
}

TEST_F(ReencodeFaults, noMemoryForResampledSound_endsTheInputAndFailsIt) {
    const auto result = cutWith(
        {.allocate = [this](const AVFrame& frame) { return isResampled(frame) && ++calls_ == 5; }});

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_LT(pictures(), kPictures);
    EXPECT_LT(sounds(), 20U);
}

TEST_F(ReencodeFaults, noMemoryForAChunk_failsTheInputWhichGoesOn) {
    const auto result = cutWith({.allocate = [this](const AVFrame& frame) {
        return frame.nb_samples == 1024 && ++calls_ == 5;
    }});

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(pictures(), kPictures);
    EXPECT_LT(sounds(), kSounds);
}

TEST_F(ReencodeFaults, noMemoryForAPicture_failsTheInput) {
    engine_.videoWidth = 96; // so that it is scaled
    const auto result = cutWith(
        {.allocate = [this](const AVFrame& frame) { return frame.width > 0 && ++calls_ == 5; }});

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(pictures(), 4U);
}

TEST_F(ReencodeFaults, noMemoryInTheQueue_leavesTheSoundOut) {
    const auto result = cutWith({.queue = [this](int) { return ++calls_ == 5; }});

    EXPECT_EQ(result.states, std::vector{1});
    EXPECT_EQ(pictures(), kPictures);
    EXPECT_NEAR(static_cast<double>(sounds()), static_cast<double>(kSounds) - 4.0, 1.0);
}

// With nothing to write, the silence of a join would never end.
TEST_F(ReencodeFaults, noMemoryForSilence_failsTheInput) {
    const std::string mute = mediaMadeBy(
        "-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 -c:v mpeg4", "faults-mute.mkv");
    const FaultyMedia faults(
        {.queue = [](int samples) { return samples == 1024; }}); // not those of the first input

    EXPECT_EQ(join({source_, mute}, output_).states, (std::vector{1, 2}));

    EXPECT_EQ(pictures(), 2 * kPictures);
}

} // namespace
} // namespace velmora::test
