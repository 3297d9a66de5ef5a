#include "CopySupport.h"
#include "EngineLog.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <string>
#include <tuple>
#include <vector>

namespace velmora::test {
namespace {

using testing::Combine;
using testing::Values;

struct Sound {
    const char* name;
    const char* encoder;   ///< arguments of ffmpeg
    const char* extension; ///< of a file that knows the length of each packet in samples
    int samples;           ///< in every packet; 0: they differ
    int rate;              ///< Hz
    bool timed = false;    ///< a packet's length is known from the source's times only
};

void PrintTo(const Sound& sound, std::ostream* out) {
    *out << sound.name;
}

constexpr Sound kAac{"Aac", "aac -b:a 96k", "mp4", 1024, 44100};
constexpr Sound kMp3{"Mp3", "libmp3lame -b:a 96k", "mp3", 1152, 44100};
constexpr Sound kMp2{"Mp2", "mp2 -b:a 96k", "mp2", 1152, 44100};
constexpr Sound kAc3{"Ac3", "ac3 -b:a 96k", "ac3", 1536, 44100};
constexpr Sound kVorbis{"Vorbis", "libvorbis", "ogg", 0, 44100, true};
constexpr Sound kOpus{"Opus", "libopus -b:a 96k", "ogg", 960, 48000, true};
constexpr Sound kFlac{"Flac", "flac", "flac", 0, 44100, true};
constexpr Sound kPcm{"Pcm", "pcm_s16le", "wav", 0, 44100};
constexpr Sound kWma{"Wma", "wmav2 -b:a 96k", "wma", 2048, 44100, true};

std::string soundFile(const Sound& sound) {
    return mediaMadeBy("-f lavfi -i sine=frequency=440:duration=3:sample_rate=" +
                           std::to_string(sound.rate) + " -ac 2 -bitexact -c:a " + sound.encoder,
                       std::string("sound.") + sound.extension);
}

/// The same packets of sound beside three seconds of pictures.
std::string videoFile(const Sound& sound, const std::string& extension) {
    const std::string pictures =
        extension == "wmv" ? "mpeg4" : "libx264 -pix_fmt yuv420p -preset ultrafast";
    return mediaMadeBy("-f lavfi -i testsrc2=size=64x36:rate=25:duration=3 -i " + soundFile(sound) +
                           " -map 0 -map 1 -g 25 -c:a copy -c:v " + pictures,
                       std::string(sound.name) + ".mkv");
}

std::vector<std::int64_t> samplesOf(const Sound& sound) {
    const StreamFacts facts = streamOf(soundFile(sound), "a:0");
    std::vector<std::int64_t> samples;
    for (const PacketFacts& packet : facts.packets) {
        samples.push_back(sound.samples > 0 ? sound.samples : packet.duration);
    }
    return samples;
}

std::string waveOf(const std::string& path) {
    return runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-map", "0:a:0", "-f",
                       "s16le", "-"})
        .output;
}

class CopySound : public JobTest,
                  public testing::WithParamInterface<std::tuple<Sound, std::string>> {
protected:
    /// Not all containers keep the bytes, and not all stamp each packet.
    bool keepsBytes() const { return !(extension_ == "ts" && sound_.name == kAac.name); }
    bool keepsTimes() const {
        return extension_ != "mpg" && !(extension_ == "avi" && sound_.samples == 0);
    }

    /// Each packet of one input begins where the one before it ended. `first` is the input's first
    /// packet, and `position` its place; both count from the beginning, the latter in samples.
    void expectContinuous(const StreamFacts& copy, std::size_t first, std::int64_t position,
                          const std::vector<std::int64_t>& samples) const {
        const Numbering numbering(copy.timeBase, {1, sound_.rate});
        const std::int64_t start = copy.packets.at(first).pts.value() - numbering.at(position);
        // Milliseconds of the source may show, but must not add up.
        const std::int64_t millisecond = copy.timeBase.den / (1000 * copy.timeBase.num) + 1;
        const std::int64_t tolerance = sound_.timed ? 2 * millisecond : 0;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const std::int64_t actual = copy.packets.at(first + i).pts.value() - start;
            ASSERT_LE(std::abs(actual - numbering.at(position)), tolerance) << first + i;
            position += samples[i];
        }
    }

    /// The second input, of which `first` is the first packet, begins where the first one ended.
    void expectJoint(const StreamFacts& copy, std::size_t first, std::int64_t length) const {
        const Numbering numbering(copy.timeBase, {1, sound_.rate});
        const std::int64_t actual =
            copy.packets.at(first).pts.value() - copy.packets.at(0).pts.value();
        // A source may say of its last packet that only a part of it is to be heard.
        constexpr std::int64_t longestPacket = 4608;
        const std::int64_t tolerance = sound_.timed ? numbering.at(longestPacket) : 0;
        EXPECT_LE(std::abs(actual - numbering.at(length)), tolerance);
    }

    Sound sound_ = std::get<0>(GetParam());
    std::string extension_ = std::get<1>(GetParam());
    std::string source_ = videoFile(sound_, extension_);
    std::string output_ = folder_ / ("out." + extension_);
};

