#pragma once

#include "AudioEncoder.h"
#include "AudioFormat.h"
#include "OutputMedia.h"
#include "StopFlag.h"

#include <cstdint>

namespace velmora {

/// Encodes and writes the sound of an output from the job's first input to its last, counted in
/// samples. Belongs to one thread.
class TimedSoundWriter {
public:
    /// `encoder` is open; both outlive this object. Once `stop` is raised no more silence is added.
    TimedSoundWriter(OutputMedia& output, OutputStream& stream, AudioEncoder& encoder,
                     const StopFlag& stop);

    /// What the samples have to be like.
    AudioFormat format() const;
    /// How many samples there are so far.
    std::int64_t samples() const { return samples_; }

    /// Takes the first `count` samples of the frame. 0 or a negative libav error code.
    int write(const AVFrame& sound, std::int64_t count);
    /// Silence up to this sample of the output. 0 or a negative code.
    int fillUntil(std::int64_t sample);
    /// Writes what is queued and what the encoder holds. 0 or a negative code.
    int finish();

private:
    int encodeWholeChunks();
    int write(std::vector<PacketHandle>& packets);

    OutputMedia& output_;
    OutputStream& stream_;
    AudioEncoder& encoder_;
    const StopFlag& stop_;
    std::int64_t samples_ = 0;
    bool ends_ = false; ///< samples_ is final
};

} // namespace velmora
