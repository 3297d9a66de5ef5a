#pragma once

#include <QLabel>

namespace velmora {

/// A line that is one link. Tab and Shift+Tab come to it once, with the link marked, so that Return
/// follows it, and go on from there; QLabel itself would hold Shift+Tab for ever.
class LinkLabel : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

protected:
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
};

} // namespace velmora
