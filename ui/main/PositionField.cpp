#include "PositionField.h"

#include "TimeText.h"

#include <QKeyEvent>

namespace velmora {

PositionField::PositionField(QLineEdit& place) : QLineEdit(place.parentWidget()), place_(place) {
    setObjectName("positionField");
    setAccessibleName("Position to go to");
    setToolTip("You can input time here, format(hh:mm:ss.fff)");
    setAlignment(Qt::AlignCenter);
    hide();
    connect(this, &QLineEdit::returnPressed, this, [this] {
        if (const auto ms = parsedMilliseconds(text())) {
            close();
            Q_EMIT chosen(*ms);
        } else {
            selectAll();
        }
    });
}

void PositionField::open(const QString& time) {
    setFont(place_.font());
    setGeometry(place_.geometry());
    setText(time);
    selectAll();
    show();
    raise();
    setFocus();
}

/// The focus goes back to where the keys of the video work.
void PositionField::close() {
    hide();
    parentWidget()->setFocus();
}

void PositionField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        return close();
    }
    QLineEdit::keyPressEvent(event);
}

/// Its own menu takes the focus, too, and gives it back.
void PositionField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {
        hide();
    }
}

} // namespace velmora
