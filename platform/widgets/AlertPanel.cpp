#include "AlertPanel.h"

#include "ModalSession.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>

namespace velmora {
namespace {

/// On screen, and no list or tip that pops up over another window.
bool staysOnScreen(const QWindow& window) {
    return window.isVisible() && (window.type() == Qt::Window || window.type() == Qt::Dialog);
}

/// The nearest window on screen that this one belongs to, or itself; null if there is none.
QWindow* onScreen(QWindow* window) {
    while (window && !staysOnScreen(*window)) {
        window = window->transientParent();
    }
    return window;
}

/// The window that the user looks at. The one with the focus may be a file panel that is just
/// going away: then it is the one that the panel belongs to.
QWindow* windowInUse() {
    if (QWindow* const focused = onScreen(QGuiApplication::focusWindow())) {
        return focused;
    }
    if (const QWidget* const modal = modalWindow(); modal && modal->isVisible()) {
        return modal->windowHandle();
    }
    for (const QWidget* const window : QApplication::topLevelWidgets()) {
        QWindow* const handle = window->windowHandle();
        if (!window->parentWidget() && handle && staysOnScreen(*handle)) {
            return handle;
        }
    }
    return nullptr;
}

void prepare(QMessageBox& box, const QString& title, const QString& message) {
    box.setObjectName("alertPanel");
    box.setWindowModality(Qt::ApplicationModal);
    box.setWindowTitle(title.isEmpty() ? QGuiApplication::applicationDisplayName() : title);
    box.setTextFormat(Qt::PlainText);
    box.setText(message);
}

void showDetails(QWidget& above, const QString& details) {
    QDialog window(&above);
    window.setObjectName("detailsWindow");
    window.setWindowTitle("Details");
    window.resize(720, 420);
    auto* const text = new QPlainTextEdit(details, &window);
    text->setObjectName("details");
    text->setAccessibleName("Log of this run");
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, &window);
    QPushButton* const copy = buttons->addButton("&Copy", QDialogButtonBox::ActionRole);
    QObject::connect(copy, &QPushButton::clicked, &window,
                     [&details] { QGuiApplication::clipboard()->setText(details); });
    QObject::connect(buttons, &QDialogButtonBox::rejected, &window, &QDialog::reject);
    auto* const layout = new QVBoxLayout(&window);
    layout->addWidget(text);
    layout->addWidget(buttons);
    window.exec();
}

/// Keeps the box above the window in use, over whose middle the desktop then puts it. That window
/// may go away first, so it is no parent.
void placeOverWindowInUse(QMessageBox& box) {
    QWindow* const inUse = windowInUse();
    if (!inUse) {
        return;
    }
    box.winId(); // makes the window handle
    box.windowHandle()->setTransientParent(inUse);
}

} // namespace

int runAlertPanel(const QString& title, const QString& message, const QString& defaultButton,
                  const QString& alternateButton) {
    QMessageBox box;
    prepare(box, title, message);
    QPushButton* const accept = box.addButton(defaultButton, QMessageBox::AcceptRole);
    box.setDefaultButton(accept);
    if (alternateButton.isEmpty()) {
        box.setEscapeButton(accept);
    } else {
        box.setEscapeButton(box.addButton(alternateButton, QMessageBox::RejectRole));
    }
    placeOverWindowInUse(box);
    box.exec();
    return box.clickedButton() == accept ? AlertDefault : AlertAlternate;
}

void runAlertPanelWith(const AlertMore& more, const QString& message) {
    QMessageBox box;
    prepare(box, {}, message);
    box.setInformativeText(more.sentence);
    QPushButton* const accept = box.addButton("OK", QMessageBox::AcceptRole);
    box.setDefaultButton(accept);
    box.setEscapeButton(accept);
    if (!more.details.isEmpty()) {
        QPushButton* const details = box.addButton("&Details…", QMessageBox::ActionRole);
        details->disconnect(); // the box would close
        QObject::connect(details, &QPushButton::clicked, &box,
                         [&box, &more] { showDetails(box, more.details); });
    }
    placeOverWindowInUse(box);
    box.exec();
}

} // namespace velmora
