#include "InputMedia.h"
#include "MediaFacts.h"
#include "TestMedia.h"

extern "C" {
#include <libavutil/log.h>
}

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

using ::testing::TestWithParam;

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

TEST_P(InputMediaOf, streamInfo_isTheSameAsReadPlainly) {
    EXPECT_EQ(media_->container()->nb_streams, plain_->nb_streams);
    EXPECT_EQ(streamInfoDifferences(*media_, *plain_), Facts());
}

TEST_P(InputMediaOf, firstPackets_areTheSameAsReadPlainly) {
    EXPECT_EQ(packetDifferences(*media_, *plain_), Facts());
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

TEST(InputMedia, severalStreamsOfAType_lastOfEachIsPicked) {
    const auto media = opened("two-streams.mkv");
    EXPECT_EQ(media->videoStreamIndex(), 2);
    EXPECT_EQ(media->audioStreamIndex(), 3);
}

TEST(InputMedia, attachedPicture_isNoVideoStream) {
    const auto withVideo = opened("cover.mp4");
    EXPECT_EQ(withVideo->videoStreamIndex(), 0);
    EXPECT_EQ(withVideo->audioStreamIndex(), 1);
    const auto withSound = opened("cover.mp3");
    EXPECT_EQ(withSound->videoStreamIndex(), -1);
    EXPECT_EQ(withSound->videoStream(), nullptr);
    EXPECT_EQ(withSound->audioStreamIndex(), 0);
}

TEST(InputMedia, subtitles_areNotRead) {
    const auto media = opened("subtitles.mkv");
    EXPECT_EQ(streamsRead(*media), (std::vector{0, 1}));
}

TEST(InputMedia, seekByTime_startOfTheContainerIsAdded) {
    const auto media = opened("h264-bframes.flv");
    const double start = static_cast<double>(media->container()->start_time) / AV_TIME_BASE;
    double seconds = 2.0;
    EXPECT_GE(media->seek(seconds), 0);
    EXPECT_DOUBLE_EQ(seconds, 2.0 + start);
}

TEST(InputMedia, seekByBytes_timeStaysAsAsked) {
    for (const char* name : {"mpeg2.ts", "mpeg2.mpg", "theora.ogv"}) {
        const auto media = opened(name);
        double seconds = 1.0;
        EXPECT_GE(media->seek(seconds), 0) << name;
        EXPECT_EQ(seconds, 1.0) << name;
    }
}

TEST(InputMedia, seekByBytes_goesToTheSameFractionOfTheFile) {
    const auto media = opened("mpeg2.ts");
    const auto size = static_cast<double>(avio_size(media->container()->pb));
    double seconds = static_cast<double>(media->container()->duration) / AV_TIME_BASE / 2;
    ASSERT_GE(media->seek(seconds), 0);
    const PacketHandle packet(av_packet_alloc());
    ASSERT_GE(media->read(*packet), 0);
    EXPECT_GE(static_cast<double>(packet->pos), size / 2);
    EXPECT_LT(static_cast<double>(packet->pos), size / 2 + 20'000);
}

TEST(InputMedia, seekToAnyNumber_doesNoHarm) {
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

TEST(InputMedia, raisedFlag_openingEnds) {
    av_log_set_level(AV_LOG_QUIET);
    const StopFlag stop{1};
    InputMedia media(mediaPath("h264.mp4"), &stop);
    EXPECT_EQ(media.open(), AVERROR_EXIT);
    av_log_set_level(AV_LOG_INFO);
}

TEST(InputMedia, flagRaisedWhileReading_endsItWithItsOwnCode) {
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
TEST(InputMedia, playListThatNamesAnAddress_opensNoConnection) {
    av_log_set_level(AV_LOG_QUIET);
    const TemporaryFolder folder;
    writeFile(folder / "list.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXTINF:4,\n"
                                    "http://127.0.0.1:1/a.ts\n#EXT-X-ENDLIST\n");
    InputMedia media(folder / "list.m3u8", nullptr);
    const bool isRead = media.open() >= 0 && media.readStreamInfo() >= 0;
    EXPECT_FALSE(isRead);
    av_log_set_level(AV_LOG_INFO);
}

} // namespace
} // namespace velmora::test
