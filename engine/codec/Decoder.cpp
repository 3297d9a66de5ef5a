#include "Decoder.h"

#include "EngineLog.h"
#include "MediaLimits.h"

#include <utility>

namespace velmora {
namespace {

int openContext(const AVStream& stream, Decoder::Threads threads, CodecContextHandle& context) {
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
    if (threads == Decoder::Threads::AllCores) {
        context->thread_count = 0;
    }
    return avcodec_open2(context.get(), codec, nullptr);
}

} // namespace

int Decoder::open(const AVStream& stream, const std::string& path, Threads threads) {
    close();
    CodecContextHandle opened;
    const int result = openContext(stream, threads, opened);
    if (result < 0) {
        const bool isSound = stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
        logFailure(path, isSound ? Operation::OpenSoundDecoder : Operation::OpenDecoder, result);
        return result;
    }
    context_ = std::move(opened);
    return 0;
}

void Decoder::failOnErrors() {
    context_->err_recognition |= AV_EF_EXPLODE;
}

bool Decoder::send(const AVPacket& packet) {
    // Without data, it would be taken for the end of the stream.
    return packet.size <= 0 || avcodec_send_packet(context_.get(), &packet) >= 0;
}

void Decoder::sendEnd() {
    avcodec_send_packet(context_.get(), nullptr);
}

FrameHandle Decoder::receive() {
    FrameHandle frame(av_frame_alloc());
    received_ =
        frame != nullptr ? avcodec_receive_frame(context_.get(), frame.get()) : AVERROR(ENOMEM);
    return received_ >= 0 ? std::move(frame) : nullptr;
}

} // namespace velmora
