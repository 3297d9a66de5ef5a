// That sound and pictures of a join stay together at every joint and at the end.

#include "ReencodeSupport.h"
#include "SignalMedia.h"

#include <array>
#include <cstddef>
#include <map>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

namespace velmora::test {
namespace {

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
    static std::size_t picturesOf(const std::string& signal);

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

/// Many joins have the same inputs.
std::size_t ReencodeSync::picturesOf(const std::string& signal) {
    static std::map<std::string, std::size_t> known;
    const auto [entry, isNew] = known.try_emplace(signal);
    if (isNew) {
        entry->second = packetsOf(signalOf(signal), "v:0").size();
    }
    return entry->second;
}

TEST_P(ReencodeSync, join_keepsSoundAndPicturesTogether) {
    std::vector<std::string> inputs;
    std::size_t pictures = 0;
    for (const char* name : names_) {
        inputs.push_back(signalOf(name));
        pictures += picturesOf(name);
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

} // namespace
} // namespace velmora::test
