#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace velmora {

/// A picture of a source that is asked for. Positions are microseconds from the container's start.
struct PictureRequest {
    enum class Kind {
        At,       ///< the picture at the position
        KeyAt,    ///< that of the last key frame before the position; it may come as approximate
        Step,     ///< that many pictures after the one at the position, before it if negative
        KeyFrame, ///< that of the key frame so many after the position, before it if negative
    };

    Kind kind = Kind::At;
    std::uint64_t number = 0; ///< the asker's own
    std::int64_t us = 0;
    int count = 0;
    /// The size of the view, upright, in pixels. A picture is never made larger than its source.
    int width = 0;
    int height = 0;
};

/// A picture as it is shown: upright, at the size of the view, in its proportions if the view has
/// them. Each pixel is 0xffRRGGBB; rows follow each other without gaps.
struct PictureAnswer {
    PictureRequest request = {};
    std::vector<std::uint32_t> pixels = {}; ///< empty: no picture can be shown
    int width = 0;
    int height = 0;
    std::int64_t us = 0;      ///< the picture's own position
    std::int64_t groupUs = 0; ///< between key frames, in the mean; 0: not known yet
    bool exact = false; ///< it is the one that was asked for; another one precedes it at times
};

/// Gives the pictures of one source that are asked for, on a thread of its own. The newest request
/// replaces the one before, which is then not answered any more, or not exactly.
class PictureService {
public:
    /// Called on the service's thread.
    using Sink = std::function<void(PictureAnswer)>;

    /// Ends what is going on and waits for it; the sink is not called any more.
    virtual ~PictureService() = default;
    virtual void ask(const PictureRequest& request) = 0;
};

} // namespace velmora
