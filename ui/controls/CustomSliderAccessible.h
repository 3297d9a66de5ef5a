#pragma once

#include <QAccessibleWidget>

namespace velmora {

class CustomSlider;

/// The scrubbing bar as assistive technology sees it: a slider with a value that can be set.
class CustomSliderAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit CustomSliderAccessible(CustomSlider& slider);

    /// Makes Qt use this class for all scrubbing bars; may be called again.
    static void install();

    void* interface_cast(QAccessible::InterfaceType type) override;
    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;
    QVariant currentValue() const override;
    void setCurrentValue(const QVariant& value) override;
    QVariant maximumValue() const override;
    QVariant minimumValue() const override;
    QVariant minimumStepSize() const override;

private:
    CustomSlider& slider_;
};

} // namespace velmora
