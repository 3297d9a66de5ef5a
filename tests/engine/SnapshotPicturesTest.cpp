// That a snapshot has the picture that the plainest way finds, whatever was taken before.

#include "JobSupport.h"
#include "SnapshotReference.h"
#include "SnapshotSupport.h"
#include "TestMedia.h"

extern "C" {
#include <libavutil/log.h>
}

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

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
    }

    /// The tests of a file ask for the same ones.
    static const ReferenceSnapshot& referenceOf(const std::string& path, double time) {
        static std::map<std::pair<std::string, double>, ReferenceSnapshot> references;
        const auto found = references.find({path, time});
        return found != references.end()
                   ? found->second
                   : references.try_emplace({path, time}, referenceSnapshot(path, time))
                         .first->second;
    }

    void expectReference(double time) {
        const ReferenceSnapshot& reference = referenceOf(path_, time);
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
};

TEST_P(SnapshotOf, timesInOrder_picturesAreThePlainOnes) {
    for (const double time : times_) {
        expectReference(time);
    }
}

TEST_P(SnapshotOf, timesInAnyOrder_picturesAreThePlainOnes) {
    std::mt19937 random(7); // the same order in every run
    std::ranges::shuffle(times_, random);
    for (const double time : times_) {
        expectReference(time);
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

TEST_F(Snapshots, withoutAnIndex_picturesAreThePlainOnesInAnyOrder) {
    av_log_set_level(AV_LOG_QUIET);
    for (const std::string& path : unindexedMedia()) {
        for (const double time : {3.5, 0.0, 7.4, 4.6, 1.2, 6.1, 3.5, 2.9}) {
            SCOPED_TRACE(path + " at " + std::to_string(time));
            expectPlainPicture(path, time);
        }
    }
}

TEST_F(Snapshots, startOfTheFile_pictureIsTheFirst) {
    ASSERT_EQ(take(mediaPath("h264-bframes.mp4"), 0.0), 0);
    EXPECT_EQ(fs::file_size(picture_), 230'454U);
    EXPECT_EQ(engine_.startTimes[0], 0.0);
    EXPECT_TRUE(readFile(picture_) == referenceSnapshot(mediaPath("h264-bframes.mp4"), 0.0).file);
}

TEST_F(Snapshots, filesInTurn_picturesAreThoseOfEach) {
    for (int round = 0; round < 2; ++round) {
        for (const char* name : {"h264-bframes.mp4", "mpeg2.ts", "mpeg4.avi", "h264-gop250.ts"}) {
            expectPlainPicture(mediaPath(name), 2.0);
        }
    }
}

TEST_F(Snapshots, afterAFailure_nextPictureIsAsEver) {
    expectPlainPicture(mediaPath("h264-bframes.mp4"), 2.0);
    EXPECT_LT(take(mediaPath("text.mp4"), 2.0), 0);
    EXPECT_LT(take(folder_ / "missing.mp4", 2.0), 0);
    expectPlainPicture(mediaPath("h264-bframes.mp4"), 3.0);
}

} // namespace
} // namespace velmora::test
