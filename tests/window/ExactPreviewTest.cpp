// The exact picture over the preview, and the moves by pictures: which picture is on screen is read
// from its pixels, which carry its number.

#include "ExactPictureView.h"
#include "MainWindowSupport.h"
#include "NumberedMedia.h"
#include "PositionField.h"
#include "PreviewStage.h"
#include "Program.h"
#include "SharedState.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QWheelEvent>

namespace velmora::test {
namespace {

/// A video of 50 pictures at 25 a second, with a key picture every half second, 320 x 180.
class ExactPreviewTest : public MainWindowTest {
protected:
    void load(const std::string& path) {
        dropOnPreview(QString::fromStdString(path));
        controller_.mainWin().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&controller_.mainWin()));
        outlet("centralwidget").setFocus();
    }
    static std::string video() { return numberedMedia("window.mp4", "-g 12 -bf 2"); }
    void loadVideo() {
        load(video());
        expectOnScreen(0);
    }
    ExactPictureView& view() { return outlet<ExactPictureView>("exactPicture"); }
    /// The number that is on screen where the preview is.
    int onScreen() {
        const QImage seen = preview().grab().toImage().convertToFormat(QImage::Format_RGB32);
        return numberIn(seen.constBits(), static_cast<int>(seen.bytesPerLine() / 4), seen.height(),
                        4);
    }
    void expectOnScreen(int number) {
        const bool came =
            QTest::qWaitFor([&] { return !view().picture().isNull() && onScreen() == number; });
        EXPECT_TRUE(came) << "on screen is " << onScreen() << ", not " << number;
    }
    /// Which exact picture `number` of 25 a second is shown, and that all that tells where is so.
    void expectAt(int number) {
        expectOnScreen(number);
        const QString time = QString::asprintf("00:00:%02d.%03d", number / 25, number % 25 * 40);
        EXPECT_TRUE(QTest::qWaitFor([&] { return text("mLabelDrag").startsWith(time); }))
            << text("mLabelDrag").toStdString();
        EXPECT_EQ(view().accessibleDescription(), "The picture at " + time);
        EXPECT_NEAR(bar().doubleValue(), number * 2.0, 0.001);
    }
    void key(int which, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(controller_.mainWin().windowHandle(), static_cast<Qt::Key>(which),
                        modifiers);
    }
    void wheel(QWidget& over, int angle, Qt::KeyboardModifiers modifiers = {}) {
        const QPointF place = over.rect().center();
        QWheelEvent event(place, over.mapToGlobal(place), {}, {0, angle}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&over, &event);
    }
    /// Of what is marked; the path of the file.
    std::string cutExactly() {
        std::string output = folder_ / "exact.mp4";
        const InNextPanel panel([&](QWidget& window) {
            window.findChild<QRadioButton*>("mRadioReencode")->setChecked(true);
            window.findChild<QCheckBox*>("mExact")->setChecked(true);
            window.findChild<QLineEdit*>("mTextField1")
                ->setText(QString::fromStdString(folder_.path().string()));
            window.findChild<QLineEdit*>("mTextField2")->setText("exact");
            window.findChild<QPushButton*>("mButStartCut")->click();
        });
        alertsOf([this] { press("mButtonCutterSetting"); });
        EXPECT_TRUE(panel.hasOpened());
        return output;
    }
    /// The numbers of the pictures, all of one size.
    static std::vector<int> numbersIn(const std::string& path) {
        const std::string pixels =
            runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-vf", "scale=256:128",
                        "-fps_mode", "passthrough", "-f", "rawvideo", "-pix_fmt", "gray", "-"})
                .output;
        std::vector<int> numbers;
        constexpr std::size_t kBytes = 256 * 128;
        for (std::size_t place = 0; place + kBytes <= pixels.size(); place += kBytes) {
            const auto* const picture = reinterpret_cast<const std::uint8_t*>(&pixels[place]);
            numbers.push_back(numberIn(picture, 256, 128, 1));
        }
        return numbers;
    }
    QAction& action(const char* name) { return *controller_.mainWin().findChild<QAction*>(name); }
};

TEST_F(ExactPreviewTest, load_showsTheFirstPicture) {
    load(video());
    expectOnScreen(0);
    EXPECT_EQ(view().geometry(), preview().rect());
    EXPECT_EQ(view().accessibleDescription(), "The picture at 00:00:00.000");
}

TEST_F(ExactPreviewTest, beforeThereIsAPicture_smallPreviewIsSeen) {
    const QImage before = preview().grab().toImage();
    view().hide();
    EXPECT_EQ(preview().grab().toImage(), before);
}

