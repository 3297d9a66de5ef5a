#pragma once

#include "NodeSetting.h"
#include "ParameterBoxes.h"
#include "ProfileInfo.h"
#include "SettingEditing.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class QComboBox;
class QPushButton;
class QWidget;

namespace velmora {

class ConverterController;
class OutputSettingsForm;
class PanelWindow;
struct ConverterInfo;

namespace Ui {
class OutputSettingsForm;
}

/// What the panels of cutter and joiner share: the user chooses direct copying or a profile and its
/// parameters, an output folder and a name, and starts the job. The choices go into the current
/// setting, which the main window has made by then.
///
/// Whoever opens a panel runs its window() modally. A start ends that session first: a refused one
/// leaves the panel on screen, where it blocks nothing and can start again; whoever has opened it
/// closes it once it no longer fits what it was opened for. Main thread.
class OutputSettingsPanel {
public:
    virtual ~OutputSettingsPanel();
    OutputSettingsPanel(const OutputSettingsPanel&) = delete;
    OutputSettingsPanel& operator=(const OutputSettingsPanel&) = delete;

    /// The panel's window. The first call loads it, with what has been set until then; afterwards
    /// it keeps what the user has chosen.
    QWidget& window();
    /// Closes the window, if it is on screen, and first what is open over it, each as its close box
    /// does.
    void close();

    void windowDidLoad();
    /// The default folders, an empty output folder and the default name.
    void initMainWin();
    /// The profiles and the choices of the first one. Without any profile only direct copying is
    /// left to choose.
    void initProfile();
    /// Adds the choices of the profile to the boxes, which the caller has emptied, and selects its
    /// defaults. Nothing happens without such a profile.
    void parameterChoice(const QString& profileName);
    void comboxClean();
    /// Whether profile and parameters can be chosen.
    void setStatus(bool enabled);
    /// Always true; ends the modal session.
    bool windowShouldClose();

    /// Why the source comes out wrong unless Exact is chosen, as a sentence; empty when it does
    /// not. Another one than before chooses Exact for re-encoding, or takes the choice back; what
    /// the user has chosen since stays.
    void setTrouble(const QString& trouble);

    // Actions of the widgets.
    void mButFormatChange();
    void mButMakeChoice();
    void mButBrowse();
    /// Opens the profile editor with the panel's choices. If the user confirms, they come back.
    void mButCustomize();

    /// Puts the chosen parameters into the current setting. What is typed and no choice is empty.
    void getSetInfo();
    /// Puts a frame size such as "1280x720" into the current setting; 0 for what is no number.
    static void parseResolution(const QString& resolution);
    /// The text up to the first blank.
    static QString getChannel(const QString& text);
    /// "mp4" of "MPEG-4 Video (*.mp4)"; empty without a dot.
    static QString getExtension(const QString& profileName);

protected:
    static constexpr int kReencodeRow = 1; ///< of mRadioGroup

    /// The window stays above `owner`, which outlives the panel; null: it belongs to no other.
    explicit OutputSettingsPanel(QWidget* owner);

    /// Fills the window from the panel's interface description and gives the form in it.
    virtual OutputSettingsForm* setupWindow(PanelWindow& window) = 0;
    /// The property list that panel and editor read the profiles from.
    virtual QString profilePath() const;
    /// Puts the choice of the source's frame rate before those of a profile, where there is one.
    virtual void addSourceFrameRate() {}
    /// Where the frame rates are selected for a profile with this default position.
    virtual int frameRatePosition(int profileDefault) const { return profileDefault; }
    /// The chosen frame rate, as a run takes it.
    virtual QString chosenFrameRate() const;
    /// Selects a frame rate that comes from the editor; the editor has shown `shownBefore`.
    virtual void selectFrameRate(const QString& rate, const QString& shownBefore);
    /// The extension of a direct output, as far as it is known before the start.
    virtual QString expectedExtension() const { return mExtension; }

    /// What Exact means, as a sentence.
    virtual QString exactSentence() const = 0;
    /// Whether Exact can be chosen for direct copying, too.
    virtual bool canCopyExactly() const { return false; }
    /// What it means there, or why it cannot be chosen, as a sentence.
    virtual QString exactCopySentence();
    /// Shows anew whether Exact can be chosen and what it means.
    void refreshExact();

    const Ui::OutputSettingsForm& outlets() const;
    bool isLoaded() const { return form_ != nullptr; }
    /// Whether the user has chosen an exact copy.
    bool isExactCopy() const;
    int selectedRow() const;
    QString folder() const;
    QString profileText() const;
    void setDefaultFilename(const QString& name);
    void setDirectExtension(const QString& extension);
    /// Accents the button and lets it call `action`.
    static void bindStart(QPushButton& button, std::function<void()> action);

    // Parts of a start.
    ConverterInfo newJob(bool isCutter) const;
    void logChoices() const;
    /// Composes the output path, and in re-encode mode puts the choices into the current setting.
    void applyChoices(ConverterInfo& job);
    static void showPlainAlert(const QString& message);
    /// Takes the panel off the screen; nobody is asked.
    void closePanel();
    void createConverter();
    void showConverter(const ConverterInfo& job);

    std::unique_ptr<ConverterController> converterController; ///< made by the first start
    ProfileInfo mProfileInfo;
    QStringList mProfileArray; ///< names of all profiles
    NodeSetting mSetInfo;      ///< the first profile's, as it was loaded
    QString mVideoEncoder;
    QString mAudioEncoder;
    QString mAudioChannels;
    QString mInputPath;  ///< not used
    QString mOutputPath; ///< not used
    QString mFilename;
    QString mExtension;      ///< of a direct output
    QString mOutputFilename; ///< full path, of the last start that got as far as composing it
private:
    void load();
    void bindActions();
    void addChoices(const ProfileParameter& parameter);
    void profileTextEntered();
    void parametersToSetting();
    void parametersFromSetting(const QString& frameRateShownBefore);
    void refreshResultPath();
    bool& exactChoice();
    QString channelChoice() const;
    QString composedPath(const QString& extension) const;
    const ProfileParameter* parameterOfProfile(const QString& name) const;

    QWidget* owner_;
    std::unique_ptr<PanelWindow> window_;
    OutputSettingsForm* form_ = nullptr;  ///< the window's
    std::optional<ParameterBoxes> boxes_; ///< the form's
    SettingEditing editing_;
    QString profileOnShow_;         ///< whose choices the boxes hold
    QString trouble_;               ///< of the source
    bool reencodesExactly_ = false; ///< the choice for re-encoding
    bool copiesExactly_ = false;    ///< and that for direct copying, which is the user's alone
};

} // namespace velmora
