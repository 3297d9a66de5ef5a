#include "FaultyMedia.h"
#include "ReencodeSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace velmora::test {
namespace {

/// An input that begins with a flash and a beep.
struct Signal {
    const char* rate = "25";
    double pictureSeconds = 2;
    double soundSeconds = 2; ///< 0: none
    const char* encoding = "-c:v libx264 -preset ultrafast -bf 0 -c:a aac -ac 2";
    const char* extension = "mov";
};

std::string made(const std::string& name, const Signal& signal) {
    const std::string picture = ":s=64x48:r=" + std::string(signal.rate) + ":d=";
    std::string command = "-f lavfi -i color=white" + picture + "0.2[a];color=black" + picture +
                          std::to_string(signal.pictureSeconds - 0.2) +
                          "[b];[a][b]concat,format=yuv420p ";
    if (signal.soundSeconds > 0) {
        command += "-f lavfi -i sine=f=1000:sample_rate=44100:d=0.2,volume=8,apad=whole_dur=" +
                   std::to_string(signal.soundSeconds) + " ";
    }
    return mediaMadeBy(command + signal.encoding, "signal-" + name + "." + signal.extension);
}

std::string signalOf(const std::string& name) {
    const std::map<std::string, Signal> signals = {
        {"even", {}},
        {"ntsc", {.rate = "30000/1001"}},
        {"fast", {.rate = "50"}},
        {"shortSound", {.soundSeconds = 1}},
        {"longSound", {.pictureSeconds = 1}},
        {"mute", {.soundSeconds = 0}},
        {"bFrames",
         {.encoding =
              "-c:v libx264 -preset ultrafast -bf 3 -x264-params b-adapt=0 -c:a aac -ac 2"}},
        {"blocks",
         {.encoding =
              "-c:v libx264 -preset ultrafast -bf 0 -c:a aac -ac 2 -chunk_duration 500000"}},
        {"mpeg4", {.encoding = "-c:v mpeg4 -bf 1 -c:a libmp3lame -ac 2", .extension = "avi"}},
    };
    return made(name, signals.at(name));
}

struct Container {
    const char* extension;
    AVCodecID video;
    AVCodecID audio;
    int frameSamples; ///< of the audio encoder
};

void PrintTo(const Container& container, std::ostream* out) {
    *out << container.extension;
}

constexpr std::array kContainers = {Container{"mp4", AV_CODEC_ID_H264, AV_CODEC_ID_AAC, 1024},
                                    Container{"mkv", AV_CODEC_ID_H264, AV_CODEC_ID_VORBIS, 1024},
                                    Container{"avi", AV_CODEC_ID_MPEG4, AV_CODEC_ID_MP3, 1152},
                                    Container{"wmv", AV_CODEC_ID_WMV2, AV_CODEC_ID_WMAV2, 2048}};

/// Inputs by name, joined.
using Case = std::vector<const char*>;

class ReencodeSync : public Reencode,
                     public testing::WithParamInterface<std::tuple<Case, Container>> {
protected:
    ReencodeSync() {
        engine_.videoWidth = 64;
        engine_.videoHeight = 48;
        choose(target_.video, target_.audio);
    }

    /// One picture and one of the encoder's frames, and two ticks for the rounding of each.
    double tolerance() const { return 1.0 / 25 + target_.frameSamples / 44100.0 + 0.004; }

    void expectTogetherAtJoints() const;
    void expectTogetherAtTheEnd() const;

    const Case& names_ = std::get<0>(GetParam());
    const Container target_ = std::get<1>(GetParam());
    const std::string output_ = folder_ / (std::string("out.") + target_.extension);
};

void ReencodeSync::expectTogetherAtJoints() const {
    const auto flashes = flashesIn(output_);
    const auto beeps = beepsIn(output_);
    ASSERT_EQ(flashes.size(), names_.size());
    std::size_t beep = 0;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (std::string(names_[i]) != "mute") {
            ASSERT_LT(beep, beeps.size());
            // The output's start is no joint: what an encoder begins with lies before the sound.
            const double atStart = i == 0 ? target_.frameSamples / 44100.0 : 0.0;
            EXPECT_NEAR(beeps[beep++], flashes[i], tolerance() + atStart) << i;
        }
    }
    EXPECT_EQ(beep, beeps.size());
}

void ReencodeSync::expectTogetherAtTheEnd() const {
    const double longer = std::string(names_.back()) == "longSound" ? 1.0 : 0.0;
    // H.264 keeps its last picture; the sound's last frame is filled up and followed by another.
    EXPECT_NEAR(endOf(output_, "a:0") - longer, endOf(output_, "v:0"),
                tolerance() + 1.0 / 25 + target_.frameSamples / 44100.0);
}

