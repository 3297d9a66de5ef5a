#pragma once

#include "CutEvents.h"
#include "CutMarks.h"
#include "CutPosition.h"
#include "DirectCutReader.h"
#include "PreviewPicture.h"
#include "SourceFactsReader.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class QLineEdit;

namespace velmora {

class CustomSlider;
class MainWindow;
class cutterWinController;
struct NodeInfo;

/// The cutter's video: loading it, its preview, the position of the bar, the marks, and the way
/// into the panel that starts a cut. The item itself is in the shared `cutterFileList`, the times
/// of a cut in the current setting. Times are seconds unless their names say otherwise. Main
/// thread; loading and scrubbing block.
///
/// Each load subscribes once more to the moves of the bar, so after n loads a move is handled n + 1
/// times, by design; the same picture is taken and loaded only once. Of two files chosen, the
/// second is loaded again and again, by design too: between two loads the window can be closed, but
/// takes no other input.
class CutterSession {
public:
    /// What a session asks of the window that it is in.
    struct Requests {
        /// A load begins: everything in the window, also this session, goes to its first values.
        std::function<void()> startAfresh;
        /// The user is to choose files, which come by loadChosenFiles().
        std::function<void()> askForFiles;
        /// Between two files: lets the user close the window. Whether loading goes on.
        std::function<bool()> letOthersRun;
    };

    /// The window must outlive the session.
    CutterSession(MainWindow& window, Requests requests);
    ~CutterSession();
    CutterSession(const CutterSession&) = delete;
    CutterSession& operator=(const CutterSession&) = delete;

    /// Makes the panel, unless there is one. Without it nothing can be cut.
    void createPanel();

    // Loading.
    /// A dropped path, or none for a click on the empty preview.
    void mouseDownListener(const std::optional<QString>& path);
    void loadChosenFiles(const QStringList& files);
    /// Starts all afresh, and shows length and first picture of the file, whatever it is.
    void firstLoadVideo(const QString& path);
    /// Makes the file the cutter's item; an invalid file only alerts.
    void cutterAddObject(const QString& path);
    /// From now on there is no video, but for its name and length.
    void unload();

    /// What happens here, for others to connect to; lives as long as this.
    const CutEvents& events() const { return events_; }

    /// What a direct cut takes; nothing until that is known.
    const std::optional<DirectStretch>& directCut() const { return direct_.stretch(); }

    // The bar and the marks.
    void sliderClear();
    void viewValueReset();
    /// The position is where the bar's `value`, a percentage, lies in the video.
    void showPosition(double value);
    /// Likewise, with the picture there.
    void scrubTo(double value);
    /// Goes to this position, microseconds, as by the bar's being moved there; until the next move,
    /// position, texts and marks are this time, rounded up to the millisecond, and not the one that
    /// the bar's value leads to.
    void goTo(std::int64_t us);
    /// Goes to a mark, as its field has it; nowhere if that is no time.
    void goToStart() { goToMark(exactStart_.usIn(start_)); }
    void goToEnd() { goToMark(exactEnd_.usIn(end_)); }
    /// Where the bar is, microseconds: precisely, after goTo(), else in whole milliseconds.
    std::int64_t positionUs() const { return at_.us(); }
    void markStart();
    void markEnd();
    void setTextFieldDuration();
    /// 1: the start; 2: the end; -1 for any other `which`.
    std::int64_t getTextFieldValueMs(std::int64_t which) const;
    /// The user has changed the text of a mark.
    void timesTyped();
    /// Puts a value into the current setting's field of that name.
    static void setInfoParameter(const QString& key, const QString& value);

    // Actions. Without a video, the first two ask for one.
    void invite();
    void play();
    /// Opens the panel modally, or says why not.
    void startCut();
    void closePanel();

    const QString& filename() const { return filename_; }
    float duration() const { return mDuration; }
    float labelValue() const { return at_.seconds(); }
    bool isLoaded() const { return mAddFileInitialized; }

private:
    std::optional<std::int32_t> loadChosenFile(const QString& path);
    std::int32_t probeVideo(const QString& path) const;
    void takeProbedVideo(const QString& path);
    void setDuration(float seconds);
    void setPosition(double value);
    void showPositionText();
    void goToMark(std::optional<std::int64_t> us);
    void showTrouble();
    void showDirectCut();
    void tellMarks(std::int64_t startMs, std::int64_t endMs);

    MainWindow& window_;
    CustomSlider& bar_;
    QLineEdit& start_;
    QLineEdit& end_;
    QLineEdit& length_;
    QLineEdit& position_;
    PreviewPicture preview_;
    Requests requests_;
    SourceFactsReader facts_;
    DirectCutReader direct_;
    std::unique_ptr<cutterWinController> mCutterWincontroller;
    CutEvents events_;

    QString filename_;
    float mDuration = 0;
    std::int64_t lengthUs_ = 0; ///< of the item; the texts have fewer digits
    CutMarks marks_;
    CutMarks told_; ///< likewise, or as typed
    CutPosition at_;
    ExactMark exactStart_;
    ExactMark exactEnd_;
    [[maybe_unused]] float mStartTimeMs = 0;
    bool mAddFileInitialized = false;
};

} // namespace velmora
