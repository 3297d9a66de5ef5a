#include "ClosingOnly.h"

#include <QAction>
#include <QCoreApplication>
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
    QCoreApplication::instance()->installEventFilter(this);
}

bool ClosingOnly::eventFilter(QObject* watched, QEvent* event) {
    return watched != &quit_ && isInput(event->type());
}

} // namespace velmora
