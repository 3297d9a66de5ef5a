#include "PictureMoves.h"

#include "CustomSlider.h"
#include "CutterSession.h"
#include "ExactPreview.h"
#include "MainWindow.h"
#include "PositionField.h"
#include "PreviewStage.h"
#include "customImageView.h"
#include "ui_MainWindow.h"

#include <QWheelEvent>

namespace velmora {
namespace {

constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;

} // namespace

PictureMoves::PictureMoves(MainWindow& window, CutterSession& session, ExactPreview& preview)
    : window_(window), session_(session), preview_(preview),
      field_(*new PositionField(*window.outlets().mLabelDrag)) { // NOLINT: the window's
    addKeys();
    connectActions();
    addToolTips();
    const Ui::MainWindow& ui = window.outlets();
    for (QWidget* const widget :
         {static_cast<QWidget*>(ui.previewStage), static_cast<QWidget*>(ui.mCustomImage),
          static_cast<QWidget*>(ui.mCustomSlider)}) {
        widget->installEventFilter(this);
    }
}

void PictureMoves::addKeys() {
    const Ui::MainWindow& ui = window_.outlets();
    ui.actionPreviousPicture->setShortcut(Qt::Key_Comma);
    ui.actionNextPicture->setShortcut(Qt::Key_Period);
    ui.actionPreviousKeyFrame->setShortcut(Qt::ALT | Qt::Key_Left);
    ui.actionNextKeyFrame->setShortcut(Qt::ALT | Qt::Key_Right);
    ui.actionSecondBack->setShortcut(Qt::SHIFT | Qt::Key_Left);
    ui.actionSecondForward->setShortcut(Qt::SHIFT | Qt::Key_Right);
    ui.actionGoToStart->setShortcut(Qt::SHIFT | Qt::Key_I);
    ui.actionGoToEnd->setShortcut(Qt::SHIFT | Qt::Key_O);
    ui.actionGoToPosition->setShortcuts({Qt::CTRL | Qt::Key_G, Qt::Key_G});
}

void PictureMoves::connectActions() {
    const Ui::MainWindow& ui = window_.outlets();
    const auto on = [this](QAction* action, auto&& handler) {
        connect(action, &QAction::triggered, this, handler);
    };
    on(ui.actionPreviousPicture, [this] { preview_.stepPictures(-1); });
    on(ui.actionNextPicture, [this] { preview_.stepPictures(1); });
    on(ui.actionPreviousKeyFrame, [this] { preview_.stepKeyFrames(-1); });
    on(ui.actionNextKeyFrame, [this] { preview_.stepKeyFrames(1); });
    on(ui.actionSecondBack, [this] { preview_.stepSeconds(-1); });
    on(ui.actionSecondForward, [this] { preview_.stepSeconds(1); });
    on(ui.actionGoToStart, [this] { session_.goToStart(); });
    on(ui.actionGoToEnd, [this] { session_.goToEnd(); });
    on(ui.actionGoToPosition, [this] { openField(); });
    connect(ui.actionExactPreview, &QAction::toggled, &preview_, &ExactPreview::setShown);
    connect(&field_, &PositionField::chosen, this, [this](qint64 ms) { session_.goTo(ms * 1000); });
}

void PictureMoves::addToolTips() {
    window_.outlets().mCustomSlider->setToolTip(
        "The wheel moves by pictures, with Shift by seconds.\n"
        "Keys: , and . for the next picture, Alt+← and Alt+→ for the next key frame,\n"
        "Shift+← and Shift+→ for a second, Shift+I and Shift+O to the points");
    window_.outlets().mLabelDrag->setToolTip("Press G to type a position");
}

void PictureMoves::openField() {
    if (session_.isLoaded()) {
        field_.open(window_.outlets().mLabelDrag->text().section('/', 0, 0));
    }
}

/// With Control, the wheel is not for moving.
bool PictureMoves::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel || !session_.isLoaded()) {
        return QObject::eventFilter(watched, event);
    }
    const auto& wheel = static_cast<QWheelEvent&>(*event);
    if (wheel.modifiers().testFlag(Qt::ControlModifier)) {
        return QObject::eventFilter(watched, event);
    }
    turnWheel(wheel.angleDelta().y(), wheel.modifiers().testFlag(Qt::ShiftModifier));
    event->accept();
    return true;
}

/// Towards the user is on, as in a text.
void PictureMoves::turnWheel(int angle, bool bySeconds) {
    angle_ += angle;
    const int notches = angle_ / kNotch;
    angle_ -= notches * kNotch;
    if (notches == 0) {
        return;
    }
    if (bySeconds) {
        preview_.stepSeconds(-notches);
    } else {
        preview_.stepPictures(-notches);
    }
}

} // namespace velmora
