// What an exact cut that copies leaves alone when it cannot be made, and what it replaces when it
// can.

#include "ExactCopySources.h"
#include "ExactCopySupport.h"
#include "ReencodeSupport.h"

#include <algorithm>
#include <filesystem>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(ExactCopy, cut_settingsThatChangeInTheMiddle_areRefusedAndNothingIsLeft) {
    // Around both ends they are the same: only reading all of it tells.
    EXPECT_EQ(copy(copySource("changing.ts"), 1300, 7080, folder_ / "out.mp4").states, kFailed);

    EXPECT_NE(report_.finding.find("its decoder settings change on the way"), std::string::npos);
    expectFiles(0);
}

TEST_F(ExactCopy, cut_outputIsTheSource_failsAndLeavesIt) {
    const std::string source = folder_ / "source.mp4";
    fs::copy_file(copySource("plain.mp4"), source);
    const Bytes before = readFile(source);

    EXPECT_EQ(copy(source, 1300, 7080, source).states, kFailed);

    EXPECT_EQ(readFile(source), before);
    expectFiles(1);
}

TEST_F(ExactCopy, cut_truncatedSource_failsAndLeavesNothing) {
    const std::string source = folder_ / "source.mp4";
    Bytes content = readFile(copySource("fast.mp4"));
    content.resize(content.size() / 2);
    writeFile(source, content);

    EXPECT_EQ(copy(source, 1300, 9080, folder_ / "out.mp4").states, kFailed);
    EXPECT_NE(report_.finding, "");
    EXPECT_EQ(copy(source, 1300, 90'000, folder_ / "out.mp4").states, kFailed);
    expectFiles(1);
}

TEST_F(ExactCopy, cut_damagedSource_failsAndLeavesNothing) {
    const std::string source = folder_ / "source.mp4";
    Bytes content = readFile(copySource("fast.mp4"));
    for (std::size_t i = content.size() / 4; i < content.size(); i += 50) {
        content[i] = 0xFF;
    }
    writeFile(source, content);

    EXPECT_EQ(copy(source, 1300, 7080, folder_ / "out.mp4").states, kFailed);
    expectFiles(1);
}

TEST_F(ExactCopy, cut_stopped_leavesTheFileThatWasThere) {
    const std::string output = folder_ / "out.mp4";
    writeFile(output, std::string_view("before"));
    const AtRunPoint stop(RunPoint::Packet,
                          [this](int number) { engine_.stopRequested = number >= 60 ? 1 : 0; });

    EXPECT_EQ(copy(copySource("plain.mp4"), 1300, 7080, output).states,
              std::vector<int>{ConversionEngine::Pending});

    EXPECT_LT(stop.seen(), 70);
    const Bytes kept = readFile(output);
    EXPECT_EQ(std::string(kept.begin(), kept.end()), "before");
    expectFiles(1);
}

TEST_F(ExactCopy, cut_seamThatCannotBeDecoded_isNotKept) {
    const std::string output = folder_ / "out.mp4";
    writeFile(output, std::string_view("before"));
    int written = 0;
    const FaultyMedia damage({.write = [&written](const AVPacket& packet) {
        const bool isPicture = packet.stream_index == 0;
        written += isPicture ? 1 : 0;
        if (isPicture && written == 5) { // one of those encoded for the start
            std::fill(packet.data + 6, packet.data + packet.size, std::uint8_t{0xFF});
        }
        return false;
    }});

    EXPECT_EQ(copy(copySource("plain.mp4"), 1300, 7080, output).states, kFailed);

    EXPECT_EQ(report_.finding, "The exact cut could not be verified; nothing was kept.");
    const Bytes kept = readFile(output);
    EXPECT_EQ(std::string(kept.begin(), kept.end()), "before");
    expectFiles(1);
}

TEST_F(ExactCopy, cut_packetThatCannotBeWritten_failsAndLeavesNothing) {
    int written = 0;
    const FaultyMedia fault({.write = [&written](const AVPacket&) { return ++written == 90; }});

    EXPECT_EQ(copy(copySource("plain.mp4"), 1300, 7080, folder_ / "out.mp4").states, kFailed);

    expectFiles(0);
}

TEST_F(ExactCopy, cut_fileThatWasThere_isReplacedAndKeepsItsPermissions) {
    const std::string output = folder_ / "out.mp4";
    writeFile(output, std::string_view("before"));
    fs::permissions(output, fs::perms::owner_read | fs::perms::owner_write);

    EXPECT_EQ(copy(copySource("plain.mp4"), 1300, 7080, output).states, kDone);

    EXPECT_EQ(frameMd5s(output, "v:0").size(), 144U);
    EXPECT_EQ(fs::status(output).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(ExactCopy, cut_throughALink_writesWhereItLeads) {
    fs::create_directory(folder_ / "elsewhere");
    fs::create_symlink(folder_ / "elsewhere/real.mp4", folder_ / "out.mp4");

    EXPECT_EQ(copy(copySource("plain.mp4"), 1300, 7080, folder_ / "out.mp4").states, kDone);

    EXPECT_TRUE(fs::is_symlink(folder_ / "out.mp4"));
    EXPECT_TRUE(fs::is_regular_file(folder_ / "elsewhere/real.mp4"));
}

TEST_F(ExactCopy, join_isRefused) {
    Job job;
    job.joins = true;
    job.exact = true;
    for (int i = 0; i < 2; ++i) {
        job.add(copySource("plain.mp4"), folder_ / "out.mp4", 0.0, 0.01);
    }
    load(engine_, job);

    const RunReport report = engine_.run(job);

    EXPECT_EQ(result().states, (std::vector<int>{kFailed[0], kFailed[0]}));
    EXPECT_EQ(report.finding, "Videos cannot be joined exactly without encoding them again.");
    expectFiles(0);
}

} // namespace
} // namespace velmora::test
