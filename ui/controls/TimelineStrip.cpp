#include "TimelineStrip.h"

#include "DirectText.h"
#include "TimeText.h"
#include "TimelineStripAccessible.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace velmora {
namespace {

QString timeOf(std::int64_t us) {
    return timeText(static_cast<float>(static_cast<double>(us) / 1'000'000.0));
}

} // namespace

TimelineStrip::TimelineStrip(QWidget* parent) : QWidget(parent) {
    TimelineStripAccessible::install();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFixedHeight(kHeight);
}

// What is shown.

template <class Change> void TimelineStrip::changeView(Change change) {
    const std::int64_t begin = model_.viewBeginUs();
    const std::int64_t end = model_.viewEndUs();
    change();
    viewMayHaveChanged(begin, end);
}

void TimelineStrip::viewMayHaveChanged(std::int64_t beginBefore, std::int64_t endBefore) {
    update();
    if (model_.viewBeginUs() != beginBefore || model_.viewEndUs() != endBefore) {
        levelsAreOld_ = true;
        Q_EMIT viewChanged(model_.viewBeginUs(), model_.viewEndUs());
    }
}

void TimelineStrip::setVideo(std::int64_t lengthUs, std::int64_t pictureUs) {
    levelsAreOld_ = true;
    setFocusPolicy(lengthUs > 0 ? Qt::StrongFocus : Qt::NoFocus);
    changeView([&] {
        model_.setLength(lengthUs);
        model_.setPictureLength(pictureUs);
    });
}

void TimelineStrip::setPosition(std::int64_t us) {
    if (us == model_.positionUs()) {
        return;
    }
    changeView([&] { model_.setPosition(us); });
    QAccessibleValueChangeEvent changed(this, static_cast<double>(us) / 1'000'000.0);
    QAccessible::updateAccessibility(&changed);
}

void TimelineStrip::setMarks(std::int64_t beginUs, std::int64_t endUs) {
    model_.setMarks(beginUs, endUs);
    update();
}

void TimelineStrip::setDirect(const std::optional<DirectStretch>& direct) {
    model_.setDirect(direct);
    update();
}

void TimelineStrip::setKeyFrames(KeyFrames keyFrames) {
    model_.setKeyFrames(std::move(keyFrames));
    update();
}

void TimelineStrip::setPictures(std::vector<std::int64_t> times) {
    model_.setPictures(std::move(times));
    update();
}

void TimelineStrip::setPeaks(const PeakTable* peaks) {
    model_.setPeaks(peaks);
    levelsAreOld_ = true;
    update();
}

void TimelineStrip::zoomBy(double factor) {
    changeView([&] { model_.zoom(factor); });
}

QString TimelineStrip::description() const {
    if (model_.lengthUs() <= 0) {
        return "No video";
    }
    QString text = QString("Marked from %1 to %2.")
                       .arg(timeOf(model_.markBeginUs()), timeOf(model_.markEndUs()));
    if (const auto& direct = model_.direct()) {
        const QString sentence = directSentence(*direct, model_.markBeginUs(), model_.markEndUs());
        text += sentence.isEmpty() ? QString() : " Direct copy: " + sentence;
    }
    if (!model_.keyFrames().empty()) {
        text += QString(" Key frames: %1.").arg(model_.keyFrames().size());
    }
    if (model_.isZoomed()) {
        text += QString(" Visible: %1 to %2.")
                    .arg(timeOf(model_.viewBeginUs()), timeOf(model_.viewEndUs()));
    }
    return text;
}

void TimelineStrip::resizeEvent(QResizeEvent* /*event*/) {
    levelsAreOld_ = true;
    changeView([this] { model_.setWidth(width()); });
}

// What the user does.

void TimelineStrip::choose(std::int64_t us) {
    if (model_.lengthUs() > 0) {
        Q_EMIT positionChosen(std::clamp<std::int64_t>(us, 0, model_.lengthUs()));
    }
}

std::int64_t TimelineStrip::stepUs() const {
    return std::max<std::int64_t>((model_.viewEndUs() - model_.viewBeginUs()) / 100, 1);
}

void TimelineStrip::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    isPressed_ = true;
    isDragged_ = false;
    pressedX_ = draggedX_ = event->position().x();
}

void TimelineStrip::mouseMoveEvent(QMouseEvent* event) {
    const double x = event->position().x();
    if (!isPressed_) {
        return;
    }
    isDragged_ = isDragged_ || std::abs(x - pressedX_) >= QApplication::startDragDistance();
    if (!isDragged_) {
        return;
    }
    if (model_.isZoomed()) {
        changeView([&] { model_.scroll(draggedX_ - x); });
    } else {
        choose(model_.timeAt(x));
    }
    draggedX_ = x;
}

void TimelineStrip::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && std::exchange(isPressed_, false) && !isDragged_) {
        choose(model_.timeAt(pressedX_));
    }
}

/// The wheel alone scrolls, where there is something to scroll.
void TimelineStrip::wheelEvent(QWheelEvent* event) {
    constexpr double kDoubles = 240.0; // two notches
    const QPoint turned = event->angleDelta();
    const int delta = turned.y() != 0 ? turned.y() : turned.x();
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        zoomBy(std::exp2(delta / kDoubles));
    } else if (model_.isZoomed()) {
        changeView([&] { model_.scroll(-delta / 2.0); });
    } else {
        event->ignore();
        return;
    }
    event->accept();
}

void TimelineStrip::keyPressEvent(QKeyEvent* event) {
    constexpr int kFarInSteps = 10;
    const std::int64_t position = model_.positionUs();
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    switch (isPlain ? event->key() : 0) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return choose(position - stepUs());
    case Qt::Key_Right:
    case Qt::Key_Up:
        return choose(position + stepUs());
    case Qt::Key_PageDown:
        return choose(position - kFarInSteps * stepUs());
    case Qt::Key_PageUp:
        return choose(position + kFarInSteps * stepUs());
    case Qt::Key_Home:
        return choose(0);
    case Qt::Key_End:
        return choose(model_.lengthUs());
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace velmora
