#pragma once

#include <QObject>
#include <QString>

namespace velmora {

/// What happens to the cutter's video, for those that show it in other ways. Main thread.
class CutEvents : public QObject {
    Q_OBJECT

Q_SIGNALS:
    /// The file at `path` is shown from its beginning; the window has been told its length.
    void loaded(const QString& path);
    /// There is no video any more.
    void unloaded();
    /// The position is another one, microseconds.
    void positionMoved(qint64 us);
    /// The stretch that is to be cut is another one.
    void marksMoved(qint64 startMs, qint64 endMs);
    /// What a direct cut of that stretch takes has become known, or is not known any more.
    void directCutChanged();
};

} // namespace velmora
