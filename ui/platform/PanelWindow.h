#pragma once

#include <QDialog>

#include <functional>

namespace velmora {

/// A window that its close box and Esc close, if whoever controls it agrees. Closing it does not
/// end the application. Main thread.
class PanelWindow : public QDialog {
public:
    /// The window stays above `owner`, its parent; null: it belongs to no other.
    explicit PanelWindow(QWidget* owner = nullptr);

    /// Asked before the window closes; without it the window always does. Hiding asks nobody.
    std::function<bool()> windowShouldClose;

    /// What Esc does: the same as the close box.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
};

} // namespace velmora
