// What is known of sources, and what is said of them.

#include "SourceFactsReader.h"
#include "SourceTrouble.h"
#include "TestMedia.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(SourceTrouble, plainSource_isNone) {
    EXPECT_EQ(troubleOf(SourceFacts()), "");
    EXPECT_EQ(troubleOf(SourceFacts{.soundDelay = 0.09}), "");
    EXPECT_EQ(troubleOf(SourceFacts{.quarterTurns = 1}), "");
}

TEST(SourceTrouble, varyingIntervals_areTold) {
    EXPECT_EQ(troubleOf(SourceFacts{.variesIntervals = true}),
              "The pictures of this video come at varying intervals.");
}

TEST(SourceTrouble, soundElsewhere_isToldWithItsDirection) {
    EXPECT_EQ(troubleOf(SourceFacts{.soundDelay = 0.4}),
              "This video's sound starts 0.4 s after its pictures.");
    EXPECT_EQ(troubleOf(SourceFacts{.soundDelay = -1.26}),
              "This video's sound starts 1.3 s before its pictures.");
}

TEST(SourceTrouble, join_oneFileHasSome_isTold) {
    using Files = std::vector<SourceFacts>;
    EXPECT_EQ(troubleOf(Files{{}, {}}), "");
    EXPECT_EQ(troubleOf(Files{{}, {.variesIntervals = true}}),
              "The pictures of one of the files come at varying intervals.");
    EXPECT_EQ(troubleOf(Files{{}, {.soundDelay = 0.5}}),
              "The sound of one of the files does not start with its pictures.");
    EXPECT_EQ(troubleOf(Files{{.quarterTurns = 1}, {.quarterTurns = 1}}), "");
    EXPECT_EQ(troubleOf(Files{{.quarterTurns = 1}, {.quarterTurns = 3}}),
              "The files differ in rotation.");
    EXPECT_EQ(troubleOf(Files{{}, {.mirrored = true}}), "The files differ in rotation.");
}

TEST(SourceFactsReader, files_becomeKnownInTheirOrder) {
    const QString video = QString::fromStdString(mediaPath("h264.mp4"));
    SourceFactsReader reader;
    QSignalSpy known(&reader, &SourceFactsReader::known);
    reader.read(video);
    reader.read("/nowhere.mp4");
    EXPECT_FALSE(reader.factsOf(video).has_value());
    while (known.size() < 2) {
        ASSERT_TRUE(known.wait());
    }
    EXPECT_EQ(known.at(0).at(0), video);
    ASSERT_TRUE(reader.factsOf(video).has_value());
    EXPECT_TRUE(reader.factsOf(video)->hasPictures);
    EXPECT_FALSE(reader.factsOf("/nowhere.mp4")->hasPictures);
}

TEST(SourceFactsReader, readAgain_isUnknownUntilThen) {
    const QString video = QString::fromStdString(mediaPath("h264.mp4"));
    SourceFactsReader reader;
    QSignalSpy known(&reader, &SourceFactsReader::known);
    reader.read(video);
    ASSERT_TRUE(known.wait());
    reader.read(video);
    EXPECT_FALSE(reader.factsOf(video).has_value());
    ASSERT_TRUE(known.wait());
    EXPECT_TRUE(reader.factsOf(video).has_value());
}

TEST(SourceFactsReader, goesAwayWhileReading) {
    const QString video = QString::fromStdString(mediaPath("h264.mp4"));
    for (int i = 0; i < 20; ++i) {
        SourceFactsReader reader;
        reader.read(video);
        reader.read(video);
    }
}

} // namespace
} // namespace velmora::test
