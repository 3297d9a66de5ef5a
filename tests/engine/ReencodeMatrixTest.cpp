#include "ReencodeSupport.h"
#include "WholeTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

const std::map<AVCodecID, const char*> kCodecNames = {
    {AV_CODEC_ID_MPEG4, "mpeg4"}, {AV_CODEC_ID_H264, "h264"},    {AV_CODEC_ID_WMV2, "wmv2"},
    {AV_CODEC_ID_FLV1, "flv1"},   {AV_CODEC_ID_MP3, "mp3"},      {AV_CODEC_ID_AAC, "aac"},
    {AV_CODEC_ID_WMAV2, "wmav2"}, {AV_CODEC_ID_VORBIS, "vorbis"}};

/// What one container holds so that it can be played in full.
struct Container {
    const char* extension;
    std::vector<AVCodecID> videos;
    std::vector<AVCodecID> audios;
};

std::vector<Container> containers() {
    const std::vector allVideos = {AV_CODEC_ID_MPEG4, AV_CODEC_ID_H264, AV_CODEC_ID_WMV2,
                                   AV_CODEC_ID_FLV1};
    const std::vector allAudios = {AV_CODEC_ID_MP3, AV_CODEC_ID_AAC, AV_CODEC_ID_WMAV2,
                                   AV_CODEC_ID_VORBIS};
    const std::vector usual = {AV_CODEC_ID_MPEG4, AV_CODEC_ID_H264};
    return {{"mp4", usual, {AV_CODEC_ID_MP3, AV_CODEC_ID_AAC}},
            {"mov", allVideos, {AV_CODEC_ID_MP3, AV_CODEC_ID_AAC, AV_CODEC_ID_VORBIS}},
            {"m4v", usual, {AV_CODEC_ID_AAC}},
            {"3gp", usual, {AV_CODEC_ID_AAC}},
            {"avi", allVideos, allAudios},
            {"mkv", allVideos, allAudios},
            {"wmv", allVideos, allAudios},
            {"asf", allVideos, allAudios},
            {"flv", {AV_CODEC_ID_H264, AV_CODEC_ID_FLV1}, {AV_CODEC_ID_MP3, AV_CODEC_ID_AAC}},
            {"mpg", usual, {AV_CODEC_ID_MP3}},
            {"ts", usual, {AV_CODEC_ID_MP3, AV_CODEC_ID_AAC}}};
}

struct Combination {
    std::string extension;
    AVCodecID video;
    AVCodecID audio;
};

std::string nameOf(const Combination& made) {
    return made.extension + "_" + kCodecNames.at(made.video) + "_" + kCodecNames.at(made.audio);
}

void PrintTo(const Combination& made, std::ostream* out) {
    *out << nameOf(made);
}

void addAll(const Container& container, std::vector<Combination>& all) {
    for (const AVCodecID video : container.videos) {
        for (const AVCodecID audio : container.audios) {
            all.push_back({container.extension, video, audio});
        }
    }
}

/// Each encoder of the container once or more, beside others with each `shift`.
void addPairs(const Container& container, std::size_t shift, std::vector<Combination>& all) {
    const std::size_t videos = container.videos.size();
    const std::size_t audios = container.audios.size();
    for (std::size_t i = 0; i < std::max(videos, audios); ++i) {
        all.push_back({container.extension, container.videos[i % videos],
                       container.audios[(i + shift) % audios]});
    }
}

std::vector<Combination> combinations() {
    std::vector<Combination> all;
    std::size_t shift = 0;
    for (const Container& container : containers()) {
        if (wholeTables()) {
            addAll(container, all);
        } else {
            addPairs(container, shift++, all);
        }
    }
    return all;
}

/// Sources of other codecs, rates, sizes and sample rates. Their decoders hold back `delay`
/// pictures.
struct Source {
    const char* name;
    double rate; ///< pictures per second
    std::size_t delay;
};

constexpr std::array kSources = {Source{"h264.mp4", 30, 0}, Source{"mpeg2.mpg", 30, 1},
                                 Source{"hevc.mkv", 25, 2}};

class ReencodeMatrix : public Reencode, public testing::WithParamInterface<Combination> {
protected:
    ReencodeMatrix() { choose(GetParam().video, GetParam().audio); }

    static void expectWhatWasAskedFor(const std::string& path, const Source& source) {
        const auto shown = ffprobeJson(
            path, {"-show_entries", "stream=codec_type,codec_name,width,height,sample_rate,"
                                    "channels:packet=codec_type,pts_time,dts_time"});
        for (const auto& stream : shown.at("streams")) {
            const bool isVideo = stream.at("codec_type") == "video";
            EXPECT_EQ(stream.at("codec_name"),
                      kCodecNames.at(isVideo ? GetParam().video : GetParam().audio));
            if (isVideo) {
                EXPECT_EQ(stream.at("width"), 160);
                EXPECT_EQ(stream.at("height"), 120);
            } else {
                EXPECT_EQ(stream.at("sample_rate"), "44100");
                EXPECT_EQ(stream.at("channels"), 2);
            }
        }
        EXPECT_EQ(shown.at("streams").size(), 2U);
        expectPictures(shown.at("packets"), source);
    }

private:
    static void expectPictures(const nlohmann::json& packets, const Source& source) {
        std::vector<double> times;
        for (const auto& packet : packets) {
            if (packet.at("codec_type") == "video") {
                const std::string key = packet.contains("pts_time") ? "pts_time" : "dts_time";
                // A program stream does not tell the time of every picture.
                const double next = times.empty() ? 0.0 : times.back() + 1.0 / source.rate;
                times.push_back(packet.contains(key) ? std::stod(packet.at(key).get<std::string>())
                                                     : next);
            }
        }
        const auto due = static_cast<std::size_t>(std::ceil(kSeconds * source.rate));
        ASSERT_EQ(times.size(), due + source.delay);
        // AVI knows whole slots only: what an encoder puts before the first sample costs up to two.
        const double slots = GetParam().extension == "avi" ? 2.0 : 0.0;
        const double length = static_cast<double>(times.size() - 1) / source.rate;
        EXPECT_GE(times.back() - times.front(), length - 0.0021);
        EXPECT_LE(times.back() - times.front(), length + slots / source.rate + 0.0021);
    }

protected:
    static constexpr double kSeconds = 0.58;
};

TEST_P(ReencodeMatrix, combination_isMadeFromEverySourceAndPlays) {
    std::vector<std::string> outputs;
    for (const Source& source : kSources) {
        SCOPED_TRACE(source.name);
        engine_.videoFrameRate = 0.0; // a run puts the rate of its source here
        const std::string output = folder_ / (asTestName(source.name) + "." + GetParam().extension);

        EXPECT_EQ(cut(mediaPath(source.name), 0, 1000 * kSeconds, output).states, std::vector{1});

        expectWhatWasAskedFor(output, source);
        outputs.push_back(output);
    }
    EXPECT_TRUE(ffmpegDecodesClean(outputs));
}

INSTANTIATE_TEST_SUITE_P(Table, ReencodeMatrix, testing::ValuesIn(combinations()),
                         [](const auto& tested) { return nameOf(tested.param); });

} // namespace
} // namespace velmora::test
