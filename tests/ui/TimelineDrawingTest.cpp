// What of the timeline is seen, also on a dense screen and in other colours.

#include "TimelineStrip.h"

#include <QImage>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

namespace velmora::test {
namespace {

constexpr std::int64_t kDrawnSecond = 1'000'000;

/// The colours of a desktop.
struct Theme {
    const char* name;
    QColor base;
    QColor text;
    QColor highlight;
    QColor onHighlight;
};

const std::vector<Theme>& themes() {
    static const std::vector<Theme> all = {
        {"light", "#ffffff", "#12324a", "#1f6fb2", "#ffffff"},
        {"dark", "#1e1e1e", "#eeeeee", "#3d8fd6", "#ffffff"},
        {"high contrast", "#000000", "#ffffff", "#ffff00", "#000000"},
        {"high contrast, inverse", "#ffffff", "#000000", "#000080", "#ffffff"}};
    return all;
}

/// As WCAG has it: 1 to 21.
double contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& colour) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF());
    };
    const double high = std::max(luminance(a), luminance(b));
    const double low = std::min(luminance(a), luminance(b));
    return (high + 0.05) / (low + 0.05);
}

/// A strip 600 wide, of ten minutes; a pixel is a second. Nothing is marked.
class TimelineDrawingTest : public ::testing::Test {
protected:
    TimelineDrawingTest() {
        strip_.resize(600, 40);
        strip_.setVideo(600 * kDrawnSecond, 40'000);
        strip_.setMarks(0, 0);
        strip_.setPosition(599 * kDrawnSecond); // out of the way
        use(themes().front());
    }
    void use(const Theme& theme) {
        QPalette palette;
        palette.setColor(QPalette::Base, theme.base);
        palette.setColor(QPalette::Text, theme.text);
        palette.setColor(QPalette::Highlight, theme.highlight);
        palette.setColor(QPalette::HighlightedText, theme.onHighlight);
        strip_.setPalette(palette);
        base_ = theme.base;
        text_ = theme.text;
        highlight_ = theme.highlight;
    }
    void look() { shown_ = strip_.grab().toImage(); }
    QColor at(double x, double y) const {
        const double ratio = shown_.devicePixelRatio();
        return shown_.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
    }
    /// How many of the rows from `from` up to `to` have another colour than the background there.
    int inked(double x, int from, int to) const {
        int count = 0;
        for (int y = from; y < to; ++y) {
            count += at(x, y) != base_ ? 1 : 0;
        }
        return count;
    }

    /// How much of a number's patch at `x` is of the colour of its digit.
    int numberInk(int x, const Theme& theme) const {
        int count = 0;
        for (int dy = 0; dy < 11; ++dy) {
            for (int dx = 2; dx < 10; ++dx) {
                const QColor colour = at(x + dx, 25 + dy);
                count += contrast(colour, theme.highlight) > 2 ? 1 : 0;
            }
        }
        return count;
    }
    /// How many colours there are in the middle row.
    int coloursBetween(int from, int to) const {
        std::set<QRgb> colours;
        for (double x = from; x < to; x += 1 / shown_.devicePixelRatio()) {
            colours.insert(at(x, 20).rgb());
        }
        return static_cast<int>(colours.size());
    }
    /// The colour there that differs least from the background.
    QColor lightest(int from, int to) const {
        QColor found = at(from, 20);
        for (int x = from; x < to; ++x) {
            if (contrast(at(x, 20), base_) < contrast(found, base_)) {
                found = at(x, 20);
            }
        }
        return found;
    }

    TimelineStrip strip_;
    QImage shown_;
    QColor base_;
    QColor text_;
    QColor highlight_;
};

TEST_F(TimelineDrawingTest, ratio_isTheOneAskedFor) {
    look();
    const bool scaled = qEnvironmentVariable("QT_SCALE_FACTOR") == "2";
    EXPECT_EQ(shown_.width(), scaled ? 1200 : 600);
}

TEST_F(TimelineDrawingTest, keyFrames_areTicksAtTheUpperEdge) {
    strip_.setKeyFrames({100 * kDrawnSecond, 200 * kDrawnSecond});
    look();
    for (const int x : {100, 200}) {
        EXPECT_EQ(at(x, 3), text_);
        EXPECT_EQ(at(x, 12), base_);
        EXPECT_EQ(at(x - 2, 3), base_);
        EXPECT_EQ(at(x + 2, 3), base_);
    }
    EXPECT_EQ(at(150, 3), base_);
}

TEST_F(TimelineDrawingTest, pictures_areTicksAtTheLowerEdgeAtFullZoom) {
    strip_.setPosition(300 * kDrawnSecond);
    while (strip_.model().canZoomIn()) {
        strip_.zoomIn();
    }
    const std::vector<std::int64_t> times = {300'040'000, 300'080'000, 300'120'000};
    strip_.setPictures(times);
    look();
    for (const std::int64_t time : times) {
        const double x = std::floor(strip_.model().xOf(time));
        EXPECT_EQ(at(x, 37), text_);
        EXPECT_EQ(at(x + 5, 37), base_);
    }
}

TEST_F(TimelineDrawingTest, position_isALineInTwoTones) {
    for (const Theme& theme : themes()) {
        use(theme);
        strip_.setMarks(0, 600 * kDrawnSecond);
        strip_.setPosition(300 * kDrawnSecond);
        look();
        EXPECT_EQ(at(300, 25), text_) << theme.name;
        EXPECT_EQ(at(299, 25), base_) << theme.name;
        EXPECT_EQ(at(301, 25), base_) << theme.name;
        EXPECT_NE(at(304, 25), base_) << theme.name; // what is marked
    }
}

TEST_F(TimelineDrawingTest, sound_standsAroundTheMiddleAsHighAsItIsLoud) {
    PeakTable peaks;
    std::vector<SoundPeak> block(kPeaksPerBlock);
    block[500] = {-127, 127};
    block[800] = {0, 64};
    peaks.put(0, block);
    strip_.setPeaks(&peaks);
    look();
    EXPECT_EQ(inked(5, 9, 35), 26);
    EXPECT_GE(inked(8, 9, 22), 5);
    EXPECT_LE(inked(8, 9, 22), 8);
    EXPECT_LE(inked(8, 23, 35), 1);
    EXPECT_LE(inked(2, 9, 35), 1); // silence is a line
    EXPECT_GE(inked(2, 9, 35), 1);
    EXPECT_EQ(inked(30, 9, 35), 0); // not known
}

TEST_F(TimelineDrawingTest, soundThatComesLater_isShown) {
    PeakTable peaks;
    strip_.setPeaks(&peaks);
    look();
    EXPECT_EQ(inked(5, 9, 35), 0);
    peaks.put(0, std::vector<SoundPeak>(kPeaksPerBlock, SoundPeak{-127, 127}));
    strip_.setPeaks(&peaks);
    look();
    EXPECT_EQ(inked(5, 9, 35), 26);
}

TEST_F(TimelineDrawingTest, marked_isABandWithBracketsAndNumbers) {
    for (const Theme& theme : themes()) {
        use(theme);
        strip_.setMarks(100 * kDrawnSecond, 300 * kDrawnSecond);
        look();
        EXPECT_EQ(at(90, 20), base_) << theme.name;
        EXPECT_EQ(at(310, 20), base_) << theme.name;
        EXPECT_NE(at(200, 20), base_) << theme.name;
        EXPECT_EQ(at(100, 20), highlight_) << theme.name;
        EXPECT_EQ(at(299, 20), highlight_) << theme.name;
        EXPECT_EQ(at(103, 1), highlight_) << theme.name; // a bracket's foot
        EXPECT_EQ(at(296, 1), highlight_) << theme.name;
        // The number stands on a patch of its own.
        EXPECT_EQ(at(110, 26), highlight_) << theme.name;
        EXPECT_EQ(at(290, 26), highlight_) << theme.name;
        EXPECT_GE(numberInk(100, theme), 8) << theme.name;
        EXPECT_GE(numberInk(289, theme), 8) << theme.name;
    }
}

TEST_F(TimelineDrawingTest, whatDirectAdds_isLighterAndHatched) {
    for (const Theme& theme : themes()) {
        use(theme);
        strip_.setMarks(200 * kDrawnSecond, 300 * kDrawnSecond);
        strip_.setDirect(DirectStretch{150 * kDrawnSecond, 250 * kDrawnSecond});
        look();
        const int hatched = coloursBetween(155, 195);
        EXPECT_GE(hatched, 2) << theme.name;
        EXPECT_EQ(at(145, 20), base_) << theme.name;
        EXPECT_LT(contrast(lightest(155, 195), base_), contrast(at(230, 20), base_)) << theme.name;
        EXPECT_EQ(at(150, 34), highlight_) << theme.name; // the foot where it begins
        EXPECT_EQ(at(220, 38), highlight_) << theme.name; // the line along what it takes
        EXPECT_EQ(at(249, 34), highlight_) << theme.name;
        EXPECT_NE(at(270, 38), highlight_) << theme.name;
        EXPECT_GE(coloursBetween(260, 280), 2) << theme.name; // it ends earlier
        EXPECT_EQ(coloursBetween(220, 240), 1) << theme.name;
    }
}

TEST_F(TimelineDrawingTest, colours_areLegibleInEveryTheme) {
    for (const Theme& theme : themes()) {
        use(theme);
        PeakTable peaks;
        peaks.put(0, std::vector<SoundPeak>(kPeaksPerBlock, SoundPeak{-127, 127}));
        strip_.setPeaks(&peaks);
        strip_.setMarks(4 * kDrawnSecond, 20 * kDrawnSecond);
        look();
        EXPECT_GE(contrast(at(2, 22), base_), 3) << theme.name;    // sound
        EXPECT_GE(contrast(at(8, 22), at(8, 6)), 2) << theme.name; // sound on what is marked
        EXPECT_GE(contrast(highlight_, base_), 3) << theme.name;   // brackets
        strip_.setPeaks(nullptr);
    }
}

TEST_F(TimelineDrawingTest, focus_isSeen) {
    strip_.show();
    look();
    const QColor without = at(300, 1);
    strip_.setFocus();
    strip_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&strip_));
    look();
    EXPECT_EQ(without, base_);
    EXPECT_EQ(at(300, 1), highlight_);
}

TEST_F(TimelineDrawingTest, withoutVideo_isEmpty) {
    strip_.setVideo(0, 40'000);
    strip_.setKeyFrames({0, kDrawnSecond});
    look();
    for (int x = 2; x < 598; ++x) {
        ASSERT_EQ(inked(x, 2, 38), 0) << x;
    }
}

} // namespace
} // namespace velmora::test
