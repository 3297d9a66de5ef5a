#include "PanelWindow.h"

#include <QCloseEvent>
#include <QGuiApplication>

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
    if (isVisible() && !visible)
        place_ = pos();
    else if (!isVisible() && visible && place_)
        returnToPlace();
    QDialog::setVisible(visible);
}

/// Screens come and go: where the title could not be reached, QDialog is to find a place.
void PanelWindow::returnToPlace() {
    if (QGuiApplication::screenAt(*place_ + QPoint(width() / 2, 0)))
        move(*place_);
    else
        setAttribute(Qt::WA_Moved, false);
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!windowShouldClose || windowShouldClose());
}

} // namespace velmora
