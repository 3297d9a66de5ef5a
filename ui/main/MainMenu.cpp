#include "MainMenu.h"

#include "CustomSlider.h"
#include "MainWindow.h"
#include "ui_MainWindow.h"

#include <QMessageBox>
#include <QShortcut>

namespace velmora {
namespace {

constexpr int kFarInSteps = 10;

void showAbout(QWidget& parent) {
    auto* const box = new QMessageBox(&parent); // NOLINT(cppcoreguidelines-owning-memory)
    box->setObjectName("aboutBox");
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle("About Velmora");
    box->setTextFormat(Qt::PlainText);
    box->setText("Velmora " VELMORA_VERSION);
    box->setInformativeText(
        "Cuts a stretch out of a video and joins videos into one.\n\n"
        "Free software under the GNU General Public License, version 3 or later.\n\n"
        "Third-party licences: FFmpeg and x264 (GPL), Qt and libplist (LGPL).");
    box->setIconPixmap(parent.windowIcon().pixmap(64));
    box->addButton(QMessageBox::Close);
    box->open();
}

} // namespace

MainMenu::MainMenu(MainWindow& window) : window_(window), ui_(window.outlets()) {
    addKeys();
    connectSteps();
    connectWindow();
    connect(ui_.curView, &QStackedWidget::currentChanged, this, &MainMenu::offerActions);
    offerActions();
}

void MainMenu::addKeys() {
    ui_.actionSetStart->setShortcuts({Qt::Key_I, Qt::Key_BracketLeft});
    ui_.actionSetEnd->setShortcuts({Qt::Key_O, Qt::Key_BracketRight});
    ui_.actionStartCut->setShortcuts({Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter});
    ui_.actionMerge->setShortcuts(ui_.actionStartCut->shortcuts());
    // A button keeps its space key: there it plays only while the bar has the focus.
    auto* const play = new QShortcut(Qt::Key_Space, ui_.mCustomSlider); // NOLINT: the bar's
    play->setContext(Qt::WidgetShortcut);
    connect(play, &QShortcut::activated, ui_.actionPlay, &QAction::trigger);
}

void MainMenu::connectSteps() {
    const auto stepBy = [this](QAction* action, int steps) {
        connect(action, &QAction::triggered, this, [&bar = *ui_.mCustomSlider, steps] {
            bar.moveByUser(bar.doubleValue() + steps * bar.step());
        });
    };
    stepBy(ui_.actionStepBack, -1);
    stepBy(ui_.actionStepForward, 1);
    stepBy(ui_.actionLeapBack, -kFarInSteps);
    stepBy(ui_.actionLeapForward, kFarInSteps);
}

void MainMenu::connectWindow() {
    const auto on = [this](QAction* action, auto&& handler) {
        connect(action, &QAction::triggered, this, handler);
    };
    on(ui_.actionVideoCutter, [this] { ui_.segmentVideoCutter->setChecked(true); });
    on(ui_.actionVideoJoiner, [this] { ui_.segmentVideoJoiner->setChecked(true); });
    on(ui_.actionQuit, [this] { window_.close(); });
    on(ui_.actionAbout, [this] { showAbout(window_); });
}

/// Keys of the workspace that is not on show do nothing either.
void MainMenu::offerActions() {
    const bool cutter = ui_.curView->currentWidget() == ui_.viewCutter;
    for (QAction* const action :
         {ui_.actionPlay,        ui_.actionStartCut,         ui_.actionSetStart,
          ui_.actionSetEnd,      ui_.actionStepBack,         ui_.actionStepForward,
          ui_.actionLeapBack,    ui_.actionLeapForward,      ui_.actionPreviousPicture,
          ui_.actionNextPicture, ui_.actionPreviousKeyFrame, ui_.actionNextKeyFrame,
          ui_.actionSecondBack,  ui_.actionSecondForward,    ui_.actionGoToStart,
          ui_.actionGoToEnd,     ui_.actionGoToPosition,     ui_.actionExactPreview,
          ui_.actionTimeline,    ui_.actionZoomIn,           ui_.actionZoomOut}) {
        action->setEnabled(cutter);
    }
    for (QAction* const action : {ui_.actionMerge, ui_.actionRemove}) {
        action->setEnabled(!cutter);
    }
    ui_.actionVideoCutter->setChecked(cutter);
    ui_.actionVideoJoiner->setChecked(!cutter);
    ui_.actionStartCut->setVisible(cutter);
    ui_.actionMerge->setVisible(!cutter);
}

} // namespace velmora
