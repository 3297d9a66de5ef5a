#pragma once

#include "DecodedStream.h"
#include "SoundPeaks.h"

#include <string>

namespace velmora {

/// Reads the peaks of the sound that runs use of the file at `path`. Opens it for itself, when it
/// is first asked. After a stop it cannot be used any more.
class PeakReader : public PeakSource {
public:
    /// Reads end early once `stop` is raised; null: never.
    PeakReader(std::string path, const StopFlag* stop)
        : sound_(std::move(path), DecodedStream::Kind::Sound, stop), stop_(stop) {}

    PeaksEnd read(PeakBlocks wanted, const PeakSink& sink) override;

private:
    bool goTo(std::int64_t block);

    DecodedStream sound_;
    const StopFlag* stop_;
    bool isOpen_ = false;
};

} // namespace velmora
