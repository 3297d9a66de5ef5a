#pragma once

#include "PictureService.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <memory>

namespace velmora {

class CutterSession;
class ExactPictureView;
class MainWindow;

/// The exact picture of the cutter's video, over the small preview, and moves from picture to
/// picture. Pictures come from a service of their own, later; the newest request is the one that
/// counts. Main thread.
class ExactPreview : public QObject {
    Q_OBJECT

public:
    /// Both must outlive this.
    ExactPreview(MainWindow& window, CutterSession& session);
    ~ExactPreview() override;

    /// Whether the pictures are seen. Moves go on in any case.
    void setShown(bool shown);

    /// So many pictures on, or back if negative; a second call before the first has been answered
    /// adds to it.
    void stepPictures(int count);
    /// Likewise, from key frame to key frame.
    void stepKeyFrames(int count);
    void stepSeconds(int count);

private:
    void load(const QString& path);
    void unload();
    void begin(const QString& path);
    void showPosition(std::int64_t us);
    void move(PictureRequest::Kind kind, int count);
    void ask(PictureRequest request);
    void take(const PictureAnswer& answer);
    void show(const PictureAnswer& answer);
    bool isCoarse();

    MainWindow& window_;
    CutterSession& session_;
    ExactPictureView& view_; ///< the preview's
    bool shown_ = true;
    bool liesOnItsSide_ = false;
    std::uint64_t loads_ = 0; ///< answers of an earlier one come too late

    PictureRequest asked_;      ///< the newest
    bool isMoving_ = false;     ///< by that request
    std::int64_t shownUs_ = -1; ///< of the exact picture on show; -1: none
    std::int64_t groupUs_ = 0;
    QElapsedTimer sinceMove_;
    QTimer rest_;
    QTimer resized_;
    std::unique_ptr<PictureService> service_; ///< last: its thread ends before the rest goes
};

} // namespace velmora
