#include "ClosingOnly.h"

#include <QAction>
#include <QApplication>
#include <QEvent>

namespace velmora {
namespace {

bool isInput(QEvent::Type type) {
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::DragEnter:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

} // namespace

ClosingOnly::ClosingOnly(const QAction& quit) : quit_(quit) {
    qApp->installEventFilter(this);
}

/// A run that ends meanwhile has its outcome told, by an alert that itself keeps input from all
/// other windows.
bool ClosingOnly::eventFilter(QObject* watched, QEvent* event) {
    return isInput(event->type()) && watched != &quit_ && !QApplication::activeModalWidget();
}

} // namespace velmora
