#include "ConversionEngine.h"
#include "OpenWatch.h"
#include "SnapshotReference.h"
#include "TestMedia.h"

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

/// A time of change long ago, so that any later change can be told from it.
void backdate(const std::string& path) {
    const std::array<timespec, 2> times{timespec{1'000'000, 0}, timespec{1'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times.data(), 0), 0);
}

class SnapshotFiles : public ::testing::Test {
protected:
    void SetUp() override {
        av_log_set_level(AV_LOG_QUIET);
        engine_.snapshotPath = picture_;
        engine_.currentIndex = 0;
    }
    void TearDown() override {
        engine_.reset();
        av_log_set_level(AV_LOG_INFO);
    }

    int take(const std::string& path, double seconds) {
        engine_.probePath = path;
        engine_.startTimes[0] = seconds;
        return engine_.snapshot();
    }
    bool showsPlainPictureOf(const std::string& path, double seconds) {
        return readFile(picture_) == referenceSnapshot(path, seconds).file;
    }

    ConversionEngine& engine_ = ConversionEngine::instance();
    TemporaryFolder folder_;
    std::string picture_ = folder_ / "picture.bmp";
};

TEST_F(SnapshotFiles, samePictureAgain_isNotWrittenAgain) {
    const std::string path = mediaPath("h264-bframes.flv");
    ASSERT_EQ(take(path, 2.0), 0);
    const double changedTime = engine_.startTimes[0];
    const OpenWatch watch(picture_);

    ASSERT_EQ(take(path, 2.0), 0);

    EXPECT_EQ(watch.openings(), 0);
    EXPECT_EQ(engine_.startTimes[0], changedTime); // as if it had been
}

TEST_F(SnapshotFiles, otherTime_isWritten) {
    const std::string path = mediaPath("h264-bframes.flv");
    ASSERT_EQ(take(path, 1.0), 0);
    const OpenWatch watch(picture_);
    ASSERT_EQ(take(path, 2.5), 0);
    EXPECT_GT(watch.openings(), 0);
    EXPECT_TRUE(showsPlainPictureOf(path, 2.5));
}

TEST_F(SnapshotFiles, removedPicture_isWrittenAgain) {
    const std::string path = mediaPath("h264.mp4");
    ASSERT_EQ(take(path, 1.0), 0);
    fs::remove(picture_);
    ASSERT_EQ(take(path, 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(path, 1.0));
}

TEST_F(SnapshotFiles, pictureOverwrittenByAnother_isWrittenAgain) {
    const std::string path = mediaPath("h264.mp4");
    ASSERT_EQ(take(path, 1.0), 0);
    writeFile(picture_, "something else");
    ASSERT_EQ(take(path, 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(path, 1.0));

    writeFile(picture_, Bytes(230'454, 0)); // even of the same size
    backdate(picture_);
    ASSERT_EQ(take(path, 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(path, 1.0));
}

TEST_F(SnapshotFiles, pictureReplacedByAnother_isWrittenAgain) {
    const std::string path = mediaPath("h264.mp4");
    ASSERT_EQ(take(path, 1.0), 0);
    writeFile(folder_ / "other", Bytes(230'454, 0));
    fs::rename(folder_ / "other", picture_);
    ASSERT_EQ(take(path, 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(path, 1.0));
}

TEST_F(SnapshotFiles, otherPlace_isWrittenThereToo) {
    const std::string path = mediaPath("h264.mp4");
    ASSERT_EQ(take(path, 1.0), 0);
    engine_.snapshotPath = folder_ / "other.bmp";
    ASSERT_EQ(take(path, 1.0), 0);
    EXPECT_TRUE(readFile(folder_ / "other.bmp") == readFile(picture_));
}

TEST_F(SnapshotFiles, anotherFileOfTheSameTime_isWritten) {
    ASSERT_EQ(take(mediaPath("h264.mp4"), 1.0), 0);
    ASSERT_EQ(take(mediaPath("h264-gop250.ts"), 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(mediaPath("h264-gop250.ts"), 1.0));
    ASSERT_EQ(take(mediaPath("h264.mp4"), 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(mediaPath("h264.mp4"), 1.0));
}

TEST_F(SnapshotFiles, sourceReplacedByAnotherFile_isNoticed) {
    const std::string path = copyOfMedia("h264.mp4", folder_);
    ASSERT_EQ(take(path, 1.0), 0);
    fs::copy_file(mediaPath("two-h264.mp4"), folder_ / "new");
    fs::rename(folder_ / "new", path);
    ASSERT_EQ(take(path, 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(mediaPath("two-h264.mp4"), 1.0));
}

TEST_F(SnapshotFiles, sourceRewrittenInPlace_isNoticed) {
    const std::string path = copyOfMedia("h264.mp4", folder_);
    backdate(path);
    ASSERT_EQ(take(path, 1.0), 0);
    ASSERT_EQ(take(path, 2.0), 0);
    writeFile(path, readFile(mediaPath("two-h264.mp4")));
    ASSERT_EQ(take(path, 2.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(mediaPath("two-h264.mp4"), 2.0));
}

TEST_F(SnapshotFiles, sourceRewrittenToTheSameSize_isNoticed) {
    const std::string path = copyOfMedia("h264.mp4", folder_);
    Bytes other = readFile(mediaPath("two-h264.mp4"));
    other.resize(fs::file_size(path)); // what comes after the last box is not looked at
    backdate(path);
    ASSERT_EQ(take(path, 1.0), 0);
    writeFile(path, other);
    ASSERT_EQ(take(path, 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(mediaPath("two-h264.mp4"), 1.0));
}

TEST_F(SnapshotFiles, sourceRemoved_givesTheSystemsError) {
    const std::string path = copyOfMedia("h264.mp4", folder_);
    ASSERT_EQ(take(path, 1.0), 0);
    fs::remove(path);
    EXPECT_EQ(take(path, 1.0), AVERROR(ENOENT));
    EXPECT_EQ(take(path, 2.0), AVERROR(ENOENT));
}

TEST_F(SnapshotFiles, sourceThatBecameWords_givesAnError) {
    const std::string path = copyOfMedia("h264.mp4", folder_);
    backdate(path);
    ASSERT_EQ(take(path, 1.0), 0);
    writeFile(path, readFile(mediaPath("text.mp4")));
    EXPECT_EQ(take(path, 1.0), AVERROR_INVALIDDATA);
}

TEST_F(SnapshotFiles, sourceByAnotherName_isTheSamePicture) {
    const std::string path = copyOfMedia("h264.mp4", folder_);
    fs::create_symlink(path, folder_ / "link.mp4");
    ASSERT_EQ(take(path, 1.0), 0);
    ASSERT_EQ(take(folder_ / "link.mp4", 2.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(path, 2.0));
}

// In a folder that everyone can write to, anything may lie where the picture belongs.
class SnapshotOntoSomething : public SnapshotFiles {
protected:
    void expectNothingWritten() {
        EXPECT_EQ(take(mediaPath("h264.mp4"), 1.0), 0);
        EXPECT_EQ(take(mediaPath("h264.mp4"), 1.0), 0);
    }
};

TEST_F(SnapshotOntoSomething, symbolicLink_isNotFollowed) {
    writeFile(folder_ / "precious", "kept");
    fs::create_symlink("precious", picture_);
    expectNothingWritten();
    EXPECT_TRUE(fs::is_symlink(picture_));
    EXPECT_EQ(readFile(folder_ / "precious").size(), 4U);
}

TEST_F(SnapshotOntoSomething, hardLink_isLeftAlone) {
    writeFile(folder_ / "precious", "kept");
    fs::create_hard_link(folder_ / "precious", picture_);
    expectNothingWritten();
    EXPECT_EQ(readFile(folder_ / "precious").size(), 4U);
}

TEST_F(SnapshotOntoSomething, pipe_isNotWaitedFor) {
    ASSERT_EQ(mkfifo(picture_.c_str(), 0600), 0);
    expectNothingWritten();
    EXPECT_TRUE(fs::is_fifo(picture_));
}

TEST_F(SnapshotOntoSomething, directory_isLeftAlone) {
    fs::create_directory(picture_);
    expectNothingWritten();
    EXPECT_TRUE(fs::is_empty(picture_));
}

TEST_F(SnapshotOntoSomething, obstacleTakenAway_pictureIsWritten) {
    fs::create_directory(picture_);
    expectNothingWritten();
    fs::remove(picture_);
    EXPECT_EQ(take(mediaPath("h264.mp4"), 1.0), 0);
    EXPECT_TRUE(showsPlainPictureOf(mediaPath("h264.mp4"), 1.0));
}

TEST_F(SnapshotOntoSomething, linkToAnEarlierPicture_isNotTakenForIt) {
    ASSERT_EQ(take(mediaPath("h264.mp4"), 1.0), 0);
    fs::rename(picture_, folder_ / "moved.bmp");
    fs::create_symlink("moved.bmp", picture_);
    const OpenWatch watch(folder_ / "moved.bmp");
    EXPECT_EQ(take(mediaPath("h264.mp4"), 2.0), 0);
    EXPECT_EQ(watch.openings(), 0);
}

TEST_F(SnapshotOntoSomething, theSourceItself_isKept) {
    const std::string path = copyOfMedia("h264.mp4", folder_);
    fs::create_symlink(path, picture_);
    EXPECT_EQ(take(path, 1.0), 0);
    EXPECT_EQ(fs::file_size(path), fs::file_size(mediaPath("h264.mp4")));
}

} // namespace
} // namespace velmora::test
