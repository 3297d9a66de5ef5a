#include "ElidedLabel.h"

#include <QPainter>
#include <QStyle>

namespace velmora {

QSize ElidedLabel::sizeHint() const {
    return {0, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect room = contentsRect();
    style()->drawItemText(
        &painter, room, static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment())),
        palette(), isEnabled(), fontMetrics().elidedText(text(), Qt::ElideMiddle, room.width()),
        foregroundRole());
}

} // namespace velmora
