#include "AlertPanel.h"
#include "ClosingOnly.h"
#include "ConversionEngine.h"
#include "ConverterThread.h"
#include "CustomSlider.h"
#include "DisplaySize.h"
#include "FirstInput.h"
#include "LeadingNumber.h"
#include "MainController.h"
#include "MainWindow.h"
#include "MediaOperations.h"
#include "ModalSession.h"
#include "NotificationCenter.h"
#include "OpenPanel.h"
#include "PathParts.h"
#include "PlatformLog.h"
#include "SharedState.h"
#include "TimeText.h"
#include "cutterWinController.h"
#include "ui_MainWindow.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <limits>

namespace velmora {
namespace {

constexpr const char* snapshotFile = "/tmp/pic.bmp";
constexpr int stretchToFill = 1;
constexpr int panelOk = 1;

} // namespace

QString MainController::getStringTime(float time) const {
    return timeText(time);
}

void MainController::textSetTime(QLineEdit& field, float time) const {
    field.setText(timeText(time));
}

void MainController::testSetTimeDuration(QLineEdit& field, float position, float length) const {
    field.setText(positionText(position, length));
}

void MainController::setTextFieldDuration() {
    textSetTime(*ui_.mLabelDuration, toSeconds(mEndValMs - mStartValMs));
}

void MainController::viewValueReset() {
    ui_.mCustomSlider->setDoubleValue(0);
    for (QLineEdit* const field : {static_cast<QLineEdit*>(ui_.mLabelStart),
                                   static_cast<QLineEdit*>(ui_.mLabelEnd), ui_.mLabelDuration})
        field->setText("00:00:00.000");
    testSetTimeDuration(*ui_.mLabelDrag, 0, 0);
}

std::int64_t MainController::getTextFieldValueMs(std::int64_t which) const {
    switch (which) {
    case 1:
        return mStartValMs;
    case 2:
        return mEndValMs;
    default:
        return -1;
    }
}

void MainController::setInfoParameter(const QString& key, const QString& value) {
    if (key == "width")
        currentSetting->width = leadingInteger(value);
    else if (key == "height")
        currentSetting->height = leadingInteger(value);
    else if (key == "cutStartTime")
        currentSetting->cutStartTime = static_cast<float>(leadingDecimal(value));
    else if (key == "cutEndTime")
        currentSetting->cutEndTime = static_cast<float>(leadingDecimal(value));
}

void MainController::sliderClear() {
    ui_.mCustomSlider->setAnchorLeft(-1);
    ui_.mCustomSlider->setAnchorRight(-1);
    ui_.mCustomSlider->setButIndex(0);
}

// Loading.

void MainController::fileOpen() {
    beginOpenPanel(
        *mainWin_, OpenPanelChoice::Files,
        QStandardPaths::writableLocation(QStandardPaths::MoviesLocation),
        [this](int result, const QStringList& files) { openFilePanelDidEnd(files, result); });
}

void MainController::openFilePanelDidEnd(const QStringList& files, int returnCode) {
    if (returnCode != panelOk)
        return;
    if (selectedSegmentLabel() == "Video Joiner")
        addChosenFiles(files);
    else
        loadChosenFiles(files);
}

/// The next file is found by the probe's code, which is 0 once a file has been loaded: a second
/// file is loaded again and again, until it no longer can be or the window is closed.
void MainController::loadChosenFiles(const QStringList& files) {
    qsizetype next = 0;
    while (next < files.size()) {
        const std::optional<std::int32_t> code = loadChosenFile(files[next]);
        if (!code)
            return;
        next = *code + 1;
        if (next < files.size() && !letOthersRun())
            return;
    }
    sliderClear();
}

std::optional<std::int32_t> MainController::loadChosenFile(const QString& path) {
    firstLoadVideo(path);
    const auto item = std::make_shared<NodeInfo>();
    item->inputFile = path;
    const std::int32_t code = probeVideo(path);
    textSetTime(*ui_.mLabelEnd, mDuration);
    if (!acceptProbe(code))
        return std::nullopt;
    takeProbedVideo(item);
    return code;
}

void MainController::cutterAddObject(const QString& path) {
    const auto item = std::make_shared<NodeInfo>();
    item->inputFile = path;
    if (!acceptProbe(probeVideo(path)))
        return;
    textSetTime(*ui_.mLabelEnd, mDuration);
    takeProbedVideo(item);
}

/// Closing the window is all that the user can do between two files.
bool MainController::letOthersRun() {
    const ClosingOnly closingOnly(*ui_.actionQuit);
    QCoreApplication::processEvents();
    return !terminating_;
}

std::int32_t MainController::probeVideo(const QString& path) {
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = path.toStdString();
    const std::int32_t code = engine.probe();
    platformLog(QString::asprintf("endtime:%f", static_cast<double>(mDuration)));
    return code;
}

bool MainController::acceptProbe(std::int32_t code) {
    const ConversionEngine& engine = ConversionEngine::instance();
    if (code >= 0 && engine.durationFloor >= 0 && engine.durationSeconds >= 0)
        return true;
    runAlertPanel({}, "File is invalid!", "OK", "");
    return false;
}

void MainController::takeProbedVideo(const std::shared_ptr<NodeInfo>& item) {
    const ConversionEngine& engine = ConversionEngine::instance();
    takeSource(*item);
    mDuration = static_cast<float>(engine.durationUs) / 1000000.0F;
    textSetTime(*ui_.mLabelDuration, mDuration);
    testSetTimeDuration(*ui_.mLabelDrag, 0, mDuration);
    platformLog(QString::asprintf("duration:%f s(%lld)", static_cast<double>(mDuration),
                                  static_cast<long long>(engine.durationUs)));
    ConverterThread::copyProbeToSetting();
    item->startTime = 0;
    item->endTime = item->duration;
    mStartValMs = toMilliseconds(item->startTime);
    mEndValMs = toMilliseconds(item->duration);
    currentSetting->cutStartTime = static_cast<float>(mStartValMs);
    currentSetting->cutEndTime = static_cast<float>(mEndValMs);
    item->converteState = Ready;
    item->outFromat = pathExtension(item->inputFile);
    item->isSeleted = 1;
    cutterFileList->push_back(item);
}

void MainController::takeSource(NodeInfo& item) {
    const ConversionEngine& engine = ConversionEngine::instance();
    item.width = engine.sourceWidth;
    item.height = engine.sourceHeight;
    // A rate without a denominator is none.
    item.frame_rate = engine.sourceFrameRateDen == 0
                          ? 0.0F
                          : static_cast<float>(static_cast<double>(engine.sourceFrameRateNum) /
                                               engine.sourceFrameRateDen);
    item.duration = static_cast<float>(static_cast<double>(engine.durationUs) / 1000000.0);
    item.resolution = QString::asprintf("%dx%d", item.width, item.height);
}

void MainController::firstLoadVideo(const QString& path) {
    closePanels();
    filename_ = path;
    setDefaultView();
    ConversionEngine& engine = ConversionEngine::instance();
    engine.snapshotPath = snapshotFile;
    engine.probePath = path.toStdString();
    const FirstInput first;
    engine.startTimes[0] = 0.0;
    platformLog(QString("get path:%1").arg(path));
    engine.probe();
    mDuration = static_cast<float>(static_cast<double>(engine.durationUs) / 1000000.0);
    textSetTime(*ui_.mLabelDuration, mDuration);
    testSetTimeDuration(*ui_.mLabelDrag, 0, mDuration);
    engine.snapshot();
    showSnapshot(QString::fromStdString(engine.snapshotPath));
    if (!mAddFileInitialized) {
        mAddFileInitialized = true;
        ui_.mAddFileToolTip->hide();
        ui_.mCustomSlider->setCustomSliderEnable(true);
        ui_.mButtonSetImage->setToolTip({});
        mainWin_->showLoadedStage(displaySize({engine.sourceWidth, engine.sourceHeight},
                                              mediaOperations().sampleAspectRatio()));
    }
}

void MainController::showSnapshot(const QString& path) {
    ui_.mCustomImage->setImage(NamedImage(QImage(path, "bmp")));
    ui_.mCustomImage->setImageScaling(stretchToFill);
    shown_ = markOf(path);
}

/// Every load subscribes to the bar once more, so one move comes here many times. Only the first
/// finds another picture to show.
void MainController::showSnapshotUnlessShown(const QString& path) {
    if (shown_ != markOf(path))
        showSnapshot(path);
}

MainController::SnapshotMark MainController::markOf(const QString& path) const {
    const QFileInfo file(path);
    return {filename_, ConversionEngine::instance().startTimes[0], file.lastModified(),
            file.size()};
}

void MainController::mouseDownListener(const std::optional<QString>& path) {
    platformLog("take mousedown:" + path.value_or("(null)"));
    if (path) {
        firstLoadVideo(*path);
        sliderClear();
        textSetTime(*ui_.mLabelEnd, mDuration);
        cutterAddObject(*path);
    } else {
        fileOpen();
    }
    platformLog(QString::asprintf("add file:%d", mAddFileInitialized ? 1 : 0));
}

// Scrubbing and marking.

void MainController::slider_drag(const CustomSlider& sender) {
    mLabelValue = static_cast<float>(sender.doubleValue() * mDuration / 100.0);
    platformLog(QString::asprintf("get slider:%f", ui_.mCustomSlider->doubleValue()));
    testSetTimeDuration(*ui_.mLabelDrag, mLabelValue, mDuration);
}

void MainController::scrubbingbarDidChange(const Notification& notification) {
    const double value = notification.userInfo.value(CustomSlider::valueKey).toDouble();
    mLabelValue = static_cast<float>(value * mDuration / 100.0);
    testSetTimeDuration(*ui_.mLabelDrag, mLabelValue, mDuration);
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = filename_.toStdString();
    const FirstInput first;
    engine.startTimes[0] = static_cast<double>(mLabelValue);
    engine.snapshot();
    showSnapshotUnlessShown(snapshotFile);
}

void MainController::button_left_anchor() {
    if (!mAddFileInitialized)
        return;
    mCutterWincontroller->close();
    mStartValMs = toMilliseconds(mLabelValue);
    setInfoParameter("cutStartTime", QString::number(mStartValMs));
    currentSetting->cutStartTime = static_cast<float>(mStartValMs);
    textSetTime(*ui_.mLabelStart, mLabelValue);
    ui_.mCustomSlider->setAnchorLeft(ui_.mCustomSlider->getCurrenPosInt());
    ui_.mCustomSlider->setButIndex(1);
    ui_.mCustomSlider->update();
    if (mStartValMs >= mEndValMs) {
        mEndValMs = toMilliseconds(mDuration);
        textSetTime(*ui_.mLabelEnd, mDuration);
    }
    setTextFieldDuration();
}

void MainController::button_right_anchor() {
    if (!mAddFileInitialized)
        return;
    mCutterWincontroller->close();
    mEndValMs = toMilliseconds(mLabelValue);
    setInfoParameter("cutEndTime", QString::number(mEndValMs));
    textSetTime(*ui_.mLabelEnd, mLabelValue);
    ui_.mCustomSlider->setAnchorRight(ui_.mCustomSlider->getCurrenPosInt());
    ui_.mCustomSlider->setButIndex(2);
    ui_.mCustomSlider->update();
    if (mStartValMs >= mEndValMs) {
        mStartValMs = 0;
        textSetTime(*ui_.mLabelStart, 0);
    }
    setTextFieldDuration();
}

void MainController::onTextDidChange(const Notification& /*notification*/) {
    const std::int32_t start =
        mCutterWincontroller->parseSpecificStringToMs(ui_.mLabelStart->text());
    const std::int32_t end = mCutterWincontroller->parseSpecificStringToMs(ui_.mLabelEnd->text());
    if (static_cast<float>(start) != currentSetting->cutStartTime ||
        static_cast<float>(end) != currentSetting->cutEndTime)
        mCutterWincontroller->close(); // it would cut by the times it was opened with
    if (start >= 0 && end >= 0)
        textSetTime(*ui_.mLabelDuration, toSeconds(end - start));
}

// Actions.

void MainController::button_cutter_addfile() {
    fileOpen();
}

void MainController::button_load_image() {
    if (!mAddFileInitialized)
        fileOpen();
}

void MainController::button_play() {
    if (!mAddFileInitialized) {
        fileOpen();
        return;
    }
    platformLog("name:" + filename_);
    QDesktopServices::openUrl(QUrl::fromLocalFile(filename_));
}

void MainController::button_cutter_doit() {
    platformLog("Video Cutter");
    if (!(mDuration > 0)) {
        runAlertPanel("Error", "Please add video file first!", "OK", {});
        return;
    }
    const std::int32_t length =
        mCutterWincontroller->setStartAndEnd(ui_.mLabelStart->text(), ui_.mLabelEnd->text());
    if (length < 0) {
        runAlertPanel({}, "incorrect time format(e.g. xx:xx:xx.xxx)!", "OK", "");
        return;
    }
    textSetTime(*ui_.mLabelDuration, toSeconds(length));
    mCutterWincontroller->setCutterOutputFilename(fileNameWithoutExtension(filename_),
                                                  pathExtension(filename_));
    QWidget& panel = mCutterWincontroller->window();
    panel.setWindowTitle("Cutter Setting");
    runModalForWindow(panel);
}

} // namespace velmora
