#include "HeaderDecoder.h"

#include "EngineLog.h"
#include "MediaLimits.h"

namespace velmora {
namespace {

// A decoder asks for a picture's memory after it has read the headers and before it decodes.
int refuseMemory(AVCodecContext* /*decoder*/, AVFrame* /*frame*/, int /*flags*/) {
    return AVERROR(ENOMEM);
}

} // namespace

bool completeFromHeaders(AVCodecParameters& parameters, const AVPacket& packet) {
    const ExpectedLogLines quiet(ExpectedLogLines::Kind::Everything);
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    const CodecContextHandle decoder(avcodec_alloc_context3(codec));
    if (codec == nullptr || decoder == nullptr ||
        avcodec_parameters_to_context(decoder.get(), &parameters) < 0) {
        return false;
    }
    decoder->get_buffer2 = refuseMemory;
    decoder->max_pixels = kMaxPixels;
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0) {
        return false;
    }
    avcodec_send_packet(decoder.get(), &packet);
    return decoder->pix_fmt != AV_PIX_FMT_NONE && decoder->width > 0 && decoder->height > 0 &&
           avcodec_parameters_from_context(&parameters, decoder.get()) >= 0;
}

} // namespace velmora
