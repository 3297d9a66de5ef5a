#pragma once

#include "AvHandles.h"

#include <string>

namespace velmora {

/// Decodes the packets of one stream, in their order. Owns its decoder. Belongs to one thread at a
/// time.
class Decoder {
public:
    /// How many it works with. With more than one it holds back more pictures, and how many
    /// depends on the machine.
    enum class Threads { One, AllCores };

    /// Opens the decoder of a stream of the source at `path`, which is named in the log when that
    /// fails. 0, AVERROR_DECODER_NOT_FOUND or another negative libav error code; the decoder is
    /// closed then.
    int open(const AVStream& stream, const std::string& path, Threads threads = Threads::One);
    void close() { context_.reset(); }
    /// From now on each error that is found fails the packet, however small. Of one thread only.
    void failOnErrors();
    bool isOpen() const { return context_ != nullptr; }

    /// What the stream's headers say, and what decoding has told of it since. It has to be open.
    const AVCodecContext& context() const { return *context_; }

    /// Takes a packet. A damaged one is no failure: it gives less than a frame, or none. One
    /// without data is passed over. Whether all that has been decoded by now was sound.
    bool send(const AVPacket& packet);
    /// No packet follows: what is still held can be received.
    void sendEnd();
    /// The next frame in the order of showing; null when there is none before the next packet.
    FrameHandle receive();
    /// Whether the last call of receive() found out that no frame is left after the end.
    bool hasEnded() const { return received_ == AVERROR_EOF; }
    /// Forgets all packets, also that there was an end: those of another place may follow.
    void flush() { avcodec_flush_buffers(context_.get()); }

private:
    CodecContextHandle context_;
    int received_ = 0;
};

} // namespace velmora
