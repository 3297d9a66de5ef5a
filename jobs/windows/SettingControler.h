#pragma once

#include "ProfileInfo.h"

#include <QString>

#include <memory>

class QComboBox;
class QWidget;

namespace velmora {

class PanelWindow;

namespace Ui {
class SettingFrom;
}

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): one per process, by design
/// The profiles that the editor knows; null stands for none. Main thread.
extern std::shared_ptr<ProfileInfo> editorProfileStore;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

/// The editor of the current setting: a modal window that offers the choices of the setting's
/// profile for each of its eight parameters. It cannot show that the cutter keeps the source's
/// frame rate; a frame rate that the user leaves alone there therefore keeps it. Main thread.
class SettingControler {
public:
    SettingControler();
    ~SettingControler();
    SettingControler(const SettingControler&) = delete;
    SettingControler& operator=(const SettingControler&) = delete;

    /// Lets the user edit the current setting, in a window over `parent`, which outlives the
    /// editor. Returns when the window has been closed: true if the user has confirmed.
    bool showSettingFrom(QWidget* parent = nullptr);

    /// Fills the window from the current setting and its profile.
    void initProfile();
    /// Stores what is selected into the current setting, an empty text for no selection, and closes
    /// the window. The frame size as numbers stays as it was.
    void okClick();
    /// Closes the window; the setting stays as it was.
    void cancelClick();
    /// Selects the profile's defaults. Stores nothing.
    void defaultClick();
    /// Always true; ends the modal session.
    static bool windowShouldClose();
    /// Nothing is left to do when the interface description has been loaded.
    void awakeFromNib() {}

private:
    void loadWindow(QWidget* parent);
    static const Profile* profile();
    /// The box of a parameter; null for a name that is none.
    QComboBox* boxOf(const QString& parameterName) const;
    void selectOwnValues();

    std::unique_ptr<PanelWindow> winSettingController_;
    std::unique_ptr<Ui::SettingFrom> outlets_;
    bool confirmed_ = false;
};

} // namespace velmora
