#include "customImageView.h"

#include "LogLines.h"

#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace velmora::test {
namespace {

using Call = std::optional<QString>;

/// A view of 300 x 200 that shows the placeholder and notes the calls of its callback.
class customImageViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        view_.initWithFrame(QRect(0, 0, 300, 200));
        view_.setImage(NamedImage("add1"));
        view_.setMouseDownCB([this](const Call& path) { calls_.push_back(path); });
    }

    static std::unique_ptr<QMimeData> filesNamed(const QStringList& names) {
        auto drag = std::make_unique<QMimeData>();
        QList<QUrl> urls;
        for (const QString& name : names) {
            urls.append(QUrl::fromLocalFile(name));
        }
        drag->setUrls(urls);
        return drag;
    }

    bool enter(const QMimeData& drag) {
        QDragEnterEvent event(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &drag, Qt::LeftButton,
                              {});
        event.ignore();
        QCoreApplication::sendEvent(&view_, &event);
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    }

    bool drop(const QMimeData& drag) {
        enter(drag);
        QDropEvent event(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, &drag, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&view_, &event);
        return event.isAccepted();
    }

    static NamedImage preview() {
        QImage picture(2, 2, QImage::Format_RGB32);
        picture.fill(Qt::red);
        picture.setPixelColor(1, 1, Qt::green);
        return NamedImage(picture);
    }

    QImage drawn() {
        QImage image(view_.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        view_.drawRect(painter);
        return image;
    }

    customImageView view_;
    std::vector<Call> calls_;
};

TEST_F(customImageViewTest, initWithFrame_logsAndListsTheEightExtensions) {
    const LogLines lines;
    view_.initWithFrame(QRect(0, 0, 10, 10));
    EXPECT_EQ(lines.all(), QStringList({"xxxxxxxx", "get count:8"}));
    EXPECT_EQ(view_.fileTypes(),
              QStringList({"3gp", "mp4", "mov", "avi", "wmv", "mp3", "flv", "mkv"}));
    EXPECT_TRUE(view_.acceptDrops());
}

TEST_F(customImageViewTest, click_onThePlaceholder_callsWithoutAPath) {
    QTest::mouseClick(&view_, Qt::LeftButton);
    EXPECT_EQ(calls_, std::vector<Call>({std::nullopt}));
}

TEST_F(customImageViewTest, click_onAPreview_doesNothing) {
    view_.setImage(preview());
    QTest::mouseClick(&view_, Qt::LeftButton);
    view_.setImage({});
    QTest::mouseClick(&view_, Qt::LeftButton);
    view_.setImage(NamedImage("mp_thumb"));
    QTest::mouseClick(&view_, Qt::LeftButton);
    EXPECT_TRUE(calls_.empty());
}

TEST_F(customImageViewTest, click_rightButtonOrNoCallback_doesNothing) {
    QTest::mouseClick(&view_, Qt::RightButton);
    EXPECT_TRUE(calls_.empty());
    view_.setMouseDownCB(nullptr);
    QTest::mouseClick(&view_, Qt::LeftButton);
}

TEST_F(customImageViewTest, keys_onThePlaceholder_actAsAClick) {
    EXPECT_EQ(view_.focusPolicy(), Qt::StrongFocus);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_A}) {
        QTest::keyClick(&view_, key);
    }
    EXPECT_EQ(calls_, std::vector<Call>(3));
}

TEST_F(customImageViewTest, keys_onAPreview_doNothing) {
    view_.setImage(preview());
    EXPECT_EQ(view_.focusPolicy(), Qt::NoFocus);
    QTest::keyClick(&view_, Qt::Key_Space);
    EXPECT_TRUE(calls_.empty());
}

TEST_F(customImageViewTest, callback_objectAndOperation_isCalled) {
    struct Handler {
        void mouseDownListener(const Call& path) { heard = path; }
        Call heard = "nothing";
    } handler;
    view_.setMouseDownCB(&handler, &Handler::mouseDownListener);
    QTest::mouseClick(&view_, Qt::LeftButton);
    EXPECT_EQ(handler.heard, std::nullopt);
}

TEST_F(customImageViewTest, drag_ofFiles_isOfferedACopy) {
    EXPECT_EQ(view_.draggingEntered(QMimeData()), 1);
    EXPECT_TRUE(enter(*filesNamed({"/a/a.txt"})));
    QMimeData text;
    text.setText("no file");
    EXPECT_FALSE(enter(text));
    view_.draggingExited();
    EXPECT_TRUE(calls_.empty());
}

TEST_F(customImageViewTest, drop_anyExtension_isPassedOn) {
    EXPECT_TRUE(drop(*filesNamed({"/a/a.txt"})));
    EXPECT_EQ(calls_, std::vector<Call>({"/a/a.txt"}));
}

TEST_F(customImageViewTest, drop_severalFiles_passesOnlyTheFirst) {
    EXPECT_TRUE(drop(*filesNamed({"/a/x.mp4", "/a/y.mp4"})));
    EXPECT_EQ(calls_, std::vector<Call>({"/a/x.mp4"}));
}

TEST_F(customImageViewTest, drop_anyScriptAndSigns_arriveAsTheyStand) {
    const QString path = QString::fromUtf8("/видео/ビデオ 100% #1?&\".mp4");
    EXPECT_TRUE(drop(*filesNamed({path})));
    EXPECT_EQ(calls_, std::vector<Call>({path}));
}

TEST_F(customImageViewTest, drop_onAPreview_isPassedOn) {
    view_.setImage(preview());
    EXPECT_TRUE(drop(*filesNamed({"/a/x.mp4"})));
    EXPECT_EQ(calls_.size(), 1U);
}

TEST_F(customImageViewTest, prepareForDragOperation_answersYesWhateverIsDropped) {
    QMimeData remote;
    remote.setUrls({QUrl("https://example.org/a.mp4")});
    EXPECT_TRUE(view_.prepareForDragOperation(remote));
    EXPECT_TRUE(view_.prepareForDragOperation(QMimeData()));
    EXPECT_TRUE(calls_.empty());
    EXPECT_EQ(view_.fileTypes().size(), 8);
}

TEST_F(customImageViewTest, scaling1_fillsTheViewOnBothAxes) {
    view_.setImage(preview());
    view_.setImageScaling(1);
    EXPECT_EQ(view_.imageScaling(), 1);
    const QImage image = drawn();
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(299, 0), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(299, 199), QColor(Qt::green));
}

TEST_F(customImageViewTest, scaling0_keepsTheProportionsAndCentres) {
    view_.setImage(preview());
    const QImage image = drawn();
    EXPECT_EQ(image.pixelColor(49, 0), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(50, 0), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(249, 199), QColor(Qt::green));
    EXPECT_EQ(image.pixelColor(250, 199), QColor(Qt::white));
}

TEST_F(customImageViewTest, noImage_drawsNothing) {
    view_.setImage({});
    QImage white(view_.size(), QImage::Format_RGB32);
    white.fill(Qt::white);
    EXPECT_EQ(drawn(), white);
}

} // namespace
} // namespace velmora::test
