#pragma once

#include "Decoder.h"
#include "OutputMedia.h"
#include "PacketHandler.h"
#include "PictureScaler.h"
#include "SerialWorker.h"
#include "Timing.h"
#include "VideoEncoder.h"

#include <deque>
#include <future>
#include <memory>
#include <vector>

namespace velmora {

/// Decodes the packets of one input's video stream, and encodes, stamps and writes the pictures.
/// Decoding, scaling and encoding have a thread each; stamping and writing happen where `handle` is
/// called, in the order of the packets, so that the result is the same to the byte however many
/// cores there are. That is also why only packets that are sure to be handled are prepared: the
/// decoder has then seen no more than it would have one packet at a time.
///
/// What the video encoder still holds at the end is not written, by design; what the decoder holds
/// is.
class VideoTranscoder : public PacketHandler {
public:
    /// `decoder` and `encoder` are used on other threads until this object is gone. `lastTicks` is
    /// where the last picture of the output was written, in ticks of the stream's time base.
    VideoTranscoder(OutputMedia& output, OutputStream& stream, Decoder& decoder,
                    VideoEncoder& encoder, Timing timing, std::int64_t& lastTicks);
    VideoTranscoder(const VideoTranscoder&) = delete;
    VideoTranscoder& operator=(const VideoTranscoder&) = delete;
    ~VideoTranscoder() override;

    void prepare(PacketHandle packet) override;
    PacketOutcome handle() override;
    PacketOutcome finish() override;

    /// Takes what the decoder still holds; no packet of this input follows. Where the output's
    /// pictures will end, seconds.
    double drain();

private:
    /// One packet, or the end of the stream, on its way through decoder and encoder.
    struct Work {
        PacketHandle packet;               ///< null: drains the decoder
        int maxPictures = 0;               ///< when draining
        std::vector<FrameHandle> pictures; ///< as decoded, then as they are to be encoded
        std::vector<PacketHandle> encoded;
        bool hadPicture = false;
        bool isWhole = true; ///< no picture is missing that could not be scaled
        std::promise<void> done;
    };

    void submit(std::unique_ptr<Work> work);
    void decode(Work& work);
    void scale(Work& work);
    void encode(Work& work);
    std::unique_ptr<Work> awaitFirst();
    void dropPrepared();
    const Work& drained();
    static PacketOutcome wholeness(const Work& work);
    PacketOutcome write(const Work& work);
    PacketOutcome write(AVPacket& packet);
    void stampForJoin(AVPacket& packet);

    OutputMedia& output_;
    OutputStream& stream_;
    Decoder& decoder_;
    VideoEncoder& encoder_;
    const Timing timing_;
    std::int64_t& lastTicks_;
    int withoutPicture_ = 0;        ///< packets whose pictures the decoder may still hold
    std::int64_t frameCounter_ = 0; ///< ticks
    std::deque<std::unique_ptr<Work>> works_;
    std::unique_ptr<Work> drained_; ///< what the decoder held at the end; null before
    PictureScaler scaler_;
    // Each posts to the one before it, which outlives it.
    SerialWorker encoding_;
    SerialWorker scaling_;
    SerialWorker decoding_;
};

} // namespace velmora
