#include "AlertPanel.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QWindow>

namespace velmora {
namespace {

/// Keeps the box above the window in use. That window may go away first, so it is no parent.
void placeOverActiveWindow(QMessageBox& box) {
    QWindow* const inUse = QGuiApplication::focusWindow();
    box.winId(); // makes the window handle
    box.windowHandle()->setTransientParent(inUse);
}

} // namespace

int runAlertPanel(const QString& title, const QString& message, const QString& defaultButton,
                  const QString& alternateButton) {
    QMessageBox box;
    box.setObjectName("alertPanel");
    box.setWindowModality(Qt::ApplicationModal);
    box.setWindowTitle(title.isEmpty() ? QGuiApplication::applicationDisplayName() : title);
    box.setTextFormat(Qt::PlainText);
    box.setText(message);
    QPushButton* const accept = box.addButton(defaultButton, QMessageBox::AcceptRole);
    box.setDefaultButton(accept);
    if (alternateButton.isEmpty())
        box.setEscapeButton(accept);
    else
        box.setEscapeButton(box.addButton(alternateButton, QMessageBox::RejectRole));
    placeOverActiveWindow(box);
    box.exec();
    return box.clickedButton() == accept ? AlertDefault : AlertAlternate;
}

} // namespace velmora
