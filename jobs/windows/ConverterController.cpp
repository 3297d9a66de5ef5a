#include "ConverterController.h"

#include "AlertPanel.h"
#include "CommonAction.h"
#include "ConversionEngine.h"
#include "ConversionRun.h"
#include "ModalSession.h"
#include "ProgressWindow.h"
#include "ui_ConverterFrom.h"

#include <QFileInfo>

#include <algorithm>
#include <chrono>

namespace velmora {
namespace {

constexpr std::chrono::milliseconds kRefreshInterval(500);
// Before that, what is left is anybody's guess.
constexpr int kLeastPercentToForesee = 3;
constexpr qint64 kLeastMsToForesee = 3000;

ConversionEngine& engine() {
    return ConversionEngine::instance();
}

/// The state of an input as an item has it: pending is -1.
std::int32_t stateOf(std::int32_t index) {
    return static_cast<std::int8_t>(engine().fileStates[static_cast<std::size_t>(index)].load());
}

/// The inputs of which the engine has states.
std::int32_t inTable(std::int32_t count) {
    return std::min(count, static_cast<std::int32_t>(ConversionEngine::kMaxInputs));
}

QString clockText(qint64 ms) {
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
    waiting_.clear();
    if (run_ && !run_->hasEnded())
        run_->cancel();
}

void ConverterController::loadWindow() {
    if (winConverterController_)
        return;
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
    waiting_.push_back(std::make_unique<ConversionRun>(job));
    startNext();
    totleProgress_->setValue(0);
    singleProgress_->setValue(0);
    showStart();
    refreshTimer_->start();
    runModalForWindow(*winConverterController_);
}

/// Starts the run that has waited longest, if the engine is free.
void ConverterController::startNext() {
    if (waiting_.empty() || ConversionRun::inProgress() != nullptr)
        return;
    run_ = std::move(waiting_.front());
    waiting_.pop_front();
    sinceStart_.start();
    run_->start();
}

void ConverterController::refreshProgree() {
    loadWindow();
    if (!waiting_.empty())
        awaitTurn();
    else
        takeTurn();
}

/// The window stands for a run that has not started: of the one before, only the outcome matters.
void ConverterController::awaitTurn() {
    const bool endsNow = run_ && !run_->isSettled() && run_->hasEnded();
    auto outcome = Outcome::Failed;
    if (endsNow) {
        outcome = takeOutcome();
        run_.reset();
    }
    startNext();
    if (waiting_.empty())
        showStart();
    if (endsNow)
        tell(outcome);
}

void ConverterController::takeTurn() {
    // Read before the counters, which are final once it is true.
    const bool ended = run_ && run_->hasEnded();
    if (run_ && run_->isSettled()) { // cancelled, and another one may be using the counters
        refreshTimer_->stop();
        copyStates(engine().currentIndex);
        run_.reset();
        return;
    }
    if (!countersAreOurs()) {
        if (ended)
            endWith(Outcome::Failed);
        return;
    }
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
    if (overAll || ended) // it may end without going over all inputs
        endWith(takeOutcome());
    else
        takeResults();
}

/// Those of the run that is watched, else those on show.
FileList ConverterController::items() const {
    if (run_)
        return run_->items();
    return sharedFileList ? *sharedFileList : FileList();
}

/// Another run may have taken the counters over.
bool ConverterController::countersAreOurs() const {
    return !run_ || run_->isLatest();
}

void ConverterController::showStart() {
    const Ui::ConverterFrom& outlets = winConverterController_->outlets();
    ProgressWindow::show(*outlets.singleTxt, waiting_.empty()
                                                 ? QString("Starting…")
                                                 : QString("Waiting for the previous conversion…"));
    ProgressWindow::show(*outlets.totleTxt, " ");
    ProgressWindow::show(*outlets.timeTxt, " ");
}

void ConverterController::showItem() {
    const std::int32_t percent = engine().currentPercent;
    const std::int32_t index = engine().currentIndex;
    if (percent < 0 || index >= engine().jobCount)
        return;
    if (const auto item = CommonAction::entryAt(items(), index))
        ProgressWindow::show(
            *winConverterController_->outlets().singleTxt,
            QString("Current File Converting: %1 %2% has completed")
                .arg(QFileInfo(item->inputFile).fileName(), QString::number(percent)));
}

void ConverterController::showTotal() {
    const std::int32_t index = engine().currentIndex;
    const std::int32_t count = engine().jobCount;
    ProgressWindow::show(*winConverterController_->outlets().totleTxt,
                         QString("Total Progress: %1 Task Completed / Total %2 Task(s)")
                             .arg(QString::number(index), QString::number(count)));
    if (count > 0)
        totleProgress_->setValue(std::clamp(index * 100 / count, 0, 100));
    const std::int32_t percent = engine().currentPercent;
    if (percent >= 0 && percent <= 100)
        singleProgress_->setValue(percent);
}

void ConverterController::showTime() {
    if (!run_)
        return;
    const qint64 passedMs = sinceStart_.elapsed();
    const std::int32_t percent = engine().currentPercent; // of all inputs in a join
    const bool foreseeable = (run_->joins() || engine().jobCount == 1) &&
                             percent >= kLeastPercentToForesee && passedMs >= kLeastMsToForesee;
    QString text = clockText(passedMs) + " passed";
    if (foreseeable)
        text += ", about " + clockText(passedMs * (100 - percent) / percent) + " left";
    ProgressWindow::show(*winConverterController_->outlets().timeTxt, text);
}

void ConverterController::takeResults() {
    const FileList all = items();
    for (std::int32_t i = 0; i < inTable(engine().currentIndex); ++i) {
        if (const auto item = CommonAction::entryAt(all, i)) {
            item->converteState = stateOf(i);
            item->isSeleted = 0;
        }
    }
}

void ConverterController::copyStates(std::int32_t count) {
    if (!countersAreOurs())
        return;
    const FileList all = items();
    for (std::int32_t i = 0; i < inTable(count); ++i) {
        if (const auto item = CommonAction::entryAt(all, i))
            item->converteState = stateOf(i);
    }
}

/// Takes the results of a run that has ended. How it went is told by its first item only.
ConverterController::Outcome ConverterController::takeOutcome() {
    if (!countersAreOurs())
        return Outcome::Failed;
    takeResults();
    copyStates(engine().jobCount); // of inputs that were not reached, too
    return isOverAllInputs() && stateOf(0) == ConversionEngine::Done ? Outcome::Completed
                                                                     : Outcome::Failed;
}

bool ConverterController::isOverAllInputs() {
    return engine().currentIndex > 0 && engine().currentIndex == engine().jobCount;
}

void ConverterController::endWith(Outcome outcome) {
    refreshTimer_->stop();
    performClose();
    stopOwnSession();
    run_.reset();
    tell(outcome);
    // The counters do not say again that the run has ended. While the message was on screen, a run
    // that had waited may have begun; then they are its own.
    if (ConversionRun::inProgress() == nullptr)
        engine().jobCount += 1;
}

void ConverterController::tell(Outcome outcome) {
    runAlertPanel("",
                  outcome == Outcome::Completed ? "Congratulations! file has completed!"
                                                : "File failed! please use re-encoding mode",
                  "OK", "");
}

bool ConverterController::windowShouldClose() {
    if (waiting_.empty())
        copyStates(engine().currentIndex);
    stopOwnSession();
    return true;
}

void ConverterController::closeFrom() {
    loadWindow();
    if (!waiting_.empty()) {
        waiting_.pop_back(); // the run before is not asked to stop
        if (!run_ || run_->isSettled())
            refreshTimer_->stop();
    } else if (run_ && !run_->isSettled()) {
        run_->cancel();
    } else {
        engine().stopRequested = 1;
    }
    winConverterController_->hide();
    stopOwnSession();
}

/// Closes the window as its close box does.
void ConverterController::performClose() {
    if (winConverterController_->isVisible())
        winConverterController_->close();
    else
        windowShouldClose();
}

/// Another window's session may be the innermost one when a run ends behind a closed window.
void ConverterController::stopOwnSession() {
    if (modalWindow() == winConverterController_.get())
        stopModal();
}

} // namespace velmora
