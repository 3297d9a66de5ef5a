#include "PanelWindow.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QWindow>

namespace velmora {

PanelWindow::PanelWindow(QWidget* owner) : QDialog(owner) {
    setAttribute(Qt::WA_QuitOnClose, false);
}

void PanelWindow::reject() {
    close();
}

/// QDialog puts a window over its owner's middle each time it opens, also one that the user has
/// moved; and one with a frame lower by its title than the first time.
void PanelWindow::setVisible(bool visible) {
    if (isVisible() && !visible) {
        place_ = windowHandle()->framePosition();
    } else if (!isVisible() && visible && place_) {
        returnToPlace();
    }
    QDialog::setVisible(visible);
}

/// A window that has been on screen may take the place for that of its contents, depending on when
/// it has heard of its frame; a new one takes it for that of its frame.
void PanelWindow::returnToPlace() {
    destroy();
    if (QGuiApplication::screenAt(*place_ + QPoint(width() / 2, 0))) {
        move(*place_);
    } else { // the screen has gone, so QDialog is to find a place
        setAttribute(Qt::WA_Moved, false);
    }
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!windowShouldClose || windowShouldClose());
}

} // namespace velmora
