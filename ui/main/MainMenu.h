#pragma once

#include <QObject>

namespace velmora {

class MainWindow;

namespace Ui {
class MainWindow;
}

/// The main window's menus and keys: offers what the workspace on show can do, and does what is
/// about the window alone. What an action does with a video is connected by the controller. Main
/// thread.
class MainMenu : public QObject {
    Q_OBJECT

public:
    /// The window must outlive the menu.
    explicit MainMenu(MainWindow& window);

private:
    void addKeys();
    void connectSteps();
    void connectWindow();
    void offerActions();

    MainWindow& window_;
    const Ui::MainWindow& ui_; ///< the outlets, under their names
};

} // namespace velmora
