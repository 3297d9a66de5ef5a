#pragma once

#include "CustomSlider.h"

#include <QColor>
#include <QEvent>
#include <QImage>
#include <QRect>
#include <gtest/gtest.h>

#include <vector>

namespace velmora::test {

/// An image and where the bar is to show it.
struct Piece {
    const char* image;
    QRect place;
};

inline constexpr const char* kKept = "mp_channel_active";
inline constexpr const char* kCut = "mp_channel";
inline constexpr const char* kKnob = "mp_thumb";
inline constexpr const char* kPressedKnob = "mp_thumb_active";

/// A bar from 0 to 100, 26 pixels high: its track is 6 high at y 10, its knob 18 wide and high at
/// y 4. These tests run at one and at two device pixels to the pixel.
class CustomSliderDrawingTest : public ::testing::Test {
protected:
    void makeBar(int width, int height = 26);

    QImage blank(const QColor& colour) const;
    QImage drawn(const QRect& dirty);
    QImage drawn() { return drawn(bar_.rect()); }
    QImage expected(const std::vector<Piece>& pieces) const;

    /// Presses or moves the mouse at `x`.
    void press(double x) { send(QEvent::MouseButtonPress, x); }
    void send(QEvent::Type type, double x);

    static QColor colourAt(const QImage& image, int x, int y);

    CustomSlider bar_;
};

} // namespace velmora::test
