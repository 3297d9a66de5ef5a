// These run at one and at two device pixels to the pixel.

#include "CustomSlider.h"

#include "LogLines.h"

#include <QGuiApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QTest>
#include <gtest/gtest.h>

#include <vector>

// Outside of all namespaces, as the resources' names are.
static void takeImagesAway() {
    Q_CLEANUP_RESOURCE(velmora_images);
}
static void giveImagesBack() {
    Q_INIT_RESOURCE(velmora_images);
}

namespace velmora::test {
namespace {

struct Piece {
    const char* image;
    QRect place;
};

constexpr const char* kept = "mp_channel_active";
constexpr const char* cut = "mp_channel";
constexpr const char* knob = "mp_thumb";
constexpr const char* pressedKnob = "mp_thumb_active";

/// A bar from 0 to 100, 26 pixels high: its track is 6 high at y 10, its knob 18 wide and high at
/// y 4.
class CustomSliderDrawingTest : public ::testing::Test {
protected:
    void makeBar(int width, int height = 26) {
        bar_.initWithFrame(QRect(0, 0, width, height));
        bar_.awakeFromNib();
        bar_.setCustomSliderEnable(true);
    }

    QImage blank(const QColor& colour) const {
        const double ratio = bar_.devicePixelRatioF();
        QImage image(bar_.size() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(colour);
        return image;
    }

    QImage drawn(const QRect& dirty) {
        QImage image = blank(Qt::white);
        QPainter painter(&image);
        bar_.drawRect(painter, dirty);
        return image;
    }
    QImage drawn() { return drawn(bar_.rect()); }

    QImage expected(const std::vector<Piece>& pieces) const {
        QImage bar = blank(Qt::transparent);
        {
            QPainter painter(&bar);
            for (const Piece& piece : pieces)
                NamedImage(piece.image).draw(painter, piece.place);
        }
        QImage image = blank(Qt::white);
        QPainter(&image).drawImage(0, 0, bar);
        return image;
    }

    /// Presses or moves the mouse at `x`.
    void press(double x) { send(QEvent::MouseButtonPress, x); }
    void send(QEvent::Type type, double x) {
        const QPointF place(x, 13);
        const QMouseEvent event(type, place, place, place, Qt::LeftButton, Qt::LeftButton, {});
        if (type == QEvent::MouseButtonPress)
            bar_.mouseDown(event);
        else
            bar_.mouseUp(event);
    }

    static QColor colourAt(const QImage& image, int x, int y) {
        const double ratio = image.devicePixelRatio();
        return image.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
    }

    CustomSlider bar_;
};

TEST_F(CustomSliderDrawingTest, ratio_isTheOneAskedFor) {
    const bool scaled = qEnvironmentVariable("QT_SCALE_FACTOR") == "2";
    EXPECT_EQ(bar_.devicePixelRatioF(), scaled ? 2 : 1);
}

TEST_F(CustomSliderDrawingTest, images_tracksAreEquallyHighAndKnobsEquallyLarge) {
    EXPECT_EQ(NamedImage(kept).size().height(), 6);
    EXPECT_EQ(NamedImage(cut).size().height(), 6);
    EXPECT_EQ(NamedImage(knob).size(), QSize(18, 18));
    EXPECT_EQ(NamedImage(pressedKnob).size(), QSize(18, 18));
}

TEST_F(CustomSliderDrawingTest, images_areReadOnceAndKept) {
    makeBar(400);
    const QImage before = drawn();
    takeImagesAway();
    const bool away = NamedImage(kept).isNull();
    const QImage after = drawn();
    giveImagesBack();
    EXPECT_TRUE(away);
    EXPECT_EQ(after, before);
}

TEST_F(CustomSliderDrawingTest, noAnchors_wholeTrackIsKeptAndTheKnobStandsAtTheStart) {
    makeBar(400);
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, bothAnchors_outsideIsGrey) {
    makeBar(400);
    bar_.setAnchorLeft(25);
    bar_.setAnchorRight(75);
    bar_.setDoubleValue(50);
    const QImage image = drawn();
    EXPECT_EQ(image, expected({{kept, {0, 10, 400, 6}},
                               {cut, {0, 10, 100, 6}},
                               {cut, {300, 10, 100, 6}},
                               {knob, {191, 4, 18, 18}}}));
    const QColor accent(0x1f, 0x6f, 0xb2);
    const QColor grey(0xb4, 0xbf, 0xc9);
    for (const int x : {0, 50, 99, 300, 399})
        EXPECT_EQ(colourAt(image, x, 13), grey) << x;
    for (const int x : {100, 150, 250, 299})
        EXPECT_EQ(colourAt(image, x, 13), accent) << x;
}

TEST_F(CustomSliderDrawingTest, leftAnchorOnly_greysWhatIsBeforeIt) {
    makeBar(400);
    bar_.setAnchorLeft(30);
    bar_.setDoubleValue(30);
    EXPECT_EQ(
        drawn(),
        expected({{kept, {0, 10, 400, 6}}, {cut, {0, 10, 120, 6}}, {knob, {111, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, rightAnchorOnly_greysWhatIsAfterIt) {
    makeBar(400);
    bar_.setAnchorRight(30);
    EXPECT_EQ(
        drawn(),
        expected({{kept, {0, 10, 400, 6}}, {cut, {120, 10, 280, 6}}, {knob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, unevenWidths_piecesAreRoundedOutward) {
    makeBar(401);
    bar_.setAnchorLeft(25);  // 100.25
    bar_.setAnchorRight(75); // 300.75
    bar_.setDoubleValue(50); // 200.5, the knob from 191.5 to 209.5
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 401, 6}},
                                 {cut, {0, 10, 101, 6}},
                                 {cut, {300, 10, 101, 6}},
                                 {knob, {191, 4, 19, 18}}}));
}

TEST_F(CustomSliderDrawingTest, widthOf333_piecesAreRoundedOutward) {
    makeBar(333);
    bar_.setAnchorLeft(33);  // 109.89
    bar_.setAnchorRight(66); // 219.78
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 333, 6}},
                                 {cut, {0, 10, 110, 6}},
                                 {cut, {219, 10, 114, 6}},
                                 {knob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, unevenHeight_piecesAreRoundedOutward) {
    makeBar(400, 27);
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 7}}, {knob, {0, 4, 18, 19}}}));
}

TEST_F(CustomSliderDrawingTest, rangeThatStartsAbove0_isDrawnAsIfItStartedAt0) {
    makeBar(400);
    bar_.setMinValue(50);
    bar_.setAnchorLeft(50);
    EXPECT_EQ(
        drawn(),
        expected({{kept, {0, 10, 400, 6}}, {cut, {0, 10, 200, 6}}, {knob, {191, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, rangeThatEndsAt0_drawsTheKnobAtTheStart) {
    makeBar(400);
    bar_.setMaxValue(0);
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, knobAtTheEnd_endsWhereTheBarEnds) {
    makeBar(400);
    bar_.setDoubleValue(100);
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {382, 4, 18, 18}}}));
    bar_.setDoubleValue(98); // 392 - 9 + 18 = 401
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {382, 4, 18, 18}}}));
    bar_.setDoubleValue(97);
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {379, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, knobNearTheStart_isNotHalfOutside) {
    makeBar(400);
    bar_.setDoubleValue(1); // 4 - 9
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {0, 4, 18, 18}}}));
    bar_.setDoubleValue(3); // 12 - 9
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {3, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, mouseDown_showsThePressedKnobUntilItIsUp) {
    makeBar(400);
    press(200);
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {pressedKnob, {191, 4, 18, 18}}}));
    send(QEvent::MouseButtonRelease, 200);
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {191, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, rightSetBeforeLeft_greysFromTheKnobAndDropsLeft) {
    makeBar(400);
    bar_.setAnchorLeft(60);
    bar_.setAnchorRight(40);
    bar_.setButIndex(2);
    bar_.setDoubleValue(40.5); // 162, the knob from 153
    const LogLines lines;
    EXPECT_EQ(
        drawn(),
        expected({{kept, {0, 10, 400, 6}}, {cut, {162, 10, 238, 6}}, {knob, {153, 4, 18, 18}}}));
    EXPECT_EQ(lines.all(), QStringList("need reset"));
    EXPECT_EQ(bar_.anchorLeft(), -1);
    EXPECT_EQ(bar_.anchorRight(), 40);
    // From now on the anchor counts, no longer the knob.
    EXPECT_EQ(
        drawn(),
        expected({{kept, {0, 10, 400, 6}}, {cut, {160, 10, 240, 6}}, {knob, {153, 4, 18, 18}}}));
    EXPECT_EQ(lines.all().size(), 1);
}

