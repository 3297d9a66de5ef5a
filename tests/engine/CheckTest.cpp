// What is told of a written file, and of a source.

#include "ExactSupport.h"
#include "MediaOperations.h"
#include "MediaReader.h"
#include "WrittenFile.h"

#include <algorithm>
#include <filesystem>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

class Check : public Exact {
protected:
    /// What is found of a direct copy.
    std::string findingOfCopy(const std::string& source, double start, double end,
                              const std::string& output) {
        Job job;
        job.add(source, output, start, end);
        load(engine_, job);
        return engine_.run(job).finding;
    }
    static SourceFacts factsOf(const std::string& path) {
        const StopFlag stop{0};
        return mediaOperations().readFacts(path, stop);
    }
};

TEST_F(Check, copy_asMarked_hasNothingToSay) {
    EXPECT_EQ(findingOfCopy(exactSource("plain.mp4"), 1.0, 2.0, folder_ / "out.mp4"), "");
}

TEST_F(Check, copy_beginsWithoutKeyFrame_isTold) {
    const std::string source = exactSource("plain.ts");

    EXPECT_EQ(findingOfCopy(source, 0.5, 1.5, folder_ / "out.ts"),
              "The first picture of the written file cannot be shown.");
}

TEST_F(Check, file_isNone_isTold) {
    const std::string path = folder_ / "file.mp4";
    writeFile(path, "nothing of the kind");
    EXPECT_EQ(differenceOf(path, WrittenPlan(), nullptr),
              "The written file cannot be opened again.");
}

TEST_F(Check, file_lacksAStream_isTold) {
    const std::string mute = mediaMadeBy(
        "-f lavfi -i testsrc2=size=128x64:rate=25:duration=1 -c:v libx264 -pix_fmt yuv420p",
        "exact-mute-25.mp4");
    const std::string sound =
        mediaMadeBy("-f lavfi -i sine=duration=1 -c:a aac", "exact-sound.m4a");
    WrittenPlan plan;
    plan.hasSound = true;
    EXPECT_EQ(differenceOf(mute, plan, nullptr), "The written file has no sound.");
    EXPECT_EQ(differenceOf(sound, plan, nullptr), "The written file has no pictures.");
}

TEST_F(Check, file_hasOtherNumberOrLength_isTold) {
    const std::string path = exactSource("plain.mp4");
    WrittenPlan plan;
    plan.isExact = true;
    plan.pictures = 50;
    plan.seconds = 2.0;
    EXPECT_EQ(differenceOf(path, plan, nullptr), "");
    plan.pictures = 49;
    EXPECT_EQ(differenceOf(path, plan, nullptr), "The file has 50 pictures, 49 were written.");
    plan.pictures.reset();
    plan.seconds = 1.8;
    EXPECT_EQ(differenceOf(path, plan, nullptr), "The file is 2.0 s long, 1.8 s were marked.");
    plan.seconds = 2.5;
    plan.lastPictureSeconds = 2.4;
    EXPECT_EQ(differenceOf(path, plan, nullptr), "The file is 2.0 s long, 2.5 s were marked.");
    plan.lastPictureSeconds = 1.96; // shown for long, as not every container can tell
    EXPECT_EQ(differenceOf(path, plan, nullptr), "");
}

TEST_F(Check, file_lastPicturesAreDamaged_isTold) {
    const std::string path = folder_ / "file.mp4";
    fs::copy_file(exactSource("intra.mp4", "testsrc2",
                              "-c:v libx264 -g 1 -pix_fmt yuv420p -an -movflags +faststart"),
                  path);
    Bytes content = readFile(path);
    std::fill(content.begin() + static_cast<std::ptrdiff_t>(content.size() / 2), content.end(),
              std::uint8_t{0x55});
    writeFile(path, content);
    EXPECT_EQ(differenceOf(path, WrittenPlan(), nullptr),
              "The last picture of the written file cannot be shown.");
}

TEST_F(Check, file_endsDamagedBehindItsLastKeyFrame_isTold) {
    const std::string path = folder_ / "file.mkv";
    fs::copy_file(exactSource("group.mkv", "testsrc2", "-c:v libx264 -g 50 -pix_fmt yuv420p -an"),
                  path);
    Bytes content = readFile(path);
    const auto middle = content.begin() + static_cast<std::ptrdiff_t>(content.size() / 2);
    for (auto byte = middle; byte < content.end() - 2'000; byte += 40) {
        *byte ^= 0xFFU;
    }
    writeFile(path, content);
    EXPECT_EQ(differenceOf(path, WrittenPlan(), nullptr),
              "The last picture of the written file cannot be shown.");
}

