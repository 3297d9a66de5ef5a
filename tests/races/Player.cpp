#include "Player.h"

#include "MainWindow.h"
#include "ModalSession.h"

#include <QApplication>
#include <QFileDialog>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <numeric>
#include <utility>

namespace velmora::test {
namespace {

/// QT_LOGGING_RULES="velmora.races=true" shows every event.
Q_LOGGING_CATEGORY(events, "velmora.races", QtWarningMsg)

Actions actionsOfSession(const QString& window) {
    if (window == "ConverterFrom") {
        return progressActions();
    }
    if (window == "SettingFrom") {
        return editorActions();
    }
    return window.isEmpty() ? mainActions() : panelActions();
}

/// What can be done to the window in front.
Actions actionsInFront() {
    if (QApplication::activePopupWidget()) {
        return popUpActions();
    }
    const QWidget* const modal = QApplication::activeModalWidget();
    if (qobject_cast<const QMessageBox*>(modal)) {
        return messageActions();
    }
    if (qobject_cast<const QFileDialog*>(modal)) {
        return filePanelActions();
    }
    const QWidget* const session = modalWindow();
    return actionsOfSession(session ? session->objectName() : QString());
}

const Action& oneOf(Actions actions, Random& random) {
    int place = random.below(
        std::accumulate(actions.begin(), actions.end(), 0,
                        [](int sum, const Action& action) { return sum + action.weight; }));
    for (const Action& action : actions) {
        place -= action.weight;
        if (place < 0) {
            return action;
        }
    }
    return actions.back();
}

} // namespace

void Player::play(int events) {
    left_ = events;
    QTimer::singleShot(0, this, &Player::step);
    QApplication::exec();
}

/// The next step is due before this one acts: what is done may open a modal window, which needs
/// one. Where Qt only lets pending events through on its way, the step waits for the event under
/// way.
void Player::step() {
    const int level = QThread::currentThread()->loopLevel();
    QTimer::singleShot(std::exchange(round_.pauseMs, 0), this, &Player::step);
    if (level <= busyLevel_) {
        return;
    }
    depth_ = std::max(depth_, level);
    const int before = std::exchange(busyLevel_, level);
    act();
    busyLevel_ = before;
}

void Player::act() {
    if (left_ <= 0) {
        return quit();
    }
    --left_;
    perform(oneOf(actionsInFront(), round_.random));
}

void Player::perform(const Action& action) {
    qCDebug(events) << action.name;
    watchdog_.note(action.name);
    action.act(round_);
    watchdog_.note("between two events");
}

/// By the close box, which a modal window blocks, or as the desktop does when it shuts down.
void Player::quit() {
    watchdog_.note("quits");
    const bool isFree = !QApplication::activeModalWidget();
    if (++quits_ >= kMostQuits) {
        QCoreApplication::exit(1);
    } else if (isFree && round_.random.oneIn(3)) {
        quitFromTwoFiles();
    } else if (isFree && round_.random.oneIn(2)) {
        round_.controller.mainWin().close();
    } else {
        QCoreApplication::quit();
    }
}

/// The cutter loads two files until its window is closed.
void Player::quitFromTwoFiles() {
    constexpr int untilThenMs = 50;
    QTimer::singleShot(untilThenMs, &round_.controller.mainWin(), &QWidget::close);
    round_.controller.openFilePanelDidEnd({round_.files.video(), round_.files.video()}, 1);
}

} // namespace velmora::test
