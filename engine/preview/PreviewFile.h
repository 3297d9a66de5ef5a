#pragma once

#include "FileIdentity.h"
#include "Snapshot.h"

#include <optional>
#include <string>

namespace velmora {

/// Keeps a picture file at the picture that was asked for last. What is written already, from a
/// file that has not changed, is not written again. Belongs to one thread.
class PreviewFile {
public:
    /// See ConversionEngine::snapshot. A seek by time adds the container's start time to
    /// `startSeconds`.
    int show(const std::string& path, double& startSeconds, const std::string& picturePath);

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

    bool holds(double askedSeconds, const std::string& picturePath) const;
    void write(const FoundPicture& found, double askedSeconds, const std::string& picturePath);

    Snapshot snapshot_;
    std::optional<Written> written_;
};

} // namespace velmora
