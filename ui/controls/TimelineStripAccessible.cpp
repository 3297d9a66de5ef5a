#include "TimelineStripAccessible.h"

#include "TimeText.h"
#include "TimelineStrip.h"

#include <cmath>

namespace velmora {
namespace {

constexpr double kUsPerSecond = 1'000'000.0;

double seconds(std::int64_t us) {
    return static_cast<double>(us) / kUsPerSecond;
}

QAccessibleInterface* timelineAccessibleOf(const QString& /*className*/, QObject* object) {
    auto* const strip = qobject_cast<TimelineStrip*>(object);
    // Qt owns what a factory makes.
    return strip ? new TimelineStripAccessible(*strip)
                 : nullptr; // NOLINT(cppcoreguidelines-owning-memory)
}

} // namespace

TimelineStripAccessible::TimelineStripAccessible(TimelineStrip& strip)
    : QAccessibleWidget(&strip, QAccessible::Slider), strip_(strip) {}

void TimelineStripAccessible::install() {
    QAccessible::installFactory(timelineAccessibleOf); // Qt keeps a factory once only
}

void* TimelineStripAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::ValueInterface) {
        return static_cast<QAccessibleValueInterface*>(this);
    }
    return QAccessibleWidget::interface_cast(type);
}

QAccessible::State TimelineStripAccessible::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.disabled = state.disabled || strip_.model().lengthUs() <= 0;
    return state;
}

QString TimelineStripAccessible::text(QAccessible::Text kind) const {
    const TimelineModel& model = strip_.model();
    switch (kind) {
    case QAccessible::Value:
        return positionText(static_cast<float>(seconds(model.positionUs())),
                            static_cast<float>(seconds(model.lengthUs())));
    case QAccessible::Description:
        return strip_.description();
    default:
        return QAccessibleWidget::text(kind);
    }
}

QVariant TimelineStripAccessible::currentValue() const {
    return seconds(strip_.model().positionUs());
}

void TimelineStripAccessible::setCurrentValue(const QVariant& value) {
    strip_.choose(std::llround(value.toDouble() * kUsPerSecond));
}

QVariant TimelineStripAccessible::maximumValue() const {
    return seconds(strip_.model().lengthUs());
}

QVariant TimelineStripAccessible::minimumValue() const {
    return 0.0;
}

QVariant TimelineStripAccessible::minimumStepSize() const {
    return seconds(strip_.stepUs());
}

} // namespace velmora
