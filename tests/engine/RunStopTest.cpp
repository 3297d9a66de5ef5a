// Runs that are stopped, and runs beside which the main thread works.

#include "CopySupport.h"

#include <filesystem>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using nlohmann::json;

class RunStop : public JobTest {
protected:
    void TearDown() override { expectNothingLeftSince(before_); }

    /// Joins the inputs and asks for a stop at one point.
    JobResult joinStoppedAt(RunPoint point, int occurrence, std::size_t inputs) {
        fillJoin(std::vector(inputs, source_), output_);
        const AtRunPoint stop(point, [&](int number) {
            if (number == occurrence) {
                engine_.stopRequested = 1;
            }
        });
        JobResult stopped = run();
        EXPECT_GE(stop.seen(), occurrence);
        return stopped;
    }

    /// Only the trailer tells how long the file is.
    bool hasTrailer() {
        return ffprobeJson(output_, {"-show_format"}).at("format").contains("duration");
    }

    const std::string source_ = mediaPath("mpeg4.mp4");
    const int packets_ =
        static_cast<int>(packetsOf(source_, "v:0").size() + packetsOf(source_, "a:0").size());
    const std::string output_ = folder_ / "out.mkv";
    const Resources before_ = Resources::now();
};

TEST_F(RunStop, whileOpeningFirstInput_writesNothing) {
    const JobResult result = joinStoppedAt(RunPoint::Opening, 1, 2);

    EXPECT_TRUE(result.states[0] == 255 || result.states[0] == 2);
    EXPECT_EQ(result.states[1], 255);
    EXPECT_FALSE(fs::exists(output_));
}

TEST_F(RunStop, whileOpeningLaterInput_leavesThatAndTheRest) {
    const JobResult result = joinStoppedAt(RunPoint::Opening, 2, 3);

    EXPECT_EQ(result.states[0], 1);
    EXPECT_TRUE(result.states[1] == 255 || result.states[1] == 2);
    EXPECT_EQ(result.states[2], 255);
    EXPECT_FALSE(hasTrailer());
}

TEST_F(RunStop, beforeFirstPacket_ofTheOnlyInputLeavesItPending) {
    const JobResult result = joinStoppedAt(RunPoint::InfoRead, 1, 1);

    EXPECT_EQ(result.states, std::vector{255});
}

TEST_F(RunStop, inFirstInput_leavesAllPendingAndNoTrailer) {
    const JobResult result = joinStoppedAt(RunPoint::Packet, packets_ / 2, 3);

    EXPECT_EQ(result.states, (std::vector{255, 255, 255}));
    EXPECT_EQ(result.index, 1); // nothing of the next input is begun
    EXPECT_LT(result.percent, 34);
    EXPECT_GT(fs::file_size(output_), 0U);
    EXPECT_FALSE(hasTrailer());
}

TEST_F(RunStop, inMiddleInput_leavesItAndTheRestPendingAndNoTrailer) {
    const JobResult result = joinStoppedAt(RunPoint::Packet, packets_ * 3 / 2, 3);

    EXPECT_EQ(result.states, (std::vector{1, 255, 255}));
    EXPECT_EQ(result.index, 2);
    EXPECT_FALSE(hasTrailer());
}

TEST_F(RunStop, inLastInput_leavesItPendingAndTheOutputComplete) {
    const JobResult result = joinStoppedAt(RunPoint::Packet, packets_ * 5 / 2, 3);

    EXPECT_EQ(result.states, (std::vector{1, 1, 255}));
    EXPECT_EQ(result.index, 3);
    EXPECT_TRUE(hasTrailer());
    EXPECT_EQ(decode(output_).complaints, "");
}

TEST_F(RunStop, inOnlyInput_ofACutLeavesItPendingAndTheOutputComplete) {
    fillCut(source_, 0, 4000, output_);
    const AtRunPoint stop(RunPoint::Packet, [&](int number) {
        if (number == 50) {
            engine_.stopRequested = 1;
        }
    });

    const JobResult result = run();

    EXPECT_EQ(result.states, std::vector{255});
    EXPECT_EQ(result.index, 1);
    EXPECT_TRUE(hasTrailer());
    EXPECT_LT(packetsOf(output_, "v:0").size(), packetsOf(source_, "v:0").size());
}

