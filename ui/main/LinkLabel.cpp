#include "LinkLabel.h"

#include <QFocusEvent>
#include <QTextDocumentFragment>

namespace velmora {

void LinkLabel::focusInEvent(QFocusEvent* event) {
    QLabel::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) {
        setSelection(
            0, static_cast<int>(QTextDocumentFragment::fromHtml(text()).toPlainText().size()));
    }
}

bool LinkLabel::focusNextPrevChild(bool next) {
    return QWidget::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call): see above
}

} // namespace velmora
