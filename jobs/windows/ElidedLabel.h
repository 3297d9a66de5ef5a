#pragma once

#include <QLabel>

namespace velmora {

/// A line of plain text that leaves out its middle where there is no room for all of it, instead of
/// asking for more room.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace velmora
