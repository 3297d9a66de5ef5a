#include "DirectCopy.h"

#include "AudioCopier.h"
#include "EngineLog.h"
#include "FrameRate.h"
#include "StreamDescription.h"

namespace velmora {
namespace {

int addVideo(const InputMedia& media, OutputMedia& output) {
    AVStream& source = *media.videoStream();
    const AVRational rate = correctedFrameRate(source.r_frame_rate);
    if (rate.num <= 0 || rate.den <= 0) {
        logRefusal(media.path(), Operation::FindFrameRate, "no frame rate");
        return AVERROR_INVALIDDATA;
    }
    const OutputStream* added = output.addVideoStream(av_inv_q(rate));
    return added != nullptr
               ? copyStreamParameters(*media.container(), source, output.format(), *added->stream)
               : AVERROR(ENOMEM);
}

int addAudio(const InputMedia& media, OutputMedia& output) {
    AVStream& source = *media.audioStream();
    const OutputStream* added = output.addAudioStream({1, source.codecpar->sample_rate});
    return added != nullptr
               ? copyStreamParameters(*media.container(), source, output.format(), *added->stream)
               : AVERROR(ENOMEM);
}

int setUpAudio(const InputMedia& media, OutputMedia& output, bool isFirst,
               std::unique_ptr<PacketHandler>& handler) {
    if (isFirst) {
        if (const int result = addAudio(media, output); result < 0) {
            return result;
        }
    }
    if (output.audioStream() == nullptr) {
        return AVERROR_STREAM_NOT_FOUND;
    }
    handler = std::make_unique<AudioCopier>(output, *output.audioStream(), *media.audioStream());
    return 0;
}

} // namespace

int DirectCopy::setUp(RunInput& input, OutputMedia& output, bool isFirst, InputHandlers& handlers) {
    int result = 0;
    if (input.media.videoStream() != nullptr) {
        result = setUpVideo(input, output, isFirst, handlers.video);
    }
    if (result >= 0 && input.media.audioStream() != nullptr) {
        result = setUpAudio(input.media, output, isFirst, handlers.audio);
    }
    input.video.close(); // a copy only has to know that it opens
    return result;
}

int DirectCopy::setUpVideo(RunInput& input, OutputMedia& output, bool isFirst,
                           std::unique_ptr<PacketHandler>& handler) {
    if (isFirst) {
        if (const int result = addVideo(input.media, output); result < 0) {
            return result;
        }
    }
    auto copier = std::make_unique<VideoCopier>(output, *output.videoStream(), offset_);
    const int result = copier->open(*input.media.container(), *input.media.videoStream(),
                                    input.video.context().has_b_frames);
    handler = std::move(copier);
    return result;
}

} // namespace velmora
