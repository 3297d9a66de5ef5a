#include "ConverterController.h"

#include "CommonAction.h"
#include "ConversionEngine.h"
#include "FailureText.h"
#include "ModalSession.h"
#include "ProgressWindow.h"
#include "RunLog.h"
#include "RunQueue.h"
#include "ui_ConverterFrom.h"

#include <QFileInfo>

#include <algorithm>
#include <chrono>

namespace velmora {
namespace {

constexpr std::chrono::milliseconds kRefreshInterval(500);
// Before that, what is left is anybody's guess.
constexpr int kLeastPercentToForesee = 3;
constexpr std::int64_t kLeastMsToForesee = 3000;

ConversionEngine& engine() {
    return ConversionEngine::instance();
}

RunQueue& queue() {
    return RunQueue::instance();
}

QString clockText(std::int64_t ms) {
    return CommonAction::timeFormatBySecond(static_cast<std::int32_t>(ms / 1000));
}

} // namespace

ConverterController::ConverterController(QWidget* owner)
    : owner_(owner), refreshTimer_(new QTimer(this)) {
    refreshTimer_->setObjectName("refreshTimer");
    refreshTimer_->setInterval(kRefreshInterval);
    connect(refreshTimer_, &QTimer::timeout, this, &ConverterController::refreshProgree);
}

ConverterController::~ConverterController() {
    queue().removeAll(this);
}

void ConverterController::loadWindow() {
    if (winConverterController_) {
        return;
    }
    winConverterController_ = std::make_unique<ProgressWindow>(owner_);
    winConverterController_->windowShouldClose = [this] { return windowShouldClose(); };
    const Ui::ConverterFrom& outlets = winConverterController_->outlets();
    connect(outlets.btCancel, &QPushButton::clicked, this, &ConverterController::closeFrom);
    singleProgress_ = outlets.singleProgress;
    totleProgress_ = outlets.totleProgress;
}

void ConverterController::showConverterFrom(const ConverterInfo& job) {
    loadWindow();
    iConverted_ = 0;
    queue().add(this, job);
    queue().startNext(this);
    totleProgress_->setValue(0);
    singleProgress_->setValue(0);
    showStart();
    refreshTimer_->start();
    runModalForWindow(*winConverterController_);
}

void ConverterController::refreshProgree() {
    loadWindow();
    if (queue().hasWaiting(this)) {
        awaitTurn();
    } else {
        followRun();
    }
}

/// The window stands for a run that has not started: of the one before, only the outcome matters.
void ConverterController::awaitTurn() {
    const ConversionRun* const before = queue().current(this);
    const bool endsNow = before != nullptr && before->hasOutcome();
    auto outcome = RunOutcome::Failed;
    AlertMore more;
    if (endsNow) {
        outcome = collectOutcomeOf(before);
        more = toTellOf(before);
        queue().removeCurrent(this);
    }
    queue().startNext(this);
    if (!queue().hasWaiting(this)) {
        showStart();
    }
    if (endsNow) {
        tell(outcome, more);
    }
}

void ConverterController::followRun() {
    const ConversionRun* const run = queue().current(this);
    // Read before the counters, which are final once it is true.
    const bool ended = run != nullptr && run->hasOutcome();
    if (run != nullptr && run->state() == ConversionRun::State::Settled) {
        refreshTimer_->stop();
        copyStatesSoFar();
        queue().removeCurrent(this);
        return;
    }
    if (countersAreOf(run)) {
        showRun(ended);
    } else if (ended) {
        endWith(RunOutcome::Failed);
    }
}

void ConverterController::showRun(bool ended) {
    showItem();
    showTotal();
    showTime();
    if (engine().stopRequested != 0) {
        refreshTimer_->stop();
        performClose();
        return;
    }
    const bool overAll = isOverAllInputs();
    if (overAll) {
        totleProgress_->setValue(100);
        singleProgress_->setValue(100);
    }
    // It may end without going over all inputs; and when it has, it looks at what it has written.
    if (ended || (overAll && queue().current(this) == nullptr)) {
        endWith(collectOutcome(items()));
    } else {
        copyResults(items());
    }
}

/// Those of the current run, else those on show.
FileList ConverterController::items() const {
    if (const ConversionRun* const run = queue().current(this)) {
        return run->items();
    }
    return sharedFileList ? *sharedFileList : FileList();
}

/// Another run may have taken the counters over. Without a run, they are looked at as they are.
bool ConverterController::countersAreOf(const ConversionRun* run) {
    return run == nullptr || queue().countersAreOf(*run);
}

void ConverterController::showStart() {
    const Ui::ConverterFrom& outlets = winConverterController_->outlets();
    const bool waits = queue().hasWaiting(this);
    ProgressWindow::show(*outlets.singleTxt, waits ? QString("Waiting for the previous conversion…")
                                                   : QString("Starting…"));
    ProgressWindow::show(*outlets.totleTxt, " ");
    ProgressWindow::show(*outlets.timeTxt, " ");
}

void ConverterController::showItem() {
    const std::int32_t percent = engine().currentPercent;
    const std::int32_t index = engine().currentIndex;
    if (percent < 0 || index >= engine().jobCount) {
        return;
    }
    if (const auto item = CommonAction::entryAt(items(), index)) {
        ProgressWindow::show(
            *winConverterController_->outlets().singleTxt,
            QString("Current File Converting: %1 %2% has completed")
                .arg(QFileInfo(item->inputFile).fileName(), QString::number(percent)));
    }
}

void ConverterController::showTotal() {
    const std::int32_t index = engine().currentIndex;
    const std::int32_t count = engine().jobCount;
    ProgressWindow::show(*winConverterController_->outlets().totleTxt,
                         QString("Total Progress: %1 Task Completed / Total %2 Task(s)")
                             .arg(QString::number(index), QString::number(count)));
    if (count > 0) {
        totleProgress_->setValue(std::clamp(index * 100 / count, 0, 100));
    }
    singleProgress_->setValue(engine().currentPercent); // the bar leaves what is none alone
}

void ConverterController::showTime() {
    const ConversionRun* const run = queue().current(this);
    if (run == nullptr) {
        return;
    }
    const std::int64_t passedMs = run->passedMs();
    const std::int32_t percent = engine().currentPercent; // of all inputs in a join
    const bool foreseeable = (run->joins() || engine().jobCount == 1) &&
                             percent >= kLeastPercentToForesee && passedMs >= kLeastMsToForesee;
    QString text = clockText(passedMs) + " passed";
    if (foreseeable) {
        text += ", about " + clockText(passedMs * (100 - percent) / percent) + " left";
    }
    ProgressWindow::show(*winConverterController_->outlets().timeTxt, text);
}

void ConverterController::copyStatesSoFar() {
    if (countersAreOf(queue().current(this))) {
        copyStates(items(), engine().currentIndex);
    }
}

RunOutcome ConverterController::collectOutcomeOf(const ConversionRun* run) {
    return countersAreOf(run) ? collectOutcome(run->items()) : RunOutcome::Failed;
}

void ConverterController::endWith(RunOutcome outcome) {
    refreshTimer_->stop();
    performClose();
    stopOwnSession();
    const AlertMore more = toTellOf(queue().current(this));
    queue().removeCurrent(this);
    tell(outcome, more);
    // The counters do not say again that the run has ended. While the message was on screen, a run
    // that had waited may have begun; then they are its own.
    if (!queue().isBusy()) {
        engine().jobCount += 1;
    }
}

/// Nothing of a run that has not reached the engine.
AlertMore ConverterController::toTellOf(const ConversionRun* run) {
    if (run == nullptr || !countersAreOf(run)) {
        return {};
    }
    const RunReport& report = run->report();
    const QString finding = QString::fromStdString(report.finding);
    return {finding.isEmpty() ? sentenceOf(report.cause) : finding, RunLog::instance().text()};
}

/// A run that went well and has left nothing to say needs no details.
void ConverterController::tell(RunOutcome outcome, const AlertMore& more) {
    const bool completed = outcome == RunOutcome::Completed;
    const QString message = completed ? "Congratulations! file has completed!"
                                      : "File failed! please use re-encoding mode";
    if (more.details.isEmpty() || (completed && more.sentence.isEmpty())) {
        runAlertPanel("", message, "OK", "");
    } else {
        runAlertPanelWith(more, message);
    }
}

bool ConverterController::windowShouldClose() {
    if (!queue().hasWaiting(this)) {
        copyStatesSoFar();
    }
    stopOwnSession();
    return true;
}

void ConverterController::closeFrom() {
    loadWindow();
    const ConversionRun* const run = queue().current(this);
    const bool goesOn = run != nullptr && run->state() != ConversionRun::State::Settled;
    if (queue().hasWaiting(this)) {
        queue().cancelWaiting(this); // the run before is not asked to stop
        if (!goesOn && !queue().hasWaiting(this)) {
            refreshTimer_->stop();
        }
    } else if (goesOn) {
        queue().cancelCurrent(this);
    } else {
        engine().stopRequested = 1;
    }
    winConverterController_->hide();
    stopOwnSession();
}

/// Closes the window as its close box does.
void ConverterController::performClose() {
    if (winConverterController_->isVisible()) {
        winConverterController_->close();
    } else {
        windowShouldClose();
    }
}

/// Another window's session may be the innermost one when a run ends behind a closed window.
void ConverterController::stopOwnSession() {
    if (modalWindow() == winConverterController_.get()) {
        stopModal();
    }
}

} // namespace velmora
