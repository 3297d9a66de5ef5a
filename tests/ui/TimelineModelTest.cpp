// Where a timeline shows what.

#include "TimelineModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace velmora::test {
namespace {

constexpr std::int64_t kSecond = 1'000'000;

/// Ten minutes of video at 25 pictures a second, on 600 pixels: one a second.
class TimelineModelTest : public ::testing::Test {
protected:
    TimelineModelTest() {
        model_.setWidth(600);
        model_.setLength(600 * kSecond);
        model_.setPictureLength(40'000);
    }
    void zoomInFully() {
        while (model_.canZoomIn()) {
            model_.zoom(2);
        }
    }
    static double closest(const std::vector<double>& ticks) {
        double least = HUGE_VAL;
        for (std::size_t i = 1; i < ticks.size(); ++i) {
            least = std::min(least, ticks[i] - ticks[i - 1]);
        }
        return least;
    }

    TimelineModel model_;
};

TEST_F(TimelineModelTest, newVideo_isAllVisibleAndMarked) {
    EXPECT_EQ(model_.viewBeginUs(), 0);
    EXPECT_EQ(model_.viewEndUs(), 600 * kSecond);
    EXPECT_FALSE(model_.isZoomed());
    EXPECT_EQ(model_.marked().begin, 0);
    EXPECT_EQ(model_.marked().end, 600);
}

TEST_F(TimelineModelTest, placesAndTimes_belongTogether) {
    struct Row {
        double x;
        std::int64_t us;
    };
    for (const Row row : {Row{0, 0}, Row{1, kSecond}, Row{300, 300 * kSecond},
                          Row{600, 600 * kSecond}, Row{0.5, kSecond / 2}}) {
        EXPECT_EQ(model_.timeAt(row.x), row.us);
        EXPECT_DOUBLE_EQ(model_.xOf(row.us), row.x);
    }
    EXPECT_EQ(model_.timeAt(-5), 0);
    EXPECT_EQ(model_.timeAt(700), 600 * kSecond);
}

TEST_F(TimelineModelTest, zoom_keepsThePositionInItsPlace) {
    for (const std::int64_t at : {0, 100, 300, 500, 600}) {
        model_.setLength(600 * kSecond);
        model_.setPosition(at * kSecond);
        const double x = model_.xOf(at * kSecond);
        model_.zoom(4);
        EXPECT_EQ(model_.viewEndUs() - model_.viewBeginUs(), 150 * kSecond) << at;
        EXPECT_NEAR(model_.xOf(at * kSecond), x, 0.01) << at;
        model_.zoom(0.25);
        EXPECT_FALSE(model_.isZoomed());
    }
}

TEST_F(TimelineModelTest, zoomWithThePositionOutOfSight_goesToIt) {
    model_.setPosition(100 * kSecond);
    model_.zoom(4);
    model_.scroll(10'000);
    EXPECT_EQ(model_.viewEndUs(), 600 * kSecond);
    model_.zoom(2);
    EXPECT_NEAR(model_.xOf(100 * kSecond), 300, 0.01);
}

TEST_F(TimelineModelTest, fullZoom_showsSinglePictures) {
    EXPECT_FALSE(model_.showsPictures());
    model_.setPosition(300 * kSecond);
    zoomInFully();
    EXPECT_TRUE(model_.showsPictures());
    EXPECT_NEAR(model_.xOf(300 * kSecond + 40'000) - model_.xOf(300 * kSecond), 12, 0.1);
    model_.setPictures({299'960'000, 300'000'000, 300'040'000, 300'080'000});
    EXPECT_EQ(model_.pictureTicks().size(), 4U);
    model_.zoom(1.0 / 8);
    EXPECT_TRUE(model_.pictureTicks().empty());
}

TEST_F(TimelineModelTest, shortVideo_cannotBeZoomed) {
    model_.setLength(kSecond / 10);
    EXPECT_FALSE(model_.canZoomIn());
    model_.zoom(2);
    EXPECT_FALSE(model_.isZoomed());
}

TEST_F(TimelineModelTest, scroll_endsWithTheVideo) {
    model_.scroll(50);
    EXPECT_EQ(model_.viewBeginUs(), 0); // all is visible
    model_.zoom(2);
    model_.scroll(100);
    EXPECT_EQ(model_.viewBeginUs(), 50 * kSecond);
    model_.scroll(1e9);
    EXPECT_EQ(model_.viewEndUs(), 600 * kSecond);
    model_.scroll(-1e9);
    EXPECT_EQ(model_.viewBeginUs(), 0);
}

TEST_F(TimelineModelTest, positionOutOfSight_isBroughtIntoView) {
    model_.zoom(4);
    model_.setPosition(120 * kSecond);
    EXPECT_EQ(model_.viewBeginUs(), 0); // it was in sight
    model_.setPosition(400 * kSecond);
    EXPECT_NEAR(model_.xOf(400 * kSecond), 300, 0.01);
    model_.setPosition(1000 * kSecond);
    EXPECT_EQ(model_.positionUs(), 600 * kSecond);
    EXPECT_EQ(model_.viewEndUs(), 600 * kSecond);
}

TEST_F(TimelineModelTest, wider_showsTheSame) {
    model_.zoom(2);
    const std::int64_t begin = model_.viewBeginUs();
    model_.setWidth(900);
    EXPECT_EQ(model_.viewBeginUs(), begin);
    EXPECT_EQ(model_.timeAt(900), model_.viewEndUs());
}

TEST_F(TimelineModelTest, denseKeyFrames_areThinnedToFourPixels) {
    KeyFrames each; // a tenth of a pixel from each other
    for (std::int64_t us = 0; us < 600 * kSecond; us += kSecond / 10) {
        each.push_back(us);
    }
    model_.setKeyFrames(each);
    EXPECT_EQ(model_.keyFrameTicks().size(), 150U);
    EXPECT_GE(closest(model_.keyFrameTicks()), 4);
    model_.setPosition(300 * kSecond);
    model_.zoom(8);
    EXPECT_GE(closest(model_.keyFrameTicks()), 4);
    zoomInFully();
    const std::int64_t begin = model_.viewBeginUs() / (kSecond / 10);
    const std::int64_t end = model_.viewEndUs() / (kSecond / 10);
    EXPECT_NEAR(static_cast<double>(model_.keyFrameTicks().size()),
                static_cast<double>(end - begin), 1); // there is room for all
}

TEST_F(TimelineModelTest, sparseKeyFrames_areAllThere) {
    model_.setKeyFrames({-kSecond, 0, 10 * kSecond, 20 * kSecond, 500 * kSecond});
    EXPECT_EQ(model_.keyFrameTicks(), std::vector<double>({-1, 10, 20, 500}));
}

TEST_F(TimelineModelTest, thinnedTicks_stayWhileOneScrolls) {
    KeyFrames each;
    for (std::int64_t us = 0; us < 600 * kSecond; us += kSecond / 3) {
        each.push_back(us);
    }
    model_.setKeyFrames(each);
    model_.zoom(4);
    std::vector<std::int64_t> before;
    for (const double x : model_.keyFrameTicks()) {
        before.push_back(model_.timeAt(x));
    }
    model_.scroll(7);
    for (const double x : model_.keyFrameTicks()) {
        const std::int64_t time = model_.timeAt(x);
        if (time < before.back()) {
            EXPECT_TRUE(std::ranges::any_of(before, [time](std::int64_t old) {
                return std::abs(old - time) < 10;
            })) << time;
        }
    }
}

TEST_F(TimelineModelTest, direct_addsBeforeTheStartAndLosesAtTheEnd) {
    model_.setMarks(100 * kSecond, 200 * kSecond);
    EXPECT_TRUE(model_.addedByDirect().isEmpty());
    model_.setDirect(DirectStretch{98 * kSecond, 198 * kSecond});
    EXPECT_EQ(model_.addedByDirect().begin, 98);
    EXPECT_EQ(model_.addedByDirect().end, 100);
    EXPECT_EQ(model_.missingInDirect().begin, 198);
    EXPECT_EQ(model_.missingInDirect().end, 200);
    EXPECT_EQ(model_.directPart().begin, 98);
    EXPECT_EQ(model_.directPart().end, 198);
}

TEST_F(TimelineModelTest, directThatStartsLater_addsNothing) {
    model_.setMarks(100 * kSecond, 200 * kSecond);
    model_.setDirect(DirectStretch{103 * kSecond, 203 * kSecond});
    EXPECT_TRUE(model_.addedByDirect().isEmpty());
    EXPECT_TRUE(model_.missingInDirect().isEmpty());
}

TEST_F(TimelineModelTest, directOfAShortStretch_liesBeforeAllOfIt) {
    model_.setMarks(100 * kSecond, 101 * kSecond);
    model_.setDirect(DirectStretch{90 * kSecond, 91 * kSecond});
    EXPECT_EQ(model_.addedByDirect().begin, 90);
    EXPECT_EQ(model_.addedByDirect().end, 91);
    EXPECT_EQ(model_.missingInDirect().begin, 100);
    EXPECT_EQ(model_.missingInDirect().end, 101);
}

TEST_F(TimelineModelTest, marksOutside_areTakenAsFarAsThereIsVideo) {
    model_.setMarks(-kSecond, 700 * kSecond);
    EXPECT_EQ(model_.markBeginUs(), 0);
    EXPECT_EQ(model_.markEndUs(), 600 * kSecond);
    model_.setMarks(300 * kSecond, 200 * kSecond);
    EXPECT_TRUE(model_.marked().isEmpty());
}

TEST_F(TimelineModelTest, marksOutOfSight_areEmpty) {
    model_.zoom(4);
    model_.setMarks(300 * kSecond, 400 * kSecond);
    EXPECT_TRUE(model_.marked().isEmpty());
}

TEST_F(TimelineModelTest, noVideo_hasNothing) {
    model_.setLength(0);
    model_.setKeyFrames({0, kSecond});
    model_.setDirect(DirectStretch{0, kSecond});
    model_.zoom(2);
    model_.scroll(20);
    model_.setPosition(kSecond);
    EXPECT_EQ(model_.positionUs(), 0);
    EXPECT_EQ(model_.timeAt(20), 0);
    EXPECT_EQ(model_.xOf(kSecond), 0);
    EXPECT_TRUE(model_.keyFrameTicks().empty());
    EXPECT_TRUE(model_.marked().isEmpty());
    EXPECT_TRUE(model_.directPart().isEmpty());
}

// One click each in a silent quarter of an hour, at any zoom and any place.
TEST_F(TimelineModelTest, peaks_areLostAtNoZoom) {
    PeakTable peaks;
    std::vector<std::int64_t> clicks;
    for (std::int64_t block = 0; block <= 600 * kSecond / kPeakBlockUs; ++block) {
        std::vector<SoundPeak> one(kPeaksPerBlock);
        const auto place = static_cast<std::size_t>(block * 389 % kPeaksPerBlock);
        one[place] = {-100, 90};
        clicks.push_back((block * kPeaksPerBlock + static_cast<std::int64_t>(place)) * kPeakUs);
        peaks.put(block, one);
    }
    model_.setPeaks(&peaks);
    model_.setPosition(217 * kSecond);
    for (int zoom = 0; zoom < 12; ++zoom) {
        for (const int columns : {600, 1200, 613}) {
            const auto levels = model_.levels(columns);
            for (const std::int64_t click : clicks) {
                const double column = model_.xOf(click) * columns / 600.0;
                if (column >= 0 && column < columns - 1) {
                    const auto& level = levels[static_cast<std::size_t>(column)];
                    ASSERT_TRUE(level.has_value());
                    EXPECT_EQ(*level, (SoundPeak{-100, 90})) << zoom << ' ' << columns;
                }
            }
        }
        model_.zoom(1.7);
    }
}

TEST_F(TimelineModelTest, soundNotKnown_hasNoLevel) {
    PeakTable peaks;
    peaks.put(1, std::vector<SoundPeak>(kPeaksPerBlock, SoundPeak{-5, 5}));
    model_.setPeaks(&peaks);
    const auto levels = model_.levels(600);
    EXPECT_FALSE(levels[5].has_value());
    EXPECT_EQ(levels[12], (SoundPeak{-5, 5}));
    EXPECT_FALSE(levels[30].has_value());
    peaks.endAt(2);
    EXPECT_EQ(model_.levels(600)[30], SoundPeak());
}

TEST_F(TimelineModelTest, withoutSound_hasNoLevels) {
    PeakTable peaks;
    peaks.endAt(0);
    model_.setPeaks(&peaks);
    EXPECT_FALSE(model_.levels(600)[30].has_value());
}

TEST_F(TimelineModelTest, lengthOfYears_doesNoHarm) {
    model_.setLength(std::int64_t{1} << 60);
    model_.setPosition(std::int64_t{1} << 59);
    model_.setKeyFrames({0, kSecond});
    EXPECT_EQ(model_.keyFrameTicks().size(), 1U);
    zoomInFully();
    EXPECT_TRUE(model_.showsPictures());
    EXPECT_LE(model_.viewBeginUs(), model_.positionUs());
    EXPECT_GE(model_.viewEndUs(), model_.positionUs());
}

} // namespace
} // namespace velmora::test
