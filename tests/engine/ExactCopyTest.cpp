// What an exact cut that copies writes, and what it leaves alone. Windows of many sources:
// scripts/exact-copy-matrix.

#include "ExactCopySources.h"
#include "ExactSupport.h"
#include "ReencodeSupport.h"

#include <algorithm>
#include <filesystem>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

class ExactCopy : public Exact {
protected:
    JobResult copy(const std::string& input, std::int64_t startMs, std::int64_t endMs,
                   const std::string& output) {
        Job job;
        job.add(input, output, static_cast<double>(startMs) / 1000,
                static_cast<double>(endMs) / 1000);
        job.windows.push_back({startMs, endMs});
        job.exact = true;
        load(engine_, job);
        report_ = engine_.run(job);
        return result();
    }
    /// Nothing is left in the test's folder but these many files.
    void expectFiles(std::ptrdiff_t count) const {
        EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), count);
    }
};

const std::vector<int> kDone{ConversionEngine::Done};
const std::vector<int> kFailed{ConversionEngine::Failed};

/// How many of the output's packets are the source's, to the byte.
std::ptrdiff_t copiedPackets(const std::string& source, const std::string& output) {
    const auto from = packetsOf(source, "v:0");
    return std::ranges::count_if(packetsOf(output, "v:0"), [&](const PacketFacts& packet) {
        return std::ranges::find(from, packet.hash, &PacketFacts::hash) != from.end();
    });
}

/// How many of the output's pictures are those of the source from number `first` on.
std::ptrdiff_t equalPictures(const std::string& source, std::size_t first,
                             const std::string& output) {
    const auto from = frameMd5s(source, "v:0");
    const auto shown = frameMd5s(output, "v:0");
    std::ptrdiff_t equal = 0;
    for (std::size_t i = 0; i < shown.size() && first + i < from.size(); ++i) {
        equal += shown[i] == from[first + i] ? 1 : 0;
    }
    return equal;
}

TEST_F(ExactCopy, cut_betweenKeyFrames_copiesAllButItsEnds) {
    const std::string source = copySource("plain.mp4");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(copy(source, 1300, 7080, output).states, kDone);

    EXPECT_EQ(report_.finding, "");
    const auto times = pictureTimes(output);
    ASSERT_EQ(times.size(), 144U); // 1.32 to 7.04
    for (std::size_t i = 0; i < times.size(); ++i) {
        EXPECT_EQ(times[i], times[1] * static_cast<std::int64_t>(i));
    }
    EXPECT_EQ(fieldsOf(output, "v:0").at("duration"), "5.760000");
    EXPECT_GE(copiedPackets(source, output), 144 - 17 - 3);
    EXPECT_EQ(copiedPackets(source, output), equalPictures(source, 33, output));
    EXPECT_TRUE(ffmpegDecodesClean(output));
    expectFiles(1);
}

TEST_F(ExactCopy, cut_onKeyFrames_copiesAll) {
    const std::string source = copySource("plain.mp4");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(copy(source, 2000, 6000, output).states, kDone);

    EXPECT_EQ(copiedPackets(source, output), 100);
    EXPECT_EQ(equalPictures(source, 50, output), 100);
}

TEST_F(ExactCopy, cut_refused_saysWhyAndWritesNothing) {
    EXPECT_EQ(copy(copySource("asp.mp4"), 1300, 7080, folder_ / "out.mp4").states, kFailed);

    EXPECT_NE(report_.finding.find("there is no encoder that matches"), std::string::npos);
    expectFiles(0);
}

} // namespace
} // namespace velmora::test
