#pragma once

#include "CutterSession.h"
#include "ExactPreview.h"
#include "HelpPage.h"
#include "JoinerList.h"
#include "MainMenu.h"
#include "PictureMoves.h"
#include "TimelineSession.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdint>
#include <memory>
#include <optional>

class QLineEdit;

namespace velmora {

class CustomSlider;
class MainWindow;
struct Notification;

namespace Ui {
class MainWindow;
}

/// The main window's controller: sets the window up, makes the state that all windows share, and
/// switches between the workspaces. What is done in a workspace is the business of `CutterSession`
/// and `JoinerList`, to which the controller passes the actions of the widgets. Times are seconds
/// unless their names say otherwise. Actions take no sender, except the one that asks it something.
/// Main thread.
class MainController : public QObject {
    Q_OBJECT

public:
    MainController();
    ~MainController() override;

    // Set-up.
    void initWithWindow();
    void windowDidLoad();
    /// To be called once, when the window has been loaded.
    void awakeFromNib();
    /// Brings window and shared state to their first values. Every load of the cutter does so
    /// again, and each time the notifications are subscribed to once more.
    void setDefaultView();
    void setDefaultTooltips();
    void initVersionPlist();
    /// Puts the setting's `imCut` and `imJoin` to false.
    void initParameter();
    void textDidChange();
    void button_segSelected();
    /// The label of the workspace switch's selected segment.
    QString selectedSegmentLabel() const;
    void closeApplication();

    /// Asks for files: for the cutter, or for the joiner while that one is on show.
    void fileOpen();
    /// What `fileOpen` does with the answer; `returnCode` 1 is OK.
    void openFilePanelDidEnd(const QStringList& files, int returnCode);

    // The cutter.
    /// A dropped path, or none for a click on the empty preview.
    void mouseDownListener(const std::optional<QString>& path) { cutter_.mouseDownListener(path); }
    void firstLoadVideo(const QString& path) { cutter_.firstLoadVideo(path); }
    void cutterAddObject(const QString& path) { cutter_.cutterAddObject(path); }
    void sliderClear() { cutter_.sliderClear(); }
    void setInfoParameter(const QString& key, const QString& value);
    QString getStringTime(float time) const;
    void textSetTime(QLineEdit& field, float time) const;
    void testSetTimeDuration(QLineEdit& field, float position, float length) const;
    void setTextFieldDuration() { cutter_.setTextFieldDuration(); }
    void viewValueReset() { cutter_.viewValueReset(); }
    /// 1: the start; 2: the end; -1 for any other `which`.
    std::int64_t getTextFieldValueMs(std::int64_t which) const;
    void button_cutter_addfile() { fileOpen(); }
    void button_load_image() { cutter_.invite(); }
    void button_play() { cutter_.play(); }
    void button_left_anchor() { cutter_.markStart(); }
    void button_right_anchor() { cutter_.markEnd(); }
    void slider_drag(const CustomSlider& sender);
    void button_cutter_doit() { cutter_.startCut(); }
    void scrubbingbarDidChange(const Notification& notification);
    void onTextDidChange(const Notification& notification);

    // The joiner.
    /// False, with an alert, when the list takes no more files; an invalid file only alerts.
    bool joinerAddFile(const QString& path) { return joiner_.add(path); }
    void fileDel() { joiner_.removeSelected(); }
    /// Whether all rows have one format and one size. Gives the panel the extension of the output.
    bool fileCanJoin() { return joiner_.canJoin(); }
    int numberOfRowsInTableView() const { return joiner_.rowCount(); }
    /// Invalid when there is no such row.
    QVariant tableViewObjectValueForTableColumn(const QString& identifier, int row) const;
    /// The operations that a drag of files may do here, as bits: all of them.
    unsigned tableViewValidateDrop() const { return ~0U; }
    /// Adds the first of the dropped files; whether there was one.
    bool tableViewAcceptDrop(const QStringList& files) { return joiner_.addDroppedFiles(files); }
    void button_joiner_addfile() { fileOpen(); }
    void button_joiner_delfile() { fileDel(); }
    void button_joiner_doit() { joiner_.merge(); }

    /// The address of the help page.
    QString helpPageAddress() const { return help_.address(); }
    void showHelp() const { help_.open(); }

    MainWindow& mainWin() { return *mainWin_; }
    bool isTerminating() const { return terminating_; }

    // What the cutter has loaded, the user has marked and the info list tells. Read by tests.
    const QString& filename() const { return cutter_.filename(); }
    float duration() const { return cutter_.duration(); }
    float labelValue() const { return cutter_.labelValue(); }
    bool addFileInitialized() const { return cutter_.isLoaded(); }
    const QString& version() const { return version_; }

private:
    CutterSession::Requests requestsOfCutter();
    bool letOthersRun() const;
    void connectActions();
    void connectControls();
    void awakeControls();
    void makeLists();
    void subscribe(const char* name, void (MainController::*handler)(const Notification&));
    void closePanels();

    HelpPage help_;
    std::unique_ptr<MainWindow> mainWin_;
    const Ui::MainWindow& ui_; ///< the outlets, under their names
    MainMenu menu_;
    CutterSession cutter_;
    TimelineSession timeline_;
    JoinerList joiner_;
    ExactPreview exactPreview_;
    PictureMoves pictureMoves_;
    QString version_; ///< shown nowhere
    bool terminating_ = false;
};

} // namespace velmora
