#include "HeaderDecoder.h"

#include "EngineLog.h"
#include "MediaLimits.h"

#include <algorithm>

namespace velmora {
namespace {

// A decoder asks for a picture's memory after it has read the headers and before it decodes.
int refuseMemory(AVCodecContext* /*decoder*/, AVFrame* /*frame*/, int /*flags*/) {
    return AVERROR(ENOMEM);
}

// H.264 need not say by how many pictures it reorders. A decoder then goes by the pictures that it
// sees, and leaves alone what it has been given before.
constexpr int kNoDelay = -1;

} // namespace

std::optional<AVRational> completeFromHeaders(AVCodecParameters& parameters,
                                              const AVPacket& packet) {
    const ExpectedLogLines quiet(ExpectedLogLines::Kind::Everything);
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    const CodecContextHandle decoder(avcodec_alloc_context3(codec));
    if (codec == nullptr || decoder == nullptr ||
        avcodec_parameters_to_context(decoder.get(), &parameters) < 0) {
        return std::nullopt;
    }
    decoder->get_buffer2 = refuseMemory;
    decoder->max_pixels = kMaxPixels;
    decoder->has_b_frames = kNoDelay;
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0) {
        return std::nullopt;
    }
    avcodec_send_packet(decoder.get(), &packet);
    const bool tellsAll = decoder->pix_fmt != AV_PIX_FMT_NONE && decoder->width > 0 &&
                          decoder->height > 0 && decoder->has_b_frames != kNoDelay;
    decoder->has_b_frames = std::max(decoder->has_b_frames, parameters.video_delay);
    if (!tellsAll || avcodec_parameters_from_context(&parameters, decoder.get()) < 0) {
        return std::nullopt;
    }
    return decoder->framerate;
}

} // namespace velmora
