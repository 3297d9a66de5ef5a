#include "Reencoding.h"

#include "AudioTranscoder.h"
#include "EngineLog.h"
#include "FrameRate.h"
#include "MediaLimits.h"
#include "SilentInput.h"
#include "StreamDescription.h"
#include "VideoTranscoder.h"

#include <algorithm>
#include <functional>
#include <utility>

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

int Reencoding::setUp(RunInput& input, OutputMedia& output, bool isFirst, InputHandlers& handlers) {
    std::unique_ptr<VideoTranscoder> pictures;
    int result = 0;
    if (input.media.videoStream() != nullptr) {
        result = setUpVideo(input, output, isFirst, pictures);
    }
    if (result >= 0 && input.media.audioStream() != nullptr) {
        result = setUpAudio(input, output, isFirst, pictures.get(), handlers.audio);
    }
    if (result < 0) {
        return result;
    }
    if (pictures != nullptr && needsSilence(input, output, isFirst)) {
        return setUpSilence(input, output, isFirst, std::move(pictures), handlers.video);
    }
    handlers.video = std::move(pictures);
    return 0;
}

int Reencoding::setUpVideo(RunInput& input, OutputMedia& output, bool isFirst,
                           std::unique_ptr<VideoTranscoder>& pictures) {
    if (isFirst) {
        if (const int result = addVideo(input, output); result < 0) {
            logFailure(input.media.path(), Operation::OpenVideoEncoder, result);
            return result;
        }
    }
    readAhead_ = readAheadFor(input.video.context());
    pictures = std::make_unique<VideoTranscoder>(output, *output.videoStream(), input.video,
                                                 encoder_, timing_, lastPictureTicks_);
    return 0;
}

int Reencoding::setUpSilence(RunInput& input, OutputMedia& output, bool isFirst,
                             std::unique_ptr<VideoTranscoder> pictures,
                             std::unique_ptr<PacketHandler>& handler) {
    AudioEncoder silence;
    int result = silence.open(audio_, output.format());
    if (result >= 0 && isFirst) {
        result = addAudio(silence, *input.media.audioStream(), output);
    }
    if (result >= 0) {
        handler = std::make_unique<SilentInput>(output, std::move(pictures),
                                                writerOf(std::move(silence), output));
    }
    return result;
}

/// Whether the input lacks the sound that the output has, or will have for the sake of the inputs
/// that follow.
bool Reencoding::needsSilence(const RunInput& input, OutputMedia& output, bool isFirst) const {
    const bool hasSound =
        isFirst ? input.media.audioStream() != nullptr : output.audioStream() != nullptr;
    return timing_ == Timing::Join && hasSound && !input.audio.isOpen();
}

SoundWriter Reencoding::writerOf(AudioEncoder encoder, OutputMedia& output) {
    return {output, *output.audioStream(), std::move(encoder), timing_, stop_, vorbis_.get()};
}

int Reencoding::addVideo(RunInput& input, OutputMedia& output) {
    const AVStream& source = *input.media.videoStream();
    const AVRational rate = correctedFrameRate(source.r_frame_rate);
    const AVRational duration = encodedFrameDuration(video_.frameRate, rate, video_.codec);
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
    added->stream->r_frame_rate = source.r_frame_rate;
    result = encoder_.describe(*added->stream->codecpar);
    return result < 0 ? result : copyStreamDescription(source, *added->stream);
}

int Reencoding::setUpAudio(RunInput& input, OutputMedia& output, bool isFirst,
                           VideoTranscoder* pictures, std::unique_ptr<PacketHandler>& handler) {
    if (!isFirst && output.audioStream() == nullptr) {
        return AVERROR_STREAM_NOT_FOUND;
    }
    if (!input.audio.isOpen()) {
        return 0;
    }
    AudioEncoder encoder;
    int result = encoder.open(audio_, output.format());
    if (result >= 0 && isFirst) {
        result = addAudio(encoder, *input.media.audioStream(), output);
    }
    if (result < 0) {
        logFailure(input.media.path(), Operation::OpenAudioEncoder, result);
        return result;
    }
    std::function<double()> drainPictures;
    if (timing_ == Timing::Join && pictures != nullptr) {
        drainPictures = [pictures] { return pictures->drain(); };
    }
    handler = std::make_unique<AudioTranscoder>(input.audio, writerOf(std::move(encoder), output),
                                                std::move(drainPictures));
    return 0;
}

int Reencoding::addAudio(const AudioEncoder& encoder, const AVStream& source, OutputMedia& output) {
    OutputStream* added = output.addAudioStream({1, audio_.sampleRate});
    if (added == nullptr) {
        return AVERROR(ENOMEM);
    }
    AVCodecParameters& parameters = *added->stream->codecpar;
    const int result = encoder.describe(parameters);
    if (result >= 0 && timing_ == Timing::Join && audio_.codec == AV_CODEC_ID_VORBIS) {
        vorbis_.reset(av_vorbis_parse_init(parameters.extradata, parameters.extradata_size));
    }
    return result < 0 ? result : copyStreamDescription(source, *added->stream);
}

} // namespace velmora
