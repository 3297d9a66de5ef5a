#pragma once

#include "PanelWindow.h"

#include <QLabel>

#include <memory>

namespace Ui {
class ConverterFrom;
}

namespace velmora {

/// The window of the interface description "ConverterFrom". Main thread.
class ProgressWindow : public PanelWindow {
    Q_OBJECT

public:
    /// The window stays above `owner`, its parent; null: it belongs to no other.
    explicit ProgressWindow(QWidget* owner = nullptr);
    ~ProgressWindow() override;
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;

    /// The widgets, by their names.
    const Ui::ConverterFrom& outlets() const { return *outlets_; }
    /// Sets a label's text, also for those who cannot see it.
    static void show(QLabel& label, const QString& text);
    using QWidget::show;

    /// Esc cancels.
    void reject() override;

private:
    std::unique_ptr<Ui::ConverterFrom> outlets_;
};

} // namespace velmora
