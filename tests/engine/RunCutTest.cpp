// Where a cut begins and ends.

#include "CopySupport.h"
#include "RunSupport.h"

#include <filesystem>
#include <limits>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using nlohmann::json;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST_F(Run, cutFromZero_readsFromTheBeginning) {
    const std::string stream = mediaPath("h264-bframes.ts"); // starts at 1.4 s
    for (const double start : {0.0, -5.0, -kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
        fillCut(stream, 0, 1000, output_);
        engine_.startTimes[0] = start;
        engine_.spans[0] = 1.0;

        EXPECT_EQ(run().states, std::vector{1});

        if (start == start) {
            EXPECT_EQ(engine_.startTimes[0], start);
        }
        EXPECT_EQ(videoPackets(output_), 30U);
        EXPECT_TRUE(packetsOf(output_, "v:0").at(0).flags.starts_with('K'));
    }
}

TEST_F(Run, cutWithStart_addsTheContainersStartToTheTable) {
    for (const char* name : {"h264.mp4", "h264-bframes.flv", "h264-bframes.mkv", "wmv2.wmv"}) {
        const json format = ffprobeJson(mediaPath(name), {"-show_format"}).at("format");
        const double begin = std::stod(format.at("start_time").get<std::string>());

        EXPECT_EQ(cut(mediaPath(name), 2500, 3000, folder_ / "out.mkv").states, std::vector{1});

        EXPECT_NEAR(engine_.startTimes[0], 2.5 + begin, 1e-6) << name;
    }
}

TEST_F(Run, cutByBytes_leavesTheTable) {
    for (const char* name : {"h264-bframes.ts", "mpeg2.mpg", "theora.ogv"}) {
        EXPECT_EQ(cut(mediaPath(name), 1500, 1800, folder_ / "out.mkv").states, std::vector{1});

        EXPECT_EQ(engine_.startTimes[0], 1.5) << name;
    }
}

TEST_F(Run, join_doesNotSeek) {
    fillJoin({source_, source_}, output_);
    engine_.startTimes[0] = 1.5;
    engine_.startTimes[1] = 1.5;

    EXPECT_EQ(run().states, (std::vector{1, 1}));

    EXPECT_EQ(engine_.startTimes[0], 1.5);
    EXPECT_EQ(videoPackets(output_), 2 * sourceVideoPackets_);
}

// The same fraction of the file as the start is of the duration.
TEST_F(Run, cutByBytes_beginsAtTheFirstPacketBehindThePosition) {
    const std::string stream = mediaPath("h264-gop250.ts");
    const json shown = ffprobeJson(stream, {"-show_format", "-select_streams", "v:0",
                                            "-show_packets", "-show_data_hash", "md5"});
    const double duration = std::stod(shown.at("format").at("duration").get<std::string>());
    const auto size = static_cast<double>(fs::file_size(stream));
    for (const double start : {0.5, 3.0, 6.25, 11.0}) {
        fillCut(stream, 0, 0, folder_ / "out.ts");
        engine_.startTimes[0] = start;
        engine_.spans[0] = 0.4;

        EXPECT_EQ(run().states, std::vector{1});

        const std::string first = packetsOf(folder_ / "out.ts", "v:0").at(0).hash;
        const double position = size * start / duration;
        for (const json& packet : shown.at("packets")) {
            if (std::stod(packet.at("pos").get<std::string>()) >= position) {
                EXPECT_EQ(packet.at("data_hash"), first) << start;
                break;
            }
        }
    }
}

TEST_F(Run, startBeyondTheEnd_endsWell) {
    for (const char* name : {"h264.mp4", "h264-bframes.mkv", "h264-bframes.ts", "mpeg4.avi"}) {
        for (const double start : {1e3, 1e9, 1e18, 1e300, kInfinity}) {
            fillCut(mediaPath(name), 0, 1000, folder_ / "out.mkv");
            engine_.startTimes[0] = start;

            const JobResult result = run();

            EXPECT_EQ(result.states, std::vector{1}) << name << " " << start;
            EXPECT_EQ(result.index, 1) << name << " " << start;
        }
    }
}

TEST_F(Run, spanThatIsNotPositive_copiesNothing) {
    for (const double span : {0.0, -0.0, -1.0, -kInfinity}) {
        fillCut(source_, 0, 0, output_);
        engine_.spans[0] = span;

        const JobResult result = run();

        EXPECT_EQ(result.states, std::vector{1}) << span;
        EXPECT_EQ(result.percent, 0) << span;
        EXPECT_TRUE(fs::exists(output_)) << span;
    }
}

TEST_F(Run, spanThatIsNeverReached_copiesToTheEnd) {
    for (const double span : {1e9, 1e300, kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
        fillCut(source_, 0, 0, output_);
        engine_.spans[0] = span;

        const JobResult result = run();

        EXPECT_EQ(result.states, std::vector{1}) << span;
        EXPECT_GE(result.percent, 0) << span;
        EXPECT_LE(result.percent, 100) << span;
        EXPECT_EQ(videoPackets(output_), sourceVideoPackets_) << span;
    }
}

TEST_F(Run, secondCutInput_stopsAtOnce) {
    fillPaths({source_, source_}, output_);
    engine_.spans[0] = 1.0;
    engine_.spans[1] = 1.0;

    const JobResult result = run();

    EXPECT_EQ(result.states, (std::vector{1, 1}));
    EXPECT_EQ(result.index, 2);
    EXPECT_EQ(videoPackets(output_), 25U);
    EXPECT_EQ(decode(output_).complaints, "");
}

TEST_F(Run, secondCutInput_goesOnUntilTheOutputsClockReachesItsSpan) {
    fillPaths({source_, source_}, output_);
    engine_.spans[0] = 1.0;
    engine_.spans[1] = 1.8;
    engine_.startTimes[1] = 1.0;

    EXPECT_EQ(run().states, (std::vector{1, 1}));
    EXPECT_EQ(videoPackets(output_), 45U);
}

} // namespace
} // namespace velmora::test
