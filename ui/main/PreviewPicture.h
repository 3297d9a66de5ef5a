#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace velmora {

class customImageView;

/// The picture of the cutter's video at one time: the engine takes it, into the system's one
/// preview file, and the view shows it. Main thread; taking a picture blocks.
class PreviewPicture {
public:
    /// The view must outlive this.
    explicit PreviewPicture(customImageView& view);

    /// Shows the first picture of a file that has just been probed.
    void showFirst(const QString& source);
    /// Shows the picture at `seconds`, unless it is on show.
    void showAt(const QString& source, float seconds);

private:
    /// What a picture was taken from, and the state of its file.
    struct Mark {
        QString source;
        double seconds = 0;
        QDateTime written;
        qint64 size = 0;
        bool operator==(const Mark&) const = default;
    };
    /// Of the picture that the engine has taken last.
    static Mark markOf(const QString& source);
    void show(const Mark& mark);

    customImageView& view_;
    std::optional<Mark> shown_;
};

} // namespace velmora