TEST_F(CustomSliderDrawingTest, leftSetAfterRight_greysUpToTheKnobAndDropsRight) {
    makeBar(400);
    bar_.setAnchorLeft(60);
    bar_.setAnchorRight(40);
    bar_.setButIndex(1);
    bar_.setDoubleValue(60.5); // 242
    const LogLines lines;
    EXPECT_EQ(
        drawn(),
        expected({{kept, {0, 10, 400, 6}}, {cut, {0, 10, 242, 6}}, {knob, {233, 4, 18, 18}}}));
    EXPECT_EQ(lines.all(), QStringList("need reset"));
    EXPECT_EQ(bar_.anchorLeft(), 60);
    EXPECT_EQ(bar_.anchorRight(), -1);
}

TEST_F(CustomSliderDrawingTest, anchorsAtTheSamePlace_dropTheOneSetFirst) {
    makeBar(400);
    bar_.setAnchorLeft(40);
    bar_.setAnchorRight(40);
    bar_.setButIndex(2);
    drawn();
    EXPECT_EQ(bar_.anchorLeft(), -1);
    EXPECT_EQ(bar_.anchorRight(), 40);
}

TEST_F(CustomSliderDrawingTest, crossedAndNoneSetLast_greysNothingAndKeepsBoth) {
    makeBar(400);
    bar_.setAnchorLeft(60);
    bar_.setAnchorRight(40);
    const LogLines lines;
    const std::vector<Piece> pieces{{kept, {0, 10, 400, 6}}, {knob, {0, 4, 18, 18}}};
    EXPECT_EQ(drawn(), expected(pieces));
    EXPECT_EQ(drawn(), expected(pieces));
    EXPECT_EQ(lines.all(), QStringList({"need reset", "need reset"}));
    EXPECT_EQ(bar_.anchorLeft(), 60);
    EXPECT_EQ(bar_.anchorRight(), 40);
}

