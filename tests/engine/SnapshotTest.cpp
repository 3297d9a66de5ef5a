#include "ConversionEngine.h"
#include "EngineLog.h"
#include "JobSupport.h"
#include "SnapshotReference.h"
#include "TestMedia.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

std::string& logged() {
    static std::string text;
    return text;
}

void keepLogLine(const char* line) {
    logged() += line;
}

class Snapshots : public ::testing::Test {
protected:
    void SetUp() override {
        logged().clear();
        setLogSink(keepLogLine);
        av_log_set_level(AV_LOG_INFO);
        engine_.snapshotPath = picture_;
        engine_.currentIndex = 0;
    }
    void TearDown() override {
        setLogSink(nullptr);
        engine_.reset();
    }

    int take(const std::string& path, double seconds) {
        engine_.probePath = path;
        engine_.startTimes[0] = seconds;
        return engine_.snapshot();
    }

    /// Fails the test unless a picture of `path` at this time is the plain one.
    void expectPlainPicture(const std::string& path, double seconds) {
        const ReferenceSnapshot reference = referenceSnapshot(path, seconds);
        fs::remove(picture_);
        ASSERT_EQ(take(path, seconds), 0);
        ASSERT_EQ(fs::exists(picture_), reference.file.has_value());
        EXPECT_TRUE(!reference.file || readFile(picture_) == *reference.file);
    }

    ConversionEngine& engine_ = ConversionEngine::instance();
    TemporaryFolder folder_;
    std::string picture_ = folder_ / "picture.bmp";
};

class SnapshotOf : public Snapshots, public ::testing::WithParamInterface<std::string> {
protected:
    void SetUp() override {
        Snapshots::SetUp();
        path_ = mediaPath(GetParam());
        const double duration = durationOf(path_).value_or(4.0);
        times_ = {0.0,
                  0.001,
                  duration * 0.1,
                  duration * 0.25,
                  duration * 0.5,
                  duration * 0.7,
                  duration * 0.97,
                  duration,
                  duration + 1.0,
                  duration * 20};
        for (const double time : times_) {
            references_.emplace(time, referenceSnapshot(path_, time));
        }
    }

    void expectReference(double time) {
        const ReferenceSnapshot& reference = references_.at(time);
        const bool wasThere = fs::remove(picture_);
        EXPECT_EQ(take(path_, time), 0) << "at " << time;
        EXPECT_EQ(engine_.startTimes[0], reference.startSeconds) << "at " << time;
        EXPECT_EQ(fs::exists(picture_), reference.file.has_value())
            << "at " << time << ", before: " << wasThere;
        if (reference.file && fs::exists(picture_)) {
            EXPECT_TRUE(readFile(picture_) == *reference.file) << "another picture at " << time;
        }
    }

    std::string path_;
    std::vector<double> times_;
    std::map<double, ReferenceSnapshot> references_;
};

TEST_P(SnapshotOf, TimesInOrder_pictures_are_the_plain_ones) {
    for (const double time : times_) {
        expectReference(time);
    }
}

