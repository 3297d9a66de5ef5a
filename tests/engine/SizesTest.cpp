// Sources that are large, long, wide or many, and names of every length that the system takes.

#include "CopySupport.h"
#include "ReencodeSupport.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <filesystem>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kHundredGigabytes = 100'000'000'000;

/// The most memory that the process has held, in MB.
long peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

/// Neither time nor memory may grow with what a source claims to hold.
class Sizes : public Reencode {
protected:
    Sizes() { engine_.snapshotPath = picture_; }
    void TearDown() override {
        EXPECT_LT(std::chrono::steady_clock::now() - begin_, std::chrono::seconds(60));
        EXPECT_LT(peakMegabytes() - peakBefore_, 1500);
        engine_.reset();
    }

    int probe(const std::string& path) {
        engine_.probePath = path;
        return engine_.probe();
    }
    bool takesPicture(const std::string& path, double seconds) {
        fs::remove(picture_);
        engine_.probePath = path;
        engine_.currentIndex = 0;
        engine_.startTimes[0] = seconds;
        return engine_.snapshot() == 0 && fs::exists(picture_);
    }
    JobResult copy(const std::string& input, float startMs, float endMs,
                   const std::string& output) {
        return JobTest::cut(input, startMs, endMs, output);
    }
    std::string copied(const std::string& name, const std::string& to) {
        fs::create_directories(fs::path(to).parent_path());
        fs::copy_file(mediaPath(name), to);
        return to;
    }
    void expectUsable(const std::string& path) {
        EXPECT_EQ(probe(path), 0);
        EXPECT_TRUE(takesPicture(path, 1));
        EXPECT_EQ(copy(path, 0, 2000, folder_ / "out.mp4").states, std::vector{1});
        EXPECT_TRUE(ffmpegDecodesClean(folder_ / "out.mp4"));
    }

    const std::string picture_ = folder_ / "picture.bmp";

private:
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    long peakBefore_ = peakMegabytes();
};

TEST_F(Sizes, holeOf100Gigabytes_namedMp4_isRefusedAtOnce) {
    const std::string path = folder_ / "hole.mp4";
    writeFile(path, "");
    fs::resize_file(path, kHundredGigabytes);
    EXPECT_LT(probe(path), 0);
    EXPECT_FALSE(takesPicture(path, 1));
    EXPECT_EQ(copy(path, 0, 1000, folder_ / "out.mp4").states, std::vector{2});
}

TEST_F(Sizes, videoBeforeAHoleOf100Gigabytes_isUsedAsIfAlone) {
    const std::string path = copied("h264.mp4", folder_ / "video.mp4");
    fs::resize_file(path, kHundredGigabytes);
    expectUsable(path);
    EXPECT_EQ(fs::file_size(path), kHundredGigabytes);
}

TEST_F(Sizes, tenHours_areCutAndShownNearTheirEnd) {
    const std::string path = mediaMadeBy("-f lavfi -i testsrc2=size=32x32:rate=1:duration=36000 "
                                         "-c:v mpeg4 -g 60 -q:v 31",
                                         "ten-hours.mp4");
    ASSERT_EQ(probe(path), 0);
    EXPECT_EQ(engine_.durationSeconds, 36'000);
    EXPECT_TRUE(takesPicture(path, 34'200));
    EXPECT_EQ(copy(path, 35'940'000, 36'000'000, folder_ / "out.mp4").states, std::vector{1});
    EXPECT_NEAR(endOf(folder_ / "out.mp4", "v:0"), 60, 1);
}

TEST_F(Sizes, picturesOf8K_areShownAndReencoded) {
    const std::string path = mediaMadeBy("-f lavfi -i testsrc2=size=7680x4320:rate=2:duration=1 "
                                         "-c:v mjpeg -q:v 20",
                                         "8k.mov");
    ASSERT_EQ(probe(path), 0);
    EXPECT_EQ(engine_.sourceWidth, 7680);
    EXPECT_EQ(engine_.sourceHeight, 4320);
    EXPECT_TRUE(takesPicture(path, 0));
    choose(AV_CODEC_ID_H264, AV_CODEC_ID_AAC); // the probe has put the source's there
    engine_.videoBitRate = 500'000;
    engine_.videoWidth = 320;
    engine_.videoHeight = 240;
    EXPECT_EQ(cut(path, 0, 1000, folder_ / "out.mp4").states, std::vector{1});
    EXPECT_EQ(fieldsOf(folder_ / "out.mp4", "v:0").at("width"), 320);
}

TEST_F(Sizes, sixtyFourStreams_arePickedFromAndCopied) {
    std::string command = "-f lavfi -i testsrc2=size=64x64:rate=10:duration=2 "
                          "-f lavfi -i sine=duration=2 -map 0";
    for (int i = 0; i < 63; ++i) {
        command += " -map 1";
    }
    const std::string path = mediaMadeBy(command + " -c:v mpeg4 -c:a mp2 -b:a 32k -ac 1", "64.mkv");
    ASSERT_EQ(probe(path), 0);
    EXPECT_EQ(engine_.streamCount, 64);
    EXPECT_EQ(copy(path, 0, 2000, folder_ / "out.mkv").states, std::vector{1});
    EXPECT_EQ(packetsOf(folder_ / "out.mkv", "v:0").size(), 20U);
    EXPECT_TRUE(ffmpegDecodesClean(folder_ / "out.mkv"));
}

TEST_F(Sizes, join_of999Inputs_hasThePicturesOfAll) {
    const std::string path =
        mediaMadeBy("-f lavfi -i testsrc2=size=32x32:rate=10:duration=0.2 -c:v mpeg4", "short.avi");
    const JobResult result =
        JobTest::join(std::vector<std::string>(999, path), folder_ / "out.avi");
    EXPECT_EQ(result.states, std::vector<int>(999, 1));
    EXPECT_EQ(result.index, 999);
    EXPECT_EQ(packetsOf(folder_ / "out.avi", "v:0").size(), 999U * 2U);
}

TEST_F(Sizes, nameOf255Bytes_ofASource_isUsed) {
    expectUsable(copied("h264.mp4", folder_ / (std::string(NAME_MAX - 4, 'n') + ".mp4")));
}

TEST_F(Sizes, pathAlmostAsLongAsPossible_ofASource_isUsed) {
    constexpr std::size_t longest = PATH_MAX - 1; // its end is counted
    std::string path = folder_.path();
    while (path.size() + 210 < longest) {
        path += '/' + std::string(200, 'd');
    }
    path += '/' + std::string(longest - path.size() - 5, 'n') + ".mp4";
    ASSERT_EQ(path.size(), longest);
    expectUsable(copied("h264.mp4", path));
}

TEST_F(Sizes, pathLongerThanPossible_ofASource_isRefused) {
    const std::string path = folder_ / (std::string(PATH_MAX, 'n') + ".mp4");
    EXPECT_LT(probe(path), 0);
    EXPECT_FALSE(takesPicture(path, 0));
    EXPECT_EQ(copy(path, 0, 1000, folder_ / "out.mp4").states, std::vector{2});
}

TEST_F(Sizes, relativePath_ofASource_isUsed) {
    copied("h264.mp4", folder_ / "relative.mp4");
    const fs::path before = fs::current_path();
    fs::current_path(folder_.path());
    expectUsable("relative.mp4");
    fs::current_path(before);
}

} // namespace
} // namespace velmora::test
