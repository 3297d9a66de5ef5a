#pragma once

#include "NamedImage.h"

#include <QColor>
#include <QImage>
#include <QRect>
#include <QWidget>

#include <cstdint>

namespace velmora {

/// The cutter's scrubbing bar: a horizontal slider that shows the kept range between a start and an
/// end anchor. Every move of the user, by mouse, key or assistive technology, is posted as
/// "customCrubbingBarChangedNotification" with the new value under "customCrubbingBarValue" and
/// then sent as `sliderDragged`. It draws into a canvas that is made when the bar awakes and never
/// grows, so it awakes once it has the largest size that its window will give it, and that becomes
/// its maximum size. Main thread.
class CustomSlider : public QWidget {
    Q_OBJECT
    Q_PROPERTY(double minValue READ minValue WRITE setMinValue)
    Q_PROPERTY(double maxValue READ maxValue WRITE setMaxValue)
    Q_PROPERTY(double doubleValue READ doubleValue WRITE setDoubleValue)
    Q_PROPERTY(bool customSliderEnable READ customSliderEnable WRITE setCustomSliderEnable)

public:
    static constexpr const char* kChangedNotification = "customCrubbingBarChangedNotification";
    static constexpr const char* kValueKey = "customCrubbingBarValue";

    explicit CustomSlider(QWidget* parent = nullptr);
    void initWithFrame(const QRect& frame);
    /// To be called once, when the bar has the largest size that it will ever have: what is drawn
    /// is as large as the bar is now, so the bar does not grow from here on.
    void awakeFromNib();

    double minValue() const { return minValue_; }
    double maxValue() const { return maxValue_; }
    double doubleValue() const { return value_; }
    void setMinValue(double value);
    void setMaxValue(double value);
    /// Takes the nearest value of the range. Nobody is told.
    void setDoubleValue(double value);

    /// In the units of the value; -1: none. They show at the next draw, which the caller asks for.
    void setAnchorLeft(std::int64_t anchor) { leftVal = anchor; }
    void setAnchorRight(std::int64_t anchor) { rightVal = anchor; }
    std::int64_t anchorLeft() const { return leftVal; }
    std::int64_t anchorRight() const { return rightVal; }
    /// Which anchor was set last: 1 start, 2 end, 0 none.
    void setButIndex(std::int64_t index) { mButIndex = index; }
    std::int64_t butIndex() const { return mButIndex; }
    /// The value, its fraction cut off.
    std::int64_t getCurrenPosInt() const;

    /// Whether the user can move the bar; it starts out that he cannot.
    void setCustomSliderEnable(bool enable);
    bool customSliderEnable() const { return sliderEnable; }
    /// The distance that an arrow key goes.
    double step() const;
    /// Goes to `value` as by the user's hand, unless the bar is disabled.
    void moveByUser(double value);

    void mouseDown(const QMouseEvent& event);
    void mouseDragged(const QMouseEvent& event);
    void mouseUp(const QMouseEvent& event);
    /// Draws the part of the bar that lies in `dirty` with `control`, a painter in the bar's
    /// coordinates. Drops the anchor that the other one, set later, has passed.
    void drawRect(QPainter& control, const QRect& dirty);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The bar's action, with the new value.
    void sliderDragged(double value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void prepareCanvas();
    void loadTrackImages();
    void loadKnobImages();
    void drawTrack(QPainter& painter);
    void drawAnchors(QPainter& painter);
    void dropPassedAnchor(QPainter& painter);
    void drawLeftOf(QPainter& painter, double value) const;
    void drawRightOf(QPainter& painter, double value) const;
    void drawFocus(QPainter& painter) const;
    /// Where `value` lies; the range is taken to start at 0.
    float xOf(double value) const;
    QRect trackPiece(float x, float width) const;
    QRect knobRect() const;
    double valueAt(double x) const;
    void setAndTell(double value);

    double minValue_ = 0;
    double maxValue_ = 100;
    double value_ = 0;
    QImage canvas; ///< as large as the bar when it awoke, in the device's pixels
    QRectF canvasRect;
    QColor leftColor; ///< made with the bar; the drawing takes its colours from the images
    NamedImage barImageActive;
    NamedImage barImageUnactive1;
    NamedImage barImageUnactive2;
    NamedImage knobImage;
    NamedImage knobImageActive;
    std::int64_t leftVal = -1;
    std::int64_t rightVal = -1;
    std::int64_t mButIndex = 0;
    bool isMouseDown = false;
    bool sliderEnable = false;
};

} // namespace velmora
