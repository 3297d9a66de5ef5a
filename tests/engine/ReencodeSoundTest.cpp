// How sound gets from the decoder through the resampler and the queue into the encoder.

#include "ReencodeSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {
namespace {

constexpr const char* kPictures = "-f lavfi -i color=black:size=64x48:rate=25:duration=1 ";

/// The samples of the sound, channel by channel, as they lie in the packets.
std::vector<std::vector<float>> channelsOf(const std::string& path, std::size_t count) {
    const std::string bytes = runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-map",
                                          "0:a", "-f", "f32le", "-"})
                                  .output;
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    std::vector<std::vector<float>> channels(count);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        channels[i % count].push_back(samples[i]);
    }
    return channels;
}

/// The pitch of the middle of it, at 44,100 samples per second; 0 when it is silent.
double pitchOf(const std::vector<float>& samples) {
    const std::size_t from = samples.size() / 4;
    const std::size_t until = 3 * samples.size() / 4;
    int risings = 0;
    for (std::size_t i = from; i < until; ++i) {
        risings += samples[i - 1] < 0 && samples[i] >= 0 ? 1 : 0;
    }
    const auto [least, most] = std::minmax_element(samples.begin(), samples.end());
    return *most - *least > 0.1F ? risings * 44100.0 / static_cast<double>(until - from) : 0.0;
}

class ReencodeAudio : public Reencode {
protected:
    ReencodeAudio() {
        engine_.videoWidth = 64;
        engine_.videoHeight = 48;
        choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC);
    }
};

class ReencodeSurround : public ReencodeAudio,
                         public testing::WithParamInterface<std::tuple<const char*, AVCodecID>> {};

// In the order of channels: front left, right and middle, the low one, back left and right.
TEST_P(ReencodeSurround, channels_stayInTheirPlaces) {
    const auto& [sound, codec] = GetParam();
    choose(AV_CODEC_ID_MPEG4, codec);
    engine_.audioChannels = 6;
    engine_.audioBitRate = 384'000;
    constexpr std::array pitches = {300.0, 500.0, 700.0, 60.0, 900.0, 1100.0};
    std::string tones;
    for (const double pitch : pitches) {
        tones += (tones.empty() ? "" : "|") + ("0.5*sin(2*PI*t*" + std::to_string(pitch) + ")");
    }
    const std::string source =
        mediaMadeBy(kPictures + ("-f lavfi -i aevalsrc=" + tones + ":c=5.1:s=44100:d=1 ") +
                        "-c:v mpeg4 -c:a " + sound,
                    "surround.mkv");
    const std::string output = folder_ / "out.mkv";

    ASSERT_EQ(cut(source, 0, 1000, output).states, std::vector{1});

    EXPECT_EQ(fieldsOf(output, "a:0").at("channels"), 6);
    EXPECT_EQ(fieldsOf(output, "a:0").at("channel_layout"), "5.1");
    const auto channels = channelsOf(output, pitches.size());
    for (std::size_t i = 0; i < pitches.size(); ++i) {
        EXPECT_NEAR(pitchOf(channels[i]), pitches[i], 0.05 * pitches[i]) << i;
    }
}

// Of the first, the container does not tell which channels there are; the second is decoded into
// what the encoders take.
INSTANTIATE_TEST_SUITE_P(Sources, ReencodeSurround,
                         testing::Combine(testing::Values("pcm_s16le", "aac"),
                                          testing::Values(AV_CODEC_ID_AAC, AV_CODEC_ID_VORBIS)),
                         [](const auto& tested) {
                             return std::string(std::get<0>(tested.param)) + "_" +
                                    avcodec_get_name(std::get<1>(tested.param));
                         });

class ReencodeResampled : public ReencodeAudio,
                          public testing::WithParamInterface<std::tuple<const char*, int>> {};

TEST_P(ReencodeResampled, difference_aloneNeedsAResampler) {
    const auto& [sound, resamplers] = GetParam();
    const std::string source = mediaMadeBy(
        kPictures + std::string("-f lavfi -i sine=f=440:d=1 -c:v mpeg4 ") + sound, "resampled.mkv");
    const std::string output = folder_ / "out.mkv";
    const AtRunPoint resampling(RunPoint::Resampler, [](int) {});

    ASSERT_EQ(cut(source, 0, 1000, output).states, std::vector{1});

    EXPECT_EQ(resampling.seen(), resamplers);
    for (const auto& channel : channelsOf(output, 2)) {
        EXPECT_NEAR(pitchOf(channel), 440.0, 5.0);
    }
    EXPECT_NEAR(endOf(output, "a:0"), 1.0, 0.06);
}

