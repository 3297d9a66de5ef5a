#include "customImageView.h"

#include "DroppedFiles.h"
#include "PlatformLog.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

#include <utility>

namespace velmora {
namespace {

constexpr int kCopyOperation = 1;

QRect centred(const QSize& size, const QRect& room) {
    QRect place(QPoint(), size);
    place.moveCenter(room.center());
    return place;
}

} // namespace

customImageView::customImageView(QWidget* parent) : QWidget(parent) {
    initWithFrame(geometry());
}

void customImageView::initWithFrame(const QRect& frame) {
    setGeometry(frame);
    platformLog("xxxxxxxx");
    setAcceptDrops(true);
    buildFileTypes();
    platformLog(QString::asprintf("get count:%ld", static_cast<long>(mFileType.size())));
}

void customImageView::buildFileTypes() {
    mFileType = {"3gp", "mp4", "mov", "avi", "wmv", "mp3", "flv", "mkv"};
}

void customImageView::setMouseDownCB(MouseDownCallback callback) {
    mMouseDownCB = std::move(callback);
}

void customImageView::setImage(NamedImage image) {
    image_ = std::move(image);
    setFocusPolicy(showsPlaceholder() ? Qt::StrongFocus : Qt::NoFocus);
    update();
}

void customImageView::setImageScaling(int scaling) {
    scaling_ = scaling;
    update();
}

void customImageView::tell(const std::optional<QString>& path) const {
    // A copy: the callback may set another one.
    if (const MouseDownCallback callback = mMouseDownCB) {
        callback(path);
    }
}

void customImageView::mouseDown(QMouseEvent& event) {
    QWidget::mousePressEvent(&event);
    event.accept();
    if (showsPlaceholder()) {
        tell(std::nullopt);
    }
}

int customImageView::draggingEntered(const QMimeData& /*drag*/) {
    return kCopyOperation;
}

void customImageView::draggingExited() {}

bool customImageView::prepareForDragOperation(const QMimeData& drag) {
    const QStringList names = localFiles(drag);
    buildFileTypes();
    if (!names.isEmpty()) {
        tell(names.front());
    }
    return !mFileType.isEmpty();
}

void customImageView::drawRect(QPainter& painter) {
    const QSize size = scaling_ == kStretchToFill
                           ? rect().size()
                           : image_.size().scaled(rect().size(), Qt::KeepAspectRatio);
    image_.draw(painter, centred(size, rect()));
}

QSize customImageView::sizeHint() const {
    return {320, 240};
}

void customImageView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawRect(painter);
    if (!hasFocus()) {
        return;
    }
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void customImageView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        mouseDown(*event);
    } else {
        QWidget::mousePressEvent(event);
    }
}

void customImageView::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const bool presses = key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
    if (presses && showsPlaceholder()) {
        tell(std::nullopt);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void customImageView::dragEnterEvent(QDragEnterEvent* event) {
    answerDrag(*event, draggingEntered(*event->mimeData()) == kCopyOperation);
}

void customImageView::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
    draggingExited();
}

void customImageView::dropEvent(QDropEvent* event) {
    answerDrop(*event, prepareForDragOperation(*event->mimeData()));
}

} // namespace velmora
