#include "DirectCopy.h"

#include "FrameRate.h"
#include "StreamCopier.h"

namespace velmora {
namespace {

int setUpVideo(InputMedia& input, OutputMedia& output, bool isFirst,
               std::unique_ptr<PacketHandler>& handler) {
    AVStream& source = *input.videoStream();
    if (isFirst) {
        const AVRational rate = correctedFrameRate(source.r_frame_rate);
        if (rate.num <= 0 || rate.den <= 0) {
            av_log(nullptr, AV_LOG_ERROR, "%s: no frame rate\n", input.path().c_str());
            return AVERROR_INVALIDDATA;
        }
        OutputStream* added = output.addVideoStream(av_inv_q(rate));
        if (added == nullptr) {
            return AVERROR(ENOMEM);
        }
        const int result =
            copyStreamParameters(*input.container(), source, output.format(), *added->stream);
        if (result < 0) {
            return result;
        }
    }
    auto copier = std::make_unique<VideoCopier>(output, *output.videoStream());
    const int result = copier->open(*input.container(), source, input.videoDecoder()->has_b_frames);
    handler = std::move(copier);
    return result;
}

int setUpAudio(InputMedia& input, OutputMedia& output, bool isFirst,
               std::unique_ptr<PacketHandler>& handler) {
    AVStream& source = *input.audioStream();
    if (isFirst) {
        OutputStream* added = output.addAudioStream({1, source.codecpar->sample_rate});
        const int result = added != nullptr ? copyStreamParameters(*input.container(), source,
                                                                   output.format(), *added->stream)
                                            : AVERROR(ENOMEM);
        if (result < 0) {
            return result;
        }
    } else if (output.audioStream() == nullptr) {
        return AVERROR_STREAM_NOT_FOUND;
    }
    handler = std::make_unique<AudioCopier>(output, *output.audioStream(), source);
    return 0;
}

} // namespace

int DirectCopy::setUp(InputMedia& input, OutputMedia& output, bool isFirst,
                      InputHandlers& handlers) {
    int result = 0;
    if (input.videoStream() != nullptr) {
        result = setUpVideo(input, output, isFirst, handlers.video);
    }
    if (result >= 0 && input.audioStream() != nullptr) {
        result = setUpAudio(input, output, isFirst, handlers.audio);
    }
    input.closeDecoders(); // a copy only has to know that they open
    return result;
}

} // namespace velmora
