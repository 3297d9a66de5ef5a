#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

namespace velmora {

/// Shows a picture over the small preview, as large as that, or a sentence where there is none.
/// Until it has one of them nothing of it is seen. The mouse does not notice it. Main thread.
class ExactPictureView : public QWidget {
    Q_OBJECT

public:
    /// Covers `preview`, and goes with it.
    explicit ExactPictureView(QWidget& preview);

    /// `description`: of the picture, for assistive technology.
    void setPicture(const QImage& picture, const QString& description);
    void setSentence(const QString& sentence);
    /// Neither.
    void clear();

    const QImage& picture() const { return picture_; }
    const QString& sentence() const { return sentence_; }
    /// In pixels of the device.
    QSize deviceSize() const;

Q_SIGNALS:
    /// It has another size in pixels of the device.
    void resized();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QImage picture_;
    QString sentence_;
};

} // namespace velmora
