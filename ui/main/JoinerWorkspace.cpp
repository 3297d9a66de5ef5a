#include "AlertPanel.h"
#include "CommonAction.h"
#include "ConversionEngine.h"
#include "ConverterThread.h"
#include "JoinerTableModel.h"
#include "LeadingNumber.h"
#include "MainController.h"
#include "MainWindow.h"
#include "ModalSession.h"
#include "PathParts.h"
#include "PlatformLog.h"
#include "SharedState.h"
#include "TimeText.h"
#include "joinerWinController.h"
#include "ui_MainWindow.h"

namespace velmora {
namespace {

QString cellText(const NodeInfo& item, const QString& column) {
    if (column == "fileSource" || column == "inputFile")
        return item.inputFile;
    if (column == "videoFormat")
        return item.inFromat;
    if (column == "duration")
        return timeText(item.endTime);
    if (column == "videoSize")
        return QString::asprintf("%dx%d", item.width, item.height);
    if (column == "videoQuality")
        return QString::asprintf("%5.2ffps", static_cast<double>(item.frame_rate));
    if (column == "status" || column == "state")
        return stateText(item.converteState);
    if (column == "startTime")
        return CommonAction::timeFormatBySecond(truncated(item.startTime));
    if (column == "endTime")
        return CommonAction::timeFormatBySecond(truncated(item.endTime));
    if (column == "format")
        return currentSetting->profileName;
    return "";
}

bool areAlike(const NodeInfo& a, const NodeInfo& b) {
    if (a.inFromat == b.inFromat && a.resolution == b.resolution)
        return true;
    platformLog(QString("format:%1 Vs %2 resolution:%3 Vs %4")
                    .arg(a.inFromat, b.inFromat, a.resolution, b.resolution));
    return false;
}

} // namespace

// The table's data source.

int MainController::numberOfRowsInTableView() const {
    const std::size_t count = sharedFileList->size();
    platformLog(QString::asprintf("tableView xxxxx count:%ld", static_cast<long>(count)));
    return static_cast<int>(count);
}

QVariant MainController::tableViewObjectValueForTableColumn(const QString& identifier,
                                                            int row) const {
    if (row < 0 || static_cast<std::size_t>(row) >= sharedFileList->size())
        return {};
    return cellText(*(*sharedFileList)[static_cast<std::size_t>(row)], identifier);
}

unsigned MainController::tableViewValidateDrop() const {
    return ~0U;
}

bool MainController::tableViewAcceptDrop(const QStringList& files) {
    // Whether a file can be joined turns out when it is opened; its extension tells nothing.
    if (files.isEmpty())
        return false;
    platformLog("get path extension:" + files.front());
    joinerAddFile(files.front());
    reloadTable();
    return true;
}

/// The selected place stays selected, as long as there is a row.
void MainController::reloadTable() {
    const int row = ui_.tableView->selectedRow();
    tableModel_->reloadData();
    if (row >= 0 && row < tableModel_->rowCount())
        ui_.tableView->selectRow(row);
}

// Filling and thinning the list.

void MainController::addChosenFiles(const QStringList& files) {
    platformLog("view joiner");
    for (const QString& file : files) {
        platformLog("filePath:" + file);
        if (!joinerAddFile(file))
            break;
    }
    reloadTable();
}

bool MainController::joinerAddFile(const QString& path) {
    if (joinerFileList->size() >= ConversionEngine::kMaxInputs) {
        runAlertPanel("Error", "No more than 999 files can be joined!", "OK", {});
        return false;
    }
    const auto item = std::make_shared<NodeInfo>();
    item->inputFile = path;
    ConversionEngine& engine = ConversionEngine::instance();
    engine.probePath = path.toStdString();
    if (!acceptProbe(engine.probe()))
        return true;
    mJointerWincontroller->close();
    takeSource(*item);
    ConverterThread::copyProbeToSetting();
    item->startTime = 0;
    item->endTime = item->duration;
    item->converteState = Ready;
    item->inFromat = pathExtension(path);
    item->outFromat = item->inFromat;
    item->isSeleted = 1;
    joinerFileList->push_back(item);
    return true;
}

void MainController::fileDel() {
    const int row = ui_.tableView->selectedRow();
    if (row < 0 || static_cast<std::size_t>(row) >= sharedFileList->size())
        return;
    mJointerWincontroller->close();
    sharedFileList->erase(sharedFileList->begin() + row);
    reloadTable();
}

// Merging.

/// With fewer than two rows there is nothing to join and no extension to take.
bool MainController::fileCanJoin() {
    platformLog("fileCanJoin");
    const FileList& items = *sharedFileList;
    if (items.size() < 2)
        return false;
    bool result = true;
    for (std::size_t i = 0; i < items.size() - 1; ++i)
        result = areAlike(*items[i], *items[i + 1]) && result;
    mJointerWincontroller->setFileExtension(items[items.size() - 2]->outFromat);
    return result;
}

void MainController::button_joiner_addfile() {
    fileOpen();
}

void MainController::button_joiner_delfile() {
    fileDel();
}

void MainController::button_joiner_doit() {
    platformLog("Video Joiner");
    if (tableModel_->rowCount() < 2) {
        runAlertPanel("Error", "At leaset select two video files!", "OK", {});
        return;
    }
    mJointerWincontroller->setJoinerOutputFilename("join-all");
    QWidget& panel = mJointerWincontroller->window();
    panel.setWindowTitle("Joiner Setting");
    runModalForWindow(panel);
    ui_.tableView->viewport()->update(); // the run has changed the states of the rows
}

} // namespace velmora
