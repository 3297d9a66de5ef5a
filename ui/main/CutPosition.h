#pragma once

#include <QLineEdit>
#include <QString>

#include <cstdint>
#include <optional>

namespace velmora {

/// Where the cutter is in its video. The bar tells it in percent and the texts in 32-bit seconds,
/// which are too coarse for long videos; a position that was asked for by its time is kept as that.
class CutPosition {
public:
    /// There is a new video; its beginning is on show. seconds() stays until the bar is moved.
    void reset();
    /// The bar has been moved to `value`, a percentage of `duration`, seconds; while it is moved to
    /// a time that was asked for, that is the position.
    void setByBar(double value, float duration);
    /// The bar is being moved to this time, microseconds.
    void beginGoingTo(std::int64_t us) { going_ = us; }
    void endGoing() { going_.reset(); }

    /// Precisely as asked for, else in whole milliseconds, as the texts have it.
    std::int64_t us() const { return us_.value_or(0); }
    /// Rounded up, where it was asked for: a key frame is not after its own time then.
    std::int64_t ms() const;
    /// As the texts and the small preview have it.
    float seconds() const { return seconds_; }
    QString text() const;

private:
    float seconds_ = 0;
    std::optional<std::int64_t> us_; ///< nothing: the bar has not been moved yet
    bool isExact_ = false;           ///< it was asked for, and is not that of the bar
    std::optional<std::int64_t> going_;
};

/// A mark as it was set, which is exact for as long as its field has not been changed.
struct ExactMark {
    QString text;
    std::optional<std::int64_t> us;

    /// Where the mark is, microseconds; nothing if the field has no time.
    std::optional<std::int64_t> usIn(const QLineEdit& field) const;
    /// What an exact cut takes: the nearest millisecond, before which the picture never lies by
    /// more than half of one. 0 if the field has no time.
    std::int64_t nearestMsIn(const QLineEdit& field) const;
};

} // namespace velmora
