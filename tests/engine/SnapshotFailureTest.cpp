// Files of which there is no picture, and those that are refused.

#include "SnapshotSupport.h"
#include "TestMedia.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(Snapshots, fileWithoutVideo_writesNothingAndSucceeds) {
    for (const char* name : {"audio-only.m4a", "audio-only.wav", "cover.mp3", "cover.m4a"}) {
        EXPECT_EQ(take(mediaPath(name), 0.0), 0) << name;
        EXPECT_EQ(take(mediaPath(name), 1.0), 0) << name;
    }
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, withoutVideoDecoder_writesNothingAndSucceeds) {
    EXPECT_EQ(take(mediaPath("unknown-codec.avi"), 0.0), 0);
    EXPECT_EQ(take(mediaPath("unknown-codec-only.avi"), 0.5), 0);
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, decoderThatDoesNotOpen_givesItsCode) {
    EXPECT_EQ(take(mediaPath("damaged-decoder-header.avi"), 0.0), AVERROR_INVALIDDATA);
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, noPictureThatCanBeDecoded_writesNothingAndSucceeds) {
    av_log_set_level(AV_LOG_QUIET);
    EXPECT_EQ(take(mediaPath("headers-gone.ts"), 0.0), 0);
    EXPECT_EQ(take(mediaPath("headers-gone.ts"), 1.0), 0);
    EXPECT_FALSE(fs::exists(picture_));
}

/// What the media libraries themselves say to the file.
int plainOpenCode(const std::string& path) {
    AVFormatContext* context = nullptr;
    const int result = avformat_open_input(&context, ("file:" + path).c_str(), nullptr, nullptr);
    avformat_close_input(&context);
    return result;
}

TEST_F(Snapshots, fileThatDoesNotOpen_givesTheLibrariesCode) {
    for (const std::string& path : {folder_ / "missing.mp4", mediaPath("text.mp4"),
                                    mediaPath("empty.mp4"), mediaPath("truncated.mp4")}) {
        EXPECT_EQ(take(path, 0.0), plainOpenCode(path)) << path;
        EXPECT_EQ(take(path, 1.0), plainOpenCode(path)) << path;
    }
    EXPECT_EQ(take(folder_ / "missing.mp4", 0.0), AVERROR(ENOENT));
    EXPECT_EQ(take(mediaPath("text.mp4"), 0.0), AVERROR_INVALIDDATA);
    EXPECT_EQ(engine_.startTimes[0], 0.0);
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, fileWithoutStreamInfo_givesTheLibrariesCode) {
    EXPECT_EQ(take(mediaPath("impossible-pictures.ivf"), 0.0), AVERROR_INVALIDDATA);
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, noRegularFile_isRefusedWithoutWaiting) {
    const std::string pipe = folder_ / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_LT(take(pipe, 0.0), 0);
    EXPECT_LT(take(folder_.path(), 0.0), 0);
    EXPECT_LT(take("/dev/zero", 0.0), 0);
    EXPECT_LT(take("", 0.0), 0);
}

} // namespace
} // namespace velmora::test
