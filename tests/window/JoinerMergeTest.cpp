// Which files can be joined, and the way from the list to the joined file.

#include "JoinerSupport.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

TEST_F(JoinerTest, canJoin_alike_isTrueAlsoForUncheckedRows) {
    for (int i = 0; i < 3; ++i) {
        addRow("mp4", "640x480");
    }
    (*joinerFileList)[0]->isSeleted = 0;
    (*joinerFileList)[1]->isSeleted = 0;
    EXPECT_TRUE(controller_.fileCanJoin());
    EXPECT_EQ(log_.all(), QStringList("fileCanJoin"));
}

TEST_F(JoinerTest, canJoin_middleDiffers_logsBothPairs) {
    addRow("mp4", "640x480");
    addRow("avi", "320x240");
    addRow("mp4", "640x480");
    EXPECT_FALSE(controller_.fileCanJoin());
    EXPECT_EQ(log_.all(),
              QStringList({"fileCanJoin", "format:mp4 Vs avi resolution:640x480 Vs 320x240",
                           "format:avi Vs mp4 resolution:320x240 Vs 640x480"}));
}

TEST_F(JoinerTest, canJoin_onlyTheSizeDiffers_isFalse) {
    addRow("mp4", "640x480");
    addRow("mp4", "640x480");
    addRow("mp4", "1280x720");
    EXPECT_FALSE(controller_.fileCanJoin());
    EXPECT_EQ(log_.all(),
              QStringList({"fileCanJoin", "format:mp4 Vs mp4 resolution:640x480 Vs 1280x720"}));
}

TEST_F(JoinerTest, canJoin_percentInAName_isLoggedAsItIs) {
    addRow("%1", "640x480");
    addRow("%2", "640x480");
    EXPECT_FALSE(controller_.fileCanJoin());
    EXPECT_TRUE(log_.contains("format:%1 Vs %2 resolution:640x480 Vs 640x480"));
}

TEST_F(JoinerTest, merge_fewerThanTwoRows_asksForMore) {
    const std::vector expected{errorAlert("At leaset select two video files!")};
    EXPECT_EQ(alertsOf([this] { press("mButtonJoinerSetting"); }), expected);
    dropOnTable({video_});
    EXPECT_EQ(alertsOf([this] { press("mButtonJoinerSetting"); }), expected);
    EXPECT_EQ(log_.count("Video Joiner"), 2);
}

TEST_F(JoinerTest, merge_opensThePanelModally) {
    dropOnTable({video_});
    dropOnTable({video_});
    EXPECT_TRUE(merge([this](QWidget& panel) {
        EXPECT_EQ(panel.windowTitle(), "Joiner Setting");
        EXPECT_EQ(panel.findChild<QLineEdit*>("mTextField2")->text(), "join-all");
        press("mButtonJoinerAdd"); // blocked
        EXPECT_FALSE(isPanelOpen());
    }));
}

TEST_F(JoinerTest, merge_countsRowsNotCheckedOnes) {
    for (int i = 0; i < 2; ++i) {
        addRow("mp4", "640x480");
        joinerFileList->back()->isSeleted = 0;
    }
    controller_.openFilePanelDidEnd({}, 1); // shows the rows
    EXPECT_TRUE(merge([](QWidget&) {}));
}

TEST_F(JoinerTest, merge_filesOfDifferentKinds_refusesADirectJoin) {
    dropOnTable({video_});
    dropOnTable({media("mpeg4.avi")});
    std::vector<SeenAlert> alerts;
    EXPECT_TRUE(merge([&](QWidget& panel) {
        alerts = alertsOf([&panel] {
            QTest::mouseClick(panel.findChild<QPushButton*>("mButStartJoin"), Qt::LeftButton);
        });
    }));
    EXPECT_EQ(alerts, std::vector{errorAlert("No same-type files, can not use direct join, "
                                             "please use indirect join!")});
}

TEST_F(JoinerTest, merge_filesOfDifferentSize_canOnlyBeJoinedIndirectly) {
    dropOnTable({video_});
    dropOnTable({media("odd-size.mp4")});
    std::vector<SeenAlert> alerts;
    EXPECT_TRUE(merge([&](QWidget& panel) {
        const auto start = [&panel] {
            QTest::mouseClick(panel.findChild<QPushButton*>("mButStartJoin"), Qt::LeftButton);
        };
        panel.findChild<QLineEdit*>("mTextField1")
            ->setText(QString::fromStdString(folder_.path().string()));
        alerts = alertsOf(start);
        QTest::mouseClick(panel.findChild<QRadioButton*>("mRadioReencode"), Qt::LeftButton, {},
                          QPoint(8, 8));
        panel.findChild<QComboBox*>("mVideoSize")->setCurrentText("320x240");
        for (const SeenAlert& alert : alertsOf(start)) {
            alerts.push_back(alert);
        }
    }));
    EXPECT_EQ(alerts, std::vector({errorAlert("No same-type files, can not use direct join, "
                                              "please use indirect join!"),
                                   plainAlert("Congratulations! file has completed!")}));
    const auto stream =
        ffprobeJson(folder_ / "join-all.mp4", {"-show_streams"}).at("streams").at(0);
    EXPECT_EQ(stream.at("width"), 320);
    EXPECT_EQ(stream.at("height"), 240);
    // The first has 4 s. Of the last pictures, some stay in the encoder.
    EXPECT_GT(std::stod(stream.at("duration").get<std::string>()), 4.1);
}

TEST_F(JoinerTest, merge_refused_hasGivenTheExtensionAllTheSame) {
    addRow("mp4", "640x480");
    addRow("avi", "320x240");
    addRow("mkv", "640x480");
    controller_.openFilePanelDidEnd({}, 1); // shows the rows
    EXPECT_TRUE(merge([this](QWidget& panel) {
        panel.findChild<QLineEdit*>("mTextField1")->setText("/out");
        alertsOf([&panel] {
            QTest::mouseClick(panel.findChild<QPushButton*>("mButStartJoin"), Qt::LeftButton);
        });
        joinerFileList->clear(); // the panel cannot look it up any more
        panel.findChild<QLineEdit*>("mTextField2")->setText("all");
        EXPECT_EQ(panel.findChild<QLabel*>("mResultPath")->text(), "/out/all.avi");
    }));
}

TEST_F(JoinerTest, join_fromListToFile_takesTheExtensionOfTheLastButOne) {
    const std::array extensions{"mkv", "mov", "avi"};
    for (const char* const extension : extensions) {
        dropOnTable({media("h264.mp4")});
        joinerFileList->back()->outFromat = extension;
    }
    const QString out = QString::fromStdString(folder_ / "join-all.mov");
    std::vector<SeenAlert> alerts;
    EXPECT_TRUE(merge([&](QWidget& panel) {
        panel.findChild<QLineEdit*>("mTextField1")
            ->setText(QString::fromStdString(folder_.path().string()));
        alerts = alertsOf([&panel] {
            QTest::mouseClick(panel.findChild<QPushButton*>("mButStartJoin"), Qt::LeftButton);
        });
    }));
    EXPECT_EQ(alerts, std::vector{plainAlert("Congratulations! file has completed!")});
    EXPECT_EQ(cell(0, 5), "Completed");
    EXPECT_EQ(cell(2, 5), "Completed");
    const auto format = ffprobeJson(out.toStdString(), {"-show_format"}).at("format");
    EXPECT_NEAR(std::stod(format.at("duration").get<std::string>()), 12.0, 0.3);
}

} // namespace
} // namespace velmora::test
