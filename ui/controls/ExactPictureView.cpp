#include "ExactPictureView.h"

#include <QEvent>
#include <QPainter>

namespace velmora {

ExactPictureView::ExactPictureView(QWidget& preview) : QWidget(&preview) {
    setObjectName("exactPicture");
    setAccessibleName("Exact preview");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setGeometry(preview.rect());
    preview.installEventFilter(this);
}

bool ExactPictureView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

QSize ExactPictureView::deviceSize() const {
    return size() * devicePixelRatioF();
}

void ExactPictureView::setPicture(const QImage& picture, const QString& description) {
    picture_ = picture;
    sentence_.clear();
    setAccessibleDescription(description);
    update();
}

void ExactPictureView::setSentence(const QString& sentence) {
    picture_ = {};
    sentence_ = sentence;
    setAccessibleDescription(sentence);
    update();
}

void ExactPictureView::clear() {
    setSentence({});
}

void ExactPictureView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Q_EMIT resized();
}

void ExactPictureView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (!picture_.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(rect(), picture_);
    } else if (!sentence_.isEmpty()) {
        painter.fillRect(rect(), palette().color(QPalette::Base));
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(rect(), static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap, sentence_);
    }
}

} // namespace velmora
