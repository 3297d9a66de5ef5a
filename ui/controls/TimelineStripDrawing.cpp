// How the timeline draws itself. Its colours are the palette's; whatever a colour tells is told by
// a shape as well.

#include "TimelineStrip.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionFocusRect>

#include <algorithm>
#include <cmath>

namespace velmora {
namespace {

constexpr int kTickHeight = 7;        // of key frames, at the upper edge
constexpr int kPictureTickHeight = 4; // at the lower edge
constexpr double kSoundTop = 9;
constexpr double kSoundBottom = 35;
constexpr double kLoudest = 127;
constexpr int kNumberSize = 11;

QColor faded(QColor colour, double share) {
    colour.setAlphaF(static_cast<float>(share));
    return colour;
}

QRectF bandOf(const TimelineModel::Part& part, int height) {
    return {part.begin, 0, part.end - part.begin, static_cast<double>(height)};
}

} // namespace

void TimelineStrip::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    if (model_.lengthUs() > 0) {
        drawMarked(painter);
        drawAdded(painter);
        drawSound(painter);
        drawTicks(painter);
        drawDirect(painter);
        drawEnds(painter);
        drawPosition(painter);
    }
    drawFrame(painter);
}

void TimelineStrip::drawMarked(QPainter& painter) const {
    const TimelineModel::Part marked = model_.marked();
    if (marked.isEmpty()) {
        return;
    }
    painter.fillRect(bandOf(marked, height()), faded(palette().color(QPalette::Highlight), 0.3));
    const TimelineModel::Part missing = model_.missingInDirect();
    if (!missing.isEmpty()) {
        const QColor base = faded(palette().color(QPalette::Base), 0.8);
        painter.fillRect(bandOf(missing, height()), QBrush(base, Qt::FDiagPattern));
    }
}

/// What a direct copy adds is lighter than what is marked, and hatched.
void TimelineStrip::drawAdded(QPainter& painter) const {
    const QColor colour = palette().color(QPalette::Highlight);
    const TimelineModel::Part added = model_.addedByDirect();
    if (!added.isEmpty()) {
        painter.fillRect(bandOf(added, height()), faded(colour, 0.12));
        painter.fillRect(bandOf(added, height()), QBrush(faded(colour, 0.45), Qt::BDiagPattern));
    }
}

/// A line along the lower edge, with a foot at each end, shows all that it takes.
void TimelineStrip::drawDirect(QPainter& painter) const {
    const QColor colour = palette().color(QPalette::Highlight);
    const TimelineModel::Part whole = model_.directPart();
    if (!whole.isEmpty()) {
        painter.fillRect(QRectF(whole.begin, height() - 3, whole.end - whole.begin, 2), colour);
        painter.fillRect(QRectF(whole.begin, height() - 8, 1, 8), colour);
        painter.fillRect(QRectF(whole.end - 1, height() - 8, 1, 8), colour);
    }
}

/// Each column of the screen is a line from the lowest to the highest; silence is a line through
/// the middle, and where nothing is known there is none.
void TimelineStrip::drawSound(QPainter& painter) {
    const double ratio = devicePixelRatioF();
    const int columns = static_cast<int>(std::ceil(width() * ratio));
    if (levelsAreOld_ || static_cast<int>(levels_.size()) != columns) {
        levels_ = model_.levels(columns);
        levelsAreOld_ = false;
    }
    const QColor colour = faded(palette().color(QPalette::Text), 0.6);
    const double middle = (kSoundTop + kSoundBottom) / 2;
    const double scale = (kSoundBottom - kSoundTop) / 2 / kLoudest;
    for (std::size_t i = 0; i < levels_.size(); ++i) {
        const auto& level = levels_[i];
        if (!level) {
            continue;
        }
        const double top = middle - level->high * scale;
        const double tall = std::max((level->high - level->low) * scale, 1.0 / ratio);
        painter.fillRect(QRectF(static_cast<double>(i) / ratio, top, 1.0 / ratio, tall), colour);
    }
}

void TimelineStrip::drawTicks(QPainter& painter) const {
    const QColor colour = palette().color(QPalette::Text);
    for (const double x : model_.keyFrameTicks()) {
        painter.fillRect(QRectF(std::floor(x), 0, 1, kTickHeight), colour);
    }
    for (const double x : model_.pictureTicks()) {
        painter.fillRect(
            QRectF(std::floor(x), height() - kPictureTickHeight, 1, kPictureTickHeight), colour);
    }
}

/// Brackets, and the stretch's number where there is room for it.
void TimelineStrip::drawEnds(QPainter& painter) const {
    constexpr int kFoot = 5;
    const TimelineModel::Part marked = model_.marked();
    if (marked.isEmpty()) {
        return;
    }
    const QColor colour = palette().color(QPalette::Highlight);
    const bool hasBegin = model_.markBeginUs() >= model_.viewBeginUs();
    const bool hasEnd = model_.markEndUs() <= model_.viewEndUs();
    if (hasBegin) {
        painter.fillRect(QRectF(marked.begin, 0, 2, height()), colour);
        painter.fillRect(QRectF(marked.begin, 0, kFoot, 2), colour);
        drawNumber(painter, std::min(marked.begin, static_cast<double>(width() - kNumberSize)));
    }
    if (hasEnd) {
        painter.fillRect(QRectF(marked.end - 2, 0, 2, height()), colour);
        painter.fillRect(QRectF(marked.end - kFoot, 0, kFoot, 2), colour);
    }
    if (hasEnd && (!hasBegin || marked.end - marked.begin >= 3 * kNumberSize)) {
        drawNumber(painter, marked.end - kNumberSize);
    }
}

void TimelineStrip::drawNumber(QPainter& painter, double x) const {
    const QRectF place(x, height() - 4 - kNumberSize, kNumberSize, kNumberSize);
    painter.fillRect(place, palette().color(QPalette::Highlight));
    QFont small = font();
    small.setPixelSize(kNumberSize - 1);
    small.setBold(true);
    painter.setFont(small);
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.drawText(place, Qt::AlignCenter, "1");
}

/// Dark within light, or light within dark: it stands out from whatever is below it.
void TimelineStrip::drawPosition(QPainter& painter) const {
    const double x = std::floor(std::clamp(model_.xOf(model_.positionUs()), 0.0, width() - 1.0));
    const bool isVisible =
        model_.positionUs() >= model_.viewBeginUs() && model_.positionUs() <= model_.viewEndUs();
    if (!isVisible) {
        return;
    }
    painter.fillRect(QRectF(x - 1, 0, 3, height()), palette().color(QPalette::Base));
    painter.fillRect(QRectF(x, 0, 1, height()), palette().color(QPalette::Text));
    QPainterPath head;
    head.addPolygon(QPolygonF({{x - 4, 0}, {x + 5, 0}, {x + 0.5, 6}}));
    head.closeSubpath();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Base));
    painter.setBrush(palette().color(QPalette::Text));
    painter.drawPath(head);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void TimelineStrip::drawFrame(QPainter& painter) const {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(faded(palette().color(QPalette::Text), 0.4));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (!hasFocus()) {
        return;
    }
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

} // namespace velmora
