#include "ReencodeSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <numeric>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {
namespace {

constexpr const char* kVideoNames[] = {"MPEG4", "H264", "WMV2", "FLV"};

AVCodecID videoCodecOf(const std::string& name) {
    if (name == "MPEG4") {
        return AV_CODEC_ID_MPEG4;
    }
    if (name == "H264") {
        return AV_CODEC_ID_H264;
    }
    return name == "WMV2" ? AV_CODEC_ID_WMV2 : AV_CODEC_ID_FLV1;
}

/// How close the output's pictures come to those that ffmpeg decodes of the source and brings to
/// the output's size and range by the scaling named, picture by picture; dB.
double psnrOf(const std::string& output, const std::string& source,
              const std::string& scaling = "bicubic") {
    const std::string counted = "settb=1/25,setpts=N";
    const std::string graph = "[0:v]" + counted + ",format=yuv420p[a];[1:v]" +
                              "scale=160:120:flags=" + scaling + ":out_range=tv,format=yuv420p," +
                              counted + "[b];[a][b]psnr=shortest=1";
    const ProgramResult result =
        runProgram({"ffmpeg", "-v", "info", "-nostdin", "-vsync", "passthrough", "-i", output, "-i",
                    source, "-lavfi", graph, "-f", "null", "-"});
    const std::string key = "average:";
    const auto at = result.errors.find(key);
    if (result.status != 0 || at == std::string::npos) {
        throw std::runtime_error("no comparison: " + result.errors);
    }
    const std::string value = result.errors.substr(at + key.size(), 10);
    return value.starts_with("inf") ? std::numeric_limits<double>::infinity() : std::stod(value);
}

class ReencodeQuality : public Reencode, public testing::WithParamInterface<const char*> {};

/// Pictures and sound that never repeat: there is always more to tell of them.
std::string noise() {
    return mediaMadeBy("-f lavfi -i testsrc2=size=160x120:rate=25:duration=6,noise=alls=40:allf=t "
                       "-f lavfi -i aevalsrc=0.6*random(0)-0.3|0.6*random(1)-0.3:s=44100:d=6 "
                       "-c:v ffv1 -c:a pcm_s16le",
                       "loud-noise.mkv");
}

/// Of a file of six seconds, bit/s.
double bitRateOf(const std::string& path, const std::string& stream) {
    const auto packets = packetsOf(path, stream);
    const auto bytes = std::accumulate(
        packets.begin(), packets.end(), std::int64_t{0},
        [](std::int64_t sum, const PacketFacts& packet) { return sum + packet.size; });
    return static_cast<double>(bytes) * 8 / 6.0;
}

TEST_P(ReencodeQuality, pictures_haveTheBitRateAskedFor) {
    choose(videoCodecOf(GetParam()), AV_CODEC_ID_MP3);
    engine_.videoBitRate = 2'000'000;
    const std::string output = folder_ / "out.mkv";

    ASSERT_EQ(cut(noise(), 0, 6000, output).states, std::vector{1});

    EXPECT_NEAR(bitRateOf(output, "v:0"), 2'000'000, 0.15 * 2'000'000);
}

TEST_P(ReencodeQuality, pictures_areThoseOfTheSource) {
    choose(videoCodecOf(GetParam()), AV_CODEC_ID_MP3);
    engine_.videoBitRate = 2'000'000;
    const std::string source = mediaPath("h264-bframes.mp4");
    const std::string output = folder_ / "out.mkv";

    ASSERT_EQ(cut(source, 0, 4000, output).states, std::vector{1});

    EXPECT_GT(psnrOf(output, source), 36.0);
}

INSTANTIATE_TEST_SUITE_P(Encoders, ReencodeQuality, testing::ValuesIn(kVideoNames),
                         [](const auto& made) { return std::string(made.param); });

TEST_F(Reencode, pictures_areScaledAsCubicCurvesDo) {
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_MP3);
    engine_.videoBitRate = 4'000'000;
    const std::string output = folder_ / "out.mkv";
    for (const char* size : {"400x300", "100x75"}) { // to be made smaller, and larger
        const std::string source = mediaMadeBy(
            std::string("-f lavfi -i testsrc2=rate=25:duration=1:size=") + size + " -c:v ffv1",
            std::string("scaled-") + size + ".mkv");

        ASSERT_EQ(cut(source, 0, 1000, output).states, std::vector{1});

        EXPECT_GT(psnrOf(output, source, "bicubic"), psnrOf(output, source, "bilinear") + 1.0)
            << size;
    }
}

