#include "Action.h"
#include "CustomSlider.h"
#include "Desktop.h"
#include "JoinerTable.h"
#include "MainWindow.h"
#include "Screen.h"
#include "TimelineStrip.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include <array>

namespace velmora::test {
namespace {

template <class Widget> Widget& outlet(Round& round, const char* name) {
    return *round.controller.mainWin().findChild<Widget*>(name);
}

/// Places by their parts of the bar's width, some outside of it.
QPoint onBar(Round& round, const CustomSlider& bar) {
    return {bar.width() * (round.random.below(120) - 10) / 100, bar.height() / 2};
}

void dropOnPreview(Round& round) {
    dropFiles(outlet<QWidget>(round, "mCustomImage"), {round.files.any(round.random)});
}

void dropOnTable(Round& round) {
    auto& table = outlet<JoinerTable>(round, "tableView");
    if (table.isVisible()) {
        dropFiles(*table.viewport(), {round.files.any(round.random)});
    }
}

void scrubByMouse(Round& round) {
    auto& bar = outlet<CustomSlider>(round, "mCustomSlider");
    if (!bar.isVisible()) {
        return;
    }
    QTest::mousePress(&bar, Qt::LeftButton, {}, onBar(round, bar));
    for (int i = round.random.below(5); i > 0; --i) {
        const QPoint place = onBar(round, bar);
        QMouseEvent move(QEvent::MouseMove, place, bar.mapToGlobal(QPointF(place)), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(&bar, &move);
    }
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, onBar(round, bar));
}

void scrubByKeys(Round& round) {
    constexpr std::array keys{Qt::Key_Left,     Qt::Key_Right, Qt::Key_PageUp,
                              Qt::Key_PageDown, Qt::Key_Home,  Qt::Key_End};
    auto& bar = outlet<CustomSlider>(round, "mCustomSlider");
    if (bar.isVisible()) {
        QTest::keyClick(&bar, round.random.oneOf(keys));
    }
}

void useTimeline(Round& round) {
    constexpr std::array keys{Qt::Key_Left, Qt::Key_Right, Qt::Key_PageUp, Qt::Key_Home};
    auto& strip = outlet<TimelineStrip>(round, "mTimeline");
    const auto place = [&] { return QPoint(round.random.below(strip.width() + 20) - 10, 20); };
    if (!strip.isVisible()) {
        return;
    }
    QTest::mousePress(&strip, Qt::LeftButton, {}, place());
    for (int i = round.random.below(4); i > 0; --i) {
        QTest::mouseMove(&strip, place());
    }
    QTest::mouseRelease(&strip, Qt::LeftButton, {}, place());
    QTest::keyClick(&strip, round.random.oneOf(keys));
}

void zoomTimeline(Round& round) {
    auto& strip = outlet<TimelineStrip>(round, "mTimeline");
    const int notches = round.random.below(9) - 3;
    QWheelEvent turn(QPointF(9, 9), strip.mapToGlobal(QPointF(9, 9)), {}, {0, 120 * notches},
                     Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    if (strip.isVisible()) {
        QCoreApplication::sendEvent(&strip, &turn);
    }
}

void showTimeline(Round& round) {
    outlet<QAction>(round, "actionTimeline").trigger();
}

/// Some steps at once, as by a key that is held down.
void goByPictures(Round& round) {
    struct Move {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
    };
    const std::array moves{Move{Qt::Key_Comma, {}},
                           Move{Qt::Key_Period, {}},
                           Move{Qt::Key_Left, Qt::AltModifier},
                           Move{Qt::Key_Right, Qt::AltModifier},
                           Move{Qt::Key_Left, Qt::ShiftModifier},
                           Move{Qt::Key_Right, Qt::ShiftModifier},
                           Move{Qt::Key_I, Qt::ShiftModifier},
                           Move{Qt::Key_O, Qt::ShiftModifier}};
    const Move move = round.random.oneOf(moves);
    for (int i = round.random.below(6); i >= 0; --i) {
        pressKey(move.key, move.modifiers);
    }
}

void turnWheel(Round& round) {
    auto& over = outlet<QWidget>(round, round.random.oneIn(2) ? "mCustomImage" : "mCustomSlider");
    if (!over.isVisible()) {
        return;
    }
    const QPointF place = over.rect().center();
    QWheelEvent turn(place, over.mapToGlobal(place), {}, {0, 120 * (round.random.below(7) - 3)},
                     Qt::NoButton, round.random.oneIn(3) ? Qt::ShiftModifier : Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&over, &turn);
}

void typePosition(Round& round) {
    pressKey(Qt::Key_G, Qt::ControlModifier);
    typeInto("positionField", round.random.oneIn(3) ? "abc" : "00:00:01.240");
    pressKey(round.random.oneIn(4) ? Qt::Key_Escape : Qt::Key_Return);
}

void switchExactPreview(Round& round) {
    auto& exact = outlet<QAction>(round, "actionExactPreview");
    if (windowInUse() == &round.controller.mainWin()) {
        exact.trigger();
    }
}

void markStart(Round& /*round*/) {
    click("mButtonLeft");
}

void markEnd(Round& /*round*/) {
    click("mButtonRight");
}

void typeTime(Round& round) {
    static const QStringList times{"00:00:00.000",
                                   "00:00:01.000",
                                   "00:00:03.500",
                                   "00:00:02",
                                   "99:99:99.999",
                                   "abc",
                                   "",
                                   "-1"};
    typeInto(round.random.oneIn(2) ? "mLabelStart" : "mLabelEnd", round.random.oneOf(times));
}

void switchWorkspace(Round& round) {
    click(round.random.oneIn(2) ? "segmentVideoCutter" : "segmentVideoJoiner");
}

void add(Round& /*round*/) {
    click("mButtonCutterAdd");
    click("mButtonJoinerAdd");
}

void selectRows(Round& round) {
    constexpr std::array<Qt::KeyboardModifier, 3> modifiers{Qt::NoModifier, Qt::ControlModifier,
                                                            Qt::ShiftModifier};
    auto& table = outlet<JoinerTable>(round, "tableView");
    const int rows = table.model()->rowCount();
    if (!table.isVisible() || rows == 0) {
        return;
    }
    const QModelIndex cell = table.model()->index(round.random.below(rows), 0);
    QTest::mouseClick(table.viewport(), Qt::LeftButton, round.random.oneOf(modifiers),
                      table.visualRect(cell).center());
}

void removeRow(Round& round) {
    if (round.random.oneIn(2)) {
        return click("mButtonJoinerRemove");
    }
    QTest::keyClick(&outlet<JoinerTable>(round, "tableView"), Qt::Key_Delete);
}

void openPanel(Round& /*round*/) {
    click("mButtonCutterSetting");
    click("mButtonJoinerSetting");
}

void play(Round& /*round*/) {
    click("mButtonPlay");
}

void about(Round& round) {
    outlet<QAction>(round, "actionAbout").trigger();
}

void resize(Round& round) {
    round.controller.mainWin().resize(300 + round.random.below(900), 300 + round.random.below(600));
}

void clickPreview(Round& /*round*/) {
    click("mCustomImage");
}

void vanish(Round& round) {
    round.files.vanishOrReturn();
}

void anyKey(Round& round) {
    constexpr std::array plain{Qt::Key_Tab,   Qt::Key_Backtab, Qt::Key_Escape, Qt::Key_Return,
                               Qt::Key_Space, Qt::Key_I,       Qt::Key_O,      Qt::Key_Left,
                               Qt::Key_Down,  Qt::Key_5};
    constexpr std::array withControl{Qt::Key_Return, Qt::Key_1, Qt::Key_2, Qt::Key_O, Qt::Key_A};
    if (round.random.oneIn(4)) {
        pressKey(round.random.oneOf(withControl), Qt::ControlModifier);
    } else {
        pressKey(round.random.oneOf(plain));
    }
}

/// Clicks a button of any window; a blocked one must not take it.
void clickAnywhere(Round& round) {
    QList<QAbstractButton*> buttons;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (!qobject_cast<QFileDialog*>(window) && !qobject_cast<QMessageBox*>(window)) {
            buttons += window->findChildren<QAbstractButton*>();
        }
    }
    buttons.removeIf([](const QAbstractButton* button) {
        return !button->isVisible() || !button->window()->windowHandle() ||
               qobject_cast<QFileDialog*>(button->window()) != nullptr;
    });
    if (!buttons.isEmpty()) {
        clickOnScreen(*round.random.oneOf(buttons));
    }
}

void lookOn(Round& round) {
    round.pauseMs = round.random.below(40);
}

/// A refused start leaves its panel on screen, beside the main window.
void usePanelLeft(Round& round) {
    if (onScreen("mTextField1")) {
        round.random.oneOf(panelActions()).act(round);
    }
}

constexpr std::array kMain{
    Action{"drops a file on the preview", 6, dropOnPreview},
    Action{"drops a file on the table", 6, dropOnTable},
    Action{"adds by the file panel", 3, add},
    Action{"scrubs by mouse", 6, scrubByMouse},
    Action{"scrubs by keys", 6, scrubByKeys},
    Action{"uses the timeline", 4, useTimeline},
    Action{"zooms the timeline", 2, zoomTimeline},
    Action{"shows or hides the timeline", 1, showTimeline},
    Action{"goes by pictures", 8, goByPictures},
    Action{"turns the wheel", 4, turnWheel},
    Action{"types a position", 1, typePosition},
    Action{"switches the exact preview", 1, switchExactPreview},
    Action{"sets the start", 2, markStart},
    Action{"sets the end", 2, markEnd},
    Action{"types a time", 1, typeTime},
    Action{"switches the workspace", 4, switchWorkspace},
    Action{"selects rows", 2, selectRows},
    Action{"removes a row", 2, removeRow},
    Action{"opens a panel", 8, openPanel},
    Action{"plays", 1, play},
    Action{"asks what it is about", 1, about},
    Action{"resizes the window", 2, resize},
    Action{"clicks the preview", 1, clickPreview},
    Action{"takes a file away or puts it back", 1, vanish},
    Action{"presses a key", 6, anyKey},
    Action{"clicks anywhere", 4, clickAnywhere},
    Action{"uses a panel that was left on screen", 6, usePanelLeft},
    Action{"looks on", 2, lookOn},
};

} // namespace

Actions mainActions() {
    return kMain;
}

} // namespace velmora::test
