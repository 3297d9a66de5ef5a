#include "StartedProgram.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using nlohmann::json;

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kUsage = 2;

class EngineTool : public testing::Test {
protected:
    static std::vector<std::string> command(const std::vector<std::string>& arguments) {
        std::vector<std::string> words{VELMORA_ENGINE_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return words;
    }

    /// Runs the tool and reads the object that it prints.
    json resultOf(const std::vector<std::string>& arguments, int expectedStatus) {
        const ProgramResult result = runProgram(command(arguments));
        EXPECT_EQ(result.status, expectedStatus) << result.errors;
        errors_ = result.errors;
        return json::parse(result.output);
    }

    /// The percentages on standard error.
    std::vector<int> progress() const {
        std::vector<int> percents;
        std::istringstream lines(errors_);
        for (std::string line; std::getline(lines, line);) {
            percents.push_back(std::stoi(line));
        }
        return percents;
    }

    TemporaryFolder folder_;
    const std::string source_ = mediaPath("h264.mp4");
    const std::string output_ = folder_ / "out.mp4";
    std::string errors_;
};

TEST_F(EngineTool, unusableArguments_endWith2AndShowHowToUseIt) {
    const std::vector<std::vector<std::string>> unusable{
        {},
        {"fly"},
        {"--help"},
        {"probe"},
        {"probe", source_, source_},
        {"snapshot"},
        {"snapshot", source_},
        {"snapshot", source_, "1"},
        {"snapshot", source_, "soon", output_},
        {"snapshot", source_, "1", output_, "--repeat"},
        {"snapshot", source_, "1", output_, "--repeat", "0"},
        {"snapshot", source_, "1", output_, "--repeat", "-1"},
        {"snapshot", source_, "1", output_, "--repeat", "2.5"},
        {"snapshot", source_, "1", output_, "--often", "2"},
        {"cut"},
        {"cut", source_, "0", "1"},
        {"cut", source_, "", "1", output_},
        {"cut", source_, "0", "1s", output_},
        {"cut", source_, "0:00", "1", output_},
        {"cut", source_, "0", "1", output_, "more"},
        {"join"},
        {"join", output_},
    };
    for (const std::vector<std::string>& arguments : unusable) {
        const ProgramResult result = runProgram(command(arguments));

        const std::string shown = testing::PrintToString(arguments);
        EXPECT_EQ(result.status, kUsage) << shown;
        EXPECT_EQ(result.output, "") << shown;
        EXPECT_TRUE(result.errors.starts_with("usage:")) << shown;
        EXPECT_FALSE(fs::exists(output_)) << shown;
    }
}

TEST_F(EngineTool, moreThan999Inputs_areUnusable) {
    std::vector<std::string> arguments{"join", output_};
    arguments.insert(arguments.end(), 1000, source_);

    EXPECT_EQ(runProgram(command(arguments)).status, kUsage);
}

// Probe.

TEST_F(EngineTool, probe_printsEveryFieldByItsName) {
    const json result = resultOf({"probe", mediaPath("h264-2997.mp4")}, kSuccess);

    EXPECT_EQ(result.at("code"), 0);
    EXPECT_EQ(result.at("streamCount"), 2);
    EXPECT_EQ(result.at("videoStreamIndex"), 0);
    EXPECT_EQ(result.at("audioStreamIndex"), 1);
    EXPECT_EQ(result.at("sourceWidth"), 320);
    EXPECT_EQ(result.at("sourceHeight"), 180);
    EXPECT_EQ(result.at("sourceFrameRate"), 29.0);
    EXPECT_EQ(result.at("sourceFrameRateNum"), 30000);
    EXPECT_EQ(result.at("sourceFrameRateDen"), 1001);
    EXPECT_NEAR(result.at("durationUs").get<double>(), 4e6, 5e4);
    EXPECT_EQ(result.at("durationFloor"), 0);
    EXPECT_EQ(result.at("durationSeconds"), 4);
    EXPECT_EQ(result.at("videoCodecId"), 27);
    EXPECT_GT(result.at("videoBitRate"), 0);
    EXPECT_EQ(result.at("audioCodecId"), 86018);
    EXPECT_GT(result.at("audioBitRate"), 0);
    EXPECT_EQ(result.at("audioSampleRate"), 44100);
    EXPECT_EQ(result.at("audioChannels"), 2);
}

TEST_F(EngineTool, probe_ofSoundSucceeds) {
    const json result = resultOf({"probe", mediaPath("audio-only.m4a")}, kSuccess);

    EXPECT_EQ(result.at("code"), 0);
    EXPECT_EQ(result.at("videoStreamIndex"), -1);
    EXPECT_EQ(result.at("sourceWidth"), 0);
}

TEST_F(EngineTool, probe_failingPrintsItsCode) {
    EXPECT_EQ(resultOf({"probe", folder_ / "missing.mp4"}, kFailure).at("code"), -1);
    EXPECT_EQ(resultOf({"probe", mediaPath("unknown-codec.avi")}, kFailure).at("code"), -4);
}

// Snapshot.

TEST_F(EngineTool, snapshot_writesThePicture) {
    const std::string picture = folder_ / "pic.bmp";

    const json result = resultOf({"snapshot", source_, "1.5", picture}, kSuccess);

    EXPECT_EQ(result, json({{"code", 0}}));
    EXPECT_EQ(fs::file_size(picture), 230'454U);
}

TEST_F(EngineTool, repeatedSnapshot_printsTheTimeOfEach) {
    const std::string picture = folder_ / "pic.bmp";

    const json result = resultOf({"snapshot", source_, "0", picture, "--repeat", "3"}, kSuccess);

    EXPECT_EQ(result.at("code"), 0);
    EXPECT_EQ(result.at("milliseconds").size(), 3U);
    EXPECT_TRUE(result.at("milliseconds").at(0).is_number());
}

TEST_F(EngineTool, snapshot_failingPrintsItsCode) {
    const json result =
        resultOf({"snapshot", folder_ / "missing.mp4", "0", folder_ / "pic.bmp"}, kFailure);

    EXPECT_LT(result.at("code"), 0);
    EXPECT_FALSE(fs::exists(folder_ / "pic.bmp"));
}

// Cut and join.

TEST_F(EngineTool, cut_printsHowItEnded) {
    const json result = resultOf({"cut", source_, "1.5", "2.5", output_}, kSuccess);

    EXPECT_EQ(result.size(), 3U);
    EXPECT_EQ(result.at("fileStates"), json({1}));
    EXPECT_EQ(result.at("currentIndex"), 1);
    EXPECT_GE(result.at("currentPercent"), 95);
    EXPECT_EQ(packetsOf(output_, "v:0").size(), 30U);
    EXPECT_EQ(packetsOf(output_, "v:0").at(0).hash, packetsOf(source_, "v:0").at(30).hash);
}

TEST_F(EngineTool, join_printsTheStateOfEachInput) {
    const json result = resultOf({"join", output_, source_, source_, source_}, kSuccess);

    EXPECT_EQ(result.at("fileStates"), json({1, 1, 1}));
    EXPECT_EQ(result.at("currentIndex"), 3);
    EXPECT_GE(result.at("currentPercent"), 99);
    EXPECT_EQ(packetsOf(output_, "v:0").size(), 3 * packetsOf(source_, "v:0").size());
}

TEST_F(EngineTool, anyInputNotDone_endsWith1) {
    const std::string missing = folder_ / "missing.mp4";
    const std::string sound = mediaPath("audio-only.m4a");

    EXPECT_EQ(resultOf({"cut", missing, "0", "1", output_}, kFailure).at("fileStates"), json({2}));
    EXPECT_EQ(resultOf({"cut", sound, "0", "1", output_}, kFailure).at("fileStates"), json({255}));
    EXPECT_EQ(resultOf({"join", output_, source_, missing}, kFailure).at("fileStates"),
              json({1, 2}));
    EXPECT_EQ(resultOf({"join", output_, missing, source_}, kFailure).at("fileStates"),
              json({2, 2}));
}

TEST_F(EngineTool, outputOfSeveralFiles_failsWithItsCauseAndTouchesNothing) {
    const std::string source = folder_ / "m0.ts"; // as the play list would name its first part
    fs::copy_file(mediaPath("mpeg2.ts"), source);
    const Bytes before = readFile(source);
    for (const char* name : {"m.m3u8", "m.mpd", "%03d.jpg", "m.jpg"}) {
        const std::string output = folder_ / name;
        EXPECT_EQ(resultOf({"cut", source, "0", "1", output}, kFailure).at("fileStates"),
                  json({2}));
        EXPECT_NE(errors_.find(output + ": "), std::string::npos) << errors_;
    }
    EXPECT_TRUE(readFile(source) == before);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 1);
}

TEST_F(EngineTool, namesOfAnyBytes_areTakenAsTheyAre) {
    const std::string input = folder_ / "in:\xFF %d\n.mp4";
    const std::string output = folder_ / "out:\xFF %d\n.mp4";
    fs::copy_file(source_, input);

    resultOf({"cut", input, "0", "1", output}, kSuccess);

    EXPECT_TRUE(fs::exists(output));
}

TEST_F(EngineTool, progress_isOneLineForEachChange) {
    const json result = resultOf({"join", output_, source_, source_, source_}, kSuccess);

    const std::vector<int> percents = progress();
    ASSERT_FALSE(percents.empty());
    EXPECT_EQ(std::set(percents.begin(), percents.end()).size(), percents.size());
    EXPECT_TRUE(std::ranges::is_sorted(percents));
    EXPECT_GE(percents.front(), 0);
    EXPECT_EQ(json(percents.back()), result.at("currentPercent"));
}

// So many inputs take far longer than the signal needs.
TEST_F(EngineTool, interrupt_stopsTheRunAndLeavesTheRestPending) {
    constexpr std::size_t inputs = 900;
    std::vector<std::string> arguments{"join", folder_ / "out.mkv"};
    arguments.insert(arguments.end(), inputs, mediaPath("video-only-mpeg4.avi"));
    StartedProgram tool(command(arguments), folder_ / "result");

    tool.readErrorLine(); // the first that tells of the run
    tool.send(SIGINT);

    EXPECT_EQ(tool.wait(), kFailure);
    const Bytes printed = readFile(folder_ / "result");
    const json result = json::parse(printed);
    ASSERT_EQ(result.at("fileStates").size(), inputs);
    EXPECT_EQ(result.at("fileStates").back(), 255);
    EXPECT_LT(result.at("currentIndex"), inputs);
    for (const json& state : result.at("fileStates")) {
        EXPECT_TRUE(state == 1 || state == 255) << state;
    }
}

} // namespace
} // namespace velmora::test
