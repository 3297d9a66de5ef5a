#include "AlertPanel.h"
#include "ConverterController.h"
#include "ConverterInfo.h"
#include "LeadingNumber.h"
#include "OutputSettingsForm.h"
#include "OutputSettingsPanel.h"
#include "PanelWindow.h"
#include "PathParts.h"
#include "PlatformLog.h"
#include "SharedState.h"
#include "ui_OutputSettingsForm.h"

// The parts of a start that both panels share.

namespace velmora {

void OutputSettingsPanel::parseResolution(const QString& resolution) {
    const QStringList parts = resolution.split('x');
    currentSetting->width = leadingInteger(parts.value(0));
    currentSetting->height = leadingInteger(parts.value(1));
}

QString OutputSettingsPanel::getExtension(const QString& profileName) {
    return textAfterLastDot(profileName).section(')', 0, 0);
}

QString OutputSettingsPanel::composedPath(const QString& extension) const {
    return QString("%1/%2.%3").arg(folder(), outlets().mTextField2->text(), extension);
}

void OutputSettingsPanel::logChoices() const {
    if (selectedRow() != kReencodeRow) {
        return;
    }
    const auto& form = outlets();
    platformLog(QString("\nFormat:%1\nVideo Quality:%2\nVideo Size:%3\nFrame Rate:%4\n"
                        "Audio Quality:%5\nSample Rate:%6")
                    .arg(profileText(), form.mVideoQuality->currentText(),
                         form.mVideoSize->currentText(), form.mFrameRate->currentText(),
                         form.mAudioQuality->currentText(), form.mSampleRate->currentText()));
}

ConverterInfo OutputSettingsPanel::newJob(bool isCutter) const {
    ConverterInfo job;
    job.isCutter = isCutter ? 1 : 0;
    job.isDirectly = selectedRow() == 0 ? 1 : 0;
    job.exact = form_->isExact();
    return job;
}

void OutputSettingsPanel::applyChoices(ConverterInfo& job) {
    if (job.isDirectly == 1) {
        mOutputFilename = composedPath(mExtension);
        return;
    }
    mOutputFilename = composedPath(getExtension(profileText()));
    getSetInfo();
    parseResolution(currentSetting->vResolution);
    job.width = currentSetting->width;
    job.height = currentSetting->height;
}

void OutputSettingsPanel::showPlainAlert(const QString& message) {
    runAlertPanel({}, message, "OK", "");
}

void OutputSettingsPanel::closePanel() {
    window_->hide();
}

void OutputSettingsPanel::createConverter() {
    if (!converterController) {
        converterController = std::make_unique<ConverterController>(owner_);
    }
}

void OutputSettingsPanel::showConverter(const ConverterInfo& job) {
    converterController->showConverterFrom(job);
}

} // namespace velmora
