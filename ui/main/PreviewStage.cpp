#include "PreviewStage.h"

#include <QEvent>

namespace velmora {

PreviewStage::PreviewStage(QWidget* parent) : QFrame(parent) {
    setAcceptDrops(true);
}

QWidget* PreviewStage::child() const {
    return findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
}

void PreviewStage::setDisplaySize(const QSize& size) {
    displaySize_ = size;
    placeChild();
}

void PreviewStage::setTurned(bool turned) {
    turned_ = turned;
    placeChild();
}

void PreviewStage::placeChild() {
    QWidget* const view = child();
    if (!view) {
        return;
    }
    const QRect room = contentsRect();
    const QSize shown = turned_ ? displaySize_.transposed() : displaySize_;
    const QSize wanted =
        shown.isEmpty() ? room.size() : shown.scaled(room.size(), Qt::KeepAspectRatio);
    QRect place(QPoint(), wanted.expandedTo(QSize(1, 1)));
    place.moveCenter(room.center());
    view->setGeometry(place);
}

void PreviewStage::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    placeChild();
}

bool PreviewStage::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
        // Not sent: the application would deliver it to the stage, as the target of the drag.
        return child() && static_cast<QObject*>(child())->event(event);
    case QEvent::ContentsRectChange:
        placeChild();
        break;
    default:
        break;
    }
    return QFrame::event(event);
}

} // namespace velmora