class ReencodeOddSource : public Reencode,
                          public testing::WithParamInterface<std::tuple<const char*, const char*>> {
protected:
    static std::string sourceNamed(const std::string& name) {
        const std::string pattern = "-f lavfi -i testsrc2=size=320x240:rate=25:duration=1 ";
        if (name == "fullRange") {
            return mediaMadeBy(pattern + "-c:v mjpeg -q:v 2 -pix_fmt yuvj420p", "full-range.mov");
        }
        if (name == "tenBit") {
            return mediaMadeBy(pattern +
                                   "-c:v libx264 -preset ultrafast -qp 10 -pix_fmt yuv420p10le",
                               "ten-bit.mp4");
        }
        if (name == "allChroma") {
            return mediaMadeBy(pattern + "-c:v libx264 -preset ultrafast -qp 10 -pix_fmt yuv444p",
                               "all-chroma.mp4");
        }
        if (name == "gray") {
            return mediaMadeBy(pattern + "-c:v ffv1 -pix_fmt gray", "gray.mkv");
        }
        return mediaPath(name);
    }
};

TEST_P(ReencodeOddSource, pictures_areAllThereAndRight) {
    const auto& [name, encoder] = GetParam();
    choose(videoCodecOf(encoder), AV_CODEC_ID_MP3);
    engine_.videoBitRate = 4'000'000;
    const std::string source = sourceNamed(name);
    const std::string output = folder_ / "out.mkv";

    ASSERT_EQ(cut(source, 0, 60'000, output).states, std::vector{1});

    const std::size_t kept = std::string(encoder) == "H264" ? 1 : 0; // in the encoder
    EXPECT_EQ(packetsOf(output, "v:0").size() + kept, frameMd5s(source, "v:0").size());
    EXPECT_GT(psnrOf(output, source), 36.0);
    EXPECT_TRUE(ffmpegDecodesClean(output));
}

INSTANTIATE_TEST_SUITE_P(
    Sources, ReencodeOddSource,
    testing::Combine(testing::Values("fullRange", "tenBit", "allChroma", "gray",
                                     "h264-interlaced.mp4", "odd-size.avi", "odd-size.mp4",
                                     "pixel.mkv", "h264-vfr.mp4", "two-recordings.ts",
                                     "mpeg4-bframes.avi", "vp9.webm"),
                     testing::Values("H264", "MPEG4")),
    [](const auto& made) {
        return asTestName(std::get<0>(made.param)) + "_" + std::get<1>(made.param);
    });

class ReencodeDamaged : public Reencode, public testing::WithParamInterface<const char*> {};

TEST_P(ReencodeDamaged, source_givesWhatCanBeDecoded) {
    const std::string source = mediaPath(GetParam());
    const std::string output = folder_ / "out.mkv";

    EXPECT_EQ(cut(source, 0, 60'000, output).states, std::vector{1});

    const auto pictures = static_cast<double>(packetsOf(output, "v:0").size());
    EXPECT_NEAR(pictures, static_cast<double>(frameMd5s(source, "v:0").size()), 4.0);
    EXPECT_TRUE(ffmpegDecodesClean(output));
}

INSTANTIATE_TEST_SUITE_P(Sources, ReencodeDamaged,
                         testing::Values("damaged.mp4", "damaged.ts", "damaged.avi", "cut-off.mkv",
                                         "damaged-start.mp4", "starts-mid-group.ts"),
                         [](const auto& made) { return asTestName(made.param); });

std::vector<float> soundOf(const std::string& path) {
    const std::string bytes = runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-map",
                                          "0:a", "-ac", "1", "-ar", "44100", "-f", "f32le", "-"})
                                  .output;
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

/// The best correlation of a stretch of `source` with `other`, up to some frames earlier or later.
double correlationOf(const std::vector<float>& source, const std::vector<float>& other) {
    constexpr std::size_t start = 22050;
    constexpr std::size_t length = 4000;
    constexpr std::size_t farthest = 4500;
    const float* theirs = &source.at(start);
    const double their = std::inner_product(theirs, theirs + length, theirs, 0.0);
    double best = 0;
    for (std::size_t at = start - farthest; at < start + farthest && at + length < other.size();
         ++at) {
        const float* ours = &other[at];
        const double both = std::inner_product(ours, ours + length, theirs, 0.0);
        const double our = std::inner_product(ours, ours + length, ours, 0.0);
        best = std::max(best, both / std::sqrt(our * their + 1e-9));
    }
    return best;
}

struct Sound {
    const char* name;
    AVCodecID codec;
};

void PrintTo(const Sound& sound, std::ostream* out) {
    *out << sound.name;
}

class ReencodeSound : public Reencode, public testing::WithParamInterface<Sound> {};

TEST_P(ReencodeSound, sound_hasTheBitRateAskedFor) {
    choose(AV_CODEC_ID_MPEG4, GetParam().codec);
    engine_.audioBitRate = 160'000;
    const std::string output = folder_ / "out.mkv";

    ASSERT_EQ(cut(noise(), 0, 6000, output).states, std::vector{1});

    double expected = 160'000;
    if (GetParam().codec == AV_CODEC_ID_VORBIS) {
        // Aims at a quality, and spends on noise what that takes.
        expected = bitRateOf(
            mediaMadeBy("-i " + noise() + " -vn -c:a libvorbis -b:a 160k", "noise-vorbis.mkv"),
            "a:0");
    }
    EXPECT_NEAR(bitRateOf(output, "a:0"), expected, 0.15 * expected);
}

TEST_F(Reencode, lowBitRate_isThatOfTheSoundWhereItIsNotAAC) {
    engine_.audioBitRate = 64'000;
    for (const AVCodecID codec : {AV_CODEC_ID_MP3, AV_CODEC_ID_WMAV2}) {
        choose(AV_CODEC_ID_MPEG4, codec);
        const std::string output = folder_ / "out.mkv";

        ASSERT_EQ(cut(noise(), 0, 6000, output).states, std::vector{1});

        EXPECT_NEAR(bitRateOf(output, "a:0"), 64'000, 0.15 * 64'000) << avcodec_get_name(codec);
    }
}

TEST_P(ReencodeSound, sound_isThatOfTheSource) {
    choose(AV_CODEC_ID_MPEG4, GetParam().codec);
    const std::string source = mediaMadeBy(
        "-f lavfi -i color=black:size=64x48:rate=25:duration=2 -f lavfi -i "
        "anoisesrc=duration=2:color=brown:sample_rate=48000:amplitude=0.9:seed=1 -c:v mpeg4 "
        "-c:a pcm_s16le -ac 1",
        "brown.mkv");
    const std::string output = folder_ / "out.mkv";
    const AtRunPoint resampling(RunPoint::Resampler, [](int) {});

    ASSERT_EQ(cut(source, 0, 2000, output).states, std::vector{1});

    EXPECT_EQ(resampling.seen(), 1);
    EXPECT_GT(correlationOf(soundOf(source), soundOf(output)), 0.95);
}

// The chunks go straight from the decoder into the queue: what there is to compare is the sound.
TEST_P(ReencodeSound, soundInTheEncodersFormat_isTakenAsItIs) {
    choose(AV_CODEC_ID_MPEG4, GetParam().codec);
    const std::string format = GetParam().codec == AV_CODEC_ID_MP3 ? "s16p" : "fltp";
    const std::string decoder =
        GetParam().codec == AV_CODEC_ID_MP3 ? "alac -sample_fmt s16p" : "aac";
    const std::string source =
        mediaMadeBy("-f lavfi -i color=black:size=64x48:rate=25:duration=2 -f lavfi -i "
                    "anoisesrc=duration=2:color=brown:sample_rate=44100:amplitude=0.9:seed=1 -c:v "
                    "mpeg4 -b:a 192k -ac 2 -c:a " +
                        decoder,
                    "brown-" + format + ".mkv");
    const std::string output = folder_ / "out.mkv";
    const AtRunPoint resampling(RunPoint::Resampler, [](int) {});

    ASSERT_EQ(cut(source, 0, 2000, output).states, std::vector{1});

    EXPECT_EQ(resampling.seen(), 0);
    EXPECT_GT(correlationOf(soundOf(source), soundOf(output)), 0.95);
}

INSTANTIATE_TEST_SUITE_P(Encoders, ReencodeSound,
                         testing::Values(Sound{"MP3", AV_CODEC_ID_MP3},
                                         Sound{"AAC", AV_CODEC_ID_AAC},
                                         Sound{"WMA8", AV_CODEC_ID_WMAV2},
                                         Sound{"VORBIS", AV_CODEC_ID_VORBIS}),
                         [](const auto& made) { return std::string(made.param.name); });

} // namespace
} // namespace velmora::test