TEST_P(CopySound, join_continuesByTheSamplesOfEachPacketAndDecodes) {
    const JobResult result = join({source_, source_}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 1}));
    const StreamFacts source = streamOf(source_, "a:0");
    const StreamFacts copy = streamOf(output_, "a:0");
    const std::vector<std::int64_t> samples = samplesOf(sound_);
    const std::size_t count = source.packets.size();
    ASSERT_EQ(samples.size(), count);
    ASSERT_EQ(copy.packets.size(), 2 * count);
    for (std::size_t i = 0; keepsBytes() && i < 2 * count; ++i) {
        ASSERT_EQ(copy.packets[i].hash, source.packets[i % count].hash) << i;
    }
    if (keepsTimes()) {
        const std::int64_t length = std::accumulate(samples.begin(), samples.end(), INT64_C(0));
        expectContinuous(copy, 0, 0, samples);
        expectContinuous(copy, count, length, samples);
        expectJoint(copy, count, length);
    }
    EXPECT_EQ(decode(output_).complaints, "");
    // Some decoders need one packet to begin.
    EXPECT_GE(frameMd5s(output_, "a:0").size() + 1, copy.packets.size());
}

std::string nameOfPair(const testing::TestParamInfo<CopySound::ParamType>& info) {
    return std::string(std::get<0>(info.param).name) + "_to_" + std::get<1>(info.param);
}

INSTANTIATE_TEST_SUITE_P(Aac, CopySound,
                         Combine(Values(kAac),
                                 Values("mp4", "mkv", "avi", "wmv", "ts", "flv", "3gp")),
                         nameOfPair);
INSTANTIATE_TEST_SUITE_P(Mpeg, CopySound,
                         Combine(Values(kMp3, kMp2, kAc3),
                                 Values("mp4", "mkv", "avi", "wmv", "ts", "mpg")),
                         nameOfPair);
INSTANTIATE_TEST_SUITE_P(Vorbis, CopySound,
                         Combine(Values(kVorbis), Values("mp4", "mkv", "avi", "wmv")), nameOfPair);
INSTANTIATE_TEST_SUITE_P(Opus, CopySound, Combine(Values(kOpus), Values("mp4", "mkv", "ts")),
                         nameOfPair);
INSTANTIATE_TEST_SUITE_P(Flac, CopySound, Combine(Values(kFlac), Values("mkv")), nameOfPair);
INSTANTIATE_TEST_SUITE_P(Pcm, CopySound, Combine(Values(kPcm), Values("mov", "mkv", "avi", "wmv")),
                         nameOfPair);
INSTANTIATE_TEST_SUITE_P(Wma, CopySound, Combine(Values(kWma), Values("mkv", "avi", "wmv")),
                         nameOfPair);

class CopyLosslessSound : public JobTest, public testing::WithParamInterface<Sound> {};

TEST_P(CopyLosslessSound, join_keepsEverySample) {
    const std::string source = videoFile(GetParam(), "mkv");
    const std::string output = folder_ / "out.mkv";

    join({source, source}, output);

    const std::string wave = waveOf(source);
    EXPECT_TRUE(waveOf(output) == wave + wave);
}

std::string nameOfSound(const testing::TestParamInfo<Sound>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Sounds, CopyLosslessSound, Values(kFlac, kPcm), nameOfSound);

class CopySoundCut : public JobTest, public testing::WithParamInterface<Sound> {};

