#pragma once

#include "AvHandles.h"
#include "FileIdentity.h"

#include <memory>
#include <optional>
#include <string>

namespace velmora {

class InputMedia;

/// Takes preview pictures. Keeps the last file open, so that the next picture of it costs a seek
/// and the decoding of one picture. A file is opened anew when it has changed meanwhile, and when
/// reading has told more of it than its index: a seek would then lead elsewhere than that of a
/// cut. Belongs to one thread.
class Snapshot {
public:
    Snapshot();
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// See ConversionEngine::snapshot. A seek by time adds the container's start time to
    /// `startSeconds`.
    int take(const std::string& path, double& startSeconds, const std::string& picturePath);

    /// Of the file that was opened last; -1: none.
    int videoStreamIndex() const;
    int audioStreamIndex() const;

private:
    /// A picture that was written, and from what.
    struct Written {
        FileIdentity source;
        FileIdentity picture;
        double askedSeconds;
        double foundSeconds; ///< askedSeconds on the container's time line
    };

    int keepOrOpen(const std::string& path);
    int open(const std::string& path);
    std::optional<double> foundSecondsOfWritten(double askedSeconds,
                                                const std::string& picturePath) const;
    int findPicture(double& startSeconds, FrameHandle& picture);
    int goTo(double& startSeconds);

    std::unique_ptr<InputMedia> input_;
    bool atStart_ = false;  ///< nothing has been read of the input yet
    int placesAtStart_ = 0; ///< known when the input was opened
    std::optional<Written> written_;
};

} // namespace velmora
