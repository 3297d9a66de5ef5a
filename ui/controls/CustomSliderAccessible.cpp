#include "CustomSliderAccessible.h"

#include "CustomSlider.h"

namespace velmora {
namespace {

QAccessibleInterface* accessibleOf(const QString& /*className*/, QObject* object) {
    auto* const slider = qobject_cast<CustomSlider*>(object);
    // Qt owns what a factory makes.
    return slider ? new CustomSliderAccessible(*slider)
                  : nullptr; // NOLINT(cppcoreguidelines-owning-memory)
}

} // namespace

CustomSliderAccessible::CustomSliderAccessible(CustomSlider& slider)
    : QAccessibleWidget(&slider, QAccessible::Slider), slider_(slider) {}

void CustomSliderAccessible::install() {
    QAccessible::installFactory(accessibleOf); // Qt keeps a factory once only
}

void* CustomSliderAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::ValueInterface) {
        return static_cast<QAccessibleValueInterface*>(this);
    }
    return QAccessibleWidget::interface_cast(type);
}

QAccessible::State CustomSliderAccessible::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.disabled = state.disabled || !slider_.customSliderEnable();
    return state;
}

QString CustomSliderAccessible::text(QAccessible::Text kind) const {
    if (kind == QAccessible::Value) {
        return QString::number(slider_.doubleValue());
    }
    return QAccessibleWidget::text(kind);
}

QVariant CustomSliderAccessible::currentValue() const {
    return slider_.doubleValue();
}

void CustomSliderAccessible::setCurrentValue(const QVariant& value) {
    slider_.moveByUser(value.toDouble());
}

QVariant CustomSliderAccessible::maximumValue() const {
    return slider_.maxValue();
}

QVariant CustomSliderAccessible::minimumValue() const {
    return slider_.minValue();
}

QVariant CustomSliderAccessible::minimumStepSize() const {
    return slider_.step();
}

} // namespace velmora
