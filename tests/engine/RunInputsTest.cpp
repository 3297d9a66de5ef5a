// Inputs that cannot be used, or only in part.

#include "CopySupport.h"
#include "RunSupport.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(Run, firstInputUnusable_failsAllInputs) {
    const std::string folder = folder_ / "folder.mp4";
    fs::create_directory(folder);
    const std::vector<std::string> unusable{missing_,
                                            folder,
                                            "",
                                            mediaPath("text.mp4"),
                                            mediaPath("empty.mp4"),
                                            mediaPath("truncated.mp4"),
                                            mediaPath("unknown-codec.avi"),
                                            mediaPath("damaged-decoder-header.avi")};
    for (const std::string& first : unusable) {
        const JobResult result = join({first, source_, source_}, output_);

        EXPECT_EQ(result.states, (std::vector{2, 2, 2})) << first;
        EXPECT_EQ(result.index, 3) << first;
        EXPECT_FALSE(fs::exists(output_)) << first;
    }
}

TEST_F(Run, firstInputWithoutVideo_endsTheRunWithAllInputsPending) {
    writeFile(output_, "earlier");
    for (const char* name : {"audio-only.m4a", "audio-only.wav", "cover.mp3", "subtitles.srt"}) {
        const JobResult result = join({mediaPath(name), source_}, output_);

        EXPECT_EQ(result.states, (std::vector{255, 255})) << name;
        EXPECT_EQ(result.index, 0) << name;
        EXPECT_EQ(fs::file_size(output_), 7U) << name;
    }
}

TEST_F(Run, firstInputWithoutStreams_endsTheRunWithAllInputsPending) {
    const std::string input = folder_ / "no-streams.mp4";
    writeFile(input, ";FFMETADATA1\ntitle=none\n");

    EXPECT_EQ(join({input, source_}, output_).states, (std::vector{255, 255}));
    EXPECT_FALSE(fs::exists(output_));
}

TEST_F(Run, laterInputUnusable_failsAndTheNextGoesOn) {
    const std::vector<std::string> unusable{missing_, mediaPath("text.mp4"), mediaPath("empty.mp4"),
                                            mediaPath("truncated.mp4"),
                                            mediaPath("unknown-codec.avi")};
    for (const std::string& middle : unusable) {
        const JobResult result = join({source_, middle, source_}, output_);

        EXPECT_EQ(result.states, (std::vector{1, 2, 1})) << middle;
        EXPECT_EQ(result.index, 3) << middle;
        EXPECT_EQ(videoPackets(output_), 2 * sourceVideoPackets_) << middle;
    }
}

TEST_F(Run, lastInputUnusable_leavesACompleteOutput) {
    for (const std::string& last : {missing_, mediaPath("text.mp4")}) {
        const JobResult result = join({source_, last}, output_);

        EXPECT_EQ(result.states, (std::vector{1, 2})) << last;
        EXPECT_EQ(result.index, 2) << last;
        EXPECT_EQ(videoPackets(output_), sourceVideoPackets_) << last;
        EXPECT_EQ(decode(output_).complaints, "") << last;
    }
}

TEST_F(Run, laterInputWithoutVideo_addsItsSound) {
    const std::string sound = mediaPath("audio-only.m4a");

    const JobResult result = join({source_, sound, source_}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 1, 1}));
    EXPECT_EQ(videoPackets(output_), 2 * sourceVideoPackets_);
    const std::vector<PacketFacts> packets = packetsOf(output_, "a:0");
    EXPECT_EQ(packets.size(), 2 * audioPackets(source_) + audioPackets(sound));
    for (std::size_t i = 0; i < packets.size(); ++i) {
        ASSERT_EQ(packets[i].pts, static_cast<std::int64_t>(i) * 1024);
    }
}

TEST_F(Run, laterInputWithSound_failsWhereTheFirstHadNone) {
    const std::string silent = mediaPath("video-only.mp4");

    const JobResult result = join({silent, mediaPath("h264.mp4"), silent}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 2, 1}));
    EXPECT_EQ(videoPackets(output_), 2 * videoPackets(silent));
}

TEST_F(Run, laterInputWithoutSound_isTaken) {
    const std::string silent = mediaMadeBy("-i @mpeg4.mp4 -c copy -an", "silent.mp4");

    EXPECT_EQ(join({mediaPath("mpeg4.mp4"), silent}, output_).states, (std::vector{1, 1}));
    EXPECT_EQ(videoPackets(output_), 2 * videoPackets(silent));
}

} // namespace
} // namespace velmora::test
