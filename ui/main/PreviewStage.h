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

    /// The size whose proportions the child takes; without a usable one it gets all of the room.
    void setDisplaySize(const QSize& size);
    /// Whether what is shown is turned by a quarter.
    void setTurned(bool turned);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void placeChild();
    QWidget* child() const;

    QSize displaySize_;
    bool turned_ = false;
};

} // namespace velmora
