// What becomes of a run when the system's reads and writes come short, late or not at all.

#include "FaultyIo.h"
#include "JobSupport.h"
#include "TestMedia.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kWays = 24; // places in a file at which a fault is tried

/// A job that writes a file of some type; the types are some that tell nothing but what is put in.
struct Kind {
    const char* name;
    const char* extension;
    bool join;
    bool reencode;
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

/// Runs one job again and again. Every run leaves nothing open or running, and a file beside the
/// output is as it was.
class IoFaults : public JobTest, public testing::WithParamInterface<Kind> {
protected:
    void SetUp() override {
        writeFile(neighbour_, neighbourBytes_);
        expected_ = outputOf(runOnce());
        before_ = Resources::now();
    }
    void TearDown() override {
        // The next run works, whatever has happened before.
        EXPECT_EQ(outputOf(runOnce()), expected_);
        EXPECT_EQ(readFile(neighbour_), neighbourBytes_);
        expectNothingLeftSince(before_);
    }

    JobResult runOnce() {
        fill();
        return run();
    }
    void fill() {
        const Kind& kind = GetParam();
        if (kind.join) {
            fillJoin({source_, source_}, output_);
        } else {
            fillCut(source_, 200, 500, output_);
        }
        engine_.reencode = kind.reencode ? 1 : 0;
        engine_.videoCodecId = AV_CODEC_ID_MPEG4;
        engine_.audioCodecId = AV_CODEC_ID_AAC;
        engine_.videoBitRate = 500'000;
        engine_.audioBitRate = 128'000;
        engine_.videoWidth = 64;
        engine_.videoHeight = 48;
        engine_.videoFrameRate = 0.0;
        engine_.audioSampleRate = 44'100;
        engine_.audioChannels = 2;
    }
    Bytes outputOf(const JobResult& result) {
        EXPECT_EQ(result.states, std::vector(result.states.size(), 1));
        return readFile(output_);
    }

    // Noise, so that half a second takes several reads. The header stands in front and ends before
    // the second fault: an input whose pictures are not found is no failure.
    const std::string source_ = mediaMadeBy(
        "-f lavfi -i nullsrc=size=128x96:rate=30:duration=0.6,geq=random(1)*255:128:128 -f lavfi "
        "-i "
        "sine=sample_rate=44100:duration=0.6 -c:v libx264 -preset ultrafast -pix_fmt yuv420p -g 6 "
        "-c:a aac -b:a 96k -ac 2 -movflags faststart",
        "noise.mp4");
    const std::string output_ = folder_ / (std::string("out.") + GetParam().extension);
    const std::string neighbour_ = folder_ / "neighbour";
    const Bytes neighbourBytes_ = Bytes(1000, 7);
    Bytes expected_;
    Resources before_;
};

TEST_P(IoFaults, shortAndInterruptedReads_giveTheSameFile) {
    JobResult result;
    fill();
    {
        const FaultyIo io(inPiecesOf(997), {});
        result = run();
    }
    EXPECT_EQ(outputOf(result), expected_);
}

TEST_P(IoFaults, shortAndInterruptedWrites_giveTheSameFile) {
    JobResult result;
    fill();
    {
        const FaultyIo io({}, inPiecesOf(991));
        result = run();
    }
    EXPECT_EQ(outputOf(result), expected_);
}

TEST_P(IoFaults, noSpaceAfterAnyByte_failsTheLastInput) {
    const auto size = static_cast<std::int64_t>(expected_.size());
    for (std::int64_t i = 0; i < kWays; ++i) {
        fill();
        const FaultyIo io({}, failingAfter(size * i / kWays, ENOSPC));
        EXPECT_EQ(run().states.back(), 2) << "after " << size * i / kWays << " bytes";
        EXPECT_LE(io.bytesWritten(), size * i / kWays);
    }
}

TEST_P(IoFaults, readErrorAfterAnyByte_endsTheRun) {
    std::int64_t size = 0;
    fill();
    {
        const FaultyIo io({}, {});
        run();
        size = io.bytesRead();
    }
    for (std::int64_t i = 0; i < kWays; ++i) {
        fill();
        const FaultyIo io(failingAfter(size * i / kWays, EIO), {});
        const JobResult result = run();
        EXPECT_LE(io.bytesRead(), size * i / kWays);
        for (const int state : result.states) {
            EXPECT_TRUE(state == 1 || state == 2) << state;
        }
        if (i == 0) {
            EXPECT_EQ(result.states, std::vector(result.states.size(), 2));
        }
    }
}

TEST_P(IoFaults, stopWhileASourceStalls_endsOnceTheCallReturns) {
    std::mutex mutex;
    std::condition_variable changed;
    bool stalled = false;
    bool goOn = false;
    JobResult result;
    fill();
    {
        const FaultyIo io(
            [&](std::size_t wanted, std::int64_t before) -> ssize_t {
                if (before > 0) {
                    std::unique_lock lock(mutex);
                    stalled = true;
                    changed.notify_all();
                    changed.wait(lock, [&] { return goOn; });
                }
                return static_cast<ssize_t>(std::min<std::size_t>(wanted, 512));
            },
            {});
        std::thread user([&] {
            std::unique_lock lock(mutex);
            changed.wait(lock, [&] { return stalled; });
            engine_.stopRequested = 1;
            goOn = true;
            changed.notify_all();
        });
        result = run();
        user.join();
        EXPECT_LE(io.bytesRead(), 1024);
    }
    // Opening the first input was broken off, which fails it; nothing after it was begun.
    EXPECT_NE(result.states.front(), 1);
    EXPECT_NE(result.states.back(), 1);
}

TEST_P(IoFaults, folderRemovedMeanwhile_doesNotDisturbTheRun) {
    const std::string folder = folder_ / "gone";
    fs::create_directory(folder);
    const fs::path sourceInFolder = fs::path(folder) / "source.mp4";
    fs::copy_file(source_, sourceInFolder);
    JobResult result;
    {
        const FaultyIo io({}, [&](std::size_t wanted, std::int64_t) -> ssize_t {
            fs::remove_all(folder);
            return static_cast<ssize_t>(wanted);
        });
        fillCut(sourceInFolder, 0, 500, (fs::path(folder) / "out.mkv").string());
        result = run();
    }
    EXPECT_EQ(result.states, std::vector{1});
    EXPECT_FALSE(fs::exists(folder));
}

INSTANTIATE_TEST_SUITE_P(Jobs, IoFaults,
                         testing::Values(Kind{"cutMp4", "mp4", false, false},
                                         Kind{"cutFlv", "flv", false, false},
                                         Kind{"joinTs", "ts", true, false},
                                         Kind{"joinAvi", "avi", true, false},
                                         Kind{"reencodeMp4", "mp4", false, true},
                                         Kind{"reencodeJoinMov", "mov", true, true}),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
} // namespace velmora::test
