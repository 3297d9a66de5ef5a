// The box "Exact" of both panels.

#include "MediaReader.h"
#include "PanelSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QRegularExpression>
#include <QTest>

namespace velmora::test {
namespace {

const QString kNeedsReencoding = "Needs re-encoding: copies begin at key frames.";
const QString kCutterSentence =
    "Saves precisely the pictures between both times, at their own times.";
const QString kCopySentence = "Copies precisely the pictures between both times; only some around "
                              "them are encoded again.";
const QString kTrouble = "The pictures of this video come at varying intervals.";

template <class Panel> class ExactBox : public PanelTest<Panel> {
protected:
    QCheckBox& exact() const { return this->template outlet<QCheckBox>("mExact"); }
    /// On the box itself: beside its text there is nothing to click.
    void pressExact() const {
        QTest::mouseClick(&exact(), Qt::LeftButton, {}, QPoint(8, exact().height() / 2));
    }
    QString hint() const { return this->template outlet<QLabel>("mExactHint").text(); }
};

class CutterExactBox : public ExactBox<cutterWinController> {
protected:
    /// The panel of a cut of a real video, on screen.
    void makePanelFor(const std::string& media, std::int64_t startMs, std::int64_t endMs) {
        const QString source = QString::fromStdString(mediaPath(media));
        makePanel().setCutterOutputFilename("clip", source.section('.', -1));
        panel_->setExactSource(source);
        panel_->setExactWindow(startMs, endMs);
        show();
    }
    /// Until the video has been looked at.
    void waitForHint() const {
        EXPECT_TRUE(QTest::qWaitFor([this] { return hint() != "Looking at the video…"; }, 30'000));
    }
    /// A cut of a real video, exactly from 1.010 s to 1.100 s.
    void cutExactly() {
        const auto item = std::make_shared<NodeInfo>();
        item->inputFile = QString::fromStdString(mediaPath("h264.mp4"));
        cutterFileList->push_back(item);
        currentSetting->cutStartTime = 1000;
        currentSetting->cutEndTime = 2000;
        panel_->setExactWindow(1010, 1100);
        typeFolder(path(""));
        const AlertReader alerts;
        pressStart();
        EXPECT_EQ(alerts.messages, QStringList("Congratulations! file has completed!"));
    }
};
using JoinerExactBox = ExactBox<joinerWinController>;

TEST_F(JoinerExactBox, directRow_boxIsDisabledWithTheReason) {
    showPanel();
    EXPECT_EQ(exact().text().remove('&'), "Exact");
    EXPECT_FALSE(exact().isEnabled());
    EXPECT_FALSE(exact().isChecked());
    EXPECT_EQ(hint(), kNeedsReencoding);
}

TEST_F(CutterExactBox, directRow_boxIsOffAndSaysWhatItMeans) {
    showPanel();
    EXPECT_TRUE(exact().isEnabled());
    EXPECT_FALSE(exact().isChecked());
    EXPECT_EQ(hint(), kCopySentence);
}

TEST_F(CutterExactBox, directRow_tellsWhatTheCopyWouldDo) {
    makePanelFor("h264-bframes.mp4", 300, 1500);
    pressExact();
    waitForHint();
    static const QRegularExpression kLine("^\\d+ of \\d+ pictures are encoded again\\.$");
    EXPECT_TRUE(kLine.match(hint()).hasMatch()) << hint().toStdString();
}

TEST_F(CutterExactBox, directRow_refusedCopyIsNotStarted) {
    makePanelFor("h264-bframes.avi", 300, 1500);
    pressExact();
    waitForHint();
    EXPECT_TRUE(hint().contains("cannot")) << hint().toStdString();
    EXPECT_TRUE(hint().endsWith("Re-encode it, or begin at a key frame without Exact."));
    typeFolder(path(""));
    const AlertReader alerts;
    pressStart();
    EXPECT_EQ(alerts.messages, QStringList(hint()));
}

TEST_F(CutterExactBox, directRow_exactCopyIsMadeAsItWasTold) {
    makePanelFor("h264.mp4", 1010, 1100);
    typeName("exact");
    pressExact();
    waitForHint();
    EXPECT_EQ(hint(), "2 of 2 pictures are encoded again.");
    cutExactly();
    EXPECT_EQ(packetsOf((path("exact.mp4")).toStdString(), "v:0").size(), 2U);
}

TEST_F(CutterExactBox, eachRow_keepsItsOwnChoice) {
    showPanel();
    pressExact();
    selectRow(1);
    EXPECT_FALSE(exact().isChecked());
    selectRow(0);
    EXPECT_TRUE(exact().isChecked());
}

TEST_F(CutterExactBox, reencodeRow_boxIsOffAndSaysWhatItMeans) {
    showPanel();
    selectRow(1);
    EXPECT_TRUE(exact().isEnabled());
    EXPECT_FALSE(exact().isChecked());
    EXPECT_EQ(hint(), kCutterSentence);
    EXPECT_EQ(exact().accessibleDescription(), kCutterSentence);
}

TEST_F(JoinerExactBox, reencodeRow_saysWhatItMeansForAJoin) {
    showPanel();
    selectRow(1);
    EXPECT_EQ(hint(), "Every file keeps its own timing and proportions.");
}

TEST_F(CutterExactBox, troubleIsKnown_isOnAndSaysWhy) {
    makePanel().setTrouble(kTrouble);
    show();
    EXPECT_FALSE(exact().isChecked()); // a direct copy stays what it is
    EXPECT_EQ(hint(), kTrouble + '\n' + kCopySentence);
    selectRow(1);
    EXPECT_TRUE(exact().isChecked());
    EXPECT_EQ(hint(), kTrouble + '\n' + kCutterSentence);
}

TEST_F(CutterExactBox, troubleComesWhileOpen_isTurnedOn) {
    showPanel();
    selectRow(1);
    panel_->setTrouble(kTrouble);
    EXPECT_TRUE(exact().isChecked());
    EXPECT_EQ(hint(), kTrouble + '\n' + kCutterSentence);
}

TEST_F(CutterExactBox, sameTroubleAgain_keepsTheUsersChoice) {
    makePanel().setTrouble(kTrouble);
    show();
    selectRow(1);
    pressExact();
    panel_->setTrouble(kTrouble);
    EXPECT_FALSE(exact().isChecked());
}

TEST_F(CutterExactBox, nextSourceIsWithoutTrouble_isOffAgain) {
    makePanel().setTrouble(kTrouble);
    show();
    panel_->setTrouble({});
    EXPECT_EQ(hint(), kCopySentence);
    selectRow(1);
    EXPECT_FALSE(exact().isChecked());
}

TEST_F(CutterExactBox, directRow_isNoExactJobEvenIfReencodingWouldBe) {
    makePanel().setTrouble(kTrouble);
    show();
    EXPECT_FALSE(panel_->newJob(true).exact);
    selectRow(1);
    EXPECT_TRUE(panel_->newJob(true).exact);
    pressExact();
    EXPECT_FALSE(panel_->newJob(true).exact);
}

TEST_F(CutterExactBox, exactCut_writesTheWindowInMilliseconds) {
    makePanelOver(QString());
    show();
    selectRow(1);
    pressExact();
    typeName("exact");
    cutExactly();
    const auto packets = packetsOf((path("exact.mp4")).toStdString(), "v:0");
    EXPECT_EQ(packets.size(), 2U); // of 30 a second
}

} // namespace
} // namespace velmora::test
