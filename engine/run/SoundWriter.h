#pragma once

#include "AudioEncoder.h"
#include "OutputMedia.h"
#include "PacketHandler.h"
#include "StopFlag.h"
#include "Timing.h"

#include <vector>

namespace velmora {

/// Encodes, stamps and writes the sound of one input. Unlike the pictures, it is drained at the
/// end, and its last chunk is filled with silence. A packet that cannot be written fails the input;
/// those after it are written all the same.
class SoundWriter {
public:
    /// Once `stop` is raised no more silence is added; null: never. `vorbis` tells how long packets
    /// of joined Vorbis are; null elsewhere.
    SoundWriter(OutputMedia& output, OutputStream& stream, AudioEncoder encoder, Timing timing,
                const StopFlag* stop, AVVorbisParseContext* vorbis);

    /// The format that the sound has to have: that of the encoder.
    const AVCodecContext& format() const { return encoder_.context(); }

    PacketOutcome write(const AVFrame& sound);
    /// Adds silence until the sound is less than one of the encoder's frames behind `seconds` of
    /// the output, where its pictures are.
    PacketOutcome fillUntil(double seconds);
    /// Writes what is queued and what the encoder holds. Nothing can be written afterwards.
    PacketOutcome finish();

private:
    double secondsAfter(std::int64_t samples) const;
    PacketOutcome encodeWholeChunks();
    PacketOutcome encodeChunk();
    PacketOutcome write(const std::vector<PacketHandle>& packets);
    PacketOutcome write(AVPacket& packet);
    int samplesIn(const AVPacket& packet) const;
    void stampBySamples(AVPacket& packet) const;

    OutputMedia& output_;
    OutputStream& stream_;
    AudioEncoder encoder_;
    const bool stampsBySamples_;
    const std::int64_t firstSample_; ///< of this input, in the output
    const double startSeconds_;      ///< of this input, in the output
    const StopFlag* stop_;
    AVVorbisParseContext* vorbis_; ///< not owned
};

} // namespace velmora
