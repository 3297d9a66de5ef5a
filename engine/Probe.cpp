#include "Probe.h"

#include "ConversionEngine.h"
#include "FrameRate.h"
#include "InputMedia.h"

#include <algorithm>
#include <limits>

namespace velmora {
namespace {

enum Code : std::int32_t {
    Success = 0,
    CannotOpen = -1,
    NoStreamInfo = -2,
    NoVideoDecoder = -4,
    VideoDecoderFails = -5,
};

std::int32_t fitting(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(
        value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

void storeFrameRate(ConversionEngine& engine, AVRational real) {
    const AVRational rate = correctedFrameRate(real);
    if (rate.den != 0) {
        engine.sourceFrameRate = wholeFrameRate(rate);
    }
    engine.sourceFrameRateNum = rate.num;
    engine.sourceFrameRateDen = rate.den;
}

void storeVideo(ConversionEngine& engine, const InputMedia& input) {
    const AVStream* stream = input.videoStream();
    if (stream == nullptr) {
        engine.sourceHeight = engine.sourceWidth = 0;
        engine.videoCodecId = AV_CODEC_ID_NONE;
        engine.videoBitRate = 0;
        return;
    }
    const AVCodecContext& decoder = *input.videoDecoder();
    engine.sourceHeight = decoder.height;
    engine.sourceWidth = decoder.width;
    engine.videoCodecId = stream->codecpar->codec_id;
    engine.videoBitRate = fitting(decoder.bit_rate);
    storeFrameRate(engine, stream->r_frame_rate);
}

void storeAudio(ConversionEngine& engine, const InputMedia& input) {
    const AVStream* stream = input.audioStream();
    const AVCodecParameters none{};
    // Without a decoder, what the container says is all there is.
    const AVCodecParameters& audio = stream != nullptr ? *stream->codecpar : none;
    engine.audioCodecId = audio.codec_id;
    engine.audioChannels = audio.ch_layout.nb_channels;
    engine.audioSampleRate = audio.sample_rate;
    engine.audioBitRate = fitting(audio.bit_rate);
    if (const AVCodecContext* decoder = input.audioDecoder(); decoder != nullptr) {
        engine.audioChannels = decoder->ch_layout.nb_channels;
        engine.audioSampleRate = decoder->sample_rate;
        engine.audioBitRate = fitting(decoder->bit_rate);
    }
}

SampleAspectRatio sampleAspectRatioOf(const InputMedia& input) {
    AVStream* const stream = input.videoStream();
    if (stream == nullptr) {
        return {};
    }
    // What the container says goes before what the coded pictures say.
    const AVRational told = av_guess_sample_aspect_ratio(input.container(), stream, nullptr);
    return told.num > 0 && told.den > 0 ? SampleAspectRatio{told.num, told.den}
                                        : SampleAspectRatio();
}

void storeDuration(ConversionEngine& engine, std::int64_t durationUs) {
    engine.durationUs = durationUs;
    engine.durationFloor = 0;
    engine.durationSeconds = durationUs / AV_TIME_BASE;
}

} // namespace

std::int32_t probe(ConversionEngine& engine, SampleAspectRatio& aspect) {
    engine.videoStreamIndex = -1;
    engine.audioStreamIndex = -1;
    InputMedia input(engine.probePath, nullptr);
    if (input.open() < 0) {
        return CannotOpen;
    }
    if (input.readStreamInfo() < 0) {
        return NoStreamInfo;
    }
    engine.streamCount = static_cast<std::int32_t>(input.container()->nb_streams);
    engine.videoStreamIndex = input.videoStreamIndex();
    engine.audioStreamIndex = input.audioStreamIndex();
    const int opened = input.openVideoDecoder();
    if (opened == AVERROR_DECODER_NOT_FOUND) {
        return NoVideoDecoder;
    }
    if (opened < 0) {
        return VideoDecoderFails;
    }
    input.openAudioDecoder(); // sound that cannot be decoded can still be copied
    storeVideo(engine, input);
    storeAudio(engine, input);
    storeDuration(engine, input.container()->duration);
    aspect = sampleAspectRatioOf(input);
    return Success;
}

} // namespace velmora
