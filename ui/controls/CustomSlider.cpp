#include "CustomSlider.h"

#include "CustomSliderAccessible.h"
#include "NotificationCenter.h"
#include "PlatformLog.h"
#include "Saturated.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>

#include <algorithm>

namespace velmora {

CustomSlider::CustomSlider(QWidget* parent) : QWidget(parent) {
    CustomSliderAccessible::install();
    setAccessibleName("Position in the video");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void CustomSlider::initWithFrame(const QRect& frame) {
    setGeometry(frame);
}

void CustomSlider::awakeFromNib() {
    canvasRect = QRectF(0, 0, width(), height());
    canvas = {};
    setMaximumSize(size());
    platformLog(QString::asprintf("canvas w:%f h:%f", canvasRect.width(), canvasRect.height()));
    leftColor = QColor::fromRgbF(0.94140625F, 0.0F, 0.546875F, 1.0F);
    leftVal = -1;
    rightVal = -1;
}

void CustomSlider::setMinValue(double value) {
    minValue_ = value;
    setDoubleValue(value_);
}

void CustomSlider::setMaxValue(double value) {
    maxValue_ = value;
    setDoubleValue(value_);
}

void CustomSlider::setDoubleValue(double value) {
    value_ = std::max(minValue_, std::min(value, maxValue_));
    QAccessibleValueChangeEvent event(this, value_);
    QAccessible::updateAccessibility(&event);
    update();
}

std::int64_t CustomSlider::getCurrenPosInt() const {
    return truncated(value_);
}

void CustomSlider::setCustomSliderEnable(bool enable) {
    sliderEnable = enable;
    setFocusPolicy(enable ? Qt::StrongFocus : Qt::NoFocus);
    QAccessible::State changed;
    changed.disabled = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

double CustomSlider::step() const {
    return (maxValue_ - minValue_) / 100;
}

void CustomSlider::moveByUser(double value) {
    if (sliderEnable) {
        setAndTell(std::clamp(value, minValue_, std::max(minValue_, maxValue_)));
    }
}

void CustomSlider::mouseDown(const QMouseEvent& event) {
    const QPointF place = event.position();
    if (!sliderEnable) {
        platformLog("slider disabled");
        return;
    }
    // The last row and column of points belong to the neighbours.
    if (place.x() >= 0 && place.x() < width() && place.y() >= 0 && place.y() < height()) {
        isMouseDown = true;
        mouseDragged(event);
    }
}

void CustomSlider::mouseDragged(const QMouseEvent& event) {
    platformLog(QString::asprintf("event type:%ld", static_cast<long>(event.type())));
    if (!isMouseDown) {
        return;
    }
    const double value = valueAt(event.position().x());
    platformLog(QString::asprintf("get x:%f", value));
    setAndTell(value);
}

void CustomSlider::mouseUp(const QMouseEvent& /*event*/) {
    isMouseDown = false;
    repaint();
}

double CustomSlider::valueAt(double x) const {
    if (x < 0) {
        return minValue_;
    }
    if (x >= width()) {
        return maxValue_;
    }
    return x * (maxValue_ - minValue_) / width() + minValue_;
}

void CustomSlider::setAndTell(double value) {
    setDoubleValue(value);
    NotificationCenter::defaultCenter().post(kChangedNotification, this, {{kValueKey, value}});
    Q_EMIT sliderDragged(value);
}

void CustomSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        mouseDown(*event);
    } else {
        event->ignore();
    }
}

void CustomSlider::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) {
        mouseDragged(*event);
    }
}

void CustomSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        mouseUp(*event);
    }
}

void CustomSlider::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return moveByUser(value_ - step());
    case Qt::Key_Right:
    case Qt::Key_Up:
        return moveByUser(value_ + step());
    case Qt::Key_PageDown:
        return moveByUser(value_ - 10 * step());
    case Qt::Key_PageUp:
        return moveByUser(value_ + 10 * step());
    case Qt::Key_Home:
        return moveByUser(minValue_);
    case Qt::Key_End:
        return moveByUser(maxValue_);
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace velmora
