#pragma once

#include <QMainWindow>

#include <functional>
#include <memory>

namespace velmora {

namespace Ui {
class MainWindow;
}

/// The main window as its interface description has it, with its looks. What it does is the
/// business of its controller. Its colours are fixed, since its background is, and set on its
/// contents only: file panels and alerts keep the desktop's.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    const Ui::MainWindow& outlets() const { return *ui_; }
    /// What the close button does, once it has been pressed.
    void setCloseAction(std::function<void()> action);
    /// The window's colour; all others in it are chosen to be read on it.
    void setBackgroundColor(const QColor& color);
    /// From now on the preview shows a video in the proportions of this size, not the invitation to
    /// add one.
    void showLoadedStage(const QSize& displaySize);

Q_SIGNALS:
    /// The window has come to the front.
    void activated();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void useTabularDigits();
    void fitToScreen();

    std::unique_ptr<Ui::MainWindow> ui_;
    std::function<void()> closeAction_;
};

} // namespace velmora
