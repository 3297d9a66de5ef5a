#include "InputMedia.h"
#include "TestMedia.h"

extern "C" {
#include <libavutil/log.h>
}

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {
namespace {

using ::testing::TestWithParam;

constexpr std::size_t kComparedPackets = 100;

std::string text(std::int64_t number) {
    return number == AV_NOPTS_VALUE ? "none" : std::to_string(number);
}

std::string text(AVRational number) {
    return std::to_string(number.num) + '/' + std::to_string(number.den);
}

std::string channelsOf(const AVCodecParameters& parameters) {
    std::array<char, 100> description{};
    av_channel_layout_describe(&parameters.ch_layout, description.data(), description.size());
    return description.data();
}

std::string extradataOf(const AVCodecParameters& parameters) {
    std::string bytes;
    for (int i = 0; i < parameters.extradata_size; ++i) {
        bytes += std::to_string(parameters.extradata[i]) + ' ';
    }
    return bytes;
}

using Facts = std::vector<std::string>;

Facts factsOf(const AVCodecParameters& parameters) {
    return {"type " + text(parameters.codec_type),
            "codec " + text(parameters.codec_id),
            "tag " + text(parameters.codec_tag),
            "extradata " + extradataOf(parameters),
            "format " + text(parameters.format),
            "bit rate " + text(parameters.bit_rate),
            "bits per coded sample " + text(parameters.bits_per_coded_sample),
            "bits per raw sample " + text(parameters.bits_per_raw_sample),
            "profile " + text(parameters.profile),
            "level " + text(parameters.level),
            "width " + text(parameters.width),
            "height " + text(parameters.height),
            "sample aspect ratio " + text(parameters.sample_aspect_ratio),
            "field order " + text(parameters.field_order),
            "colour range " + text(parameters.color_range),
            "colour primaries " + text(parameters.color_primaries),
            "colour transfer " + text(parameters.color_trc),
            "colour space " + text(parameters.color_space),
            "chroma location " + text(parameters.chroma_location),
            "video delay " + text(parameters.video_delay),
            "channels " + channelsOf(parameters),
            "sample rate " + text(parameters.sample_rate),
            "block align " + text(parameters.block_align),
            "frame size " + text(parameters.frame_size),
            "initial padding " + text(parameters.initial_padding),
            "trailing padding " + text(parameters.trailing_padding),
            "seek preroll " + text(parameters.seek_preroll)};
}

/// Matroska stores display times only; decoding times and what follows from them are guessed.
bool storesDecodingTimes(const AVFormatContext& container) {
    return std::string_view(container.iformat->name).find("matroska") == std::string_view::npos;
}

Facts factsOf(const AVFormatContext& container, const AVStream& stream) {
    Facts facts = factsOf(*stream.codecpar);
    facts.push_back("real frame rate " + text(stream.r_frame_rate));
    facts.push_back("average frame rate " + text(stream.avg_frame_rate));
    facts.push_back("time base " + text(stream.time_base));
    facts.push_back("stream sample aspect ratio " + text(stream.sample_aspect_ratio));
    facts.push_back("frames " + text(stream.nb_frames));
    facts.push_back("disposition " + text(stream.disposition));
    if (storesDecodingTimes(container)) {
        facts.push_back("start " + text(stream.start_time));
        facts.push_back("length " + text(stream.duration));
    }
    return facts;
}

Facts factsOf(const AVFormatContext& container) {
    return {"streams " + text(container.nb_streams), "start " + text(container.start_time),
            "duration " + text(container.duration), "bit rate " + text(container.bit_rate)};
}

struct PacketRead {
    int stream = 0;
    std::int64_t pts = 0;
    std::int64_t dts = 0;
    std::int64_t duration = 0;
    int flags = 0;
    Bytes bytes;
};

/// Reads on until there are enough packets of the two streams.
template <typename Read> std::vector<PacketRead> packetsOf(const InputMedia& media, Read read) {
    std::vector<PacketRead> packets;
    const PacketHandle packet(av_packet_alloc());
    while (packets.size() < kComparedPackets && read(*packet) >= 0) {
        if (packet->stream_index == media.videoStreamIndex() ||
            packet->stream_index == media.audioStreamIndex()) {
            packets.push_back({packet->stream_index, packet->pts, packet->dts, packet->duration,
                               packet->flags, Bytes(packet->data, packet->data + packet->size)});
        }
        av_packet_unref(packet.get());
    }
    return packets;
}

Facts factsOf(const AVFormatContext& container, const PacketRead& packet) {
    Facts facts{"stream " + text(packet.stream), "pts " + text(packet.pts),
                "duration " + text(packet.duration), "flags " + text(packet.flags),
                "size " + text(static_cast<std::int64_t>(packet.bytes.size()))};
    if (storesDecodingTimes(container)) {
        facts.push_back("dts " + text(packet.dts));
    }
    return facts;
}

void expectSame(const Facts& actual, const Facts& plain, const std::string& what) {
    ASSERT_EQ(actual.size(), plain.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        EXPECT_EQ(actual[i], plain[i]) << what;
    }
}

/// The file as the media libraries read it without help.
InputContextHandle openPlainly(const std::string& path) {
    AVFormatContext* context = nullptr;
    const std::string address = "file:" + path;
    if (avformat_open_input(&context, address.c_str(), nullptr, nullptr) < 0 ||
        avformat_find_stream_info(context, nullptr) < 0) {
        avformat_close_input(&context);
    }
    return InputContextHandle(context);
}

class InputMediaOf : public TestWithParam<std::string> {
protected:
    void SetUp() override {
        av_log_set_level(AV_LOG_QUIET);
        path_ = mediaPath(GetParam());
        plain_ = openPlainly(path_);
        ASSERT_NE(plain_, nullptr);
        media_ = std::make_unique<InputMedia>(path_, nullptr);
        ASSERT_GE(media_->open(), 0);
        ASSERT_GE(media_->readStreamInfo(), 0);
    }
    void TearDown() override { av_log_set_level(AV_LOG_INFO); }

    std::string path_;
    InputContextHandle plain_;
    std::unique_ptr<InputMedia> media_;
};

TEST_P(InputMediaOf, StreamInfo_is_the_same_as_read_plainly) {
    const AVFormatContext& actual = *media_->container();
    expectSame(factsOf(actual), factsOf(*plain_), "container");
    ASSERT_EQ(actual.nb_streams, plain_->nb_streams);
    for (unsigned i = 0; i < plain_->nb_streams; ++i) {
        expectSame(factsOf(actual, *actual.streams[i]), factsOf(*plain_, *plain_->streams[i]),
                   "stream " + std::to_string(i));
    }
}

TEST_P(InputMediaOf, FirstPackets_are_the_same_as_read_plainly) {
    const auto actual =
        packetsOf(*media_, [this](AVPacket& packet) { return media_->read(packet); });
    const auto plain = packetsOf(
        *media_, [this](AVPacket& packet) { return av_read_frame(plain_.get(), &packet); });

    ASSERT_EQ(actual.size(), plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
        expectSame(factsOf(*plain_, actual[i]), factsOf(*plain_, plain[i]),
                   "packet " + std::to_string(i));
        EXPECT_TRUE(actual[i].bytes == plain[i].bytes) << "packet " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Media, InputMediaOf, ::testing::ValuesIn(readableMedia()),
                         [](const auto& tested) { return asTestName(tested.param); });

/// An input of which the streams are known.
std::unique_ptr<InputMedia> opened(const std::string& name) {
    auto media = std::make_unique<InputMedia>(mediaPath(name), nullptr);
    EXPECT_GE(media->open(), 0) << name;
    EXPECT_GE(media->readStreamInfo(), 0) << name;
    return media;
}

/// From the beginning; what was read ahead before is not looked at.
std::vector<int> streamsRead(InputMedia& media) {
    double start = 0.0;
    EXPECT_GE(media.seek(start), 0);
    std::vector<int> streams;
    const PacketHandle packet(av_packet_alloc());
    while (media.read(*packet) >= 0) {
        if (std::ranges::find(streams, packet->stream_index) == streams.end()) {
            streams.push_back(packet->stream_index);
        }
        av_packet_unref(packet.get());
    }
    std::ranges::sort(streams);
    return streams;
}

TEST(InputMedia, SeveralStreamsOfAType_last_of_each_is_picked) {
    const auto media = opened("two-streams.mkv");
    EXPECT_EQ(media->videoStreamIndex(), 2);
    EXPECT_EQ(media->audioStreamIndex(), 3);
}

TEST(InputMedia, AttachedPicture_is_no_video_stream) {
    const auto withVideo = opened("cover.mp4");
    EXPECT_EQ(withVideo->videoStreamIndex(), 0);
    EXPECT_EQ(withVideo->audioStreamIndex(), 1);
    const auto withSound = opened("cover.mp3");
    EXPECT_EQ(withSound->videoStreamIndex(), -1);
    EXPECT_EQ(withSound->videoStream(), nullptr);
    EXPECT_EQ(withSound->audioStreamIndex(), 0);
}

TEST(InputMedia, Subtitles_are_not_read) {
    const auto media = opened("subtitles.mkv");
    EXPECT_EQ(streamsRead(*media), (std::vector{0, 1}));
}

TEST(InputMedia, VideoOnly_sound_is_read_no_more) {
    const auto media = opened("mpeg4.mp4");
    media->readVideoOnly();
    EXPECT_EQ(streamsRead(*media), (std::vector{0}));
}

TEST(InputMedia, StreamWithoutDecoder_is_told_from_one_that_does_not_open) {
    av_log_set_level(AV_LOG_QUIET);
    const auto unknown = opened("unknown-codec.avi");
    EXPECT_EQ(unknown->openVideoDecoder(), AVERROR_DECODER_NOT_FOUND);
    EXPECT_EQ(unknown->videoDecoder(), nullptr);
    EXPECT_EQ(unknown->openAudioDecoder(), 0);
    EXPECT_NE(unknown->audioDecoder(), nullptr);
    const auto damaged = opened("damaged-decoder-header.avi");
    EXPECT_EQ(damaged->openVideoDecoder(), AVERROR_INVALIDDATA);
    EXPECT_EQ(damaged->videoDecoder(), nullptr);
    av_log_set_level(AV_LOG_INFO);
}

TEST(InputMedia, WithoutTheStream_opening_its_decoder_does_nothing) {
    const auto sound = opened("audio-only.m4a");
    EXPECT_EQ(sound->openVideoDecoder(), 0);
    EXPECT_EQ(sound->videoDecoder(), nullptr);
    const auto pictures = opened("video-only.mp4");
    EXPECT_EQ(pictures->openAudioDecoder(), 0);
    EXPECT_EQ(pictures->audioDecoder(), nullptr);
}

TEST(InputMedia, SeekByTime_start_of_the_container_is_added) {
    const auto media = opened("h264-bframes.flv");
    const double start = static_cast<double>(media->container()->start_time) / AV_TIME_BASE;
    double seconds = 2.0;
    EXPECT_GE(media->seek(seconds), 0);
    EXPECT_DOUBLE_EQ(seconds, 2.0 + start);
}

TEST(InputMedia, SeekByBytes_time_stays_as_asked) {
    for (const char* name : {"mpeg2.ts", "mpeg2.mpg", "theora.ogv"}) {
        const auto media = opened(name);
        double seconds = 1.0;
        EXPECT_GE(media->seek(seconds), 0) << name;
        EXPECT_EQ(seconds, 1.0) << name;
    }
}

TEST(InputMedia, SeekByBytes_goes_to_the_same_fraction_of_the_file) {
    const auto media = opened("mpeg2.ts");
    const auto size = static_cast<double>(avio_size(media->container()->pb));
    double seconds = static_cast<double>(media->container()->duration) / AV_TIME_BASE / 2;
    ASSERT_GE(media->seek(seconds), 0);
    const PacketHandle packet(av_packet_alloc());
    ASSERT_GE(media->read(*packet), 0);
    EXPECT_GE(static_cast<double>(packet->pos), size / 2);
    EXPECT_LT(static_cast<double>(packet->pos), size / 2 + 20'000);
}

TEST(InputMedia, SeekToAnyNumber_does_no_harm) {
    av_log_set_level(AV_LOG_QUIET);
    for (const char* name : {"h264.mp4", "mpeg2.ts", "mpeg4.avi", "raw.h264", "piped.mkv"}) {
        const auto media = opened(name);
        for (const double asked :
             {1e300, -1e300, 1e18, 9.3e12, -0.0, 1e-300, std::numeric_limits<double>::infinity(),
              std::numeric_limits<double>::quiet_NaN()}) {
            double seconds = asked;
            media->seek(seconds);
            const PacketHandle packet(av_packet_alloc());
            media->read(*packet);
        }
    }
    av_log_set_level(AV_LOG_INFO);
}

TEST(InputMedia, RaisedFlag_opening_ends) {
    av_log_set_level(AV_LOG_QUIET);
    const StopFlag stop{1};
    InputMedia media(mediaPath("h264.mp4"), &stop);
    EXPECT_EQ(media.open(), AVERROR_EXIT);
    av_log_set_level(AV_LOG_INFO);
}

TEST(InputMedia, FlagRaisedWhileReading_ends_it_with_its_own_code) {
    const std::string path = mediaPath("h264-gop250.ts");
    StopFlag stop{0};
    InputMedia media(path, &stop);
    ASSERT_GE(media.open(), 0);
    ASSERT_GE(media.readStreamInfo(), 0);
    double seconds = 0.0;
    media.seek(seconds);
    stop = 1;
    const PacketHandle packet(av_packet_alloc());
    int result = 0;
    while ((result = media.read(*packet)) >= 0) {
        av_packet_unref(packet.get());
    }
    EXPECT_EQ(result, AVERROR_EXIT);
}

// A play list names other files; only files of this machine may be opened for it.
TEST(InputMedia, PlayListThatNamesAnAddress_opens_no_connection) {
    av_log_set_level(AV_LOG_QUIET);
    const TemporaryFolder folder;
    writeFile(folder / "list.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXTINF:4,\n"
                                    "http://127.0.0.1:1/a.ts\n#EXT-X-ENDLIST\n");
    InputMedia media(folder / "list.m3u8", nullptr);
    if (media.open() >= 0) {
        EXPECT_LT(media.readStreamInfo(), 0);
    }
    av_log_set_level(AV_LOG_INFO);
}

} // namespace
} // namespace velmora::test
