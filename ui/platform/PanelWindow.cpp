#include "PanelWindow.h"

#include <QCloseEvent>

namespace velmora {

PanelWindow::PanelWindow(QWidget* owner) : QDialog(owner) {
    setAttribute(Qt::WA_QuitOnClose, false);
}

void PanelWindow::reject() {
    close();
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!windowShouldClose || windowShouldClose());
}

} // namespace velmora
