#pragma once

#include <cstdint>
#include <map>
#include <optional>

namespace velmora {

/// What is known of when the pictures of a stream are shown, as far as they have been decoded.
/// Times are ticks of the stream.
class PictureTimes {
public:
    struct Picture {
        std::optional<std::int64_t> previous = {}; ///< none known
        std::optional<std::int64_t> next = {};     ///< likewise
        std::int64_t clearFrom = 0;                ///< from here to the picture there is no other
        bool isFirst = false;
        bool isLast = false;
        bool isKey = false;
    };

    /// There is a picture at `time`.
    void add(std::int64_t time, bool isKey);
    /// The one at `time` is followed by the one at `next`.
    void link(std::int64_t time, std::int64_t next);
    /// It is the first one at `from` or later.
    void setClear(std::int64_t time, std::int64_t from);
    void setFirst(std::int64_t time);
    void setLast(std::int64_t time);

    /// Null when it is not known.
    const Picture* find(std::int64_t time) const;
    /// When the first picture at `wanted` or later is shown, after the last one the last one;
    /// nothing when that is not known.
    std::optional<std::int64_t> at(std::int64_t wanted) const;

private:
    Picture& insert(std::int64_t time);

    std::map<std::int64_t, Picture> pictures_;
};

} // namespace velmora
