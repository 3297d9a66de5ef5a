// The input and the time that a snapshot is of, and what it leaves behind.

#include "SnapshotReference.h"
#include "SnapshotSupport.h"
#include "TestMedia.h"

#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(Snapshots, laterInput_itsOwnTimeIsUsedAndChanged) {
    const std::string path = mediaPath("h264-bframes.flv");
    engine_.probePath = path;
    engine_.currentIndex = 998;
    engine_.startTimes[0] = 1.0;
    engine_.startTimes[998] = 3.0;
    ASSERT_EQ(engine_.snapshot(), 0);

    const ReferenceSnapshot reference = referenceSnapshot(path, 3.0);
    EXPECT_TRUE(readFile(picture_) == reference.file);
    EXPECT_GT(engine_.startTimes[998], 3.0);
    EXPECT_EQ(engine_.startTimes[998], reference.startSeconds);
    EXPECT_EQ(engine_.startTimes[0], 1.0);
    EXPECT_EQ(engine_.currentIndex, 998);
}

TEST_F(Snapshots, seekByBytes_timeInTheTableStays) {
    for (const char* name : {"h264-bframes.ts", "mpeg2.ts", "mpeg2.mpg", "theora.ogv"}) {
        ASSERT_EQ(take(mediaPath(name), 1.0), 0);
        EXPECT_EQ(engine_.startTimes[0], 1.0) << name;
    }
}

TEST_F(Snapshots, indexOutsideTheTable_takesTheFirstPicture) {
    const std::string path = mediaPath("h264.mp4");
    const ReferenceSnapshot first = referenceSnapshot(path, 0.0);
    engine_.probePath = path;
    for (const int index :
         {-1, 999, 1000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        engine_.currentIndex = index;
        fs::remove(picture_);
        EXPECT_EQ(engine_.snapshot(), 0) << index;
        EXPECT_TRUE(readFile(picture_) == first.file) << index;
    }
}

TEST_F(Snapshots, timeThatIsNoTime_takesTheFirstPicture) {
    const std::string path = mediaPath("h264.mp4");
    const ReferenceSnapshot first = referenceSnapshot(path, 0.0);
    for (const double seconds : {-1.0, -0.0, -1e300, -std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN()}) {
        fs::remove(picture_);
        EXPECT_EQ(take(path, 2.0), 0);
        EXPECT_EQ(take(path, seconds), 0) << seconds;
        EXPECT_TRUE(readFile(picture_) == first.file) << seconds;
    }
}

TEST_F(Snapshots, endlessTime_doesNoHarm) {
    for (const char* name : {"h264.mp4", "mpeg2.ts", "raw.h264"}) {
        for (const double seconds : {1e300, 9.3e12, std::numeric_limits<double>::infinity()}) {
            EXPECT_EQ(take(mediaPath(name), seconds), 0) << name;
        }
    }
}

TEST_F(Snapshots, videoIndex_isLogged) {
    take(mediaPath("two-streams.mkv"), 0.0);
    EXPECT_NE(logged().find("video index:2\n"), std::string::npos) << logged();
    logged().clear();
    take(mediaPath("two-streams.mkv"), 0.0); // the same picture again
    EXPECT_NE(logged().find("video index:2\n"), std::string::npos) << logged();
    take(mediaPath("audio-only.m4a"), 0.0);
    EXPECT_NE(logged().find("video index:-1\n"), std::string::npos) << logged();
}

TEST_F(Snapshots, strangeNames_arePlainNames) {
    for (const char* name : {"a:b%d.mp4", "two\nlines \"x\" 'y'.mp4", "動画.mp4"}) {
        const std::string path = folder_ / name;
        fs::copy_file(mediaPath("h264.mp4"), path);
        engine_.snapshotPath = path + ".bmp";
        EXPECT_EQ(take(path, 1.0), 0);
        EXPECT_EQ(fs::file_size(path + ".bmp"), 230'454U);
    }
}

TEST_F(Snapshots, manyFiles_onlyTheLastStaysOpen) {
    engine_.snapshotPath = picture_;
    take(folder_ / "missing.mp4", 0.0);
    const std::size_t before = openDescriptors();
    for (const char* name : {"h264.mp4", "mpeg2.ts", "text.mp4", "unknown-codec.avi", "cover.mp3",
                             "damaged-decoder-header.avi", "audio-only.m4a", "raw.h264"}) {
        take(mediaPath(name), 0.0);
        take(mediaPath(name), 1.0);
        EXPECT_LE(openDescriptors(), before + 2) << name; // the file and its folder
    }
    take(folder_ / "missing.mp4", 0.0);
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace velmora::test
