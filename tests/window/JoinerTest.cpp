#include "ConversionEngine.h"
#include "JoinerTable.h"
#include "MainWindowSupport.h"
#include "ModalSession.h"
#include "SharedState.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <array>

namespace velmora::test {
namespace {

/// The joiner's workspace. "video-only.mp4" has 320x180, 30 pictures per second, 4 s.
class JoinerTest : public MainWindowTest {
protected:
    void SetUp() override {
        show("Video Joiner");
        log_.clear();
    }

    const QString video_ = media("video-only.mp4");

    static std::shared_ptr<NodeInfo> row(const QString& format, const QString& resolution) {
        auto item = std::make_shared<NodeInfo>();
        item->inputFile = "/videos/a." + format;
        item->inFromat = format;
        item->outFromat = format;
        item->resolution = resolution;
        item->isSeleted = 1;
        return item;
    }
    void addRow(const QString& format, const QString& resolution) {
        joinerFileList->push_back(row(format, resolution));
    }

    int rows() { return table().model()->rowCount(); }
    QString cell(int row, int column) {
        return table().model()->index(row, column).data().toString();
    }
    QString value(const char* column, int row = 0) {
        return controller_.tableViewObjectValueForTableColumn(column, row).toString();
    }
    bool dropOnTable(const QStringList& paths) { return dropFiles(*table().viewport(), paths); }

