#include "SliderDrawing.h"

#include <QMouseEvent>
#include <QPainter>

namespace velmora::test {

void CustomSliderDrawingTest::makeBar(int width, int height) {
    bar_.initWithFrame(QRect(0, 0, width, height));
    bar_.awakeFromNib();
    bar_.setCustomSliderEnable(true);
}

QImage CustomSliderDrawingTest::blank(const QColor& colour) const {
    const double ratio = bar_.devicePixelRatioF();
    QImage image(bar_.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(colour);
    return image;
}

QImage CustomSliderDrawingTest::drawn(const QRect& dirty) {
    QImage image = blank(Qt::white);
    QPainter painter(&image);
    bar_.drawRect(painter, dirty);
    return image;
}

QImage CustomSliderDrawingTest::expected(const std::vector<Piece>& pieces) const {
    QImage bar = blank(Qt::transparent);
    {
        QPainter painter(&bar);
        for (const Piece& piece : pieces) {
            NamedImage(piece.image).draw(painter, piece.place);
        }
    }
    QImage image = blank(Qt::white);
    QPainter(&image).drawImage(0, 0, bar);
    return image;
}

void CustomSliderDrawingTest::send(QEvent::Type type, double x) {
    const QPointF place(x, 13);
    const QMouseEvent event(type, place, place, place, Qt::LeftButton, Qt::LeftButton, {});
    if (type == QEvent::MouseButtonPress) {
        bar_.mouseDown(event);
    } else {
        bar_.mouseUp(event);
    }
}

QColor CustomSliderDrawingTest::colourAt(const QImage& image, int x, int y) {
    const double ratio = image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
}

} // namespace velmora::test