TEST_F(Check, job_soundLongerThanMarked_isTold) {
    const std::string written = mediaMadeBy(
        "-f lavfi -i testsrc2=size=128x64:rate=25:duration=2 -f lavfi -i sine=duration=6 "
        "-c:v libx264 -pix_fmt yuv420p -c:a aac",
        "exact-long-sound.mp4");
    Job job;
    job.add(written, written, 0.0, 2.0);
    EXPECT_EQ(differenceOf(job, nullptr), "The file is 6.0 s long, 2.0 s were marked.");
}

TEST_F(Check, job_longerThanMarked_isToldWithItsCause) {
    const std::string source =
        exactSource("varying.mp4", "testsrc2",
                    "-vf setpts=(N/25+0.5*floor(N/10))/TB -vsync vfr -c:v libx264 -g 25 -bf 0 "
                    "-pix_fmt yuv420p -video_track_timescale 12800");
    Job job;
    job.add(source, exactSource("plain.mp4"), 0.0, 1.0); // as if that had been written: 2 s

    EXPECT_EQ(differenceOf(job, nullptr),
              "The file is 2.0 s long, 1.0 s were marked: this video's pictures "
              "come at varying intervals.");
}

TEST_F(Check, job_markedBeyondTheSource_endsWhereThatDoes) {
    Job job;
    job.add(exactSource("plain.mp4"), exactSource("plain.mp4"), 0.0, 50.0);
    EXPECT_EQ(differenceOf(job, nullptr), "");
}

TEST_F(Check, join_isComparedWithAllParts) {
    Job job;
    job.joins = true;
    job.add(exactSource("plain.mp4"), exactSource("plain.mp4"), 0.0, 0.002);
    EXPECT_EQ(differenceOf(job, nullptr), "");
    job.add(exactSource("plain.mp4"), exactSource("plain.mp4"), 0.0, 0.002);
    EXPECT_EQ(differenceOf(job, nullptr), "The file is 2.0 s long, its parts are 4.0 s together.");
}

TEST_F(Check, facts_intervals) {
    EXPECT_FALSE(factsOf(exactSource("plain.mp4")).variesIntervals);
    EXPECT_FALSE(factsOf(exactSource("plain.mkv", "testsrc2")).variesIntervals);
    EXPECT_FALSE(factsOf(exactSource("plain.ts")).variesIntervals);
    const std::string varying =
        "-vf setpts=(N/25+0.5*floor(N/10))/TB -vsync vfr -c:v libx264 -g 25 "
        "-pix_fmt yuv420p ";
    EXPECT_TRUE(factsOf(exactSource("varies.mp4", "testsrc2", varying + "-bf 2")).variesIntervals);
    EXPECT_TRUE(factsOf(exactSource("varies.mkv", "testsrc2", varying)).variesIntervals);
}

TEST_F(Check, facts_soundDelayAndTurn) {
    const std::string late =
        mediaMadeBy("-i " + exactSource("plain.mp4") + " -itsoffset 0.4 -i " +
                        exactSource("plain.mp4") + " -map 0:v -map 1:a -c copy",
                    "exact-late.mp4");
    EXPECT_NEAR(factsOf(late).soundDelay, 0.4, 0.03);
    EXPECT_NEAR(factsOf(exactSource("plain.mp4")).soundDelay, 0.0, 0.03);
    const std::string turned = mediaMadeBy(
        "-i " + exactSource("plain.mp4") + " -c copy -metadata:s:v rotate=270", "exact-turn.mp4");
    EXPECT_EQ(factsOf(turned).quarterTurns, 1);
    EXPECT_FALSE(factsOf(turned).mirrored);
    EXPECT_EQ(factsOf(exactSource("plain.mp4")).quarterTurns, 0);
    EXPECT_FALSE(factsOf("/nowhere.mp4").hasPictures);
}

TEST_F(Check, onceStopped_saysNothing) {
    const StopFlag stop{1};
    EXPECT_EQ(differenceOf(folder_ / "nothing.mp4", WrittenPlan(), &stop), "");
}

} // namespace
} // namespace velmora::test