TEST_P(ReencodeSync, Join_keeps_sound_and_pictures_together) {
    std::vector<std::string> inputs;
    std::size_t pictures = 0;
    for (const char* name : names_) {
        inputs.push_back(signalOf(name));
        pictures += packetsOf(inputs.back(), "v:0").size();
    }

    const auto result = join(inputs, output_);

    EXPECT_EQ(result.states, std::vector<int>(inputs.size(), 1));
    EXPECT_GE(result.percent, 97);
    expectTogetherAtJoints();
    expectTogetherAtTheEnd();
    const std::size_t kept = target_.video == AV_CODEC_ID_H264 ? 1 : 0; // in the encoder
    EXPECT_EQ(packetsOf(output_, "v:0").size(), pictures - kept);
}

INSTANTIATE_TEST_SUITE_P(
    Joins, ReencodeSync,
    testing::Combine(testing::Values(Case{"even", "even", "even", "even", "even"},
                                     Case{"even", "ntsc", "fast", "even", "ntsc", "even"},
                                     Case{"shortSound", "shortSound", "shortSound", "even"},
                                     Case{"longSound", "even", "longSound"},
                                     Case{"even", "mute", "even"}, Case{"even", "even", "mute"},
                                     Case{"bFrames", "bFrames", "even"},
                                     Case{"blocks", "blocks", "blocks", "even"},
                                     Case{"mpeg4", "mpeg4", "even"}),
                     testing::ValuesIn(kContainers)),
    [](const auto& made) {
        std::string name;
        for (const char* input : std::get<0>(made.param)) {
            name += std::string(input) + "_";
        }
        return name + std::get<1>(made.param).extension;
    });

/// What the muxer was given, in order.
struct Written {
    bool isPicture;
    std::int64_t dts;      ///< ticks
    std::int64_t duration; ///< ticks
    double tick;           ///< seconds
};

/// Numbers the pictures of joined inputs by where the sound and the pictures before them have
/// ended.
class JoinNumbering {
public:
    explicit JoinNumbering(std::int64_t pictureTicks) : pictureTicks_(pictureTicks) {}

    void take(const Written& sound) {
        soundEnd_ = static_cast<double>(sound.dts + sound.duration) * sound.tick;
    }
    void beginInput() { counter_ = last_; }
    Written next(double tick) {
        const double ahead = soundEnd_ - static_cast<double>(picturesEnd_) * tick;
        const std::int64_t step =
            ahead > 0 ? static_cast<std::int64_t>(ahead / tick + 1.0) : std::int64_t{1};
        counter_ += step;
        last_ = std::max(counter_, picturesEnd_);
        picturesEnd_ = last_ + pictureTicks_;
        return {true, last_, step, tick};
    }

private:
    const std::int64_t pictureTicks_;
    double soundEnd_ = 0;          ///< seconds
    std::int64_t picturesEnd_ = 0; ///< ticks
    std::int64_t counter_ = 0;     ///< ticks
    std::int64_t last_ = 0;        ///< ticks
};

class ReencodeNumbering : public Reencode {
protected:
    std::vector<Written> writtenByJoin(const std::vector<std::string>& inputs) {
        std::vector<Written> written;
        const FaultyMedia observed({.write = [&written](const AVPacket& packet) {
            const double tick = av_q2d(packet.time_base);
            written.push_back({packet.stream_index == 0, packet.dts, packet.duration, tick});
            return false;
        }});
        EXPECT_EQ(join(inputs, folder_ / "out.mp4").states, std::vector(inputs.size(), 1));
        return written;
    }
};

TEST_F(ReencodeNumbering, Pictures_catch_up_with_the_sound_to_the_tick) {
    engine_.videoFrameRate = 25.0;
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC); // no picture stays in the encoder
    constexpr std::int64_t pictureTicks = 1001; // of 1/25025 second
    const std::vector<std::string> inputs = {signalOf("even"), signalOf("longSound"),
                                             signalOf("shortSound"), signalOf("even")};
    std::vector<std::size_t> starts = {0}; // by pictures
    for (const std::string& input : inputs) {
        starts.push_back(starts.back() + packetsOf(input, "v:0").size());
    }

    const auto written = writtenByJoin(inputs);

    JoinNumbering numbering(pictureTicks);
    std::size_t pictures = 0;
    std::size_t stepsOfOne = 0;
    for (const Written& packet : written) {
        if (!packet.isPicture) {
            numbering.take(packet);
            continue;
        }
        if (std::ranges::find(starts, pictures) != starts.end()) {
            numbering.beginInput();
        }
        const Written expected = numbering.next(packet.tick);
        ASSERT_EQ(packet.dts, expected.dts) << pictures;
        ASSERT_EQ(packet.duration, expected.duration) << pictures;
        stepsOfOne += packet.duration == 1 ? 1 : 0;
        ++pictures;
    }
    EXPECT_EQ(pictures, starts.back());
    EXPECT_GT(stepsOfOne, 0U);
    EXPECT_LT(stepsOfOne, pictures);
}

class ReencodeSilence : public Reencode {
protected:
    const std::string even_ = signalOf("even");
    const std::string output_ = folder_ / "out.mp4";
};

