#include "Reencoding.h"

#include "AudioTranscoder.h"
#include "EngineLog.h"
#include "FrameRate.h"
#include "MediaLimits.h"
#include "StreamCopier.h"
#include "VideoTranscoder.h"

#include <algorithm>

namespace velmora {
namespace {

// Enough pictures on their way that decoder and encoder do not wait for each other, few enough that
// their memory does not count.
constexpr std::int64_t kReadAhead = 16;

std::size_t readAheadFor(const AVCodecContext& decoder) {
    constexpr std::int64_t bytesPerPixel = 3; // decoded and scaled, 8 to 10 bits
    const std::int64_t picture = bytesPerPixel * decoder.width * decoder.height;
    return static_cast<std::size_t>(
        std::clamp(kMaxPictureMemory / std::max(picture, INT64_C(1)), INT64_C(1), kReadAhead));
}

} // namespace

int Reencoding::setUpVideo(InputMedia& input, OutputMedia& output, bool isFirst,
                           std::unique_ptr<PacketHandler>& handler) {
    if (isFirst) {
        if (const int result = addVideo(input, output); result < 0) {
            logFailure(input.path(), "open video encoder", result);
            return result;
        }
    }
    readAhead_ = readAheadFor(*input.videoDecoder());
    handler = std::make_unique<VideoTranscoder>(output, *output.videoStream(),
                                                *input.videoDecoder(), encoder_, timing_);
    return 0;
}

int Reencoding::addVideo(InputMedia& input, OutputMedia& output) {
    const AVStream& source = *input.videoStream();
    const AVRational rate = correctedFrameRate(source.r_frame_rate);
    const AVRational duration = encodedFrameDuration(frameRate_, rate, video_.codec);
    if (duration.num <= 0 || duration.den <= 0) {
        return AVERROR_INVALIDDATA;
    }
    int result = encoder_.open(video_, duration, output.format(), *source.codecpar);
    if (result < 0) {
        return result;
    }
    OutputStream* added = output.addVideoStream(duration);
    if (added == nullptr) {
        return AVERROR(ENOMEM);
    }
    result = encoder_.describe(*added->stream->codecpar);
    return result < 0 ? result : copyStreamDescription(source, *added->stream);
}

int Reencoding::setUpAudio(InputMedia& input, OutputMedia& output, bool isFirst,
                           std::unique_ptr<PacketHandler>& handler) {
    if (input.audioDecoder() == nullptr) {
        return 0;
    }
    if (!isFirst && output.audioStream() == nullptr) {
        return AVERROR_STREAM_NOT_FOUND;
    }
    AudioEncoder encoder;
    int result = encoder.open(audio_, output.format());
    if (result >= 0 && isFirst) {
        OutputStream* added = output.addAudioStream({1, audio_.sampleRate});
        result = added != nullptr ? encoder.describe(*added->stream->codecpar) : AVERROR(ENOMEM);
        if (result >= 0) {
            result = copyStreamDescription(*input.audioStream(), *added->stream);
        }
    }
    if (result < 0) {
        logFailure(input.path(), "open audio encoder", result);
        return result;
    }
    handler = std::make_unique<AudioTranscoder>(output, *output.audioStream(),
                                                *input.audioDecoder(), std::move(encoder), timing_);
    return 0;
}

} // namespace velmora
