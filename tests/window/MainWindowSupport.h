#pragma once

#include "CustomSlider.h"
#include "Desktop.h"
#include "JoinerTable.h"
#include "LogLines.h"
#include "MainController.h"
#include "MainWindow.h"
#include "TestMedia.h"
#include "customImageView.h"

#include <QLineEdit>
#include <QPoint>
#include <QStringList>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <vector>

namespace velmora::test {

/// An alert as it was on screen.
struct SeenAlert {
    QString title;
    QString message;
    QStringList buttons;
    QString sentence; ///< under the message; alerts are alike whatever it is
    QPoint middle;    ///< on the screen; alerts are alike wherever they are
};

/// The alert without a title that is used for `message`.
SeenAlert plainAlert(const QString& message);
SeenAlert errorAlert(const QString& message);
bool operator==(const SeenAlert& a, const SeenAlert& b);
void PrintTo(const SeenAlert& alert, std::ostream* out);

/// Does `action`, pressing "OK" in each alert that it shows, and tells which they were.
std::vector<SeenAlert> alertsOf(const std::function<void()>& action);

/// Does `action` with the window of the next modal session, then closes it.
class InNextPanel {
public:
    explicit InNextPanel(std::function<void(QWidget&)> action);
    bool hasOpened() const { return opened_; }

private:
    void look();

    std::function<void(QWidget&)> action_;
    QTimer watch_;
    bool opened_ = false;
};

/// The main window as the program starts it.
class MainWindowTest : public ::testing::Test {
protected:
    MainWindowTest();

    template <class Outlet = QWidget> Outlet& outlet(const char* name) {
        auto* const found = controller_.mainWin().findChild<Outlet*>(name);
        if (!found) {
            throw std::runtime_error(std::string("no outlet ") + name);
        }
        return *found;
    }
    CustomSlider& bar() { return outlet<CustomSlider>("mCustomSlider"); }
    customImageView& preview() { return outlet<customImageView>("mCustomImage"); }
    JoinerTable& table() { return outlet<JoinerTable>("tableView"); }
    QString text(const char* field) { return outlet<QLineEdit>(field).text(); }

    /// Clicks where the outlet is on screen.
    void press(const char* button);
    /// Chooses the workspace "Video Cutter" or "Video Joiner".
    void show(const char* workspace);
    void dropOnPreview(const QString& path);
    /// Answers the open panel on screen.
    void choose(const QStringList& paths);
    bool isPanelOpen();
    /// Moves the bar's knob by mouse to `percent`.
    void scrubTo(int percent);
    /// The start point, the end point, set by bar and button.
    void markStart(int percent);
    void markEnd(int percent);
    /// Types over the content of a time field.
    void type(const char* field, const QString& text);

    static QString media(const char* name) { return QString::fromStdString(mediaPath(name)); }

    LogLines log_;
    MainController controller_;
    TemporaryFolder folder_;
};

} // namespace velmora::test