TEST_F(ExactPreviewTest, barMoved_showsThePictureThere) {
    loadVideo();
    bar().moveByUser(58);
    expectAt(29);
    bar().moveByUser(100);
    expectOnScreen(49);
    bar().moveByUser(0);
    expectAt(0);
}

TEST_F(ExactPreviewTest, commaAndPeriod_goByOnePicture) {
    loadVideo();
    key(Qt::Key_Period);
    expectAt(1);
    key(Qt::Key_Period);
    expectAt(2);
    key(Qt::Key_Comma);
    expectAt(1);
    key(Qt::Key_Comma);
    key(Qt::Key_Comma);
    expectAt(0);
}

TEST_F(ExactPreviewTest, manyStepsAtOnce_areAllTaken) {
    loadVideo();
    for (int i = 0; i < 20; ++i) {
        key(Qt::Key_Period);
    }
    expectAt(20);
    for (int i = 0; i < 7; ++i) {
        key(Qt::Key_Comma);
    }
    expectAt(13);
}

TEST_F(ExactPreviewTest, altArrows_goToKeyPictures) {
    loadVideo();
    key(Qt::Key_Right, Qt::AltModifier);
    expectAt(12);
    key(Qt::Key_Period);
    expectAt(13);
    key(Qt::Key_Right, Qt::AltModifier);
    expectAt(24);
    key(Qt::Key_Left, Qt::AltModifier);
    expectAt(12);
    key(Qt::Key_Left, Qt::AltModifier);
    expectAt(0);
}

TEST_F(ExactPreviewTest, shiftArrows_goByASecond) {
    loadVideo();
    key(Qt::Key_Period);
    expectAt(1);
    key(Qt::Key_Right, Qt::ShiftModifier);
    expectAt(26);
    key(Qt::Key_Left, Qt::ShiftModifier);
    expectAt(1);
    key(Qt::Key_Left, Qt::ShiftModifier);
    expectAt(0);
}

TEST_F(ExactPreviewTest, wheel_overPreviewAndBar_goesByPicturesAndSeconds) {
    loadVideo();
    wheel(preview(), -120);
    expectAt(1);
    wheel(bar(), -240);
    expectAt(3);
    wheel(bar(), 120);
    expectAt(2);
    wheel(preview(), -120, Qt::ShiftModifier);
    expectAt(27);
    wheel(preview(), 60);
    wheel(preview(), 60);
    expectAt(26);
    wheel(bar(), -120, Qt::ControlModifier);
    key(Qt::Key_Period);
    expectAt(27);
}

TEST_F(ExactPreviewTest, shiftIAndShiftO_goToThePoints) {
    loadVideo();
    bar().moveByUser(20);
    expectAt(10);
    key(Qt::Key_I);
    bar().moveByUser(60);
    expectAt(30);
    key(Qt::Key_O);
    bar().moveByUser(80);
    expectAt(40);
    key(Qt::Key_I, Qt::ShiftModifier);
    expectAt(10);
    key(Qt::Key_O, Qt::ShiftModifier);
    expectAt(30);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 400);
    type("mLabelStart", "00:00:00.200");
    outlet("centralwidget").setFocus();
    key(Qt::Key_I, Qt::ShiftModifier);
    expectAt(5);
}

TEST_F(ExactPreviewTest, positionTyped_isGoneTo) {
    loadVideo();
    auto& field = outlet<PositionField>("positionField");
    EXPECT_FALSE(field.isVisible());
    key(Qt::Key_G);
    ASSERT_TRUE(field.isVisible());
    EXPECT_EQ(field.selectedText(), "00:00:00.000");
    for (const QChar character : QString("00:00:01.24")) {
        QTest::keyClick(&field, character.toLatin1());
    }
    QTest::keyClick(&field, Qt::Key_0);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_FALSE(field.isVisible());
    expectAt(31);
    key(Qt::Key_G, Qt::ControlModifier);
    ASSERT_TRUE(field.isVisible());
    QTest::keyClicks(&field, "abc");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_TRUE(field.isVisible());
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_FALSE(field.isVisible());
    expectAt(31);
}

TEST_F(ExactPreviewTest, keys_inATimeField_type) {
    loadVideo();
    auto& field = outlet<QLineEdit>("mLabelStart");
    field.setFocus();
    field.clear();
    for (const int typed : {int{Qt::Key_Comma}, int{Qt::Key_Period}, int{Qt::Key_G}}) {
        key(typed);
    }
    key(Qt::Key_I, Qt::ShiftModifier);
    EXPECT_EQ(field.text().size(), 4);
    key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(field.selectedText().size(), 1);
    EXPECT_FALSE(outlet("positionField").isVisible());
    outlet("centralwidget").setFocus();
    key(Qt::Key_Period);
    expectAt(1); // the first move of all
}