TEST_F(CustomSliderDrawingTest, leftAt0_isNoClashAndGreysNothing) {
    makeBar(400);
    bar_.setAnchorLeft(0);
    const LogLines lines;
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {0, 4, 18, 18}}}));
    bar_.setAnchorRight(0);
    bar_.setButIndex(2);
    EXPECT_EQ(drawn(),
              expected({{kept, {0, 10, 400, 6}}, {cut, {0, 10, 400, 6}}, {knob, {0, 4, 18, 18}}}));
    EXPECT_TRUE(lines.all().isEmpty());
    EXPECT_EQ(bar_.anchorLeft(), 0);
    EXPECT_EQ(bar_.anchorRight(), 0);
}

TEST_F(CustomSliderDrawingTest, rightAt0AndLeftAbove_isNoClashAndGreysAll) {
    makeBar(400);
    bar_.setAnchorLeft(20);
    bar_.setAnchorRight(0);
    bar_.setButIndex(2);
    const LogLines lines;
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}},
                                 {cut, {0, 10, 80, 6}},
                                 {cut, {0, 10, 400, 6}},
                                 {knob, {0, 4, 18, 18}}}));
    EXPECT_TRUE(lines.all().isEmpty());
    EXPECT_EQ(bar_.anchorLeft(), 20);
}

TEST_F(CustomSliderDrawingTest, dirtyRectangle_onlyThatPartIsDrawnOnTheControl) {
    makeBar(400);
    bar_.setAnchorLeft(30);
    bar_.setDoubleValue(30);
    const QImage all =
        expected({{kept, {0, 10, 400, 6}}, {cut, {0, 10, 120, 6}}, {knob, {111, 4, 18, 18}}});
    const QRect dirty(100, 3, 20, 12);
    QImage wanted = blank(Qt::white);
    const double ratio = all.devicePixelRatio();
    QPainter(&wanted).drawImage(
        dirty, all, QRectF(dirty.topLeft() * ratio, QSizeF(dirty.size()) * ratio).toRect());
    EXPECT_EQ(drawn(dirty), wanted);
}

TEST_F(CustomSliderDrawingTest, severalDirtyRectangles_leaveNothingOfEarlierKnobs) {
    makeBar(400);
    for (const int value : {10, 20, 30, 40}) {
        bar_.setDoubleValue(value);
        drawn(QRect(value * 4 - 9, 0, 18, 26));
    }
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 400, 6}}, {knob, {151, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, beforeTheBarAwakes_nothingIsDrawn) {
    bar_.initWithFrame(QRect(0, 0, 400, 26));
    EXPECT_EQ(drawn(), blank(Qt::white));
}

TEST_F(CustomSliderDrawingTest, awakeFromNib_barDoesNotGrowBeyondItsCanvas) {
    const LogLines lines;
    makeBar(400);
    EXPECT_EQ(lines.all(), QStringList("canvas w:400.000000 h:26.000000"));
    bar_.resize(500, 40);
    EXPECT_EQ(bar_.size(), QSize(400, 26));
    bar_.resize(200, 26);
    EXPECT_EQ(drawn(), expected({{kept, {0, 10, 200, 6}}, {knob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, onScreen_looksAsItDrawsItself) {
    makeBar(400);
    bar_.setAttribute(Qt::WA_TranslucentBackground);
    bar_.setAnchorLeft(30);
    bar_.setDoubleValue(30);
    bar_.show();
    QImage screen = blank(Qt::white);
    bar_.render(&screen, {}, {}, {});
    EXPECT_EQ(screen, drawn());
}

} // namespace
} // namespace velmora::test
