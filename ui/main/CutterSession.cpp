#include "CutterSession.h"

#include "AlertPanel.h"
#include "ConversionEngine.h"
#include "ConverterThread.h"
#include "CustomSlider.h"
#include "DirectText.h"
#include "DisplaySize.h"
#include "LeadingNumber.h"
#include "MainWindow.h"
#include "MediaOperations.h"
#include "ModalSession.h"
#include "PathParts.h"
#include "PlatformLog.h"
#include "ProbedFile.h"
#include "Saturated.h"
#include "SharedState.h"
#include "SourceTrouble.h"
#include "TimeText.h"
#include "cutterWinController.h"
#include "ui_MainWindow.h"

#include <QDesktopServices>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <utility>

namespace velmora {
namespace {

/// The length of the file that has been probed last.
float probedDuration() {
    const auto lengthUs = static_cast<double>(ConversionEngine::instance().durationUs);
    return static_cast<float>(lengthUs / 1000000.0);
}

void showTime(QLineEdit& field, float seconds) {
    field.setText(timeText(seconds));
}

} // namespace

CutterSession::CutterSession(MainWindow& window, Requests requests)
    : window_(window), bar_(*window.outlets().mCustomSlider), start_(*window.outlets().mLabelStart),
      end_(*window.outlets().mLabelEnd), length_(*window.outlets().mLabelDuration),
      position_(*window.outlets().mLabelDrag), preview_(*window.outlets().mCustomImage),
      requests_(std::move(requests)) {
    QObject::connect(&facts_, &SourceFactsReader::known, &facts_, [this] {
        if (mCutterWincontroller) {
            showTrouble();
        }
    });
    QObject::connect(&direct_, &DirectCutReader::changed, &direct_, [this] {
        showDirectCut();
        Q_EMIT events_.directCutChanged();
    });
}

CutterSession::~CutterSession() = default;

void CutterSession::createPanel() {
    if (!mCutterWincontroller) {
        mCutterWincontroller = std::make_unique<cutterWinController>(&window_);
    }
}

// Loading.

void CutterSession::mouseDownListener(const std::optional<QString>& path) {
    platformLog("take mousedown:" + path.value_or("(null)"));
    if (path) {
        firstLoadVideo(*path);
        sliderClear();
        showTime(end_, mDuration);
        cutterAddObject(*path);
    } else {
        requests_.askForFiles();
    }
    platformLog(QString::asprintf("add file:%d", mAddFileInitialized ? 1 : 0));
}

/// The next file is found by the probe's code, which is 0 once a file has been loaded: a second
/// file is loaded again and again, until it no longer can be or the window is closed.
void CutterSession::loadChosenFiles(const QStringList& files) {
    qsizetype next = 0;
    while (next < files.size()) {
        const std::optional<std::int32_t> code = loadChosenFile(files[next]);
        if (!code) {
            return;
        }
        next = *code + 1;
        if (next < files.size() && !requests_.letOthersRun()) {
            return;
        }
    }
    sliderClear();
}

std::optional<std::int32_t> CutterSession::loadChosenFile(const QString& path) {
    firstLoadVideo(path);
    const std::int32_t code = probeVideo(path);
    showTime(end_, mDuration);
    if (!acceptProbe(code)) {
        return std::nullopt;
    }
    takeProbedVideo(path);
    return code;
}

void CutterSession::cutterAddObject(const QString& path) {
    if (!acceptProbe(probeVideo(path))) {
        return;
    }
    showTime(end_, mDuration);
    takeProbedVideo(path);
}

std::int32_t CutterSession::probeVideo(const QString& path) const {
    const std::int32_t code = probeFile(path);
    platformLog(QString::asprintf("endtime:%f", static_cast<double>(mDuration)));
    return code;
}

void CutterSession::takeProbedVideo(const QString& path) {
    const ConversionEngine& engine = ConversionEngine::instance();
    setDuration(static_cast<float>(engine.durationUs) / 1000000.0F);
    platformLog(QString::asprintf("duration:%f s(%lld)", static_cast<double>(mDuration),
                                  static_cast<long long>(engine.durationUs)));
    ConverterThread::copyProbeToSetting();
    const std::shared_ptr<NodeInfo> item = probedItem(path);
    marks_ = {toMilliseconds(item->startTime), toMilliseconds(item->duration)};
    currentSetting->cutStartTime = static_cast<float>(marks_.mStartValMs);
    currentSetting->cutEndTime = static_cast<float>(marks_.mEndValMs);
    lengthUs_ = engine.durationUs;
    exactEnd_ = {timeText(mDuration), lengthUs_};
    cutterFileList->push_back(item);
    tellMarks(marks_.mStartValMs, marks_.mEndValMs);
}

void CutterSession::firstLoadVideo(const QString& path) {
    filename_ = path;
    at_.reset();
    exactStart_ = {};
    exactEnd_ = {};
    requests_.startAfresh();
    platformLog(QString("get path:%1").arg(path));
    probeFile(path);
    setDuration(probedDuration());
    preview_.showFirst(path);
    facts_.read(path);
    if (!mAddFileInitialized) {
        const ConversionEngine& engine = ConversionEngine::instance();
        mAddFileInitialized = true;
        bar_.setCustomSliderEnable(true);
        window_.showLoadedStage(displaySize({engine.sourceWidth, engine.sourceHeight},
                                            mediaOperations().sampleAspectRatio()));
    }
    Q_EMIT events_.loaded(path);
}

void CutterSession::unload() {
    mAddFileInitialized = false;
    bar_.setCustomSliderEnable(false);
    direct_.forget();
    Q_EMIT events_.unloaded();
}

void CutterSession::setDuration(float seconds) {
    mDuration = seconds;
    showTime(length_, mDuration);
    position_.setText(positionText(0, mDuration));
}

// Actions.

void CutterSession::invite() {
    if (!mAddFileInitialized) {
        requests_.askForFiles();
    }
}

void CutterSession::play() {
    if (!mAddFileInitialized) {
        requests_.askForFiles();
        return;
    }
    platformLog("name:" + filename_);
    QDesktopServices::openUrl(QUrl::fromLocalFile(filename_));
}

void CutterSession::startCut() {
    platformLog("Video Cutter");
    if (!(mDuration > 0)) {
        runAlertPanel("Error", "Please add video file first!", "OK", {});
        return;
    }
    const std::int32_t lengthMs = cutterWinController::setStartAndEnd(start_.text(), end_.text());
    if (lengthMs < 0) {
        runAlertPanel({}, "incorrect time format(e.g. xx:xx:xx.xxx)!", "OK", "");
        return;
    }
    showTime(length_, toSeconds(lengthMs));
    showTrouble();
    showDirectCut();
    mCutterWincontroller->setCutterOutputFilename(fileNameWithoutExtension(filename_),
                                                  pathExtension(filename_));
    mCutterWincontroller->setExactSource(filename_);
    mCutterWincontroller->setExactWindow(exactStart_.nearestMsIn(start_),
                                         exactEnd_.nearestMsIn(end_));
    QWidget& panel = mCutterWincontroller->window();
    panel.setWindowTitle("Cutter Setting");
    runModalForWindow(panel);
}

/// What is not known yet comes while the panel is open.
void CutterSession::showTrouble() {
    const auto facts = facts_.factsOf(filename_);
    mCutterWincontroller->setTrouble(facts ? troubleOf(*facts) : QString());
}

/// Likewise.
void CutterSession::showDirectCut() {
    if (mCutterWincontroller) {
        const auto& direct = direct_.stretch();
        mCutterWincontroller->setDirectCut(
            direct ? directSentence(*direct, told_.mStartValMs * 1000, told_.mEndValMs * 1000)
                   : QString());
    }
}

void CutterSession::closePanel() {
    if (mCutterWincontroller) {
        mCutterWincontroller->close();
    }
}

} // namespace velmora