TEST_F(ExactPreviewTest, keys_inTheJoinerOrWithoutAVideo_doNothing) {
    key(Qt::Key_Period);
    key(Qt::Key_G);
    EXPECT_FALSE(outlet("positionField").isVisible());
    loadVideo();
    show("Video Joiner");
    key(Qt::Key_Period);
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(bar().doubleValue(), 0);
}

TEST_F(ExactPreviewTest, pictureBetweenMilliseconds_isMarkedRoundedUpAndCutExactly) {
    load(numberedMedia("ntsc.mp4", "-vf setpts=N*1001/30000/TB -r 30000/1001 -g 12"));
    expectOnScreen(0);
    key(Qt::Key_Period);
    ASSERT_TRUE(QTest::qWaitFor([&] { return text("mLabelDrag").startsWith("00:00:00.034"); }));
    key(Qt::Key_I);
    EXPECT_EQ(text("mLabelStart"), "00:00:00.034");
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 34);
    EXPECT_EQ(currentSetting->cutStartTime, 34.0F);
    for (int i = 0; i < 6; ++i) {
        key(Qt::Key_Period);
    }
    expectOnScreen(7);
    ASSERT_TRUE(QTest::qWaitFor([&] { return text("mLabelDrag").startsWith("00:00:00.234"); }));
    key(Qt::Key_O);
    EXPECT_EQ(numbersIn(cutExactly()), (std::vector{1, 2, 3, 4, 5, 6}));
}

TEST_F(ExactPreviewTest, switchedOff_leavesTheSmallPreview) {
    loadVideo();
    bar().moveByUser(58);
    expectAt(29);
    EXPECT_TRUE(action("actionExactPreview").isChecked());
    action("actionExactPreview").trigger();
    EXPECT_FALSE(view().isVisible());
    EXPECT_EQ(onScreen(), 24); // of the key picture before
    key(Qt::Key_Period);
    EXPECT_TRUE(QTest::qWaitFor([&] { return text("mLabelDrag").startsWith("00:00:01.200"); }));
    EXPECT_EQ(onScreen(), 24);
    action("actionExactPreview").trigger();
    EXPECT_TRUE(view().isVisible());
    expectAt(30);
}

TEST_F(ExactPreviewTest, turnedVideo_isUprightInItsProportions) {
    const std::string turned = folder_ / "turned.mp4";
    runProgram({"ffmpeg", "-v", "error", "-i", video(), "-c", "copy", "-metadata:s:v", "rotate=90",
                turned});
    load(turned);
    ASSERT_TRUE(QTest::qWaitFor([&] { return preview().height() > preview().width(); }));
    EXPECT_NEAR(preview().height(), 2 * preview().width(), 2);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return view().picture().height() == 2 * view().picture().width(); }));
    action("actionExactPreview").trigger();
    EXPECT_GT(preview().width(), preview().height());
    action("actionExactPreview").trigger();
    EXPECT_GT(preview().height(), preview().width());
    loadVideo();
    EXPECT_GT(preview().width(), preview().height());
}

TEST_F(ExactPreviewTest, fileWithoutPictures_saysSo) {
    load(mediaPath("audio-only.m4a"));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return view().sentence() == "No picture of this file can be shown."; }));
    loadVideo();
    EXPECT_EQ(view().sentence(), "");
}

TEST_F(ExactPreviewTest, anotherFile_isTheOneOnScreen) {
    loadVideo();
    bar().moveByUser(58);
    load(numberedMedia("second.mp4", "-g 12 -vf negate"));
    expectOnScreen(63);
}

TEST_F(ExactPreviewTest, drag_endsWithTheExactPicture) {
    loadVideo();
    QTest::mousePress(&bar(), Qt::LeftButton, {}, QPoint(1, bar().height() / 2));
    for (int percent = 5; percent <= 58; percent += 5) {
        const QPointF place(bar().width() * percent / 100.0, bar().height() / 2.0);
        QMouseEvent move(QEvent::MouseMove, place, bar().mapToGlobal(place), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(&bar(), &move);
    }
    bar().moveByUser(58);
    expectAt(29);
}

TEST_F(ExactPreviewTest, windowResized_pictureIsSharpInItsSize) {
    load(mediaPath("rate-30000.mp4"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view().picture().isNull(); }));
    load(numberedMedia("large.mp4", "-s 1920x960"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view().picture().size() == view().deviceSize(); }));
    controller_.mainWin().resize(700, 560);
    QApplication::processEvents();
    EXPECT_TRUE(QTest::qWaitFor([&] { return view().picture().size() == view().deviceSize(); }));
}

} // namespace
} // namespace velmora::test
