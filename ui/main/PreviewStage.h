#pragma once

#include <QFrame>
#include <QSize>

namespace velmora {

/// The room of the preview: keeps its one child, centred, in the proportions of the video. What is
/// dropped beside the child counts as dropped on it. Main thread.
class PreviewStage : public QFrame {
    Q_OBJECT

public:
    explicit PreviewStage(QWidget* parent = nullptr);

    /// The frame size whose proportions the child takes, in pixels; without a usable one it gets
    /// all of the room.
    void setFrameSize(const QSize& size);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void placeChild();
    QWidget* child() const;

    QSize frameSize_;
};

} // namespace velmora
