// What buttons and menus of the main window are connected to.

#include "CustomSlider.h"
#include "JoinerTable.h"
#include "MainController.h"
#include "MainWindow.h"
#include "ui_MainWindow.h"

#include <QMessageBox>
#include <QShortcut>

namespace velmora {
namespace {

constexpr int farInSteps = 10;

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

void MainController::connectActions() {
    const auto on = [this](QPushButton* button, auto action) {
        connect(button, &QPushButton::clicked, this, action);
    };
    on(ui_.mButtonCutterAdd, &MainController::button_cutter_addfile);
    on(ui_.mButtonPlay, &MainController::button_play);
    on(ui_.mButtonLeft, &MainController::button_left_anchor);
    on(ui_.mButtonRight, &MainController::button_right_anchor);
    on(ui_.mButtonCutterSetting, &MainController::button_cutter_doit);
    on(ui_.mButtonSetImage, &MainController::button_load_image);
    on(ui_.mButtonJoinerAdd, &MainController::button_joiner_addfile);
    on(ui_.mButtonJoinerRemove, &MainController::button_joiner_delfile);
    on(ui_.mButtonJoinerSetting, &MainController::button_joiner_doit);
    for (QPushButton* const segment : {ui_.segmentVideoCutter, ui_.segmentVideoJoiner}) {
        connect(segment, &QPushButton::toggled, this, [this](bool checked) {
            if (checked)
                button_segSelected();
        });
    }
    connect(ui_.mCustomSlider, &CustomSlider::sliderDragged, this,
            [this] { slider_drag(*ui_.mCustomSlider); });
    ui_.tableView->setDropHandlers(
        [this] { return tableViewValidateDrop(); },
        [this](const QStringList& files) { return tableViewAcceptDrop(files); });
    connect(ui_.tableView, &JoinerTable::deletePressed, this,
            &MainController::button_joiner_delfile);
    connect(ui_.mTextFieldHowTo, &QLabel::linkActivated, this, &MainController::showHelp);
    // A run that went on by itself may have changed the states of the rows.
    connect(mainWin_.get(), &MainWindow::activated, ui_.tableView->viewport(),
            qOverload<>(&QWidget::update));
}

void MainController::connectMenu() {
    const auto on = [this](QAction* action, auto&& handler) {
        connect(action, &QAction::triggered, this, handler);
    };
    const auto step = [this](int steps) {
        CustomSlider& bar = *ui_.mCustomSlider;
        bar.moveByUser(bar.doubleValue() + steps * bar.step());
    };
    on(ui_.actionOpen, &MainController::fileOpen);
    on(ui_.actionPlay, &MainController::button_play);
    on(ui_.actionStartCut, &MainController::button_cutter_doit);
    on(ui_.actionMerge, &MainController::button_joiner_doit);
    on(ui_.actionQuit, [this] { mainWin_->close(); });
    on(ui_.actionSetStart, &MainController::button_left_anchor);
    on(ui_.actionSetEnd, &MainController::button_right_anchor);
    on(ui_.actionStepBack, [step] { step(-1); });
    on(ui_.actionStepForward, [step] { step(1); });
    on(ui_.actionLeapBack, [step] { step(-farInSteps); });
    on(ui_.actionLeapForward, [step] { step(farInSteps); });
    on(ui_.actionRemove, &MainController::button_joiner_delfile);
    on(ui_.actionVideoCutter, [this] { ui_.segmentVideoCutter->setChecked(true); });
    on(ui_.actionVideoJoiner, [this] { ui_.segmentVideoJoiner->setChecked(true); });
    on(ui_.actionHelp, &MainController::showHelp);
    on(ui_.actionAbout, [this] { showAbout(*mainWin_); });
    ui_.actionSetStart->setShortcuts({Qt::Key_I, Qt::Key_BracketLeft});
    ui_.actionSetEnd->setShortcuts({Qt::Key_O, Qt::Key_BracketRight});
    ui_.actionStartCut->setShortcuts({Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter});
    ui_.actionMerge->setShortcuts(ui_.actionStartCut->shortcuts());
    // A button keeps its space key: there it plays only while the bar has the focus.
    auto* const play = new QShortcut(Qt::Key_Space, ui_.mCustomSlider); // NOLINT: the bar's
    play->setContext(Qt::WidgetShortcut);
    connect(play, &QShortcut::activated, this, &MainController::button_play);
    connect(ui_.curView, &QStackedWidget::currentChanged, this, &MainController::offerActions);
    offerActions();
}

/// Menus offer what the workspace on show can do, so keys of the other one do nothing either.
void MainController::offerActions() {
    const bool cutter = ui_.curView->currentWidget() == ui_.viewCutter;
    for (QAction* const action : {ui_.actionPlay, ui_.actionStartCut, ui_.actionSetStart,
                                  ui_.actionSetEnd, ui_.actionStepBack, ui_.actionStepForward,
                                  ui_.actionLeapBack, ui_.actionLeapForward, ui_.actionVideoCutter})
        action->setEnabled(cutter);
    for (QAction* const action : {ui_.actionMerge, ui_.actionRemove})
        action->setEnabled(!cutter);
    for (QAction* const action : {ui_.actionVideoCutter, ui_.actionVideoJoiner})
        action->setEnabled(true);
    ui_.actionVideoCutter->setChecked(cutter);
    ui_.actionVideoJoiner->setChecked(!cutter);
    ui_.actionStartCut->setVisible(cutter);
    ui_.actionMerge->setVisible(!cutter);
}

void MainController::showHelp() const {
    help_.open();
}

} // namespace velmora