TEST_F(ReencodeSilence, LaterInputWithoutPictures_goes_on_where_the_sound_ended) {
    const std::string soundOnly = mediaMadeBy(
        "-f lavfi -i sine=f=1000:sample_rate=44100:d=0.2,volume=8,apad=whole_dur=3 -c:a pcm_s16le",
        "signal-sound-only.wav");

    EXPECT_EQ(join({even_, soundOnly, even_}, output_).states, std::vector(3, 1));

    const auto flashes = flashesIn(output_);
    const auto beeps = beepsIn(output_);
    ASSERT_EQ(flashes.size(), 2U);
    ASSERT_EQ(beeps.size(), 3U);
    EXPECT_NEAR(beeps[1], 2.0, 0.12);
    EXPECT_NEAR(beeps[2], beeps[1] + 3.0, 0.05);
    EXPECT_NEAR(flashes[1], beeps[2], 0.07);
}

/// The avi with a code for its sound that stands for no codec.
void forgetSoundCodec(const std::string& source, const std::string& target) {
    Bytes content = readFile(source);
    constexpr std::string_view kind = "auds";
    const auto header = std::search(content.begin(), content.end(), kind.begin(), kind.end());
    constexpr std::string_view name = "strf";
    const auto format = std::search(header, content.end(), name.begin(), name.end());
    ASSERT_NE(format, content.end());
    format[8] = 0xFE;
    format[9] = 0xCA;
    writeFile(target, content);
}

TEST_F(ReencodeSilence, SoundThatCannotBeDecoded_is_replaced) {
    const std::string unknown = folder_ / "unknown.avi";
    forgetSoundCodec(signalOf("mpeg4"), unknown);

    EXPECT_EQ(join({even_, unknown, even_}, output_).states, std::vector(3, 1));

    const auto flashes = flashesIn(output_);
    const auto beeps = beepsIn(output_);
    ASSERT_EQ(flashes.size(), 3U);
    ASSERT_EQ(beeps.size(), 2U);
    EXPECT_NEAR(beeps[1], flashes[2], 0.07);
}

TEST_F(ReencodeSilence, SoundOfTheFirstJoinedInputThatCannotBeDecoded_is_replaced) {
    const std::string unknown = folder_ / "unknown.avi";
    forgetSoundCodec(signalOf("mpeg4"), unknown);

    EXPECT_EQ(join({unknown, even_}, output_).states, std::vector(2, 1));

    const auto flashes = flashesIn(output_);
    const auto beeps = beepsIn(output_);
    ASSERT_EQ(flashes.size(), 2U);
    ASSERT_EQ(beeps.size(), 1U);
    EXPECT_NEAR(beeps[0], flashes[1], 0.07);
}

TEST_F(ReencodeSilence, SoundThatCannotBeDecoded_fails_where_the_first_had_none) {
    const std::string unknown = folder_ / "unknown.avi";
    forgetSoundCodec(signalOf("mpeg4"), unknown);
    const std::string silent = mediaMadeBy("-i @mpeg4.mp4 -c copy -an", "silent.mp4");

    EXPECT_EQ(join({silent, unknown}, output_).states, (std::vector{1, 2}));
}

TEST_F(ReencodeSilence, SoundOfTheFirstInputThatCannotBeDecoded_is_left_out) {
    const std::string unknown = folder_ / "unknown.avi";
    forgetSoundCodec(signalOf("mpeg4"), unknown);

    EXPECT_EQ(cut(unknown, 0, 2000, output_).states, std::vector{1});

    EXPECT_TRUE(fieldsOf(output_, "a:0").is_null());
    EXPECT_NEAR(endOf(output_, "v:0"), 2.0, 0.05);
}

// Otherwise a cancelled join would go on for as long as the missing sound takes.
TEST_F(ReencodeSilence, Stop_adds_no_more_of_it) {
    const std::string longPictures =
        mediaMadeBy("-f lavfi -i color=black:s=64x48:r=1:d=600 -f lavfi -i "
                    "sine=f=1000:sample_rate=44100:d=0.2 -c:v mpeg4 -c:a aac -ac 2",
                    "signal-long-pictures.mp4");
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_VORBIS);
    const std::string output = folder_ / "out.mkv";
    // A block for each picture, a few for the sound that there is.
    const AtRunPoint blocks(RunPoint::Packet, [&](int count) {
        if (count > 640) {
            engine_.stopRequested = 1;
        }
    });

    EXPECT_EQ(join({longPictures}, output).states, std::vector{255});

    EXPECT_LT(blocks.seen(), 2000); // ten minutes of sound are 25,000
}

TEST_F(ReencodeSilence, Cut_adds_none) {
    EXPECT_EQ(cut(signalOf("shortSound"), 0, 2000, output_).states, std::vector{1});

    EXPECT_NEAR(endOf(output_, "a:0"), 1.0, 0.08);
    EXPECT_NEAR(endOf(output_, "v:0"), 2.0, 0.05);
}

} // namespace
} // namespace velmora::test
