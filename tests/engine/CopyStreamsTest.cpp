// Which streams a direct copy takes, and what it takes along with them.

#include "CopySupport.h"

#include <string>
#include <tuple>
#include <vector>

namespace velmora::test {
namespace {

using nlohmann::json;
using testing::Values;

class CopyStreams : public JobTest {
protected:
    /// Cuts the first second out and shows what ffprobe says about the result.
    json factsOfCut(const std::string& input, const std::string& outputName) {
        const std::string output = folder_ / outputName;
        EXPECT_EQ(cut(input, 0, 1000, output).states, std::vector{1});
        return ffprobeJson(output, {"-show_streams", "-show_format"});
    }
    json factsOfCutMedia(const std::string& name, const std::string& outputName) {
        return factsOfCut(mediaPath(name), outputName);
    }
};

std::vector<std::string> typesOf(const json& facts) {
    std::vector<std::string> types;
    for (const json& stream : facts.at("streams")) {
        types.push_back(stream.at("codec_type"));
    }
    return types;
}

const std::vector<std::string> kVideoAndAudio{"video", "audio"};

class CopyTagged : public CopyStreams, public testing::WithParamInterface<std::string> {};

TEST_P(CopyTagged, aspectColourLanguageAndTitle_travelAlong) {
    const json facts = factsOfCutMedia("tagged-upright.mp4", "out." + GetParam());

    const json& video = facts.at("streams").at(0);
    EXPECT_EQ(video.at("sample_aspect_ratio"), "12:11");
    EXPECT_EQ(video.value("color_space", ""), "bt709");
    EXPECT_EQ(video.value("color_primaries", ""), "bt709");
    EXPECT_EQ(video.value("color_transfer", ""), "bt709");
    EXPECT_EQ(video.value("color_range", ""), "tv");
    if (GetParam() != "mov") { // whose list of languages has another code for this one
        EXPECT_EQ(video.at("tags").value("language", ""), "deu");
    }
    EXPECT_EQ(facts.at("streams").at(1).at("tags").value("language", ""), "fra");
    EXPECT_EQ(facts.at("format").at("tags").value("title", ""), "Grüße");
}

INSTANTIATE_TEST_SUITE_P(Containers, CopyTagged, Values("mp4", "mov", "mkv"),
                         [](const auto& parameter) { return parameter.param; });

TEST_F(CopyStreams, displayMatrix_travelsAlong) {
    const json source = streamOf(mediaPath("tagged-rotated.mp4"), "v:0").fields;
    for (const char* name : {"out.mp4", "out.mov"}) {
        const json facts = factsOfCutMedia("tagged-rotated.mp4", name);

        const json sideData = facts.at("streams").at(0).value("side_data_list", json::array());
        EXPECT_EQ(sideData, source.at("side_data_list")) << name;
    }
}

TEST_F(CopyStreams, tagsOfTheOldContainer_stayBehind) {
    const json facts = factsOfCutMedia("tagged-upright.mp4", "out.mkv");

    const json& tags = facts.at("format").at("tags");
    EXPECT_FALSE(tags.contains("MAJOR_BRAND"));
    EXPECT_FALSE(tags.contains("MINOR_VERSION"));
    EXPECT_FALSE(tags.contains("COMPATIBLE_BRANDS"));
}

TEST_F(CopyStreams, subtitles_areDropped) {
    EXPECT_EQ(typesOf(factsOfCutMedia("subtitles.mkv", "out.mkv")), kVideoAndAudio);
    EXPECT_EQ(typesOf(factsOfCutMedia("subtitles.mp4", "out.mp4")), kVideoAndAudio);
}

TEST_F(CopyStreams, timeCodeTrack_isDropped) {
    const std::string input =
        mediaMadeBy("-i @h264.mp4 -c copy -timecode 01:00:00:00", "timecode.mov");
    ASSERT_EQ(ffprobeJson(input, {"-show_streams"}).at("streams").size(), 3U);

    EXPECT_EQ(typesOf(factsOfCut(input, "out.mov")), kVideoAndAudio);
}

TEST_F(CopyStreams, ofSeveralStreams_theLastOfEachKindIsCopied) {
    const json facts = factsOfCutMedia("two-streams.mkv", "out.mkv");

    ASSERT_EQ(typesOf(facts), kVideoAndAudio);
    EXPECT_EQ(facts.at("streams").at(0).at("codec_name"), "mpeg4");
    EXPECT_EQ(facts.at("streams").at(0).at("width"), 160);
    EXPECT_EQ(facts.at("streams").at(1).at("codec_name"), "mp3");
    EXPECT_EQ(facts.at("streams").at(1).at("tags").value("language", ""), "fra");
}

TEST_F(CopyStreams, ofTwoStreamsOfOneCodec_onlyTheLastIsRead) {
    const std::string input = mediaPath("two-h264.mp4");
    const std::string output = folder_ / "out.mp4";

    cut(input, 0, 100'000, output);

    const std::vector<PacketFacts> source = packetsOf(input, "v:1");
    const std::vector<PacketFacts> copy = packetsOf(output, "v:0");
    ASSERT_EQ(copy.size(), source.size());
    for (std::size_t i = 0; i < copy.size(); ++i) {
        EXPECT_EQ(copy[i].hash, source[i].hash) << i;
    }
}

TEST_F(CopyStreams, coverArt_isNotCopied) {
    const json facts = factsOfCutMedia("cover.mp4", "out.mp4");

    ASSERT_EQ(typesOf(facts), kVideoAndAudio);
    EXPECT_EQ(facts.at("streams").at(0).at("codec_name"), "h264");
}

struct CodecTag {
    std::string media;
    std::string extension;
    std::string tag; ///< of the video
};

void PrintTo(const CodecTag& tag, std::ostream* out) {
    *out << tag.media << " to " << tag.extension;
}

class CopyCodecTag : public CopyStreams, public testing::WithParamInterface<CodecTag> {};

TEST_P(CopyCodecTag, is_oneThatTheNewContainerKnows) {
    const json facts = factsOfCutMedia(GetParam().media, "out." + GetParam().extension);

    EXPECT_EQ(facts.at("streams").at(0).at("codec_tag_string"), GetParam().tag);
}

INSTANTIATE_TEST_SUITE_P(
    Tags, CopyCodecTag,
    Values(CodecTag{"hevc.mp4", "mp4", "hvc1"}, CodecTag{"hevc.mp4", "mov", "hvc1"},
           CodecTag{"hevc.mkv", "mp4", "hev1"}, CodecTag{"h264-bframes.mkv", "mp4", "avc1"},
           CodecTag{"h264.flv", "mp4", "avc1"}, CodecTag{"h264.mp4", "avi", "H264"},
           CodecTag{"mpeg4.avi", "mp4", "mp4v"}, CodecTag{"mpeg4.avi", "avi", "FMP4"},
           CodecTag{"mpeg4.mp4", "avi", "FMP4"}, CodecTag{"wmv2.wmv", "avi", "WMV2"},
           CodecTag{"mjpeg.mov", "mov", "jpeg"}),
    [](const auto& parameter) {
        return asTestName(parameter.param.media) + "_to_" + parameter.param.extension;
    });

TEST_F(CopyStreams, codecTag_ofAviDoesNotReachMatroska) {
    const json facts = factsOfCutMedia("mpeg4.avi", "out.mkv");

    EXPECT_EQ(facts.at("streams").at(0).at("codec_name"), "mpeg4");
    EXPECT_EQ(facts.at("streams").at(0).at("codec_tag"), "0x0000");
}

// This container tells the bit rate that it was given.
TEST_F(CopyStreams, unknownBitRate_becomesThreeMegabits) {
    const std::string source = mediaMadeBy("-i @h264.flv -c copy", "h264.mkv");
    ASSERT_FALSE(streamOf(source, "v:0").fields.contains("bit_rate"));

    const json facts = factsOfCut(source, "out.flv");

    EXPECT_EQ(facts.at("streams").at(0).at("bit_rate"), "3000000");
}

TEST_F(CopyStreams, knownBitRate_isKept) {
    const std::string known = streamOf(mediaPath("h264.mp4"), "v:0").fields.at("bit_rate");

    const json facts = factsOfCutMedia("h264.mp4", "out.flv");

    const std::string kept = facts.at("streams").at(0).at("bit_rate");
    EXPECT_NEAR(std::stod(kept), std::stod(known), 1024);
}

} // namespace
} // namespace velmora::test
