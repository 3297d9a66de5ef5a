#pragma once

#include <QAccessibleWidget>

namespace velmora {

class TimelineStrip;

/// The timeline as assistive technology sees it: a slider whose value is the position, seconds.
class TimelineStripAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit TimelineStripAccessible(TimelineStrip& strip);

    /// Makes Qt use this class for all timelines; may be called again.
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
    TimelineStrip& strip_;
};

} // namespace velmora
