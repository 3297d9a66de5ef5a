// A run that the system ends in the middle leaves alone what was there before, and the next one
// works.

#include "StartedProgram.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

class KilledRun : public testing::TestWithParam<int> {
protected:
    std::vector<std::string> join(const std::string& output, bool reencode) const {
        std::vector<std::string> words{VELMORA_ENGINE_PROGRAM, "join", output};
        words.insert(words.end(), 10, source_);
        if (reencode) {
            words.insert(words.end(), {"--reencode", "size=160x120", "vcodec=MPEG4"});
        }
        return words;
    }

    TemporaryFolder folder_;
    const std::string source_ = copyOfMedia("h264.mp4", folder_);
    const std::string neighbour_ = folder_ / "neighbour.mkv";
};

TEST_P(KilledRun, atAnyMoment_sourceAndNeighbourAreKeptAndTheNextRunWorks) {
    fs::copy_file(source_, neighbour_);
    const Bytes content = readFile(source_);
    constexpr unsigned seed = 20'261'121;
    std::mt19937 random(seed + static_cast<unsigned>(GetParam()));
    for (int round = 0; round < 6; ++round) {
        const std::string output = folder_ / "out.mkv";
        {
            StartedProgram tool(join(output, round % 2 == 1), folder_ / "result");
            for (auto lines = random() % 60; lines > 0 && tool.readErrorLine(); --lines) {
            }
            tool.send(GetParam());
        }
        EXPECT_EQ(readFile(source_), content);
        EXPECT_EQ(readFile(neighbour_), content);
        EXPECT_EQ(runProgram({VELMORA_ENGINE_PROGRAM, "cut", source_, "0", "1", output}).status, 0)
            << "round " << round << " of seed " << seed;
    }
}

INSTANTIATE_TEST_SUITE_P(Signals, KilledRun, testing::Values(SIGTERM, SIGKILL, SIGINT));

} // namespace
} // namespace velmora::test