TEST_P(CopySoundCut, packets_followEachOtherFromAboutTheStart) {
    const std::string path = videoFile(GetParam(), "mkv");
    const std::string output = folder_ / "out.mkv";

    EXPECT_EQ(cut(path, 1500, 2500, output).states, std::vector{1});

    const std::vector<PacketFacts> source = packetsOf(path, "a:0");
    const std::vector<PacketFacts> copy = packetsOf(output, "a:0");
    const auto first = std::ranges::find(source, copy.at(0).hash, &PacketFacts::hash);
    ASSERT_LE(copy.size(), static_cast<std::size_t>(source.end() - first));
    for (std::size_t i = 0; i < copy.size(); ++i) {
        ASSERT_EQ(copy[i].hash, first[static_cast<std::ptrdiff_t>(i)].hash) << i;
    }
    // From the key picture at 1 s on, for a second.
    EXPECT_NEAR(static_cast<double>(first->pts.value()), 1000.0, 150.0);
    EXPECT_NEAR(
        static_cast<double>(first[static_cast<std::ptrdiff_t>(copy.size()) - 1].pts.value()),
        2000.0, 150.0);
}

INSTANTIATE_TEST_SUITE_P(Sounds, CopySoundCut,
                         Values(kAac, kMp3, kMp2, kAc3, kVorbis, kOpus, kFlac, kPcm, kWma),
                         nameOfSound);

class CopySoundOfAvi : public JobTest {};

// A packet may have any size, whatever the old container said of it.
TEST_F(CopySoundOfAvi, aacInAvi_keepsItsTimes) {
    const std::string source = mediaPath("h264-bframes.avi");
    const std::string output = folder_ / "out.avi";

    EXPECT_EQ(join({source, source}, output).states, (std::vector{1, 1}));

    const StreamFacts copy = streamOf(output, "a:0");
    const Numbering numbering(copy.timeBase, {1, 44100});
    for (std::size_t i = 0; i < copy.packets.size(); ++i) {
        ASSERT_EQ(copy.packets[i].dts, numbering.at(static_cast<std::int64_t>(i) * 1024));
    }
}

/// What the media libraries warn of while one lives.
class Warnings {
public:
    Warnings() {
        lines().clear();
        av_log_set_level(AV_LOG_WARNING);
        setLogSink([](const char* line) { lines().emplace_back(line); });
    }
    ~Warnings() {
        setLogSink(nullptr);
        av_log_set_level(AV_LOG_INFO);
    }
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;

    static std::vector<std::string>& lines() {
        static std::vector<std::string> all;
        return all;
    }
};

class CopySpeech : public JobTest {
protected:
    /// A phone's film with a hundred frames of sound, each `header` and `size` bytes of it.
    std::string film(const std::string& magic, char header, std::size_t size) {
        std::string speech = magic;
        for (int frame = 0; frame < 100; ++frame) {
            speech += header;
            for (std::size_t i = 0; i < size; ++i) {
                speech += static_cast<char>(i * 37);
            }
        }
        const std::string sound = folder_ / "speech.amr";
        writeFile(sound, speech);
        const std::string path = folder_ / "speech.3gp";
        const ProgramResult made =
            runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", mediaPath("mpeg4.mp4"), "-i",
                        sound, "-map", "0:v", "-map", "1:a", "-c", "copy", path});
        EXPECT_EQ(made.status, 0) << made.errors;
        return path;
    }

    void expectCopied(const std::string& source, int samples, int rate) {
        for (const char* name : {"out.3gp", "out.mov", "out.mkv"}) {
            const std::string output = folder_ / name;
            const Warnings warnings;
            EXPECT_EQ(join({source}, output).states, std::vector{1}) << name;
            EXPECT_EQ(Warnings::lines(), std::vector<std::string>()) << name;

            const StreamFacts from = streamOf(source, "a:0");
            const StreamFacts copy = streamOf(output, "a:0");
            ASSERT_EQ(copy.packets.size(), from.packets.size()) << name;
            const Numbering numbering(copy.timeBase, {1, rate});
            for (std::size_t i = 0; i < copy.packets.size(); ++i) {
                EXPECT_EQ(copy.packets[i].hash, from.packets[i].hash);
                EXPECT_EQ(copy.packets[i].dts,
                          numbering.at(static_cast<std::int64_t>(i) * samples));
            }
        }
    }
};

TEST_F(CopySpeech, narrowBand_keepsItsPacketsAndTheirSize) {
    expectCopied(film("#!AMR\n", 0x3c, 31), 160, 8000);
}

TEST_F(CopySpeech, wideBand_keepsItsPacketsAndTheirSize) {
    expectCopied(film("#!AMR-WB\n", 0x44, 60), 320, 16000);
}

} // namespace
} // namespace velmora::test
