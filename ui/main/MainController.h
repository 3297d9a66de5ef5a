#pragma once

#include "HelpPage.h"
#include "NodeInfo.h"

#include <QDateTime>
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
class JoinerTableModel;
class MainWindow;
class cutterWinController;
class joinerWinController;
struct Notification;

namespace Ui {
class MainWindow;
}

/// The main window's controller: both workspaces, loading and previewing, the time fields, the
/// joiner's list with its can-join rule, and the ways into the two panels. It makes the state that
/// all windows share. Times are seconds unless their names say otherwise. Actions take no sender,
/// except the one that asks it something. Main thread.
///
/// Set-up is in MainController.cpp; what belongs to one workspace in CutterWorkspace.cpp and
/// JoinerWorkspace.cpp.
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

    // The cutter.
    /// Asks for files: for the cutter, or for the joiner while that one is on show.
    void fileOpen();
    /// What `fileOpen` does with the answer; `returnCode` 1 is OK.
    void openFilePanelDidEnd(const QStringList& files, int returnCode);
    /// A dropped path, or none for a click on the empty preview.
    void mouseDownListener(const std::optional<QString>& path);
    void firstLoadVideo(const QString& path);
    void cutterAddObject(const QString& path);
    void sliderClear();
    void setInfoParameter(const QString& key, const QString& value);
    QString getStringTime(float time) const;
    void textSetTime(QLineEdit& field, float time) const;
    void testSetTimeDuration(QLineEdit& field, float position, float length) const;
    void setTextFieldDuration();
    void viewValueReset();
    /// 1: the start; 2: the end; -1 for any other `which`.
    std::int64_t getTextFieldValueMs(std::int64_t which) const;
    void button_cutter_addfile();
    void button_load_image();
    void button_play();
    void button_left_anchor();
    void button_right_anchor();
    void slider_drag(const CustomSlider& sender);
    void button_cutter_doit();
    void scrubbingbarDidChange(const Notification& notification);
    void onTextDidChange(const Notification& notification);

    // The joiner.
    /// False, with an alert, when the list takes no more files; an invalid file only alerts.
    bool joinerAddFile(const QString& path);
    void fileDel();
    /// Whether all rows have one format and one size. Gives the panel the extension of the output.
    bool fileCanJoin();
    int numberOfRowsInTableView() const;
    /// Invalid when there is no such row.
    QVariant tableViewObjectValueForTableColumn(const QString& identifier, int row) const;
    /// The operations that a drag of files may do here, as bits: all of them.
    unsigned tableViewValidateDrop() const;
    /// Adds the first of the dropped files; whether there was one.
    bool tableViewAcceptDrop(const QStringList& files);
    void button_joiner_addfile();
    void button_joiner_delfile();
    void button_joiner_doit();

    /// The address of the help page.
    QString helpPageAddress() const { return help_.address(); }
    void showHelp() const;

    MainWindow& mainWin() { return *mainWin_; }
    bool isTerminating() const { return terminating_; }

    // What the cutter has loaded, the user has marked and the info list tells. Read by tests.
    const QString& filename() const { return filename_; }
    float duration() const { return mDuration; }
    float labelValue() const { return mLabelValue; }
    bool addFileInitialized() const { return mAddFileInitialized; }
    const QString& version() const { return version_; }

private:
    void connectActions();
    void connectMenu();
    void offerActions();
    void awakeControls();
    void subscribe(const char* name, void (MainController::*handler)(const Notification&));
    void createPanels();
    void closePanels();

    void loadChosenFiles(const QStringList& files);
    std::optional<std::int32_t> loadChosenFile(const QString& path);
    bool letOthersRun();
    std::int32_t probeVideo(const QString& path);
    static bool acceptProbe(std::int32_t code);
    static void takeSource(NodeInfo& item);
    void takeProbedVideo(const std::shared_ptr<NodeInfo>& item);
    void showSnapshot(const QString& path);
    void showSnapshotUnlessShown(const QString& path);

    void addChosenFiles(const QStringList& files);
    void reloadTable();

    HelpPage help_;
    std::unique_ptr<MainWindow> mainWin_;
    const Ui::MainWindow& ui_; ///< the outlets, under their names
    std::unique_ptr<JoinerTableModel> tableModel_;
    std::unique_ptr<cutterWinController> mCutterWincontroller;
    std::unique_ptr<joinerWinController> mJointerWincontroller;

    /// What a preview picture was taken from, and the state of its file.
    struct SnapshotMark {
        QString source;
        double seconds = 0;
        QDateTime written;
        qint64 size = 0;
        bool operator==(const SnapshotMark&) const = default;
    };
    SnapshotMark markOf(const QString& path) const;

    std::optional<SnapshotMark> shown_;
    QString version_; ///< shown nowhere
    QString filename_;
    float mDuration = 0;
    std::int64_t mStartValMs = 0;
    std::int64_t mEndValMs = 0;
    float mLabelValue = 0; ///< where the bar is
    [[maybe_unused]] float mStartTimeMs = 0;
    bool mAddFileInitialized = false;
    bool terminating_ = false;
};

} // namespace velmora