    /// Presses "Merge into a video file" and does `inPanel` with the panel on screen.
    bool merge(const std::function<void(QWidget&)>& inPanel) {
        const InNextPanel panel(inPanel);
        press("mButtonJoinerSetting");
        return panel.hasOpened();
    }
};

TEST_F(JoinerTest, add_severalChosen_appendsThemInOrder) {
    press("mButtonJoinerAdd");
    choose({video_, media("mpeg4.avi")});
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(cell(0, 0), video_);
    EXPECT_EQ(cell(1, 0), media("mpeg4.avi"));
    EXPECT_TRUE(cutterFileList->empty());
    const qsizetype first = log_.all().indexOf("filePath:" + video_);
    EXPECT_GT(first, log_.all().indexOf("view joiner"));
    EXPECT_LT(first, log_.all().indexOf("filePath:" + media("mpeg4.avi")));
}

TEST_F(JoinerTest, add_oneInvalid_alertsAndGoesOnWithTheNext) {
    writeFile(folder_.path() / "bad.mp4", "no video");
    const QString bad = QString::fromStdString(folder_ / "bad.mp4");
    EXPECT_EQ(alertsOf([&] {
                  controller_.openFilePanelDidEnd({video_, bad, video_}, 1);
              }),
              std::vector{plainAlert("File is invalid!")});
    EXPECT_EQ(rows(), 2);
}

TEST_F(JoinerTest, add_fillsTheItem) {
    controller_.joinerAddFile(video_);
    ASSERT_EQ(joinerFileList->size(), 1U);
    const NodeInfo& item = *joinerFileList->front();
    EXPECT_EQ(item.inputFile, video_);
    EXPECT_EQ(item.width, 320);
    EXPECT_EQ(item.height, 180);
    EXPECT_EQ(item.resolution, "320x180");
    EXPECT_EQ(item.frame_rate, 30.0F);
    EXPECT_EQ(item.duration, 4.0F);
    EXPECT_EQ(item.startTime, 0.0F);
    EXPECT_EQ(item.endTime, 4.0F);
    EXPECT_EQ(item.converteState, Ready);
    EXPECT_EQ(item.inFromat, "mp4");
    EXPECT_EQ(item.outFromat, "mp4");
    EXPECT_EQ(item.isSeleted, 1);
    EXPECT_EQ(rows(), 0) << "the callers reload the table";
}

TEST_F(JoinerTest, add_settingTakesTheParametersOfTheLastFile) {
    controller_.joinerAddFile(video_);
    controller_.joinerAddFile(media("odd-size.mp4"));
    EXPECT_EQ(currentSetting->width, 175);
    EXPECT_EQ(currentSetting->height, 99);
}

TEST_F(JoinerTest, add_invalidFile_leavesTheSettingAsItWas) {
    controller_.joinerAddFile(media("odd-size.avi"));
    // Has another size and codec, but no length.
    EXPECT_EQ(alertsOf([this] { controller_.joinerAddFile(media("raw.h264")); }),
              std::vector{plainAlert("File is invalid!")});
    ASSERT_NE(ConversionEngine::instance().sourceWidth, 321);
    EXPECT_EQ(currentSetting->width, 321);
    EXPECT_EQ(currentSetting->vEncoder, "mpeg4");
}

TEST_F(JoinerTest, add_goesToTheJoinersListWhicheverIsOnShow) {
    show("Video Cutter");
    controller_.joinerAddFile(video_);
    EXPECT_EQ(joinerFileList->size(), 1U);
    EXPECT_TRUE(cutterFileList->empty());
}

TEST_F(JoinerTest, add_fileThousand_isRefusedOnce) {
    for (std::size_t i = 0; i < 998; ++i)
        addRow("mp4", "320x180");
    const auto alerts = alertsOf([&] {
        controller_.openFilePanelDidEnd({video_, video_, video_, video_}, 1);
    });
    EXPECT_EQ(joinerFileList->size(), 999U);
    EXPECT_EQ(rows(), 999);
    EXPECT_EQ(alerts, std::vector{errorAlert("No more than 999 files can be joined!")});
}

TEST_F(JoinerTest, table_severalHundredRows_staysQuick) {
    for (std::size_t i = 0; i < 998; ++i)
        addRow("mp4", "320x180");
    QElapsedTimer timer;
    timer.start();
    dropOnTable({video_});
    table().scrollToBottom();
    table().grab();
    EXPECT_LT(timer.elapsed(), 1000);
    // One count for the whole list, not one for each thing that the view asks.
    EXPECT_EQ(log_.count("tableView xxxxx count:999"), 1);
}

TEST_F(JoinerTest, drop_ofThree_addsOnlyTheFirst) {
    EXPECT_TRUE(dropOnTable({video_, media("mpeg4.avi"), media("h264.mp4")}));
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(cell(0, 0), video_);
    EXPECT_TRUE(log_.contains("get path extension:" + video_));
}

TEST_F(JoinerTest, drop_anyExtension_isTried) {
    const QString named = QString::fromStdString(folder_ / "video.TXT");
    ASSERT_TRUE(QFile::copy(video_, named));
    dropOnTable({named});
    EXPECT_EQ(cell(0, 1), "TXT");
}

TEST_F(JoinerTest, drop_invalidFile_isTakenButAlerts) {
    EXPECT_EQ(alertsOf([&] { EXPECT_TRUE(controller_.tableViewAcceptDrop({"/nowhere"})); }),
              std::vector{plainAlert("File is invalid!")});
    EXPECT_EQ(rows(), 0);
}

TEST_F(JoinerTest, drop_goesToTheEnd) {
    addRow("avi", "1x1");
    EXPECT_TRUE(dropOnTable({video_}));
    EXPECT_EQ(cell(1, 0), video_);
}

TEST_F(JoinerTest, drop_withoutFiles_isNotTaken) {
    EXPECT_FALSE(controller_.tableViewAcceptDrop({}));
}

TEST_F(JoinerTest, drop_ofWhatIsNoFile_isNotTaken) {
    QMimeData text;
    text.setText("text");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table().viewport(), &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(JoinerTest, drag_goesOnOverTheTable_isTakenAsACopy) {
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(video_)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table().viewport(), &enter);
    QDragMoveEvent move(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &files, Qt::LeftButton,
                        Qt::NoModifier);
    move.setDropAction(Qt::MoveAction);
    move.ignore();
    QCoreApplication::sendEvent(table().viewport(), &move);
    EXPECT_TRUE(move.isAccepted());
    EXPECT_EQ(move.dropAction(), Qt::CopyAction);
}

TEST_F(JoinerTest, drop_anyOperation_isWelcome) {
    EXPECT_EQ(controller_.tableViewValidateDrop(), 0xFFFFFFFFU);
}

TEST_F(JoinerTest, cells_showTheItem) {
    addRow("mp4", "1280x720");
    NodeInfo& item = *joinerFileList->front();
    item.width = 1280;
    item.height = 720;
    item.endTime = 3661.5F;
    item.startTime = 61.9F;
    item.frame_rate = 29.97F;
    currentSetting->profileName = "MP4 (*.mp4)";
    EXPECT_EQ(value("fileSource"), "/videos/a.mp4");
    EXPECT_EQ(value("videoFormat"), "mp4");
    EXPECT_EQ(value("duration"), "01:01:01.500");
    EXPECT_EQ(value("videoSize"), "1280x720");
    EXPECT_EQ(value("videoQuality"), "29.97fps");
    EXPECT_EQ(value("status"), "Ready");
    EXPECT_EQ(value("inputFile"), "/videos/a.mp4");
    EXPECT_EQ(value("startTime"), "00:01:01");
    EXPECT_EQ(value("endTime"), "01:01:01");
    EXPECT_EQ(value("format"), "MP4 (*.mp4)");
    EXPECT_EQ(value("state"), "Ready");
    EXPECT_EQ(value("anything"), "");
}

TEST_F(JoinerTest, cells_rateBelowTen_isPadded) {
    addRow("mp4", "1x1");
    joinerFileList->front()->frame_rate = 5;
    EXPECT_EQ(value("videoQuality"), " 5.00fps");
}

TEST_F(JoinerTest, cells_states_haveTheirTexts) {
    addRow("mp4", "1x1");
    for (const auto& [state, text] : std::vector<std::pair<int, QString>>{
             {0, "Ready"}, {1, "Completed"}, {2, "Failure"}, {3, ""}, {-1, ""}}) {
        joinerFileList->front()->converteState = state;
        EXPECT_EQ(value("status"), text);
        EXPECT_EQ(value("state"), text);
    }
}

TEST_F(JoinerTest, cells_rowWithoutItem_haveNoValue) {
    EXPECT_FALSE(controller_.tableViewObjectValueForTableColumn("status", 0).isValid());
    EXPECT_FALSE(controller_.tableViewObjectValueForTableColumn("status", -1).isValid());
}

TEST_F(JoinerTest, cells_areReadOnly) {
    dropOnTable({video_});
    for (int column = 0; column < 6; ++column)
        EXPECT_FALSE(table().model()->flags(table().model()->index(0, column)) &
                     (Qt::ItemIsEditable | Qt::ItemIsUserCheckable));
}

TEST_F(JoinerTest, columns_areTheSixOfTheList) {
    QStringList titles;
    for (int column = 0; column < table().model()->columnCount(); ++column)
        titles.append(table().model()->headerData(column, Qt::Horizontal).toString());
    EXPECT_EQ(titles, QStringList({"File", "Format", "Length", "Size", "Frame rate", "Status"}));
}

TEST_F(JoinerTest, emptyTable_invitesToDrop_untilThereIsARow) {
    EXPECT_TRUE(outlet("mAddFileToolTipJoiner").isVisible());
    dropOnTable({video_});
    EXPECT_FALSE(outlet("mAddFileToolTipJoiner").isVisible());
    table().selectRow(0);
    press("mButtonJoinerRemove");
    EXPECT_TRUE(outlet("mAddFileToolTipJoiner").isVisible());
}

TEST_F(JoinerTest, remove_nothingSelected_doesNothing) {
    dropOnTable({video_});
    table().clearSelection();
    press("mButtonJoinerRemove");
    EXPECT_EQ(rows(), 1);
}

TEST_F(JoinerTest, remove_selectedRow_goes) {
    for (const char* const name : {"video-only.mp4", "h264.mp4", "mpeg4.avi"})
        dropOnTable({media(name)});
    table().selectRow(1);
    press("mButtonJoinerRemove");
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(cell(0, 0), video_);
    EXPECT_EQ(cell(1, 0), media("mpeg4.avi"));
}

TEST_F(JoinerTest, remove_severalSelected_takesTheOneSelectedLast) {
    for (const char* const name : {"video-only.mp4", "h264.mp4", "mpeg4.avi"})
        dropOnTable({media(name)});
    table().selectRow(0);
    const QModelIndex second = table().model()->index(1, 0);
    QTest::mouseClick(table().viewport(), Qt::LeftButton, Qt::ControlModifier,
                      table().visualRect(second).center());
    EXPECT_EQ(table().selectionModel()->selectedRows().size(), 2);
    press("mButtonJoinerRemove");
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(cell(0, 0), video_);
    EXPECT_EQ(cell(1, 0), media("mpeg4.avi"));
}

TEST_F(JoinerTest, remove_byDeleteKey_works) {
    dropOnTable({video_});
    table().selectRow(0);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(rows(), 0);
}

TEST_F(JoinerTest, removeAgain_takesTheRowThatMovedUp) {
    for (const char* const name : {"video-only.mp4", "h264.mp4", "mpeg4.avi"})
        dropOnTable({media(name)});
    table().selectRow(0);
    press("mButtonJoinerRemove");
    press("mButtonJoinerRemove");
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(cell(0, 0), media("mpeg4.avi"));
}

TEST_F(JoinerTest, list_survivesSwitchingButNoLoadOfTheCutter) {
    dropOnTable({video_});
    show("Video Cutter");
    show("Video Joiner");
    EXPECT_EQ(cell(0, 0), video_);
    show("Video Cutter");
    dropOnPreview(video_);
    show("Video Joiner");
    EXPECT_EQ(rows(), 0);
}

TEST_F(JoinerTest, canJoin_alike_isTrueAlsoForUncheckedRows) {
    for (int i = 0; i < 3; ++i)
        addRow("mp4", "640x480");
    (*joinerFileList)[0]->isSeleted = 0;
    (*joinerFileList)[1]->isSeleted = 0;
    EXPECT_TRUE(controller_.fileCanJoin());
    EXPECT_EQ(log_.all(), QStringList("fileCanJoin"));
}

TEST_F(JoinerTest, canJoin_formatsOfOtherCase_isFalse) {
    addRow("mp4", "1280x720");
    addRow("MP4", "1280x720");
    EXPECT_FALSE(controller_.fileCanJoin());
    EXPECT_TRUE(log_.contains("format:mp4 Vs MP4 resolution:1280x720 Vs 1280x720"));
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

TEST_F(JoinerTest, canJoin_fewerThanTwoRows_isFalse) {
    EXPECT_FALSE(controller_.fileCanJoin());
    addRow("mp4", "1x1");
    EXPECT_FALSE(controller_.fileCanJoin());
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
        for (const SeenAlert& alert : alertsOf(start))
            alerts.push_back(alert);
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
