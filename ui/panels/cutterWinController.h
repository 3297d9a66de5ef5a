#pragma once

#include "CopyForecastReader.h"
#include "OutputSettingsPanel.h"

#include <QString>

#include <cstdint>

namespace velmora {

/// The output settings of a cut. The cut window comes from the time fields of the main window and
/// waits in the current setting for the start. Main thread.
class cutterWinController : public OutputSettingsPanel {
public:
    /// The window stays above `owner`, which outlives the panel; null: it belongs to no other.
    explicit cutterWinController(QWidget* owner = nullptr);

    /// The milliseconds that parsedMilliseconds() reads; -1 for a text that is no time.
    static std::int32_t parseSpecificStringToMs(const QString& time);
    /// Puts the cut window into the current setting, also times that are none. Its length in
    /// milliseconds; -1 if a text is no time or the end lies before the start.
    static std::int32_t setStartAndEnd(const QString& start, const QString& end);

    /// The video that is cut, for what is told of an exact copy before it starts.
    void setExactSource(const QString& path);
    /// What an exact cut takes, milliseconds: as it was typed, while the setting rounds long times.
    void setExactWindow(std::int64_t startMs, std::int64_t endMs);

    /// How a direct cut differs from what is marked, as a sentence; empty: not, or not known.
    void setDirectCut(const QString& sentence);

    /// The default name, which reaches the name field only before the window is loaded, and the
    /// extension of the source.
    void setCutterOutputFilename(const QString& name, const QString& extension);
    QString CutterOutputFilename() const { return mFilename; }

    /// What the start button does: starts the cut, or says why not.
    void mButStartCut();

protected:
    OutputSettingsForm* setupWindow(PanelWindow& window) override;
    void addSourceFrameRate() override;
    int frameRatePosition(int /*profileDefault*/) const override { return 0; }
    QString chosenFrameRate() const override;
    void selectFrameRate(const QString& rate, const QString& shownBefore) override;
    QString exactSentence() const override;
    bool canCopyExactly() const override { return true; }
    /// What the copy would do, once the box is checked.
    QString exactCopySentence() override;

private:
    bool keepsSourceFrameRate() const;

    QString directCut_;
    OutputSettingsForm* directForm_ = nullptr; ///< the window's
    std::int64_t startMs_ = 0;
    std::int64_t endMs_ = 0;
    QString source_;
    CopyForecastReader forecast_;
};

} // namespace velmora
