// How the scrubbing bar draws itself.

#include "CustomSlider.h"
#include "PlatformLog.h"

#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

#include <algorithm>
#include <cmath>

namespace velmora {
namespace {

/// `rect` rounded outward to whole pixels; one without an extent has no pixels.
QRect integral(const QRectF& rect) {
    return rect.isEmpty() ? QRect() : rect.toAlignedRect();
}

} // namespace

void CustomSlider::drawRect(QPainter& control, const QRect& dirty) {
    prepareCanvas();
    if (canvas.isNull()) {
        return;
    }
    {
        QPainter painter(&canvas);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillRect(dirty, Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        drawTrack(painter);
        drawAnchors(painter);
        loadKnobImages();
        (isMouseDown ? knobImageActive : knobImage).draw(painter, knobRect());
    }
    const QRectF source(dirty.topLeft() * canvas.devicePixelRatio(),
                        QSizeF(dirty.size()) * canvas.devicePixelRatio());
    control.drawImage(QRectF(dirty), canvas, source);
}

void CustomSlider::prepareCanvas() {
    const double ratio = devicePixelRatioF();
    const QSize pixels = (canvasRect.size() * ratio).toSize();
    if (canvas.size() == pixels) {
        return;
    }
    // Only the sharpness can have changed, when the window has come to another screen.
    canvas = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    canvas.setDevicePixelRatio(ratio);
    canvas.fill(Qt::transparent);
}

void CustomSlider::loadTrackImages() {
    if (!barImageActive.isNull()) {
        return;
    }
    barImageActive = NamedImage("mp_channel_active");
    barImageUnactive1 = NamedImage("mp_channel");
    barImageUnactive2 = NamedImage("mp_channel");
}

void CustomSlider::loadKnobImages() {
    if (!knobImage.isNull()) {
        return;
    }
    knobImage = NamedImage("mp_thumb");
    knobImageActive = NamedImage("mp_thumb_active");
}

void CustomSlider::drawTrack(QPainter& painter) {
    loadTrackImages();
    barImageActive.draw(painter, trackPiece(0, static_cast<float>(width())));
}

void CustomSlider::drawAnchors(QPainter& painter) {
    if (leftVal > 0 && rightVal > 0 && leftVal >= rightVal) {
        dropPassedAnchor(painter);
        return;
    }
    if (leftVal >= 0) {
        drawLeftOf(painter, static_cast<double>(leftVal));
    }
    if (rightVal >= 0) {
        drawRightOf(painter, static_cast<double>(rightVal));
    }
}

void CustomSlider::dropPassedAnchor(QPainter& painter) {
    platformLog("need reset");
    if (mButIndex == 1) {
        drawLeftOf(painter, value_);
        rightVal = -1;
    } else if (mButIndex == 2) {
        drawRightOf(painter, value_);
        leftVal = -1;
    }
}

void CustomSlider::drawLeftOf(QPainter& painter, double value) const {
    barImageUnactive1.draw(painter, trackPiece(0, xOf(value)));
}

void CustomSlider::drawRightOf(QPainter& painter, double value) const {
    const float x = xOf(value);
    barImageUnactive2.draw(painter, trackPiece(x, static_cast<float>(width()) - x));
}

float CustomSlider::xOf(double value) const {
    const float x =
        static_cast<float>(value) * static_cast<float>(width()) / static_cast<float>(maxValue_);
    return std::isfinite(x) ? x : 0.0F; // a range that ends at 0 has no places
}

QRect CustomSlider::trackPiece(float x, float width) const {
    const int pieceHeight = barImageActive.size().height();
    return integral({x, (height() - pieceHeight) * 0.5, width, static_cast<double>(pieceHeight)});
}

QRect CustomSlider::knobRect() const {
    const auto barWidth = static_cast<float>(width());
    const auto knobWidth = static_cast<float>(knobImage.size().width());
    const int knobHeight = knobImage.size().height();
    float x = std::max(0.0F, xOf(value_) - knobWidth * 0.5F);
    if (knobWidth + x >= barWidth) {
        x = barWidth - knobWidth;
    }
    return integral({x, (height() - knobHeight) * 0.5, knobWidth, static_cast<double>(knobHeight)});
}

void CustomSlider::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    if (hasFocus()) { // below the bar: some styles fill the frame
        drawFocus(painter);
    }
    drawRect(painter, event->rect());
}

void CustomSlider::drawFocus(QPainter& painter) const {
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.state |= QStyle::State_KeyboardFocusChange;
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

QSize CustomSlider::sizeHint() const {
    return {400, 26};
}

QSize CustomSlider::minimumSizeHint() const {
    return {120, 26};
}

} // namespace velmora
