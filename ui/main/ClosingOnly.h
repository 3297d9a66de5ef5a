#pragma once

#include <QObject>

class QAction;

namespace velmora {

/// While it lives, the user can do nothing in the program but answer alerts, close windows
/// and quit. Main thread.
class ClosingOnly : public QObject {
    Q_OBJECT

public:
    /// The action that quits, whose shortcut goes on working.
    explicit ClosingOnly(const QAction& quit);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const QAction& quit_;
};

} // namespace velmora
