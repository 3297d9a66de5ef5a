#pragma once

#include "AvHandles.h"
#include "Decoder.h"

#include <memory>
#include <string>

namespace velmora {

class InputMedia;

/// What a snapshot has found.
struct FoundPicture {
    int code = 0;        ///< 0 or more, or a negative libav error code
    FrameHandle picture; ///< null: none could be decoded
    double seconds = 0;  ///< where it was looked for: as asked, or on the container's time line
};

/// Finds the picture at one time of a file. Keeps the last file open, so that the next picture of
/// it costs a seek and the decoding of one picture. A file is opened anew when it has changed
/// meanwhile, and when reading has told more of it than its index: a seek would then lead elsewhere
/// than that of a cut. Belongs to one thread.
class Snapshot {
public:
    Snapshot();
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    /// Opens the file, unless it is open as it is now. 0 or a negative libav error code; then no
    /// file is open.
    int open(const std::string& path);
    /// The open file; null without one.
    const InputMedia* input() const { return input_.get(); }

    /// The picture that is shown first of a cut of the open file from `seconds` on. The file has a
    /// video stream. If it has to be opened again and cannot be, no file is open afterwards.
    FoundPicture find(double seconds);

private:
    int reopen(const std::string& path);
    int goTo(double& seconds, Decoder& decoder);

    std::unique_ptr<InputMedia> input_;
    bool atStart_ = false;  ///< nothing has been read of the input yet
    int placesAtStart_ = 0; ///< known when the input was opened
};

} // namespace velmora
