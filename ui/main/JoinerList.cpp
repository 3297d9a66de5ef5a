#include "JoinerList.h"

#include "AlertPanel.h"
#include "CommonAction.h"
#include "ConversionEngine.h"
#include "ConverterThread.h"
#include "JoinerTable.h"
#include "ModalSession.h"
#include "PathParts.h"
#include "PlatformLog.h"
#include "ProbedFile.h"
#include "Saturated.h"
#include "SharedState.h"
#include "SourceTrouble.h"
#include "TimeText.h"
#include "joinerWinController.h"

namespace velmora {
namespace {

QString cellText(const NodeInfo& item, const QString& column) {
    if (column == "fileSource" || column == "inputFile") {
        return item.inputFile;
    }
    if (column == "videoFormat") {
        return item.inFromat;
    }
    if (column == "duration") {
        return timeText(item.endTime);
    }
    if (column == "videoSize") {
        return QString::asprintf("%dx%d", item.width, item.height);
    }
    if (column == "videoQuality") {
        return QString::asprintf("%5.2ffps", static_cast<double>(item.frame_rate));
    }
    if (column == "status" || column == "state") {
        return stateText(item.converteState);
    }
    if (column == "startTime") {
        return CommonAction::timeFormatBySecond(truncated(item.startTime));
    }
    if (column == "endTime") {
        return CommonAction::timeFormatBySecond(truncated(item.endTime));
    }
    return column == "format" ? currentSetting->profileName : QString();
}

bool areAlike(const NodeInfo& a, const NodeInfo& b) {
    if (a.inFromat == b.inFromat && a.resolution == b.resolution) {
        return true;
    }
    platformLog(QString("format:%1 Vs %2 resolution:%3 Vs %4")
                    .arg(a.inFromat, b.inFromat, a.resolution, b.resolution));
    return false;
}

} // namespace

JoinerList::JoinerList(JoinerTable& table, QWidget& owner)
    : table_(table), owner_(owner), model_(*this) {
    table_.setModel(&model_);
    QObject::connect(&facts_, &SourceFactsReader::known, &facts_, [this] { showTrouble(); });
}

JoinerList::~JoinerList() = default;

void JoinerList::createPanel() {
    if (!mJointerWincontroller) {
        mJointerWincontroller = std::make_unique<joinerWinController>(&owner_);
        mJointerWincontroller->setFileCanJoinCB(this, &JoinerList::canJoin);
    }
}

void JoinerList::reload() {
    const int row = table_.selectedRow();
    model_.reloadData();
    if (row >= 0 && row < model_.rowCount()) {
        table_.selectRow(row);
    }
}

int JoinerList::rowCount() const {
    const std::size_t count = sharedFileList->size();
    platformLog(QString::asprintf("tableView xxxxx count:%ld", static_cast<long>(count)));
    return static_cast<int>(count);
}

QVariant JoinerList::cell(const QString& column, int row) const {
    if (row < 0 || static_cast<std::size_t>(row) >= sharedFileList->size()) {
        return {};
    }
    return cellText(*(*sharedFileList)[static_cast<std::size_t>(row)], column);
}

bool JoinerList::add(const QString& path) {
    if (joinerFileList->size() >= ConversionEngine::kMaxInputs) {
        runAlertPanel("Error", "No more than 999 files can be joined!", "OK", {});
        return false;
    }
    if (!acceptProbe(probeFile(path))) {
        return true;
    }
    closePanel();
    ConverterThread::copyProbeToSetting();
    const std::shared_ptr<NodeInfo> item = probedItem(path);
    item->inFromat = pathExtension(path);
    joinerFileList->push_back(item);
    facts_.read(path);
    return true;
}

void JoinerList::addChosenFiles(const QStringList& files) {
    platformLog("view joiner");
    for (const QString& file : files) {
        platformLog("filePath:" + file);
        if (!add(file)) {
            break;
        }
    }
    reload();
}

bool JoinerList::addDroppedFiles(const QStringList& files) {
    // Whether a file can be joined turns out when it is opened; its extension tells nothing.
    if (files.isEmpty()) {
        return false;
    }
    platformLog("get path extension:" + files.front());
    add(files.front());
    reload();
    return true;
}

void JoinerList::removeSelected() {
    const int row = table_.selectedRow();
    if (row < 0 || static_cast<std::size_t>(row) >= sharedFileList->size()) {
        return;
    }
    closePanel();
    sharedFileList->erase(sharedFileList->begin() + row);
    reload();
}

/// With fewer than two rows there is nothing to join and no extension to take.
bool JoinerList::canJoin() {
    platformLog("fileCanJoin");
    const FileList& items = *sharedFileList;
    if (items.size() < 2) {
        return false;
    }
    bool result = true;
    for (std::size_t i = 0; i < items.size() - 1; ++i) {
        result = areAlike(*items[i], *items[i + 1]) && result;
    }
    mJointerWincontroller->setFileExtension(items[items.size() - 2]->outFromat);
    return result;
}

void JoinerList::merge() {
    platformLog("Video Joiner");
    if (model_.rowCount() < 2) {
        runAlertPanel("Error", "At leaset select two video files!", "OK", {});
        return;
    }
    mJointerWincontroller->setJoinerOutputFilename("join-all");
    showTrouble();
    QWidget& panel = mJointerWincontroller->window();
    panel.setWindowTitle("Joiner Setting");
    runModalForWindow(panel);
    table_.viewport()->update(); // the run has changed the states of the rows
}

std::vector<SourceFacts> JoinerList::knownFacts() const {
    std::vector<SourceFacts> known;
    for (const auto& item : *sharedFileList) {
        if (const auto facts = facts_.factsOf(item->inputFile)) {
            known.push_back(*facts);
        }
    }
    return known;
}

void JoinerList::showTrouble() {
    if (mJointerWincontroller) {
        mJointerWincontroller->setTrouble(troubleOf(knownFacts()));
    }
}

void JoinerList::closePanel() {
    if (mJointerWincontroller) {
        mJointerWincontroller->close();
    }
}

} // namespace velmora
