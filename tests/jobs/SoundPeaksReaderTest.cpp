// Finding out about a file's sound, and about a direct cut, while the windows go on.

#include "SoundPeaksReader.h"
#include "ConversionEngine.h"
#include "DirectCutReader.h"
#include "JobsSupport.h"
#include "MediaOperations.h"
#include "RunQueue.h"
#include "TestMedia.h"

#include <QSignalSpy>
#include <QTest>

namespace velmora::test {
namespace {

constexpr int kWaitMs = 60'000;
constexpr std::int64_t kSecond = 1'000'000;

QString path(const char* name) {
    return QString::fromStdString(mediaPath(name));
}

class SoundPeaksReaderTest : public SharedStateTest {
protected:
    void readToTheEnd(const QString& file, std::int64_t lengthUs) {
        QSignalSpy done(&reader_, &SoundPeaksReader::done);
        reader_.read(file, lengthUs);
        ASSERT_TRUE(done.wait(kWaitMs));
    }
    SoundPeak wholeFile() { return reader_.peaks().extremes(0, 1'000'000).value_or(SoundPeak()); }

    SoundPeaksReader reader_;
};

TEST_F(SoundPeaksReaderTest, file_becomesKnown) {
    QSignalSpy changed(&reader_, &SoundPeaksReader::changed);
    readToTheEnd(path("h264.mp4"), 4 * kSecond);
    EXPECT_TRUE(reader_.isDone());
    EXPECT_GT(changed.size(), 1);
    EXPECT_GT(wholeFile().high, 10);
    EXPECT_LT(wholeFile().low, -10);
}

TEST_F(SoundPeaksReaderTest, withoutSound_isSilent) {
    readToTheEnd(path("video-only.mp4"), 4 * kSecond);
    EXPECT_TRUE(reader_.isDone());
    EXPECT_FALSE(reader_.peaks().hasSound());
    EXPECT_EQ(wholeFile(), SoundPeak());
}

TEST_F(SoundPeaksReaderTest, claimedLengthOfYears_endsWithTheSound) {
    readToTheEnd(path("h264.mp4"), std::int64_t{100'000'000} * kSecond);
    EXPECT_TRUE(reader_.isDone());
    EXPECT_LT(reader_.peaks().bytes(), std::size_t{8} * kPeaksPerBlock);
}

TEST_F(SoundPeaksReaderTest, withoutLength_isDoneAtOnce) {
    QSignalSpy done(&reader_, &SoundPeaksReader::done);
    reader_.read(path("h264.mp4"), 0);
    EXPECT_EQ(done.size(), 1);
}

TEST_F(SoundPeaksReaderTest, anotherFile_takesItsPlace) {
    reader_.read(path("h264.mp4"), 4 * kSecond);
    readToTheEnd(path("video-only.mp4"), 4 * kSecond);
    EXPECT_FALSE(reader_.peaks().hasSound());
    reader_.clear();
    EXPECT_EQ(reader_.peaks().bytes(), 0U);
}

TEST_F(SoundPeaksReaderTest, whileARunIsAtWork_waits) {
    static constexpr int kOwner = 0;
    RunQueue& queue = RunQueue::instance();
    addItem("/nowhere/in.mp4", 0, 4000);
    queue.add(&kOwner, {.fullPath = output("out.mp4"), .isDirectly = 1, .isCutter = 1});
    queue.startNext(&kOwner);
    ASSERT_TRUE(queue.isBusy()); // its outcome is not taken
    QSignalSpy done(&reader_, &SoundPeaksReader::done);
    QSignalSpy changed(&reader_, &SoundPeaksReader::changed);
    reader_.read(path("h264.mp4"), 4 * kSecond);
    EXPECT_FALSE(changed.wait(500)); // as long as it takes otherwise, many times over
    EXPECT_FALSE(reader_.isDone());
    queue.removeAll(&kOwner);
    ASSERT_TRUE(done.wait(kWaitMs));
    EXPECT_TRUE(reader_.isDone());
}

TEST_F(SoundPeaksReaderTest, goesAwayWhileReading) {
    for (int i = 0; i < 20; ++i) {
        SoundPeaksReader reader;
        reader.read(path("h264.mp4"), 4 * kSecond);
        reader.read(path("h264.mp4"), 40 * kSecond);
    }
}

class DirectCutReaderTest : public ::testing::Test {
protected:
    DirectCutReader reader_;
    QSignalSpy changed_{&reader_, &DirectCutReader::changed};
};

TEST_F(DirectCutReaderTest, answer_isWhereACutBegins) {
    reader_.ask(path("h264.mp4"), 1500, 2500);
    EXPECT_FALSE(reader_.stretch().has_value());
    ASSERT_TRUE(changed_.wait(kWaitMs));
    EXPECT_EQ(reader_.stretch(),
              mediaOperations().directStretch(mediaPath("h264.mp4"), 1.5, 2.5, StopFlag{0}));
    reader_.forget();
    EXPECT_FALSE(reader_.stretch().has_value());
}

TEST_F(DirectCutReaderTest, newestQuestion_isAnswered) {
    for (int startMs = 0; startMs < 3000; startMs += 100) {
        reader_.ask(path("h264.mp4"), startMs, 3500);
    }
    reader_.ask(path("h264.mp4"), 2100, 3500);
    ASSERT_TRUE(changed_.wait(kWaitMs));
    EXPECT_EQ(reader_.stretch()->beginUs, 2 * kSecond);
}

TEST_F(DirectCutReaderTest, goesAwayWhileReading) {
    for (int i = 0; i < 20; ++i) {
        DirectCutReader reader;
        reader.ask(path("h264.mp4"), 0, 1000);
        reader.ask(path("h264.mp4"), 500, 1000);
    }
}

} // namespace
} // namespace velmora::test