TEST_P(SnapshotOf, TimesInAnyOrder_pictures_are_the_plain_ones) {
    std::mt19937 random(7); // the same order in every run
    for (int round = 0; round < 3; ++round) {
        std::ranges::shuffle(times_, random);
        for (const double time : times_) {
            expectReference(time);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Media, SnapshotOf, ::testing::ValuesIn(videoMedia()),
                         [](const auto& tested) { return asTestName(tested.param); });

/// Files of the same pictures, with a key picture every one and a half seconds, in containers that
/// do not tell where these are, or only after a search.
std::vector<std::string> unindexedMedia() {
    const std::string source = mediaMadeBy(
        "-f lavfi -i testsrc2=size=160x90:rate=24:duration=8 -f lavfi -i sine=duration=8 "
        "-c:v libx264 -preset veryfast -g 36 -bf 2 -pix_fmt yuv420p -c:a aac",
        "indexed.mp4");
    const std::string copy = "-i " + source + " -c copy ";
    return {mediaMadeBy(copy + "-flvflags no_duration_filesize+no_metadata", "live.flv"),
            mediaMadeBy(copy + "-live 1", "live.mkv"),
            mediaMadeBy(copy + "-cues_to_front 0 -cluster_time_limit 100", "cues.mkv"),
            mediaMadeBy(copy + "-seekable 0 -write_index 0", "unindexed.avi"),
            mediaMadeBy(copy, "searched.asf"),
            mediaMadeBy(copy + "-movflags frag_keyframe+empty_moov", "fragments.mp4"),
            mediaMadeBy(copy, "packets.ts"),
            mediaMadeBy(copy + "-an -bsf:v h264_mp4toannexb", "raw.h264")};
}

TEST_F(Snapshots, WithoutAnIndex_pictures_are_the_plain_ones_in_any_order) {
    av_log_set_level(AV_LOG_QUIET);
    for (const std::string& path : unindexedMedia()) {
        for (const double time : {3.5, 0.0, 7.4, 4.6, 1.2, 6.1, 3.5, 2.9}) {
            SCOPED_TRACE(path + " at " + std::to_string(time));
            expectPlainPicture(path, time);
        }
    }
}

TEST_F(Snapshots, StartOfTheFile_picture_is_the_first) {
    ASSERT_EQ(take(mediaPath("h264-bframes.mp4"), 0.0), 0);
    EXPECT_EQ(fs::file_size(picture_), 230'454U);
    EXPECT_EQ(engine_.startTimes[0], 0.0);
    EXPECT_TRUE(readFile(picture_) == referenceSnapshot(mediaPath("h264-bframes.mp4"), 0.0).file);
}

TEST_F(Snapshots, FilesInTurn_pictures_are_those_of_each) {
    for (int round = 0; round < 2; ++round) {
        for (const char* name : {"h264-bframes.mp4", "mpeg2.ts", "mpeg4.avi", "h264-gop250.ts"}) {
            expectPlainPicture(mediaPath(name), 2.0);
        }
    }
}

TEST_F(Snapshots, AfterAFailure_next_picture_is_as_ever) {
    expectPlainPicture(mediaPath("h264-bframes.mp4"), 2.0);
    EXPECT_LT(take(mediaPath("text.mp4"), 2.0), 0);
    EXPECT_LT(take(folder_ / "missing.mp4", 2.0), 0);
    expectPlainPicture(mediaPath("h264-bframes.mp4"), 3.0);
}

TEST_F(Snapshots, LaterInput_its_own_time_is_used_and_changed) {
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

TEST_F(Snapshots, SeekByBytes_time_in_the_table_stays) {
    for (const char* name : {"h264-bframes.ts", "mpeg2.ts", "mpeg2.mpg", "theora.ogv"}) {
        ASSERT_EQ(take(mediaPath(name), 1.0), 0);
        EXPECT_EQ(engine_.startTimes[0], 1.0) << name;
    }
}

TEST_F(Snapshots, IndexOutsideTheTable_takes_the_first_picture) {
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

TEST_F(Snapshots, TimeThatIsNoTime_takes_the_first_picture) {
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

TEST_F(Snapshots, EndlessTime_does_no_harm) {
    for (const char* name : {"h264.mp4", "mpeg2.ts", "raw.h264"}) {
        for (const double seconds : {1e300, 9.3e12, std::numeric_limits<double>::infinity()}) {
            EXPECT_EQ(take(mediaPath(name), seconds), 0) << name;
        }
    }
}

TEST_F(Snapshots, VideoIndex_is_logged) {
    take(mediaPath("two-streams.mkv"), 0.0);
    EXPECT_NE(logged().find("video index:2\n"), std::string::npos) << logged();
    logged().clear();
    take(mediaPath("two-streams.mkv"), 0.0); // the same picture again
    EXPECT_NE(logged().find("video index:2\n"), std::string::npos) << logged();
    take(mediaPath("audio-only.m4a"), 0.0);
    EXPECT_NE(logged().find("video index:-1\n"), std::string::npos) << logged();
}

TEST_F(Snapshots, FileWithoutVideo_writes_nothing_and_succeeds) {
    for (const char* name : {"audio-only.m4a", "audio-only.wav", "cover.mp3", "cover.m4a"}) {
        EXPECT_EQ(take(mediaPath(name), 0.0), 0) << name;
        EXPECT_EQ(take(mediaPath(name), 1.0), 0) << name;
    }
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, WithoutVideoDecoder_writes_nothing_and_succeeds) {
    EXPECT_EQ(take(mediaPath("unknown-codec.avi"), 0.0), 0);
    EXPECT_EQ(take(mediaPath("unknown-codec-only.avi"), 0.5), 0);
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, DecoderThatDoesNotOpen_gives_its_code) {
    EXPECT_EQ(take(mediaPath("damaged-decoder-header.avi"), 0.0), AVERROR_INVALIDDATA);
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, NoPictureThatCanBeDecoded_writes_nothing_and_succeeds) {
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

TEST_F(Snapshots, FileThatDoesNotOpen_gives_the_libraries_code) {
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

TEST_F(Snapshots, FileWithoutStreamInfo_gives_the_libraries_code) {
    EXPECT_EQ(take(mediaPath("impossible-pictures.ivf"), 0.0), AVERROR_INVALIDDATA);
    EXPECT_FALSE(fs::exists(picture_));
}

TEST_F(Snapshots, NoRegularFile_is_refused_without_waiting) {
    const std::string pipe = folder_ / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_LT(take(pipe, 0.0), 0);
    EXPECT_LT(take(folder_.path(), 0.0), 0);
    EXPECT_LT(take("/dev/zero", 0.0), 0);
    EXPECT_LT(take("", 0.0), 0);
}

TEST_F(Snapshots, StrangeNames_are_plain_names) {
    for (const char* name : {"a:b%d.mp4", "two\nlines \"x\" 'y'.mp4", "動画.mp4"}) {
        const std::string path = folder_ / name;
        fs::copy_file(mediaPath("h264.mp4"), path);
        engine_.snapshotPath = path + ".bmp";
        EXPECT_EQ(take(path, 1.0), 0);
        EXPECT_EQ(fs::file_size(path + ".bmp"), 230'454U);
    }
}

TEST_F(Snapshots, ManyFiles_only_the_last_stays_open) {
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
