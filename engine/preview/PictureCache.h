#pragma once

#include "ViewPicture.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>

namespace velmora {

/// Decoded pictures by their times, in ticks of the stream: those next to where the user is, as
/// many as fit. Belongs to one thread.
class PictureCache {
public:
    /// `budget`: bytes.
    explicit PictureCache(std::size_t budget) : budget_(budget) {}

    void clear();
    /// Where the user is.
    void setCentre(std::int64_t time) { centre_ = time; }
    std::int64_t centre() const { return centre_; }
    /// Whether a picture of that time would stay, if it is as large as the others.
    bool hasRoomFor(std::int64_t time) const;
    /// Takes it, and drops the farthest ones if there are too many.
    void put(std::int64_t time, std::shared_ptr<const ViewPicture> picture);

    /// Null when it is not there.
    std::shared_ptr<const ViewPicture> get(std::int64_t time) const;
    bool has(std::int64_t time) const { return pictures_.contains(time); }
    /// The time of the picture nearest to `time`.
    std::optional<std::int64_t> nearest(std::int64_t time) const;
    std::size_t bytes() const { return bytes_; }

private:
    using Pictures = std::map<std::int64_t, std::shared_ptr<const ViewPicture>>;

    std::uint64_t distance(std::int64_t time) const;
    Pictures::const_iterator farthest() const;

    Pictures pictures_;
    std::size_t budget_;
    std::size_t bytes_ = 0;
    std::int64_t centre_ = 0;
};

} // namespace velmora
