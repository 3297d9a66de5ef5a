#include "joinerWinController.h"

#include "AlertPanel.h"
#include "CommonAction.h"
#include "ConverterInfo.h"
#include "ModalSession.h"
#include "OutputSettingsForm.h"
#include "PanelWindow.h"
#include "PlatformLog.h"
#include "SharedState.h"
#include "ui_joinerWinController.h"

#include <utility>

namespace velmora {

joinerWinController::joinerWinController(QWidget* owner) : OutputSettingsPanel(owner) {}

void joinerWinController::setFileCanJoinCB(CanJoin canJoin) {
    platformLog("setFileCanJoinCB");
    mHandler = std::move(canJoin);
}

void joinerWinController::setFileExtension(const QString& extension) {
    setDirectExtension(extension);
}

void joinerWinController::setJoinerOutputFilename(const QString& name) {
    setDefaultFilename(name);
}

bool joinerWinController::fileCanJoin() const {
    return mHandler && mHandler();
}

void joinerWinController::mButStartJoin() {
    stopModal();
    logChoices();
    ConverterInfo job = newJob(false);
    if (!fileCanJoin() && job.isDirectly == 1) {
        runAlertPanel("Error",
                      "No same-type files, can not use direct join, please use indirect join!",
                      "OK", {});
        return;
    }
    applyChoices(job);
    if (folder().isEmpty()) {
        return showPlainAlert("Please click browse button to select output first!");
    }
    job.fullPath = mOutputFilename;
    const bool exists = CommonAction::fileExist(mOutputFilename);
    platformLog(QString("Joiner Output path:%1 exist:%2")
                    .arg(mOutputFilename, QString::number(exists ? 1 : 0)));
    if (exists) {
        return showPlainAlert("File already exists! please rename file name!");
    }
    closePanel();
    createConverter();
    showConverter(job);
}

OutputSettingsForm* joinerWinController::setupWindow(PanelWindow& window) {
    Ui::joinerWinController description;
    description.setupUi(&window);
    bindStart(*description.mButStartJoin, [this] { mButStartJoin(); });
    return description.mForm;
}

QString joinerWinController::exactSentence() const {
    return "Every file keeps its own timing and proportions.";
}

QString joinerWinController::expectedExtension() const {
    // The callback gives the same, but only a start calls it.
    const bool several = joinerFileList && joinerFileList->size() >= 2;
    return several ? joinerFileList->rbegin()[1]->outFromat : mExtension;
}

} // namespace velmora
