#pragma once

#include "NamedImage.h"

#include <QStringList>
#include <QWidget>

#include <functional>
#include <optional>

class QMimeData;

namespace velmora {

/// Shows the preview picture, or the picture named "add1" while there is no video, and tells of a
/// click on that one and of files dropped on either by one callback. Main thread.
class customImageView : public QWidget {
    Q_OBJECT

public:
    /// Called with the dropped path, or without one for a click.
    using MouseDownCallback = std::function<void(const std::optional<QString>&)>;

    static constexpr const char* kPlaceholderName = "add1";

    explicit customImageView(QWidget* parent = nullptr);
    void initWithFrame(const QRect& frame);

    void setMouseDownCB(MouseDownCallback callback);
    /// The callback as an object and one of its operations; the object must outlive the view.
    template <typename Handler>
    void setMouseDownCB(Handler* handler, void (Handler::*sel)(const std::optional<QString>&)) {
        setMouseDownCB(
            [handler, sel](const std::optional<QString>& path) { (handler->*sel)(path); });
    }

    /// A picture without a name is a preview.
    void setImage(NamedImage image);
    const NamedImage& image() const { return image_; }
    static constexpr int kStretchToFill = 1;
    /// kStretchToFill: on both axes; else as large as fits in proportion.
    void setImageScaling(int scaling);
    int imageScaling() const { return scaling_; }

    void mouseDown(QMouseEvent& event);
    /// Answers what a drag may do here: 1, copy, whatever is dragged.
    int draggingEntered(const QMimeData& drag);
    void draggingExited();
    /// Passes the first file name on, whatever its extension. Answers whether the drop is taken.
    bool prepareForDragOperation(const QMimeData& drag);
    void drawRect(QPainter& painter);

    const QStringList& fileTypes() const { return mFileType; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildFileTypes();
    bool showsPlaceholder() const { return image_.name() == kPlaceholderName; }
    void tell(const std::optional<QString>& path) const;

    MouseDownCallback mMouseDownCB;
    QStringList mFileType; ///< not asked: whether a file can be opened turns out when it is loaded
    NamedImage image_;
    int scaling_ = 0;
};

} // namespace velmora
