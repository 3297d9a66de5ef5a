#pragma once

#include "TimelineModel.h"

#include <QWidget>

#include <vector>

class QPainter;

namespace velmora {

/// A strip that shows where things are in a video: key frames, the position, the marked stretch,
/// what a direct copy adds to it, and the sound. A click goes to a place. Ctrl and the wheel zoom
/// around the position; dragging scrolls then, and otherwise takes the position along. What it
/// shows is in its model; whoever tells it something new need not ask for a redraw. Main thread.
class TimelineStrip : public QWidget {
    Q_OBJECT

public:
    explicit TimelineStrip(QWidget* parent = nullptr);

    const TimelineModel& model() const { return model_; }

    /// Another video of this length, with nothing known of it yet; 0: none. A picture is usually
    /// shown for `pictureUs`.
    void setVideo(std::int64_t lengthUs, std::int64_t pictureUs);
    void setPosition(std::int64_t us);
    void setMarks(std::int64_t beginUs, std::int64_t endUs);
    void setDirect(const std::optional<DirectStretch>& direct);
    void setKeyFrames(KeyFrames keyFrames);
    void setPictures(std::vector<std::int64_t> times);
    /// They have to outlive the strip or be replaced; to be called again when they have changed.
    void setPeaks(const PeakTable* peaks);

    /// Shows twice as much detail around the position, or half as much.
    void zoomIn() { zoomBy(2.0); }
    void zoomOut() { zoomBy(0.5); }
    /// Goes to this place as by the user's hand.
    void choose(std::int64_t us);
    /// How far an arrow key goes: a hundredth of what is visible.
    std::int64_t stepUs() const;
    /// What is shown, in sentences.
    QString description() const;

    QSize sizeHint() const override { return {400, kHeight}; }
    QSize minimumSizeHint() const override { return {120, kHeight}; }

Q_SIGNALS:
    /// The user wants to go there.
    void positionChosen(qint64 us);
    /// What is visible is another part.
    void viewChanged(qint64 beginUs, qint64 endUs);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    static constexpr int kHeight = 40;

    void zoomBy(double factor);
    /// Has the strip redrawn, and tells when something else is visible than in `before`.
    void viewMayHaveChanged(std::int64_t beginBefore, std::int64_t endBefore);
    template <class Change> void changeView(Change change);

    void drawSound(QPainter& painter);
    void drawMarked(QPainter& painter) const;
    void drawAdded(QPainter& painter) const;
    void drawDirect(QPainter& painter) const;
    void drawTicks(QPainter& painter) const;
    void drawEnds(QPainter& painter) const;
    void drawNumber(QPainter& painter, double x) const;
    void drawPosition(QPainter& painter) const;
    void drawFrame(QPainter& painter) const;

    TimelineModel model_;
    std::vector<std::optional<SoundPeak>> levels_; ///< of each column of device pixels
    bool levelsAreOld_ = true;
    double pressedX_ = 0;
    double draggedX_ = 0; ///< where the drag has got to
    bool isPressed_ = false;
    bool isDragged_ = false;
};

} // namespace velmora
