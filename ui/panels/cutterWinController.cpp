#include "cutterWinController.h"

#include "ComboBox.h"
#include "CommonAction.h"
#include "ConverterInfo.h"
#include "ModalSession.h"
#include "OutputSettingsForm.h"
#include "PanelWindow.h"
#include "PathParts.h"
#include "PlatformLog.h"
#include "Saturated.h"
#include "SharedState.h"
#include "TimeText.h"
#include "ui_OutputSettingsForm.h"
#include "ui_cutterWinController.h"

#include <QLineEdit>

#include <optional>

namespace velmora {
namespace {

constexpr auto kSourceFrameRate = "same as original file";
constexpr std::int32_t kNoTime = -1;

} // namespace

cutterWinController::cutterWinController(QWidget* owner) : OutputSettingsPanel(owner) {
    QObject::connect(&forecast_, &CopyForecastReader::known, &forecast_, [this] {
        if (isLoaded()) {
            refreshExact();
        }
    });
}

std::int32_t cutterWinController::parseSpecificStringToMs(const QString& time) {
    const std::optional<std::int32_t> parsed = parsedMilliseconds(time);
    if (!parsed) {
        platformLog("err out");
    }
    return parsed.value_or(kNoTime);
}

std::int32_t cutterWinController::setStartAndEnd(const QString& start, const QString& end) {
    platformLog(QString("set str start:%1 end:%2").arg(start, end));
    NodeSetting& setting = *currentSetting;
    setting.cutStartTime = static_cast<float>(parseSpecificStringToMs(start));
    setting.cutEndTime = static_cast<float>(parseSpecificStringToMs(end));
    constexpr auto kNone = static_cast<float>(kNoTime);
    if (setting.cutStartTime == kNone) {
        return kNoTime;
    }
    const std::int32_t length = truncated(setting.cutEndTime - setting.cutStartTime);
    return length < 0 || setting.cutEndTime == kNone ? kNoTime : length;
}

void cutterWinController::setExactWindow(std::int64_t startMs, std::int64_t endMs) {
    startMs_ = startMs;
    endMs_ = endMs;
    if (isLoaded()) {
        refreshExact();
    }
}

void cutterWinController::setExactSource(const QString& path) {
    source_ = path;
}

QString cutterWinController::exactCopySentence() {
    if (!isExactCopy() || source_.isEmpty()) {
        return "Copies precisely the pictures between both times; only some around them are "
               "encoded again.";
    }
    forecast_.read(source_, {startMs_, endMs_}, "output." + mExtension);
    return forecast_.forecast() ? sentenceOf(*forecast_.forecast()) : "Looking at the video…";
}

void cutterWinController::setDirectCut(const QString& sentence) {
    directCut_ = sentence;
    if (directForm_ != nullptr) {
        directForm_->addToDirectHint(sentence);
    }
}

QString cutterWinController::exactSentence() const {
    return "Saves precisely the pictures between both times, at their own times.";
}

void cutterWinController::setCutterOutputFilename(const QString& name, const QString& extension) {
    setDefaultFilename(name);
    setDirectExtension(extension);
}

void cutterWinController::mButStartCut() {
    stopModal();
    logChoices();
    platformLog("test test:" + textAfterLastDot(profileText()));
    platformLog(QString("Output path:%1 exist:%2")
                    .arg(mOutputFilename,
                         QString::number(CommonAction::fileExist(mOutputFilename) ? 1 : 0)));
    if (folder().isEmpty()) {
        return showPlainAlert("Please click browse button to select output first!");
    }
    if (isExactCopy() && forecast_.forecast() && !forecast_.forecast()->refusal.empty()) {
        return showPlainAlert(sentenceOf(*forecast_.forecast()));
    }
    createConverter();
    ConverterInfo job = newJob(true);
    job.startMs = startMs_;
    job.endMs = endMs_;
    applyChoices(job);
    if (CommonAction::fileExist(mOutputFilename)) {
        return showPlainAlert("File already exists! please rename file name!");
    }
    closePanel();
    for (const auto& item : *cutterFileList) {
        item->startTime = currentSetting->cutStartTime;
        item->endTime = currentSetting->cutEndTime;
    }
    job.fullPath = mOutputFilename;
    showConverter(job);
}

OutputSettingsForm* cutterWinController::setupWindow(PanelWindow& window) {
    Ui::cutterWinController description;
    description.setupUi(&window);
    bindStart(*description.mButStartCut, [this] { mButStartCut(); });
    directForm_ = description.mForm;
    directForm_->addToDirectHint(directCut_);
    return directForm_;
}

void cutterWinController::addSourceFrameRate() {
    outlets().mFrameRate->insertItem(0, kSourceFrameRate);
    outlets().mFrameRate->setCurrentIndex(0);
    outlets().mFrameRate->lineEdit()->setCursorPosition(0); // shows the text from its beginning
}

bool cutterWinController::keepsSourceFrameRate() const {
    return selectedPosition(*outlets().mFrameRate) == 0;
}

QString cutterWinController::chosenFrameRate() const {
    return keepsSourceFrameRate() ? QString("0") : OutputSettingsPanel::chosenFrameRate();
}

void cutterWinController::selectFrameRate(const QString& rate, const QString& shownBefore) {
    // The editor cannot show that the source's rate is kept; what it showed instead was no choice.
    if (!keepsSourceFrameRate() || rate != shownBefore) {
        OutputSettingsPanel::selectFrameRate(rate, shownBefore);
    }
}

} // namespace velmora
