#pragma once

#include <QDialog>
#include <QPoint>

#include <functional>
#include <optional>

namespace velmora {

/// A window that its close box and Esc close, if whoever controls it agrees. Closing it does not
/// end the application. It opens over the middle of its owner, and again where it was left. Main
/// thread.
class PanelWindow : public QDialog {
public:
    /// The window stays above `owner`, its parent; null: it belongs to no other.
    explicit PanelWindow(QWidget* owner = nullptr);

    /// Asked before the window closes; without it the window always does. Hiding asks nobody.
    std::function<bool()> windowShouldClose;

    /// What Esc does: the same as the close box.
    void reject() override;
    void setVisible(bool visible) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void returnToPlace();

    std::optional<QPoint> place_; ///< of the frame, when it was last on screen
};

} // namespace velmora
