// The box "Exact" of both panels.

#include "MediaReader.h"
#include "PanelSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QTest>

namespace velmora::test {
namespace {

const QString kNeedsReencoding = "Needs re-encoding: copies begin at key frames.";
const QString kCutterSentence =
    "Saves precisely the pictures between both times, at their own times.";
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

TEST_F(CutterExactBox, directRow_boxIsDisabledWithTheReason) {
    showPanel();
    EXPECT_EQ(exact().text().remove('&'), "Exact");
    EXPECT_FALSE(exact().isEnabled());
    EXPECT_FALSE(exact().isChecked());
    EXPECT_EQ(hint(), kNeedsReencoding);
}

TEST_F(CutterExactBox, reencodeRow_boxIsOffAndSaysWhatItMeans) {
    showPanel();
    selectRow(1);
    EXPECT_TRUE(exact().isEnabled());
    EXPECT_FALSE(exact().isChecked());
    EXPECT_EQ(hint(), kCutterSentence);
    EXPECT_EQ(exact().accessibleDescription(), kCutterSentence);
    selectRow(0);
    EXPECT_FALSE(exact().isEnabled());
}

TEST_F(JoinerExactBox, reencodeRow_saysWhatItMeansForAJoin) {
    showPanel();
    selectRow(1);
    EXPECT_EQ(hint(), "Every file keeps its own timing and proportions.");
}

TEST_F(CutterExactBox, troubleIsKnown_isOnAndSaysWhy) {
    makePanel().setTrouble(kTrouble);
    show();
    EXPECT_TRUE(exact().isChecked());
    EXPECT_EQ(hint(), kTrouble + '\n' + kNeedsReencoding);
    selectRow(1);
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
    EXPECT_FALSE(exact().isChecked());
    EXPECT_EQ(hint(), kNeedsReencoding);
}

TEST_F(CutterExactBox, directRow_isNoExactJobEvenIfTheBoxIsOn) {
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