INSTANTIATE_TEST_SUITE_P(Sources, ReencodeResampled,
                         testing::Values(std::tuple{"-c:a aac -ar 44100 -ac 2", 0},
                                         std::tuple{"-c:a aac -ar 48000 -ac 2", 1},
                                         std::tuple{"-c:a aac -ar 22050 -ac 2", 1},
                                         std::tuple{"-c:a aac -ar 44100 -ac 1", 1},
                                         std::tuple{"-c:a flac -ar 44100 -ac 2", 1}),
                         [](const auto& tested) { return asTestName(std::get<0>(tested.param)); });

// Nobody knows where nine channels belong.
TEST_F(ReencodeAudio, resamplerThatCannotBeMade_failsTheInput) {
    const std::string source =
        mediaMadeBy(kPictures + std::string("-f s16le -ac 9 -ar 44100 -t 1 -i /dev/zero -c:v mpeg4 "
                                            "-c:a pcm_s16le"),
                    "nine-channels.mkv");
    ASSERT_EQ(fieldsOf(source, "a:0").at("channels"), 9);
    const AtLogLine line("sound: resample: ", [](int) {});

    EXPECT_EQ(cut(source, 0, 1000, folder_ / "out.mkv").states, std::vector{2});

    EXPECT_EQ(line.seen(), 1);
}

// The encoder's first frame lies before the first sample.
TEST_F(ReencodeAudio, cut_countsSamplesFromZero) {
    const std::string source =
        mediaMadeBy(kPictures + std::string("-f lavfi -i sine=f=440:d=1 -c:v mpeg4 -c:a pcm_s16le"),
                    "counted.mkv");
    const std::string output = folder_ / "out.ts"; // which writes the times as they are

    ASSERT_EQ(cut(source, 0, 2000, output).states, std::vector{1});

    const auto sound = packetsOf(output, "a:0");
    ASSERT_EQ(sound.size(), 45U); // 44,100 samples are 44 frames, and the encoder's own one
    for (std::size_t i = 1; i < sound.size(); ++i) {
        const auto samples = 1024 * static_cast<std::int64_t>(i);
        EXPECT_NEAR(static_cast<double>(sound[i].pts.value() - sound[0].pts.value()),
                    static_cast<double>(samples) * 90'000.0 / 44'100.0, 1.0)
            << i;
    }
    const auto pictures = packetsOf(output, "v:0");
    EXPECT_NEAR(static_cast<double>(pictures[0].pts.value() - sound[0].pts.value()),
                1024 * 90'000.0 / 44'100.0, 1.0);
}

TEST_F(ReencodeAudio, join_numbersSoundFromWhereItIs) {
    const std::string source =
        mediaMadeBy(kPictures + std::string("-f lavfi -i sine=f=440:d=1 -c:v mpeg4 -c:a pcm_s16le"),
                    "counted.mkv");
    const std::string output = folder_ / "out.mov";

    ASSERT_EQ(join({source, source}, output).states, std::vector(2, 1));

    const auto sound = packetsOf(output, "a:0");
    ASSERT_GE(sound.size(), 88U);
    EXPECT_EQ(sound.front().pts, 0);
    for (std::size_t i = 1; i < sound.size(); ++i) {
        ASSERT_EQ(sound[i].dts.value() - sound[i - 1].dts.value(), 1024) << i;
    }
}

// Otherwise what was queued before would be heard again.
TEST_F(ReencodeAudio, lastChunk_endsWithSilence) {
    const std::string source =
        mediaMadeBy(kPictures + std::string("-f lavfi -i "
                                            "aevalsrc=0.8*sin(2*PI*t*1000):s=44100:d=0.952 -c:v "
                                            "mpeg4 -c:a pcm_s16le"),
                    "ends-early.mkv");
    constexpr std::size_t due = 41'983; // samples, 41 frames and no more than 0 or 1
    const std::string output = folder_ / "out.mp4";
    engine_.audioChannels = 1;

    ASSERT_EQ(cut(source, 0, 2000, output).states, std::vector{1});

    const auto samples = channelsOf(output, 1).front();
    ASSERT_GE(samples.size(), due);
    // The encoder blurs what lies close to the end.
    for (std::size_t i = due + 512; i < samples.size(); ++i) {
        ASSERT_LT(std::abs(samples[i]), 0.1F) << i - due;
    }
}

// What the source says of its blocks is not so of the encoder's packets: avi would count them by
// it.
TEST_F(ReencodeAudio, blocksOfTheSource_doNotReachTheOutput) {
    const std::string source =
        mediaMadeBy(kPictures + std::string("-f lavfi -i sine=f=440:d=1 -c:v mpeg4 -c:a pcm_s16le "
                                            "-ac 2"),
                    "blocks.avi");
    const std::string output = folder_ / "out.avi";

    ASSERT_EQ(cut(source, 0, 2000, output).states, std::vector{1});

    EXPECT_EQ(packetsOf(output, "a:0").size(), 45U);
    EXPECT_NEAR(endOf(output, "a:0"), 1.0, 0.06);
    EXPECT_TRUE(ffmpegDecodesClean(output));
}

} // namespace
} // namespace velmora::test
