// Which key frames are found, compared with the packets that ffprobe reads.

#include "JobSupport.h"
#include "MediaOperations.h"
#include "MediaReader.h"
#include "TestMedia.h"

#include <algorithm>
#include <cmath>

namespace velmora::test {
namespace {

KeyFrames keyFramesOf(const std::string& path) {
    const StopFlag stop{0};
    return mediaOperations().readKeyFrames(path, stop);
}

double secondsIn(const nlohmann::json& fields, const char* name) {
    return fields.contains(name) ? std::stod(fields.at(name).get<std::string>()) : 0;
}

/// As ffprobe reads the file, from beginning to end.
KeyFrames referenceOf(const std::string& path) {
    const auto read = ffprobeJson(path, {"-select_streams", "V:0", "-show_entries",
                                         "format=start_time:packet=pts_time,dts_time,flags"});
    const double start = secondsIn(read.at("format"), "start_time");
    KeyFrames expected;
    for (const auto& packet : read.at("packets")) {
        const char* const time = packet.contains("pts_time") ? "pts_time" : "dts_time";
        if (packet.at("flags").get<std::string>().starts_with('K')) {
            expected.push_back(std::llround((secondsIn(packet, time) - start) * 1e6));
        }
    }
    std::ranges::sort(expected);
    return expected;
}

void expectNear(const KeyFrames& found, const KeyFrames& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_NEAR(static_cast<double>(found[i]), static_cast<double>(expected[i]), 2);
    }
}

/// Every second place of a Matroska file's index becomes a place without meaning.
void makeIndexSparse(Bytes& content) {
    constexpr std::uint8_t kPlace = 0xBB;
    constexpr std::uint8_t kNothing = 0xEC;
    const Bytes index{0x1C, 0x53, 0xBB, 0x6B};
    const auto found = std::find_end(content.begin(), content.end(), index.begin(), index.end());
    ASSERT_NE(found, content.end());
    bool kept = true;
    for (auto place = std::find(found + 4, content.end(), kPlace);
         place < content.end() && *place == kPlace; place += 2 + (place[1] & 0x7F)) {
        *place = kept ? kPlace : kNothing;
        kept = !kept;
    }
}

class KeyFrameReading : public ::testing::TestWithParam<const char*> {};

TEST_P(KeyFrameReading, file_hasThoseThatFfprobeReads) {
    const KeyFrames expected = referenceOf(mediaPath(GetParam()));
    ASSERT_FALSE(expected.empty());
    expectNear(keyFramesOf(mediaPath(GetParam())), expected);
}

INSTANTIATE_TEST_SUITE_P(Files, KeyFrameReading,
                         ::testing::Values("h264.mp4", "h264-bframes.mp4", "h264-open-gop.mp4",
                                           "h264-2997.mp4", "h264-vfr.mp4", "h264-bframes.mkv",
                                           "hevc.mkv", "h264-fragmented.mp4", "piped.mkv",
                                           "mpeg4-bframes.avi", "mpeg2.mpg", "wmv2.wmv", "vp9.webm",
                                           "edit-list.mp4", "one-picture.mkv", "cut-off.mkv",
                                           "h264-bframes.ts", "h264-gop250.ts", "h264.flv",
                                           "mpeg4.avi", "late-video.mp4"),
                         [](const auto& file) { return asTestName(file.param); });

TEST(KeyFrameReading, matroskaIndexThatLeavesOutSome_isNotTrusted) {
    const TemporaryFolder folder;
    const std::string whole = mediaMadeBy(
        "-f lavfi -i testsrc2=size=64x36:rate=25:duration=20 -c:v libx264 -g 50", "keys.mkv");
    Bytes content = readFile(whole);
    makeIndexSparse(content);
    const std::string sparse = folder / "sparse.mkv";
    writeFile(sparse, content);
    ASSERT_EQ(referenceOf(whole).size(), 10U);

    expectNear(keyFramesOf(whole), referenceOf(whole));
    expectNear(keyFramesOf(sparse), referenceOf(whole));
}

TEST(KeyFrameReading, matroskaWithIndex_isNotReadToItsEnd) {
    const TemporaryFolder folder;
    const std::string whole =
        mediaMadeBy("-f lavfi -i testsrc2=size=64x36:rate=25:duration=20 -c:v libx264 -g 50 "
                    "-cues_to_front 1 -reserve_index_space 4096",
                    "keys-front.mkv");
    Bytes content = readFile(whole);
    content.resize(content.size() * 9 / 10);
    writeFile(folder / "cut.mkv", content);

    expectNear(keyFramesOf(folder / "cut.mkv"), referenceOf(whole));
}

TEST(KeyFrameReading, manyOpenGroupsInMov_haveTheirOwnDelays) {
    const std::string source =
        mediaMadeBy("-f lavfi -i testsrc2=size=64x36:rate=25:duration=8 -c:v libx264 -g 5 -bf 2 "
                    "-x264-params open-gop=1:scenecut=0",
                    "keys-open.mp4");
    ASSERT_GT(referenceOf(source).size(), 32U);
    expectNear(keyFramesOf(source), referenceOf(source));
}

TEST(KeyFrameReading, clockThatJumps_goesOn) {
    const KeyFrames found = keyFramesOf(mediaPath("two-recordings.ts"));
    const std::size_t expected = keyFramesOf(mediaPath("h264-bframes.ts")).size() +
                                 keyFramesOf(mediaPath("h264-gop250.ts")).size();
    ASSERT_EQ(found.size(), expected);
    EXPECT_GT(found.back(), 10'000'000);
    EXPECT_LT(found.back(), 20'000'000);
}

TEST(KeyFrameReading, stopRaised_givesNone) {
    const StopFlag stop{1};
    EXPECT_TRUE(mediaOperations().readKeyFrames(mediaPath("h264.mp4"), stop).empty());
}

TEST(KeyFrameReading, withoutPictures_givesNone) {
    EXPECT_TRUE(keyFramesOf(mediaPath("audio-only.m4a")).empty());
    EXPECT_TRUE(keyFramesOf("/nowhere.mp4").empty());
}

} // namespace
} // namespace velmora::test