TEST_F(RunStop, nextRun_afterAStopIsComplete) {
    joinStoppedAt(RunPoint::Packet, packets_ / 2, 2);

    EXPECT_EQ(join({source_, source_}, output_).states, (std::vector{1, 1}));
    EXPECT_TRUE(hasTrailer());
    EXPECT_EQ(packetsOf(output_, "v:0").size(), 2 * packetsOf(source_, "v:0").size());
}

/// A run on a thread of its own that waits in the middle of its second input.
class RunBeside : public JobTest {
protected:
    /// Calls `meanwhile` on this thread while a join of three inputs waits.
    void joinWhile(const std::function<void()>& meanwhile) {
        fillJoin({source_.path, source_.path, source_.path}, output_);
        std::binary_semaphore reached(0);
        std::binary_semaphore goOn(0);
        const auto packets = static_cast<int>(source_.video.packets.size());
        const AtRunPoint halt(RunPoint::Packet, [&](int number) {
            if (number == packets * 3 / 2) {
                reached.release();
                goOn.acquire();
            }
        });
        std::thread worker([&] { engine_.run(); });
        reached.acquire();
        meanwhile();
        goOn.release();
        worker.join();
    }

    void expectUndisturbed() {
        EXPECT_EQ(result().states, (std::vector{1, 1, 1}));
        EXPECT_EQ(engine_.currentIndex, 3);
        expectVideo(output_, {wholeOf(source_), wholeOf(source_), wholeOf(source_)});
    }

    const Source source_{mediaPath("video-only.mp4")};
    const std::string output_ = folder_ / "out.mkv";
};

TEST_F(RunBeside, counters_areSeenByAnotherThread) {
    joinWhile([&] {
        EXPECT_EQ(engine_.currentIndex, 1);
        EXPECT_EQ(engine_.fileStates[0], 1);
        EXPECT_EQ(engine_.fileStates[1], 255);
        EXPECT_EQ(engine_.fileStates[2], 255);
        EXPECT_NEAR(engine_.currentPercent, 50, 10);
    });

    expectUndisturbed();
}

TEST_F(RunBeside, probe_ofAnotherFileDoesNotDisturbIt) {
    joinWhile([&] {
        engine_.probePath = mediaPath("two-streams.mkv");
        EXPECT_EQ(engine_.probe(), 0);
        EXPECT_EQ(engine_.sourceWidth, 160);
        engine_.probePath = folder_ / "missing.mp4";
        EXPECT_EQ(engine_.probe(), -1);
    });

    expectUndisturbed();
}

TEST_F(RunBeside, snapshot_ofAnInputDoesNotDisturbIt) {
    const std::string picture = folder_ / "pic.bmp";
    joinWhile([&] {
        engine_.probePath = source_.path;
        engine_.snapshotPath = picture;
        engine_.currentIndex = 0;
        engine_.startTimes[0] = 1.0;
        EXPECT_EQ(engine_.snapshot(), 0);
        EXPECT_EQ(fs::file_size(picture), 230'454U);
    });

    expectUndisturbed();
}

TEST_F(RunBeside, newTable_doesNotReachIt) {
    joinWhile([&] {
        engine_.inputPaths.assign(3, folder_ / "missing.mp4");
        engine_.outputPaths.assign(3, folder_ / "other.mp4");
        engine_.joinMode = 0;
        engine_.joinTotalMs = 0;
        engine_.spans[2] = 0.1;
    });

    expectUndisturbed();
    EXPECT_FALSE(fs::exists(folder_ / "other.mp4"));
}

TEST_F(RunBeside, stopByAnotherThread_endsIt) {
    joinWhile([&] { engine_.stopRequested = 1; });

    EXPECT_EQ(result().states, (std::vector{1, 255, 255}));
    EXPECT_EQ(engine_.currentIndex, 2);
}

} // namespace
} // namespace velmora::test
