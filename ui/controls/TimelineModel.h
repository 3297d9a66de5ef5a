#pragma once

#include "DirectStretch.h"
#include "KeyFrames.h"
#include "PeakTable.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace velmora {

/// What a timeline shows and where: a video's length, key frames, marks and sound, the part of it
/// that is visible, and how that lies on so and so many pixels. Times are microseconds from the
/// container's start, places are device-independent pixels. Knows no widgets.
class TimelineModel {
public:
    /// Ticks are never closer to each other than this.
    static constexpr double kClosestTicks = 4.0;

    /// From `begin` up to `end`.
    struct Part {
        double begin = 0;
        double end = 0;

        bool isEmpty() const { return !(begin < end); }
    };

    /// Another video, all of it visible; 0: none.
    void setLength(std::int64_t us);
    void setWidth(double pixels);
    /// How long a picture usually is shown; at full zoom it has room to be told apart.
    void setPictureLength(std::int64_t us);
    /// The part that is visible moves if the position leaves it.
    void setPosition(std::int64_t us);
    void setMarks(std::int64_t beginUs, std::int64_t endUs);
    void setDirect(const std::optional<DirectStretch>& direct) { direct_ = direct; }
    void setKeyFrames(KeyFrames keyFrames) { keyFrames_ = std::move(keyFrames); }
    /// Of all pictures of some part; each after the one before.
    void setPictures(std::vector<std::int64_t> times) { pictures_ = std::move(times); }
    /// It has to outlive the model or be replaced; null: none.
    void setPeaks(const PeakTable* peaks) { peaks_ = peaks; }

    std::int64_t lengthUs() const { return lengthUs_; }
    std::int64_t positionUs() const { return positionUs_; }
    const KeyFrames& keyFrames() const { return keyFrames_; }
    const std::optional<DirectStretch>& direct() const { return direct_; }
    std::int64_t markBeginUs() const { return markBeginUs_; }
    std::int64_t markEndUs() const { return markEndUs_; }

    // What is visible.
    std::int64_t viewBeginUs() const { return viewBeginUs_; }
    std::int64_t viewEndUs() const { return viewBeginUs_ + viewUs_; }
    bool isZoomed() const { return viewUs_ < lengthUs_; }
    bool canZoomIn() const { return viewUs_ > leastViewUs(); }
    /// Shows `factor` times as much detail, around the position; less than 1: less.
    void zoom(double factor);
    /// Moves what is visible to the right by so many pixels, as far as there is more.
    void scroll(double pixels);
    /// Whether single pictures have room enough to be told apart.
    bool showsPictures() const;

    // Where it is.
    double xOf(std::int64_t us) const;
    /// Within the video.
    std::int64_t timeAt(double x) const;
    std::vector<double> keyFrameTicks() const;
    std::vector<double> pictureTicks() const;
    /// What is marked, within what is visible.
    Part marked() const { return partOf(markBeginUs_, markEndUs_); }
    /// What a direct cut takes.
    Part directPart() const;
    /// What of that lies before the marked start.
    Part addedByDirect() const;
    /// What of the marked stretch is not in a direct cut, since that ends earlier.
    Part missingInDirect() const;
    /// The sound of each column, `columns` in all; nothing where it is not known. No peak is lost.
    std::vector<std::optional<SoundPeak>> levels(int columns) const;

private:
    std::int64_t leastViewUs() const;
    void show(double beginUs, double viewUs);
    double usPerPixel() const;
    std::vector<double> ticksOf(const std::vector<std::int64_t>& times) const;
    Part partOf(std::int64_t beginUs, std::int64_t endUs) const;

    std::int64_t lengthUs_ = 0;
    double width_ = 1;
    std::int64_t pictureUs_ = 40'000;
    std::int64_t positionUs_ = 0;
    std::int64_t markBeginUs_ = 0;
    std::int64_t markEndUs_ = 0;
    std::int64_t viewBeginUs_ = 0;
    std::int64_t viewUs_ = 0; ///< of time that is visible
    std::optional<DirectStretch> direct_;
    KeyFrames keyFrames_;
    std::vector<std::int64_t> pictures_;
    const PeakTable* peaks_ = nullptr;
};

} // namespace velmora
