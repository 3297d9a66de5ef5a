#pragma once

#include "NewestQuestion.h"
#include "SoundPeaksReader.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>

namespace velmora {

class CutterSession;
class TimelineStrip;

namespace Ui {
class MainWindow;
}

/// Keeps the timeline at what happens to the cutter's video, finds out what is shown there behind
/// the windows' back, and goes where the user wants to. While the timeline is hidden nothing is
/// found out. Main thread.
class TimelineSession : public QObject {
public:
    /// Both must outlive the session.
    TimelineSession(const Ui::MainWindow& ui, CutterSession& cutter);

private:
    void connectCutter();
    void connectActions(const Ui::MainWindow& ui);
    void showVideo(const QString& path);
    void showNone();
    void setShown(bool shown);
    void findOut();
    void forget();
    void readKeyFrames();
    void followView(std::int64_t beginUs, std::int64_t endUs);
    void readPictures();

    TimelineStrip& strip_;
    CutterSession& cutter_;
    QString path_; ///< empty: no video
    QTimer begin_; ///< until the first picture has been shown
    QTimer rest_;  ///< until the view has come to rest
    SoundPeaksReader sound_;
    NewestQuestion keyFrames_;
    NewestQuestion pictures_;
};

} // namespace velmora
