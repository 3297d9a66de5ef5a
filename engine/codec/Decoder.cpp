#include "Decoder.h"

#include "EngineLog.h"
#include "MediaLimits.h"

#include <utility>

namespace velmora {
namespace {

int openContext(const AVStream& stream, CodecContextHandle& context) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (codec == nullptr) {
        return AVERROR_DECODER_NOT_FOUND;
    }
    context.reset(avcodec_alloc_context3(codec));
    if (context == nullptr) {
        return AVERROR(ENOMEM);
    }
    if (const int result = avcodec_parameters_to_context(context.get(), stream.codecpar);
        result < 0) {
        return result;
    }
    context->pkt_timebase = stream.time_base;
    context->max_pixels = kMaxPixels;
    return avcodec_open2(context.get(), codec, nullptr);
}

} // namespace

int Decoder::open(const AVStream& stream, const std::string& path) {
    close();
    CodecContextHandle opened;
    const int result = openContext(stream, opened);
    if (result < 0) {
        logFailure(path, "open decoder", result);
        return result;
    }
    context_ = std::move(opened);
    return 0;
}

void Decoder::send(const AVPacket& packet) {
    if (packet.size > 0) { // without data, it would be taken for the end of the stream
        avcodec_send_packet(context_.get(), &packet);
    }
}

void Decoder::sendEnd() {
    avcodec_send_packet(context_.get(), nullptr);
}

FrameHandle Decoder::receive() {
    FrameHandle frame(av_frame_alloc());
    const bool received =
        frame != nullptr && avcodec_receive_frame(context_.get(), frame.get()) >= 0;
    return received ? std::move(frame) : nullptr;
}

} // namespace velmora
